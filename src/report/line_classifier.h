// The values on q7cal's result lines, as q7cal-report reads them: "label =
// value unit" (one value, or one per receive path), an entry of a printed
// list ("Tx Ext Attn Step[ 3] =  5.95 dB"), a row of the Rx spectrum, and the
// automated run's own value lines (Tx output power read back, GP ADC values).
#ifndef Q7REPORT_RESULT_LINES_H
#define Q7REPORT_RESULT_LINES_H

#include <cstddef>
#include <string>
#include <vector>

namespace q7report {

struct ResultLine {
    enum Kind { kNone, kValue, kListEntry, kSpectrumRow };
    Kind kind = kNone;
    std::string label;     // "Rx1 RSSI"; a list's name ("LCTrimArray")
    std::string quantity;  // what limits it is judged by: usually the label
    std::vector<double> values;
    bool isArray = false;  // a value line with a value per path or input
    std::string unit;
    size_t index = 0;  // a list entry's index, a spectrum row's first bin
};

// What `line` holds, or kNone: a prompt, a heading, a text value (a state,
// a version, a hex code), or a line with more than one label.
ResultLine ParseResultLine(const std::string &line);

// The label and text of an "label = value" line, for the unit's identity
// ("MAC address", "02:1A:C7:30:5E:81"); false for any other line.
bool SplitLabeledLine(const std::string &line, std::string &label, std::string &text);

std::string Trim(const std::string &text);

}  // namespace q7report

#endif

// What a line of a q7cal transcript is, read by the texts q7cal prints
// (printed_texts.h): a menu, a section heading of the automated run, a push
// or pop of the device mode, a command's heading or ending, an error, a
// verdict, a state, a value, a row of a dump. The judges then decide what it
// means where it stands.
#ifndef Q7REPORT_LINE_CLASSIFIER_H
#define Q7REPORT_LINE_CLASSIFIER_H

#include <cstddef>
#include <string>
#include <vector>

namespace q7report {

// The values on q7cal's result lines: "label = value unit" (one value, or one
// per receive path), an entry of a printed list ("Tx Ext Attn Step[ 3] =
// 5.95 dB"), a row of the Rx spectrum, and the automated run's own value
// lines (Tx output power read back, GP ADC values).
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

// The label and text of an "label = value" line ("MAC address",
// "02:1A:C7:30:5E:81"); false for any other line.
bool SplitLabeledLine(const std::string &line, std::string &label, std::string &text);

struct ClassifiedLine {
    enum Kind {
        kBlank,
        kMenuTitle,       // "******** Tx Commands ********": label is the title
        kInvalidOption,   // a menu refused its answer
        kStartUp,         // the greeting, or the interface that could not be opened
        kPush,            // "Push[ 2] - set device mode: ...": index, mode
        kPop,             // "Pop[ 1] - ...": index, mode
        kSectionHeading,  // "------------- Testing TX COMMAND GROUP": label is the title
        kError,           // "ERROR: ..." anywhere: value from "ERROR:" on, before what preceded it
        kWarning,         // "WARNING: ...": value from "WARNING:" on
        kSuccessful,      // "GetTxAttn was SUCCESSFUL.": label is the name
        kState,           // "RF checksum is  VALID", "Calibration state = VALID", "Sync status = ...": label, value
        kVerdict,         // a line ending in PASS or FAIL: value is the word
        kValue,           // a value line: result
        kListEntry,       // an entry of a list: result
        kSpectrumRow,     // a row of the Rx spectrum: result
        kHexRow,          // "0200: 02 01 03 ...": a row of a hexadecimal dump
        kLabeledText,     // "label = text" that holds no value: label, value
        kHeading,         // a command's heading: "GetTxAttn:", "ResetRxSpectrum"; label is the name
        kText,            // anything else: an announcement, a prompt, a guidance line
    };
    Kind kind = kText;
    std::string text;               // the line, after the menu's prompt where it began with one
    bool afterMenuPrompt = false;   // the line began with the menu's prompt
    bool typedAnswer = false;       // ... which shows a typed answer: a terminal session
    std::string label;
    std::string value;
    std::string before;             // errors: what the line said before "ERROR:"
    ResultLine result;              // values, list entries, spectrum rows
    int index = -1;                 // pushes and pops: the record's index
    unsigned mode[4] = {0, 0, 0, 0};  // pushes and pops: the mode set
};

ClassifiedLine Classify(const std::string &line);

// A state as one line: "RF checksum is NOT VALID", "Sync status = Sync not achieved".
std::string StateText(const ClassifiedLine &state);

std::string Trim(const std::string &text);
std::string TrimRight(std::string text);
bool StartsWith(const std::string &text, const char *prefix);
bool EndsWith(const std::string &text, const std::string &suffix);

}  // namespace q7report

#endif

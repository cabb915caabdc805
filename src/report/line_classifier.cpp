#include "result_lines.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sstream>

#include "printed_texts.h"

namespace q7report {
namespace {

// Labels whose values are codes in hexadecimal, not quantities: "RF checksum
// = 632B", "GPIO pin state = 80F300A5", "RFIC register data = 00007135".
const char *const kCodeLabels[] = {"checksum", "GPIO", "RFIC"};

// The automated run's value lines that have no "label = value" form.
const char kAdcLine[] = TEXT_ADC_LINE;
const char kPowerSetting[] = TEXT_POWER_SETTING;
const char kPowerSettingMisspelt[] = TEXT_POWER_SETTING_MISSPELT;

bool StartsWith(const std::string &text, const char *prefix) { return text.rfind(prefix, 0) == 0; }

// A whole decimal number ("-59.67", "1e-3", "nan"); never hexadecimal.
bool ParseNumber(const std::string &token, double &value)
{
    if (token.empty() || token.find_first_of("xX") != std::string::npos)
        return false;
    char *end = nullptr;
    value = std::strtod(token.c_str(), &end);
    return end == token.c_str() + token.size();
}

bool IsUnit(const std::string &token)
{
    return !token.empty() && std::all_of(token.begin(), token.end(), [](char c) {
        return std::isalpha(static_cast<unsigned char>(c)) || c == '%' || c == '/';
    });
}

std::vector<std::string> Words(const std::string &text)
{
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string word; in >> word;)
        words.push_back(word);
    return words;
}

// What follows a prompt: piped answers are not echoed, so a command's output
// goes on on the prompt's own line ("GP ADC mux setting (0-3) ?      Value = 5").
std::string AfterPrompts(const std::string &line)
{
    size_t prompt = line.rfind("? ");
    return prompt == std::string::npos ? line : line.substr(prompt + 2);
}

// "Tx output power read back at +20 dBm" from "Setting power to +20 dBm ...Read  20 dBm  PASS".
ResultLine PowerReadBack(const std::string &line, size_t settingLength)
{
    ResultLine result;
    std::vector<std::string> words = Words(line.substr(settingLength));
    // "+20" "dBm" "...Read" "20" "dBm" "PASS"
    double value = 0;
    if (words.size() < 5 || words[1] != "dBm" || words[2] != "...Read" || !ParseNumber(words[3], value) ||
        words[4] != "dBm")
        return result;
    result.kind = ResultLine::kValue;
    result.label = "Tx output power read back at " + words[0] + " dBm";
    result.quantity = "Tx output power";
    result.values = {value};
    result.unit = "dBm";
    return result;
}

// " 00 101 200 1E": one reading per mux input, in hexadecimal.
ResultLine AdcValues(const std::string &rest)
{
    ResultLine result;
    for (const std::string &word : Words(rest)) {
        char *end = nullptr;
        unsigned long value = std::strtoul(word.c_str(), &end, 16);
        if (*end != '\0' || !std::isxdigit(static_cast<unsigned char>(word[0])))
            return ResultLine();
        result.values.push_back(static_cast<double>(value));
    }
    if (result.values.empty())
        return result;
    result.kind = ResultLine::kValue;
    result.label = result.quantity = "GP ADC value";
    result.isArray = true;
    return result;
}

// "  16:   12.3    9.8 ...": a row of the Rx spectrum, from bin 16.
ResultLine SpectrumRow(const std::string &line)
{
    ResultLine result;
    size_t colon = line.find(':');
    std::string bin = Trim(line.substr(0, colon));
    if (colon == std::string::npos || bin.empty() ||
        !std::all_of(bin.begin(), bin.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); }))
        return result;
    for (const std::string &word : Words(line.substr(colon + 1))) {
        double value = 0;
        if (!ParseNumber(word, value))
            return ResultLine();
        result.values.push_back(value);
    }
    if (result.values.empty())
        return result;
    result.kind = ResultLine::kSpectrumRow;
    result.label = result.quantity = "Rx spectrum";
    result.unit = "dB";
    result.index = std::strtoul(bin.c_str(), nullptr, 10);
    return result;
}

}  // namespace

std::string Trim(const std::string &text)
{
    size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return "";
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool SplitLabeledLine(const std::string &line, std::string &label, std::string &text)
{
    std::string rest = AfterPrompts(line);
    size_t equals = rest.find('=');
    if (equals == std::string::npos)
        return false;
    label = Trim(rest.substr(0, equals));
    text = Trim(rest.substr(equals + 1));
    return !label.empty();
}

ResultLine ParseResultLine(const std::string &line)
{
    if (StartsWith(line, kPowerSetting))
        return PowerReadBack(line, sizeof kPowerSetting - 1);
    if (StartsWith(line, kPowerSettingMisspelt))
        return PowerReadBack(line, sizeof kPowerSettingMisspelt - 1);
    if (StartsWith(line, kAdcLine))
        return AdcValues(line.substr(sizeof kAdcLine - 1));

    std::string rest = AfterPrompts(line);
    if (std::count(rest.begin(), rest.end(), '=') != 1)
        return SpectrumRow(rest);
    std::string label, text;
    SplitLabeledLine(rest, label, text);
    if (label.empty() || (!std::isalnum(static_cast<unsigned char>(label[0])) && label[0] != '#'))
        return ResultLine();
    for (const char *code : kCodeLabels)
        if (label.find(code) != std::string::npos)
            return ResultLine();

    ResultLine result;
    std::vector<std::string> words = Words(text);
    size_t numbers = 0;
    for (double value = 0; numbers < words.size() && ParseNumber(words[numbers], value); numbers++)
        result.values.push_back(value);
    if (numbers == 0)
        return ResultLine();
    // After the values: a unit, an annotation in parentheses ("0 (0.00 %)",
    // "1 (Antenna 2)"), or nothing; anything else is no value line.
    if (numbers < words.size()) {
        if (IsUnit(words[numbers]) && numbers + 1 == words.size())
            result.unit = words[numbers];
        else if (words[numbers][0] != '(')
            return ResultLine();
    }
    // A unit in the label: "Frequency offset (PPM)", "Sync frequency (kHz)".
    size_t open = label.rfind(" (");
    if (result.unit.empty() && open != std::string::npos && label.back() == ')') {
        std::string inLabel = label.substr(open + 2, label.size() - open - 3);
        if (IsUnit(inLabel))
            result.unit = inLabel;
    }
    // A list entry: "LCTrimArray[3]", "Tx Ext Attn Step[ 3]".
    size_t bracket = label.find('[');
    if (bracket != std::string::npos && label.back() == ']' && result.values.size() == 1) {
        std::string index = Trim(label.substr(bracket + 1, label.size() - bracket - 2));
        if (index.empty() || !std::all_of(index.begin(), index.end(),
                                          [](char c) { return std::isdigit(static_cast<unsigned char>(c)); }))
            return ResultLine();
        result.kind = ResultLine::kListEntry;
        result.index = std::strtoul(index.c_str(), nullptr, 10);
        label = Trim(label.substr(0, bracket));
    } else {
        result.kind = ResultLine::kValue;
        result.isArray = result.values.size() > 1;
    }
    result.label = result.quantity = label;
    return result;
}

}  // namespace q7report

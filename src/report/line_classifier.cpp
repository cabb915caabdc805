#include "line_classifier.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
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

std::string LastWord(const std::string &text)
{
    std::string trimmed = TrimRight(text);
    return trimmed.substr(trimmed.find_last_of(" \t") + 1);
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

namespace {

// What q7cal prints, as the classifier recognises it.
const char kHeading[] = TEXT_TEST_SEPARATOR TEXT_TESTING;
const char kMenuBannerEdge[] = TEXT_MENU_BANNER_EDGE " ";
// How a command that went well ends: its SUCCESSFUL line, or for connecting
// and disconnecting, the line that says so.
const char *const kGoodEndings[] = {TEXT_SUCCESSFUL, TEXT_DEVICE_CONNECTED, TEXT_DEVICE_DISCONNECTED};
const char kPause[] = "Press Enter to continue";

// "******** Tx Commands ********" -> "Tx Commands"; "" for any other line.
std::string MenuTitle(const std::string &line)
{
    const std::string edge = kMenuBannerEdge;
    const std::string closing = " " TEXT_MENU_BANNER_EDGE;
    if (line.size() <= edge.size() + closing.size() || !StartsWith(line, kMenuBannerEdge) || !EndsWith(line, closing))
        return "";
    return line.substr(edge.size(), line.size() - edge.size() - closing.size());
}

// A typed answer after the menu's prompt ("9", "-1"): a terminal's echo.
// Piped answers are never echoed.
bool IsTypedAnswer(std::string answer)
{
    answer = Trim(answer);
    if (!answer.empty() && answer[0] == '-')
        answer.erase(0, 1);
    return !answer.empty() &&
           std::all_of(answer.begin(), answer.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
}

// A line of the device-mode stack, by q7cal's own formats.
bool ReadStackLine(const std::string &line, bool push, ClassifiedLine &classified)
{
    int index = -1;
    unsigned *mode = classified.mode;
    int read = push ? std::sscanf(line.c_str(), TEXT_PUSH_FORMAT, &index, &mode[0], &mode[1], &mode[2], &mode[3])
                    : std::sscanf(line.c_str(), TEXT_POP_FORMAT, &index, &mode[0], &mode[1], &mode[2], &mode[3]);
    if (read != 5)
        return false;
    classified.index = index;
    return true;
}

// A command's heading: "GetTxAttn:", "Set TR Switch:" or a lone name such as
// "ResetRxSpectrum"; never a prompt, a result line or a verdict.
bool IsHeading(const std::string &line)
{
    if (line.empty() || !std::isalpha(static_cast<unsigned char>(line[0])))
        return false;
    bool colon = line.back() == ':';
    std::string name = colon ? line.substr(0, line.size() - 1) : line;
    if (name.find_first_of(":=?") != std::string::npos)
        return false;
    return colon || name.find(' ') == std::string::npos;
}

// "0200: 02 01 03 F8": an address of four or more hexadecimal digits, then bytes.
bool IsHexRow(const std::string &line)
{
    size_t colon = line.find(':');
    if (colon == std::string::npos || colon < 4 ||
        !std::all_of(line.begin(), line.begin() + static_cast<long>(colon),
                     [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); }))
        return false;
    std::vector<std::string> bytes = Words(line.substr(colon + 1));
    return std::all_of(bytes.begin(), bytes.end(), [](const std::string &byte) {
        return byte.size() == 2 && std::isxdigit(static_cast<unsigned char>(byte[0])) &&
               std::isxdigit(static_cast<unsigned char>(byte[1]));
    });
}

// "    RF checksum is  VALID", "DSD checksum is NOT VALID": the block's name and its state.
bool ReadChecksumState(const std::string &line, ClassifiedLine &classified)
{
    size_t is = line.find(TEXT_CHECKSUM_IS);
    std::string state = Trim(line.substr(is == std::string::npos ? 0 : is + sizeof TEXT_CHECKSUM_IS - 1));
    if (is == std::string::npos || (state != TEXT_VALID && state != TEXT_NOT_VALID))
        return false;
    classified.label = Trim(line.substr(0, is)) + " checksum";
    classified.value = state;
    return true;
}

}  // namespace

std::string TrimRight(std::string text)
{
    text.erase(text.find_last_not_of(" \t") + 1);
    return text;
}

bool StartsWith(const std::string &text, const char *prefix) { return text.rfind(prefix, 0) == 0; }

bool EndsWith(const std::string &text, const std::string &suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::string StateText(const ClassifiedLine &state)
{
    return state.label + (EndsWith(state.label, " checksum") ? " is " : " = ") + state.value;
}

ClassifiedLine Classify(const std::string &line)
{
    ClassifiedLine c;
    c.text = line;
    if (StartsWith(line, TEXT_MENU_PROMPT)) {
        c.afterMenuPrompt = true;
        c.text = line.substr(sizeof TEXT_MENU_PROMPT - 1);
        c.typedAnswer = IsTypedAnswer(c.text);
    }
    const std::string &text = c.text;
    const std::string trimmed = Trim(text);
    size_t error = text.find(TEXT_ERROR);
    size_t warning = text.find(TEXT_WARNING);
    std::string label, labeled;

    if (trimmed.empty() || c.typedAnswer) {
        c.kind = ClassifiedLine::kBlank;
    } else if (!(c.label = MenuTitle(text)).empty()) {
        c.kind = ClassifiedLine::kMenuTitle;
    } else if (text.find(TEXT_INVALID_OPTION) != std::string::npos) {
        c.kind = ClassifiedLine::kInvalidOption;
    } else if (text.find(TEXT_CONNECTING) != std::string::npos) {
        c.kind = ClassifiedLine::kStartUp;
    } else if (ReadStackLine(text, true, c)) {
        c.kind = ClassifiedLine::kPush;
    } else if (ReadStackLine(text, false, c)) {
        c.kind = ClassifiedLine::kPop;
    } else if (StartsWith(text, kHeading)) {
        c.kind = ClassifiedLine::kSectionHeading;
        c.label = TrimRight(text.substr(sizeof kHeading - 1));
    } else if (error != std::string::npos) {
        c.kind = ClassifiedLine::kError;
        // "READ ERROR:" and "WRITE ERROR:" name the failure with their first word.
        for (const std::string operation : {"READ ", "WRITE "})
            if (error >= operation.size() && text.compare(error - operation.size(), operation.size(), operation) == 0)
                error -= operation.size();
        c.value = TrimRight(text.substr(error));
        c.before = text.substr(0, error);
    } else if (warning != std::string::npos) {
        c.kind = ClassifiedLine::kWarning;
        c.value = TrimRight(text.substr(warning));
    } else if (std::any_of(std::begin(kGoodEndings), std::end(kGoodEndings),
                           [&](const char *ending) { return EndsWith(TrimRight(text), ending); })) {
        c.kind = ClassifiedLine::kSuccessful;
        c.label = trimmed.substr(0, trimmed.find(' '));
    } else if (ReadChecksumState(text, c)) {
        c.kind = ClassifiedLine::kState;
    } else if (SplitLabeledLine(text, label, labeled) &&
               (label == TEXT_SYNC_STATUS || label + " = " == TEXT_CALIBRATION_STATE)) {
        c.kind = ClassifiedLine::kState;
        c.label = label;
        c.value = labeled;
    } else if (LastWord(trimmed) == "PASS" || LastWord(trimmed) == "FAIL") {
        c.kind = ClassifiedLine::kVerdict;
        c.value = LastWord(trimmed);
        c.result = ParseResultLine(text);  // the Tx output power read back stands before its verdict
    } else if (IsHexRow(text)) {
        c.kind = ClassifiedLine::kHexRow;
    } else if ((c.result = ParseResultLine(text)).kind != ResultLine::kNone) {
        c.kind = c.result.kind == ResultLine::kValue       ? ClassifiedLine::kValue
                 : c.result.kind == ResultLine::kListEntry ? ClassifiedLine::kListEntry
                                                           : ClassifiedLine::kSpectrumRow;
        c.label = c.result.label;
    } else if (std::count(text.begin(), text.end(), '=') == 1 && SplitLabeledLine(text, label, labeled)) {
        c.kind = ClassifiedLine::kLabeledText;
        c.label = label;
        c.value = labeled;
    } else if (trimmed != kPause && IsHeading(trimmed)) {
        c.kind = ClassifiedLine::kHeading;
        c.label = trimmed.back() == ':' ? trimmed.substr(0, trimmed.size() - 1) : trimmed;
    } else {
        c.kind = ClassifiedLine::kText;
    }
    return c;
}

}  // namespace q7report

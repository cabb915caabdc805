#include "transcript.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <optional>

#include "printed_texts.h"
#include "result_lines.h"

namespace q7report {
namespace {

// What q7cal prints, as this reader recognises it (printed_texts.h).
const char kMenuBannerEdge[] = TEXT_MENU_BANNER_EDGE " ";
const char kHeading[] = TEXT_TEST_SEPARATOR TEXT_TESTING;
// How a command that went well ends: its SUCCESSFUL line, or for connecting
// and disconnecting, the line that says so.
const char *const kGoodEndings[] = {TEXT_SUCCESSFUL, TEXT_DEVICE_CONNECTED, TEXT_DEVICE_DISCONNECTED};
const char kSpectrum[] = "Rx spectrum";  // its rows, as ParseResultLine names them

// The automated run's seven groups, by the heading that each opens with.
struct Group {
    const char *heading;
    const char *name;
};
const Group kGroups[] = {
    {TEXT_CONFIGURATION_GROUP, "Configuration"},
    {TEXT_RX_GROUP, "Rx"},
    {TEXT_TX_GROUP, "Tx"},
    {TEXT_LOOPBACK_GROUP, "Loopback calibration"},
    {TEXT_OTHER_GROUP, "Other commands"},
    {TEXT_DSD_MANAGEMENT_GROUP, "DSD management"},
    {TEXT_DSD_READ_WRITE_GROUP, "DSD read/write"},
};
const size_t kGroupCount = std::size(kGroups);

// The run's PASS or FAIL lines, named by what each checks, in the order its
// section prints them; the same names from unit to unit, whatever values a
// unit restores. A section's further verdicts are named by position.
struct SectionChecks {
    const char *section;
    std::vector<const char *> names;
};
const SectionChecks kRunCheckNames[] = {
    {TEXT_BAND_SECTION, {"2500000 kHz, 10000 kHz", "2533500 kHz, 5000 kHz", "band restored"}},
    {TEXT_RX_GAIN_SECTION, {"Rx1 gain state", "Rx2 gain state"}},
    {TEXT_TX_ATTN_SECTION, {"attenuator set 1", "attenuator set 2"}},
    {TEXT_TX_POWER_SECTION, {"+20 dBm", "-20 dBm", "+10 dBm"}},
    {TEXT_TX_SWITCH_SECTION, {"antenna 1", "antenna 2", "antenna 1 again"}},
    {TEXT_OTHER_GROUP, {"LED write 0", "LED write 1"}},
    {TEXT_RFIC_WRITE_SECTION, {"write 0x0000", "write 0x0000 again", "write 0xFFFF", "saved value restored"}},
};

// The one command that opens with a question instead of its heading.
const char kNvmModeTest[] = "NVM Mode test";

bool Contains(const std::string &text, const char *part) { return text.find(part) != std::string::npos; }
bool StartsWith(const std::string &text, const char *prefix) { return text.rfind(prefix, 0) == 0; }
bool EndsWith(const std::string &text, const std::string &suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::string TrimRight(std::string text)
{
    text.erase(text.find_last_not_of(" \t") + 1);
    return text;
}

std::string LastWord(const std::string &line)
{
    std::string trimmed = TrimRight(line);
    return trimmed.substr(trimmed.find_last_of(" \t") + 1);
}

std::string Number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

// From "ERROR:" on: the text that names the failure.
std::string ErrorText(const std::string &line)
{
    size_t at = line.find(TEXT_ERROR);
    for (const std::string operation : {"READ ", "WRITE "})
        if (at >= operation.size() && line.compare(at - operation.size(), operation.size(), operation) == 0)
            return TrimRight(line.substr(at - operation.size()));
    return TrimRight(line.substr(at));
}

// "******** Tx Commands ********" -> "Tx Commands"; "" for any other line.
std::string MenuTitle(const std::string &line)
{
    const std::string edge = kMenuBannerEdge;
    const std::string closing = " " TEXT_MENU_BANNER_EDGE;
    if (line.size() <= edge.size() + closing.size() || !StartsWith(line, kMenuBannerEdge) || !EndsWith(line, closing))
        return "";
    return line.substr(edge.size(), line.size() - edge.size() - closing.size());
}

// A command's heading: "GetTxAttn:", "Set TR Switch:" or a lone name such as
// "ResetRxSpectrum"; never a prompt, a result line or a verdict.
bool IsHeading(const std::string &line)
{
    if (line.empty() || !std::isalpha(static_cast<unsigned char>(line[0])) || line == "PASS" || line == "FAIL")
        return false;
    bool colon = line.back() == ':';
    std::string name = colon ? line.substr(0, line.size() - 1) : line;
    if (name.find_first_of(":=?") != std::string::npos)
        return false;
    return colon || name.find(' ') == std::string::npos;
}

std::string HeadingName(const std::string &line)
{
    return line.back() == ':' ? line.substr(0, line.size() - 1) : line;
}

// A menu prompt followed by a typed answer ("ENTER OPTION : 9"): a terminal
// session recorded with its echo. Piped answers are never echoed.
bool ShowsTypedAnswer(const std::string &line)
{
    if (!StartsWith(line, TEXT_MENU_PROMPT))
        return false;
    std::string answer = Trim(line.substr(sizeof TEXT_MENU_PROMPT - 1));
    if (!answer.empty() && answer[0] == '-')
        answer.erase(0, 1);
    return !answer.empty() &&
           std::all_of(answer.begin(), answer.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
}

// A line of the device-mode stack, read with q7cal's own format; the first
// push follows the menu's prompt on its line. The record index, or -1 for
// any other line; the four values of the mode.
std::string AfterMenuPrompt(const std::string &line)
{
    return StartsWith(line, TEXT_MENU_PROMPT) ? line.substr(sizeof TEXT_MENU_PROMPT - 1) : line;
}

int PushIndex(const std::string &line)
{
    int index = -1;
    unsigned values[4];
    int read = std::sscanf(AfterMenuPrompt(line).c_str(), TEXT_PUSH_FORMAT, &index, &values[0], &values[1], &values[2],
                           &values[3]);
    return read == 5 ? index : -1;
}

int PopIndex(const std::string &line, unsigned values[4])
{
    int index = -1;
    int read = std::sscanf(line.c_str(), TEXT_POP_FORMAT, &index, &values[0], &values[1], &values[2], &values[3]);
    return read == 5 ? index : -1;
}

bool IsIdentityLabel(const std::string &label)
{
    for (const IdentityField &field : kIdentityFields)
        if (label == field.label)
            return true;
    return false;
}

// Reads a transcript line by line. Outside an automated run, the output
// between a group menu's prompt and the next menu is one command; inside a
// run, every PASS or FAIL line, every state the unit shows and every error
// is a check. Everywhere, every value line is a measurement, judged by its
// limits where it has any.
class Reader {
public:
    Reader(UnitRecord &record, const Limits &limits) : record_(record), limits_(limits) {}

    void Read(const std::string &line, double at)
    {
        lineNumber_++;
        at_ = at;
        record_.transcript += line + "\n";
        if (Contains(line, TEXT_CONNECTING) || Contains(line, TEXT_NO_INTERFACE))
            record_.isSession = true;
        if (ShowsTypedAnswer(line))
            record_.scripted = false;
        NoteIdentity(line);
        if (pendingModeCheck_ && NoteModeWarning(line))
            return;
        std::string title = MenuTitle(line);
        if (!title.empty()) {
            EnterMenu(title);
            return;
        }
        if (Contains(line, TEXT_INVALID_OPTION))
            NoteInvalidOption();
        if (run_.active) {
            ReadRunLine(line);
            return;
        }
        if (PushIndex(line) == 1) {
            StartRun();
            return;
        }
        std::string text = line;
        if (StartsWith(text, TEXT_MENU_PROMPT)) {
            text.erase(0, sizeof TEXT_MENU_PROMPT - 1);
            FinishMeasurement();
            commandOpen_ = menu_ != TEXT_MAIN_MENU && !menu_.empty();
            command_.clear();
        }
        if (commandOpen_ || menu_.empty()) {
            commandLines_.push_back({text, lineNumber_, at_});
            // The NVM mode test has no heading: its question opens it.
            if (commandOpen_ && command_.empty() && StartsWith(text, TEXT_NVM_MODE_QUESTION))
                command_ = kNvmModeTest;
            else if (commandOpen_ && command_.empty() && IsHeading(text))
                command_ = HeadingName(text);
            if (commandOpen_)
                ReadValues(text, "commands." + menu_, command_.empty() ? menu_ : command_);
        }
    }

    void Finish()
    {
        if (run_.active)
            FinishRun("the transcript ends inside the run");
        pendingModeCheck_ = false;
        FinishMeasurement();
        FinishCommand(true);
        // Whether the answers kept in step is judged only where something else was.
        if (record_.scripted && !outOfStep_ && !record_.checks.empty()) {
            Check inStep;
            inStep.classname = "session";
            inStep.name = "answers in step";
            inStep.line = lineNumber_;
            AddCheck(inStep, at_);
        }
        record_.seconds = at_;
    }

private:
    struct Line {
        std::string text;
        size_t number;
        double at;
    };

    struct Run {
        bool active = false;
        std::string classname;  // "automated.Tx"; "automated 2.Tx" for a transcript's second run
        size_t groupsSeen = 0;  // how many of kGroups have opened, in order
        std::string section = "start of run";
        std::string command;        // the heading of the command the section runs, if any
        size_t verdicts = 0;        // in the section
        size_t errors = 0;          // in the section
        size_t warnings = 0;        // in the section
        bool errorsExpected = false;
        std::string evidence;  // the section's lines since its last check
    };

    // ---- Checks and measurements, wherever they come from ----

    // A check decided at time `at`, which took the time since the check before it.
    void AddCheck(Check check, double at)
    {
        check.at = at;
        check.seconds = at - lastCheckAt_;
        lastCheckAt_ = at;
        record_.checks.push_back(std::move(check));
    }

    void NoteIdentity(const std::string &line)
    {
        std::string label, text;
        if (!SplitLabeledLine(line, label, text))
            return;
        for (size_t i = 0; i < kIdentityFieldCount; i++)
            if (label == kIdentityFields[i].label)
                record_.identity[i] = text;
    }

    // Every value line is a measurement; a list or the spectrum is one
    // measurement of all its lines, finished by the first line that is not
    // one of them.
    void ReadValues(const std::string &line, const std::string &classname, const std::string &command)
    {
        ResultLine values = ParseResultLine(line);
        // Spectrum rows follow the spectrum's length; a hex dump only looks like them.
        if (values.kind == ResultLine::kSpectrumRow && lastQuantity_ != TEXT_SPECTRUM_LENGTH && lastQuantity_ != kSpectrum)
            values = ResultLine();
        if (values.kind != ResultLine::kNone)
            lastQuantity_ = values.quantity;
        else if (!Trim(line).empty())
            lastQuantity_.clear();
        bool continues = pending_ && values.kind != ResultLine::kValue && values.kind != ResultLine::kNone &&
                         values.label == pending_->quantity;
        if (!continues)
            FinishMeasurement();
        if (values.kind == ResultLine::kNone || IsIdentityLabel(values.label))
            return;
        if (!pending_) {
            pending_ = Measurement();
            pending_->quantity = values.quantity;
            pending_->name = values.label;
            pending_->classname = classname;
            pending_->command = command;
            pending_->unit = values.unit;
            pending_->line = lineNumber_;
            pending_->isArray = values.isArray || values.kind != ResultLine::kValue;
            pendingEvidence_.clear();
        }
        pending_->values.insert(pending_->values.end(), values.values.begin(), values.values.end());
        pendingEvidence_ += line + "\n";
        if (values.kind == ResultLine::kValue)
            FinishMeasurement();
    }

    void FinishMeasurement()
    {
        if (!pending_)
            return;
        Measurement measurement = std::move(*pending_);
        pending_.reset();
        if (measurement.quantity == kSpectrum && !measurement.values.empty()) {
            // The spectrum's noise floor (its 10th percentile: the empty bins)
            // and its peak, each judged by limits of its own.
            std::vector<double> sorted = measurement.values;
            std::sort(sorted.begin(), sorted.end());
            Measurement floor = measurement, peak = measurement;
            floor.name = floor.quantity = "Rx spectrum noise floor";
            floor.values = {sorted[(sorted.size() - 1) / 10]};
            peak.name = peak.quantity = "Rx spectrum peak";
            peak.values = {sorted.back()};
            floor.isArray = peak.isArray = false;
            Record(std::move(measurement));
            Record(std::move(floor));
            Record(std::move(peak));
            return;
        }
        Record(std::move(measurement));
    }

    void Record(Measurement measurement)
    {
        size_t seen = ++measurementNames_[measurement.name];
        if (seen > 1)
            measurement.name += " #" + std::to_string(seen);
        if (const Limit *limit = limits_.Find(measurement.quantity)) {
            measurement.limit = *limit;
            JudgeLimits(measurement);
        }
        record_.measurements.push_back(std::move(measurement));
    }

    void JudgeLimits(Measurement &measurement)
    {
        const Limit &limit = *measurement.limit;
        Check check;
        check.classname = measurement.classname;
        check.name = measurement.command + ": " + measurement.name;
        check.line = measurement.line;
        check.evidence = pendingEvidence_;
        std::string limits = Number(limit.low) + " to " + Number(limit.high) + (limit.unit.empty() ? "" : " ") + limit.unit;
        if (measurement.unit != limit.unit) {
            check.message = measurement.name + " is in \"" + measurement.unit + "\", its limits in \"" + limit.unit + "\"";
        } else {
            for (size_t i = 0; i < measurement.values.size() && check.message.empty(); i++) {
                double value = measurement.values[i];
                if (value >= limit.low && value <= limit.high)
                    continue;
                std::string name = measurement.isArray ? measurement.name + "[" + std::to_string(i) + "]" : measurement.name;
                check.message = name + " = " + Number(value) + (measurement.unit.empty() ? "" : " ") +
                                measurement.unit + " is outside its limits " + limits;
            }
        }
        if (!check.message.empty()) {
            check.passed = measurement.withinLimits = false;
            check.type = "outside limits";
        }
        AddCheck(check, at_);
    }

    // A stray answer fell to a menu, which refused it: a script's answers no
    // longer meet the questions they were written for.
    void NoteInvalidOption()
    {
        if (!record_.scripted || outOfStep_)
            return;
        outOfStep_ = true;
        Check inStep;
        inStep.classname = "session";
        inStep.name = "answers in step";
        inStep.passed = false;
        inStep.type = "out of step";
        inStep.line = lineNumber_ - 1;  // the menu's prompt, which took the answer
        inStep.message = "answers out of step after line " + std::to_string(inStep.line);
        inStep.evidence = std::string(TEXT_MENU_PROMPT) + "\n" + TEXT_INVALID_OPTION + "\n";
        AddCheck(inStep, at_);
    }

    void EnterMenu(const std::string &title)
    {
        record_.isSession = true;
        if (run_.active)
            FinishRun("the run was left without its final Pop[ 0]");
        FinishMeasurement();
        FinishCommand(false);
        menu_ = title;
        commandOpen_ = false;
    }

    // ---- Interactive commands ----

    void FinishCommand(bool atEnd)
    {
        std::vector<Line> lines;
        lines.swap(commandLines_);
        while (!lines.empty() && TrimRight(lines.back().text).empty())
            lines.pop_back();
        while (!lines.empty() && TrimRight(lines.front().text).empty())
            lines.erase(lines.begin());
        if (lines.empty() || (lines.size() == 1 && lines[0].text == TEXT_INVALID_OPTION))
            return;
        // Before the first menu: only a failed connection is worth a case.
        bool startUp = menu_.empty();
        if (startUp && !Contains(lines.back().text, TEXT_NO_INTERFACE))
            return;

        Check command;
        command.isCommand = true;
        command.classname = startUp ? "start-up" : "commands." + menu_;
        std::string name = startUp ? "Connect device" : CommandName(lines);
        size_t seen = ++commandNames_[command.classname + "\n" + name];
        command.name = seen == 1 ? name : name + " #" + std::to_string(seen);
        for (const Line &line : lines)
            command.evidence += line.text + "\n";
        const Line *failing = nullptr;
        for (const Line &line : lines)
            if (Contains(line.text, TEXT_ERROR) || Contains(line.text, TEXT_WARNING) || HasVerifyErrors(line.text)) {
                failing = &line;
                break;
            }
        if (failing != nullptr) {
            command.passed = false;
            bool error = Contains(failing->text, TEXT_ERROR);
            command.type = error ? "ERROR" : Contains(failing->text, TEXT_WARNING) ? "WARNING" : "verify errors";
            command.message = error ? ErrorText(failing->text) : TrimRight(failing->text);
            command.line = failing->number;
        } else {
            command.line = lines.back().number;
            if (!EndsWell(lines.back().text)) {
                command.passed = false;
                command.type = "no SUCCESSFUL line";
                command.message = atEnd ? "the transcript ends inside the command"
                                        : "no SUCCESSFUL line: it ends with \"" + TrimRight(lines.back().text) + "\"";
            }
        }
        lastCheckAt_ = lines.front().at;  // a command takes from its first line to its last
        AddCheck(command, lines.back().at);
    }

    static bool EndsWell(const std::string &line)
    {
        for (const char *ending : kGoodEndings)
            if (EndsWith(TrimRight(line), ending))
                return true;
        return false;
    }

    static bool HasVerifyErrors(const std::string &line)
    {
        return EndsWith(line, TEXT_VERIFY_ERRORS) && std::strtoul(line.c_str(), nullptr, 10) != 0;
    }

    static std::string CommandName(const std::vector<Line> &lines)
    {
        if (StartsWith(lines[0].text, TEXT_NVM_MODE_QUESTION))
            return kNvmModeTest;
        // A heading may follow a first prompt (GetTxAttn asks for the transmitter first).
        for (size_t i = 0; i < lines.size() && i < 2; i++)
            if (IsHeading(lines[i].text))
                return HeadingName(lines[i].text);
        return TrimRight(lines[0].text.substr(0, 60));
    }

    // ---- Automated runs ----

    void StartRun()
    {
        commandLines_.clear();  // the run is the command's whole output
        commandOpen_ = false;
        FinishMeasurement();
        run_ = Run();
        run_.active = true;
        runs_++;
        run_.classname = runs_ == 1 ? "automated" : "automated " + std::to_string(runs_);
        lastCheckAt_ = at_;
    }

    std::string RunClass() const
    {
        return run_.groupsSeen == 0 ? run_.classname : run_.classname + "." + kGroups[run_.groupsSeen - 1].name;
    }

    void ReadRunLine(const std::string &line)
    {
        unsigned mode[4] = {1, 1, 1, 1};
        if (PushIndex(line) == 1) {  // a new run before this one popped
            FinishRun("the run was left without its final Pop[ 0]");
            StartRun();
            return;
        }
        if (PopIndex(line, mode) == 0) {
            FinishRun(run_.groupsSeen == kGroupCount
                          ? ""
                          : std::string("the run ended before the ") + kGroups[run_.groupsSeen].name + " group");
            CheckModeRestored(line, mode);
            return;
        }
        if (StartsWith(line, kHeading)) {
            FinishMeasurement();
            OpenSection(line.substr(sizeof kHeading - 1));
            return;
        }
        run_.evidence += line + "\n";
        if (IsHeading(line))
            run_.command = HeadingName(line);
        ReadValues(line, RunClass(), run_.command.empty() ? run_.section : run_.command);
        if (Contains(line, TEXT_ERRORS_EXPECTED))
            run_.errorsExpected = true;
        bool error = Contains(line, TEXT_ERROR);
        if (run_.errorsExpected && StartsWith(line, TEXT_PIN_WRITE) && !Contains(line, TEXT_SKIPPED_PIN)) {
            AddRunCheck(error ? "" : "the write succeeded after the write permission was set to 0",
                        "GPIO " + std::to_string(std::strtoul(line.c_str() + sizeof TEXT_PIN_WRITE - 1, nullptr, 10)) +
                            " write refused",
                        error ? "" : "missing expected error", true);
        } else if (error) {
            AddRunCheck(ErrorText(line), "error #" + std::to_string(++run_.errors), "ERROR", false);
        } else if (Contains(line, TEXT_WARNING)) {
            AddRunCheck(TrimRight(line), "warning #" + std::to_string(++run_.warnings), "WARNING", false);
        } else if (Contains(line, TEXT_CHECKSUM_IS) && EndsWith(TrimRight(line), TEXT_VALID)) {
            // A state is judged on its own line.
            run_.evidence = line + "\n";
            std::string block = Trim(line.substr(0, line.find(TEXT_CHECKSUM_IS)));
            bool valid = !Contains(line, TEXT_NOT_VALID);
            AddRunCheck(valid ? "" : Trim(line), block + " checksum", "NOT VALID", false);
        } else if (Contains(line, TEXT_CALIBRATION_STATE)) {
            run_.evidence = line + "\n";
            bool valid =
                TrimRight(line.substr(line.find(TEXT_CALIBRATION_STATE) + sizeof TEXT_CALIBRATION_STATE - 1)) == TEXT_VALID;
            AddRunCheck(valid ? "" : Trim(line), "Calibration state", "NOT VALID", false);
        } else {
            std::string verdict = LastWord(line);
            if (verdict == "PASS" || verdict == "FAIL")
                AddRunCheck(verdict == "PASS" ? "" : TrimRight(line), VerdictName(run_.verdicts++), "FAIL", false);
        }
    }

    std::string VerdictName(size_t index) const
    {
        for (const SectionChecks &section : kRunCheckNames)
            if (run_.section == section.section && index < section.names.size())
                return section.names[index];
        return "#" + std::to_string(index + 1);
    }

    void OpenSection(const std::string &heading)
    {
        if (run_.groupsSeen < kGroupCount && heading == kGroups[run_.groupsSeen].heading)
            run_.groupsSeen++;
        run_.section = heading;
        run_.command.clear();
        run_.verdicts = run_.errors = run_.warnings = 0;
        run_.errorsExpected = false;
        run_.evidence.clear();
    }

    // A check of the current section; `failure` empty: it passed.
    void AddRunCheck(const std::string &failure, const std::string &item, const char *type, bool expectedError)
    {
        Check check;
        check.classname = RunClass();
        check.name = run_.section + ": " + item;
        check.passed = failure.empty();
        check.expectedError = expectedError;
        if (!check.passed)
            check.type = type;
        check.message = failure;
        check.evidence.swap(run_.evidence);
        check.line = lineNumber_;
        AddCheck(check, at_);
    }

    // `incomplete` empty: the run went through every group to its final pop.
    void FinishRun(const std::string &incomplete)
    {
        FinishMeasurement();
        Check complete;
        complete.classname = run_.classname;
        complete.name = "run complete";
        complete.passed = incomplete.empty();
        complete.type = incomplete.empty() ? "" : "incomplete";
        complete.message = incomplete;
        complete.line = lineNumber_;
        AddCheck(complete, at_);
        run_.active = false;
    }

    // The final pop puts the device back in the base record's mode (Normal,
    // nothing else set); q7cal reads the mode back and warns on the next
    // line when the device did not take it.
    void CheckModeRestored(const std::string &line, const unsigned values[4])
    {
        Check restored;
        restored.classname = run_.classname;
        restored.name = "device mode restored";
        restored.evidence = line + "\n";
        restored.line = lineNumber_;
        if (values[0] != 0 || values[1] != 0 || values[2] != 0 || values[3] != 0) {
            restored.passed = false;
            restored.type = "WARNING";
            restored.message = "the final pop did not set the Normal mode: " + TrimRight(line);
        }
        modeCheck_ = record_.checks.size();
        AddCheck(restored, at_);
        pendingModeCheck_ = true;
    }

    // True when `line` was the warning, or a blank line before it.
    bool NoteModeWarning(const std::string &line)
    {
        if (TrimRight(line).empty())
            return true;
        pendingModeCheck_ = false;
        if (!Contains(line, TEXT_MODE_NOT_RESTORED))
            return false;
        Check &restored = record_.checks[modeCheck_];
        restored.passed = false;
        restored.type = "WARNING";
        restored.message = TrimRight(line);
        restored.evidence += line + "\n";
        restored.line = lineNumber_;
        return true;
    }

    UnitRecord &record_;
    const Limits &limits_;
    size_t lineNumber_ = 0;
    double at_ = 0;
    double lastCheckAt_ = 0;
    std::string menu_;  // the title of the menu shown last; "" before the first
    bool commandOpen_ = false;
    std::string command_;  // the open command's heading
    std::vector<Line> commandLines_;
    std::map<std::string, size_t> commandNames_;      // how often each command ran
    std::map<std::string, size_t> measurementNames_;  // how often each value was printed
    std::optional<Measurement> pending_;              // a list or spectrum still being read
    std::string pendingEvidence_;
    std::string lastQuantity_;  // of the last value line, while no other line came between
    size_t runs_ = 0;
    Run run_;
    bool pendingModeCheck_ = false;  // the line after the final pop may warn
    size_t modeCheck_ = 0;
    bool outOfStep_ = false;
};

// Control characters and bytes beyond ASCII become '?': q7cal prints ASCII,
// and the writers then need no care for invalid text.
std::string Printable(std::string line)
{
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    for (char &c : line) {
        unsigned char byte = static_cast<unsigned char>(c);
        if ((byte < 0x20 && c != '\t') || byte >= 0x7F)
            c = '?';
    }
    return line;
}

}  // namespace

UnitRecord JudgeTranscript(const std::vector<TimedLine> &lines, const Limits &limits)
{
    UnitRecord record;
    Reader reader(record, limits);
    for (const TimedLine &line : lines)
        reader.Read(Printable(line.text), line.at);
    reader.Finish();
    return record;
}

}  // namespace q7report

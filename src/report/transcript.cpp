#include "transcript.h"

#include <cctype>
#include <cstdlib>
#include <iterator>

namespace q7report {
namespace {

// What q7cal prints, as this reader recognises it.
const char kConnecting[] = "Trying to open handle to Device...";
const char kNoInterface[] = "Cal API interface";  // "ERROR: Unable to open a Local Cal API interface"
const char kMenuPrompt[] = "ENTER OPTION : ";
const char kMenuBannerEdge[] = "******** ";
const char kMainMenu[] = "Cal API Main Menu";
const char kInvalidOption[] = "Sorry. Invalid option selected.";
const char kRunStart[] = "Push[ 1] - set device mode";
const char kRunEnd[] = "Pop[ 0] - set device mode";
const char kHeading[] = "------------- Testing ";
const char kErrorsExpected[] = "errors are expected";
const char kPinWrite[] = "Setting GPIO ";
const char kSkippedPin[] = "Skipping input pin";
const char kError[] = "ERROR:";  // also in "READ ERROR:" and "WRITE ERROR:"
const char kWarning[] = "WARNING:";
const char kVerifyErrors[] = " verify errors.";
// How a command that went well ends: its SUCCESSFUL line, or for connecting
// and disconnecting, the line that says so.
const char *const kGoodEndings[] = {" was SUCCESSFUL.", "     Device connected.", "     Device disconnected."};

// The automated run's seven groups, by the heading that each opens with.
struct Group {
    const char *heading;
    const char *name;
};
const Group kGroups[] = {
    {"CONFIGURATION COMMAND GROUP", "Configuration"},
    {"GetRxAntConfig and SetRxAntConfig", "Rx"},
    {"TX COMMAND GROUP", "Tx"},
    {"LOOPBACK COMMAND GROUP", "Loopback calibration"},
    {"ReadGPIOState, SetGPIOConfiguration, and SetGPIOPinState", "Other commands"},
    {"DSD Management Commands", "DSD management"},
    {"ReadDSDBytes", "DSD read/write"},
};
const size_t kGroupCount = std::size(kGroups);

// The one command that opens with a question instead of its heading.
const char kNvmModeQuestion[] = "Enter interface type";
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

// From "ERROR:" on: the text that names the failure.
std::string ErrorText(const std::string &line)
{
    size_t at = line.find(kError);
    for (const std::string operation : {"READ ", "WRITE "})
        if (at >= operation.size() && line.compare(at - operation.size(), operation.size(), operation) == 0)
            return TrimRight(line.substr(at - operation.size()));
    return TrimRight(line.substr(at));
}

// "******** Tx Commands ********" -> "Tx Commands"; "" for any other line.
std::string MenuTitle(const std::string &line)
{
    const std::string edge = kMenuBannerEdge;
    const std::string closing = " ********";
    if (line.size() <= edge.size() + closing.size() || !StartsWith(line, kMenuBannerEdge) || !EndsWith(line, closing))
        return "";
    return line.substr(edge.size(), line.size() - edge.size() - closing.size());
}

// A command's heading: "GetTxAttn:", "Set TR Switch:" or a lone name such as
// "ResetRxSpectrum"; never a prompt or a result line.
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

// Reads a transcript line by line. Outside an automated run, the output
// between a group menu's prompt and the next menu is one command; inside a
// run, every PASS or FAIL line is a check, and every error one more.
class Reader {
public:
    explicit Reader(Transcript &transcript) : transcript_(transcript) {}

    void Read(std::string line)
    {
        lineNumber_++;
        if (Contains(line, kConnecting) || Contains(line, kNoInterface))
            transcript_.isSession = true;
        std::string title = MenuTitle(line);
        if (!title.empty()) {
            EnterMenu(title);
            return;
        }
        if (run_.active) {
            ReadRunLine(line);
            return;
        }
        if (Contains(line, kRunStart)) {
            StartRun();
            return;
        }
        if (StartsWith(line, kMenuPrompt)) {
            line.erase(0, sizeof kMenuPrompt - 1);
            commandOpen_ = menu_ != kMainMenu && !menu_.empty();
        }
        if (commandOpen_ || menu_.empty())
            commandLines_.push_back({line, lineNumber_});
    }

    void Finish()
    {
        if (run_.active)
            FinishRun("the transcript ends inside the run");
        FinishCommand(true);
    }

private:
    struct Line {
        std::string text;
        size_t number;
    };

    struct Run {
        bool active = false;
        Suite suite;
        size_t groupsSeen = 0;  // how many of kGroups have opened, in order
        std::string group;
        std::string section = "start of run";
        size_t verdicts = 0;        // in the section
        size_t errors = 0;          // in the section
        size_t expectedErrors = 0;  // in the section
        bool errorsExpected = false;
        std::string evidence;  // the section's lines since its last verdict
    };

    void EnterMenu(const std::string &title)
    {
        transcript_.isSession = true;
        if (run_.active)
            FinishRun("the run was left without its final Pop[ 0]");
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
        if (lines.empty() || (lines.size() == 1 && lines[0].text == kInvalidOption))
            return;
        // Before the first menu: only a failed connection is worth a case.
        bool startUp = menu_.empty();
        if (startUp && !Contains(lines.back().text, kNoInterface))
            return;

        TestCase command;
        command.group = startUp ? "start-up" : menu_;
        command.name = startUp ? "Connect device" : CommandName(lines);
        command.name += " #" + std::to_string(++commands_);
        for (const Line &line : lines)
            command.output += line.text + "\n";
        const Line *failing = nullptr;
        for (const Line &line : lines)
            if (Contains(line.text, kError) || Contains(line.text, kWarning) || HasVerifyErrors(line.text)) {
                failing = &line;
                break;
            }
        if (failing != nullptr) {
            command.passed = false;
            command.message = Contains(failing->text, kError) ? ErrorText(failing->text) : TrimRight(failing->text);
            command.line = failing->number;
        } else {
            command.line = lines.back().number;
            if (!EndsWell(lines.back().text)) {
                command.passed = false;
                command.message = atEnd ? "the transcript ends inside the command"
                                        : "no SUCCESSFUL line: it ends with \"" + TrimRight(lines.back().text) + "\"";
            }
        }
        CommandSuite().cases.push_back(command);
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
        return EndsWith(line, kVerifyErrors) && std::strtoul(line.c_str(), nullptr, 10) != 0;
    }

    static std::string CommandName(const std::vector<Line> &lines)
    {
        if (StartsWith(lines[0].text, kNvmModeQuestion))
            return kNvmModeTest;
        // A heading may follow a first prompt (GetTxAttn asks for the transmitter first).
        for (size_t i = 0; i < lines.size() && i < 2; i++)
            if (IsHeading(lines[i].text))
                return lines[i].text.back() == ':' ? lines[i].text.substr(0, lines[i].text.size() - 1)
                                                   : lines[i].text;
        return TrimRight(lines[0].text.substr(0, 60));
    }

    Suite &CommandSuite()
    {
        for (Suite &suite : transcript_.suites)
            if (!suite.automatedRun)
                return suite;
        transcript_.suites.push_back({"commands", false, {}});
        return transcript_.suites.back();
    }

    // ---- Automated runs ----

    void StartRun()
    {
        commandLines_.clear();  // the run is the command's whole output
        commandOpen_ = false;
        run_ = Run();
        run_.active = true;
        run_.suite.name = "automated run " + std::to_string(++runs_);
        run_.suite.automatedRun = true;
    }

    void ReadRunLine(const std::string &line)
    {
        if (Contains(line, kRunStart)) {  // a new run before this one popped
            FinishRun("the run was left without its final Pop[ 0]");
            StartRun();
            return;
        }
        if (Contains(line, kRunEnd)) {
            FinishRun(run_.groupsSeen == kGroupCount
                          ? ""
                          : std::string("the run ended before the ") + kGroups[run_.groupsSeen].name + " group");
            return;
        }
        if (StartsWith(line, kHeading)) {
            OpenSection(line.substr(sizeof kHeading - 1));
            return;
        }
        run_.evidence += line + "\n";
        if (Contains(line, kErrorsExpected))
            run_.errorsExpected = true;
        bool error = Contains(line, kError);
        if (run_.errorsExpected && StartsWith(line, kPinWrite) && !Contains(line, kSkippedPin)) {
            AddRunCase(error ? "" : "the write succeeded after the write permission was set to 0",
                       ": expected error #" + std::to_string(++run_.expectedErrors), true);
        } else if (error) {
            AddRunCase(ErrorText(line), ": error #" + std::to_string(++run_.errors), false);
        } else {
            std::string verdict = LastWord(line);
            if (verdict == "PASS" || verdict == "FAIL")
                AddRunCase(verdict == "PASS" ? "" : TrimRight(line), " #" + std::to_string(++run_.verdicts), false);
        }
    }

    void OpenSection(const std::string &heading)
    {
        if (run_.groupsSeen < kGroupCount && heading == kGroups[run_.groupsSeen].heading)
            run_.group = kGroups[run_.groupsSeen++].name;
        run_.section = heading;
        run_.verdicts = run_.errors = run_.expectedErrors = 0;
        run_.errorsExpected = false;
        run_.evidence.clear();
    }

    // A case of the current section; `failure` empty: it passed.
    void AddRunCase(const std::string &failure, const std::string &position, bool expectedError)
    {
        TestCase check;
        check.group = run_.group;
        check.name = run_.section + position;
        check.passed = failure.empty();
        check.expectedError = expectedError;
        check.message = failure;
        check.output.swap(run_.evidence);
        check.line = lineNumber_;
        run_.suite.cases.push_back(check);
    }

    // `incomplete` empty: the run went through every group to its final pop.
    void FinishRun(const std::string &incomplete)
    {
        if (!incomplete.empty()) {
            TestCase complete;
            complete.name = "run complete";
            complete.passed = false;
            complete.message = incomplete;
            complete.line = lineNumber_;
            run_.suite.cases.push_back(complete);
        }
        transcript_.suites.push_back(run_.suite);
        run_ = Run();
    }

    Transcript &transcript_;
    size_t lineNumber_ = 0;
    std::string menu_;  // the title of the menu shown last; "" before the first
    bool commandOpen_ = false;
    std::vector<Line> commandLines_;
    size_t commands_ = 0;
    size_t runs_ = 0;
    Run run_;
};

// Control characters and bytes beyond ASCII become '?': q7cal prints ASCII,
// and the JUnit and JSON writers then need no care for invalid text.
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

Transcript JudgeTranscript(std::istream &in, const std::string &source)
{
    Transcript transcript;
    transcript.source = source;
    Reader reader(transcript);
    for (std::string line; std::getline(in, line);)
        reader.Read(Printable(line));
    reader.Finish();
    return transcript;
}

Totals CountCases(const std::vector<Transcript> &transcripts)
{
    Totals totals;
    for (const Transcript &transcript : transcripts)
        for (const Suite &suite : transcript.suites)
            for (const TestCase &one : suite.cases) {
                if (!suite.automatedRun) {
                    totals.commands++;
                    totals.commandsPassed += one.passed;
                } else if (one.expectedError && one.passed) {
                    totals.expectedErrors++;
                } else {
                    totals.checks++;
                    totals.checksPassed += one.passed;
                }
            }
    return totals;
}

}  // namespace q7report

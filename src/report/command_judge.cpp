// Interactive commands, judged by how they end and by the states they show.

#include "judges.h"
#include "printed_texts.h"

namespace q7report {
namespace {

// The one command that opens with a question instead of its heading; its
// checksum states show what it does to the DSD buffer, not the unit's store.
const char kNvmModeTest[] = "NVM Mode test";

// q7cal prints the count with %u: only "0 verify errors." says there were
// none, and a count that cannot be read does not.
bool HasVerifyErrors(const std::string &line)
{
    return EndsWith(line, TEXT_VERIFY_ERRORS) && line != "0" TEXT_VERIFY_ERRORS;
}

}  // namespace

void CommandJudge::Open(const std::string &menu)
{
    menu_ = menu;
    Discard();
}

void CommandJudge::Discard()
{
    command_.clear();
    lines_.clear();
    shownLines_ = 0;
}

void CommandJudge::ReadStartUp(const ClassifiedLine &line)
{
    lines_.push_back({line.text, judgement_.lineNumber, judgement_.at});
}

void CommandJudge::Read(const ClassifiedLine &line)
{
    lines_.push_back({line.text, judgement_.lineNumber, judgement_.at});
    // The heading opens the command, or follows its first prompt (GetTxAttn
    // asks for the transmitter first).
    if (line.kind != ClassifiedLine::kBlank && ++shownLines_ <= 2 && command_.empty()) {
        if (StartsWith(line.text, TEXT_NVM_MODE_QUESTION))
            command_ = kNvmModeTest;
        else if (line.kind == ClassifiedLine::kHeading)
            command_ = line.label;
    }
    // A checksum or the calibration shown NOT VALID fails wherever it shows.
    bool judgedState = line.kind == ClassifiedLine::kState && line.label != TEXT_SYNC_STATUS;
    if (!judgedState || command_ == kNvmModeTest)
        return;
    Check state;
    state.classname = "commands." + menu_;
    state.name = judgement_.UniqueName(state.classname, (command_.empty() ? menu_ : command_) + ": " + line.label);
    state.evidence = line.text + "\n";
    state.line = judgement_.lineNumber;
    if (line.value != TEXT_VALID) {
        state.passed = false;
        state.type = "NOT VALID";
        state.message = StateText(line);
    }
    judgement_.Add(state);
}

void CommandJudge::Finish(bool atTranscriptEnd)
{
    std::vector<Line> lines;
    lines.swap(lines_);
    std::string command;
    command.swap(command_);
    shownLines_ = 0;
    while (!lines.empty() && TrimRight(lines.back().text).empty())
        lines.pop_back();
    while (!lines.empty() && TrimRight(lines.front().text).empty())
        lines.erase(lines.begin());
    if (lines.empty() || (lines.size() == 1 && lines[0].text == TEXT_INVALID_OPTION))
        return;
    // Before the first menu: only a failed connection is worth a case.
    bool startUp = menu_.empty();
    if (startUp && lines.back().text.find(TEXT_NO_INTERFACE) == std::string::npos)
        return;

    Check check;
    check.isCommand = true;
    check.classname = startUp ? "start-up" : "commands." + menu_;
    std::string name = startUp ? "Connect device" : command;
    if (name.empty())  // a command without a heading: named by its first line
        name = TrimRight(lines[0].text.substr(0, 60));
    check.name = judgement_.UniqueName(check.classname, name);
    for (const Line &line : lines)
        check.evidence += line.text + "\n";
    const Line *failing = nullptr;
    ClassifiedLine failure;
    for (const Line &line : lines) {
        failure = Classify(line.text);
        if (failure.kind == ClassifiedLine::kError || failure.kind == ClassifiedLine::kWarning ||
            HasVerifyErrors(line.text)) {
            failing = &line;
            break;
        }
    }
    if (failing != nullptr) {
        check.passed = false;
        check.type = failure.kind == ClassifiedLine::kError     ? "ERROR"
                     : failure.kind == ClassifiedLine::kWarning ? "WARNING"
                                                                : "verify errors";
        check.message = failure.kind == ClassifiedLine::kError ? failure.value : TrimRight(failing->text);
        check.line = failing->number;
    } else {
        check.line = lines.back().number;
        if (Classify(lines.back().text).kind != ClassifiedLine::kSuccessful) {
            check.passed = false;
            check.type = "no SUCCESSFUL line";
            check.message = atTranscriptEnd ? "the transcript ends inside the command"
                                            : "no SUCCESSFUL line: it ends with \"" + TrimRight(lines.back().text) + "\"";
        }
    }
    judgement_.lastCheckAt = lines.front().at;  // a command takes from its first line to its last
    double at = judgement_.at;
    judgement_.at = lines.back().at;
    judgement_.Add(check);
    judgement_.at = at;
}

}  // namespace q7report

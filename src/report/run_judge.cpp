// The automated run, judged against its plan: a closed world, where what the
// plan names must be there and what the reader does not know fails.
#include <algorithm>
#include <cstdlib>
#include <set>

#include "judges.h"
#include "printed_texts.h"
#include "run_plan.h"

namespace q7report {
namespace {

const char *const kBlockNames[] = {TEXT_DSD_BLOCK_NAMES};

// The labels a run's "label = ..." lines may carry.
const std::set<std::string> &KnownLabels()
{
    static const std::set<std::string> labels = [] {
        std::set<std::string> known(std::begin(kRunShownLabels), std::end(kRunShownLabels));
        for (const RunItem &item : kRunItems)
            known.insert(item.name);
        for (const IdentityField &field : kIdentityFields)
            known.insert(field.label);
        for (const char *block : kBlockNames)
            known.insert(Trim(block) + " checksum");
        return known;
    }();
    return labels;
}

bool IsShownText(const std::string &trimmed)
{
    return std::any_of(std::begin(kRunShownTexts), std::end(kRunShownTexts), [&](const char *text) {
        return StartsWith(trimmed, text) || EndsWith(trimmed, text);
    });
}

size_t SectionIndex(const std::string &title)
{
    for (size_t i = 0; i < kRunSectionCount; i++)
        if (title == kRunSections[i].title)
            return i;
    return kRunSectionCount;
}

bool IsGroupHeading(size_t section) { return kRunSections[section].title == kRunGroups[kRunSections[section].group].heading; }

Check Failed(const std::string &message, const std::string &type)
{
    Check check;
    check.passed = false;
    check.type = type;
    check.message = message;
    return check;
}

// "IsSync: Sync status": the check of a planned item, by the command or section that prints it.
std::string ItemName(const RunItem &item) { return std::string(item.command ? item.command : item.section) + ": " + item.name; }

const char *GroupName(const RunItem &item) { return kRunGroups[kRunSections[SectionIndex(item.section)].group].name; }

// What a missing item of each kind was not.
const char *NotSeen(RunItemKind kind)
{
    return kind == kRunVerdict || kind == kRunState || kind == kRunRefusal ? "not checked" : "not measured";
}

}  // namespace

RunJudge::RunJudge(Judgement &judgement, int number)
    : judgement_(judgement),
      classname_(number == 1 ? "automated" : "automated " + std::to_string(number)),
      section_(kRunSectionCount),
      itemChecks_(kRunItemCount, -1),
      itemLines_(kRunItemCount, 0)
{
}

std::string RunJudge::Classname() const
{
    return section_ == kRunSectionCount ? classname_
                                        : classname_ + "." + kRunGroups[kRunSections[section_].group].name;
}

std::string RunJudge::Section() const
{
    return section_ == kRunSectionCount ? "start of run" : kRunSections[section_].title;
}

std::string RunJudge::Place() const { return command_.empty() ? Section() : command_; }

// A check of the current section, judged on its own evidence or else on the
// section's lines since its last check.
size_t RunJudge::AddCheck(Check check)
{
    check.classname = Classname();
    if (check.evidence.empty()) {
        check.evidence.swap(evidence_);
        evidence_.clear();
    }
    if (check.line == 0)
        check.line = judgement_.lineNumber;
    return judgement_.Add(std::move(check));
}

std::optional<size_t> RunJudge::Item(int kind, const std::string &name) const
{
    if (section_ == kRunSectionCount)
        return std::nullopt;
    for (size_t i = 0; i < kRunItemCount; i++) {
        const RunItem &item = kRunItems[i];
        bool kindMatches = kind < 0 ? item.kind != kRunVerdict && item.kind != kRunState && item.kind != kRunRefusal
                                    : item.kind == kind;
        if (kindMatches && name == item.name && SectionIndex(item.section) == section_)
            return i;
    }
    return std::nullopt;
}

// The check of a planned item, seen now, judged as `check` says.
void RunJudge::ItemCheck(size_t item, Check check)
{
    const RunItem &planned = kRunItems[item];
    check.name = ItemName(planned);
    check.expectedError = planned.kind == kRunRefusal && check.passed;
    itemLines_[item] = judgement_.lineNumber;
    itemChecks_[item] = static_cast<long>(AddCheck(std::move(check)));
}

// A planned item shown a second time: the unit printed what it should once.
void RunJudge::MarkRepeated(size_t item)
{
    Check &check = judgement_.record.checks[static_cast<size_t>(itemChecks_[item])];
    check.passed = check.marginal = check.expectedError = false;
    check.type = "repeated";
    check.message = std::string(kRunItems[item].kind == kRunVerdict ? "checked" : "shown") + " twice: " +
                    kRunItems[item].name + " (" + GroupName(kRunItems[item]) + " group, lines " +
                    std::to_string(itemLines_[item]) + " and " + std::to_string(judgement_.lineNumber) + ")";
}

void RunJudge::Judge(ReadMeasurement &read)
{
    Measurement &measurement = read.measurement;
    std::optional<size_t> item = Item(-1, read.label);
    if (!item) {
        judgement_.JudgeByLimits(measurement, read.evidence);
        return;
    }
    if (itemChecks_[*item] >= 0) {
        MarkRepeated(*item);
        return;
    }
    const RunItem &planned = kRunItems[*item];
    const std::string notMeasured = std::string("not measured: ") + planned.name + " (" + GroupName(planned) +
                                    " group): line ";
    size_t expected = planned.count;
    std::string failure;
    if (planned.lengthLabel != nullptr) {
        auto length = lengths_.find(planned.lengthLabel);
        if (length == lengths_.end() || !(length->second >= 0 && length->second <= 1e6))
            failure = notMeasured + std::to_string(measurement.line) + " follows no \"" + planned.lengthLabel + "\" line";
        else
            expected = static_cast<size_t>(length->second);
    }
    if (failure.empty() && read.brokenLine != 0)
        failure = notMeasured + std::to_string(read.brokenLine) + " " + read.broken;
    else if (failure.empty() && measurement.values.size() != expected)
        failure = notMeasured + std::to_string(measurement.line) + " gives " +
                  std::to_string(measurement.values.size()) + (planned.kind == kRunList ? " entries, " : " values, ") +
                  std::to_string(expected) + " planned";
    const Limit *limit = planned.quantity ? judgement_.limits.Find(planned.quantity) : nullptr;
    Check check = !failure.empty() ? Failed(failure, "not measured")
                  : limit != nullptr ? JudgeLimits(measurement, *limit)
                                     : Check();
    check.evidence = read.evidence;
    check.line = measurement.line;
    ItemCheck(*item, std::move(check));
}

bool RunJudge::Known(const ClassifiedLine &line) const
{
    switch (line.kind) {
    case ClassifiedLine::kBlank:
    case ClassifiedLine::kPush:
    case ClassifiedLine::kPop:
    case ClassifiedLine::kSuccessful:
    case ClassifiedLine::kHexRow:
    case ClassifiedLine::kSpectrumRow:
        return true;
    case ClassifiedLine::kValue:
    case ClassifiedLine::kListEntry:
    case ClassifiedLine::kLabeledText:
        return KnownLabels().count(line.label) != 0;
    case ClassifiedLine::kHeading:
        return IsShownText(Trim(line.text));
    case ClassifiedLine::kText:
        // The GP ADC's readings, split over lines by the errors between them, are hexadecimal.
        return IsShownText(Trim(line.text)) || Trim(line.text).find_first_not_of("0123456789ABCDEF ") == std::string::npos;
    default:
        return false;
    }
}

void RunJudge::Unexpected(const ClassifiedLine &line)
{
    if (unexpectedSaid_)
        return;
    unexpectedSaid_ = true;
    Check check;
    check.name = Section() + ": unexpected line";
    check.passed = false;
    check.type = "unexpected line";
    check.message = "unexpected line " + std::to_string(judgement_.lineNumber) + ": " + Trim(line.text);
    check.evidence = line.text + "\n";
    AddCheck(std::move(check));
}

void RunJudge::Read(const ClassifiedLine &line)
{
    evidence_ += line.text + "\n";
    if (line.kind == ClassifiedLine::kSectionHeading) {
        size_t section = SectionIndex(line.label);
        // Sections come in the plan's order, each once.
        if (section == kRunSectionCount || section < nextSection_)
            Unexpected(line);
        else
            OpenSection(section);
        return;
    }
    if (line.kind == ClassifiedLine::kHeading && IsShownText(Trim(line.text)))
        command_ = line.label;
    if (line.kind == ClassifiedLine::kValue)
        lengths_[line.label] = line.result.values.front();
    if (line.kind == ClassifiedLine::kText && StartsWith(Trim(line.text), TEXT_ERRORS_EXPECTED))
        errorsExpected_ = true;

    // The GPIO writes after the write permission is withdrawn must be refused.
    const std::string announcement = line.kind == ClassifiedLine::kError ? line.before : line.text;
    if (errorsExpected_ && StartsWith(announcement, TEXT_PIN_WRITE) &&
        announcement.find(TEXT_SKIPPED_PIN) == std::string::npos) {
        std::string pin =
            std::to_string(std::strtoul(announcement.c_str() + sizeof TEXT_PIN_WRITE - 1, nullptr, 10));
        std::optional<size_t> item;
        for (size_t i = 0; i < kRunItemCount && !item; i++)
            if (kRunItems[i].kind == kRunRefusal && pin == kRunItems[i].expected &&
                SectionIndex(kRunItems[i].section) == section_)
                item = i;
        if (!item)
            Unexpected(line);
        else if (itemChecks_[*item] >= 0)
            MarkRepeated(*item);
        else
            ItemCheck(*item, line.kind == ClassifiedLine::kError
                                 ? Check()
                                 : Failed("the write succeeded after the write permission was set to 0",
                                          "missing expected error"));
        return;
    }

    switch (line.kind) {
    case ClassifiedLine::kError: {
        Check error;
        error.name = Section() + ": error #" + std::to_string(++errors_);
        error.passed = false;
        error.type = "ERROR";
        error.message = line.value;
        AddCheck(std::move(error));
        return;
    }
    case ClassifiedLine::kWarning: {
        Check warning;
        warning.name = Section() + ": warning #" + std::to_string(++warnings_);
        warning.passed = false;
        warning.type = "WARNING";
        warning.message = TrimRight(line.text);
        AddCheck(std::move(warning));
        return;
    }
    case ClassifiedLine::kVerdict: {
        // A section's verdicts are named by the plan, in the order it prints them.
        size_t index = verdicts_++;
        std::optional<size_t> item;
        for (size_t i = 0, seen = 0; i < kRunItemCount && !item; i++)
            if (kRunItems[i].kind == kRunVerdict && SectionIndex(kRunItems[i].section) == section_ && seen++ == index)
                item = i;
        if (!item)
            Unexpected(line);
        else
            ItemCheck(*item, line.value == "PASS" ? Check() : Failed(TrimRight(line.text), "FAIL"));
        return;
    }
    case ClassifiedLine::kState: {
        // A state is judged on its own line.
        evidence_ = line.text + "\n";
        std::optional<size_t> item = Item(kRunState, line.label);
        if (item && itemChecks_[*item] >= 0) {
            MarkRepeated(*item);
        } else if (item) {
            bool healthy = line.value == kRunItems[*item].expected;
            ItemCheck(*item, healthy ? Check()
                                     : Failed(StateText(line), line.label == TEXT_SYNC_STATUS ? "no sync" : "NOT VALID"));
        } else if (line.label != TEXT_SYNC_STATUS) {
            Unexpected(line);
        }
        return;
    }
    case ClassifiedLine::kLabeledText:
        // A planned value that does not read as one.
        if (std::optional<size_t> item = Item(-1, line.label)) {
            if (itemChecks_[*item] >= 0)
                MarkRepeated(*item);
            else
                ItemCheck(*item, Failed(std::string("not measured: ") + line.label + " (" + GroupName(kRunItems[*item]) +
                                            " group): line " + std::to_string(judgement_.lineNumber) + " reads \"" +
                                            line.value + "\"",
                                        "not measured"));
            return;
        }
        break;
    default:
        break;
    }
    if (!Known(line))
        Unexpected(line);
}

void RunJudge::OpenSection(size_t section)
{
    CloseSections(section);
    section_ = section;
    nextSection_ = section + 1;
    if (IsGroupHeading(section))
        groupsOpened_++;
    command_.clear();
    verdicts_ = errors_ = warnings_ = 0;
    errorsExpected_ = unexpectedSaid_ = false;
    lengths_.clear();
    evidence_.clear();
}

// Every planned item of the sections before `upTo` not seen so far fails:
// the sections left behind, and those the run never reached.
void RunJudge::CloseSections(size_t upTo)
{
    for (size_t i = 0; i < kRunItemCount; i++) {
        const RunItem &item = kRunItems[i];
        if (itemChecks_[i] >= 0 || SectionIndex(item.section) >= upTo)
            continue;
        Check missing = Failed(std::string(NotSeen(item.kind)) + ": " + item.name + " (" + GroupName(item) +
                                   " group, before line " + std::to_string(judgement_.lineNumber) + ")",
                               NotSeen(item.kind));
        missing.name = ItemName(item);
        missing.classname = classname_ + "." + GroupName(item);
        missing.line = judgement_.lineNumber;
        itemChecks_[i] = static_cast<long>(judgement_.Add(std::move(missing)));
    }
}

void RunJudge::Finish(const std::string &incomplete, const ClassifiedLine *finalPop)
{
    CloseSections(kRunSectionCount);
    section_ = kRunSectionCount;
    std::string reason = incomplete;
    if (reason.empty() && groupsOpened_ < kRunGroupCount) {
        for (size_t group = 0; group < kRunGroupCount && reason.empty(); group++) {
            bool opened = false;
            for (size_t section = 0; section < nextSection_ && !opened; section++)
                opened = kRunSections[section].title == kRunGroups[group].heading;
            if (!opened)
                reason = std::string("the run ended before the ") + kRunGroups[group].name + " group";
        }
    }
    evidence_.clear();
    Check complete = reason.empty() ? Check() : Failed(reason, "incomplete");
    complete.name = "run complete";
    AddCheck(std::move(complete));

    // The final pop puts the device back in the base record's mode (Normal,
    // nothing else set); q7cal reads the mode back and warns on the next
    // line when the device did not take it.
    const unsigned *mode = finalPop ? finalPop->mode : nullptr;
    Check restored = finalPop == nullptr
                         ? Failed("not checked: the run's final Pop[ 0] is not in the transcript", "not checked")
                     : mode[0] != 0 || mode[1] != 0 || mode[2] != 0 || mode[3] != 0
                         ? Failed("the final pop did not set the Normal mode: " + TrimRight(finalPop->text), "WARNING")
                         : Check();
    restored.name = "device mode restored";
    if (finalPop != nullptr)
        restored.evidence = finalPop->text + "\n";
    modeCheck_ = AddCheck(std::move(restored));
    ended_ = true;
}

}  // namespace q7report

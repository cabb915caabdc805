#include "transcript.h"

#include <algorithm>
#include <optional>

#include "judges.h"
#include "line_classifier.h"
#include "printed_texts.h"
#include "run_plan.h"
#include "text_safety.h"

namespace q7report {

// ---- The judgement every judge adds to ----

size_t Judgement::Add(Check check)
{
    check.at = at;
    check.seconds = at - lastCheckAt;
    lastCheckAt = at;
    record.checks.push_back(std::move(check));
    return record.checks.size() - 1;
}

std::string Judgement::UniqueName(const std::string &classname, const std::string &name)
{
    size_t seen = ++names_[classname + "\n" + name];
    return seen == 1 ? name : name + " #" + std::to_string(seen);
}

void Judgement::JudgeByLimits(Measurement &measurement, const std::string &evidence)
{
    const Limit *limit = limits.Find(measurement.quantity);
    if (limit == nullptr)
        return;
    Check check = JudgeLimits(measurement, *limit);
    check.evidence = evidence;
    Add(std::move(check));
}

// ---- Measurements ----

namespace {

// The planned statistics of a list ("Rx spectrum noise floor" of "Rx spectrum").
std::vector<ReadMeasurement> Statistics(const ReadMeasurement &list)
{
    std::vector<ReadMeasurement> statistics;
    const Measurement &values = list.measurement;
    if (values.values.empty())
        return statistics;
    std::vector<double> sorted = values.values;
    std::sort(sorted.begin(), sorted.end());
    for (const RunItem &item : kRunItems) {
        if ((item.kind != kRunLowTail && item.kind != kRunPeak) || values.quantity != item.expected)
            continue;
        ReadMeasurement statistic = list;
        statistic.measurement.name = statistic.measurement.quantity = statistic.label = item.name;
        statistic.measurement.isArray = false;
        // The 10th percentile: the empty bins of the capture.
        statistic.measurement.values = {item.kind == kRunPeak ? sorted.back() : sorted[(sorted.size() - 1) / 10]};
        statistics.push_back(std::move(statistic));
    }
    return statistics;
}

bool IsIdentityLabel(const std::string &label)
{
    return std::any_of(std::begin(kIdentityFields), std::end(kIdentityFields),
                       [&](const IdentityField &field) { return label == field.label; });
}

}  // namespace

void MeasurementReader::Place(const std::string &classname, const std::string &command, const std::string &section)
{
    classname_ = classname;
    command_ = command;
    section_ = section;
}

std::vector<ReadMeasurement> MeasurementReader::Read(const ClassifiedLine &line, size_t lineNumber)
{
    const ResultLine &values = line.result;
    bool isValues = values.kind != ResultLine::kNone;
    // Spectrum rows follow the spectrum's length.
    if (values.kind == ResultLine::kSpectrumRow && lastLabel_ != TEXT_SPECTRUM_LENGTH && lastLabel_ != values.label)
        isValues = false;
    if (isValues)
        lastLabel_ = values.label;
    else if (line.kind != ClassifiedLine::kBlank)
        lastLabel_.clear();

    bool continues = pending_ && isValues && values.kind != ResultLine::kValue &&
                     values.label == pending_->measurement.quantity;
    std::vector<ReadMeasurement> finished;
    if (!continues)
        finished = Flush();
    if (!isValues || IsIdentityLabel(values.label))
        return finished;
    if (!pending_) {
        pending_ = ReadMeasurement();
        Measurement &measurement = pending_->measurement;
        measurement.quantity = values.quantity;
        measurement.name = values.label;
        measurement.classname = classname_;
        measurement.command = command_;
        measurement.unit = values.unit;
        measurement.line = lineNumber;
        measurement.isArray = values.isArray || values.kind != ResultLine::kValue;
        pending_->label = values.label;
        pending_->section = section_;
    }
    Measurement &measurement = pending_->measurement;
    // Each entry or row starts where the ones before it left off, in the same unit.
    if (pending_->brokenLine == 0 && values.kind != ResultLine::kValue) {
        if (values.index != measurement.values.size())
            pending_->broken = "is out of its order";
        else if (values.unit != measurement.unit)
            pending_->broken = "is in \"" + values.unit + "\", not \"" + measurement.unit + "\"";
        if (!pending_->broken.empty())
            pending_->brokenLine = lineNumber;
    }
    measurement.values.insert(measurement.values.end(), values.values.begin(), values.values.end());
    pending_->evidence += line.text + "\n";
    if (values.kind == ResultLine::kValue) {
        std::vector<ReadMeasurement> value = Flush();
        finished.insert(finished.end(), value.begin(), value.end());
    }
    return finished;
}

std::vector<ReadMeasurement> MeasurementReader::Flush()
{
    std::vector<ReadMeasurement> finished;
    if (!pending_)
        return finished;
    finished.push_back(std::move(*pending_));
    pending_.reset();
    std::vector<ReadMeasurement> statistics = Statistics(finished.front());
    finished.insert(finished.end(), statistics.begin(), statistics.end());
    return finished;
}

// ---- The reader: each line classified, then handed to the judge of where it stands ----

struct TranscriptReader::State {
    explicit State(const Limits &limits) : judgement(record, limits), commands(judgement) {}

    void Read(const std::string &text, double at)
    {
        judgement.lineNumber++;
        judgement.at = at;
        record.transcript += text + "\n";
        ClassifiedLine line = Classify(text);
        if (line.kind == ClassifiedLine::kStartUp || line.kind == ClassifiedLine::kMenuTitle ||
            (line.kind == ClassifiedLine::kError && line.value.find(TEXT_NO_INTERFACE) != std::string::npos))
            record.isSession = true;
        if (line.typedAnswer)
            record.scripted = false;
        NoteIdentity(line);
        if (modeCheck_ && NoteModeWarning(line))
            return;
        if (line.kind == ClassifiedLine::kMenuTitle) {
            EnterMenu(line.label);
            return;
        }
        if (line.kind == ClassifiedLine::kInvalidOption)
            NoteInvalidOption();
        if (run_) {
            ReadRunLine(line);
            return;
        }
        if (line.kind == ClassifiedLine::kPush && line.index == 1) {
            StartRun();
            return;
        }
        if (line.afterMenuPrompt) {
            JudgeMeasurements(values.Flush());
            commands.Finish(false);
            commandOpen_ = !menu_.empty() && menu_ != TEXT_MAIN_MENU;
            if (commandOpen_)
                commands.Open(menu_);
        }
        if (menu_.empty()) {
            commands.ReadStartUp(line);
        } else if (commandOpen_) {
            commands.Read(line);
            values.Place("commands." + menu_, commands.Command().empty() ? menu_ : commands.Command(), "");
            JudgeMeasurements(values.Read(line, judgement.lineNumber));
        }
    }

    UnitRecord Finish()
    {
        if (run_)
            EndRun("the transcript ends inside the run", nullptr);
        modeCheck_.reset();
        JudgeMeasurements(values.Flush());
        commands.Finish(true);
        // Whether the answers kept in step is judged only where something else was.
        if (record.scripted && !outOfStep_ && !record.checks.empty()) {
            Check inStep;
            inStep.classname = "session";
            inStep.name = "answers in step";
            inStep.line = judgement.lineNumber;
            judgement.Add(inStep);
        }
        record.seconds = judgement.at;
        return std::move(record);
    }

private:
    void NoteIdentity(const ClassifiedLine &line)
    {
        if (line.kind != ClassifiedLine::kLabeledText && line.kind != ClassifiedLine::kValue &&
            line.kind != ClassifiedLine::kText)
            return;
        std::string label, text;
        if (!SplitLabeledLine(line.text, label, text))
            return;
        for (size_t i = 0; i < kIdentityFieldCount; i++)
            if (label == kIdentityFields[i].label)
                record.identity[i] = text;
    }

    void JudgeMeasurements(std::vector<ReadMeasurement> finished)
    {
        for (ReadMeasurement &read : finished) {
            size_t seen = ++measurementNames_[read.measurement.name];
            if (seen > 1)
                read.measurement.name += " #" + std::to_string(seen);
            if (run_ && !read.section.empty())
                run_->Judge(read);
            else
                judgement.JudgeByLimits(read.measurement, read.evidence);
            record.measurements.push_back(std::move(read.measurement));
        }
    }

    // A stray answer fell to a menu, which refused it: a script's answers no
    // longer meet the questions they were written for.
    void NoteInvalidOption()
    {
        if (!record.scripted || outOfStep_)
            return;
        outOfStep_ = true;
        Check inStep;
        inStep.classname = "session";
        inStep.name = "answers in step";
        inStep.passed = false;
        inStep.type = "out of step";
        inStep.line = judgement.lineNumber - 1;  // the menu's prompt, which took the answer
        inStep.message = "answers out of step after line " + std::to_string(inStep.line);
        inStep.evidence = std::string(TEXT_MENU_PROMPT) + "\n" + TEXT_INVALID_OPTION + "\n";
        judgement.Add(inStep);
    }

    void EnterMenu(const std::string &title)
    {
        if (run_)
            EndRun("the run was left without its final Pop[ 0]", nullptr);
        JudgeMeasurements(values.Flush());
        commands.Finish(false);
        menu_ = title;
        commandOpen_ = false;
    }

    void StartRun()
    {
        commandOpen_ = false;
        commands.Discard();  // the run is the command's whole output
        JudgeMeasurements(values.Flush());
        run_.emplace(judgement, ++runs_);
        judgement.lastCheckAt = judgement.at;
    }

    void ReadRunLine(const ClassifiedLine &line)
    {
        if (line.kind == ClassifiedLine::kPush && line.index == 1) {  // a new run before this one popped
            EndRun("the run was left without its final Pop[ 0]", nullptr);
            StartRun();
            return;
        }
        values.Place(run_->Classname(), run_->Place(), run_->Section());
        JudgeMeasurements(values.Read(line, judgement.lineNumber));
        if (line.kind == ClassifiedLine::kPop && line.index == 0) {
            EndRun("", &line);
            return;
        }
        run_->Read(line);
    }

    void EndRun(const std::string &incomplete, const ClassifiedLine *finalPop)
    {
        JudgeMeasurements(values.Flush());
        run_->Finish(incomplete, finalPop);
        if (finalPop != nullptr)
            modeCheck_ = run_->ModeCheck();
        run_.reset();
    }

    // q7cal reads the mode back after the final pop and warns on the next
    // line (after a blank one) when the device did not take it. True when
    // `line` was the warning or the blank line before it.
    bool NoteModeWarning(const ClassifiedLine &line)
    {
        if (line.kind == ClassifiedLine::kBlank && !line.afterMenuPrompt)
            return true;
        size_t check = *modeCheck_;
        modeCheck_.reset();
        if (line.kind != ClassifiedLine::kWarning || line.value.find(TEXT_MODE_NOT_RESTORED) != 0)
            return false;
        Check &restored = record.checks[check];
        restored.passed = false;
        restored.type = "WARNING";
        restored.message = line.value;
        restored.evidence += line.text + "\n";
        restored.line = judgement.lineNumber;
        return true;
    }

    UnitRecord record;
    Judgement judgement;
    CommandJudge commands;
    MeasurementReader values;
    std::optional<RunJudge> run_;
    int runs_ = 0;
    std::string menu_;  // the title of the menu shown last; "" before the first
    bool commandOpen_ = false;
    std::map<std::string, size_t> measurementNames_;  // how often each value was printed
    std::optional<size_t> modeCheck_;                 // the line after the final pop may still fail this check
    bool outOfStep_ = false;
};

TranscriptReader::TranscriptReader(const Limits &limits) : state_(std::make_unique<State>(limits)) {}
TranscriptReader::~TranscriptReader() = default;

void TranscriptReader::Read(const std::string &line, double at)
{
    // A line kept on a host that ends its lines with CR LF reads as the same
    // line; a byte that is no UTF-8 stands as U+FFFD from here on.
    std::string text = line;
    if (!text.empty() && text.back() == '\r')
        text.pop_back();
    state_->Read(ValidUtf8(text), at);
}

UnitRecord TranscriptReader::Finish() { return state_->Finish(); }

UnitRecord JudgeTranscript(const std::vector<TimedLine> &lines, const Limits &limits)
{
    TranscriptReader reader(limits);
    for (const TimedLine &line : lines)
        reader.Read(line.text, line.at);
    return reader.Finish();
}

}  // namespace q7report

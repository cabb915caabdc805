// The judges the transcript reader feeds, line by line once each line is
// classified: the measurements (values and lists, judged by their limits),
// interactive commands (judged by how they end and the states they show),
// and the automated run (judged against its plan). All of them add their
// checks to one Judgement.
#ifndef Q7REPORT_JUDGES_H
#define Q7REPORT_JUDGES_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "line_classifier.h"
#include "measurement_limits.h"
#include "unit_record.h"

namespace q7report {

// The record being judged, and where the reader stands in its transcript.
class Judgement {
public:
    Judgement(UnitRecord &record, const Limits &limits) : record(record), limits(limits) {}

    // Adds a check decided at the current line; it took the time since the
    // check before it. Its index in the record.
    size_t Add(Check check);
    // "name", then "name #2", ... for each name met again in `classname`.
    std::string UniqueName(const std::string &classname, const std::string &name);
    // A measurement judged by its quantity's limits, where it has any.
    void JudgeByLimits(Measurement &measurement, const std::string &evidence);

    UnitRecord &record;
    const Limits &limits;
    size_t lineNumber = 0;
    double at = 0;           // when the current line arrived
    double lastCheckAt = 0;  // when the last check was decided

private:
    std::map<std::string, size_t> names_;
};

// A measurement as read: a value line, or a list of entries or spectrum rows.
struct ReadMeasurement {
    Measurement measurement;
    std::string label;     // as printed: the measurement's name before a repeat makes it "Rx1 RSSI #2"
    std::string section;   // in an automated run, the section it was printed in
    std::string evidence;  // its lines
    // A list whose entries do not follow on: the first entry out of its order
    // or in another unit, and how.
    size_t brokenLine = 0;
    std::string broken;
};

// Collects value lines into measurements: a value line is one; a list (or the
// spectrum) is one of all its lines, finished by the first line that is not
// one of them. A list with planned statistics (the spectrum's noise floor and
// peak) gives those as measurements of their own after it.
class MeasurementReader {
public:
    // Where the next values are printed: the check class, the command or
    // section, and in a run the section.
    void Place(const std::string &classname, const std::string &command, const std::string &section);
    // The measurements this line finishes, in order.
    std::vector<ReadMeasurement> Read(const ClassifiedLine &line, size_t lineNumber);
    std::vector<ReadMeasurement> Flush();

private:
    std::string classname_, command_, section_;
    std::optional<ReadMeasurement> pending_;
    std::string lastLabel_;  // of the last value line, while no other line came between
};

// Interactive commands: the output between a group menu's prompt and the
// next menu is one command, which passes with its good ending and nothing
// amiss (an error, a WARNING, verify errors). The states it shows are checks
// of their own (a NOT VALID checksum or calibration fails), but in the NVM
// mode test, whose states show what it does to the DSD buffer.
class CommandJudge {
public:
    explicit CommandJudge(Judgement &judgement) : judgement_(judgement) {}
    void Open(const std::string &menu);  // a command starts after this menu's prompt
    void Discard();                      // what was read of it is no command (an automated run)
    void Read(const ClassifiedLine &line);
    // Ends the open command: at a menu, or at the transcript's end.
    void Finish(bool atTranscriptEnd);
    // Lines before the first menu: only a failed start-up is a command.
    void ReadStartUp(const ClassifiedLine &line);
    const std::string &Command() const { return command_; }

private:
    struct Line {
        std::string text;
        size_t number;
        double at;
    };
    Judgement &judgement_;
    std::string menu_;  // "" before the first menu
    std::string command_;
    size_t shownLines_ = 0;  // lines that were not blank
    std::vector<Line> lines_;
};

// An automated run, judged against its plan (run_plan.h): every planned
// check and measurement must appear in its section, once, readable and
// within its limits; a line in the run that the reader does not know fails
// it. Started by its first push, ended by its final pop.
class RunJudge {
public:
    RunJudge(Judgement &judgement, int number);
    void Read(const ClassifiedLine &line);
    void Judge(ReadMeasurement &read);
    // The run ends: `incomplete` says why it did not reach its final pop
    // through every group ("" when it did).
    void Finish(const std::string &incomplete, const ClassifiedLine *finalPop);
    bool Ended() const { return ended_; }
    std::string Classname() const;
    std::string Place() const;  // the command heading or section that prints the current line
    std::string Section() const;
    // The check that q7cal's read-back after the final pop may still fail.
    size_t ModeCheck() const { return modeCheck_; }

private:
    void OpenSection(size_t section);
    void CloseSections(size_t upTo);
    void Unexpected(const ClassifiedLine &line);
    bool Known(const ClassifiedLine &line) const;
    size_t AddCheck(Check check);
    void ItemCheck(size_t item, Check check);
    void MarkRepeated(size_t item);
    std::optional<size_t> Item(int kind, const std::string &name) const;

    Judgement &judgement_;
    std::string classname_;  // "automated"; "automated 2" for a transcript's second run
    size_t section_;          // into kRunSections; kRunSectionCount before the first
    size_t nextSection_ = 0;
    size_t groupsOpened_ = 0;
    std::string command_;
    size_t verdicts_ = 0, errors_ = 0, warnings_ = 0;
    bool errorsExpected_ = false;
    bool unexpectedSaid_ = false;
    std::map<std::string, double> lengths_;  // the section's length lines: "Spectrum length" = 1024
    std::string evidence_;                   // the section's lines since its last check
    std::vector<long> itemChecks_;           // per planned item, its check's index, or -1 while unseen
    std::vector<size_t> itemLines_;          // per planned item, the line that showed it
    size_t modeCheck_ = 0;
    bool ended_ = false;
};

}  // namespace q7report

#endif

// Judging a q7cal session transcript: what the console printed, read back
// line by line as it comes. The console prints no verdict of its own beyond
// PASS and FAIL, so this is where a production line gets one.
#ifndef Q7REPORT_TRANSCRIPT_H
#define Q7REPORT_TRANSCRIPT_H

#include <memory>
#include <string>
#include <vector>

#include "measurement_limits.h"
#include "unit_record.h"

namespace q7report {

// Judges one transcript a line at a time, keeping no more than the unit's
// own record; the record's source, timing and start are the caller's.
class TranscriptReader {
public:
    explicit TranscriptReader(const Limits &limits);
    ~TranscriptReader();
    // One line as read, without its line end; `at` is when it arrived, in
    // seconds from the first line (0 throughout for a file).
    void Read(const std::string &line, double at);
    UnitRecord Finish();

private:
    struct State;
    std::unique_ptr<State> state_;
};

// A transcript line and when it arrived.
struct TimedLine {
    std::string text;
    double at = 0;
};

// Judges a whole transcript at once.
UnitRecord JudgeTranscript(const std::vector<TimedLine> &lines, const Limits &limits);

}  // namespace q7report

#endif

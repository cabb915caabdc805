// Judging a q7cal session transcript: what the console printed, read back
// line by line. The console prints no verdict of its own beyond PASS and
// FAIL, so this is where a production line gets one.
#ifndef Q7REPORT_TRANSCRIPT_H
#define Q7REPORT_TRANSCRIPT_H

#include <string>
#include <vector>

#include "measurement_limits.h"
#include "unit_record.h"

namespace q7report {

// A transcript line and when it arrived, in seconds from the first line (0
// throughout for a file).
struct TimedLine {
    std::string text;
    double at = 0;
};

// Judges one transcript; the record's source, timing and start are the
// caller's to fill in.
UnitRecord JudgeTranscript(const std::vector<TimedLine> &lines, const Limits &limits);

}  // namespace q7report

#endif

// What q7cal-report writes: the summary line, JUnit XML and a JSON record.
#ifndef Q7REPORT_REPORT_WRITERS_H
#define Q7REPORT_REPORT_WRITERS_H

#include <string>
#include <vector>

#include "transcript.h"

namespace q7report {

// "q7cal-report: 19 checks: 19 PASS, 0 FAIL; 3 expected errors; 0 commands: 0 SUCCESSFUL, 0 failed"
std::string SummaryLine(const Totals &totals);

// One line per failed case, for standard error.
std::string FailureLines(const std::vector<Transcript> &transcripts);

// A <testsuites> document: a <testsuite> per automated run and per
// transcript's commands, a <testcase> per check or command.
std::string JunitXml(const std::vector<Transcript> &transcripts);

std::string JsonRecord(const std::vector<Transcript> &transcripts);

}  // namespace q7report

#endif

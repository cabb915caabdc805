// q7cal-report's command line, read as getopt_long reads it.
#ifndef Q7REPORT_REPORT_OPTIONS_H
#define Q7REPORT_REPORT_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "unit_record.h"

namespace q7report {

enum ExitStatus { kAllPassed = 0, kSomethingFailed = 1, kTrouble = 2 };

struct Options {
    RunContext context;  // the unit, station and operator given
    std::string limitsFile;
    bool printLimits = false;  // --print-limits: say the limits in force, judge nothing
    std::string junitFile;
    std::string jsonFile;
    std::string htmlFile;
    std::vector<std::string> transcripts;  // "-" for standard input
    std::string database;  // --db: an SQLite file or a postgresql:// URI
    std::string spoolFolder;  // --spool: where records wait for the history ("": the default)
    bool flush = false;       // --flush: append the records waiting, judge nothing
    bool history = false;  // --history: read the history instead of judging
    std::string since;     // --since, --until: the span of the history
    std::string until;
};

// The options, or nothing when the program ends here, with `status` set:
// after the help or the version, or a wrong command line (said on stderr).
std::optional<Options> ParseCommandLine(int argc, char *argv[], int &status);

}  // namespace q7report

#endif

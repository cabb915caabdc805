// Judging a q7cal session transcript: what the console printed, read back
// line by line. The console itself prints no verdict of its own beyond PASS
// and FAIL, so this is where a production line gets one.
#ifndef Q7REPORT_TRANSCRIPT_H
#define Q7REPORT_TRANSCRIPT_H

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace q7report {

// One judged item: a check of an automated run, or an interactive command.
struct TestCase {
    std::string group;  // the run's group ("Tx") or the command's menu ("Tx Commands")
    std::string name;   // "GetTxOutputPower and SetTxOutputPower #2"
    bool passed = true;
    bool expectedError = false;  // an error that the run announced
    std::string message;         // a failure's deciding line
    std::string output;          // the transcript lines it was judged on
    size_t line = 0;             // the transcript line that decided it
};

// An automated run (from "Push[ 1]" to "Pop[ 0]"), or the interactive
// commands of one transcript.
struct Suite {
    std::string name;  // "automated run 1", "commands"
    bool automatedRun = false;
    std::vector<TestCase> cases;
};

// The source name of a transcript read from standard input.
inline constexpr char kStandardInput[] = "standard input";

struct Transcript {
    std::string source;       // the file name, or kStandardInput
    bool isSession = false;   // false: not a q7cal transcript at all
    std::vector<Suite> suites;
};

Transcript JudgeTranscript(std::istream &in, const std::string &source);

struct Totals {
    size_t checks = 0;          // the automated runs' cases but the expected errors seen
    size_t checksPassed = 0;
    size_t expectedErrors = 0;  // expected errors seen where the run announced them
    size_t commands = 0;
    size_t commandsPassed = 0;

    bool AllPassed() const { return checks == checksPassed && commands == commandsPassed; }
};

Totals CountCases(const std::vector<Transcript> &transcripts);

}  // namespace q7report

#endif

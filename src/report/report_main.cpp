// q7cal-report: judges q7cal session transcripts (files, or standard input)
// and gives a production line its verdict: one summary line, an exit status,
// and optionally JUnit XML and a JSON record.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "report_writers.h"
#include "transcript.h"

namespace {

enum ExitStatus { kAllPassed = 0, kSomethingFailed = 1, kTrouble = 2 };

const char kHelp[] =
    "Usage: q7cal-report [--junit FILE] [--json FILE] [TRANSCRIPT...]\n"
    "Judge q7cal session transcripts (standard input when none is named, or -).\n"
    "\n"
    "Every automated run is a test suite: each PASS or FAIL line is a check, an\n"
    "ERROR fails its section, except the GPIO writes after the write permission\n"
    "is set to 0, where an error is expected; a run that does not reach its\n"
    "final Pop[ 0] fails. Every other command passes with its SUCCESSFUL line\n"
    "and fails with an error, a WARNING, verify errors or no ending.\n"
    "\n"
    "  --junit FILE   also write the verdicts as JUnit XML to FILE\n"
    "  --json FILE    also write them as a JSON record to FILE\n"
    "  -h, --help     show this help and exit\n"
    "  -V, --version  show the version and exit\n"
    "\n"
    "Prints one summary line on standard output and each failure on standard\n"
    "error. Exit status: 0 everything passed, 1 something failed or nothing was\n"
    "judged (no automated run and no command), 2 a wrong\n"
    "command line, an input that cannot be read or is not a q7cal transcript,\n"
    "or a report that cannot be written.\n"
    "Example: q7cal < unit.answers | tee unit.log | q7cal-report --junit unit.xml\n";

struct Options {
    std::string junitFile;
    std::string jsonFile;
    std::vector<std::string> transcripts;
};

int WrongCommandLine(const std::string &what)
{
    std::fprintf(stderr, "q7cal-report: %s; try 'q7cal-report --help'\n", what.c_str());
    return kTrouble;
}

bool IsOption(const std::string &argument, const char *shortName, const char *longName)
{
    return argument == shortName || argument == longName;
}

bool WriteFile(const std::string &path, const std::string &text)
{
    std::ofstream out(path, std::ios::binary);
    out << text;
    out.close();
    if (!out) {
        std::fprintf(stderr, "q7cal-report: cannot write %s: %s\n", path.c_str(), std::strerror(errno));
        return false;
    }
    return true;
}

}  // namespace

int main(int argc, char *argv[])
{
    Options options;
    for (int i = 1; i < argc; i++) {
        std::string argument = argv[i];
        if (IsOption(argument, "-h", "--help") || IsOption(argument, "-V", "--version")) {
            if (argc != 2)
                return WrongCommandLine("'" + argument + "' takes no other argument");
            if (IsOption(argument, "-h", "--help"))
                std::fputs(kHelp, stdout);
            else
                std::printf("q7cal-report %s\n", Q7CAL_VERSION);
            return kAllPassed;
        }
        if (argument == "--junit" || argument == "--json") {
            if (i + 1 == argc)
                return WrongCommandLine("option '" + argument + "' needs a file name");
            (argument == "--junit" ? options.junitFile : options.jsonFile) = argv[++i];
        } else if (argument.size() > 1 && argument[0] == '-') {
            return WrongCommandLine("unknown option '" + argument + "'");
        } else {
            options.transcripts.push_back(argument);
        }
    }
    if (options.transcripts.empty())
        options.transcripts.push_back("-");

    std::vector<q7report::Transcript> judged;
    int status = kAllPassed;
    for (const std::string &name : options.transcripts) {
        if (name == "-") {
            judged.push_back(q7report::JudgeTranscript(std::cin, q7report::kStandardInput));
        } else {
            std::ifstream in(name, std::ios::binary);
            if (!in) {
                std::fprintf(stderr, "q7cal-report: cannot read %s: %s\n", name.c_str(), std::strerror(errno));
                status = kTrouble;
                continue;
            }
            judged.push_back(q7report::JudgeTranscript(in, name));
        }
        if (!judged.back().isSession) {
            std::fprintf(stderr, "q7cal-report: %s is not a q7cal transcript\n", judged.back().source.c_str());
            status = kTrouble;
        }
    }

    q7report::Totals totals = q7report::CountCases(judged);
    std::fputs(q7report::FailureLines(judged).c_str(), stderr);
    // A session that judged nothing (a wrong answers file, say) passes no unit.
    const bool nothingJudged = status == kAllPassed && totals.checks + totals.commands == 0;
    if (nothingJudged)
        std::fputs("q7cal-report: FAIL nothing was judged: no automated run and no command\n", stderr);
    std::fputs(q7report::SummaryLine(totals).c_str(), stdout);
    if (!options.junitFile.empty() && !WriteFile(options.junitFile, q7report::JunitXml(judged)))
        status = kTrouble;
    if (!options.jsonFile.empty() && !WriteFile(options.jsonFile, q7report::JsonRecord(judged)))
        status = kTrouble;
    if (std::fflush(stdout) != 0)
        status = kTrouble;
    if (status == kAllPassed && !totals.AllPassed())
        status = kSomethingFailed;
    if (status == kAllPassed && nothingJudged)
        status = kSomethingFailed;
    return status;
}

// q7cal-report: judges q7cal session transcripts (files, or standard input)
// and gives a production line its verdict: a summary line per unit, an exit
// status, and optionally JUnit XML, JSON records and an HTML page.
#include <cstdio>
#include <string>
#include <vector>

#include "report_files.h"
#include "report_options.h"
#include "report_writers.h"
#include "transcript.h"

using namespace q7report;

namespace {

// Judges one transcript and says its verdict; false when it could not be
// read or is no q7cal transcript.
bool JudgeUnit(const std::string &name, const Limits &limits, const RunContext &context, UnitRecord &record)
{
    UnitRecord read;
    std::vector<TimedLine> lines;
    if (!ReadTranscript(name, read, lines))
        return false;
    record = JudgeTranscript(lines, limits);
    record.source = read.source;
    record.timed = read.timed;
    record.start = read.start;
    if (!record.isSession) {
        std::fprintf(stderr, "q7cal-report: %s is not a q7cal transcript\n", record.source.c_str());
        return false;
    }
    std::fputs(FailureLines(record).c_str(), stderr);
    if (record.checks.empty())
        std::fprintf(stderr, "q7cal-report: FAIL %s: nothing was judged: no automated run and no command\n",
                     record.source.c_str());
    std::fputs(SummaryLine(record, context).c_str(), stdout);
    return true;
}

}  // namespace

int main(int argc, char *argv[])
{
    int status = kAllPassed;
    std::optional<Options> options = ParseCommandLine(argc, argv, status);
    if (!options)
        return status;
    RunContext &context = options->context;
    std::optional<Limits> limits = ReadLimits(options->limitsFile);
    std::string plotLibrary, plotStyle;
    if (!limits || (!options->htmlFile.empty() && !ReadPlotLibrary(plotLibrary, plotStyle)))
        return kTrouble;
    context.hostname = HostName();

    std::vector<UnitRecord> records;
    for (const std::string &name : options->transcripts) {
        UnitRecord record;
        if (!JudgeUnit(name, *limits, context, record)) {
            status = kTrouble;
            continue;
        }
        if (status == kAllPassed && !record.Passed())
            status = kSomethingFailed;
        records.push_back(std::move(record));
    }

    if (!options->junitFile.empty() && !WriteFile(options->junitFile, JunitXml(records, context)))
        status = kTrouble;
    if (!options->jsonFile.empty() && !WriteFile(options->jsonFile, JsonDocument(records, context)))
        status = kTrouble;
    if (!options->htmlFile.empty() &&
        !WriteFile(options->htmlFile, HtmlPage(records, context, plotLibrary, plotStyle)))
        status = kTrouble;
    if (std::fflush(stdout) != 0)
        status = kTrouble;
    return status;
}

// q7cal-report: judges q7cal session transcripts (files, or standard input)
// and gives a production line its verdict: a summary line per unit, an exit
// status, and optionally JUnit XML, JSON records, an HTML page and the
// unit's record kept in a history; or says what a history holds.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "history_database.h"
#include "history_report.h"
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

// The history's place as it may be shown: a server's password left out.
std::string Shown(const std::string &where)
{
    size_t scheme = where.find("://");
    size_t at = where.find('@');
    size_t colon = scheme == std::string::npos ? std::string::npos : where.find(':', scheme + 3);
    if (at == std::string::npos || colon == std::string::npos || colon > at)
        return where;
    return where.substr(0, colon) + where.substr(at);
}

std::unique_ptr<HistoryDatabase> OpenHistory(const std::string &where)
{
    std::string error;
    std::unique_ptr<HistoryDatabase> database = HistoryDatabase::Open(where, error);
    if (!database)
        std::fprintf(stderr, "q7cal-report: cannot use the history %s: %s\n", Shown(where).c_str(), error.c_str());
    return database;
}

// --history: what the history holds, as text, and as JSON and a page.
int SayHistory(const Options &options)
{
    std::unique_ptr<HistoryDatabase> database = OpenHistory(options.database);
    HistoryFilter filter{options.since, options.until, options.context.unit};
    History history;
    std::string error, plotLibrary, plotStyle;
    if (!database)
        return kTrouble;
    if (!ReadHistory(*database, filter, history, error)) {
        std::fprintf(stderr, "q7cal-report: cannot read the history %s: %s\n", Shown(options.database).c_str(),
                     error.c_str());
        return kTrouble;
    }
    std::fputs(HistoryText(history, filter).c_str(), stdout);
    int status = kAllPassed;
    if (!options.jsonFile.empty() &&
        !WriteFile(options.jsonFile, HistoryJson(history, filter, options.context.reportVersion).dump(2) + "\n"))
        status = kTrouble;
    if (!options.htmlFile.empty() && (!ReadPlotLibrary(plotLibrary, plotStyle) ||
                                      !WriteFile(options.htmlFile, HistoryPage(history, filter, plotLibrary, plotStyle))))
        status = kTrouble;
    return std::fflush(stdout) == 0 ? status : kTrouble;
}

}  // namespace

int main(int argc, char *argv[])
{
    int status = kAllPassed;
    std::optional<Options> options = ParseCommandLine(argc, argv, status);
    if (!options)
        return status;
    if (options->history)
        return SayHistory(*options);
    RunContext &context = options->context;
    std::optional<Limits> limits = ReadLimits(options->limitsFile);
    std::string plotLibrary, plotStyle;
    if (!limits || (!options->htmlFile.empty() && !ReadPlotLibrary(plotLibrary, plotStyle)))
        return kTrouble;
    context.hostname = HostName();
    // A history that cannot take the units is said before any is judged.
    std::unique_ptr<HistoryDatabase> history;
    if (!options->database.empty() && !(history = OpenHistory(options->database)))
        return kTrouble;

    std::vector<UnitRecord> records;
    for (const std::string &name : options->transcripts) {
        UnitRecord record;
        if (!JudgeUnit(name, *limits, context, record)) {
            status = kTrouble;
            continue;
        }
        if (status == kAllPassed && !record.Passed())
            status = kSomethingFailed;
        std::string error;
        if (history && !history->Append(record, context, error)) {
            std::fprintf(stderr, "q7cal-report: %s was not added to the history %s: %s\n",
                         UnitName(record, context).c_str(), Shown(options->database).c_str(), error.c_str());
            status = kTrouble;
        }
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

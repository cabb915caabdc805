// q7cal-report: judges q7cal session transcripts (files, or standard input)
// and gives a production line its verdict: a summary line per unit, an exit
// status, and optionally JUnit XML, JSON records, an HTML page and the
// unit's record kept in a history; or says what a history holds.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "history_database.h"
#include "history_report.h"
#include "history_spool.h"
#include "report_files.h"
#include "report_options.h"
#include "report_writers.h"
#include "transcript.h"

using namespace q7report;

namespace {

// Standard output flushed and never failed; a failure is said.
bool StandardOutputWritten()
{
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return true;
    std::fprintf(stderr, "q7cal-report: cannot write standard output: %s\n", std::strerror(errno));
    return false;
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

// --history: what the history holds, as text, and as JSON and a page.
int SayHistory(const Options &options)
{
    HistoryError opening;
    std::unique_ptr<HistoryDatabase> database = HistoryDatabase::Open(options.database, true, opening);
    if (!database)
        std::fprintf(stderr, "q7cal-report: cannot read the history %s: %s\n", Shown(options.database).c_str(),
                     opening.text.c_str());
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
    return StandardOutputWritten() ? status : kTrouble;
}

// The report files asked for, each written unit by unit.
class ReportFiles {
public:
    ReportFiles(const Options &options, const std::string &plotLibrary, const std::string &plotStyle)
    {
        const RunContext &context = options.context;
        if (!options.junitFile.empty() && Open(junit_, options.junitFile))
            junitWriter_ = std::make_unique<JunitWriter>(junit_->Stream(), context);
        if (!options.jsonFile.empty() && Open(json_, options.jsonFile))
            jsonWriter_ = std::make_unique<JsonWriter>(json_->Stream(), context);
        if (!options.htmlFile.empty() && Open(html_, options.htmlFile))
            htmlWriter_ = std::make_unique<HtmlWriter>(html_->Stream(), context, plotLibrary, plotStyle);
    }
    bool Opened() const { return opened_; }

    void Add(const UnitRecord &record)
    {
        verdict_.Add(record);
        if (junitWriter_)
            junitWriter_->Add(record);
        if (jsonWriter_)
            jsonWriter_->Add(record);
        if (htmlWriter_ && !htmlWriter_->Add(record))
            htmlFailed_ = true;
    }

    // Every file ended and put in place; false when one could not be written whole.
    bool Commit()
    {
        bool written = true;
        if (junitWriter_) {
            junitWriter_->End();
            written = junit_->Commit() && written;
        }
        if (jsonWriter_) {
            jsonWriter_->End(verdict_);
            written = json_->Commit() && written;
        }
        if (htmlWriter_) {
            if (!htmlWriter_->End(verdict_) || htmlFailed_) {
                std::fprintf(stderr, "q7cal-report: cannot write the page's scratch file: %s\n", std::strerror(errno));
                written = false;
            } else {
                written = html_->Commit() && written;
            }
        }
        return written;
    }

private:
    bool Open(std::unique_ptr<OutputFile> &file, const std::string &path)
    {
        file = std::make_unique<OutputFile>(path);
        opened_ = file->Open() && opened_;
        return opened_;
    }

    bool opened_ = true;
    bool htmlFailed_ = false;
    BatchVerdict verdict_;
    std::unique_ptr<OutputFile> junit_, json_, html_;
    std::unique_ptr<JunitWriter> junitWriter_;
    std::unique_ptr<JsonWriter> jsonWriter_;
    std::unique_ptr<HtmlWriter> htmlWriter_;
};

// What is read and what is written must be apart: an output may replace no
// input, the history included.
bool FilesAreApart(const Options &options)
{
    std::vector<std::string> outputs, inputs = options.transcripts;
    for (const std::string *output : {&options.junitFile, &options.jsonFile, &options.htmlFile})
        if (!output->empty())
            outputs.push_back(*output);
    if (!options.limitsFile.empty())
        inputs.push_back(options.limitsFile);
    if (!options.database.empty() && options.database.find("://") == std::string::npos)
        inputs.push_back(options.database);
    return OutputsAreApart(outputs, inputs);
}

// The records for the history, kept in the spool until the history has them
// (or in memory, for one that could not be spooled).
struct HistoryRecords {
    HistorySpool spool;
    std::vector<HistoryEntry> unspooled;
};

// A unit's record goes towards the history; false when it cannot be kept.
bool KeepRecord(const UnitRecord &record, const Options &options, HistoryRecords &history)
{
    std::optional<HistoryEntry> entry = MakeHistoryEntry(record, options.context);
    if (!entry) {
        std::fprintf(stderr,
                     "q7cal-report: the unit of %s has no name (no --unit, and no MAC address in its transcript): "
                     "name it with --unit to keep it in the history\n",
                     record.source.c_str());
        return false;
    }
    if (!history.spool.Put(*entry, Shown(options.database)))
        history.unspooled.push_back(std::move(*entry));
    return true;
}

// Appends every record waiting for the history: those of earlier runs first.
bool StoreHistory(const Options &options, HistoryRecords &records)
{
    const std::string shown = Shown(options.database);
    HistoryError error;
    size_t appended = 0;
    std::unique_ptr<HistoryDatabase> database = HistoryDatabase::Open(options.database, false, error);
    bool stored = database && records.spool.Flush(*database, shown, appended, error);
    for (size_t i = 0; stored && i < records.unspooled.size(); i++)
        stored = database->Append(records.unspooled[i], error);
    if (stored)
        return true;
    size_t waiting = records.spool.Waiting(shown).size();
    std::fprintf(stderr, "q7cal-report: %s the history %s: %s%s", error.unreachable ? "cannot reach" : "cannot use",
                 shown.c_str(), error.text.c_str(), waiting == 0 ? "\n" : "; ");
    if (waiting > 0)
        std::fprintf(stderr, "%zu %s in the spool %s, to be appended by the next run that reaches it (or --flush)\n",
                     waiting, waiting == 1 ? "record waits" : "records wait", records.spool.Folder().c_str());
    if (records.unspooled.size() > 0)
        std::fprintf(stderr, "q7cal-report: %zu %s not kept: neither spooled nor appended\n", records.unspooled.size(),
                     records.unspooled.size() == 1 ? "record is" : "records are");
    return false;
}

int JudgeUnits(Options &options)
{
    RunContext &context = options.context;
    std::optional<Limits> limits = ReadLimits(options.limitsFile);
    if (!limits)
        return kTrouble;
    if (options.printLimits) {
        std::fputs(limits->Json().c_str(), stdout);
        return StandardOutputWritten() ? kAllPassed : kTrouble;
    }
    std::string plotLibrary, plotStyle;
    if (!FilesAreApart(options) || (!options.htmlFile.empty() && !ReadPlotLibrary(plotLibrary, plotStyle)))
        return kTrouble;
    context.hostname = HostName();
    HistoryRecords history{HistorySpool(options.spoolFolder.empty() ? DefaultSpoolFolder() : options.spoolFolder), {}};
    if (options.flush)
        return StoreHistory(options, history) ? kAllPassed : kTrouble;
    ReportFiles files(options, plotLibrary, plotStyle);
    if (!files.Opened())
        return kTrouble;
    // With a file on standard output, the summaries go to standard error.
    bool fileOnStdout = options.junitFile == "-" || options.jsonFile == "-" || options.htmlFile == "-";
    FILE *summaries = fileOnStdout ? stderr : stdout;

    int status = kAllPassed;
    for (const std::string &name : options.transcripts) {
        UnitRecord record = JudgeInput(name, *limits);
        if (!record.error.empty()) {
            status = kTrouble;
            files.Add(record);
            continue;
        }
        std::fputs(FailureLines(record).c_str(), stderr);
        if (record.checks.empty())
            std::fprintf(stderr, "q7cal-report: FAIL %s: nothing was judged: no automated run and no command\n",
                         record.source.c_str());
        std::fputs(SummaryLine(record, context).c_str(), summaries);
        if (status == kAllPassed && !record.Passed())
            status = kSomethingFailed;
        if (!options.database.empty() && !KeepRecord(record, options, history))
            status = kTrouble;
        files.Add(record);
    }
    if (!files.Commit())
        status = kTrouble;
    if (!StandardOutputWritten())
        status = kTrouble;
    // The history last: whatever happens to it, every unit has been judged
    // and its files written, and its record waits in the spool.
    if (!options.database.empty() && !StoreHistory(options, history))
        status = kTrouble;
    return status;
}

}  // namespace

int main(int argc, char *argv[])
{
    // A write refused for its size, or to a reader that has gone, is an
    // output error like any other, said and with its status.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    RemoveOutputsOnSignals();
    try {
        int status = kAllPassed;
        std::optional<Options> options = ParseCommandLine(argc, argv, status);
        if (!options)
            return status;
        if (options->history)
            return SayHistory(*options);
        return JudgeUnits(*options);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "q7cal-report: %s\n", error.what());
        return kTrouble;
    }
}

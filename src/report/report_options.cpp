#include "report_options.h"

#include <getopt.h>

#include <cstdio>

#include "history_report.h"
#include "text_safety.h"

namespace q7report {
namespace {

const char kHelp[] =
    "Usage: q7cal-report [OPTION]... [TRANSCRIPT]...\n"
    "Judge q7cal session transcripts (standard input when none is named, or -),\n"
    "each the session of one unit.\n"
    "\n"
    "An automated run is judged against its plan: every check and measurement\n"
    "the plan names must appear in its group, once, readable and within its\n"
    "limits (a value outside its marginal band passes as MARGINAL); a missing\n"
    "one fails as not measured, a line the plan does not know as unexpected.\n"
    "Every error fails it (but the GPIO writes after the write permission is set\n"
    "to 0, which must be refused). Every other command passes with its\n"
    "SUCCESSFUL line and fails with an error, a WARNING, verify errors or no\n"
    "ending. A checksum or the calibration shown NOT VALID fails anywhere; in a\n"
    "scripted session, a menu that refuses a stray answer fails it as out of step.\n"
    "\n"
    "  --unit=ID         the unit's ID (serial number), for one transcript\n"
    "  --station=ID      the test station\n"
    "  --operator=NAME   who tested the unit\n"
    "  --limits=FILE     judge measured values by this JSON table instead of the\n"
    "                    plan's own; it must give limits to every quantity of\n"
    "                    the plan and to nothing else\n"
    "  --print-limits    print the limits in force (the plan's, or --limits')\n"
    "                    as a limits table, and exit\n"
    "  --junit=FILE      also write JUnit XML to FILE, a test suite per unit\n"
    "  --json=FILE       also write the units' records as JSON to FILE\n"
    "  --html=FILE       also write a page with plots to FILE, to open offline\n"
    "                    (each FILE is replaced whole once written; - is standard\n"
    "                    output, and the summary lines then go to standard error)\n"
    "  --db=DATABASE     also append each unit's record to the history in\n"
    "                    DATABASE: an SQLite file (created on first use) or a\n"
    "                    PostgreSQL server's postgresql:// URI\n"
    "  --history         instead of judging, say what the history in --db holds:\n"
    "                    units tested, first-pass and final yield, the checks\n"
    "                    that fail most, per station and per day; with --unit,\n"
    "                    that unit's runs; --json and --html write it too\n"
    "  --since=TIME, --until=TIME  the history's span, both ends inclusive: a\n"
    "                    day YYYY-MM-DD (--until takes in the whole day) or a\n"
    "                    time YYYY-MM-DDTHH:MM[:SS[.mmm]], in UTC, or with Z or\n"
    "                    an offset such as +01:00\n"
    "  --spool=DIR       where records wait while the history cannot be\n"
    "                    reached (default ~/.local/state/q7cal-report/spool)\n"
    "  --flush           append the records waiting for --db, and exit\n"
    "  -h, --help        show this help and exit\n"
    "  -V, --version     show the version and exit\n"
    "\n"
    "Prints one summary line per unit on standard output and each failure on\n"
    "standard error. Exit status: 0 every unit passed, 1 something failed or\n"
    "nothing was judged, 2 a wrong command line or limits table, an input that\n"
    "cannot be read or is not a q7cal transcript (its unit is an ERROR in every\n"
    "file), or a report that cannot be written.\n"
    "Example: q7cal < unit.answers | q7cal-report --unit=SN1042 --junit=unit.xml\n"
    "         q7cal-report --history --db=station.db --since=2026-11-01\n";

enum LongOption {
    kUnit = 256, kStation, kOperator, kLimits, kPrintLimits, kJunit, kJson, kHtml, kDb, kSpool, kFlush, kHistory,
    kSince, kUntil
};
const struct option kOptions[] = {
    {"unit", required_argument, nullptr, kUnit},         {"station", required_argument, nullptr, kStation},
    {"operator", required_argument, nullptr, kOperator}, {"limits", required_argument, nullptr, kLimits},
    {"print-limits", no_argument, nullptr, kPrintLimits},
    {"junit", required_argument, nullptr, kJunit},       {"json", required_argument, nullptr, kJson},
    {"html", required_argument, nullptr, kHtml},         {"db", required_argument, nullptr, kDb},
    {"spool", required_argument, nullptr, kSpool},       {"flush", no_argument, nullptr, kFlush},
    {"history", no_argument, nullptr, kHistory},         {"since", required_argument, nullptr, kSince},
    {"until", required_argument, nullptr, kUntil},       {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, 'V'},              {nullptr, 0, nullptr, 0},
};

// A value that cannot be taken: said in one line.
std::optional<Options> Refused(const std::string &what, int &status)
{
    std::fprintf(stderr, "q7cal-report: %s\n", what.c_str());
    status = kTrouble;
    return std::nullopt;
}

// `what` empty: getopt_long has said what is wrong.
std::optional<Options> WrongCommandLine(const std::string &what, int &status)
{
    if (!what.empty())
        std::fprintf(stderr, "q7cal-report: %s\n", what.c_str());
    std::fputs("Try 'q7cal-report --help' for more information.\n", stderr);
    status = kTrouble;
    return std::nullopt;
}

std::optional<Options> PrintAndEnd(const char *text, int &status)
{
    std::fputs(text, stdout);
    status = std::fflush(stdout) == 0 ? kAllPassed : kTrouble;
    return std::nullopt;
}

}  // namespace

std::optional<Options> ParseCommandLine(int argc, char *argv[], int &status)
{
    Options options;
    int option = 0;
    optind = 1;
    while ((option = getopt_long(argc, argv, "hV", kOptions, nullptr)) != -1) {
        switch (option) {
        case 'h': return PrintAndEnd(kHelp, status);
        case 'V': return PrintAndEnd("q7cal-report " Q7CAL_VERSION "\n", status);
        case kUnit: options.context.unit = optarg; break;
        case kStation: options.context.station = optarg; break;
        case kOperator: options.context.operatorName = optarg; break;
        case kLimits: options.limitsFile = optarg; break;
        case kPrintLimits: options.printLimits = true; break;
        case kJunit: options.junitFile = optarg; break;
        case kJson: options.jsonFile = optarg; break;
        case kHtml: options.htmlFile = optarg; break;
        case kDb: options.database = optarg; break;
        case kSpool: options.spoolFolder = optarg; break;
        case kFlush: options.flush = true; break;
        case kHistory: options.history = true; break;
        case kSince: options.since = optarg; break;
        case kUntil: options.until = optarg; break;
        default: return WrongCommandLine("", status);
        }
    }
    for (int i = optind; i < argc; i++)
        options.transcripts.push_back(argv[i]);
    // An identity goes into every file as text: it must be text.
    for (const auto &[option, value] : {std::pair{"--unit", &options.context.unit},
                                        std::pair{"--station", &options.context.station},
                                        std::pair{"--operator", &options.context.operatorName}})
        if (!IsValidUtf8(*value))
            return Refused(std::string(option) + " is not UTF-8 text: give it in UTF-8", status);
    options.context.reportVersion = Q7CAL_VERSION;
    if (options.flush && (options.database.empty() || options.history || !options.transcripts.empty()))
        return WrongCommandLine("--flush appends the records waiting for --db, and judges nothing", status);
    if (options.history) {
        if (options.database.empty())
            return WrongCommandLine("--history reads the history of --db: name it", status);
        if (!options.transcripts.empty() || !options.junitFile.empty() || !options.limitsFile.empty())
            return WrongCommandLine("--history judges no transcript", status);
        std::optional<long long> since, until;
        for (const auto &[option, text, time] : {std::tuple{"--since", &options.since, &since},
                                                 std::tuple{"--until", &options.until, &until}})
            if (!text->empty() && !(*time = ParseHistoryTime(*text, time == &until)))
                return Refused(std::string(option) + " '" + *text +
                                   "' is no date or time: give YYYY-MM-DD, or YYYY-MM-DDTHH:MM[:SS[.mmm]] in UTC, "
                                   "with Z or an offset such as +01:00",
                               status);
        if (since && until && *until < *since)
            return Refused("--until " + options.until + " comes before --since " + options.since, status);
        return options;
    }
    if (!options.since.empty() || !options.until.empty())
        return WrongCommandLine("--since and --until belong to --history", status);
    if (options.transcripts.empty() && !options.flush)
        options.transcripts.push_back("-");
    if (!options.context.unit.empty() && options.transcripts.size() > 1)
        return WrongCommandLine("--unit names one unit: give one transcript with it", status);
    return options;
}

}  // namespace q7report

// q7cal-report: judges q7cal session transcripts (files, or standard input)
// and gives a production line its verdict: a summary line per unit, an exit
// status, and optionally JUnit XML, JSON records and an HTML page.
#include <getopt.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "measurement_limits.h"
#include "report_writers.h"
#include "transcript.h"

namespace {

enum ExitStatus { kAllPassed = 0, kSomethingFailed = 1, kTrouble = 2 };

const char kHelp[] =
    "Usage: q7cal-report [OPTION]... [TRANSCRIPT]...\n"
    "Judge q7cal session transcripts (standard input when none is named, or -),\n"
    "each the session of one unit.\n"
    "\n"
    "An automated run is judged check by check: every PASS or FAIL line, every\n"
    "DSD and block checksum and the calibration state (NOT VALID fails), the\n"
    "device mode restored at the end, every error (but the GPIO writes after the\n"
    "write permission is set to 0, which must be refused), and the run reaching\n"
    "its final Pop[ 0]. Every other command passes with its SUCCESSFUL line and\n"
    "fails with an error, a WARNING, verify errors or no ending. Every value the\n"
    "unit prints is a measurement, judged by its limits where it has any; in a\n"
    "scripted session, a menu that refuses a stray answer fails it as out of step.\n"
    "\n"
    "  --unit=ID         the unit's ID (serial number), for one transcript\n"
    "  --station=ID      the test station\n"
    "  --operator=NAME   who tested the unit\n"
    "  --limits=FILE     judge measured values by this JSON table instead of the\n"
    "                    one built in (limits.json in the program's documents)\n"
    "  --junit=FILE      also write JUnit XML to FILE, a test suite per unit\n"
    "  --json=FILE       also write the units' records as JSON to FILE\n"
    "  --html=FILE       also write a page with plots to FILE, to open offline\n"
    "  -h, --help        show this help and exit\n"
    "  -V, --version     show the version and exit\n"
    "\n"
    "Prints one summary line per unit on standard output and each failure on\n"
    "standard error. Exit status: 0 every unit passed, 1 something failed or\n"
    "nothing was judged, 2 a wrong command line or limits table, an input that\n"
    "cannot be read or is not a q7cal transcript, or a report that cannot be\n"
    "written.\n"
    "Example: q7cal < unit.answers | q7cal-report --unit=SN1042 --junit=unit.xml\n";

// A longer line is cut there: q7cal's own lines are far shorter.
constexpr size_t kLongestLine = 64 * 1024;

enum LongOption { kUnit = 256, kStation, kOperator, kLimits, kJunit, kJson, kHtml };
const struct option kOptions[] = {
    {"unit", required_argument, nullptr, kUnit},     {"station", required_argument, nullptr, kStation},
    {"operator", required_argument, nullptr, kOperator}, {"limits", required_argument, nullptr, kLimits},
    {"junit", required_argument, nullptr, kJunit},   {"json", required_argument, nullptr, kJson},
    {"html", required_argument, nullptr, kHtml},     {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, 'V'},          {nullptr, 0, nullptr, 0},
};

struct Options {
    std::string limitsFile;
    std::string junitFile;
    std::string jsonFile;
    std::string htmlFile;
    std::vector<std::string> transcripts;
};

// `what` empty: getopt_long has said what is wrong.
int WrongCommandLine(const std::string &what)
{
    if (!what.empty())
        std::fprintf(stderr, "q7cal-report: %s\n", what.c_str());
    std::fputs("Try 'q7cal-report --help' for more information.\n", stderr);
    return kTrouble;
}

bool ReadWholeFile(const std::string &path, std::string &text)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream contents;
    contents << in.rdbuf();
    text = contents.str();
    return static_cast<bool>(in);
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

double SecondsSince(const timespec &first)
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec - first.tv_sec) + static_cast<double>(now.tv_nsec - first.tv_nsec) / 1e9;
}

// Reads a transcript. From a live pipe (anything but a regular file), each
// line carries when it arrived and the unit's start is the first line's
// arrival; from a file, times are 0 and the start is the file's last write.
bool ReadTranscript(const std::string &name, q7report::UnitRecord &record, std::vector<q7report::TimedLine> &lines)
{
    FILE *file = name == "-" ? stdin : std::fopen(name.c_str(), "rb");
    struct stat info {};
    if (file == nullptr || fstat(fileno(file), &info) != 0) {
        std::fprintf(stderr, "q7cal-report: cannot read %s: %s\n", name.c_str(), std::strerror(errno));
        if (file != nullptr && file != stdin)
            std::fclose(file);
        return false;
    }
    record.source = name == "-" ? q7report::kStandardInput : name;
    record.timed = !S_ISREG(info.st_mode);
    record.start = record.timed ? std::time(nullptr) : info.st_mtime;
    timespec first{};
    std::vector<char> buffer(kLongestLine + 1);
    std::string line;
    while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), file) != nullptr) {
        size_t length = std::strlen(buffer.data());
        bool complete = length > 0 && buffer[length - 1] == '\n';
        if (line.size() < kLongestLine)
            line.append(buffer.data(), std::min(length - complete, kLongestLine - line.size()));
        if (!complete && !std::feof(file))
            continue;
        double at = 0;
        if (record.timed) {
            if (lines.empty()) {
                clock_gettime(CLOCK_MONOTONIC, &first);
                record.start = std::time(nullptr);
            }
            at = SecondsSince(first);
        }
        lines.push_back({line, at});
        line.clear();
    }
    bool failed = std::ferror(file) != 0;
    if (failed)
        std::fprintf(stderr, "q7cal-report: cannot read %s: %s\n", name.c_str(), std::strerror(errno));
    if (file != stdin)
        std::fclose(file);
    return !failed;
}

std::string HostName()
{
    char name[HOST_NAME_MAX + 1] = {};
    if (gethostname(name, sizeof name - 1) != 0 || name[0] == '\0')
        return "localhost";
    return name;
}

// The plotting library the page inlines: Debian's dygraphs.
bool ReadPlotLibrary(std::string &script, std::string &style)
{
    const std::string directory = Q7_DYGRAPHS_DIR;
    for (const auto &[file, text] : {std::pair{"/dygraph.min.js", &script}, std::pair{"/dygraph.min.css", &style}})
        if (!ReadWholeFile(directory + file, *text)) {
            std::fprintf(stderr, "q7cal-report: cannot read %s%s (the package libjs-dygraphs draws the plots)\n",
                         directory.c_str(), file);
            return false;
        }
    return true;
}

}  // namespace

int main(int argc, char *argv[])
{
    Options options;
    q7report::RunContext context;
    context.reportVersion = Q7CAL_VERSION;
    int option = 0;
    while ((option = getopt_long(argc, argv, "hV", kOptions, nullptr)) != -1) {
        switch (option) {
        case 'h':
            std::fputs(kHelp, stdout);
            return std::fflush(stdout) == 0 ? kAllPassed : kTrouble;
        case 'V':
            std::printf("q7cal-report %s\n", Q7CAL_VERSION);
            return std::fflush(stdout) == 0 ? kAllPassed : kTrouble;
        case kUnit: context.unit = optarg; break;
        case kStation: context.station = optarg; break;
        case kOperator: context.operatorName = optarg; break;
        case kLimits: options.limitsFile = optarg; break;
        case kJunit: options.junitFile = optarg; break;
        case kJson: options.jsonFile = optarg; break;
        case kHtml: options.htmlFile = optarg; break;
        default: return WrongCommandLine("");
        }
    }
    for (int i = optind; i < argc; i++)
        options.transcripts.push_back(argv[i]);
    if (options.transcripts.empty())
        options.transcripts.push_back("-");
    if (!context.unit.empty() && options.transcripts.size() > 1)
        return WrongCommandLine("--unit names one unit: give one transcript with it");

    q7report::Limits limits = q7report::Limits::Default();
    if (!options.limitsFile.empty()) {
        std::string text, error;
        if (!ReadWholeFile(options.limitsFile, text)) {
            std::fprintf(stderr, "q7cal-report: cannot read %s: %s\n", options.limitsFile.c_str(), std::strerror(errno));
            return kTrouble;
        }
        std::optional<q7report::Limits> parsed = q7report::Limits::Parse(text, error);
        if (!parsed) {
            std::fprintf(stderr, "q7cal-report: %s is not a limits table: %s\n", options.limitsFile.c_str(),
                         error.c_str());
            return kTrouble;
        }
        limits = *parsed;
    }
    std::string plotLibrary, plotStyle;
    if (!options.htmlFile.empty() && !ReadPlotLibrary(plotLibrary, plotStyle))
        return kTrouble;
    context.hostname = HostName();

    std::vector<q7report::UnitRecord> records;
    int status = kAllPassed;
    for (const std::string &name : options.transcripts) {
        q7report::UnitRecord read;
        std::vector<q7report::TimedLine> lines;
        if (!ReadTranscript(name, read, lines)) {
            status = kTrouble;
            continue;
        }
        q7report::UnitRecord record = q7report::JudgeTranscript(lines, limits);
        record.source = read.source;
        record.timed = read.timed;
        record.start = read.start;
        if (!record.isSession) {
            std::fprintf(stderr, "q7cal-report: %s is not a q7cal transcript\n", record.source.c_str());
            status = kTrouble;
            continue;
        }
        std::fputs(q7report::FailureLines(record).c_str(), stderr);
        if (record.checks.empty())
            std::fprintf(stderr, "q7cal-report: FAIL %s: nothing was judged: no automated run and no command\n",
                         record.source.c_str());
        std::fputs(q7report::SummaryLine(record, context).c_str(), stdout);
        if (status == kAllPassed && !record.Passed())
            status = kSomethingFailed;
        records.push_back(std::move(record));
    }

    if (!options.junitFile.empty() && !WriteFile(options.junitFile, q7report::JunitXml(records, context)))
        status = kTrouble;
    if (!options.jsonFile.empty() && !WriteFile(options.jsonFile, q7report::JsonDocument(records, context)))
        status = kTrouble;
    if (!options.htmlFile.empty() &&
        !WriteFile(options.htmlFile, q7report::HtmlPage(records, context, plotLibrary, plotStyle)))
        status = kTrouble;
    if (std::fflush(stdout) != 0)
        status = kTrouble;
    return status;
}

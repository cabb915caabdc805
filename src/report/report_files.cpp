#include "report_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iostream>
#include <sstream>

#include "transcript.h"

namespace q7report {
namespace {

// A longer line is cut there: q7cal's own lines are far shorter.
constexpr size_t kLongestLine = 64 * 1024;

bool ReadWholeFile(const std::string &path, std::string &text)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream contents;
    contents << in.rdbuf();
    text = contents.str();
    return static_cast<bool>(in);
}

long long Milliseconds(const timespec &time) { return static_cast<long long>(time.tv_sec) * 1000 + time.tv_nsec / 1000000; }

long long NowMs()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return Milliseconds(now);
}

double SecondsSince(const timespec &first)
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec - first.tv_sec) + static_cast<double>(now.tv_nsec - first.tv_nsec) / 1e9;
}

UnitRecord Unjudged(const std::string &source, const std::string &error)
{
    std::fprintf(stderr, "q7cal-report: %s\n", error.c_str());
    UnitRecord record;
    record.source = source;
    record.error = error;
    return record;
}

// The outputs not yet committed, for the signal handler to remove: paths in
// fixed buffers, since a handler may not allocate.
constexpr size_t kPendingOutputs = 8;
char gPendingOutputs[kPendingOutputs][PATH_MAX];

void Pend(const std::string &path, bool pending)
{
    sigset_t signals, previous;
    sigemptyset(&signals);
    for (int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, &previous);
    for (char *slot : gPendingOutputs) {
        if (pending && slot[0] == '\0' && path.size() < PATH_MAX) {
            std::memcpy(slot, path.c_str(), path.size() + 1);
            break;
        }
        if (!pending && path == slot) {
            slot[0] = '\0';
            break;
        }
    }
    sigprocmask(SIG_SETMASK, &previous, nullptr);
}

void RemovePendingOutputs(int signal)
{
    for (char *slot : gPendingOutputs)
        if (slot[0] != '\0')
            unlink(slot);
    std::signal(signal, SIG_DFL);
    raise(signal);
}

// Where a file that is not there yet would be: its folder resolved (".",
// "..", links), then its own name.
std::string Location(const std::string &path)
{
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    char resolved[PATH_MAX];
    if (realpath(folder.c_str(), resolved) == nullptr)
        return path;
    return std::string(resolved) + "/" + path.substr(slash == std::string::npos ? 0 : slash + 1);
}

bool SameFile(const std::string &a, const std::string &b)
{
    struct stat first {}, second {};
    if (stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0)
        return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
    return Location(a) == Location(b);
}

}  // namespace

UnitRecord JudgeInput(const std::string &name, const Limits &limits)
{
    const std::string source = name == "-" ? kStandardInput : name;
    FILE *file = name == "-" ? stdin : std::fopen(name.c_str(), "rb");
    struct stat info {};
    if (file == nullptr || fstat(fileno(file), &info) != 0) {
        int error = errno;
        if (file != nullptr && file != stdin)
            std::fclose(file);
        return Unjudged(source, "cannot read " + name + ": " + std::strerror(error));
    }
    const bool timed = !S_ISREG(info.st_mode);
    long long start = timed ? NowMs() : Milliseconds(info.st_mtim);
    TranscriptReader reader(limits);
    timespec first{};
    bool anyLine = false;
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
        if (timed) {
            if (!anyLine) {
                clock_gettime(CLOCK_MONOTONIC, &first);
                start = NowMs();
            }
            at = SecondsSince(first);
        }
        anyLine = true;
        reader.Read(line, at);
        line.clear();
    }
    int error = std::ferror(file) ? errno : 0;
    if (file != stdin)
        std::fclose(file);
    if (error != 0)
        return Unjudged(source, "cannot read " + name + ": " + std::strerror(error));
    UnitRecord record = reader.Finish();
    record.source = source;
    record.timed = timed;
    record.startMs = start;
    if (!record.isSession) {
        UnitRecord unjudged = Unjudged(source, source + " is not a q7cal transcript");
        unjudged.startMs = start;
        unjudged.timed = timed;
        return unjudged;
    }
    return record;
}

std::optional<Limits> ReadLimits(const std::string &path)
{
    if (path.empty())
        return Limits::Default();
    std::string text, error;
    if (!ReadWholeFile(path, text)) {
        std::fprintf(stderr, "q7cal-report: cannot read %s: %s\n", path.c_str(), std::strerror(errno));
        return std::nullopt;
    }
    std::optional<Limits> limits = Limits::Parse(text, error);
    if (!limits)
        std::fprintf(stderr, "q7cal-report: %s is not a limits table for q7cal's automated run: %s\n", path.c_str(),
                     error.c_str());
    return limits;
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

// ---- Output files ----

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {}

OutputFile::~OutputFile()
{
    if (!temporary_.empty() && !committed_) {
        file_.close();
        unlink(temporary_.c_str());
        Pend(temporary_, false);
    }
}

bool OutputFile::Open()
{
    if (path_ == "-")
        return true;
    // A device or a pipe (/dev/null, a FIFO) is written as it is; a regular
    // file (through its link, if it is one) is replaced whole.
    std::string target = path_;
    struct stat info {};
    if (stat(path_.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        file_.open(path_, std::ios::binary);
    } else {
        if (char *resolved = realpath(path_.c_str(), nullptr)) {
            target = resolved;
            std::free(resolved);
        }
        size_t slash = target.rfind('/');
        std::string folder = slash == std::string::npos ? "." : target.substr(0, slash + 1);
        std::string pattern = folder + (slash == std::string::npos ? "/." : ".") +
                              target.substr(slash == std::string::npos ? 0 : slash + 1) + ".XXXXXX";
        int descriptor = mkstemp(pattern.data());
        if (descriptor >= 0) {
            mode_t mask = umask(0);
            umask(mask);
            fchmod(descriptor, 0666 & ~mask);
            close(descriptor);
            temporary_ = pattern;
            Pend(temporary_, true);
            path_ = target;
            file_.open(temporary_, std::ios::binary | std::ios::trunc);
        }
    }
    if (!file_.is_open()) {
        std::fprintf(stderr, "q7cal-report: cannot write %s: %s\n", path_.c_str(), std::strerror(errno));
        return false;
    }
    return true;
}

std::ostream &OutputFile::Stream() { return path_ == "-" ? std::cout : file_; }

bool OutputFile::Commit()
{
    bool written = false;
    if (path_ == "-") {
        written = static_cast<bool>(std::cout.flush());
    } else {
        file_.close();
        written = !file_.fail();
        if (written && !temporary_.empty()) {
            // On the disk before it takes the place of the previous file.
            int descriptor = open(temporary_.c_str(), O_RDONLY);
            written = descriptor >= 0 && fsync(descriptor) == 0;
            if (descriptor >= 0)
                close(descriptor);
            written = written && rename(temporary_.c_str(), path_.c_str()) == 0;
        }
    }
    if (!written) {
        std::fprintf(stderr, "q7cal-report: cannot write %s: %s\n", path_.c_str(),
                     errno != 0 ? std::strerror(errno) : "write error");
        return false;
    }
    committed_ = true;
    if (!temporary_.empty())
        Pend(temporary_, false);
    return true;
}

bool WriteFile(const std::string &path, const std::string &text)
{
    OutputFile file(path);
    if (!file.Open())
        return false;
    file.Stream() << text;
    return file.Commit();
}

bool OutputsAreApart(const std::vector<std::string> &outputs, const std::vector<std::string> &inputs)
{
    for (size_t i = 0; i < outputs.size(); i++) {
        for (const std::string &input : inputs)
            if (input != "-" && outputs[i] != "-" && SameFile(outputs[i], input)) {
                std::fprintf(stderr, "q7cal-report: the output %s is also an input: nothing written\n",
                             outputs[i].c_str());
                return false;
            }
        for (size_t j = 0; j < i; j++)
            if (outputs[i] == "-" ? outputs[j] == "-" : outputs[j] != "-" && SameFile(outputs[i], outputs[j])) {
                std::fprintf(stderr, "q7cal-report: two outputs go to %s: nothing written\n",
                             outputs[i] == "-" ? "standard output" : outputs[i].c_str());
                return false;
            }
    }
    return true;
}

void RemoveOutputsOnSignals()
{
    for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN)  // a signal ignored by whoever started us stays ignored
            continue;
        action.sa_handler = RemovePendingOutputs;
        sigemptyset(&action.sa_mask);
        action.sa_flags = 0;
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace q7report

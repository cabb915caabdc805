#include "report_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>

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

double SecondsSince(const timespec &first)
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec - first.tv_sec) + static_cast<double>(now.tv_nsec - first.tv_nsec) / 1e9;
}

}  // namespace

bool ReadTranscript(const std::string &name, UnitRecord &record, std::vector<TimedLine> &lines)
{
    FILE *file = name == "-" ? stdin : std::fopen(name.c_str(), "rb");
    struct stat info {};
    if (file == nullptr || fstat(fileno(file), &info) != 0) {
        std::fprintf(stderr, "q7cal-report: cannot read %s: %s\n", name.c_str(), std::strerror(errno));
        if (file != nullptr && file != stdin)
            std::fclose(file);
        return false;
    }
    record.source = name == "-" ? kStandardInput : name;
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
        std::fprintf(stderr, "q7cal-report: %s is not a limits table: %s\n", path.c_str(), error.c_str());
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

}  // namespace q7report

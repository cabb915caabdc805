#include "history_spool.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>

#include "report_files.h"

namespace q7report {
namespace {

// Makes the folder and those above it, for this user alone.
bool MakeFolders(const std::string &folder)
{
    for (size_t slash = folder.find('/', 1); ; slash = folder.find('/', slash + 1)) {
        std::string part = folder.substr(0, slash);
        if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST)
            return false;
        if (slash == std::string::npos)
            return true;
    }
}

bool ReadSpooled(const std::string &path, nlohmann::json &record)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    record = nlohmann::json::parse(text.str(), nullptr, false);
    return in && !record.is_discarded() && record.is_object() && record.contains("history") &&
           record["history"].is_string() && record.contains("entry");
}

}  // namespace

std::string DefaultSpoolFolder()
{
    const char *state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && state[0] == '/')
        return std::string(state) + "/q7cal-report/spool";
    const char *home = std::getenv("HOME");
    return std::string(home != nullptr && home[0] == '/' ? home : "/tmp") + "/.local/state/q7cal-report/spool";
}

bool HistorySpool::Put(const HistoryEntry &entry, const std::string &where)
{
    if (!MakeFolders(folder_)) {
        std::fprintf(stderr, "q7cal-report: cannot make the spool %s: %s\n", folder_.c_str(), std::strerror(errno));
        return false;
    }
    // Named to sort in the order kept: the moment, the process, a count.
    static unsigned count = 0;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    char name[96];
    std::snprintf(name, sizeof name, "/%012lld.%09ld-%010d-%06u.json", static_cast<long long>(now.tv_sec), now.tv_nsec,
                  static_cast<int>(getpid()), ++count);
    nlohmann::json record = {{"history", where}, {"entry", entry.Json()}};
    return WriteFile(folder_ + name, record.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
}

std::vector<std::string> HistorySpool::Waiting(const std::string &where) const
{
    std::vector<std::string> files;
    DIR *directory = opendir(folder_.c_str());
    if (directory == nullptr)
        return files;
    for (dirent *item; (item = readdir(directory)) != nullptr;) {
        std::string name = item->d_name;
        nlohmann::json record;
        if (name[0] != '.' && name.size() > 5 && name.compare(name.size() - 5, 5, ".json") == 0 &&
            ReadSpooled(folder_ + "/" + name, record) && record["history"] == where)
            files.push_back(folder_ + "/" + name);
    }
    closedir(directory);
    std::sort(files.begin(), files.end());
    return files;
}

bool HistorySpool::Flush(HistoryDatabase &history, const std::string &where, size_t &appended, HistoryError &error)
{
    appended = 0;
    // One run flushes at a time, so that the records go in, in order, once.
    int lock = open((folder_ + "/.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock < 0 && errno == ENOENT)
        return true;  // no spool: nothing waits
    if (lock < 0 || flock(lock, LOCK_EX) != 0) {
        error.text = "cannot lock the spool " + folder_ + ": " + std::strerror(errno);
        if (lock >= 0)
            close(lock);
        return false;
    }
    bool flushed = true;
    for (const std::string &file : Waiting(where)) {
        nlohmann::json record;
        std::optional<HistoryEntry> entry;
        if (ReadSpooled(file, record))
            entry = HistoryEntry::FromJson(record["entry"]);
        if (!entry) {
            error.text = file + " is no record of this q7cal-report's";
            flushed = false;
            break;
        }
        if (!history.Append(*entry, error)) {
            flushed = false;
            break;
        }
        if (unlink(file.c_str()) != 0) {
            error.text = "cannot remove " + file + ": " + std::strerror(errno);
            flushed = false;
            break;
        }
        appended++;
    }
    close(lock);
    return flushed;
}

}  // namespace q7report

// Records that wait for their history: when the history cannot be reached
// (a server down, a lock held past the wait), a unit's record is kept in a
// folder of its own, each record a file written whole or not at all, and
// appended, in the order it was kept and once, by the next run that reaches
// the history.
#ifndef Q7REPORT_HISTORY_SPOOL_H
#define Q7REPORT_HISTORY_SPOOL_H

#include <string>
#include <vector>

#include "history_database.h"

namespace q7report {

// $XDG_STATE_HOME/q7cal-report/spool, else ~/.local/state/q7cal-report/spool.
std::string DefaultSpoolFolder();

class HistorySpool {
public:
    explicit HistorySpool(std::string folder) : folder_(std::move(folder)) {}
    const std::string &Folder() const { return folder_; }

    // Keeps the entry for the history `where` (named without a password);
    // false, said on stderr, when it cannot be kept.
    bool Put(const HistoryEntry &entry, const std::string &where);
    // The files of the records waiting for `where`, the oldest first.
    std::vector<std::string> Waiting(const std::string &where) const;
    // Appends every record waiting for `where`, in order, each removed once
    // the history has it; stops at the first that cannot be appended.
    bool Flush(HistoryDatabase &history, const std::string &where, size_t &appended, HistoryError &error);

private:
    std::string folder_;
};

}  // namespace q7report

#endif

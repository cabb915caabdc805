// The two homes of a history: an SQLite file (a station's) and a PostgreSQL
// database (a line's). Each says in `error` why it cannot be opened.
#ifndef Q7REPORT_HISTORY_BACKENDS_H
#define Q7REPORT_HISTORY_BACKENDS_H

#include <memory>
#include <string>

#include "history_database.h"

namespace q7report {

// How long a station waits for another one's write before it gives up.
inline constexpr int kLockWaitSeconds = 5;

std::unique_ptr<HistoryDatabase> OpenSqliteHistory(const std::string &path, bool forReading, HistoryError &error);
std::unique_ptr<HistoryDatabase> OpenPostgresHistory(const std::string &uri, HistoryError &error);

}  // namespace q7report

#endif

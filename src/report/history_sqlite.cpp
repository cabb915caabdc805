#include <sqlite3.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>

#include "history_backends.h"

namespace q7report {
namespace {

// A station's history in one SQLite file.
class SqliteHistory : public HistoryDatabase {
public:
    explicit SqliteHistory(sqlite3 *database) : database_(database) {}
    ~SqliteHistory() override
    {
        for (auto &[sql, statement] : statements_)
            sqlite3_finalize(statement);
        sqlite3_close(database_);
    }

    using HistoryDatabase::Query;
    bool Query(const std::string &sql, const std::vector<SqlValue> &parameters, const RowVisitor &visit,
               std::string &error) override
    {
        sqlite3_stmt *statement = Prepared(sql, error);
        if (statement == nullptr)
            return false;
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
        for (size_t i = 0; i < parameters.size(); i++)
            if (parameters[i])
                sqlite3_bind_text(statement, static_cast<int>(i + 1), parameters[i]->c_str(),
                                  static_cast<int>(parameters[i]->size()), SQLITE_TRANSIENT);
        int step = SQLITE_ROW;
        std::vector<const char *> row(static_cast<size_t>(sqlite3_column_count(statement)));
        while ((step = sqlite3_step(statement)) == SQLITE_ROW) {
            if (!visit)
                continue;
            for (size_t c = 0; c < row.size(); c++)
                row[c] = reinterpret_cast<const char *>(sqlite3_column_text(statement, static_cast<int>(c)));
            visit(row);
        }
        sqlite3_reset(statement);
        return step == SQLITE_DONE || Failed(step, error);
    }

protected:
    bool BeginWriting(std::string &error) override { return Run("BEGIN IMMEDIATE", error); }
    bool Commit(std::string &error) override { return Run("COMMIT", error); }
    void Rollback() override
    {
        std::string ignored;
        Run("ROLLBACK", ignored);
    }
    bool WasLocked() const override { return locked_; }
    const char *RunIdType() const override { return "INTEGER"; }  // SQLite's own row key
    const char *TablesStatement() const override
    {
        return "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%'";
    }
    bool LockSchema(std::string &) override { return true; }  // BEGIN IMMEDIATE holds the only writer's lock
    // Written ahead through its log (WAL), each commit on the disk before it
    // returns, so that a crash or a full disk leaves a transaction whole or
    // absent. Only a history found to be ours is switched to it.
    bool Settle(std::string &error) override { return Run("PRAGMA journal_mode = WAL", error); }

private:
    // False with `error` saying why, in words a station's engineer reads.
    bool Failed(int code, std::string &error)
    {
        locked_ = code == SQLITE_BUSY || code == SQLITE_LOCKED;
        if (locked_)
            error = "it is locked by another station's write (waited " + std::to_string(kLockWaitSeconds) + " s)";
        else
            error = sqlite3_errmsg(database_);
        return false;
    }

    bool Run(const char *sql, std::string &error)
    {
        int code = sqlite3_exec(database_, sql, nullptr, nullptr, nullptr);
        return code == SQLITE_OK || Failed(code, error);
    }

    // Statements are prepared once and kept; "$n" parameters are SQLite's "?n".
    sqlite3_stmt *Prepared(const std::string &sql, std::string &error)
    {
        auto found = statements_.find(sql);
        if (found != statements_.end())
            return found->second;
        std::string local = sql;
        for (size_t at = local.find('$'); at != std::string::npos; at = local.find('$', at + 1))
            local[at] = '?';
        sqlite3_stmt *statement = nullptr;
        int code = sqlite3_prepare_v2(database_, local.c_str(), -1, &statement, nullptr);
        if (code != SQLITE_OK) {
            Failed(code, error);
            return nullptr;
        }
        return statements_[sql] = statement;
    }

    sqlite3 *database_;
    std::map<std::string, sqlite3_stmt *> statements_;
    bool locked_ = false;
};

}  // namespace

namespace {

// "file:PATH?immutable=1": the file as it stands, with no lock and no log,
// for a reader who may not write beside it.
std::string ImmutableUri(const std::string &path)
{
    std::string uri = "file:";
    for (char c : path) {
        if (c == '?' || c == '#' || c == '%') {
            char escaped[4];
            std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned char>(c));
            uri += escaped;
        } else {
            uri += c;
        }
    }
    return uri + "?immutable=1";
}

}  // namespace

std::unique_ptr<HistoryDatabase> OpenSqliteHistory(const std::string &path, bool forReading, HistoryError &error)
{
    // A history to read must be there: a mistyped name is no empty history.
    struct stat info {};
    if (forReading && stat(path.c_str(), &info) != 0) {
        error.text = std::strerror(errno);
        return nullptr;
    }
    sqlite3 *database = nullptr;
    int flags = forReading ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    int code = sqlite3_open_v2(path.c_str(), &database, flags, nullptr);
    // Reading a history kept with its write-ahead log takes a shared-memory
    // file beside it; where the reader may not make one and no log is
    // pending (the last writer has closed), the file alone is the history.
    struct stat log {};
    if (code == SQLITE_OK && forReading &&
        sqlite3_exec(database, "SELECT 1 FROM sqlite_master LIMIT 1", nullptr, nullptr, nullptr) == SQLITE_READONLY &&
        (stat((path + "-wal").c_str(), &log) != 0 || log.st_size == 0)) {
        sqlite3_close(database);
        database = nullptr;
        code = sqlite3_open_v2(ImmutableUri(path).c_str(), &database, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
    }
    if (code != SQLITE_OK) {
        error.text = database != nullptr ? sqlite3_errmsg(database) : "out of memory";
        error.unreachable = code == SQLITE_CANTOPEN;  // its folder is not there (yet)
        sqlite3_close(database);
        return nullptr;
    }
    sqlite3_busy_timeout(database, kLockWaitSeconds * 1000);
    auto history = std::make_unique<SqliteHistory>(database);
    for (const char *setting : {"PRAGMA synchronous = FULL", "PRAGMA foreign_keys = ON"})
        if (!history->Query(setting, {}, nullptr, error.text))
            return nullptr;
    return history;
}

}  // namespace q7report

// The station's (or the line's) history: every judged unit's record kept in
// an SQLite file or a PostgreSQL database, with the same schema in both.
// Statements are prepared, with $1, $2, ... for their parameters; nothing of
// an input's text ever becomes SQL.
#ifndef Q7REPORT_HISTORY_DATABASE_H
#define Q7REPORT_HISTORY_DATABASE_H

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "unit_record.h"

namespace q7report {

// A parameter or a column value as text; nothing for SQL's NULL.
using SqlValue = std::optional<std::string>;
using SqlRow = std::vector<SqlValue>;
// A row as it comes, each column's text or null; valid during the call.
using RowVisitor = std::function<void(const std::vector<const char *> &row)>;

// The schema this program writes and reads; a database of a newer one is
// refused, an older one is brought up to it.
inline constexpr int kHistorySchemaVersion = 2;

// A unit's record as the history keeps it: its run, its checks and its
// measurements as rows. Its ID is its own, so that a record appended twice
// (from the spool, after a crash) is kept once.
struct HistoryEntry {
    std::string recordId;
    std::string unit;  // the unit's name
    SqlRow run;
    std::vector<SqlRow> checks;
    std::vector<SqlRow> measurements;

    nlohmann::json Json() const;
    static std::optional<HistoryEntry> FromJson(const nlohmann::json &json);
};

// The entry of a judged unit; nothing when the unit has no name to be kept
// under (no --unit and no MAC address in its transcript).
std::optional<HistoryEntry> MakeHistoryEntry(const UnitRecord &record, const RunContext &context);

// Why a history could not be used: `unreachable` when it may work later (a
// server that cannot be reached, a lock held past the wait, a folder that is
// not there), so that a record waits for it.
struct HistoryError {
    std::string text;
    bool unreachable = false;
};

class HistoryDatabase {
public:
    // Opens the history at `where`: a PostgreSQL connection URI
    // ("postgresql://..."), else an SQLite file. To append, a file that does
    // not exist is created, and the schema is created or brought up to date;
    // to read, the history is opened read-only and must exist. Nothing, with
    // `error` set, when it cannot be opened, is no history of ours (which is
    // then left as it was), or is of a newer schema.
    static std::unique_ptr<HistoryDatabase> Open(const std::string &where, bool forReading, HistoryError &error);
    virtual ~HistoryDatabase() = default;

    // Appends the entry in one transaction: afterwards the unit is in the
    // history whole, or (after an error) not at all. An entry already kept
    // is not kept again.
    bool Append(const HistoryEntry &entry, HistoryError &error);

    // Runs a statement of this program's own and hands each row to `visit`
    // (which may be empty); false with `error`.
    virtual bool Query(const std::string &sql, const std::vector<SqlValue> &parameters, const RowVisitor &visit,
                       std::string &error) = 0;
    // The same, keeping the rows (none kept for a null `rows`).
    bool Query(const std::string &sql, const std::vector<SqlValue> &parameters, std::vector<SqlRow> *rows,
               std::string &error);

protected:
    // A transaction that may write: taken at once, waiting a bounded time for
    // another station's.
    virtual bool BeginWriting(std::string &error) = 0;
    virtual bool Commit(std::string &error) = 0;
    virtual void Rollback() = 0;
    // Whether the last failure was a lock held past the wait.
    virtual bool WasLocked() const = 0;
    // The column type of a run's generated key.
    virtual const char *RunIdType() const = 0;
    // A statement that lists the database's tables, one name a row.
    virtual const char *TablesStatement() const = 0;
    // Keeps another station from creating or migrating the schema at the
    // same time, for the rest of the writing transaction.
    virtual bool LockSchema(std::string &error) = 0;
    // Settings for a history found to be ours (SQLite's write-ahead log).
    virtual bool Settle(std::string &error) = 0;
    // Brings the schema to kHistorySchemaVersion inside a writing
    // transaction; false with `error` for a database that is not ours.
    bool Migrate(std::string &error);
};

}  // namespace q7report

#endif

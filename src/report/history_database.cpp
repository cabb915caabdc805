#include "history_database.h"

#include <cmath>
#include <cstdio>

#include "history_backends.h"
#include "report_writers.h"

namespace q7report {
namespace {

// The migrations, one list of statements for each schema version from 1 on:
// a database is brought from its version to the newest by running those
// after it in order. A released version's list never changes.
struct Migration {
    std::vector<std::string> statements;  // "%ID%" stands for the run key's column type
};
const Migration kMigrations[] = {
    {{
        "CREATE TABLE q7cal_history (schema_version INTEGER NOT NULL)",
        "INSERT INTO q7cal_history (schema_version) VALUES (0)",
        "CREATE TABLE runs (id %ID% PRIMARY KEY, unit TEXT NOT NULL, unit_id TEXT, mac_address TEXT,"
        " simulated INTEGER NOT NULL, station TEXT, operator TEXT, hostname TEXT NOT NULL, source TEXT NOT NULL,"
        " started TEXT NOT NULL, seconds DOUBLE PRECISION NOT NULL, passed INTEGER NOT NULL,"
        " report_version TEXT NOT NULL, identity TEXT NOT NULL)",
        // The yields read a unit's runs in order from this index alone.
        "CREATE INDEX runs_by_unit ON runs (unit, started, station, passed)",
        "CREATE INDEX runs_by_start ON runs (started)",
        "CREATE TABLE checks (run_id BIGINT NOT NULL REFERENCES runs (id), position INTEGER NOT NULL,"
        " class TEXT NOT NULL, name TEXT NOT NULL, passed INTEGER NOT NULL, expected_error INTEGER NOT NULL,"
        " type TEXT, message TEXT, line INTEGER NOT NULL, at_seconds DOUBLE PRECISION NOT NULL,"
        " seconds DOUBLE PRECISION NOT NULL, PRIMARY KEY (run_id, position))",
        // The failures, counted by check, come from this index alone.
        "CREATE INDEX failed_checks ON checks (class, name, run_id) WHERE passed = 0",
        "CREATE TABLE measurements (run_id BIGINT NOT NULL REFERENCES runs (id), position INTEGER NOT NULL,"
        " name TEXT NOT NULL, quantity TEXT NOT NULL, class TEXT NOT NULL, command TEXT NOT NULL,"
        " unit TEXT NOT NULL, value DOUBLE PRECISION, array_values TEXT, low DOUBLE PRECISION,"
        " high DOUBLE PRECISION, passed INTEGER, line INTEGER NOT NULL, PRIMARY KEY (run_id, position))",
    }},
};

// Rows go in chunks of this many, one statement each: few round trips to a
// server, few parameters to a statement.
constexpr size_t kRowsPerStatement = 64;

SqlValue Text(const std::string &text) { return text.empty() ? SqlValue() : SqlValue(text); }
SqlValue Integer(long long value) { return std::to_string(value); }
SqlValue Flag(bool value) { return std::string(value ? "1" : "0"); }
SqlValue Number(double value)
{
    if (!std::isfinite(value))
        return SqlValue();  // a value the unit printed as nan or inf
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return std::string(text);
}

// "INSERT INTO table (columns) VALUES ($1, ...), ($n, ...)" for `rows` rows.
std::string InsertStatement(const char *table, const std::vector<const char *> &columns, size_t rows)
{
    std::string sql = std::string("INSERT INTO ") + table + " (";
    for (size_t c = 0; c < columns.size(); c++)
        sql += std::string(c ? ", " : "") + columns[c];
    sql += ") VALUES ";
    size_t parameter = 0;
    for (size_t r = 0; r < rows; r++) {
        sql += r ? ", (" : "(";
        for (size_t c = 0; c < columns.size(); c++)
            sql += (c ? ", $" : "$") + std::to_string(++parameter);
        sql += ")";
    }
    return sql;
}

}  // namespace

bool HistoryDatabase::Query(const std::string &sql, const std::vector<SqlValue> &parameters, std::vector<SqlRow> *rows,
                            std::string &error)
{
    if (rows == nullptr)
        return Query(sql, parameters, RowVisitor(), error);
    rows->clear();
    return Query(sql, parameters,
                 [rows](const std::vector<const char *> &row) {
                     SqlRow kept;
                     for (const char *column : row)
                         kept.push_back(column != nullptr ? SqlValue(column) : SqlValue());
                     rows->push_back(std::move(kept));
                 },
                 error);
}

std::unique_ptr<HistoryDatabase> HistoryDatabase::Open(const std::string &where, std::string &error)
{
    std::unique_ptr<HistoryDatabase> database = where.rfind("postgresql://", 0) == 0 || where.rfind("postgres://", 0) == 0
                                                    ? OpenPostgresHistory(where, error)
                                                    : OpenSqliteHistory(where, error);
    if (!database)
        return nullptr;
    // A history of the newest schema needs no lock to be used; any other
    // is looked at, created or migrated by one station at a time.
    std::vector<SqlRow> version;
    std::string ignored;
    if (database->Query("SELECT schema_version FROM q7cal_history", {}, &version, ignored) && version.size() == 1 &&
        version[0][0] == std::to_string(kHistorySchemaVersion))
        return database;
    if (!database->BeginWriting(error))
        return nullptr;
    if (!database->Migrate(error) || !database->Commit(error)) {
        database->Rollback();
        return nullptr;
    }
    return database;
}

bool HistoryDatabase::Migrate(std::string &error)
{
    std::vector<SqlRow> rows;
    if (!LockSchema(error) || !Query(TablesStatement(), {}, &rows, error))
        return false;
    bool ours = false;
    for (const SqlRow &row : rows)
        ours = ours || (row[0] && *row[0] == "q7cal_history");
    int version = 0;
    if (ours) {
        if (!Query("SELECT schema_version FROM q7cal_history", {}, &rows, error))
            return false;
        version = rows.size() == 1 && rows[0][0] ? std::atoi(rows[0][0]->c_str()) : -1;
    } else if (!rows.empty()) {
        error = "it holds other tables than a q7cal-report history";
        return false;
    }
    if (version < 0 || version > kHistorySchemaVersion) {
        error = "its schema version " + std::to_string(version) + " is newer than this q7cal-report's (" +
                std::to_string(kHistorySchemaVersion) + ")";
        return false;
    }
    for (int next = version + 1; next <= kHistorySchemaVersion; next++) {
        for (std::string statement : kMigrations[next - 1].statements) {
            if (size_t id = statement.find("%ID%"); id != std::string::npos)
                statement.replace(id, 4, RunIdType());
            if (!Query(statement, {}, nullptr, error))
                return false;
        }
        if (!Query("UPDATE q7cal_history SET schema_version = $1", {Integer(next)}, nullptr, error))
            return false;
    }
    return true;
}

bool HistoryDatabase::Append(const UnitRecord &record, const RunContext &context, std::string &error)
{
    if (!BeginWriting(error))
        return false;
    nlohmann::ordered_json unit = UnitJson(record, context);
    std::vector<SqlRow> ids;
    bool written = Query("INSERT INTO runs (unit, unit_id, mac_address, simulated, station, operator, hostname, source,"
                         " started, seconds, passed, report_version, identity)"
                         " VALUES ($1, $2, $3, $4, $5, $6, $7, $8, $9, $10, $11, $12, $13) RETURNING id",
                         {UnitName(record, context), Text(context.unit), Text(record.Identity("mac_address")),
                          Flag(record.Simulated().value_or(false)), Text(context.station), Text(context.operatorName),
                          context.hostname, record.source, IsoTime(record.start) + "Z", Number(record.seconds),
                          Flag(record.Passed()), context.reportVersion, unit["unit"]["identity"].dump()},
                         &ids, error);
    written = written && ids.size() == 1 && ids[0][0];
    const SqlValue runId = written ? ids[0][0] : SqlValue();

    const std::vector<const char *> checkColumns = {"run_id", "position", "class",   "name",       "passed", "expected_error",
                                                    "type",   "message",  "line",    "at_seconds", "seconds"};
    for (size_t first = 0; written && first < record.checks.size(); first += kRowsPerStatement) {
        size_t rows = std::min(kRowsPerStatement, record.checks.size() - first);
        std::vector<SqlValue> values;
        for (size_t i = first; i < first + rows; i++) {
            const Check &check = record.checks[i];
            values.insert(values.end(), {runId, Integer(static_cast<long long>(i)), check.classname, check.name,
                                         Flag(check.passed), Flag(check.expectedError), Text(check.type),
                                         Text(check.message), Integer(static_cast<long long>(check.line)),
                                         Number(check.at), Number(check.seconds)});
        }
        written = Query(InsertStatement("checks", checkColumns, rows), values, nullptr, error);
    }

    const std::vector<const char *> measurementColumns = {"run_id",  "position", "name",         "quantity", "class",
                                                          "command", "unit",     "value",        "array_values",
                                                          "low",     "high",     "passed",       "line"};
    for (size_t first = 0; written && first < record.measurements.size(); first += kRowsPerStatement) {
        size_t rows = std::min(kRowsPerStatement, record.measurements.size() - first);
        std::vector<SqlValue> values;
        for (size_t i = first; i < first + rows; i++) {
            const Measurement &m = record.measurements[i];
            nlohmann::json array = nlohmann::json::array();
            for (double value : m.values)
                array.push_back(std::isfinite(value) ? nlohmann::json(value) : nlohmann::json(nullptr));
            values.insert(values.end(),
                          {runId, Integer(static_cast<long long>(i)), m.name, m.quantity, m.classname, m.command,
                           m.unit, m.isArray ? SqlValue() : Number(m.values.front()),
                           m.isArray ? SqlValue(array.dump()) : SqlValue(), m.limit ? Number(m.limit->low) : SqlValue(),
                           m.limit ? Number(m.limit->high) : SqlValue(), m.limit ? Flag(m.withinLimits) : SqlValue(),
                           Integer(static_cast<long long>(m.line))});
        }
        written = Query(InsertStatement("measurements", measurementColumns, rows), values, nullptr, error);
    }
    if (written && Commit(error))
        return true;
    Rollback();
    return false;
}

}  // namespace q7report

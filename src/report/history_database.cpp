#include "history_database.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <ctime>

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
    {{
        // Start times to the millisecond; runs ordered by start, then by the
        // order they were appended (their key), never by verdict.
        "UPDATE runs SET started = substr(started, 1, 19) || '.000Z' WHERE length(started) = 20",
        "DROP INDEX runs_by_unit",
        "ALTER TABLE runs ADD COLUMN marginal INTEGER NOT NULL DEFAULT 0",
        "CREATE INDEX runs_by_unit ON runs (unit, started, id, station, passed, marginal)",
        // A record's own ID: appended twice (from the spool), kept once.
        "ALTER TABLE runs ADD COLUMN record_id TEXT",
        "UPDATE runs SET record_id = 'schema-1-run-' || id",
        "CREATE UNIQUE INDEX runs_by_record ON runs (record_id)",
        // A transcript without the version report does not say whether the
        // device was the simulated one.
        "ALTER TABLE runs ADD COLUMN identified INTEGER NOT NULL DEFAULT 1",
        "ALTER TABLE checks ADD COLUMN marginal INTEGER NOT NULL DEFAULT 0",
    }},
};

const std::vector<const char *> kRunColumns = {"unit", "unit_id", "mac_address", "simulated", "identified", "station",
                                               "operator", "hostname", "source", "started", "seconds", "passed",
                                               "marginal", "report_version", "identity", "record_id"};
// A check's and a measurement's rows, after the key of their run.
const std::vector<const char *> kCheckColumns = {"run_id", "position", "class", "name", "passed", "marginal", "expected_error",
                                                 "type", "message", "line", "at_seconds", "seconds"};
const std::vector<const char *> kMeasurementColumns = {"run_id", "position", "name", "quantity", "class", "command", "unit",
                                                       "value", "array_values", "low", "high", "passed", "line"};

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

// An ID no other record of any station has: the host, the process, the moment and a count.
std::string NewRecordId(const std::string &hostname)
{
    static unsigned long long count = 0;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return hostname + "/" + std::to_string(getpid()) + "/" + std::to_string(now.tv_sec) + "." +
           std::to_string(now.tv_nsec) + "/" + std::to_string(++count);
}

nlohmann::json RowJson(const SqlRow &row)
{
    nlohmann::json json = nlohmann::json::array();
    for (const SqlValue &value : row)
        json.push_back(value ? nlohmann::json(*value) : nlohmann::json(nullptr));
    return json;
}

std::optional<SqlRow> RowFromJson(const nlohmann::json &json, size_t columns)
{
    if (!json.is_array() || json.size() != columns)
        return std::nullopt;
    SqlRow row;
    for (const nlohmann::json &value : json) {
        if (!value.is_null() && !value.is_string())
            return std::nullopt;
        row.push_back(value.is_null() ? SqlValue() : SqlValue(value.get<std::string>()));
    }
    return row;
}

}  // namespace

nlohmann::json HistoryEntry::Json() const
{
    nlohmann::json checkRows = nlohmann::json::array(), measurementRows = nlohmann::json::array();
    for (const SqlRow &row : checks)
        checkRows.push_back(RowJson(row));
    for (const SqlRow &row : measurements)
        measurementRows.push_back(RowJson(row));
    return {{"record_id", recordId}, {"unit", unit}, {"run", RowJson(run)}, {"checks", checkRows},
            {"measurements", measurementRows}};
}

std::optional<HistoryEntry> HistoryEntry::FromJson(const nlohmann::json &json)
{
    if (!json.is_object() || !json.contains("record_id") || !json["record_id"].is_string() || !json.contains("unit") ||
        !json["unit"].is_string() || !json.contains("run") || !json.contains("checks") ||
        !json["checks"].is_array() || !json.contains("measurements") || !json["measurements"].is_array())
        return std::nullopt;
    HistoryEntry entry;
    entry.recordId = json["record_id"].get<std::string>();
    entry.unit = json["unit"].get<std::string>();
    std::optional<SqlRow> run = RowFromJson(json["run"], kRunColumns.size());
    if (!run)
        return std::nullopt;
    entry.run = *run;
    for (const auto &[rows, columns, json] : {std::tuple{&entry.checks, kCheckColumns.size(), &json["checks"]},
                                              std::tuple{&entry.measurements, kMeasurementColumns.size(),
                                                         &json["measurements"]}})
        for (const nlohmann::json &row : *json) {
            std::optional<SqlRow> read = RowFromJson(row, columns - 1);
            if (!read)
                return std::nullopt;
            rows->push_back(*read);
        }
    return entry;
}

std::optional<HistoryEntry> MakeHistoryEntry(const UnitRecord &record, const RunContext &context)
{
    const std::string &mac = record.Identity("mac_address");
    if (context.unit.empty() && mac.empty())
        return std::nullopt;
    HistoryEntry entry;
    entry.recordId = NewRecordId(context.hostname);
    entry.unit = UnitName(record, context);
    nlohmann::ordered_json unit = UnitJson(record, context);
    std::optional<bool> simulated = record.Simulated();
    Totals totals = record.Count();
    entry.run = {entry.unit, Text(context.unit), Text(mac), Flag(simulated.value_or(false)),
                 Flag(simulated.has_value()), Text(context.station), Text(context.operatorName),
                 context.hostname, record.source, UtcTime(record.startMs), Number(record.seconds),
                 Flag(record.Passed()), Integer(static_cast<long long>(totals.marginal)), context.reportVersion,
                 unit["unit"]["identity"].dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace),
                 entry.recordId};
    for (size_t i = 0; i < record.checks.size(); i++) {
        const Check &check = record.checks[i];
        entry.checks.push_back({Integer(static_cast<long long>(i)), check.classname, check.name, Flag(check.passed),
                                Flag(check.marginal), Flag(check.expectedError), Text(check.type),
                                Text(check.message), Integer(static_cast<long long>(check.line)), Number(check.at),
                                Number(check.seconds)});
    }
    for (size_t i = 0; i < record.measurements.size(); i++) {
        const Measurement &m = record.measurements[i];
        nlohmann::json array = nlohmann::json::array();
        for (double value : m.values)
            array.push_back(std::isfinite(value) ? nlohmann::json(value) : nlohmann::json(nullptr));
        entry.measurements.push_back(
            {Integer(static_cast<long long>(i)), m.name, m.quantity, m.classname, m.command, m.unit,
             m.isArray ? SqlValue() : Number(m.values.front()), m.isArray ? SqlValue(array.dump()) : SqlValue(),
             m.limit ? Number(m.limit->low) : SqlValue(), m.limit ? Number(m.limit->high) : SqlValue(),
             m.limit ? Flag(m.withinLimits) : SqlValue(), Integer(static_cast<long long>(m.line))});
    }
    return entry;
}

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

std::unique_ptr<HistoryDatabase> HistoryDatabase::Open(const std::string &where, bool forReading, HistoryError &error)
{
    std::unique_ptr<HistoryDatabase> database = where.rfind("postgresql://", 0) == 0 || where.rfind("postgres://", 0) == 0
                                                    ? OpenPostgresHistory(where, error)
                                                    : OpenSqliteHistory(where, forReading, error);
    if (!database)
        return nullptr;
    // A history of the newest schema needs no lock to be used; any other is
    // looked at, created or migrated by one station at a time, and a reader
    // changes nothing.
    std::vector<SqlRow> version;
    std::string ignored;
    bool newest = database->Query("SELECT schema_version FROM q7cal_history", {}, &version, ignored) &&
                  version.size() == 1 && version[0][0] == std::to_string(kHistorySchemaVersion);
    if (forReading && !newest) {
        error.text = version.size() == 1 && version[0][0]
                         ? "its schema version " + version[0][0].value_or("") + " is not this q7cal-report's (" +
                               std::to_string(kHistorySchemaVersion) + "): append a unit to bring it up to date"
                         : "it is not a q7cal-report history";
        return nullptr;
    }
    if (!newest) {
        if (!database->BeginWriting(error.text)) {
            error.unreachable = database->WasLocked();
            return nullptr;
        }
        if (!database->Migrate(error.text) || !database->Commit(error.text)) {
            error.unreachable = database->WasLocked();
            database->Rollback();
            return nullptr;
        }
    }
    if (!forReading && !database->Settle(error.text))
        return nullptr;
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

bool HistoryDatabase::Append(const HistoryEntry &entry, HistoryError &error)
{
    if (!BeginWriting(error.text)) {
        error.unreachable = WasLocked();
        return false;
    }
    std::vector<SqlRow> ids;
    bool written = Query(InsertStatement("runs", kRunColumns, 1) + " ON CONFLICT (record_id) DO NOTHING RETURNING id",
                         entry.run, &ids, error.text);
    // No key: the record is in the history already, from an earlier try.
    const SqlValue runId = written && ids.size() == 1 ? ids[0][0] : SqlValue();
    for (const auto &[table, columns, rows] : {std::tuple{"checks", &kCheckColumns, &entry.checks},
                                               std::tuple{"measurements", &kMeasurementColumns, &entry.measurements}})
        for (size_t first = 0; written && runId && first < rows->size(); first += kRowsPerStatement) {
            size_t count = std::min(kRowsPerStatement, rows->size() - first);
            std::vector<SqlValue> values;
            for (size_t i = first; i < first + count; i++) {
                values.push_back(runId);
                values.insert(values.end(), (*rows)[i].begin(), (*rows)[i].end());
            }
            written = Query(InsertStatement(table, *columns, count), values, nullptr, error.text);
        }
    if (written && Commit(error.text))
        return true;
    error.unreachable = WasLocked();
    Rollback();
    return false;
}

}  // namespace q7report

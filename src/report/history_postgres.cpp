#include <libpq-fe.h>

#include "history_backends.h"

namespace q7report {
namespace {

// The first line of what libpq or the server said.
std::string FirstLine(const char *message)
{
    std::string text = message != nullptr ? message : "";
    text = text.substr(0, text.find('\n'));
    return text.empty() ? "the server gave no reason" : text;
}

// A line's history on a PostgreSQL server, which many stations write at once.
class PostgresHistory : public HistoryDatabase {
public:
    explicit PostgresHistory(PGconn *connection) : connection_(connection) {}
    ~PostgresHistory() override { PQfinish(connection_); }

    using HistoryDatabase::Query;
    bool Query(const std::string &sql, const std::vector<SqlValue> &parameters, const RowVisitor &visit,
               std::string &error) override
    {
        // One round trip: the server prepares the statement unnamed and binds
        // the parameters apart from it. A process runs each statement once or
        // twice, so that a named one would cost a round trip more.
        std::vector<const char *> values;
        for (const SqlValue &parameter : parameters)
            values.push_back(parameter ? parameter->c_str() : nullptr);
        PGresult *result = PQexecParams(connection_, sql.c_str(), static_cast<int>(values.size()), nullptr,
                                        values.data(), nullptr, nullptr, 0);
        bool ok = Succeeded(result, error);
        if (ok && visit) {
            std::vector<const char *> row(static_cast<size_t>(PQnfields(result)));
            for (int r = 0; r < PQntuples(result); r++) {
                for (size_t c = 0; c < row.size(); c++)
                    row[c] = PQgetisnull(result, r, static_cast<int>(c)) ? nullptr
                                                                          : PQgetvalue(result, r, static_cast<int>(c));
                visit(row);
            }
        }
        PQclear(result);
        return ok;
    }

protected:
    bool BeginWriting(std::string &error) override
    {
        // A lock another station holds longer than this ends the wait with an error.
        // Both in one round trip.
        return Run(("BEGIN; SET LOCAL lock_timeout = '" + std::to_string(kLockWaitSeconds) + "s'").c_str(), error);
    }
    bool Commit(std::string &error) override { return Run("COMMIT", error); }
    void Rollback() override
    {
        std::string ignored;
        Run("ROLLBACK", ignored);
    }
    bool WasLocked() const override { return locked_; }
    const char *RunIdType() const override { return "BIGSERIAL"; }
    const char *TablesStatement() const override
    {
        return "SELECT table_name FROM information_schema.tables WHERE table_schema = current_schema()";
    }
    // Any fixed key of this program's: only schema changes take it.
    bool LockSchema(std::string &error) override { return Run("SELECT pg_advisory_xact_lock(7213741)", error); }
    bool Settle(std::string &) override { return true; }

private:
    bool Succeeded(PGresult *result, std::string &error)
    {
        ExecStatusType status = PQresultStatus(result);
        if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK)
            return true;
        // A lock held past the wait, or the server gone: the record can wait for it.
        const char *state = result != nullptr ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
        locked_ = PQstatus(connection_) != CONNECTION_OK || (state != nullptr && std::string(state) == "55P03");
        error = FirstLine(result != nullptr ? PQresultErrorMessage(result) : PQerrorMessage(connection_));
        return false;
    }

    bool Run(const char *sql, std::string &error)
    {
        PGresult *result = PQexec(connection_, sql);
        bool ok = Succeeded(result, error);
        PQclear(result);
        return ok;
    }

    PGconn *connection_;
    bool locked_ = false;
};

}  // namespace

std::unique_ptr<HistoryDatabase> OpenPostgresHistory(const std::string &uri, HistoryError &error)
{
    PGconn *connection = PQconnectdb(uri.c_str());
    if (connection == nullptr || PQstatus(connection) != CONNECTION_OK) {
        error.text = FirstLine(connection != nullptr ? PQerrorMessage(connection) : "out of memory");
        error.unreachable = connection != nullptr;
        PQfinish(connection);
        return nullptr;
    }
    // The server's notices ("already exists, skipping") are not the engineer's concern.
    PQsetNoticeProcessor(connection, [](void *, const char *) {}, nullptr);
    return std::make_unique<PostgresHistory>(connection);
}

}  // namespace q7report

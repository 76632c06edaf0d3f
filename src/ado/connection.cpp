// Connections over ODBC. Each connection has its own environment of the driver manager, so that closing it
// frees everything.
#include "ado/connection.h"

#include <string>
#include <vector>

#include "ado/connection_impl.h"
#include "ado/error_numbers.h"
#include "ado/statement_run.h"

namespace ado {
namespace {

constexpr char kSource[] = "ADODB.Connection";

/// Names for the first columns of ODBC's catalogue of procedures. The driver's own names depend on its
/// version of ODBC.
const std::vector<std::string> kProcedureFields = {"PROCEDURE_CATALOG", "PROCEDURE_SCHEMA", "PROCEDURE_NAME"};

unsigned Seconds(std::int32_t value) {
    return value > 0 ? static_cast<unsigned>(value) : 0;
}

[[noreturn]] void Raise(const Error& error) {
    throw CallError(error.Number, error.Source, error.Description);
}

void RefuseOptions(std::int32_t options, bool text_allowed) {
    if (options != adOptionUnspecified && !(text_allowed && options == adCmdText)) {
        RaiseOwnError(kArgumentsInConflict, kSource, "option " + std::to_string(options));
    }
}

} // namespace

void Connection::Impl::RequireOpen() const {
    if (session == nullptr) {
        RaiseOwnError(kObjectClosed, kSource);
    }
}

void Connection::Impl::RequireClosed() const {
    if (session != nullptr) {
        RaiseOwnError(kObjectOpen, kSource);
    }
}

std::unique_ptr<Session> Connection::Impl::Connect() const {
    auto made = std::make_unique<Session>();
    made->connection.DriverConnect(connection_string, Seconds(connection_timeout));
    made->drops_results_after_error = made->connection.DropsResultsAfterError();
    return made;
}

std::unique_ptr<Recordset> Connection::Impl::Run(const Work& work, std::int64_t& records_affected) {
    errors.Clear();
    try {
        odbc::Statement statement(session->connection);
        statement.SetQueryTimeout(Seconds(work.timeout));
        if (work.results_after_error && session->drops_results_after_error) {
            statement.KeepResultsAfterError();
        }
        StatementRun run(statement, session->connection);
        run.Run([&] { work.start(statement); });
        errors = ErrorsOf(run.Diagnostics());
        records_affected = run.RecordsAffected();
        if (run.Failed()) {
            Raise(errors.Item(0));
        }
        if (work.finish) {
            work.finish(statement);
        }
        return run.TakeRecordset();
    } catch (const odbc::OdbcError& error) {
        Fail(error);
    }
}

void Connection::Impl::Fail(const odbc::OdbcError& error) {
    errors = ErrorsOf(error.Diagnostics());
    Raise(errors.Item(0));
}

Connection::Connection() : impl_(std::make_unique<Impl>()) {}
Connection::Connection(Connection&&) noexcept = default;
Connection& Connection::operator=(Connection&&) noexcept = default;
Connection::~Connection() = default;

void Connection::CursorLocation(std::int32_t value) {
    impl_->RequireClosed();
    if (value != adUseClient) {
        RaiseOwnError(kFeatureNotAvailable, kSource, "cursor location " + std::to_string(value));
    }
    impl_->cursor_location = value;
}

void Connection::ConnectionString(const std::string& value) {
    impl_->RequireClosed();
    impl_->connection_string = value;
}

void Connection::ConnectionTimeout(std::int32_t seconds) {
    impl_->RequireClosed();
    impl_->connection_timeout = seconds;
}

void Connection::CommandTimeout(std::int32_t seconds) {
    impl_->command_timeout = seconds;
}

void Connection::Open(const std::string& connection_string, const std::string& user,
                      const std::string& password, std::int32_t options) {
    impl_->RequireClosed();
    RefuseOptions(options, false);
    if (!user.empty() || !password.empty()) {
        RaiseOwnError(kFeatureNotAvailable, kSource, "a user or password beside the connection string");
    }
    if (impl_->cursor_location != adUseClient) {
        RaiseOwnError(kFeatureNotAvailable, kSource, "cursor location 2");
    }
    if (!connection_string.empty()) {
        impl_->connection_string = connection_string;
    }
    impl_->errors.Clear();
    try {
        impl_->session = impl_->Connect();
    } catch (const odbc::OdbcError& error) {
        impl_->Fail(error);
    }
    impl_->errors = ErrorsOf(impl_->session->connection.TakeMessages());
}

std::unique_ptr<Recordset> Connection::Execute(const std::string& command_text,
                                               std::int64_t& records_affected, std::int32_t options) {
    impl_->RequireOpen();
    RefuseOptions(options, true);
    return impl_->Run({.timeout = impl_->command_timeout,
                       .results_after_error = true,
                       .start = [&](odbc::Statement& statement) { statement.ExecDirect(command_text); }},
                      records_affected);
}

std::unique_ptr<Recordset> Connection::OpenSchema(std::int32_t schema) {
    impl_->RequireOpen();
    if (schema != adSchemaProcedures) {
        RaiseOwnError(kFeatureNotAvailable, kSource, "schema " + std::to_string(schema));
    }
    std::int64_t ignored = 0;
    const std::unique_ptr<Recordset> catalogue =
        impl_->Run({.timeout = impl_->command_timeout,
                    .start = [](odbc::Statement& statement) { statement.Procedures(); }},
                   ignored);
    RowStore rows;
    std::vector<Variant> row(kProcedureFields.size());
    for (; !catalogue->Eof(); catalogue->MoveNext()) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            row[i] = catalogue->Fields().Item(static_cast<std::int32_t>(i)).Value();
        }
        rows.Append(row);
    }
    return std::make_unique<Recordset>(kProcedureFields, std::move(rows));
}

std::int32_t Connection::State() const {
    return impl_->session ? adStateOpen : adStateClosed;
}

void Connection::Close() {
    impl_->RequireOpen();
    impl_->session.reset();
}

const ado::Errors& Connection::Errors() const {
    return impl_->errors;
}

} // namespace ado

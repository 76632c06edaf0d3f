// The connection over ODBC. Each has a driver manager's environment of its own, so that nothing outlives it.
#include "ado/connection.h"

#include "ado/connection_impl.h"
#include "ado/error_numbers.h"
#include "ado/statement_run.h"

namespace ado {
namespace {

namespace odbc = platform::odbc;

constexpr char kSource[] = "ADODB.Connection";

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

void Connection::Impl::CheckOpen(bool wanted) const {
    if ((session != nullptr) != wanted) {
        RaiseOwnError(wanted ? kObjectClosed : kObjectOpen, kSource);
    }
}

std::unique_ptr<Session> Connection::Impl::Connect() const {
    auto made = std::make_unique<Session>();
    made->connection.DriverConnect(connection_string, Seconds(connection_timeout));
    made->drops_results_behind_error = made->connection.DropsResultsBehindError();
    return made;
}

std::unique_ptr<Recordset> Connection::Impl::Run(const Work& work, std::int64_t& records_affected) {
    errors.Clear();
    try {
        odbc::Statement statement(session->connection);
        statement.SetQueryTimeout(Seconds(work.timeout));
        if (work.results_behind_error && session->drops_results_behind_error) {
            statement.KeepResultsBehindError();
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
    impl_->CheckOpen(false);
    if (value != adUseClient) {
        RaiseOwnError(kFeatureNotAvailable, kSource, "cursor location " + std::to_string(value));
    }
    impl_->cursor_location = value;
}

std::int32_t Connection::CursorLocation() const {
    return impl_->cursor_location;
}

void Connection::ConnectionString(const std::string& value) {
    impl_->CheckOpen(false);
    impl_->connection_string = value;
}

const std::string& Connection::ConnectionString() const {
    return impl_->connection_string;
}

void Connection::ConnectionTimeout(std::int32_t seconds) {
    impl_->CheckOpen(false);
    impl_->connection_timeout = seconds;
}

std::int32_t Connection::ConnectionTimeout() const {
    return impl_->connection_timeout;
}

void Connection::CommandTimeout(std::int32_t seconds) {
    impl_->command_timeout = seconds;
}

std::int32_t Connection::CommandTimeout() const {
    return impl_->command_timeout;
}

void Connection::Open(const std::string& connection_string, const std::string& user,
                      const std::string& password, std::int32_t options) {
    impl_->CheckOpen(false);
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
    impl_->CheckOpen(true);
    RefuseOptions(options, true);
    return impl_->Run({.timeout = impl_->command_timeout,
                       .results_behind_error = true,
                       .start = [&](odbc::Statement& statement) { statement.ExecDirect(command_text); }},
                      records_affected);
}

std::int32_t Connection::State() const {
    return impl_->session ? adStateOpen : adStateClosed;
}

void Connection::Close() {
    impl_->CheckOpen(true);
    impl_->session.reset();
}

const ado::Errors& Connection::Errors() const {
    return impl_->errors;
}

} // namespace ado

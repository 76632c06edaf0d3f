// Implements the functions of odbc/odbc.h that the package store uses.
#include "fakes/scripted_odbc.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "odbc/odbc_rows.h"

namespace fakes {
namespace {
ScriptedOdbc* current = nullptr;
} // namespace

ScriptedOdbc::ScriptedOdbc() {
    current = this;
}

ScriptedOdbc::~ScriptedOdbc() {
    current = nullptr;
}

ScriptedOdbc& ScriptedOdbc::Current() {
    if (current == nullptr) {
        std::fputs("ODBC was used, and the test has no ScriptedOdbc\n", stderr);
        std::abort();
    }
    return *current;
}

} // namespace fakes

namespace odbc {
namespace {

void ThrowIfAny(const char* function, const std::vector<Diagnostic>& diagnostics) {
    if (!diagnostics.empty()) {
        throw OdbcError(function, diagnostics);
    }
}

} // namespace

std::string_view WithoutOrigin(std::string_view message) {
    const std::size_t end = message.rfind(']');
    return end == std::string_view::npos ? message : message.substr(end + 1);
}

OdbcError::OdbcError(const char* function, std::vector<Diagnostic> diagnostics)
    : function_(function), diagnostics_(std::move(diagnostics)) {}

Handle::Handle(HandleKind kind, HandleKind /*parent_kind*/, void* /*parent*/) : kind_(kind) {}
Handle::Handle(Handle&& other) noexcept = default;
Handle::~Handle() = default;

Environment::Environment() : handle_(HandleKind::Environment, HandleKind::Environment, nullptr) {}

Connection::Connection(const Environment& environment)
    : handle_(HandleKind::Connection, HandleKind::Environment, environment.Get()) {}

Connection::~Connection() = default;

void Connection::DriverConnect(const std::string& connection_string, unsigned /*login_timeout*/) {
    auto& script = fakes::ScriptedOdbc::Current();
    script.connection_strings.push_back(connection_string);
    ThrowIfAny("SQLDriverConnect", script.connect_error);
    connected_ = true;
}

struct Statement::BoundParameter {};

Statement::Statement(const Connection& connection)
    : handle_(HandleKind::Statement, HandleKind::Connection, connection.Get()) {}
Statement::Statement(Statement&& other) noexcept = default;
Statement::~Statement() = default;

void Statement::SetQueryTimeout(unsigned /*seconds*/) {}

void Statement::Prepare(const std::string& sql) {
    fakes::ScriptedOdbc::Current().prepared = {sql, {}};
}

void Statement::Bind(std::uint16_t position, const Parameter& parameter) {
    auto& parameters = fakes::ScriptedOdbc::Current().prepared.parameters;
    parameters.resize(std::max<std::size_t>(parameters.size(), position));
    parameters[position - 1U] = parameter;
}

void Statement::Execute() {
    auto& script = fakes::ScriptedOdbc::Current();
    script.executed.push_back(script.prepared);
    script.answer = {};
    script.next_row = 0;
    script.drained = false;
    if (!script.answers.empty()) {
        script.answer = std::move(script.answers.front());
        script.answers.pop_front();
    }
    ThrowIfAny("SQLExecute", script.answer.error);
}

bool Statement::MoreResults() {
    auto& script = fakes::ScriptedOdbc::Current();
    ThrowIfAny("SQLMoreResults", std::exchange(script.answer.late_error, {}));
    script.drained = true;
    return false;
}

struct RowReader::State {};

RowReader::RowReader(Statement& /*statement*/) {}
RowReader::~RowReader() = default;

const std::vector<Column>& RowReader::Columns() const {
    return fakes::ScriptedOdbc::Current().answer.columns;
}

bool RowReader::Next(std::vector<Value>& row) {
    auto& script = fakes::ScriptedOdbc::Current();
    if (script.next_row == script.answer.rows.size()) {
        return false;
    }
    row = script.answer.rows[script.next_row++];
    return true;
}

} // namespace odbc

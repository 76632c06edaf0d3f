// Implements ado::Connection and ado::Command on the answers of FakeAdo.
#include "fakes/fake_ado.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace fakes {
namespace {

FakeAdo* current = nullptr;
constexpr char kExecute[] = "Execute 1 ";

} // namespace

AdoAnswer Rows(std::vector<AdoRow> rows) {
    AdoAnswer answer;
    const std::size_t fields = rows.empty() ? 1 : rows.front().size();
    for (std::size_t i = 0; i < fields; ++i) {
        answer.fields.push_back("column" + std::to_string(i));
    }
    answer.rows = std::move(rows);
    return answer;
}

AdoAnswer Failing(std::int32_t number, const std::string& description) {
    AdoAnswer answer;
    answer.errors = {{number, description, "SQL Server", 50000, "42000"}};
    answer.fails = true;
    return answer;
}

AdoAnswer LostConnection() {
    AdoAnswer answer;
    answer.errors = {{-2147467259, "Communication link failure", "SQL Server", 0, "08S01"}};
    answer.fails = true;
    return answer;
}

AdoAnswer WithErrors(const std::vector<std::int32_t>& numbers) {
    AdoAnswer answer;
    for (const std::int32_t number : numbers) {
        answer.errors.push_back({number, "error " + std::to_string(number), "SQL Server", 0, "01000"});
    }
    return answer;
}

FakeAdo::FakeAdo() {
    current = this;
}

FakeAdo::~FakeAdo() {
    current = nullptr;
}

FakeAdo& FakeAdo::Current() {
    if (current == nullptr) {
        std::fputs("a connection was used, and the test has no FakeAdo\n", stderr);
        std::abort();
    }
    return *current;
}

void FakeAdo::Answer(const std::string& statement, AdoAnswer answer) {
    answers_[statement].push_back(std::move(answer));
}

std::vector<std::string> FakeAdo::Statements() const {
    std::vector<std::string> statements;
    for (const std::string& call : calls) {
        if (call.starts_with(kExecute)) {
            statements.push_back(call.substr(sizeof kExecute - 1));
        }
    }
    return statements;
}

AdoAnswer FakeAdo::Take(const std::string& call) {
    if (calls_before_loss_) {
        if (*calls_before_loss_ == 0) {
            ++missed;
            return LostConnection();
        }
        --*calls_before_loss_;
    }
    const auto found = answers_.find(call);
    if (found == answers_.end() || found->second.empty()) {
        return {};
    }
    AdoAnswer answer = std::move(found->second.front());
    found->second.erase(found->second.begin());
    return answer;
}

} // namespace fakes

namespace ado {

using fakes::AdoAnswer;
using fakes::FakeAdo;

struct Connection::Impl {
    Impl() { ++FakeAdo::Current().connections; }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl() {
        --FakeAdo::Current().connections;
        if (open) {
            --FakeAdo::Current().open_connections;
            ++FakeAdo::Current().destroyed_while_open;
        }
    }

    void Record(const std::string& call) const { FakeAdo::Current().calls.push_back(call); }
    AdoAnswer Take(const std::string& call) {
        AdoAnswer answer = FakeAdo::Current().Take(call);
        errors = ado::Errors(answer.errors);
        if (answer.fails) {
            if (answer.errors.empty()) {
                throw CallError(-2147467259, "fake", "Unspecified error");
            }
            const Error& first = answer.errors.front();
            throw CallError(first.Number, first.Source, first.Description);
        }
        return answer;
    }

    std::string connection_string;
    ado::Errors errors;
    bool open = false;
};

namespace {

std::unique_ptr<Recordset> RecordsetOf(AdoAnswer answer) {
    if (answer.no_recordset) {
        return nullptr;
    }
    if (answer.fields.empty() && !answer.no_columns) {
        return std::make_unique<Recordset>();
    }
    RowStore rows;
    for (const fakes::AdoRow& row : answer.rows) {
        rows.Append(row);
    }
    return std::make_unique<Recordset>(std::move(answer.fields), std::move(rows));
}

std::string Shown(const Variant& value) {
    return value.IsEmpty() ? "(Empty)" : value.IsNull() ? "(Null)" : value.ToString();
}

} // namespace

Connection::Connection() : impl_(std::make_unique<Impl>()) {}
Connection::Connection(Connection&&) noexcept = default;
Connection& Connection::operator=(Connection&&) noexcept = default;
Connection::~Connection() = default;

void Connection::CursorLocation(std::int32_t value) {
    impl_->Record("CursorLocation " + std::to_string(value));
}
void Connection::ConnectionString(const std::string& value) {
    impl_->Record("ConnectionString " + value);
    impl_->connection_string = value;
}
void Connection::ConnectionTimeout(std::int32_t seconds) {
    impl_->Record("ConnectionTimeout " + std::to_string(seconds));
}
void Connection::CommandTimeout(std::int32_t seconds) {
    impl_->Record("CommandTimeout " + std::to_string(seconds));
}
void Connection::Open(const std::string& connection_string, const std::string& user,
                      const std::string& password, std::int32_t options) {
    impl_->Record("Open '" + connection_string + "' '" + user + "' '" + password + "' " +
                  std::to_string(options));
    if (impl_->open) {
        RaiseOwnError(kObjectOpen, "fake");
    }
    impl_->Take("Open");
    if (impl_->connection_string.empty()) {
        throw CallError(-2147467259, "fake", "Data source name not found and no default driver specified");
    }
    impl_->open = true;
    ++FakeAdo::Current().open_connections;
}

std::unique_ptr<Recordset> Connection::Execute(const std::string& command_text,
                                               std::int64_t& records_affected, std::int32_t options) {
    impl_->Record("Execute " + std::to_string(options) + " " + command_text);
    if (!impl_->open) {
        RaiseOwnError(kObjectClosed, "fake");
    }
    records_affected = -1;
    return RecordsetOf(impl_->Take(command_text));
}

std::unique_ptr<Recordset> Connection::OpenSchema(std::int32_t schema) {
    const std::string call = "OpenSchema " + std::to_string(schema);
    impl_->Record(call);
    return RecordsetOf(impl_->Take(call));
}

std::int32_t Connection::State() const {
    return impl_->open ? adStateOpen : adStateClosed;
}

void Connection::Close() {
    impl_->Record("Close");
    if (!impl_->open) {
        RaiseOwnError(kObjectClosed, "fake");
    }
    impl_->Take("Close");
    impl_->open = false;
    --FakeAdo::Current().open_connections;
}

const ado::Errors& Connection::Errors() const {
    if (FakeAdo::Current().on_errors_read) {
        FakeAdo::Current().on_errors_read();
    }
    return impl_->errors;
}

Command::Command() {
    ++FakeAdo::Current().commands;
}
Command::~Command() {
    --FakeAdo::Current().commands;
}

void Command::ActiveConnection(Connection& connection) {
    FakeAdo::Current().calls.emplace_back("Command.ActiveConnection");
    connection_ = &connection;
}

void Command::CommandText(const std::string& value) {
    FakeAdo::Current().calls.push_back("Command.CommandText " + value);
    command_text_ = value;
}

void Command::CommandType(std::int32_t value) {
    FakeAdo::Current().calls.push_back("Command.CommandType " + std::to_string(value));
    command_type_ = value;
}

void Command::CommandTimeout(std::int32_t seconds) {
    FakeAdo::Current().calls.push_back("Command.CommandTimeout " + std::to_string(seconds));
    command_timeout_ = seconds;
}

Connection& Command::RequireReady() const {
    if (connection_ == nullptr || connection_->State() == adStateClosed) {
        RaiseOwnError(kInvalidConnection, "fake");
    }
    return *connection_;
}

std::unique_ptr<Recordset> Command::Execute(std::int64_t& records_affected, std::int32_t options) {
    std::string call = "call " + command_text_;
    std::string values = " " + std::to_string(options);
    for (const Parameter& parameter : parameters_.items_) {
        values += " " + parameter.Name() + "=" + Shown(parameter.Value());
    }
    FakeAdo::Current().calls.push_back(call + values);
    AdoAnswer answer = RequireReady().impl_->Take(call);
    for (Parameter& parameter : parameters_.items_) {
        const auto given = answer.output.find(parameter.Name());
        if (given != answer.output.end()) {
            parameter.Value(given->second);
        }
    }
    records_affected = -1;
    return RecordsetOf(std::move(answer));
}

void Parameters::Refresh() {
    FakeAdo::Current().calls.emplace_back("Refresh");
    const std::vector<Parameter> before = Take();
    Fill(command_->RequireReady().impl_->Take("Refresh").parameters, before);
}

} // namespace ado

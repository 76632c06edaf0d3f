// Variables, options, messages, transactions, cursors.
#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/define/definitions.h"
#include "devserver/tsql/rows/row_writer.h"
#include "devserver/tsql/run/interpreter.h"
#include "devserver/tsql/run/statements.h"
#include "devserver/tsql/scalar/arithmetic.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/user_messages.h"

namespace devsql {

void Interpreter::Declare(const ast::DeclareStatement& declare) {
    for (const ast::Declaration& declaration : declare.declarations) {
        const std::string name = ToUpper(declaration.name);
        if (declaration.table) {
            DeclareTable(session_, declaration.name, *declaration.table);
        } else if (declaration.cursor) {
            session_.calls().frame().cursors[name] = nullptr;
        } else {
            Emission emission(session_);
            const Type type = Binder(session_, emission).ResolveType(declaration.type, 1);
            if (type.id == TypeId::Text || type.id == TypeId::NText || type.id == TypeId::Image) {
                RaiseError(2739);
            }
            // A declaration in a loop keeps the variable's value, as in SQL Server.
            session_.calls().frame().variables.try_emplace(name, Variable{type, {}});
            if (declaration.value) {
                Type given;
                const Value value = ComputeExpression(session_, *declaration.value, &given);
                AssignTo(session_, declaration.name, value, given);
            }
        }
    }
}

void Interpreter::SetVariable(const ast::SetVariableStatement& set) {
    Type type;
    Value value = ComputeExpression(session_, *set.value, &type);
    if (set.op) {
        const Variable& old = session_.calls().FindVariable(set.name);
        const Type result = OperatorType(*set.op, old.type, type);
        value = Evaluate(*set.op, old.value, old.type, value, type);
        type = result;
    }
    AssignTo(session_, set.name, value, type);
}

// ------------------------------------------------------------------ SET options

namespace {

std::int64_t Number(SessionCore& session, const ast::Expr& expr, std::int64_t otherwise) {
    Type type;
    const Value value = ComputeExpression(session, expr, &type);
    return IsNull(value) ? otherwise : std::get<std::int64_t>(Convert(value, type, Simple(TypeId::Int)));
}

/// Empty for NULL.
std::string TextOf(SessionCore& session, const ast::Expr& expr) {
    Type type;
    const Value value = ComputeExpression(session, expr, &type);
    return IsNull(value) ? std::string() : ValueText(value, type);
}

struct Switch {
    std::string_view name;
    bool Options::*member;
};
constexpr std::array<Switch, 11> kSwitches = {{{"NOCOUNT", &Options::nocount},
                                               {"XACT_ABORT", &Options::xact_abort},
                                               {"ANSI_NULLS", &Options::ansi_nulls},
                                               {"QUOTED_IDENTIFIER", &Options::quoted_identifier},
                                               {"CONCAT_NULL_YIELDS_NULL", &Options::concat_null_yields_null},
                                               {"NOEXEC", &Options::noexec},
                                               {"PARSEONLY", &Options::parseonly},
                                               {"FMTONLY", &Options::fmtonly},
                                               {"ANSI_DEFAULTS", &Options::quoted_identifier},
                                               {"IMPLICIT_TRANSACTIONS", &Options::implicit_transactions},
                                               {"CURSOR_CLOSE_ON_COMMIT", &Options::cursor_close_on_commit}}};

struct Isolation {
    std::string_view name;
    std::int16_t number;
};
constexpr Isolation kIsolationLevels[] = {
    {"READ UNCOMMITTED", 1}, {"READ COMMITTED", 2}, {"REPEATABLE READ", 3}, {"SERIALIZABLE", 4}};

/// Options that clients send at login and that scripts contain. This server always behaves as with the value
/// given here; setting another value is refused.
struct Fixed {
    std::string_view name;
    std::string_view value; ///< empty: any
};
constexpr std::array<Fixed, 16> kFixed = {{{"ANSI_WARNINGS", ""},
                                           {"ANSI_PADDING", ""},
                                           {"ANSI_NULL_DFLT_ON", ""},
                                           {"ANSI_NULL_DFLT_OFF", "OFF"},
                                           {"ARITHABORT", ""},
                                           {"ARITHIGNORE", "OFF"},
                                           {"NUMERIC_ROUNDABORT", "OFF"},
                                           {"REMOTE_PROC_TRANSACTIONS", ""},
                                           {"FORCEPLAN", ""},
                                           {"SHOWPLAN_TEXT", "OFF"},
                                           {"SHOWPLAN_ALL", "OFF"},
                                           {"STATISTICS IO", "OFF"},
                                           {"STATISTICS TIME", "OFF"},
                                           {"STATISTICS PROFILE", "OFF"},
                                           {"LANGUAGE", "US_ENGLISH"},
                                           {"DEADLOCK_PRIORITY", ""}}};

struct NumberOption {
    std::string_view name;
    std::int64_t Options::*member;
};
constexpr std::array<NumberOption, 3> kNumbers = {{{"ROWCOUNT", &Options::rowcount},
                                                   {"TEXTSIZE", &Options::textsize},
                                                   {"LOCK_TIMEOUT", &Options::lock_timeout}}};

void SetFirstDay(DateSettings& dates, std::int64_t day) {
    if (day < 1 || day > 7) {
        RaiseError(2742, {std::to_string(day)});
    }
    dates.first_day = static_cast<std::int32_t>(day);
}

void SetDateOrder(DateSettings& dates, const std::string& order) {
    constexpr std::array<std::pair<std::string_view, DateOrder>, 3> kOrders = {
        {{"MDY", DateOrder::MonthDayYear},
         {"DMY", DateOrder::DayMonthYear},
         {"YMD", DateOrder::YearMonthDay}}};
    for (const auto& [name, value] : kOrders) {
        if (name == order) {
            dates.order = value;
            return;
        }
    }
    constexpr std::array<std::string_view, 3> kRare = {"YDM", "MYD", "DYM"};
    RaiseError(std::ranges::find(kRare, order) == kRare.end() ? 2741 : 40517,
               {std::ranges::find(kRare, order) == kRare.end() ? order : "DATEFORMAT " + order});
}

} // namespace

void Interpreter::SetIdentityInsert(const ast::SetOptionStatement& set) {
    Emission emission(session_);
    const Target target = BindTargetAs(session_, emission, set.table, 1088);
    Identities& identities = session_.identities();
    if (target.table->IdentityColumn() == nullptr) {
        RaiseError(8106, {set.table.text()});
    }
    if (set.value == "ON") {
        if (!identities.insert_table().empty() && !identities.InsertsInto(*target.table)) {
            RaiseError(8107, {identities.insert_table(), set.table.text()});
        }
        identities.StartInsert(*target.table);
    } else if (identities.InsertsInto(*target.table)) {
        identities.StopInsert();
    }
}

void Interpreter::SetOption(const ast::SetOptionStatement& set) {
    Options& options = session_.options();
    for (const std::string& option : set.options) {
        if (option == "IDENTITY_INSERT") {
            SetIdentityInsert(set);
            continue;
        }
        if (option == "TRANSACTION ISOLATION LEVEL") {
            session_.SetIsolationLevel(
                std::ranges::find(kIsolationLevels, set.value, &Isolation::name)->number);
            continue;
        }
        if (option == "DATEFIRST" && set.expr) {
            SetFirstDay(options.dates, Number(session_, *set.expr, 0));
            continue;
        }
        if (option == "DATEFORMAT") {
            SetDateOrder(options.dates, set.expr ? AsciiUpper(TextOf(session_, *set.expr)) : set.value);
            continue;
        }
        bool known = false;
        for (const Switch& entry : kSwitches) {
            if (entry.name == option) {
                options.*entry.member = set.value == "ON";
                known = true;
            }
        }
        for (const NumberOption& entry : kNumbers) {
            if (entry.name == option && set.expr) {
                Type type;
                const Value value = ComputeExpression(session_, *set.expr, &type);
                options.*entry.member = std::get<std::int64_t>(Convert(value, type, Simple(TypeId::BigInt)));
                known = true;
            }
        }
        for (const Fixed& entry : kFixed) {
            if (entry.name != option) {
                continue;
            }
            if (!entry.value.empty() && !set.expr && set.value != entry.value) {
                RaiseError(40517, {option + " " + set.value});
            }
            options.others[option] = set.value;
            known = true;
        }
        if (!known) {
            RaiseError(195, {option, "SET option"});
        }
    }
}

// ------------------------------------------------------------------ messages

void Interpreter::Print(const ast::PrintStatement& print) {
    Type type;
    const Value value = ComputeExpression(session_, *print.value, &type);
    std::string text = IsNull(value) ? std::string() : ValueText(value, type);
    text = text.empty() ? " " : text; // SQL Server sends a blank for an empty text.
    session_.results().Print(
        {0, 0, 1, SubText(text, 0, 8000), session_.calls().frame().procedure, session_.status().line});
}

RaisedMessage Interpreter::RaisedBy(const ast::RaiserrorStatement& raise) {
    Type type;
    const Value message = ComputeExpression(session_, *raise.message, &type);
    std::vector<FormatArgument> arguments;
    for (const ast::ExprPtr& argument : raise.arguments) {
        FormatArgument formatted;
        formatted.value = ComputeExpression(session_, *argument, &formatted.type);
        arguments.push_back(std::move(formatted));
    }
    RaisedMessage raised;
    raised.severity = raise.severity ? Number(session_, *raise.severity, 16) : 16;
    raised.state = raise.state ? Number(session_, *raise.state, 1) : 1;
    if (raise.severity && IsCharacter(type.id)) {
        raised.text = FormatRaiserror(IsNull(message) ? "" : std::get<std::string>(message), arguments);
        return raised;
    }
    raised.number =
        static_cast<std::int32_t>(std::get<std::int64_t>(Convert(message, type, Simple(TypeId::Int))));
    if (!raise.severity) { // RAISERROR 50001 'text'
        raised.text = ValueText(arguments.at(0).value, arguments.at(0).type);
        return raised;
    }
    if (raised.number < 13000 || raised.number == 50000) {
        RaiseError(2732, {std::to_string(raised.number), "13000", "2147483647"});
    }
    const std::optional<NumberedMessage> found = FindMessageText(session_, raised.number, arguments);
    if (!found) {
        RaiseError(18054, {std::to_string(raised.number), std::to_string(raised.severity),
                           std::to_string(raised.state)});
    }
    raised.severity = raised.severity < 0 ? found->severity : raised.severity;
    raised.text = found->text;
    return raised;
}

void Interpreter::Raiserror(const ast::RaiserrorStatement& raise) {
    constexpr std::int64_t kHighestUnlogged = 18;
    constexpr std::int64_t kFirstFatal = 20;
    constexpr std::int64_t kHighest = 25;
    const RaisedMessage raised = RaisedBy(raise);
    if (raised.severity > kHighestUnlogged && !raise.log) {
        RaiseError(2754, {std::to_string(kHighestUnlogged)});
    }
    const std::int64_t severity = std::clamp<std::int64_t>(raised.severity, 0, kHighest);
    const Message sent = {
        raised.number,
        static_cast<std::uint8_t>(severity == 10 ? 0 : severity),
        static_cast<std::uint8_t>(raised.state < 0 || raised.state > 255 ? 1 : raised.state),
        raised.text,
        session_.calls().frame().procedure,
        session_.status().line};
    session_.status().last_error = severity > 10 || raise.set_error ? raised.number : 0;
    if (severity >= kFirstFatal) { // Ends the connection, even inside TRY.
        session_.results().Print(sent);
        session_.interruption().EndSession();
        session_.interruption().Request();
        AbortBatch();
    }
    if (severity > 10 && tries_ > 0) {
        throw Failure{sent};
    }
    session_.results().Print(sent);
    if (raise.no_wait) {
        session_.results().sink().Flush();
    }
}

void Interpreter::Throw(const ast::ThrowStatement& statement) {
    Message message;
    if (!statement.number) {
        if (session_.status().caught.empty()) {
            RaiseError(10704);
        }
        message = session_.status().caught.back();
    } else {
        message.number = static_cast<std::int32_t>(Number(session_, *statement.number, 50000));
        Type type;
        const Value text = ComputeExpression(session_, *statement.message, &type);
        message.text = IsNull(text) ? "" : ValueText(text, type);
        message.severity = 16;
        message.state = static_cast<std::uint8_t>(Number(session_, *statement.state, 1));
        message.procedure = session_.calls().frame().procedure;
        message.line = session_.status().line;
    }
    session_.status().last_error = message.number;
    if (tries_ > 0) {
        if (session_.options().xact_abort) {
            session_.transactions().Doom();
        }
        throw Failure{message};
    }
    session_.results().Print(message);
    AbortBatch();
}

void Interpreter::Return(const ast::ReturnStatement& statement) {
    return_value_ = 0;
    if (function_result_ != nullptr) {
        if (!statement.value) {
            RaiseError(178);
        }
        Type type;
        const Value value = ComputeExpression(session_, *statement.value, &type);
        function_result_->value =
            IsNull(value) ? Value() : AssignVariable(value, type, function_result_->type);
    } else if (statement.value) {
        const Frame& frame = session_.calls().frame();
        if (frame.procedure.empty() || frame.trigger != nullptr) {
            RaiseError(178);
        }
        return_value_ = static_cast<std::int32_t>(Number(session_, *statement.value, 0));
    }
}

/// WAITFOR DELAY '00:00:05', WAITFOR TIME '22:00'
void Interpreter::Wait(const ast::WaitforStatement& wait) {
    Type type;
    const Value text = ComputeExpression(session_, *wait.time, &type);
    const Value converted = Convert(text, type, Simple(TypeId::DateTime));
    if (IsNull(converted)) {
        RaiseError(148, {"", "WAITFOR"});
    }
    std::int64_t ticks = std::get<DateTime>(converted).ticks;
    if (wait.until) {
        ticks -= Now().ticks;
        ticks += ticks < 0 ? std::int64_t{86400} * 300 : 0;
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ticks * 10 / 3);
    while (std::chrono::steady_clock::now() < end) {
        session_.CheckCancelled();
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(
            std::chrono::milliseconds(20), end - std::chrono::steady_clock::now()));
    }
    session_.results().Done(Command::None, std::nullopt);
}

void Interpreter::Transaction(const ast::TransactionStatement& statement) {
    std::string name = statement.name;
    if (name.starts_with("@")) {
        const Variable& variable = session_.calls().FindVariable(name);
        name = IsNull(variable.value) ? "" : ValueText(variable.value, variable.type);
    }
    switch (statement.action) {
    case ast::TransactionAction::Begin:
        session_.transactions().Begin(name);
        break;
    case ast::TransactionAction::Commit:
        session_.transactions().Commit();
        break;
    case ast::TransactionAction::Rollback:
        session_.transactions().Rollback(name);
        break;
    case ast::TransactionAction::Save:
        session_.transactions().Save(name);
        break;
    }
    if (session_.options().cursor_close_on_commit && session_.transactions().count() == 0) {
        session_.calls().CloseCursors();
    }
    session_.results().Done(Command::None, std::nullopt);
}

// ------------------------------------------------------------------ cursors

void Interpreter::DeclareCursor(const ast::CursorDeclareStatement& declare) {
    const std::string name = ToUpper(declare.name);
    const bool variable = name.starts_with("@");
    auto& cursors =
        declare.local || variable ? session_.calls().frame().cursors : session_.calls().global_cursors();
    if (!variable && cursors.contains(name)) {
        RaiseError(16915, {declare.name});
    }
    auto cursor = std::make_shared<Cursor>();
    cursor->query = declare.query;
    cursor->scroll = declare.scroll;
    cursors[name] = std::move(cursor);
}

void Interpreter::OpenCursor(const std::string& name) {
    const std::shared_ptr<Cursor> cursor = session_.calls().FindCursor(name);
    if (!cursor) {
        RaiseError(16916, {name});
    }
    if (cursor->open) {
        RaiseError(16905);
    }
    OpenRows(session_, *cursor);
    cursor->open = true;
    cursor->position = -1;
}

void Interpreter::RunCursor(const ast::CursorStatement& statement) {
    if (statement.action == ast::CursorAction::Open) {
        OpenCursor(statement.name);
        return;
    }
    const std::shared_ptr<Cursor> cursor = session_.calls().FindCursor(statement.name);
    if (!cursor) {
        RaiseError(16916, {statement.name});
    }
    if (statement.action == ast::CursorAction::Close) {
        if (!cursor->open) {
            RaiseError(16917);
        }
        cursor->open = false;
        cursor->rows.rows.clear();
        cursor->row_ids.clear();
        return;
    }
    const std::string name = ToUpper(statement.name);
    if (session_.calls().frame().cursors.erase(name) == 0) {
        session_.calls().global_cursors().erase(name);
    }
}

/// The cursor's position after the statement: -1 before the first row, the number of rows after the last.
std::int64_t Interpreter::FetchPosition(const ast::FetchStatement& fetch, const Cursor& cursor) {
    const auto count = static_cast<std::int64_t>(cursor.rows.rows.size());
    const std::int64_t offset = fetch.offset ? Number(session_, *fetch.offset, 0) : 0;
    std::int64_t position = cursor.position;
    switch (fetch.direction) {
    case ast::FetchDirection::Next:
        ++position;
        break;
    case ast::FetchDirection::Prior:
        --position;
        break;
    case ast::FetchDirection::First:
        position = 0;
        break;
    case ast::FetchDirection::Last:
        position = count - 1;
        break;
    case ast::FetchDirection::Absolute:
        position = offset > 0 ? offset - 1 : offset < 0 ? count + offset : -1;
        break;
    case ast::FetchDirection::Relative:
        position += offset;
        break;
    }
    return std::clamp<std::int64_t>(position, -1, count);
}

void Interpreter::Fetch(const ast::FetchStatement& fetch) {
    const std::shared_ptr<Cursor> cursor = session_.calls().FindCursor(fetch.name);
    if (!cursor) {
        RaiseError(16916, {fetch.name});
    }
    if (!cursor->open) {
        RaiseError(16917);
    }
    if (fetch.direction != ast::FetchDirection::Next && !cursor->scroll) {
        RaiseError(16911, {"fetch", "forward only"});
    }
    cursor->position = FetchPosition(fetch, *cursor);
    const auto& rows = cursor->rows.rows;
    const auto position = static_cast<std::size_t>(cursor->position);
    const bool found = cursor->position >= 0 && position < rows.size();
    Status& status = session_.status();
    status.fetch_status = found ? 0 : -1;
    if (fetch.into.empty()) {
        session_.results().sink().Columns(cursor->rows.columns);
        if (found) {
            session_.results().sink().Row(rows[position]);
        }
        status.row_count = found ? 1 : 0;
        session_.results().Done(Command::Select, status.row_count);
        return;
    }
    if (fetch.into.size() != cursor->rows.columns.size()) {
        RaiseError(16924);
    }
    for (std::size_t i = 0; found && i < fetch.into.size(); ++i) {
        AssignTo(session_, fetch.into[i], rows[position][i], cursor->rows.columns[i].type);
    }
    status.row_count = found ? 1 : 0;
}

} // namespace devsql

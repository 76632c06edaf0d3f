// EXECUTE, messages, waiting, transactions, and the statements that maintain a server.
#include <algorithm>

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

using namespace ast;

StatementPtr Parser::ParseExecute() {
    if (TakeSymbol("(")) {
        ExecuteStringStatement statement{ParseValue()};
        ExpectSymbol(")");
        UnsupportedIf(IsWord("AT"), "AT");
        return Wrap(std::move(statement));
    }
    if (IsWord("AS") && (IsWord("USER", 1) || IsWord("LOGIN", 1) || IsWord("CALLER", 1))) {
        UnsupportedStatement("EXECUTE AS");
    }
    return Wrap(ParseProcedureCall());
}

ExecuteStatement Parser::ParseProcedureCall() {
    ExecuteStatement call;
    if (Peek().kind == TokenKind::Variable) {
        RequireDeclared(Peek().text);
        if (IsSymbol("=", 1)) {
            call.return_variable = TakeVariable();
            Take();
        }
    }
    if (Peek().kind == TokenKind::Variable) {
        call.procedure_variable = TakeVariable();
        RequireDeclared(call.procedure_variable);
    } else {
        call.procedure = TakeObjectName();
        if (IsSymbol(";") && Peek(1).kind == TokenKind::Integer) { // "name;1"
            Take();
            UnsupportedIf(Take().text != "1", "procedure number");
        }
    }
    const auto begins_argument = [this] {
        if (Peek().kind == TokenKind::Word) {
            return IsName() ? !IsSymbol(":", 1) : IsOneOf({"NULL", "DEFAULT"});
        }
        return Peek().kind == TokenKind::Symbol ? IsSymbol("-") || IsSymbol("+") : !AtEnd();
    };
    if (begins_argument()) {
        CommaSeparated([&] { call.arguments.push_back(ParseArgument()); });
    }
    if (TakeWord("WITH")) {
        ExpectWord("RECOMPILE");
    }
    return call;
}

Argument Parser::ParseArgument() {
    Argument argument;
    if (Peek().kind == TokenKind::Variable && IsSymbol("=", 1)) {
        argument.name = TakeVariable();
        Take();
    }
    if (TakeWord("DEFAULT")) {
        return argument;
    }
    const bool variable = Peek().kind == TokenKind::Variable;
    if (IsName() && Peek().kind != TokenKind::DoubleQuoted) {
        // A bare word is a string: sp_help MyTable.
        argument.value = Make(LiteralExpr{Sized(TypeId::NVarChar, 128), Value(Take().text)});
    } else if (Peek().kind == TokenKind::DoubleQuoted) {
        argument.value = Make(LiteralExpr{Sized(TypeId::NVarChar, 4000), Value(Take().text)});
    } else {
        argument.value = ParseUnary();
    }
    if (variable && (TakeWord("OUTPUT") || TakeWord("OUT"))) {
        argument.output = true;
    }
    return argument;
}

// ------------------------------------------------------------------ messages, waiting, transactions

StatementPtr Parser::ParseRaiserror() {
    RaiserrorStatement raise;
    const bool parenthesis = TakeSymbol("(");
    raise.message = ParseValue();
    if (!parenthesis) { // RAISERROR 50001 'text', an old form
        TakeSymbol(",");
        raise.arguments.push_back(ParseValue());
        return Wrap(std::move(raise));
    }
    ExpectSymbol(",");
    raise.severity = ParseValue();
    ExpectSymbol(",");
    raise.state = ParseValue();
    while (TakeSymbol(",")) {
        raise.arguments.push_back(ParseValue());
    }
    ExpectSymbol(")");
    if (TakeWord("WITH")) {
        CommaSeparated([&] {
            constexpr bool RaiserrorStatement::*kOptions[] = {
                &RaiserrorStatement::no_wait, &RaiserrorStatement::log, &RaiserrorStatement::set_error};
            raise.*kOptions[ExpectOneOf({"NOWAIT", "LOG", "SETERROR"})] = true;
        });
    }
    return Wrap(std::move(raise));
}

bool Parser::BeginsStatementOfNames() const {
    const TokenKind next = Peek(1).kind;
    return (IsWord("THROW") && (next == TokenKind::Integer || next == TokenKind::Variable)) ||
           (IsOneOf({"DISABLE", "ENABLE"}) && IsWord("TRIGGER", 1));
}

StatementPtr Parser::ParseThrow() {
    ThrowStatement statement;
    if (Peek().kind == TokenKind::Integer || Peek().kind == TokenKind::Variable) {
        statement.number = ParseValue();
        ExpectSymbol(",");
        statement.message = ParseValue();
        ExpectSymbol(",");
        statement.state = ParseValue();
    }
    return Wrap(std::move(statement));
}

StatementPtr Parser::ParseWaitfor() {
    WaitforStatement wait;
    wait.until = TakeWord("TIME");
    if (!wait.until) {
        ExpectWord("DELAY");
    }
    wait.time = ParsePrimary();
    return Wrap(std::move(wait));
}

StatementPtr Parser::ParseTransaction(TransactionAction action) {
    TransactionStatement statement{action, {}};
    const bool word = TakeOneOf({"TRAN", "TRANSACTION", "WORK"}) >= 0;
    SyntaxErrorIf(!word && action == TransactionAction::Save);
    if (word && (IsName() && !IsSymbol(":", 1) && !IsWord("THROW"))) {
        statement.name = TakeName();
    } else if (word && Peek().kind == TokenKind::Variable) {
        RequireDeclared(Peek().text);
        statement.name = TakeVariable();
    }
    UnsupportedIf(action == TransactionAction::Begin && TakeWords({"WITH", "MARK"}), "WITH MARK");
    return Wrap(std::move(statement));
}

StatementPtr Parser::ParseFetch() {
    FetchStatement fetch;
    const int direction = TakeOneOf({"NEXT", "PRIOR", "FIRST", "LAST", "ABSOLUTE", "RELATIVE"});
    if (direction >= 0) {
        fetch.direction = static_cast<FetchDirection>(direction);
        if (direction >= 4) {
            fetch.offset = ParseUnary();
        }
        ExpectWord("FROM");
    } else {
        TakeWord("FROM");
    }
    TakeWord("GLOBAL");
    fetch.name = TakeCursorName();
    if (TakeWord("INTO")) {
        CommaSeparated([&] {
            RequireDeclared(Peek().text);
            fetch.into.push_back(TakeVariable());
        });
    }
    return Wrap(std::move(fetch));
}

StatementPtr Parser::ParseReconfigure() {
    if (TakeWord("WITH")) {
        ExpectWord("OVERRIDE");
    }
    return Wrap(MaintenanceStatement{"RECONFIGURE"});
}

/// Labels, statements that are not known by their first word alone, and statements that are refused.
StatementPtr Parser::ParseNamedStatement() {
    if (TakeWords({"UPDATE", "STATISTICS"})) {
        TakeObjectName();
        if (IsName() && !IsWord("WITH")) {
            TakeName();
        }
        SkipParenthesized();
        SkipStatisticsOptions();
        return Wrap(MaintenanceStatement{"UPDATE STATISTICS"});
    }
    // DUMP TRANSACTION x WITH NO_LOG, BACKUP LOG x WITH TRUNCATE_ONLY: there is no log to truncate here.
    if (IsOneOf({"DUMP", "BACKUP"}) && IsOneOf({"TRAN", "TRANSACTION", "LOG"}, 1) && IsWord("WITH", 3) &&
        IsOneOf({"NO_LOG", "TRUNCATE_ONLY"}, 4)) {
        next_ += 5;
        return Wrap(MaintenanceStatement{"BACKUP LOG"});
    }
    constexpr std::string_view kRefused =
        "BACKUP,RESTORE,DUMP,LOAD,READTEXT,WRITETEXT,UPDATETEXT,SHUTDOWN,SETUSER,MERGE,REVERT";
    if (Peek().kind == TokenKind::Word && ListHas(kRefused, Peek().text)) {
        UnsupportedStatement(AsciiUpper(Peek().text));
    }
    if (IsWord("BULK")) {
        UnsupportedStatement("BULK " + AsciiUpper(Peek(1).text));
    }
    if (IsOneOf({"ENABLE", "DISABLE"}) && IsWord("TRIGGER", 1)) {
        return ParseSwitchTriggers();
    }
    if (IsName() && IsSymbol(":", 1)) {
        LabelStatement label{TakeName()};
        Take();
        return Wrap(std::move(label));
    }
    SyntaxError();
}

StatementPtr Parser::ParseCheckIdentity() {
    CheckIdentityStatement check;
    ExpectSymbol("(");
    if (Peek().kind == TokenKind::String || Peek().kind == TokenKind::UnicodeString ||
        Peek().kind == TokenKind::DoubleQuoted) {
        check.table = Take().text;
    } else {
        check.table = TakeObjectName().text();
    }
    if (TakeSymbol(",")) {
        check.reseed = ExpectOneOf({"RESEED", "NORESEED"}) == 0;
        if (check.reseed && TakeSymbol(",")) {
            check.value = ParseValue();
        }
    }
    ExpectSymbol(")");
    check.silent = TakeWords({"WITH", "NO_INFOMSGS"});
    return Wrap(std::move(check));
}

/// Skips a list in parentheses, if one follows.
void Parser::SkipParenthesized() {
    if (!TakeSymbol("(")) {
        return;
    }
    while (!TakeSymbol(")")) {
        SyntaxErrorIf(AtEnd());
        Take();
    }
}

/// WITH FULLSCAN, SAMPLE 50 PERCENT, NORECOMPUTE: this server keeps no statistics.
void Parser::SkipStatisticsOptions() {
    if (!TakeWord("WITH")) {
        return;
    }
    CommaSeparated([&] {
        if (TakeWord("SAMPLE")) {
            TakeInteger();
            TakeOneOf({"PERCENT", "ROWS"});
        } else {
            ExpectOneOf({"FULLSCAN", "RESAMPLE", "NORECOMPUTE", "ALL", "COLUMNS", "INDEX"});
        }
    });
}

/// CREATE STATISTICS name ON table (columns)
StatementPtr Parser::ParseCreateStatistics() {
    TakeName();
    ExpectWord("ON");
    TakeObjectName();
    ParseNameList();
    SkipStatisticsOptions();
    return Wrap(MaintenanceStatement{"CREATE STATISTICS"});
}

/// ALTER INDEX name | ALL ON table REBUILD | REORGANIZE
StatementPtr Parser::ParseAlterIndex() {
    if (!TakeWord("ALL")) {
        TakeName();
    }
    ExpectWord("ON");
    TakeObjectName();
    if (TakeOneOf({"REBUILD", "REORGANIZE"}) < 0) {
        UnsupportedStatement("ALTER INDEX " + AsciiUpper(Peek().text));
    }
    if (TakeWord("WITH")) {
        SkipParenthesized();
    }
    return Wrap(MaintenanceStatement{"ALTER INDEX"});
}

StatementPtr Parser::ParseDbcc() {
    const std::int32_t line = Peek().line;
    const std::string name = AsciiUpper(Take().text);
    if (name == "CHECKIDENT") {
        return ParseCheckIdentity();
    }
    // These reorganise or check a server's files and memory, which this server does not need.
    constexpr std::string_view kAccepted =
        "CHECKDB,CHECKTABLE,CHECKALLOC,CHECKCATALOG,SHRINKDATABASE,SHRINKFILE,DBREINDEX,INDEXDEFRAG,"
        "UPDATEUSAGE,FREEPROCCACHE,FREESYSTEMCACHE,DROPCLEANBUFFERS,TRACEON,TRACEOFF";
    constexpr std::string_view kRefused =
        "CHECKCONSTRAINTS,CLEANTABLE,INPUTBUFFER,OPENTRAN,OUTPUTBUFFER,SHOWCONTIG,SHOW_STATISTICS,SQLPERF,"
        "USEROPTIONS";
    if (!ListHas(kAccepted, name)) {
        throw LocatedError(ListHas(kRefused, name) ? ErrorOf(40517, {"DBCC " + name}) : ErrorOf(2526, {}, 3),
                           line);
    }
    SkipParenthesized();
    MaintenanceStatement statement{"DBCC " + name, true};
    if (TakeWord("WITH")) {
        CommaSeparated([&] {
            const std::string option = TakeName();
            statement.tells = statement.tells && !AsciiEqual(option, "NO_INFOMSGS");
        });
    }
    return Wrap(std::move(statement));
}

} // namespace devsql

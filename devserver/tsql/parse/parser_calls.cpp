// EXECUTE, messages, waiting, transactions, and the statements that maintain a server.
#include <algorithm>
#include <array>

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

using namespace ast;

StatementPtr Parser::ParseExecute() {
    Take();
    if (IsSymbol("(")) {
        Take();
        ExecuteStringStatement statement{ParseValue()};
        ExpectSymbol(")");
        if (IsWord("AT")) {
            Unsupported("AT");
        }
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
            if (Take().text != "1") {
                Unsupported("procedure number");
            }
        }
    }
    const auto begins_argument = [this] {
        if (Peek().kind == TokenKind::Word) {
            return IsName() ? !IsSymbol(":", 1) : IsWord("NULL") || IsWord("DEFAULT");
        }
        return Peek().kind == TokenKind::Symbol ? IsSymbol("-") || IsSymbol("+") : !AtEnd();
    };
    if (begins_argument()) {
        do {
            call.arguments.push_back(ParseArgument());
        } while (TakeSymbol(","));
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
    ExpectWord("RAISERROR");
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
        do {
            const int option = TakeOneOf({"NOWAIT", "LOG", "SETERROR"});
            if (option < 0) {
                SyntaxError();
            }
            raise.no_wait = raise.no_wait || option == 0;
            raise.log = raise.log || option == 1;
            raise.set_error = raise.set_error || option == 2;
        } while (TakeSymbol(","));
    }
    return Wrap(std::move(raise));
}

bool Parser::BeginsStatementOfNames() const {
    const TokenKind next = Peek(1).kind;
    return (IsWord("THROW") && (next == TokenKind::Integer || next == TokenKind::Variable)) ||
           ((IsWord("DISABLE") || IsWord("ENABLE")) && IsWord("TRIGGER", 1));
}

StatementPtr Parser::ParseThrow() {
    ExpectWord("THROW");
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
    ExpectWord("WAITFOR");
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
    if (!word && action == TransactionAction::Save) {
        SyntaxError();
    }
    if (word && (IsName() && !IsSymbol(":", 1) && !IsWord("THROW"))) {
        statement.name = TakeName();
    } else if (word && Peek().kind == TokenKind::Variable) {
        RequireDeclared(Peek().text);
        statement.name = TakeVariable();
    }
    if (action == TransactionAction::Begin && TakeWords({"WITH", "MARK"})) {
        Unsupported("WITH MARK");
    }
    return Wrap(std::move(statement));
}

StatementPtr Parser::ParseFetch() {
    ExpectWord("FETCH");
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
    fetch.name = Peek().kind == TokenKind::Variable ? TakeVariable() : TakeName();
    if (TakeWord("INTO")) {
        do {
            RequireDeclared(Peek().text);
            fetch.into.push_back(TakeVariable());
        } while (TakeSymbol(","));
    }
    return Wrap(std::move(fetch));
}

StatementPtr Parser::ParseMaintenance() {
    if (TakeWord("CHECKPOINT")) {
        return Wrap(MaintenanceStatement{"CHECKPOINT"});
    }
    if (TakeWords({"UPDATE", "STATISTICS"})) {
        TakeObjectName();
        if (IsName() && !IsWord("WITH")) {
            TakeName();
        }
        SkipParenthesized();
        SkipStatisticsOptions();
        return Wrap(MaintenanceStatement{"UPDATE STATISTICS"});
    }
    if (TakeWord("RECONFIGURE")) {
        if (TakeWord("WITH")) {
            ExpectWord("OVERRIDE");
        }
        return Wrap(MaintenanceStatement{"RECONFIGURE"});
    }
    if (TakeWord("KILL")) {
        return Wrap(KillStatement{TakeInteger()});
    }
    if (IsWord("DBCC")) {
        return ParseDbcc();
    }
    if (StatementPtr truncation = ParseLogTruncation()) {
        return truncation;
    }
    constexpr std::array<std::string_view, 11> kRefused = {"BACKUP",   "RESTORE",   "DUMP",       "LOAD",
                                                           "READTEXT", "WRITETEXT", "UPDATETEXT", "SHUTDOWN",
                                                           "SETUSER",  "MERGE",     "REVERT"};
    for (const std::string_view word : kRefused) {
        if (IsWord(word)) {
            UnsupportedStatement(word);
        }
    }
    if (IsWord("BULK")) {
        UnsupportedStatement("BULK " + AsciiUpper(Peek(1).text));
    }
    if ((IsWord("ENABLE") || IsWord("DISABLE")) && IsWord("TRIGGER", 1)) {
        return ParseSwitchTriggers();
    }
    return nullptr;
}

/// DUMP TRANSACTION x WITH NO_LOG, BACKUP LOG x WITH TRUNCATE_ONLY: there is no log to truncate here.
StatementPtr Parser::ParseLogTruncation() {
    const bool log = (IsWord("DUMP") || IsWord("BACKUP")) &&
                     (IsWord("TRAN", 1) || IsWord("TRANSACTION", 1) || IsWord("LOG", 1));
    if (!log || !IsWord("WITH", 3) || !(IsWord("NO_LOG", 4) || IsWord("TRUNCATE_ONLY", 4))) {
        return nullptr;
    }
    Take();
    Take();
    TakeName();
    Take();
    Take();
    return Wrap(MaintenanceStatement{"BACKUP LOG"});
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
        const int action = TakeOneOf({"RESEED", "NORESEED"});
        if (action < 0) {
            SyntaxError();
        }
        check.reseed = action == 0;
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
        if (AtEnd()) {
            SyntaxError();
        }
        Take();
    }
}

/// WITH FULLSCAN, SAMPLE 50 PERCENT, NORECOMPUTE: this server keeps no statistics.
void Parser::SkipStatisticsOptions() {
    if (!TakeWord("WITH")) {
        return;
    }
    do {
        if (TakeWord("SAMPLE")) {
            TakeInteger();
            TakeOneOf({"PERCENT", "ROWS"});
        } else if (TakeOneOf({"FULLSCAN", "RESAMPLE", "NORECOMPUTE", "ALL", "COLUMNS", "INDEX"}) < 0) {
            SyntaxError();
        }
    } while (TakeSymbol(","));
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
    ExpectWord("DBCC");
    const std::int32_t line = Peek().line;
    const std::string name = AsciiUpper(Take().text);
    if (name == "CHECKIDENT") {
        return ParseCheckIdentity();
    }
    // These reorganise or check what needs neither on this server.
    constexpr std::array<std::string_view, 14> kAccepted = {
        "CHECKDB",         "CHECKTABLE",       "CHECKALLOC",  "CHECKCATALOG", "SHRINKDATABASE",
        "SHRINKFILE",      "DBREINDEX",        "INDEXDEFRAG", "UPDATEUSAGE",  "FREEPROCCACHE",
        "FREESYSTEMCACHE", "DROPCLEANBUFFERS", "TRACEON",     "TRACEOFF"};
    constexpr std::array<std::string_view, 9> kRefused = {"CHECKCONSTRAINTS", "CLEANTABLE",   "INPUTBUFFER",
                                                          "OPENTRAN",         "OUTPUTBUFFER", "SHOWCONTIG",
                                                          "SHOW_STATISTICS",  "SQLPERF",      "USEROPTIONS"};
    if (std::ranges::find(kAccepted, name) == kAccepted.end()) {
        const bool known = std::ranges::find(kRefused, name) != kRefused.end();
        throw LocatedError(known ? ErrorOf(40517, {"DBCC " + name}) : ErrorOf(2526, {}, 3), line);
    }
    SkipParenthesized();
    MaintenanceStatement statement{"DBCC " + name, true};
    if (TakeWord("WITH")) {
        do {
            const std::string option = TakeName();
            statement.tells = statement.tells && !AsciiEqual(option, "NO_INFOMSGS");
        } while (TakeSymbol(","));
    }
    return Wrap(std::move(statement));
}

} // namespace devsql

// EXECUTE, messages, waiting, transactions, and the statements that only look after the server.
#include <array>

#include "devserver/tsql/parser_impl.h"
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
    if (!parenthesis) { // RAISERROR 50001 'text', of the oldest scripts
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
        if (TakeWord("WITH")) {
            ExpectWord("FULLSCAN");
        }
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
    constexpr std::array<std::string_view, 14> kRefused = {
        "BACKUP",     "RESTORE",  "BULK",    "DUMP",  "LOAD",    "READTEXT", "WRITETEXT",
        "UPDATETEXT", "SHUTDOWN", "SETUSER", "MERGE", "DISABLE", "ENABLE",   "REVERT"};
    for (const std::string_view word : kRefused) {
        if (IsWord(word)) {
            UnsupportedStatement(word);
        }
    }
    return nullptr;
}

/// DUMP TRANSACTION x WITH NO_LOG, BACKUP LOG x WITH TRUNCATE_ONLY: there is nothing to cut off the log here.
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

StatementPtr Parser::ParseDbcc() {
    ExpectWord("DBCC");
    const std::string name = AsciiUpper(Take().text);
    if (name == "CHECKIDENT") {
        return ParseCheckIdentity();
    }
    // These tidy or check what this server has no need to tidy and checks by itself.
    constexpr std::array<std::string_view, 8> kAccepted = {
        "CHECKDB",   "CHECKTABLE",  "SHRINKDATABASE", "SHRINKFILE",
        "DBREINDEX", "UPDATEUSAGE", "FREEPROCCACHE",  "DROPCLEANBUFFERS"};
    bool accepted = false;
    for (const std::string_view word : kAccepted) {
        accepted = accepted || word == name;
    }
    if (!accepted) {
        Unsupported("DBCC " + name);
    }
    if (TakeSymbol("(")) {
        while (!TakeSymbol(")")) {
            if (AtEnd()) {
                SyntaxError();
            }
            Take();
        }
    }
    if (TakeWords({"WITH", "NO_INFOMSGS"})) {
        TakeSymbol(";");
    }
    return Wrap(MaintenanceStatement{"DBCC " + name});
}

} // namespace devsql

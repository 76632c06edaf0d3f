// Control flow, variables, procedure calls and other statements that are not queries.
#include <algorithm>

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

using namespace ast;

namespace {
/// The reserved words with which a value may begin: after RETURN they belong to it.
constexpr std::string_view kValueWords[] = {
    "NULL",   "CASE", "CONVERT",           "COALESCE",     "LEFT",         "RIGHT",
    "NULLIF", "USER", "CURRENT_TIMESTAMP", "CURRENT_USER", "SESSION_USER", "SYSTEM_USER"};
} // namespace

StatementList Parser::ParseStatementsUntilEnd() {
    StatementList list;
    while (true) {
        SkipSemicolons();
        if (AtEnd() || IsWord("END")) {
            return list;
        }
        StatementPtr statement = ParseStatement();
        if (statement) {
            list.push_back(std::move(statement));
        }
    }
}

StatementPtr Parser::ParseStatement() {
    const Depth depth(*this);
    const std::int32_t line = Peek().line;
    StatementPtr statement = ParseStatementNode();
    statement->line = line;
    module_allowed_ = false;
    TakeSymbol(";");
    return statement;
}

const Parser::StatementEntry Parser::kStatements[] = {
    {"DECLARE", [](Parser& p) { return p.ParseDeclare(); }},
    {"SET", [](Parser& p) { return p.ParseSet(); }},
    {"IF", [](Parser& p) { return p.ParseIf(); }},
    {"BEGIN", [](Parser& p) { return p.ParseBegin(); }},
    {"EXEC", [](Parser& p) { return p.ParseExecute(); }},
    {"EXECUTE", [](Parser& p) { return p.ParseExecute(); }},
    {"CREATE", [](Parser& p) { return p.ParseCreate(); }},
    {"ALTER", [](Parser& p) { return p.ParseAlter(); }},
    {"DROP", [](Parser& p) { return p.ParseDrop(); }},
    {"FETCH", [](Parser& p) { return p.ParseFetch(); }},
    {"WAITFOR", [](Parser& p) { return p.ParseWaitfor(); }},
    {"RAISERROR", [](Parser& p) { return p.ParseRaiserror(); }},
    {"WHILE", [](Parser& p) { return p.ParseWhile(); }},
    {"RETURN", [](Parser& p) { return p.ParseReturn(); }},
    {"THROW", [](Parser& p) { return p.ParseThrow(); }},
    {"BREAK", [](Parser& p) { return p.ParseLoopEnd(BreakStatement{}, 135); }},
    {"CONTINUE", [](Parser& p) { return p.ParseLoopEnd(ContinueStatement{}, 136); }},
    {"GOTO", [](Parser& p) { return Wrap(GotoStatement{p.TakeName()}); }},
    {"PRINT", [](Parser& p) { return Wrap(PrintStatement{p.ParseValue()}); }},
    {"USE", [](Parser& p) { return Wrap(UseStatement{p.TakeName()}); }},
    {"COMMIT", [](Parser& p) { return p.ParseTransaction(TransactionAction::Commit); }},
    {"ROLLBACK", [](Parser& p) { return p.ParseTransaction(TransactionAction::Rollback); }},
    {"SAVE", [](Parser& p) { return p.ParseTransaction(TransactionAction::Save); }},
    {"OPEN", [](Parser& p) { return p.ParseCursor(CursorAction::Open); }},
    {"CLOSE", [](Parser& p) { return p.ParseCursor(CursorAction::Close); }},
    {"DEALLOCATE", [](Parser& p) { return p.ParseCursor(CursorAction::Deallocate); }},
    {"GRANT", [](Parser& p) { return p.ParseGrant(GrantAction::Grant); }},
    {"DENY", [](Parser& p) { return p.ParseGrant(GrantAction::Deny); }},
    {"REVOKE", [](Parser& p) { return p.ParseGrant(GrantAction::Revoke); }},
    {"CHECKPOINT", [](Parser&) { return Wrap(MaintenanceStatement{"CHECKPOINT"}); }},
    {"RECONFIGURE", [](Parser& p) { return p.ParseReconfigure(); }},
    {"KILL", [](Parser& p) { return Wrap(KillStatement{p.TakeInteger()}); }},
    {"DBCC", [](Parser& p) { return p.ParseDbcc(); }},
    {"TRUNCATE", [](Parser& p) { return p.ParseTruncate(); }},
};

StatementPtr Parser::ParseStatementNode() {
    if (StatementPtr statement = ParseDataStatement()) {
        return statement;
    }
    for (const StatementEntry& entry : kStatements) {
        if (TakeWord(entry.word)) {
            return entry.parse(*this);
        }
    }
    return ParseNamedStatement();
}

StatementPtr Parser::ParseDataStatement() {
    std::vector<CommonTable> with;
    if (IsWord("WITH")) {
        with = ParseWith();
    }
    if (IsWord("SELECT") || IsSymbol("(")) {
        QueryPtr query = ParseQuery();
        query->with = std::move(with);
        return Wrap(std::move(query));
    }
    if (IsWord("INSERT")) {
        if (with.empty()) {
            return IsWord("BULK", 1) ? Wrap(ParseInsertBulk()) : Wrap(ParseInsert());
        }
        InsertStatement insert = ParseInsert();
        SyntaxErrorIf(!insert.query);
        insert.query->with = std::move(with);
        return Wrap(std::move(insert));
    }
    if (IsWord("UPDATE") && !IsWord("STATISTICS", 1)) {
        UpdateStatement update = ParseUpdate();
        update.with = std::move(with);
        return Wrap(std::move(update));
    }
    if (IsWord("DELETE")) {
        DeleteStatement statement = ParseDelete();
        statement.with = std::move(with);
        return Wrap(std::move(statement));
    }
    SyntaxErrorIf(!with.empty());
    return nullptr;
}

StatementPtr Parser::ParseTruncate() {
    ExpectWord("TABLE");
    return Wrap(TruncateStatement{TakeObjectName()});
}

StatementPtr Parser::ParseLoopEnd(auto statement, std::int32_t outside) {
    if (loops_ == 0) {
        --next_;
        Fail(outside);
    }
    return Wrap(std::move(statement));
}

StatementPtr Parser::ParseWhile() {
    WhileStatement loop;
    loop.condition = ParseCondition();
    ++loops_;
    loop.body = ParseStatement();
    --loops_;
    return Wrap(std::move(loop));
}

StatementPtr Parser::ParseReturn() {
    const bool word = std::ranges::any_of(kValueWords, [&](std::string_view w) { return IsWord(w); });
    const bool value =
        !AtEnd() && !IsSymbol(";") &&
        (Peek().kind != TokenKind::Word || word || (IsName() && (IsSymbol("(", 1) || IsSymbol(".", 1))));
    return Wrap(ReturnStatement{value ? ParseValue() : nullptr});
}

StatementPtr Parser::ParseCursor(CursorAction action) {
    TakeWord("GLOBAL");
    return Wrap(CursorStatement{action, TakeCursorName()});
}

StatementPtr Parser::ParseBegin() {
    if (TakeWord("TRY")) {
        return ParseTry();
    }
    UnsupportedIf(IsWord("DISTRIBUTED"), "DISTRIBUTED TRANSACTION");
    if (IsOneOf({"TRAN", "TRANSACTION"})) {
        return ParseTransaction(TransactionAction::Begin);
    }
    TakeSymbol(";");
    BlockStatement block;
    block.statements = ParseStatementsUntilEnd();
    ExpectWord("END");
    if (block.statements.empty()) {
        --next_;
        SyntaxError(); // SQL Server refuses an empty block too.
    }
    return Wrap(std::move(block));
}

StatementList Parser::ParseBlock(std::string_view what) {
    TakeSymbol(";");
    StatementList list = ParseStatementsUntilEnd();
    ExpectWord("END");
    ExpectWord(what);
    return list;
}

StatementPtr Parser::ParseTry() {
    TryStatement statement;
    statement.body = ParseBlock("TRY");
    TakeSymbol(";");
    ExpectWord("BEGIN");
    ExpectWord("CATCH");
    statement.handler = ParseBlock("CATCH");
    return Wrap(std::move(statement));
}

StatementPtr Parser::ParseIf() {
    IfStatement statement;
    statement.condition = ParseCondition();
    statement.then = ParseStatement();
    if (TakeWord("ELSE")) {
        statement.otherwise = ParseStatement();
    }
    return Wrap(std::move(statement));
}

// ------------------------------------------------------------------ DECLARE, SET

StatementPtr Parser::ParseDeclare() {
    if (Peek().kind != TokenKind::Variable) {
        return ParseCursorDeclaration(TakeName());
    }
    DeclareStatement declare;
    CommaSeparated([&] { declare.declarations.push_back(ParseDeclaration()); });
    return Wrap(std::move(declare));
}

Declaration Parser::ParseDeclaration() {
    Declaration declaration;
    declaration.name = TakeVariable();
    Declare(declaration.name);
    TakeWord("AS");
    if (TakeWord("TABLE")) {
        declaration.table = ParseTableDefinition();
    } else if (TakeWord("CURSOR")) {
        declaration.cursor = true;
    } else {
        declaration.type = ParseType();
        if (TakeSymbol("=")) {
            declaration.value = ParseValue();
        }
    }
    return declaration;
}

StatementPtr Parser::ParseCursorDeclaration(std::string name) {
    CursorDeclareStatement cursor;
    cursor.name = std::move(name);
    TakeOneOf({"INSENSITIVE"});
    cursor.scroll = TakeWord("SCROLL");
    ExpectWord("CURSOR");
    while (!IsWord("FOR")) {
        if (TakeWord("SCROLL") || TakeWord("STATIC") || TakeWord("KEYSET") || TakeWord("DYNAMIC")) {
            cursor.scroll = true;
        } else if (TakeWord("LOCAL")) {
            cursor.local = true;
        } else if (TakeWord("READ_ONLY") || TakeWord("FAST_FORWARD")) {
            cursor.read_only = true;
        } else {
            ExpectOneOf({"GLOBAL", "FORWARD_ONLY", "OPTIMISTIC", "SCROLL_LOCKS", "TYPE_WARNING"});
        }
    }
    ExpectWord("FOR");
    // ParseQuery would take "FOR UPDATE" and "FOR READ ONLY" for a clause that it refuses.
    cursor.query = std::make_shared<Query>();
    cursor.query->line = Peek().line;
    if (IsWord("WITH")) {
        cursor.query->with = ParseWith();
    }
    cursor.query->body = ParseUnion();
    if (IsWord("ORDER")) {
        cursor.query->order_by = ParseOrderBy();
    }
    cursor.query->max_recursion = SkipQueryOptions();
    if (TakeWords({"FOR", "READ", "ONLY"})) {
        cursor.read_only = true;
    } else if (TakeWords({"FOR", "UPDATE"})) {
        if (TakeWord("OF")) {
            CommaSeparated([&] { TakeName(); });
        }
    }
    return Wrap(std::move(cursor));
}

StatementPtr Parser::ParseSet() {
    return Peek().kind == TokenKind::Variable ? ParseSetVariable() : ParseSetOption();
}

StatementPtr Parser::ParseSetVariable() {
    SetVariableStatement set;
    set.name = TakeVariable();
    RequireDeclared(set.name);
    set.op = TakeAssignment();
    if (!set.op && IsWord("CURSOR")) {
        return ParseCursorDeclaration(set.name);
    }
    set.value = ParseValue();
    return Wrap(std::move(set));
}

namespace {
constexpr std::pair<std::string_view, std::string_view> kIsolationLevels[] = {
    {"READ", "UNCOMMITTED"}, {"READ", "COMMITTED"}, {"REPEATABLE", "READ"}, {"SERIALIZABLE", ""}};
}

StatementPtr Parser::ParseSetOption() {
    SetOptionStatement set;
    if (TakeWord("IDENTITY_INSERT")) {
        set.options = {"IDENTITY_INSERT"};
        set.table = TakeObjectName();
    } else if (TakeWords({"TRANSACTION", "ISOLATION", "LEVEL"})) {
        set.options = {"TRANSACTION ISOLATION LEVEL"};
        if (IsWord("SNAPSHOT")) { // Refuses the whole batch, so that nothing of it runs at another level.
            Unsupported("SNAPSHOT");
        }
        for (const auto& [first, second] : kIsolationLevels) {
            if (IsWord(first) && (second.empty() || IsWord(second, 1))) {
                Take();
                set.value = first;
                if (!second.empty()) {
                    Take();
                    set.value += " " + std::string(second);
                }
                return Wrap(std::move(set));
            }
        }
        SyntaxError();
    } else if (TakeWord("STATISTICS")) {
        set.options = {"STATISTICS " + AsciiUpper(Take().text)};
    } else {
        CommaSeparated([&] {
            SyntaxErrorIf(Peek().kind != TokenKind::Word);
            set.options.push_back(AsciiUpper(Take().text));
        });
    }
    if (IsOneOf({"ON", "OFF"}) || Peek().kind == TokenKind::Word) {
        set.value = AsciiUpper(Take().text);
    } else {
        set.expr = ParseValue();
    }
    for (const std::string& option :
         set.options) { // QUOTED_IDENTIFIER takes effect while the batch is parsed.
        if (option == "QUOTED_IDENTIFIER" || option == "ANSI_DEFAULTS") {
            quoted_identifier_ = set.value == "ON";
        }
    }
    return Wrap(std::move(set));
}

} // namespace devsql

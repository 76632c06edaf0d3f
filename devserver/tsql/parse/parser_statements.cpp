// Control flow, variables, procedure calls and other statements that are not queries.
#include <algorithm>
#include <array>

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
        while (TakeSymbol(";")) {
        }
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

StatementPtr Parser::ParseStatementNode() {
    if (StatementPtr statement = ParseDataStatement()) {
        return statement;
    }
    if (StatementPtr statement = ParseControlStatement()) {
        return statement;
    }
    if (StatementPtr statement = ParseMaintenance()) {
        return statement;
    }
    if (IsName() && IsSymbol(":", 1)) {
        LabelStatement label{TakeName()};
        Take();
        return Wrap(std::move(label));
    }
    SyntaxError();
}

StatementPtr Parser::ParseDataStatement() {
    if (IsWord("SELECT") || IsSymbol("(")) {
        return Wrap(ParseQuery());
    }
    if (IsWord("WITH")) {
        std::vector<CommonTable> with = ParseWith();
        if (IsWord("UPDATE")) {
            UpdateStatement update = ParseUpdate();
            update.with = std::move(with);
            return Wrap(std::move(update));
        }
        if (IsWord("DELETE")) {
            DeleteStatement statement = ParseDelete();
            statement.with = std::move(with);
            return Wrap(std::move(statement));
        }
        if (IsWord("INSERT")) {
            InsertStatement insert = ParseInsert();
            if (!insert.query) {
                SyntaxError();
            }
            insert.query->with = std::move(with);
            return Wrap(std::move(insert));
        }
        QueryPtr query = ParseQuery();
        query->with = std::move(with);
        return Wrap(std::move(query));
    }
    if (IsWord("INSERT")) {
        if (IsWord("BULK", 1)) {
            return Wrap(ParseInsertBulk());
        }
        return Wrap(ParseInsert());
    }
    if (IsWord("UPDATE")) {
        if (IsWord("STATISTICS", 1)) {
            return nullptr;
        }
        return Wrap(ParseUpdate());
    }
    if (IsWord("DELETE")) {
        return Wrap(ParseDelete());
    }
    if (TakeWord("TRUNCATE")) {
        ExpectWord("TABLE");
        return Wrap(TruncateStatement{TakeObjectName()});
    }
    return nullptr;
}

StatementPtr Parser::ParseControlStatement() {
    const Token& token = Peek();
    if (token.kind != TokenKind::Word) {
        return nullptr;
    }
    struct Entry {
        std::string_view word;
        StatementPtr (Parser::*parse)();
    };
    // Each function takes the first word itself.
    static constexpr Entry kEntries[] = {
        {"DECLARE", &Parser::ParseDeclare}, {"SET", &Parser::ParseSet},
        {"IF", &Parser::ParseIf},           {"BEGIN", &Parser::ParseBegin},
        {"EXEC", &Parser::ParseExecute},    {"EXECUTE", &Parser::ParseExecute},
        {"CREATE", &Parser::ParseCreate},   {"ALTER", &Parser::ParseAlter},
        {"DROP", &Parser::ParseDrop},       {"FETCH", &Parser::ParseFetch},
        {"WAITFOR", &Parser::ParseWaitfor}, {"RAISERROR", &Parser::ParseRaiserror},
        {"WHILE", &Parser::ParseWhile},     {"RETURN", &Parser::ParseReturn},
        {"THROW", &Parser::ParseThrow},
    };
    for (const Entry& entry : kEntries) {
        if (IsWord(entry.word)) {
            return (this->*entry.parse)();
        }
    }
    if (IsWord("BREAK") || IsWord("CONTINUE")) {
        if (loops_ == 0) {
            Fail(IsWord("BREAK") ? 135 : 136);
        }
        return AsciiEqual(Take().text, "BREAK") ? Wrap(BreakStatement{}) : Wrap(ContinueStatement{});
    }
    if (TakeWord("GOTO")) {
        return Wrap(GotoStatement{TakeName()});
    }
    if (TakeWord("PRINT")) {
        return Wrap(PrintStatement{ParseValue()});
    }
    if (TakeWord("USE")) {
        return Wrap(UseStatement{TakeName()});
    }
    return ParseActionStatement();
}

StatementPtr Parser::ParseWhile() {
    ExpectWord("WHILE");
    WhileStatement loop;
    loop.condition = ParseCondition();
    ++loops_;
    loop.body = ParseStatement();
    --loops_;
    return Wrap(std::move(loop));
}

StatementPtr Parser::ParseReturn() {
    ExpectWord("RETURN");
    const bool word = std::ranges::any_of(kValueWords, [&](std::string_view w) { return IsWord(w); });
    const bool value =
        !AtEnd() && !IsSymbol(";") &&
        (Peek().kind != TokenKind::Word || word || (IsName() && (IsSymbol("(", 1) || IsSymbol(".", 1))));
    return Wrap(ReturnStatement{value ? ParseValue() : nullptr});
}

/// Statements whose first word is an action on something named: a transaction, a cursor, a right.
StatementPtr Parser::ParseActionStatement() {
    constexpr std::array<std::pair<std::string_view, TransactionAction>, 3> kTransactions = {
        {{"COMMIT", TransactionAction::Commit},
         {"ROLLBACK", TransactionAction::Rollback},
         {"SAVE", TransactionAction::Save}}};
    for (const auto& [word, action] : kTransactions) {
        if (TakeWord(word)) {
            return ParseTransaction(action);
        }
    }
    constexpr std::array<std::pair<std::string_view, CursorAction>, 3> kCursors = {
        {{"OPEN", CursorAction::Open},
         {"CLOSE", CursorAction::Close},
         {"DEALLOCATE", CursorAction::Deallocate}}};
    for (const auto& [word, action] : kCursors) {
        if (TakeWord(word)) {
            TakeWord("GLOBAL");
            return Wrap(
                CursorStatement{action, Peek().kind == TokenKind::Variable ? TakeVariable() : TakeName()});
        }
    }
    constexpr std::array<std::pair<std::string_view, GrantAction>, 3> kGrants = {
        {{"GRANT", GrantAction::Grant}, {"DENY", GrantAction::Deny}, {"REVOKE", GrantAction::Revoke}}};
    for (const auto& [word, action] : kGrants) {
        if (TakeWord(word)) {
            return ParseGrant(action);
        }
    }
    return nullptr;
}

StatementPtr Parser::ParseBegin() {
    ExpectWord("BEGIN");
    if (TakeWord("TRY")) {
        return ParseTry();
    }
    if (IsWord("DISTRIBUTED")) {
        Unsupported("DISTRIBUTED TRANSACTION");
    }
    if (IsWord("TRAN") || IsWord("TRANSACTION")) {
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
    ExpectWord("IF");
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
    ExpectWord("DECLARE");
    if (Peek().kind != TokenKind::Variable) {
        return ParseCursorDeclaration(TakeName());
    }
    DeclareStatement declare;
    do {
        declare.declarations.push_back(ParseDeclaration());
    } while (TakeSymbol(","));
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
        } else if (TakeOneOf({"GLOBAL", "FORWARD_ONLY", "OPTIMISTIC", "SCROLL_LOCKS", "TYPE_WARNING"}) < 0) {
            SyntaxError();
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
            do {
                TakeName();
            } while (TakeSymbol(","));
        }
    }
    return Wrap(std::move(cursor));
}

StatementPtr Parser::ParseSet() {
    ExpectWord("SET");
    return Peek().kind == TokenKind::Variable ? ParseSetVariable() : ParseSetOption();
}

StatementPtr Parser::ParseSetVariable() {
    SetVariableStatement set;
    set.name = TakeVariable();
    RequireDeclared(set.name);
    constexpr std::array<std::pair<std::string_view, BinaryOperator>, 5> kCompound = {
        {{"+=", BinaryOperator::Add},
         {"-=", BinaryOperator::Subtract},
         {"*=", BinaryOperator::Multiply},
         {"/=", BinaryOperator::Divide},
         {"%=", BinaryOperator::Modulo}}};
    for (const auto& [symbol, op] : kCompound) {
        if (TakeSymbol(symbol)) {
            set.op = op;
            set.value = ParseValue();
            return Wrap(std::move(set));
        }
    }
    ExpectSymbol("=");
    if (IsWord("CURSOR")) {
        --next_; // ParseCursorDeclaration takes the keyword itself.
        Take();
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
        do {
            if (Peek().kind != TokenKind::Word) {
                SyntaxError();
            }
            set.options.push_back(AsciiUpper(Take().text));
        } while (TakeSymbol(","));
    }
    if (IsWord("ON") || IsWord("OFF") || Peek().kind == TokenKind::Word) {
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

// The parser's entries, and its handling of tokens, names, types and errors.
#include <algorithm>
#include <array>

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

constexpr int kDeepest = 250;

/// The reserved words of SQL Server 2000, which later versions kept.
constexpr std::string_view kReservedWords =
    "ADD,ALL,ALTER,AND,ANY,AS,ASC,AUTHORIZATION,BACKUP,BEGIN,BETWEEN,BREAK,BROWSE,BULK,BY,CASCADE,CASE,"
    "CHECK,CHECKPOINT,CLOSE,CLUSTERED,COALESCE,COLLATE,COLUMN,COMMIT,COMPUTE,CONSTRAINT,CONTAINS,"
    "CONTAINSTABLE,CONTINUE,CONVERT,CREATE,CROSS,CURRENT,CURRENT_DATE,CURRENT_TIME,CURRENT_TIMESTAMP,"
    "CURRENT_USER,CURSOR,DATABASE,DBCC,DEALLOCATE,DECLARE,DEFAULT,DELETE,DENY,DESC,DISK,DISTINCT,"
    "DISTRIBUTED,DOUBLE,DROP,DUMP,ELSE,END,ERRLVL,ESCAPE,EXCEPT,EXEC,EXECUTE,EXISTS,EXIT,FETCH,FILE,"
    "FILLFACTOR,FOR,FOREIGN,FREETEXT,FREETEXTTABLE,FROM,FULL,FUNCTION,GOTO,GRANT,GROUP,HAVING,HOLDLOCK,"
    "IDENTITY,IDENTITYCOL,IDENTITY_INSERT,IF,IN,INDEX,INNER,INSERT,INTERSECT,INTO,IS,JOIN,KEY,KILL,"
    "LEFT,LIKE,LINENO,LOAD,MERGE,NATIONAL,NOCHECK,NONCLUSTERED,NOT,NULL,NULLIF,OF,OFF,OFFSETS,ON,OPEN,"
    "OPENDATASOURCE,OPENQUERY,OPENROWSET,OPENXML,OPTION,OR,ORDER,OUTER,OVER,PERCENT,PLAN,PRECISION,"
    "PRIMARY,PRINT,PROC,PROCEDURE,PUBLIC,RAISERROR,READ,READTEXT,RECONFIGURE,REFERENCES,REPLICATION,"
    "RESTORE,RESTRICT,RETURN,REVOKE,RIGHT,ROLLBACK,ROWCOUNT,ROWGUIDCOL,RULE,SAVE,SCHEMA,SELECT,"
    "SESSION_USER,SET,SETUSER,SHUTDOWN,SOME,STATISTICS,SYSTEM_USER,TABLE,TEXTSIZE,THEN,TO,TOP,TRAN,"
    "TRANSACTION,TRIGGER,TRUNCATE,TSEQUAL,UNION,UNIQUE,UPDATE,UPDATETEXT,USE,USER,VALUES,VARYING,VIEW,"
    "WAITFOR,WHEN,WHERE,WHILE,WITH,WRITETEXT";

} // namespace

std::string ast::Name::text() const {
    std::string joined;
    for (const std::string& part : parts) {
        joined += (&part == &parts.front() ? "" : ".") + part;
    }
    return joined;
}

bool IsReservedWord(std::string_view word) {
    static const std::vector<std::string_view> list = WordsOf(kReservedWords);
    static const std::set<std::string_view> words(list.begin(), list.end());
    return words.contains(AsciiUpper(word));
}

Parser::Depth::Depth(Parser& parser) : parser_(parser) {
    if (++parser_.depth_ > kDeepest) {
        --parser_.depth_;
        parser_.Fail(191);
    }
}

Parser::Parser(std::string_view source, const ParseOptions& options)
    : source_(source), tokens_(Tokenize(source)), quoted_identifier_(options.quoted_identifier) {
    for (const std::string& variable : options.variables) {
        declared_.insert(ToUpper(variable));
    }
    FindClosings();
}

void Parser::FindClosings() {
    closing_.resize(tokens_.size());
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
        if (tokens_[i].kind != TokenKind::Symbol) {
            continue;
        }
        if (tokens_[i].text == "(") {
            open.push_back(i);
        } else if (tokens_[i].text == ")" && !open.empty()) {
            closing_[open.back()] = i;
            open.pop_back();
        }
    }
}

const Token& Parser::Peek(std::size_t ahead) const {
    return tokens_[std::min(next_ + ahead, tokens_.size() - 1)];
}

Token Parser::Take() {
    Token token = Peek();
    if (next_ + 1 < tokens_.size()) {
        ++next_;
    }
    return token;
}

bool Parser::IsWord(std::string_view word, std::size_t ahead) const {
    const Token& token = Peek(ahead);
    return token.kind == TokenKind::Word && AsciiEqual(token.text, word);
}

bool Parser::IsOneOf(std::initializer_list<std::string_view> words, std::size_t ahead) const {
    return std::ranges::any_of(words, [&](std::string_view word) { return IsWord(word, ahead); });
}

bool Parser::IsSymbol(std::string_view symbol, std::size_t ahead) const {
    const Token& token = Peek(ahead);
    return token.kind == TokenKind::Symbol && token.text == symbol;
}

bool Parser::IsName(std::size_t ahead) const {
    const Token& token = Peek(ahead);
    return token.kind == TokenKind::Bracketed ||
           (token.kind == TokenKind::Word && !IsReservedWord(token.text)) ||
           (token.kind == TokenKind::DoubleQuoted && quoted_identifier_);
}

bool Parser::TakeWord(std::string_view word) {
    if (!IsWord(word)) {
        return false;
    }
    Take();
    return true;
}

bool Parser::TakeWords(std::initializer_list<std::string_view> words) {
    std::size_t ahead = 0;
    for (const std::string_view word : words) {
        if (!IsWord(word, ahead++)) {
            return false;
        }
    }
    next_ += words.size();
    return true;
}

bool Parser::TakeSymbol(std::string_view symbol) {
    if (!IsSymbol(symbol)) {
        return false;
    }
    Take();
    return true;
}

void Parser::ExpectWord(std::string_view word) {
    SyntaxErrorIf(!TakeWord(word));
}

void Parser::ExpectSymbol(std::string_view symbol) {
    SyntaxErrorIf(!TakeSymbol(symbol));
}

int Parser::TakeOneOf(std::initializer_list<std::string_view> words) {
    int index = 0;
    for (const std::string_view word : words) {
        if (TakeWord(word)) {
            return index;
        }
        ++index;
    }
    return -1;
}

int Parser::ExpectOneOf(std::initializer_list<std::string_view> words) {
    const int index = TakeOneOf(words);
    SyntaxErrorIf(index < 0);
    return index;
}

void Parser::SkipSemicolons() {
    while (TakeSymbol(";")) {
    }
}

void Parser::ExpectEnd() {
    SyntaxErrorIf(!AtEnd());
}

void Parser::SyntaxError() const {
    const Token& token = Peek();
    if (token.kind == TokenKind::Word && IsReservedWord(token.text)) {
        Fail(156, {token.text});
    }
    if (token.kind == TokenKind::End && next_ > 0) {
        const Token& last = tokens_[next_ - 1];
        throw LocatedError(ErrorOf(102, {last.text}), last.line);
    }
    Fail(102, {token.text});
}

void Parser::Fail(std::int32_t number, std::initializer_list<std::string_view> arguments) const {
    constexpr std::int32_t kUndeclared = 137; // Its state is 2, that of all others is 1.
    throw LocatedError(ErrorOf(number, arguments, number == kUndeclared ? 2 : 1), Peek().line);
}

void Parser::Unsupported(std::string_view what) const {
    Fail(40517, {what});
}

void Parser::SyntaxErrorIf(bool condition) const {
    if (condition) {
        SyntaxError();
    }
}

void Parser::UnsupportedIf(bool condition, std::string_view what) const {
    if (condition) {
        Unsupported(what);
    }
}

void Parser::UnsupportedStatement(std::string_view what) const {
    Fail(40510, {what});
}

std::string Parser::TakeName() {
    SyntaxErrorIf(!IsName());
    return Take().text;
}

std::string Parser::TakeString() {
    const TokenKind kind = Peek().kind;
    if (kind != TokenKind::String && kind != TokenKind::UnicodeString &&
        !(kind == TokenKind::DoubleQuoted && !quoted_identifier_)) {
        SyntaxError();
    }
    return Take().text;
}

std::string Parser::TakeNameOrString() {
    return IsName() || Peek().kind == TokenKind::DoubleQuoted ? Take().text : TakeString();
}

std::int64_t Parser::TakeInteger() {
    const bool negative = TakeSymbol("-");
    SyntaxErrorIf(Peek().kind != TokenKind::Integer || Peek().text.size() > 18);
    const std::int64_t number = std::stoll(Take().text);
    return negative ? -number : number;
}

ast::Name Parser::TakeObjectName() {
    ast::Name name;
    while (IsSymbol(".")) { // "..t" and ".dbo.t"
        Take();
        name.parts.emplace_back();
    }
    name.parts.push_back(TakeName());
    while (TakeSymbol(".")) {
        while (TakeSymbol(".")) {
            name.parts.emplace_back();
        }
        // After a point, a reserved word is a name too.
        name.parts.push_back(Peek().kind == TokenKind::Word ? Take().text : TakeName());
    }
    if (name.parts.size() > 4) {
        Fail(117, {"object", name.text(), "3"});
    }
    return name;
}

ast::Name Parser::TakeTable() {
    if (Peek().kind != TokenKind::Variable) {
        return TakeObjectName();
    }
    RequireDeclared(Peek().text, 1087);
    return {{Take().text}};
}

std::string Parser::TakeCursorName() {
    return Peek().kind == TokenKind::Variable ? TakeVariable() : TakeName();
}

std::string Parser::TakeVariable() {
    SyntaxErrorIf(Peek().kind != TokenKind::Variable);
    return Take().text;
}

void Parser::Declare(const std::string& variable) {
    if (!declared_.insert(ToUpper(variable)).second) {
        Fail(134, {variable});
    }
}

void Parser::RequireDeclared(const std::string& variable, std::int32_t error) const {
    if (!variable.starts_with("@@") && !declared_.contains(ToUpper(variable))) {
        Fail(error, {variable});
    }
}

std::string Parser::Text(std::size_t begin, std::size_t end) const {
    return std::string(source_.substr(begin, end - begin));
}

std::size_t Parser::PreviousEnd() const {
    return next_ == 0 ? 0 : tokens_[next_ - 1].end;
}

namespace {
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> kTwoWordTypes = {{
    {"double", "precision"},
    {"char", "varying"},
    {"character", "varying"},
    {"binary", "varying"},
    {"national", "char"},
    {"national", "character"},
    {"national", "text"},
    {"nchar", "varying"},
}};
} // namespace

ast::TypeSpec Parser::ParseType() {
    ast::TypeSpec type;
    if (IsOneOf({"double", "national"})) {
        type.name.parts.push_back(Take().text);
    } else if (IsWord("cursor")) {
        Unsupported("cursor");
    } else {
        type.name = TakeObjectName();
    }
    if (type.name.parts.size() == 1) {
        for (const auto& [first, second] : kTwoWordTypes) {
            if (AsciiEqual(type.name.last(), first) && IsWord(second)) {
                type.name.parts[0] += " " + Take().text;
                break;
            }
        }
        if (type.name.last().starts_with("national ") && TakeWord("varying")) {
            type.name.parts[0] += " varying";
        }
    }
    if (TakeSymbol("(")) {
        if (TakeWord("max")) {
            type.max = true;
        } else {
            type.first = TakeInteger();
            if (TakeSymbol(",")) {
                type.second = TakeInteger();
            }
        }
        ExpectSymbol(")");
    }
    return type;
}

// ------------------------------------------------------------------ entries

Batch Parser::ParseWholeBatch() {
    Batch batch;
    module_allowed_ = true;
    SkipSemicolons();
    if (!AtEnd() && IsName() && !IsSymbol(":", 1) &&
        !BeginsStatementOfNames()) { // At the beginning of a batch, a procedure's name alone is a call.
        const std::int32_t line = Peek().line;
        batch.statements.push_back(Wrap(ParseProcedureCall()));
        batch.statements.back()->line = line;
        module_allowed_ = false;
    }
    ast::StatementList rest = ParseStatementsUntilEnd();
    std::move(rest.begin(), rest.end(), std::back_inserter(batch.statements));
    ExpectEnd();
    return batch;
}

ast::CreateModuleStatement Parser::ParseWholeModule() {
    module_allowed_ = true;
    ast::StatementPtr statement = ParseStatement();
    auto* module = statement ? std::get_if<ast::CreateModuleStatement>(&statement->node) : nullptr;
    SkipSemicolons();
    SyntaxErrorIf(module == nullptr || !AtEnd());
    return std::move(*module);
}

ast::ExprPtr Parser::ParseWholeExpression() {
    ast::ExprPtr expr = ParseExpr();
    ExpectEnd();
    return expr;
}

ast::Name Parser::ParseWholeName() {
    ast::Name name;
    if (AtEnd()) {
        return name;
    }
    while (true) {
        while (TakeSymbol(".")) {
            name.parts.emplace_back();
        }
        // In an argument a reserved word is a name like any other.
        if (Peek().kind != TokenKind::Word && !IsName()) {
            return {};
        }
        name.parts.push_back(Take().text);
        if (!TakeSymbol(".")) {
            break;
        }
    }
    return AtEnd() && name.parts.size() <= 4 ? name : ast::Name{};
}

ast::TypeSpec Parser::ParseWholeType() {
    ast::TypeSpec type = ParseType();
    ExpectEnd();
    return type;
}

std::vector<ast::Parameter> Parser::ParseWholeParameters() {
    std::vector<ast::Parameter> parameters;
    while (!AtEnd()) {
        parameters.push_back(ParseParameter());
        SyntaxErrorIf(!TakeSymbol(",") && !AtEnd());
    }
    return parameters;
}

Batch ParseBatch(std::string_view sql, const ParseOptions& options) {
    return Parser(sql, options).ParseWholeBatch();
}

ast::CreateModuleStatement ParseModule(std::string_view sql, bool quoted_identifier) {
    return Parser(sql, {quoted_identifier, {}}).ParseWholeModule();
}

ast::ExprPtr ParseExpression(std::string_view text, bool quoted_identifier) {
    return Parser(text, {quoted_identifier, {}}).ParseWholeExpression();
}

namespace {

/// OBJECT_ID('dbo.Order Details'): in an argument a name may hold blanks without being quoted.
ast::Name PlainName(std::string_view text) {
    ast::Name name;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('.', begin), text.size());
        const std::string_view part = text.substr(begin, end - begin);
        if (part.find_first_of("[]\"'") != std::string_view::npos || name.parts.size() == 4) {
            return {};
        }
        name.parts.emplace_back(part);
        begin = end + 1;
    }
    return name.last().empty() ? ast::Name{} : name;
}

} // namespace

ast::Name ParseName(std::string_view text) {
    try {
        ast::Name name = Parser(text, {}).ParseWholeName();
        return name.empty() ? PlainName(text) : name;
    } catch (const SqlError&) {
        return PlainName(text);
    }
}

ast::TypeSpec ParseTypeSpec(std::string_view text) {
    return Parser(text, {}).ParseWholeType();
}

std::vector<ast::Parameter> ParseParameters(std::string_view text) {
    return Parser(text, {}).ParseWholeParameters();
}

} // namespace devsql

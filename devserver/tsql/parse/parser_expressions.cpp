// Expressions and conditions, by precedence.
#include <algorithm>

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

using ast::CompareOp;

template <class... Nodes>
bool IsAnyOf(const ast::Expr& expr) {
    return (std::holds_alternative<Nodes>(expr.node) || ...);
}

bool IsPredicate(const ast::Expr& expr) {
    return IsAnyOf<ast::CompareExpr, ast::LogicExpr, ast::NotExpr, ast::IsNullExpr, ast::BetweenExpr,
                   ast::InListExpr, ast::InQueryExpr, ast::LikeExpr, ast::ExistsExpr>(expr);
}

struct ComparisonSymbol {
    std::string_view symbol;
    CompareOp op;
};
constexpr ComparisonSymbol kComparisons[] = {
    {"=", CompareOp::Equal},         {"<>", CompareOp::NotEqual},     {"!=", CompareOp::NotEqual},
    {"<", CompareOp::Less},          {"<=", CompareOp::LessEqual},    {">", CompareOp::Greater},
    {">=", CompareOp::GreaterEqual}, {"!<", CompareOp::GreaterEqual}, {"!>", CompareOp::LessEqual}};

/// Reserved words that are called as functions, or used as values without parentheses.
constexpr std::string_view kFunctionWords = "LEFT,RIGHT,COALESCE,NULLIF,UPDATE,USER,IDENTITY";
constexpr std::string_view kBareFunctions = "CURRENT_TIMESTAMP,CURRENT_USER,SESSION_USER,SYSTEM_USER,USER";

} // namespace

/// "a + b + c + …" makes a tree as deep as it is long.
void Parser::RequireShort(int links) const {
    constexpr int kLongest = 900;
    if (links > kLongest) {
        Fail(191);
    }
}

ast::ExprPtr Parser::ParseExpr() {
    const Depth depth(*this);
    return ParseOr();
}

ast::ExprPtr Parser::ParseCondition() {
    ast::ExprPtr expr = ParseExpr();
    RequirePredicate(*expr);
    return expr;
}

ast::ExprPtr Parser::ParseValue() {
    const std::size_t start = next_;
    ast::ExprPtr expr = ParseExpr();
    if (IsPredicate(*expr)) { // In T-SQL a condition is no value: report its operator.
        next_ = start + 1;
        SyntaxError();
    }
    return expr;
}

void Parser::RequirePredicate(const ast::Expr& expr) const {
    if (!IsPredicate(expr)) {
        Fail(4145, {Peek().text});
    }
}

ast::ExprPtr Parser::ParseOr() {
    return ParseJunction("OR", &Parser::ParseAnd);
}

ast::ExprPtr Parser::ParseAnd() {
    return ParseJunction("AND", &Parser::ParseNot);
}

ast::ExprPtr Parser::ParseJunction(std::string_view word, ast::ExprPtr (Parser::*operand)()) {
    ast::ExprPtr left = (this->*operand)();
    for (int links = 0; IsWord(word); ++links) {
        RequireShort(links);
        RequirePredicate(*left);
        Take();
        ast::ExprPtr right = (this->*operand)();
        RequirePredicate(*right);
        left = Make(ast::LogicExpr{word == "AND", std::move(left), std::move(right)});
    }
    return left;
}

ast::ExprPtr Parser::ParseNot() {
    if (!TakeWord("NOT")) {
        return ParsePredicate();
    }
    const Depth depth(*this);
    ast::ExprPtr operand = ParseNot();
    RequirePredicate(*operand);
    return Make(ast::NotExpr{std::move(operand)});
}

ast::ExprPtr Parser::ParsePredicate() {
    if (IsWord("EXISTS") && IsSymbol("(", 1)) {
        Take();
        Take();
        ast::QueryPtr query = ParseQuery();
        ExpectSymbol(")");
        return Make(ast::ExistsExpr{std::move(query)});
    }
    if (IsWord("UPDATE") && IsSymbol("(", 1)) {
        return ParseUpdatedColumn();
    }
    ast::ExprPtr left = ParseAdditive();
    if (IsSymbol("*=") || (IsSymbol("=") && IsSymbol("*", 1))) {
        Fail(4147);
    }
    for (const ComparisonSymbol& comparison : kComparisons) {
        if (!TakeSymbol(comparison.symbol)) {
            continue;
        }
        if (IsOneOf({"ALL", "ANY", "SOME"}) && IsSymbol("(", 1)) {
            Unsupported(AsciiUpper(Peek().text) + " (subquery)");
        }
        return Make(ast::CompareExpr{comparison.op, std::move(left), ParseAdditive()});
    }
    if (TakeWord("IS")) {
        const bool negated = TakeWord("NOT");
        ExpectWord("NULL");
        return Make(ast::IsNullExpr{std::move(left), negated});
    }
    const bool negated = IsWord("NOT") && IsOneOf({"IN", "LIKE", "BETWEEN"}, 1);
    if (negated) {
        Take();
    }
    return ParsePredicateTail(std::move(left), negated);
}

ast::ExprPtr Parser::ParsePredicateTail(ast::ExprPtr left, bool negated) {
    if (TakeWord("BETWEEN")) {
        ast::ExprPtr low = ParseAdditive();
        ExpectWord("AND");
        ast::ExprPtr high = ParseAdditive();
        return Make(ast::BetweenExpr{std::move(left), std::move(low), std::move(high), negated});
    }
    if (TakeWord("LIKE")) {
        ast::ExprPtr pattern = ParseAdditive();
        ast::ExprPtr escape = TakeWord("ESCAPE") ? ParseAdditive() : nullptr;
        return Make(ast::LikeExpr{std::move(left), std::move(pattern), std::move(escape), negated});
    }
    if (TakeWord("IN")) {
        ExpectSymbol("(");
        if (BeginsQuery()) {
            ast::QueryPtr query = ParseQuery();
            ExpectSymbol(")");
            return Make(ast::InQueryExpr{std::move(left), std::move(query), negated});
        }
        std::vector<ast::ExprPtr> items = ParseExprList();
        ExpectSymbol(")");
        return Make(ast::InListExpr{std::move(left), std::move(items), negated});
    }
    return left;
}

ast::ExprPtr Parser::ParseAdditive() {
    constexpr OperatorSymbol kAdditive[] = {{"+", BinaryOperator::Add},
                                            {"-", BinaryOperator::Subtract},
                                            {"&", BinaryOperator::BitAnd},
                                            {"|", BinaryOperator::BitOr},
                                            {"^", BinaryOperator::BitXor}};
    return ParseOperators(kAdditive, &Parser::ParseMultiplicative);
}

ast::ExprPtr Parser::ParseMultiplicative() {
    constexpr OperatorSymbol kMultiplicative[] = {
        {"*", BinaryOperator::Multiply}, {"/", BinaryOperator::Divide}, {"%", BinaryOperator::Modulo}};
    return ParseOperators(kMultiplicative, &Parser::ParseUnary);
}

ast::ExprPtr Parser::ParseOperators(std::span<const OperatorSymbol> operators,
                                    ast::ExprPtr (Parser::*operand)()) {
    ast::ExprPtr left = (this->*operand)();
    for (int links = 0;; ++links) {
        RequireShort(links);
        const auto found =
            std::ranges::find_if(operators, [&](const OperatorSymbol& o) { return IsSymbol(o.symbol); });
        if (found == operators.end()) {
            return left;
        }
        SyntaxErrorIf(IsPredicate(*left));
        Take();
        left = Make(ast::BinaryExpr{found->op, std::move(left), (this->*operand)()});
    }
}

ast::ExprPtr Parser::ParseUnary() {
    const Depth depth(*this);
    constexpr std::pair<std::string_view, UnaryOperator> kSigns[] = {
        {"-", UnaryOperator::Minus}, {"+", UnaryOperator::Plus}, {"~", UnaryOperator::BitNot}};
    for (const auto& [symbol, op] : kSigns) {
        if (TakeSymbol(symbol)) {
            return Make(ast::UnaryExpr{op, ParseUnary()});
        }
    }
    return ParsePostfix();
}

ast::ExprPtr Parser::ParsePostfix() {
    ast::ExprPtr expr = ParsePrimary();
    while (TakeWord("COLLATE")) {
        // All text has one collation, so COLLATE has no effect on an expression.
        SyntaxErrorIf(!IsName());
        const std::string collation = ToUpper(Take().text);
        if (collation.find("_BIN") != std::string::npos || collation.find("_CS") != std::string::npos) {
            Unsupported("COLLATE " + collation);
        }
    }
    return expr;
}

ast::ExprPtr Parser::ParsePrimary() {
    switch (Peek().kind) {
    case TokenKind::String:
    case TokenKind::UnicodeString:
    case TokenKind::Integer:
    case TokenKind::Decimal:
    case TokenKind::Float:
    case TokenKind::Money:
    case TokenKind::Binary:
        return ParseLiteral();
    case TokenKind::DoubleQuoted:
        return quoted_identifier_ ? ParseNamed() : ParseLiteral();
    case TokenKind::Variable: {
        RequireDeclared(Peek().text);
        return Make(ast::VariableExpr{Take().text});
    }
    case TokenKind::Symbol:
        return IsSymbol("{") ? ParseOdbcEscape() : ParseParenthesized();
    default:
        return ParseNamed();
    }
}

ast::ExprPtr Parser::ParseLiteral() {
    const Token token = Take();
    Literal literal;
    try {
        switch (token.kind) {
        case TokenKind::Integer:
        case TokenKind::Decimal:
        case TokenKind::Float:
            literal = ParseNumberLiteral(token.text);
            break;
        case TokenKind::Money:
            literal = ParseMoneyLiteral(token.text);
            break;
        case TokenKind::Binary:
            literal = ParseBinaryLiteral(token.text);
            break;
        default:
            literal = TextLiteral(token.text, token.kind == TokenKind::UnicodeString);
            break;
        }
    } catch (const SqlError& error) {
        throw LocatedError(error, token.line);
    }
    return Make(ast::LiteralExpr{literal.type, std::move(literal.value)});
}

/// A parenthesis may contain a whole query or only its first operand. The token after its end decides:
/// "((SELECT 1) UNION (SELECT 2))" is a query, "((SELECT 1) + 2)" is a sum.
bool Parser::BeginsQuery(std::size_t ahead) const {
    std::size_t first = next_ + ahead;
    while (closing_[std::min(first, closing_.size() - 1)] != 0) {
        ++first;
    }
    if (!IsWord("SELECT", first - next_) && !IsWord("WITH", first - next_)) {
        return false;
    }
    for (std::size_t open = next_ + ahead; open < first; ++open) {
        const std::size_t after = closing_[open] + 1 - next_;
        if (!IsSymbol(")", after) && !IsOneOf({"UNION", "EXCEPT", "INTERSECT"}, after)) {
            return false;
        }
    }
    return true;
}

ast::ExprPtr Parser::ParseParenthesized() {
    ExpectSymbol("(");
    if (BeginsQuery()) {
        ast::QueryPtr query = ParseQuery();
        ExpectSymbol(")");
        return Make(ast::SubqueryExpr{std::move(query)});
    }
    ast::ExprPtr expr = ParseExpr();
    ExpectSymbol(")");
    return expr;
}

ast::ExprPtr Parser::ParseNamed() {
    const Token& token = Peek();
    if (IsWord("NULL")) {
        Take();
        return Make(ast::LiteralExpr{kUntypedNull, {}});
    }
    if (IsWord("CASE")) {
        return ParseCase();
    }
    if (IsSymbol("(", 1) && token.kind == TokenKind::Word) {
        if (IsOneOf({"CAST", "TRY_CAST"})) {
            return ParseCast(AsciiEqual(Take().text, "TRY_CAST"));
        }
        if (IsOneOf({"CONVERT", "TRY_CONVERT"})) {
            return ParseConvert(AsciiEqual(Take().text, "TRY_CONVERT"));
        }
        // Refused here, because WITHIN GROUP (...) after it would be a syntax error.
        UnsupportedIf(IsWord("STRING_AGG"), "STRING_AGG");
        if (!IsReservedWord(token.text) || ListHas(kFunctionWords, token.text)) {
            return ParseCall(Take().text);
        }
    }
    if (token.kind == TokenKind::Word && ListHas(kBareFunctions, token.text)) {
        ast::CallExpr call;
        call.name = Take().text;
        return Make(std::move(call));
    }
    if (IsOneOf({"IDENTITYCOL", "ROWGUIDCOL"})) {
        Unsupported(token.text);
    }
    const std::size_t begin = token.begin;
    ast::Name name = TakeObjectName();
    if (IsSymbol("(")) {
        return ParseCall(name.parts.size() == 1 ? name.last() : Text(begin, PreviousEnd()));
    }
    return Make(ast::ColumnExpr{std::move(name)});
}

ast::ExprPtr Parser::ParseCase() {
    const Depth depth(*this);
    ExpectWord("CASE");
    ast::CaseExpr expr;
    if (!IsWord("WHEN")) {
        expr.operand = ParseValue();
    }
    while (TakeWord("WHEN")) {
        ast::ExprPtr when = expr.operand ? ParseValue() : ParseCondition();
        ExpectWord("THEN");
        expr.branches.emplace_back(std::move(when), ParseValue());
    }
    SyntaxErrorIf(expr.branches.empty());
    if (TakeWord("ELSE")) {
        expr.otherwise = ParseValue();
    }
    ExpectWord("END");
    return Make(std::move(expr));
}

ast::ExprPtr Parser::ParseCast(bool attempt) {
    ExpectSymbol("(");
    ast::ExprPtr operand = ParseValue();
    ExpectWord("AS");
    ast::TypeSpec type = ParseType();
    ExpectSymbol(")");
    return Make(ast::CastExpr{std::move(operand), std::move(type), nullptr, attempt});
}

ast::ExprPtr Parser::ParseConvert(bool attempt) {
    ExpectSymbol("(");
    ast::TypeSpec type = ParseType();
    ExpectSymbol(",");
    ast::ExprPtr operand = ParseValue();
    ast::ExprPtr style = TakeSymbol(",") ? ParseValue() : nullptr;
    ExpectSymbol(")");
    return Make(ast::CastExpr{std::move(operand), std::move(type), std::move(style), attempt});
}

ast::ExprPtr Parser::ParseCall(std::string name) {
    ast::CallExpr call;
    call.name = std::move(name);
    ExpectSymbol("(");
    if (TakeSymbol("*")) {
        call.star = true;
    } else if (!IsSymbol(")")) {
        call.distinct = TakeWord("DISTINCT");
        if (!call.distinct) {
            TakeWord("ALL");
        }
        if (AsciiEqual(call.name, "IIF")) {
            call.arguments.push_back(ParseCondition());
            ExpectSymbol(",");
        }
        std::vector<ast::ExprPtr> rest = ParseExprList();
        std::move(rest.begin(), rest.end(), std::back_inserter(call.arguments));
    }
    ExpectSymbol(")");
    if (IsWord("OVER") && IsSymbol("(", 1)) {
        call.over = ParseOver();
    }
    return Make(std::move(call));
}

ast::Over Parser::ParseOver() {
    ast::Over over;
    ExpectWord("OVER");
    ExpectSymbol("(");
    if (TakeWords({"PARTITION", "BY"})) {
        over.partition_by = ParseExprList();
    }
    if (IsWord("ORDER")) {
        over.order_by = ParseOrderBy();
    }
    if (IsOneOf({"ROWS", "RANGE"})) {
        Unsupported(Peek().text);
    }
    ExpectSymbol(")");
    return over;
}

/// {d '2000-01-31'}, {t '12:00:00'}, {ts '…'}, {fn now()}: the escapes that ODBC drivers pass on.
ast::ExprPtr Parser::ParseOdbcEscape() {
    ExpectSymbol("{");
    ast::ExprPtr expr;
    if (TakeWord("fn")) {
        expr = ParseExpr();
    } else if (TakeWord("d") || TakeWord("t") || TakeWord("ts")) {
        ast::TypeSpec type;
        type.name.parts = {"datetime"};
        expr = Make(ast::CastExpr{ParseLiteral(), std::move(type), nullptr, false});
    } else {
        SyntaxError();
    }
    ExpectSymbol("}");
    return expr;
}

std::vector<ast::ExprPtr> Parser::ParseExprList() {
    std::vector<ast::ExprPtr> list;
    CommaSeparated([&] { list.push_back(ParseValue()); });
    return list;
}

} // namespace devsql

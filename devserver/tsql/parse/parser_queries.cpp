// SELECT in all its forms.
#include <array>

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

using namespace ast;

namespace {
/// Hints about reading and locking. They don't change a result, so they have no effect here.
constexpr std::array<std::string_view, 19> kTableHints = {
    "NOLOCK",   "READUNCOMMITTED", "READCOMMITTED", "REPEATABLEREAD",   "SERIALIZABLE",
    "HOLDLOCK", "UPDLOCK",         "XLOCK",         "ROWLOCK",          "PAGLOCK",
    "TABLOCK",  "TABLOCKX",        "READPAST",      "FASTFIRSTROW",     "NOEXPAND",
    "NOWAIT",   "INDEX",           "FORCESEEK",     "READCOMMITTEDLOCK"};

bool IsTableHint(std::string_view word) {
    for (const std::string_view hint : kTableHints) {
        if (AsciiEqual(word, hint)) {
            return true;
        }
    }
    return false;
}
} // namespace

QueryPtr Parser::ParseQuery() {
    const Depth depth(*this);
    auto query = std::make_unique<Query>();
    query->line = Peek().line;
    if (IsWord("WITH")) {
        query->with = ParseWith();
    }
    query->body = ParseUnion();
    if (IsWord("ORDER")) {
        query->order_by = ParseOrderBy();
    }
    if (!query->order_by.empty() && TakeWord("OFFSET")) {
        ParseOffset(*query);
    }
    if (IsWord("COMPUTE")) {
        Unsupported("COMPUTE");
    }
    if (TakeWord("FOR")) {
        if (!TakeWord("BROWSE")) { // FOR BROWSE would add key columns; it is not supported.
            Unsupported("FOR " + AsciiUpper(Peek().text));
        }
    }
    query->max_recursion = SkipQueryOptions();
    return query;
}

std::vector<CommonTable> Parser::ParseWith() {
    std::vector<CommonTable> tables;
    ExpectWord("WITH");
    do {
        CommonTable table;
        table.name = TakeName();
        if (IsSymbol("(")) {
            table.columns = ParseNameList();
        }
        ExpectWord("AS");
        ExpectSymbol("(");
        table.query = ParseQuery();
        ExpectSymbol(")");
        tables.push_back(std::move(table));
    } while (TakeSymbol(","));
    return tables;
}

QueryTermPtr Parser::ParseUnion() {
    QueryTermPtr left = ParseIntersect();
    for (int links = 0; IsWord("UNION") || IsWord("EXCEPT"); ++links) {
        RequireShort(links);
        SetOp op = SetOp::Except;
        if (AsciiEqual(Take().text, "UNION")) {
            op = TakeWord("ALL") ? SetOp::UnionAll : SetOp::Union;
        }
        auto term = std::make_unique<QueryTerm>();
        term->node = SetOperation{op, std::move(left), ParseIntersect()};
        left = std::move(term);
    }
    return left;
}

QueryTermPtr Parser::ParseIntersect() {
    QueryTermPtr left = ParseQueryPrimary();
    while (TakeWord("INTERSECT")) {
        auto term = std::make_unique<QueryTerm>();
        term->node = SetOperation{SetOp::Intersect, std::move(left), ParseQueryPrimary()};
        left = std::move(term);
    }
    return left;
}

QueryTermPtr Parser::ParseQueryPrimary() {
    const Depth depth(*this);
    if (TakeSymbol("(")) {
        QueryTermPtr term = ParseUnion();
        ExpectSymbol(")");
        return term;
    }
    auto term = std::make_unique<QueryTerm>();
    term->node = ParseSelectCore();
    return term;
}

SelectCore Parser::ParseSelectCore() {
    SelectCore core;
    ExpectWord("SELECT");
    core.distinct = TakeWord("DISTINCT");
    if (!core.distinct) {
        TakeWord("ALL");
    }
    core.top = ParseTop();
    if (core.top) {
        core.top->ties = TakeWords({"WITH", "TIES"});
    }
    do {
        core.items.push_back(ParseSelectItem());
    } while (TakeSymbol(","));
    if (TakeWord("INTO")) {
        core.into = TakeObjectName();
    }
    if (TakeWord("FROM")) {
        core.from = ParseFrom();
    }
    if (TakeWord("WHERE")) {
        core.where = ParseCondition();
    }
    if (TakeWords({"GROUP", "BY"})) {
        TakeWord("ALL");
        ParseGroupBy(core);
    }
    if (TakeWord("HAVING")) {
        core.having = ParseCondition();
    }
    return core;
}

/// Keys; "keys WITH ROLLUP", "ROLLUP (keys)", and the same with CUBE.
void Parser::ParseGroupBy(SelectCore& core) {
    const auto grouping = [](int word) { return word == 0 ? GroupingSets::Rollup : GroupingSets::Cube; };
    if ((IsWord("ROLLUP") || IsWord("CUBE")) && IsSymbol("(", 1)) {
        core.grouping = grouping(TakeOneOf({"ROLLUP", "CUBE"}));
        ExpectSymbol("(");
        core.group_by = ParseExprList();
        ExpectSymbol(")");
        if (IsSymbol(",")) {
            Unsupported("several grouping sets");
        }
        return;
    }
    core.group_by = ParseExprList();
    if (IsWord("WITH") && (IsWord("ROLLUP", 1) || IsWord("CUBE", 1))) {
        Take();
        core.grouping = grouping(TakeOneOf({"ROLLUP", "CUBE"}));
    }
}

std::optional<Top> Parser::ParseTop() {
    if (!TakeWord("TOP")) {
        return std::nullopt;
    }
    Top top;
    top.count = IsSymbol("(") ? ParseParenthesized() : ParsePrimary();
    top.percent = TakeWord("PERCENT");
    return top;
}

SelectItem Parser::ParseSelectItem() {
    SelectItem item;
    if (TakeSymbol("*")) {
        item.star = true;
        return item;
    }
    if (Peek().kind == TokenKind::Variable && IsSymbol("=", 1)) {
        item.variable = TakeVariable();
        RequireDeclared(item.variable);
        Take();
        item.expr = ParseValue();
        return item;
    }
    const bool string_alias = Peek().kind == TokenKind::String || Peek().kind == TokenKind::DoubleQuoted;
    if ((IsName() || string_alias) && IsSymbol("=", 1)) {
        item.alias = Take().text;
        Take();
        item.expr = ParseValue();
        return item;
    }
    std::size_t ahead = 0; // t.* and db..t.*
    while (IsName(ahead) || IsSymbol(".", ahead)) {
        ++ahead;
    }
    if (ahead > 1 && IsSymbol("*", ahead) && IsSymbol(".", ahead - 1)) {
        while (!IsSymbol("*")) {
            item.star_of.parts.push_back(TakeName());
            ExpectSymbol(".");
        }
        Take();
        item.star = true;
        return item;
    }
    item.expr = ParseValue();
    ParseAlias(item.alias);
    return item;
}

bool Parser::BeginsAlias() const {
    return IsName() || Peek().kind == TokenKind::String || Peek().kind == TokenKind::DoubleQuoted;
}

void Parser::ParseAlias(std::string& alias) {
    if (TakeWord("AS")) {
        if (!BeginsAlias()) {
            SyntaxError();
        }
        alias = Take().text;
    } else if (BeginsAlias() && !(IsName() && IsSymbol(":", 1))) {
        alias = Take().text;
    }
}

std::vector<TableSourcePtr> Parser::ParseFrom() {
    std::vector<TableSourcePtr> sources;
    do {
        sources.push_back(ParseJoined());
    } while (TakeSymbol(","));
    return sources;
}

bool Parser::ParseJoinKind(JoinKind& kind) {
    const auto hint = [this] { // INNER HASH JOIN and similar hints
        TakeOneOf({"LOOP", "HASH", "MERGE", "REMOTE"});
    };
    if (TakeWord("JOIN")) {
        kind = JoinKind::Inner;
        return true;
    }
    if (IsWord("CROSS")) {
        Take();
        if (IsWord("APPLY")) {
            Unsupported("CROSS APPLY");
        }
        ExpectWord("JOIN");
        kind = JoinKind::Cross;
        return true;
    }
    if (IsWord("OUTER")) {
        Unsupported("OUTER APPLY");
    }
    const int which = TakeOneOf({"INNER", "LEFT", "RIGHT", "FULL"});
    if (which < 0) {
        return false;
    }
    constexpr std::array<JoinKind, 4> kKinds = {JoinKind::Inner, JoinKind::Left, JoinKind::Right,
                                                JoinKind::Full};
    kind = kKinds[static_cast<std::size_t>(which)];
    TakeWord("OUTER");
    hint();
    ExpectWord("JOIN");
    return true;
}

TableSourcePtr Parser::ParseJoined() {
    const Depth depth(*this);
    TableSourcePtr left = ParseTableSource();
    JoinKind kind{};
    while (ParseJoinKind(kind)) {
        JoinSource join;
        join.kind = kind;
        join.left = std::move(left);
        if (kind == JoinKind::Cross) {
            join.right = ParseTableSource();
        } else { // "a JOIN b JOIN c ON … ON …" nests to the right
            join.right = ParseTableSource();
            while (!IsWord("ON")) {
                JoinSource inner;
                if (!ParseJoinKind(inner.kind)) {
                    SyntaxError();
                }
                inner.left = std::move(join.right);
                inner.right = ParseTableSource();
                if (inner.kind != JoinKind::Cross) {
                    ExpectWord("ON");
                    inner.on = ParseCondition();
                }
                join.right = std::make_unique<TableSource>();
                join.right->node = std::move(inner);
            }
            ExpectWord("ON");
            join.on = ParseCondition();
        }
        left = std::make_unique<TableSource>();
        left->node = std::move(join);
    }
    return left;
}

/// "VALUES (1, 2), (3, 4)" as a query: SELECT 1, 2 UNION ALL SELECT 3, 4.
QueryPtr Parser::ParseValues() {
    auto query = std::make_unique<Query>();
    query->line = Peek().line;
    ExpectWord("VALUES");
    do {
        ExpectSymbol("(");
        SelectCore row;
        for (ExprPtr& value : ParseExprList()) {
            row.items.emplace_back();
            row.items.back().expr = std::move(value);
        }
        ExpectSymbol(")");
        auto term = std::make_unique<QueryTerm>();
        term->node = std::move(row);
        if (query->body) {
            auto both = std::make_unique<QueryTerm>();
            both->node = SetOperation{SetOp::UnionAll, std::move(query->body), std::move(term)};
            term = std::move(both);
        }
        query->body = std::move(term);
    } while (TakeSymbol(","));
    return query;
}

TableSourcePtr Parser::ParseParenthesizedSource() {
    ExpectSymbol("(");
    if (!BeginsQuery() && !IsWord("VALUES")) {
        TableSourcePtr inner = ParseJoined();
        ExpectSymbol(")");
        return inner;
    }
    DerivedSource derived;
    derived.query = IsWord("VALUES") ? ParseValues() : ParseQuery();
    ExpectSymbol(")");
    ParseAlias(derived.alias);
    if (derived.alias.empty()) {
        SyntaxError();
    }
    if (IsSymbol("(")) {
        derived.columns = ParseNameList();
    }
    auto source = std::make_unique<TableSource>();
    source->node = std::move(derived);
    return source;
}

TableSourcePtr Parser::ParseTableSource() {
    if (IsSymbol("(")) {
        return ParseParenthesizedSource();
    }
    NamedSource named;
    if (Peek().kind == TokenKind::Variable) {
        RequireDeclared(Peek().text, 1087);
        named.name.parts = {Take().text};
    } else {
        for (const std::string_view function :
             {"OPENQUERY", "OPENROWSET", "OPENDATASOURCE", "OPENXML", "CONTAINSTABLE", "FREETEXTTABLE"}) {
            if (IsWord(function)) {
                Unsupported(function);
            }
        }
        named.name = TakeObjectName();
    }
    if (IsSymbol("(") && !(Peek(1).kind == TokenKind::Word && IsTableHint(Peek(1).text))) {
        Unsupported(named.name.text() + "() (table-valued function)");
    }
    if (!IsSymbol("(")) {
        ParseAlias(named.alias);
    }
    SkipTableHints();
    auto source = std::make_unique<TableSource>();
    source->node = std::move(named);
    return source;
}

void Parser::SkipTableHints() {
    const bool with = IsWord("WITH") && IsSymbol("(", 1);
    if (!with && !(IsSymbol("(") && Peek(1).kind == TokenKind::Word && IsTableHint(Peek(1).text))) {
        return;
    }
    if (with) {
        Take();
    }
    ExpectSymbol("(");
    do {
        if (Peek().kind != TokenKind::Word || !IsTableHint(Peek().text)) {
            Fail(321, {Peek().text});
        }
        Take();
        if (TakeSymbol("(")) { // INDEX(name, …)
            ParseExprList();
            ExpectSymbol(")");
        } else if (TakeSymbol("=")) {
            Take();
        }
        TakeSymbol(",");
    } while (!IsSymbol(")"));
    ExpectSymbol(")");
}

std::int64_t Parser::SkipQueryOptions() {
    constexpr std::int64_t kHighest = 32767;
    std::int64_t max_recursion = Query().max_recursion;
    if (!IsWord("OPTION") || !IsSymbol("(", 1)) {
        return max_recursion;
    }
    Take();
    ExpectSymbol("(");
    while (!TakeSymbol(")")) {
        if (AtEnd()) {
            SyntaxError();
        }
        if (TakeWord("MAXRECURSION")) {
            max_recursion = TakeInteger();
            if (max_recursion > kHighest) {
                Fail(310, {std::to_string(max_recursion)});
            }
        } else {
            Take();
        }
    }
    return max_recursion;
}

/// OFFSET n ROWS [FETCH NEXT m ROWS ONLY]
void Parser::ParseOffset(Query& query) {
    const auto rows = [this] {
        if (TakeOneOf({"ROW", "ROWS"}) < 0) {
            SyntaxError();
        }
    };
    query.offset = ParseValue();
    rows();
    if (TakeWord("FETCH")) {
        if (TakeOneOf({"FIRST", "NEXT"}) < 0) {
            SyntaxError();
        }
        query.fetch = ParseValue();
        rows();
        ExpectWord("ONLY");
    }
}

std::vector<OrderItem> Parser::ParseOrderBy() {
    ExpectWord("ORDER");
    ExpectWord("BY");
    std::vector<OrderItem> items;
    do {
        OrderItem item;
        item.expr = ParseValue();
        item.descending = TakeOneOf({"ASC", "DESC"}) == 1;
        items.push_back(std::move(item));
    } while (TakeSymbol(","));
    return items;
}

} // namespace devsql

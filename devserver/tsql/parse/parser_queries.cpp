// SELECT in all its forms.

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

using namespace ast;

namespace {
/// Hints about reading and locking. They don't change a result, so they have no effect here.
constexpr std::string_view kTableHints =
    "NOLOCK,READUNCOMMITTED,READCOMMITTED,REPEATABLEREAD,SERIALIZABLE,HOLDLOCK,UPDLOCK,XLOCK,ROWLOCK,PAGLOCK,"
    "TABLOCK,TABLOCKX,READPAST,FASTFIRSTROW,NOEXPAND,NOWAIT,INDEX,FORCESEEK,READCOMMITTEDLOCK";

TableSourcePtr MakeSource(auto node) {
    auto source = std::make_unique<TableSource>();
    source->node = std::move(node);
    return source;
}

QueryTermPtr MakeTerm(auto node) {
    auto term = std::make_unique<QueryTerm>();
    term->node = std::move(node);
    return term;
}

} // namespace

bool Parser::IsTableHint(std::size_t ahead) const {
    return Peek(ahead).kind == TokenKind::Word && ListHas(kTableHints, Peek(ahead).text);
}

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
    UnsupportedIf(IsWord("COMPUTE"), "COMPUTE");
    if (TakeWord("FOR") && !TakeWord("BROWSE")) { // FOR BROWSE has no effect: it would add key columns.
        Unsupported("FOR " + AsciiUpper(Peek().text));
    }
    query->max_recursion = SkipQueryOptions();
    return query;
}

std::vector<CommonTable> Parser::ParseWith() {
    std::vector<CommonTable> tables;
    ExpectWord("WITH");
    CommaSeparated([&] {
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
    });
    return tables;
}

QueryTermPtr Parser::ParseUnion() {
    QueryTermPtr left = ParseIntersect();
    for (int links = 0; IsOneOf({"UNION", "EXCEPT"}); ++links) {
        RequireShort(links);
        SetOp op = SetOp::Except;
        if (AsciiEqual(Take().text, "UNION")) {
            op = TakeWord("ALL") ? SetOp::UnionAll : SetOp::Union;
        }
        left = MakeTerm(SetOperation{op, std::move(left), ParseIntersect()});
    }
    return left;
}

QueryTermPtr Parser::ParseIntersect() {
    QueryTermPtr left = ParseQueryPrimary();
    while (TakeWord("INTERSECT")) {
        left = MakeTerm(SetOperation{SetOp::Intersect, std::move(left), ParseQueryPrimary()});
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
    return MakeTerm(ParseSelectCore());
}

SelectCore Parser::ParseSelectCore() {
    SelectCore core;
    ExpectWord("SELECT");
    core.distinct = TakeWord("DISTINCT");
    if (!core.distinct) {
        TakeWord("ALL");
    }
    core.top = ParseTop();
    UnsupportedIf(IsWord("WITH") && IsWord("TIES", 1), "WITH TIES");
    CommaSeparated([&] { core.items.push_back(ParseSelectItem()); });
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

/// The list after GROUP BY: "keys", "keys WITH ROLLUP" or "ROLLUP (keys)".
void Parser::ParseGroupBy(SelectCore& core) {
    if ((IsWord("CUBE") && IsSymbol("(", 1)) || (IsWord("GROUPING") && IsWord("SETS", 1))) {
        Unsupported(AsciiUpper(Peek().text));
    }
    if (IsWord("ROLLUP") && IsSymbol("(", 1)) {
        Take();
        core.rollup = true;
        ListInParentheses([&] { core.group_by.push_back(ParseValue()); });
        UnsupportedIf(IsSymbol(","), "several grouping sets");
        return;
    }
    core.group_by = ParseExprList();
    UnsupportedIf(IsWord("WITH") && IsWord("CUBE", 1), "CUBE");
    core.rollup = TakeWords({"WITH", "ROLLUP"});
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
        SyntaxErrorIf(!BeginsAlias());
        alias = Take().text;
    } else if (BeginsAlias() && !(IsName() && IsSymbol(":", 1))) {
        alias = Take().text;
    }
}

std::vector<TableSourcePtr> Parser::ParseFrom() {
    std::vector<TableSourcePtr> sources;
    CommaSeparated([&] { sources.push_back(ParseJoined()); });
    return sources;
}

bool Parser::ParseJoinKind(JoinKind& kind) {
    if ((IsWord("CROSS") || IsWord("OUTER")) && (IsWord("OUTER") || IsWord("APPLY", 1))) {
        Unsupported(AsciiUpper(Peek().text) + " APPLY");
    }
    constexpr JoinKind kKinds[] = {JoinKind::Inner, JoinKind::Inner, JoinKind::Left,
                                   JoinKind::Right, JoinKind::Full,  JoinKind::Cross};
    const int which = TakeOneOf({"JOIN", "INNER", "LEFT", "RIGHT", "FULL", "CROSS"});
    if (which < 0) {
        return false;
    }
    kind = kKinds[which];
    if (which > 0) {
        if (kind != JoinKind::Cross) {
            TakeWord("OUTER");
            TakeOneOf({"LOOP", "HASH", "MERGE", "REMOTE"}); // how to join, as in INNER HASH JOIN
        }
        ExpectWord("JOIN");
    }
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
        join.right = ParseTableSource();
        if (kind != JoinKind::Cross) { // "a JOIN b JOIN c ON … ON …" nests to the right
            while (!IsWord("ON")) {
                JoinSource inner;
                SyntaxErrorIf(!ParseJoinKind(inner.kind));
                inner.left = std::move(join.right);
                inner.right = ParseTableSource();
                if (inner.kind != JoinKind::Cross) {
                    ExpectWord("ON");
                    inner.on = ParseCondition();
                }
                join.right = MakeSource(std::move(inner));
            }
            ExpectWord("ON");
            join.on = ParseCondition();
        }
        left = MakeSource(std::move(join));
    }
    return left;
}

/// "VALUES (1, 2), (3, 4)" as a query: SELECT 1, 2 UNION ALL SELECT 3, 4.
QueryPtr Parser::ParseValues() {
    auto query = std::make_unique<Query>();
    query->line = Peek().line;
    ExpectWord("VALUES");
    CommaSeparated([&] {
        SelectCore row;
        ListInParentheses([&] { row.items.emplace_back().expr = ParseValue(); });
        QueryTermPtr term = MakeTerm(std::move(row));
        query->body = query->body
                          ? MakeTerm(SetOperation{SetOp::UnionAll, std::move(query->body), std::move(term)})
                          : std::move(term);
    });
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
    SyntaxErrorIf(derived.alias.empty());
    if (IsSymbol("(")) {
        derived.columns = ParseNameList();
    }
    return MakeSource(std::move(derived));
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
        if (IsOneOf(
                {"OPENQUERY", "OPENROWSET", "OPENDATASOURCE", "OPENXML", "CONTAINSTABLE", "FREETEXTTABLE"})) {
            Unsupported(AsciiUpper(Peek().text));
        }
        named.name = TakeObjectName();
    }
    if (IsSymbol("(") && !IsTableHint(1)) {
        Unsupported(named.name.text() + "() (table-valued function)");
    }
    if (!IsSymbol("(")) {
        ParseAlias(named.alias);
    }
    SkipTableHints();
    return MakeSource(std::move(named));
}

void Parser::SkipTableHints() {
    const bool with = IsWord("WITH") && IsSymbol("(", 1);
    if (!with && !(IsSymbol("(") && IsTableHint(1))) {
        return;
    }
    if (with) {
        Take();
    }
    ExpectSymbol("(");
    do {
        if (!IsTableHint(0)) {
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
        SyntaxErrorIf(AtEnd());
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
    const auto rows = [this] { ExpectOneOf({"ROW", "ROWS"}); };
    query.offset = ParseValue();
    rows();
    if (TakeWord("FETCH")) {
        ExpectOneOf({"FIRST", "NEXT"});
        query.fetch = ParseValue();
        rows();
        ExpectWord("ONLY");
    }
}

std::vector<OrderItem> Parser::ParseOrderBy() {
    ExpectWord("ORDER");
    ExpectWord("BY");
    std::vector<OrderItem> items;
    CommaSeparated([&] {
        OrderItem item;
        item.expr = ParseValue();
        item.descending = TakeOneOf({"ASC", "DESC"}) == 1;
        items.push_back(std::move(item));
    });
    return items;
}

} // namespace devsql

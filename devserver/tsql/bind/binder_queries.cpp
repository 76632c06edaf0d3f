// SELECT: its parts in SQLite's SQL.
#include "devserver/tsql/bind/binder.h"

#include <algorithm>

#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/bind/select_parts.h"
#include "devserver/tsql/scalar/arithmetic.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"

namespace devsql {

namespace {

bool Same(std::string_view a, std::string_view b) {
    return CompareText(a, b) == 0;
}

/// What an item is called when it has no alias: a column keeps its name.
std::string NameOf(const ast::Expr& expr) {
    const auto* column = std::get_if<ast::ColumnExpr>(&expr.node);
    return column == nullptr ? std::string() : column->name.last();
}

/// "ORDER BY 2": the number; 0 for anything else.
std::int64_t Ordinal(const ast::Expr& expr) {
    const auto* literal = std::get_if<ast::LiteralExpr>(&expr.node);
    const auto* number = literal == nullptr ? nullptr : std::get_if<std::int64_t>(&literal->value);
    return number == nullptr ? 0 : *number;
}

/// The position from 1 of the output column that an ORDER BY item means by number or alias; 0 for none.
std::size_t OutputPosition(const ast::Expr& expr, const std::vector<Column>& columns) {
    if (const std::int64_t ordinal = Ordinal(expr); ordinal != 0) {
        if (ordinal < 1 || ordinal > static_cast<std::int64_t>(columns.size())) {
            RaiseError(108, {std::to_string(ordinal)});
        }
        return static_cast<std::size_t>(ordinal);
    }
    const auto* column = std::get_if<ast::ColumnExpr>(&expr.node);
    if (column != nullptr && column->name.parts.size() == 1) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (Same(columns[i].name, column->name.last())) {
                return i + 1;
            }
        }
    }
    return 0;
}

bool HasAggregate(const Bound& node, int depth) {
    if (node.kind == BoundKind::Sql) {
        return node.aggregate && node.depth == depth;
    }
    for (const BoundPtr& child : node.children) {
        if (HasAggregate(*child, depth)) {
            return true;
        }
    }
    return false;
}

} // namespace

BoundQuery Binder::BindQuery(const ast::Query& query, const Scope* outer) {
    CommonTables level{common_, {}};
    CommonTables* const saved = common_;
    const std::int64_t saved_recursion = max_recursion_;
    if (!query.with.empty()) {
        common_ = &level;
        max_recursion_ = query.max_recursion;
        BindWith(query.with);
    }
    const bool saved_window = std::exchange(allow_window_, false);
    const bool saved_aggregates = std::exchange(allow_aggregates_, false);
    const bool saved_in = std::exchange(in_aggregate_, false);
    BoundQuery bound = BindTerm(*query.body, outer, &query);
    allow_window_ = saved_window;
    allow_aggregates_ = saved_aggregates;
    in_aggregate_ = saved_in;
    common_ = saved;
    max_recursion_ = saved_recursion;
    return bound;
}

BoundQuery Binder::BindRows(const ast::Query& query) {
    outermost_ = true;
    return BindQuery(query);
}

BoundQuery Binder::BindTerm(const ast::QueryTerm& term, const Scope* outer, const ast::Query* whole) {
    if (const auto* core = std::get_if<ast::SelectCore>(&term.node)) {
        return BindSelect(*core, outer, whole);
    }
    BoundQuery bound = BindSetOperation(std::get<ast::SetOperation>(term.node), outer);
    if (whole != nullptr && !whole->order_by.empty()) {
        bound.sql = "SELECT * FROM (" + bound.sql + ")" + OrderOfColumns(*whole, bound.columns) +
                    OffsetClause(*whole);
    }
    return bound;
}

/// The query with its columns converted to `types`.
BoundQuery Binder::Unified(const BoundQuery& query, const std::vector<Type>& types) {
    BoundQuery unified{"SELECT ", query.columns};
    for (std::size_t i = 0; i < types.size(); ++i) {
        const std::string name = "c" + std::to_string(i + 1);
        unified.sql += (i == 0 ? "" : ", ") +
                       emission_.EmitCollated(MakeConvert(MakeSql(name, query.columns[i].type), types[i])) +
                       " AS " + name;
        unified.columns[i].type = types[i];
        unified.columns[i].identity = false;
    }
    unified.sql += " FROM (" + query.sql + ")";
    return unified;
}

BoundQuery Binder::BindSetOperation(const ast::SetOperation& operation, const Scope* outer) {
    // A chain of one operator is written flat: SQLite nests queries less deep than scripts are long.
    std::vector<const ast::QueryTerm*> terms = {operation.right.get()};
    const ast::QueryTerm* left = operation.left.get();
    for (const auto* inner = std::get_if<ast::SetOperation>(&left->node);
         inner != nullptr && inner->op == operation.op; inner = std::get_if<ast::SetOperation>(&left->node)) {
        terms.push_back(inner->right.get());
        left = inner->left.get();
    }
    terms.push_back(left);
    std::vector<BoundQuery> queries;
    std::vector<Type> types;
    for (auto term = terms.rbegin(); term != terms.rend(); ++term) {
        BoundQuery query = BindTerm(**term, outer, nullptr);
        if (!queries.empty() && query.columns.size() != types.size()) {
            RaiseError(205);
        }
        for (std::size_t i = 0; i < query.columns.size(); ++i) {
            const bool untyped = i < query.untyped_nulls.size() && query.untyped_nulls[i];
            const Type type = untyped ? kUntypedNull : query.columns[i].type;
            if (queries.empty()) {
                types.push_back(type);
            } else {
                types[i] = CommonType(types[i], type);
                queries[0].columns[i].nullable = queries[0].columns[i].nullable || query.columns[i].nullable;
            }
        }
        queries.push_back(std::move(query));
    }
    for (Type& type : types) {
        type = Settled(type);
    }
    constexpr std::string_view kWords[] = {" UNION ", " UNION ALL ", " EXCEPT ", " INTERSECT "};
    const std::string word(kWords[static_cast<std::size_t>(operation.op)]);
    constexpr std::size_t kGroup = 400; // SQLite takes 500 terms in one compound.
    BoundQuery bound = Unified(queries[0], types);
    for (std::size_t i = 1; i < queries.size(); ++i) {
        if (i % kGroup == 0) {
            bound.sql = "SELECT * FROM (" + bound.sql + ")";
        }
        bound.sql += word + Unified(queries[i], types).sql;
    }
    return bound;
}

// ------------------------------------------------------------------ one SELECT

BoundQuery Binder::BindSelect(const ast::SelectCore& core, const Scope* outer, const ast::Query* whole) {
    SelectParts parts;
    BindSelectParts(core, outer, whole, parts);
    BoundQuery bound;
    bound.sql = EmitSelect(parts, core.distinct);
    bound.columns = std::move(parts.columns);
    bound.untyped_nulls = std::move(parts.untyped_nulls);
    return bound;
}

void Binder::BindSelectParts(const ast::SelectCore& core, const Scope* outer, const ast::Query* whole,
                             SelectParts& parts) {
    const bool outermost = std::exchange(outermost_, false);
    parts.scope.outer = outer;
    parts.scope.depth = outer == nullptr ? 0 : outer->depth + 1;
    if (!core.from.empty()) {
        parts.from = BindFrom(core.from, parts.scope);
    }
    if (core.where) {
        parts.where = BindCondition(*core.where, &parts.scope);
    }
    for (const ast::ExprPtr& key : core.group_by) {
        BoundPtr bound = BindValue(*key, &parts.scope);
        if (IsOldLob(bound->type.id)) {
            RaiseError(306);
        }
        if (!NeedsSql(*bound)) {
            RaiseError(164);
        }
        parts.keys.push_back(std::move(bound));
    }
    parts.grouping = core.grouping;
    allow_aggregates_ = true;
    if (core.having) {
        parts.having = BindCondition(*core.having, &parts.scope);
    }
    allow_window_ = true;
    BindItems(core, parts.scope, parts);
    if (whole != nullptr && !whole->order_by.empty()) {
        parts.order = OrderClause(*whole, parts, parts.scope, core.distinct);
    } else if (whole != nullptr && outermost) {
        parts.order = ClusteredOrder(core, parts);
    }
    allow_window_ = false;
    allow_aggregates_ = false;
    CheckGrouping(parts, core);
    if (whole != nullptr && whole->offset) {
        if (core.top) {
            RaiseError(10741);
        }
        parts.limit = OffsetClause(*whole);
    }
    if (core.top) {
        const std::string rows = RowLimit(core, core.top->percent ? EmitSelect(parts, core.distinct) : "");
        parts.limit = " LIMIT " + (core.top->ties ? CountWithTies(core, whole, parts, rows) : rows);
    }
}

void Binder::ExpandStar(const ast::SelectItem& item, const Scope& scope, SelectParts& parts) const {
    bool found = false;
    if (scope.sources.empty()) {
        RaiseError(263);
    }
    for (const ScopeSource& source : scope.sources) {
        if (!item.star_of.empty() && !Same(source.exposed, item.star_of.last())) {
            continue;
        }
        found = true;
        for (const ScopeColumn& column : source.columns) {
            if (column.name.empty()) {
                continue;
            }
            auto node = std::make_shared<Bound>(*MakeSql(column.sql, column.type, column.nullable));
            node->source = source.exposed;
            node->column = column.name;
            node->depth = scope.depth;
            node->identity = column.identity;
            parts.columns.push_back({column.name, column.type, column.nullable, column.identity});
            parts.items.push_back(std::move(node));
            parts.variables.emplace_back();
        }
    }
    if (!found) {
        RaiseError(107, {item.star_of.text()});
    }
}

void Binder::BindItems(const ast::SelectCore& core, const Scope& scope, SelectParts& parts) {
    for (const ast::SelectItem& item : core.items) {
        if (item.star) {
            ExpandStar(item, scope, parts);
            continue;
        }
        BoundPtr value = BindValue(*item.expr, &scope);
        const Type type = Settled(value->type);
        if (IsUntypedNull(value->type)) {
            parts.untyped_nulls.resize(parts.columns.size() + 1);
            parts.untyped_nulls.back() = true;
            value = MakeConstant({}, type);
        }
        // An assigned item has no name, so that ORDER BY never takes it for an output column.
        const std::string name = !item.variable.empty() ? ""
                                 : item.alias.empty()   ? NameOf(*item.expr)
                                                        : item.alias;
        parts.columns.push_back(
            {name, type, value->nullable, value->kind == BoundKind::Sql && value->identity});
        parts.items.push_back(std::move(value));
        parts.variables.push_back(item.variable);
    }
}

void Binder::CheckGrouped(const Bound& item, const std::vector<BoundPtr>& keys, int depth,
                          std::string_view clause) const {
    const Bound& wanted = IsGrouping(item) ? *item.children[0] : item;
    for (const BoundPtr& key : keys) {
        if (SameExpression(wanted, *key)) {
            return;
        }
    }
    if (IsGrouping(item)) {
        RaiseError(8161);
    }
    if (item.kind == BoundKind::Sql && !item.aggregate && !item.column.empty() && item.depth == depth) {
        if (clause == "ORDER BY") {
            RaiseError(8127, {item.source, item.column});
        }
        if (clause == "HAVING") {
            RaiseError(8121, {item.source, item.column});
        }
        RaiseError(8120, {item.source, item.column});
    }
    for (const BoundPtr& child : item.children) {
        CheckGrouped(*child, keys, depth, clause);
    }
}

/// With GROUP BY or an aggregate, every column outside an aggregate must be one of the keys.
void Binder::CheckGrouping(const SelectParts& parts, const ast::SelectCore& core) const {
    bool grouping = !core.group_by.empty() || parts.having != nullptr;
    for (const BoundPtr& item : parts.items) {
        grouping = grouping || HasAggregate(*item, parts.scope.depth);
    }
    if (!grouping) {
        return;
    }
    for (const BoundPtr& item : parts.items) {
        CheckGrouped(*item, parts.keys, parts.scope.depth, "SELECT");
    }
    if (parts.having) {
        CheckGrouped(*parts.having, parts.keys, parts.scope.depth, "HAVING");
    }
}

/// Rows of one table come in the order of its clustered key where nothing else is asked for.
std::string Binder::ClusteredOrder(const ast::SelectCore& core, const SelectParts& parts) const {
    const bool grouped = core.distinct || !parts.keys.empty() || parts.having ||
                         std::ranges::any_of(parts.items, [&](const BoundPtr& item) {
                             return HasAggregate(*item, parts.scope.depth);
                         });
    if (grouped || parts.scope.sources.size() != 1 || !parts.scope.sources[0].table) {
        return {};
    }
    const ScopeSource& source = parts.scope.sources[0];
    const auto index = std::ranges::find_if(source.table->indexes, &IndexDef::clustered);
    std::string order;
    if (index != source.table->indexes.end()) {
        for (const KeyColumn& key : index->columns) {
            order += (order.empty() ? " ORDER BY " : ", ") + source.sql_alias + "." +
                     QuoteName(source.table->ById(key.column).name) + (key.descending ? " DESC" : "");
        }
    }
    return order;
}

std::string Binder::OrderClause(const ast::Query& query, const SelectParts& parts, const Scope& scope,
                                bool distinct) {
    std::string clause = " ORDER BY ";
    for (const ast::OrderItem& item : query.order_by) {
        std::string text;
        const std::size_t position = OutputPosition(*item.expr, parts.columns);
        if (position != 0) {
            text = std::to_string(position);
            if (IsCharacter(parts.columns[position - 1].type.id)) {
                text += " COLLATE " + std::string(kCollation);
            }
            if (IsOldLob(parts.columns[position - 1].type.id)) {
                RaiseError(420, {TypeName(parts.columns[position - 1].type.id)});
            }
        } else {
            BoundPtr value = BindValue(*item.expr, &scope);
            std::size_t selected = 0;
            for (std::size_t i = 0; i < parts.items.size() && selected == 0; ++i) {
                selected = SameExpression(*value, *parts.items[i]) ? i + 1 : 0;
            }
            if (distinct && selected == 0) {
                RaiseError(145);
            }
            if (!parts.keys.empty()) {
                CheckGrouped(*value, parts.keys, scope.depth, "ORDER BY");
            }
            text = NeedsSql(*value) ? emission_.EmitCollated(value) : "NULL";
            if (parts.grouping != ast::GroupingSets::One) { // Over all sets, an order can only name columns.
                if (selected == 0) {
                    RaiseError(40517, {"ORDER BY of what is not selected with ROLLUP or CUBE"});
                }
                text = std::to_string(selected) +
                       (IsCharacter(value->type.id) ? " COLLATE " + std::string(kCollation) : "");
            }
        }
        clause += (&item == &query.order_by.front() ? "" : ", ") + text + (item.descending ? " DESC" : "");
    }
    return clause;
}

std::string Binder::OrderOfColumns(const ast::Query& query, const std::vector<Column>& columns) {
    std::string clause = " ORDER BY ";
    for (const ast::OrderItem& item : query.order_by) {
        const std::size_t position = OutputPosition(*item.expr, columns);
        if (position == 0) {
            RaiseError(104);
        }
        clause += (&item == &query.order_by.front() ? "c" : ", c") + std::to_string(position);
        if (IsCharacter(columns[position - 1].type.id)) {
            clause += " COLLATE " + std::string(kCollation);
        }
        clause += item.descending ? " DESC" : "";
    }
    return clause;
}

std::int64_t Binder::RowNumber(const ast::Expr& expr, std::int32_t null_error) {
    const BoundPtr bound = BindValue(expr, nullptr);
    const Value value = Compute(*bound, session_);
    if (IsNull(value)) {
        RaiseError(null_error);
    }
    return std::get<std::int64_t>(Convert(value, bound->type, Simple(TypeId::BigInt)));
}

std::string Binder::OffsetClause(const ast::Query& query) {
    if (!query.offset) {
        return {};
    }
    constexpr std::int32_t kBadOffset = 10742;
    constexpr std::int32_t kBadFetch = 10744;
    const std::int64_t offset = RowNumber(*query.offset, kBadOffset);
    if (offset < 0) {
        RaiseError(kBadOffset);
    }
    const std::int64_t fetch = query.fetch ? RowNumber(*query.fetch, kBadFetch) : -1;
    if (query.fetch && fetch < 1) {
        RaiseError(kBadFetch);
    }
    return " LIMIT " + std::to_string(fetch) + " OFFSET " + std::to_string(offset);
}

std::string Binder::RowLimit(const ast::SelectCore& core, const std::string& counted) {
    BoundPtr count = BindValue(*core.top->count, nullptr);
    const Value value = Compute(*count, session_);
    if (IsNull(value)) {
        RaiseError(1060);
    }
    if (core.top->percent) {
        const double percent = std::get<double>(Convert(value, count->type, Simple(TypeId::Float)));
        return "(SELECT CAST(ceil(count(*) * " + emission_.Parameter(percent, Simple(TypeId::Float)) +
               " / 100.0) AS INTEGER) FROM (" + counted + "))";
    }
    const auto rows = std::get<std::int64_t>(Convert(value, count->type, Simple(TypeId::BigInt)));
    if (rows < 0) {
        RaiseError(1060);
    }
    return std::to_string(rows);
}

/// TOP … WITH TIES: how many rows rank no lower than the last of `rows`.
std::string Binder::CountWithTies(const ast::SelectCore& core, const ast::Query* whole,
                                  const SelectParts& parts, const std::string& rows) {
    if (whole == nullptr || whole->order_by.empty()) {
        RaiseError(1062);
    }
    SelectParts ranked = parts;
    ranked.order.clear();
    std::string order;
    const bool saved = std::exchange(allow_aggregates_, true);
    for (const ast::OrderItem& item : whole->order_by) {
        std::size_t position = OutputPosition(*item.expr, parts.columns);
        if (position == 0) {
            ranked.items.push_back(BindValue(*item.expr, &parts.scope));
            ranked.columns.push_back({"", ranked.items.back()->type, true, false});
            position = ranked.items.size();
        }
        order +=
            (order.empty() ? "c" : ", c") + std::to_string(position) +
            (IsCharacter(ranked.columns[position - 1].type.id) ? " COLLATE " + std::string(kCollation) : "") +
            (item.descending ? " DESC" : "");
    }
    allow_aggregates_ = saved;
    return "(SELECT count(*) FROM (SELECT rank() OVER (ORDER BY " + order + ") AS r FROM (" +
           EmitSelect(ranked, core.distinct) + ")) WHERE r <= " + rows + ")";
}

// ------------------------------------------------------------------ SELECT @v = …

BoundQuery Binder::BindAssignment(const ast::Query& query, std::vector<AssignmentItem>& items) {
    const auto* core = std::get_if<ast::SelectCore>(&query.body->node);
    if (core == nullptr) {
        RaiseError(10734);
    }
    CommonTables level{common_, {}};
    CommonTables* const saved = common_;
    if (!query.with.empty()) {
        common_ = &level;
        BindWith(query.with);
    }
    outermost_ = true;
    SelectParts parts;
    BindSelectParts(*core, nullptr, &query, parts);
    common_ = saved;
    // The leaves are selected and the items computed over them row by row, so that an item may use what the
    // row before has assigned.
    std::vector<BoundPtr> leaves;
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        if (parts.variables[i].empty()) {
            RaiseError(141);
        }
        items.push_back({parts.variables[i], WithSlots(parts.items[i], leaves)});
    }
    BoundQuery bound;
    SelectParts selected = std::move(parts);
    selected.items = leaves;
    selected.columns.clear();
    for (const BoundPtr& leaf : leaves) {
        selected.columns.push_back({"", leaf->condition ? Simple(TypeId::Bit) : leaf->type, true, false});
    }
    if (leaves.empty()) {
        selected.items.push_back(MakeConstant(std::int64_t{1}, Simple(TypeId::Int)));
        selected.columns.push_back({"", Simple(TypeId::Int), false, false});
    }
    bound.sql = EmitSelect(selected, false);
    bound.columns = selected.columns;
    return bound;
}

BoundQuery Binder::BindCursor(const ast::Query& query, TablePtr& table) {
    const auto* core = std::get_if<ast::SelectCore>(&query.body->node);
    table = nullptr;
    if (core == nullptr || core->distinct || !core->group_by.empty() || core->having ||
        core->from.size() != 1 || !query.with.empty() ||
        !std::holds_alternative<ast::NamedSource>(core->from[0]->node)) {
        return BindRows(query);
    }
    outermost_ = true;
    SelectParts parts;
    BindSelectParts(*core, nullptr, &query, parts);
    const ScopeSource& source = parts.scope.sources[0];
    const bool grouped = std::any_of(parts.items.begin(), parts.items.end(),
                                     [](const BoundPtr& item) { return HasAggregate(*item, 0); });
    BoundQuery bound;
    bound.columns = parts.columns;
    if (source.table && !grouped) {
        table = source.table;
        parts.items.push_back(MakeSql(source.sql_alias + "." + RowIdName(*table), Simple(TypeId::BigInt)));
    }
    bound.sql = EmitSelect(parts, false);
    return bound;
}

} // namespace devsql

// Binds the clauses of one SELECT and checks the rules of grouping.
#include "devserver/tsql/bind/select_binder.h"

#include <algorithm>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/scalar/compare.h"

namespace devsql {
namespace {

/// The name of an item without alias: that of the column, else empty.
std::string NameOf(const ast::Expr& expr) {
    const auto* column = std::get_if<ast::ColumnExpr>(&expr.node);
    return column == nullptr ? std::string() : column->name.last();
}

} // namespace

bool HasAggregate(const Bound& node, int depth) {
    if (node.kind == BoundKind::Sql) {
        return node.aggregate && node.depth == depth;
    }
    return std::ranges::any_of(node.children,
                               [&](const BoundPtr& child) { return HasAggregate(*child, depth); });
}

/// True for GROUP BY, HAVING or an aggregate.
static bool IsGrouped(const SelectParts& parts) {
    return !parts.keys.empty() || parts.having || std::ranges::any_of(parts.items, [&](const BoundPtr& item) {
        return HasAggregate(*item, parts.scope.depth);
    });
}

BoundQuery SelectBinder::Select(const ast::SelectCore& core, const Scope* outer, const ast::Query* whole) {
    SelectParts parts = Parts(core, outer, whole);
    return {EmitSelect(emission_, parts, core.distinct), std::move(parts.columns),
            std::move(parts.untyped_nulls)};
}

SelectParts SelectBinder::Parts(const ast::SelectCore& core, const Scope* outer, const ast::Query* whole) {
    const bool outermost = std::exchange(binding_.outermost, false);
    SelectParts parts;
    parts.scope.outer = outer;
    parts.scope.depth = outer == nullptr ? 0 : outer->depth + 1;
    if (!core.from.empty()) {
        parts.from = binder_.BindFrom(core.from, parts.scope);
    }
    if (core.where) {
        parts.where = binder_.BindCondition(*core.where, &parts.scope);
    }
    Keys(core, parts);
    Binding::Clause& clause = binding_.clause;
    clause.aggregates = true;
    if (core.having) {
        parts.having = binder_.BindCondition(*core.having, &parts.scope);
    }
    clause.windows = true;
    Items(core, parts);
    if (whole != nullptr && !whole->order_by.empty()) {
        parts.order = binder_.orders().OfSelect(*whole, parts, core.distinct);
    } else if (whole != nullptr && outermost) {
        parts.order = ClusteredOrder(core, parts);
    }
    clause.windows = false;
    clause.aggregates = false;
    CheckGrouping(parts);
    Limit(core, whole, parts);
    return parts;
}

void SelectBinder::Keys(const ast::SelectCore& core, SelectParts& parts) {
    for (const ast::ExprPtr& key : core.group_by) {
        BoundPtr bound = binder_.BindValue(*key, &parts.scope);
        RaiseIf(IsOldLob(bound->type.id), 306);
        RaiseIf(!NeedsSql(*bound), 164);
        parts.keys.push_back(std::move(bound));
    }
    parts.rollup = core.rollup;
}

void SelectBinder::Limit(const ast::SelectCore& core, const ast::Query* whole, SelectParts& parts) {
    OrderBinder& orders = binder_.orders();
    if (whole != nullptr && whole->offset) {
        RaiseIf(core.top.has_value(), 10741);
        parts.limit = orders.Offset(*whole);
    }
    if (core.top) {
        const std::string counted = core.top->percent ? EmitSelect(emission_, parts, core.distinct) : "";
        parts.limit = " LIMIT " + orders.Top(core, counted);
    }
}

void SelectBinder::ExpandStar(const ast::SelectItem& item, SelectParts& parts) const {
    bool found = false;
    RaiseIf(parts.scope.sources.empty(), 263);
    for (const ScopeSource& source : parts.scope.sources) {
        if (!item.star_of.empty() && CompareText(source.exposed, item.star_of.last()) != 0) {
            continue;
        }
        found = true;
        for (const ScopeColumn& column : source.columns) {
            if (column.name.empty()) {
                continue;
            }
            RequireReadable(column);
            parts.columns.push_back({column.name, column.type, column.nullable, column.identity});
            parts.items.push_back(MakeColumn(column, source, parts.scope.depth));
            parts.variables.emplace_back();
        }
    }
    if (!found) {
        RaiseError(107, {item.star_of.text()});
    }
}

void SelectBinder::Items(const ast::SelectCore& core, SelectParts& parts) {
    for (const ast::SelectItem& item : core.items) {
        if (item.star) {
            ExpandStar(item, parts);
            continue;
        }
        BoundPtr value = binder_.BindValue(*item.expr, &parts.scope);
        const Type type = Settled(value->type);
        if (IsUntypedNull(value->type)) {
            parts.untyped_nulls.resize(parts.columns.size() + 1);
            parts.untyped_nulls.back() = true;
            value = MakeConstant({}, type);
        }
        // An assigned item has no name, so that ORDER BY does not find it among the output columns.
        const std::string name = !item.variable.empty() ? ""
                                 : item.alias.empty()   ? NameOf(*item.expr)
                                                        : item.alias;
        parts.columns.push_back(
            {name, type, value->nullable, value->kind == BoundKind::Sql && value->identity});
        parts.items.push_back(std::move(value));
        parts.variables.push_back(item.variable);
    }
}

void CheckGrouped(const Bound& item, const std::vector<BoundPtr>& keys, int depth, std::string_view clause) {
    const Bound& wanted = IsGrouping(item) ? *item.children[0] : item;
    for (const BoundPtr& key : keys) {
        if (SameExpression(wanted, *key)) {
            return;
        }
    }
    RaiseIf(IsGrouping(item), 8161);
    if (item.kind == BoundKind::Sql && !item.aggregate && !item.column.empty() && item.depth == depth) {
        RaiseError(clause == "ORDER BY" ? 8127
                   : clause == "HAVING" ? 8121
                                        : 8120,
                   {item.source, item.column});
    }
    for (const BoundPtr& child : item.children) {
        CheckGrouped(*child, keys, depth, clause);
    }
}

void SelectBinder::CheckGrouping(const SelectParts& parts) const {
    if (!IsGrouped(parts)) {
        return;
    }
    for (const BoundPtr& item : parts.items) {
        CheckGrouped(*item, parts.keys, parts.scope.depth, "SELECT");
    }
    if (parts.having) {
        CheckGrouped(*parts.having, parts.keys, parts.scope.depth, "HAVING");
    }
}

/// ORDER BY the clustered key, for a query that reads one table and has no order of its own; otherwise empty.
std::string SelectBinder::ClusteredOrder(const ast::SelectCore& core, const SelectParts& parts) const {
    if (core.distinct || IsGrouped(parts) || parts.scope.sources.size() != 1 ||
        !parts.scope.sources[0].table) {
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

} // namespace devsql

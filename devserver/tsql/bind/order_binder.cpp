// Writes ORDER BY, TOP, OFFSET and FETCH as SQLite's ORDER BY and LIMIT.
#include "devserver/tsql/bind/order_binder.h"

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"

namespace devsql {
namespace {

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
            if (SameText(columns[i].name, column->name.last())) {
                return i + 1;
            }
        }
    }
    return 0;
}

} // namespace

/// A column of the result by its number, with the collation that it sorts by.
std::string OrderBinder::ByColumn(const Column& column, std::size_t position) const {
    return std::to_string(position) +
           (IsCharacter(column.type.id) ? " COLLATE " + std::string(kCollation) : "");
}

std::string OrderBinder::OfSelect(const ast::Query& query, const SelectParts& parts, bool distinct) {
    std::string clause = " ORDER BY ";
    for (const ast::OrderItem& item : query.order_by) {
        const std::size_t position = OutputPosition(*item.expr, parts.columns);
        if (position != 0 && IsOldLob(parts.columns[position - 1].type.id)) {
            RaiseError(420, {TypeName(parts.columns[position - 1].type.id)});
        }
        clause += (&item == &query.order_by.front() ? "" : ", ") +
                  (position != 0 ? ByColumn(parts.columns[position - 1], position)
                                 : ByExpression(*item.expr, parts, distinct)) +
                  (item.descending ? " DESC" : "");
    }
    return clause;
}

std::string OrderBinder::ByExpression(const ast::Expr& expr, const SelectParts& parts, bool distinct) {
    const BoundPtr value = binder_.BindValue(expr, &parts.scope);
    std::size_t selected = 0;
    for (std::size_t i = 0; i < parts.items.size() && selected == 0; ++i) {
        selected = SameExpression(*value, *parts.items[i]) ? i + 1 : 0;
    }
    RaiseIf(distinct && selected == 0, 145);
    if (!parts.keys.empty()) {
        CheckGrouped(*value, parts.keys, parts.scope.depth, "ORDER BY");
    }
    if (!parts.rollup) {
        return NeedsSql(*value) ? emission_.EmitCollated(value) : "NULL";
    }
    if (selected == 0) { // ROLLUP becomes a UNION ALL, whose ORDER BY can only name columns.
        RaiseError(40517, {"ORDER BY of what is not selected with ROLLUP"});
    }
    return ByColumn({"", value->type, true, false}, selected);
}

std::string OrderBinder::OfColumns(const ast::Query& query, const std::vector<Column>& columns) {
    std::string clause = " ORDER BY ";
    for (const ast::OrderItem& item : query.order_by) {
        const std::size_t position = OutputPosition(*item.expr, columns);
        RaiseIf(position == 0, 104);
        clause += (&item == &query.order_by.front() ? "c" : ", c") +
                  ByColumn(columns[position - 1], position) + (item.descending ? " DESC" : "");
    }
    return clause;
}

std::int64_t OrderBinder::RowNumber(const ast::Expr& expr, std::int32_t null_error) {
    const BoundPtr bound = binder_.BindValue(expr, nullptr);
    const Value value = Compute(*bound, session_);
    RaiseIf(IsNull(value), null_error);
    return std::get<std::int64_t>(Convert(value, bound->type, Simple(TypeId::BigInt)));
}

std::string OrderBinder::Offset(const ast::Query& query) {
    if (!query.offset) {
        return {};
    }
    constexpr std::int32_t kBadOffset = 10742;
    constexpr std::int32_t kBadFetch = 10744;
    const std::int64_t offset = RowNumber(*query.offset, kBadOffset);
    RaiseIf(offset < 0, kBadOffset);
    const std::int64_t fetch = query.fetch ? RowNumber(*query.fetch, kBadFetch) : -1;
    RaiseIf(query.fetch && fetch < 1, kBadFetch);
    return " LIMIT " + std::to_string(fetch) + " OFFSET " + std::to_string(offset);
}

std::string OrderBinder::Top(const ast::SelectCore& core, const std::string& counted) {
    BoundPtr count = binder_.BindValue(*core.top->count, nullptr);
    const Value value = Compute(*count, session_);
    RaiseIf(IsNull(value), 1060);
    if (core.top->percent) {
        const double percent = std::get<double>(Convert(value, count->type, Simple(TypeId::Float)));
        return "(SELECT CAST(ceil(count(*) * " + emission_.Parameter(percent, Simple(TypeId::Float)) +
               " / 100.0) AS INTEGER) FROM (" + counted + "))";
    }
    const auto rows = std::get<std::int64_t>(Convert(value, count->type, Simple(TypeId::BigInt)));
    RaiseIf(rows < 0, 1060);
    return std::to_string(rows);
}

} // namespace devsql

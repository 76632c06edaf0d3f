// Writes a bound SELECT as SQLite's SQL.
#include "devserver/tsql/bind/select_emitter.h"

#include <algorithm>

#include "devserver/tsql/bind/emitter.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

/// The expression for the grouping set of the first `present` keys; the other keys are NULL.
BoundPtr WithKeys(const BoundPtr& node, const std::vector<BoundPtr>& keys, std::size_t present) {
    const Bound& wanted = IsGrouping(*node) ? *node->children[0] : *node;
    const auto key =
        std::ranges::find_if(keys, [&](const BoundPtr& known) { return SameExpression(wanted, *known); });
    const bool absent = key - keys.begin() >= static_cast<std::ptrdiff_t>(present);
    if (IsGrouping(*node)) {
        return MakeConstant(std::int64_t{absent}, node->type);
    }
    if (key != keys.end()) {
        return absent ? MakeConstant({}, node->type) : node;
    }
    auto copy = std::make_shared<Bound>(*node);
    for (BoundPtr& child : copy->children) {
        child = WithKeys(child, keys, present);
    }
    return copy;
}

std::string EmitGroups(Emission& emission, const SelectParts& parts, bool distinct, std::size_t present) {
    const auto of_set = [&](const BoundPtr& node) {
        return parts.rollup ? WithKeys(node, parts.keys, present) : node;
    };
    std::string sql = distinct ? "SELECT DISTINCT " : "SELECT ";
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        const BoundPtr item = of_set(parts.items[i]);
        if (distinct && IsOldLob(item->type.id)) {
            RaiseError(421, {TypeName(item->type.id)});
        }
        sql += (i == 0 ? "" : ", ") + (distinct ? emission.EmitCollated(item) : emission.Emit(item)) +
               " AS c" + std::to_string(i + 1);
    }
    if (!parts.from.empty()) {
        sql += " FROM " + parts.from;
    }
    if (parts.where) {
        sql += " WHERE " + emission.EmitCondition(parts.where);
    }
    std::string keys;
    for (std::size_t i = 0; i < present; ++i) {
        keys += (i == 0 ? "" : ", ") + emission.EmitCollated(parts.keys[i]);
    }
    // SQLite requires a GROUP BY before HAVING. Without keys all rows are one group.
    if (!parts.keys.empty() || parts.having) {
        sql += " GROUP BY " + (keys.empty() ? "NULL" : keys);
    }
    if (parts.having) {
        sql += " HAVING " + emission.EmitCondition(of_set(parts.having));
    }
    return sql;
}

} // namespace

bool IsGrouping(const Bound& node) {
    return node.kind == BoundKind::Sql && node.aggregate && !node.children.empty();
}

std::string EmitSelect(Emission& emission, const SelectParts& parts, bool distinct) {
    const std::size_t keys = parts.keys.size();
    std::string sql = EmitGroups(emission, parts, distinct, keys);
    if (!parts.rollup) {
        return sql + parts.order + parts.limit;
    }
    for (std::size_t present = keys; present-- > 0;) {
        sql += " UNION ALL " + EmitGroups(emission, parts, distinct, present);
    }
    return "SELECT * FROM (" + sql + ")" + parts.order + parts.limit;
}

} // namespace devsql

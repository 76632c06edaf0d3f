#include "devserver/tsql/bind/select_emitter.h"

#include <algorithm>

#include "devserver/tsql/bind/emitter.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

/// The expression for a grouping set in which the keys in `absent` are NULL.
BoundPtr WithoutKeys(const BoundPtr& node, const std::vector<BoundPtr>& keys,
                     const std::vector<bool>& absent) {
    const auto find = [&](const Bound& wanted) {
        std::size_t key = 0;
        while (key < keys.size() && !SameExpression(wanted, *keys[key])) {
            ++key;
        }
        return key;
    };
    if (IsGrouping(*node)) {
        return MakeConstant(std::int64_t{absent[find(*node->children[0])]}, node->type);
    }
    if (const std::size_t key = find(*node); key < keys.size()) {
        return absent[key] ? MakeConstant({}, node->type) : node;
    }
    auto copy = std::make_shared<Bound>(*node);
    for (BoundPtr& child : copy->children) {
        child = WithoutKeys(child, keys, absent);
    }
    return copy;
}

std::string EmitGroups(Emission& emission, const SelectParts& parts, bool distinct,
                       const std::vector<bool>& absent) {
    const bool whole = std::find(absent.begin(), absent.end(), true) == absent.end() &&
                       parts.grouping == ast::GroupingSets::One;
    const auto of_set = [&](const BoundPtr& node) {
        return whole ? node : WithoutKeys(node, parts.keys, absent);
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
    for (std::size_t i = 0; i < parts.keys.size(); ++i) {
        if (!absent[i]) {
            keys += (keys.empty() ? "" : ", ") + emission.EmitCollated(parts.keys[i]);
        }
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
    if (parts.grouping == ast::GroupingSets::One) {
        return EmitGroups(emission, parts, distinct, std::vector<bool>(keys)) + parts.order + parts.limit;
    }
    constexpr std::size_t kMostKeys = 10; // SQL Server's limit.
    if (keys > kMostKeys) {
        RaiseError(40517, {"more than 10 keys under ROLLUP or CUBE"});
    }
    std::string sql;
    for (std::size_t set = 0; set < (std::size_t{1} << keys); ++set) {
        std::vector<bool> absent(keys);
        bool rolled_up = true; // True if only the last keys are absent.
        for (std::size_t key = 0; key < keys; ++key) {
            absent[key] = ((set >> (keys - 1 - key)) & 1) != 0;
            rolled_up = rolled_up && (key == 0 || !absent[key - 1] || absent[key]);
        }
        if (parts.grouping == ast::GroupingSets::Cube || rolled_up) {
            sql += (sql.empty() ? "" : " UNION ALL ") + EmitGroups(emission, parts, distinct, absent);
        }
    }
    return "SELECT * FROM (" + sql + ")" + parts.order + parts.limit;
}

} // namespace devsql

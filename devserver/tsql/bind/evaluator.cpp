// Computes bound expressions and tests bound conditions in C++.
#include "devserver/tsql/bind/evaluator.h"

#include <algorithm>
#include <stdexcept>

#include "devserver/tsql/scalar/arithmetic.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/like.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {
namespace {

using Slots = std::span<const Value>;

Value ComputeCase(const Bound& node, SessionCore& session, Slots slots) {
    std::size_t i = 0;
    for (; i + 1 < node.children.size(); i += 2) {
        if (Test(*node.children[i], session, slots) == true) {
            return Compute(*node.children[i + 1], session, slots);
        }
    }
    return i < node.children.size() ? Compute(*node.children[i], session, slots) : Value();
}

Value ComputeCall(const Bound& node, SessionCore& session, Slots slots) {
    std::vector<Value> values;
    std::vector<Type> types;
    for (const BoundPtr& child : node.children) {
        values.push_back(Compute(*child, session, slots));
        types.push_back(child->type);
    }
    return node.kind == BoundKind::Function ? node.function->evaluate(values, types)
                                            : node.session->evaluate(session, values, types);
}

Value ComputeConvert(const Bound& node, SessionCore& session, Slots slots) {
    const Bound& operand = *node.children[0];
    const Value value = Compute(operand, session, slots);
    std::optional<int> style;
    if (node.children.size() > 1) {
        const Value chosen = Compute(*node.children[1], session, slots);
        if (IsNull(chosen)) {
            return {};
        }
        const Value number = Convert(chosen, node.children[1]->type, Simple(TypeId::Int));
        style = static_cast<int>(std::get<std::int64_t>(number));
    }
    return node.attempt ? TryConvert(value, operand.type, node.type, style)
                        : Convert(value, operand.type, node.type, style);
}

std::optional<bool> TestCompare(const Bound& node, SessionCore& session, Slots slots) {
    const Bound& left = *node.children[0];
    const Bound& right = *node.children[1];
    const Value a = Compute(left, session, slots);
    const Value b = Compute(right, session, slots);
    if (IsNull(a) || IsNull(b)) {
        return std::nullopt;
    }
    const int order = CompareValues(a, left.type, b, right.type);
    // A row for each CompareOp: the result if the left value is less, equal, greater.
    constexpr bool kResults[][3] = {{false, true, false}, {true, false, true},  {true, false, false},
                                    {true, true, false},  {false, false, true}, {false, true, true}};
    return kResults[static_cast<std::size_t>(node.compare)][order < 0 ? 0 : order == 0 ? 1 : 2];
}

std::optional<bool> TestJunction(const Bound& node, SessionCore& session, Slots slots, bool decisive) {
    bool unknown = false;
    for (const BoundPtr& child : node.children) {
        const std::optional<bool> result = Test(*child, session, slots);
        if (result == decisive) {
            return decisive;
        }
        unknown = unknown || !result;
    }
    return unknown ? std::nullopt : std::optional(!decisive);
}

std::optional<bool> TestInList(const Bound& node, SessionCore& session, Slots slots) {
    const Value value = Compute(*node.children[0], session, slots);
    if (IsNull(value)) {
        return std::nullopt;
    }
    bool unknown = false;
    for (std::size_t i = 1; i < node.children.size(); ++i) {
        const Value item = Compute(*node.children[i], session, slots);
        if (IsNull(item)) {
            unknown = true;
        } else if (CompareValues(value, node.children[0]->type, item, node.children[i]->type) == 0) {
            return true;
        }
    }
    return unknown ? std::nullopt : std::optional(false);
}

std::optional<bool> TestLike(const Bound& node, SessionCore& session, Slots slots) {
    std::vector<Value> values;
    for (const BoundPtr& child : node.children) {
        values.push_back(Compute(*child, session, slots));
        if (IsNull(values.back())) {
            return std::nullopt;
        }
    }
    const std::optional<char32_t> escape =
        values.size() > 2 ? EscapeCharacter(std::get<std::string>(values[2])) : std::nullopt;
    return Like(std::get<std::string>(values[0]), std::get<std::string>(values[1]), escape,
                IsUnicode(node.children[0]->type.id));
}

} // namespace

Value Compute(const Bound& node, SessionCore& session, Slots slots) {
    if (node.condition) {
        const std::optional<bool> result = Test(node, session, slots);
        return result ? Value(std::int64_t{*result}) : Value();
    }
    switch (node.kind) {
    case BoundKind::Constant:
        return node.constant;
    case BoundKind::Variable:
        return session.calls().FindVariable(node.text).value;
    case BoundKind::Slot:
        return slots[node.slot];
    case BoundKind::Unary:
        return Evaluate(node.unary, Compute(*node.children[0], session, slots), node.children[0]->type);
    case BoundKind::Binary:
        return Evaluate(node.binary, Compute(*node.children[0], session, slots), node.children[0]->type,
                        Compute(*node.children[1], session, slots), node.children[1]->type);
    case BoundKind::Convert:
        return ComputeConvert(node, session, slots);
    case BoundKind::Function:
    case BoundKind::Session:
        return ComputeCall(node, session, slots);
    case BoundKind::Case:
        return ComputeCase(node, session, slots);
    default:
        throw std::logic_error("an expression of SQL was computed without SQLite: " + node.text);
    }
}

std::optional<bool> Test(const Bound& node, SessionCore& session, Slots slots) {
    switch (node.kind) {
    case BoundKind::Compare:
        return TestCompare(node, session, slots);
    case BoundKind::And:
        return TestJunction(node, session, slots, false);
    case BoundKind::Or:
        return TestJunction(node, session, slots, true);
    case BoundKind::Not: {
        const std::optional<bool> result = Test(*node.children[0], session, slots);
        return result ? std::optional(!*result) : std::nullopt;
    }
    case BoundKind::IsNull:
        return IsNull(Compute(*node.children[0], session, slots));
    case BoundKind::InList:
        return TestInList(node, session, slots);
    case BoundKind::Like:
        return TestLike(node, session, slots);
    case BoundKind::Slot: {
        const Value& value = slots[node.slot];
        return IsNull(value) ? std::nullopt : std::optional(std::get<std::int64_t>(value) != 0);
    }
    default:
        throw std::logic_error("a condition of SQL was tested without SQLite: " + node.text);
    }
}

bool NeedsSql(const Bound& node) {
    return node.kind == BoundKind::Sql ||
           std::ranges::any_of(node.children, [](const BoundPtr& child) { return NeedsSql(*child); });
}

bool IsConstant(const Bound& node) {
    const bool varies = node.kind == BoundKind::Sql || node.kind == BoundKind::Slot ||
                        node.kind == BoundKind::Variable || node.kind == BoundKind::Session;
    return !varies &&
           std::ranges::all_of(node.children, [](const BoundPtr& child) { return IsConstant(*child); });
}

BoundPtr WithSlots(const BoundPtr& expression, std::vector<BoundPtr>& leaves) {
    if (expression->kind == BoundKind::Sql) {
        leaves.push_back(expression);
        auto slot = std::make_shared<Bound>(*expression);
        slot->kind = BoundKind::Slot;
        slot->slot = leaves.size() - 1;
        return slot;
    }
    if (!NeedsSql(*expression)) {
        return expression;
    }
    auto copy = std::make_shared<Bound>(*expression);
    for (BoundPtr& child : copy->children) {
        child = WithSlots(child, leaves);
    }
    return copy;
}

} // namespace devsql

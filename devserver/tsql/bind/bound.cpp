// Makes and compares the nodes of bound expressions.
#include "devserver/tsql/bind/bound.h"

#include <algorithm>

#include "devserver/storage/codec.h"

namespace devsql {
namespace {

std::shared_ptr<Bound> New(BoundKind kind, const Type& type) {
    auto node = std::make_shared<Bound>();
    node->kind = kind;
    node->type = type;
    return node;
}

} // namespace

std::shared_ptr<Bound> MakeConstant(Value value, const Type& type) {
    auto node = New(BoundKind::Constant, type);
    node->nullable = IsNull(value);
    node->constant = std::move(value);
    return node;
}

std::shared_ptr<Bound> MakeSql(std::string text, const Type& type, bool nullable) {
    auto node = New(BoundKind::Sql, type);
    node->text = std::move(text);
    node->nullable = nullable;
    return node;
}

std::shared_ptr<Bound> MakeSqlCondition(std::string text) {
    auto node = New(BoundKind::Sql, Simple(TypeId::Bit));
    node->text = std::move(text);
    node->condition = true;
    return node;
}

std::shared_ptr<Bound> MakeSlot(std::size_t slot, const Type& type) {
    auto node = New(BoundKind::Slot, type);
    node->slot = slot;
    return node;
}

BoundPtr MakeConvert(BoundPtr operand, const Type& type) {
    if (operand->type == type) {
        return operand;
    }
    auto node = New(BoundKind::Convert, type);
    node->nullable = operand->nullable;
    node->assignment = true;
    node->children.push_back(std::move(operand));
    return node;
}

std::shared_ptr<Bound> MakeNode(BoundKind kind, const Type& type, std::vector<BoundPtr> children) {
    auto node = New(kind, type);
    node->nullable = false;
    for (const BoundPtr& child : children) {
        node->nullable = node->nullable || child->nullable;
    }
    node->children = std::move(children);
    return node;
}

std::shared_ptr<Bound> MakeCondition(BoundKind kind, std::vector<BoundPtr> children) {
    auto node = New(kind, Simple(TypeId::Bit));
    node->condition = true;
    node->children = std::move(children);
    return node;
}

bool SameExpression(const Bound& a, const Bound& b) {
    if (a.kind != b.kind || a.type != b.type || a.text != b.text || a.constant != b.constant ||
        a.binary != b.binary || a.unary != b.unary || a.compare != b.compare || a.function != b.function ||
        a.session != b.session || a.slot != b.slot) {
        return false;
    }
    return std::ranges::equal(a.children, b.children,
                              [](const BoundPtr& x, const BoundPtr& y) { return SameExpression(*x, *y); });
}

} // namespace devsql

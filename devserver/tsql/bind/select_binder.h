// One SELECT: its clauses, and the rules of grouping.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "devserver/tsql/bind/binding.h"
#include "devserver/tsql/bind/select_emitter.h"

namespace devsql {

class SelectBinder : private BinderPart {
  public:
    explicit SelectBinder(Binder& binder) : BinderPart(binder) {}

    /// `whole` is the query whose order and limit the SELECT takes; null for a part of a set operation.
    BoundQuery Select(const ast::SelectCore& core, const Scope* outer, const ast::Query* whole);
    /// The same, before it is written as SQL.
    SelectParts Parts(const ast::SelectCore& core, const Scope* outer, const ast::Query* whole);

  private:
    void Keys(const ast::SelectCore& core, SelectParts& parts);
    void Items(const ast::SelectCore& core, SelectParts& parts);
    void ExpandStar(const ast::SelectItem& item, SelectParts& parts) const;
    void Limit(const ast::SelectCore& core, const ast::Query* whole, SelectParts& parts);
    void CheckGrouping(const SelectParts& parts) const;
    std::string ClusteredOrder(const ast::SelectCore& core, const SelectParts& parts) const;
};

/// With GROUP BY or an aggregate, every column outside an aggregate must be one of the keys. Raises 8120,
/// 8121, 8127, 8161.
void CheckGrouped(const Bound& item, const std::vector<BoundPtr>& keys, int depth, std::string_view clause);
/// True where the expression calls an aggregate of the query at that depth.
bool HasAggregate(const Bound& node, int depth);

} // namespace devsql

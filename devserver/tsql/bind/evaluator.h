// Computes bound expressions that need no table.
#pragma once

#include <optional>
#include <span>

#include "devserver/tsql/bind/bound.h"

namespace devsql {

class SessionCore;

/// The value of `expression`, of its type; `slots` are the values of its Slot nodes. Raises the errors of its
/// functions and conversions. Throws std::logic_error for a leaf of SQL, which can't be computed here.
Value Compute(const Bound& expression, SessionCore& session, std::span<const Value> slots = {});
/// Whether the condition is true; returns nothing for unknown. Errors as in Compute.
std::optional<bool> Test(const Bound& condition, SessionCore& session, std::span<const Value> slots = {});

/// True if the expression has a leaf of SQL anywhere.
bool NeedsSql(const Bound& expression);
/// True if its value depends neither on rows, variables nor time.
bool IsConstant(const Bound& expression);

/// Takes the leaves of SQL out of an expression: each is replaced by a Slot and appended to `leaves`.
BoundPtr WithSlots(const BoundPtr& expression, std::vector<BoundPtr>& leaves);

} // namespace devsql

// Operators and aggregates on values: integers, decimals, money, floats, dates, text and bits, with the
// overflows of each type.
#pragma once

#include <cstdint>
#include <string_view>

#include "devserver/engine/value.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

/// `left op right`, of the type OperatorType(op, left_type, right_type). NULL when either is NULL. Raises
/// 8134 (division by zero), 8115 (overflow), 517 (date out of range) and the errors of converting the
/// operands.
Value Evaluate(BinaryOperator op, const Value& left, const Type& left_type, const Value& right,
               const Type& right_type);
/// `op operand`, of the type OperatorType(op, type).
Value Evaluate(UnaryOperator op, const Value& operand, const Type& type);

/// SUM and AVG. Adds values of one type; NULL is left out.
class SumAccumulator {
  public:
    explicit SumAccumulator(const Type& type);

    /// Raises 8115 when the sum leaves its type.
    void Add(const Value& value);
    /// NULL if nothing was added. Of SumType(type).
    Value Sum() const;
    /// NULL if nothing was added. Of AverageType(type).
    Value Average() const;
    std::int64_t Count() const { return count_; }

  private:
    Type type_;
    Type sum_type_;
    Value sum_;
    std::int64_t count_ = 0;
};

} // namespace devsql

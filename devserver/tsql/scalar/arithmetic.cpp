// Operators by the kind of their result type, each with its own overflow, and the accumulators of aggregates.
#include "devserver/tsql/scalar/arithmetic.h"

#include <cmath>
#include <limits>

#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/decimal.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

namespace {

constexpr int kMoneyScale = 4;

[[noreturn]] void Overflow(TypeId id) {
    const TypeId named = id == TypeId::Decimal ? TypeId::Numeric : id;
    throw ErrorOf(8115, {"expression", TypeName(named)}, 2);
}

/// An operand with its type.
struct Operand {
    const Value& value;
    const Type& type;
};

Decimal ExactOperand(const Operand& operand, const Type& other) {
    if (const auto* integer = std::get_if<std::int64_t>(&operand.value)) {
        return {*integer, 0};
    }
    if (const auto* decimal = std::get_if<Decimal>(&operand.value)) {
        return *decimal;
    }
    // A text or binary is converted to the type that ReadAs has chosen.
    return std::get<Decimal>(Convert(operand.value, operand.type, other));
}

Int128 ComputeInteger(BinaryOperator op, Int128 a, Int128 b) {
    constexpr Int128 (*kOperators[])(Int128, Int128) = {
        [](Int128 x, Int128 y) { return x + y; }, [](Int128 x, Int128 y) { return x - y; },
        [](Int128 x, Int128 y) { return x * y; }, [](Int128 x, Int128 y) { return x / y; },
        [](Int128 x, Int128 y) { return x % y; }, [](Int128 x, Int128 y) { return x & y; },
        [](Int128 x, Int128 y) { return x | y; }, [](Int128 x, Int128 y) { return x ^ y; }};
    return kOperators[static_cast<std::size_t>(op)](a, b);
}

Value IntegerResult(Int128 value, TypeId id) {
    if (!RangeOf(id).Holds(value)) {
        Overflow(id);
    }
    return static_cast<std::int64_t>(value);
}

bool Divides(BinaryOperator op) {
    return op == BinaryOperator::Divide || op == BinaryOperator::Modulo;
}

Value EvaluateInteger(BinaryOperator op, const Operand& left, const Operand& right, const Type& type) {
    const auto a = std::get<std::int64_t>(Convert(left.value, left.type, type));
    const auto b = std::get<std::int64_t>(Convert(right.value, right.type, type));
    RaiseIf(Divides(op) && b == 0, 8134);
    return IntegerResult(ComputeInteger(op, a, b), type.id);
}

std::optional<Decimal> ComputeDecimal(BinaryOperator op, const Decimal& a, const Decimal& b, int scale) {
    switch (op) {
    case BinaryOperator::Add:
        return AddDecimals(a, b, scale);
    case BinaryOperator::Subtract:
        return AddDecimals(a, {-b.unscaled, b.scale}, scale);
    case BinaryOperator::Multiply:
        return MultiplyDecimals(a, b, scale);
    case BinaryOperator::Divide:
        return DivideDecimals(a, b, scale);
    default:
        return DecimalRemainder(a, b, scale);
    }
}

Value EvaluateDecimal(BinaryOperator op, const Decimal& a, const Decimal& b, const Type& type) {
    RaiseIf(Divides(op) && b.unscaled == 0, 8134);
    const bool money = IsMoney(type.id);
    const auto result = ComputeDecimal(op, a, b, money ? kMoneyScale : type.scale);
    const bool fits = result && (money ? MoneyInRange(result->unscaled, type.id)
                                       : FitsPrecision(result->unscaled, type.precision));
    if (!fits) {
        Overflow(type.id);
    }
    return *result;
}

Value FloatResult(double value, TypeId id) {
    if (id == TypeId::Real && std::fabs(value) <= static_cast<double>(std::numeric_limits<float>::max())) {
        return static_cast<double>(static_cast<float>(value));
    }
    if (id == TypeId::Real || !std::isfinite(value)) {
        Overflow(id);
    }
    return value;
}

Value EvaluateFloat(BinaryOperator op, const Operand& left, const Operand& right, const Type& type) {
    const auto a = std::get<double>(Convert(left.value, left.type, type));
    const auto b = std::get<double>(Convert(right.value, right.type, type));
    switch (op) {
    case BinaryOperator::Add:
        return FloatResult(a + b, type.id);
    case BinaryOperator::Subtract:
        return FloatResult(a - b, type.id);
    case BinaryOperator::Multiply:
        return FloatResult(a * b, type.id);
    default:
        RaiseIf(b == 0, 8134);
        return FloatResult(a / b, type.id);
    }
}

/// Ticks since 1900-01-01; a number counts days.
double DateTicks(const Operand& operand) {
    if (IsNumber(operand.type.id)) {
        const Value days = Convert(operand.value, operand.type, Simple(TypeId::Float));
        return std::round(std::get<double>(days) * kTicksPerDay);
    }
    const Value date = Convert(operand.value, operand.type, Simple(TypeId::DateTime));
    const auto& value = std::get<DateTime>(date);
    return static_cast<double>(value.days) * kTicksPerDay + value.ticks;
}

Value EvaluateDate(BinaryOperator op, const Operand& left, const Operand& right, const Type& type) {
    // Ticks of ten thousand years are whole numbers below 2^53, so doubles hold them exactly.
    const double a = DateTicks(left);
    const double b = DateTicks(right);
    const double ticks = op == BinaryOperator::Add ? a + b : a - b;
    const double days = std::floor(ticks / kTicksPerDay);
    RaiseIf(!(days >= kFirstDay && days <= kLastDay), 517, {TypeName(type.id)});
    const DateTime sum{static_cast<std::int32_t>(days),
                       static_cast<std::int32_t>(ticks - days * kTicksPerDay)};
    if (type.id == TypeId::DateTime) {
        return sum;
    }
    const auto small = ToSmallDateTime(sum);
    if (!small) {
        RaiseError(517, {TypeName(type.id)});
    }
    return *small;
}

Value EvaluateText(const Operand& left, const Operand& right, const Type& type) {
    return FitText(Concatenate(std::get<std::string>(left.value), std::get<std::string>(right.value)),
                   type.id == TypeId::Char || type.id == TypeId::NChar
                       ? Sized(IsUnicode(type.id) ? TypeId::NVarChar : TypeId::VarChar, type.length)
                       : type);
}

Value EvaluateBytes(const Operand& left, const Operand& right, const Type& type) {
    RequireRoom(std::get<Bytes>(left.value).data.size() + std::get<Bytes>(right.value).data.size());
    return Bytes{FitBytes(std::get<Bytes>(left.value).data + std::get<Bytes>(right.value).data,
                          Sized(TypeId::VarBinary, type.length))};
}

/// The type to which a text or binary is converted if the other operand is an exact number.
Type ReadAs(const Type& other, const Type& result) {
    if (IsMoney(result.id)) {
        return result;
    }
    return IsNumber(other.id) ? AsDecimalType(other) : result;
}

} // namespace

Value Evaluate(BinaryOperator op, const Value& left, const Type& left_type, const Value& right,
               const Type& right_type) {
    const Type type = OperatorType(op, left_type, right_type);
    if (IsNull(left) || IsNull(right)) {
        return {};
    }
    const Operand a{left, left_type};
    const Operand b{right, right_type};
    if (IsCharacter(type.id)) {
        return EvaluateText(a, b, type);
    }
    if (IsBinary(type.id)) {
        return EvaluateBytes(a, b, type);
    }
    if (IsDateTime(type.id)) {
        return EvaluateDate(op, a, b, type);
    }
    if (IsApproximate(type.id)) {
        return EvaluateFloat(op, a, b, type);
    }
    if (IsDecimal(type.id) || IsMoney(type.id)) {
        return EvaluateDecimal(op, ExactOperand(a, ReadAs(right_type, type)),
                               ExactOperand(b, ReadAs(left_type, type)), type);
    }
    return EvaluateInteger(op, a, b, type);
}

Value Evaluate(UnaryOperator op, const Value& operand, const Type& operand_type) {
    const Type type = OperatorType(op, operand_type);
    if (IsNull(operand) || op == UnaryOperator::Plus) {
        return operand;
    }
    if (op == UnaryOperator::BitNot) {
        const auto value = std::get<std::int64_t>(operand);
        // bit and tinyint have no sign: only the bits of the type are inverted.
        const std::int64_t mask = type.id == TypeId::Bit ? 1 : 255;
        return type.id == TypeId::Bit || type.id == TypeId::TinyInt ? ~value & mask : ~value;
    }
    if (const auto* decimal = std::get_if<Decimal>(&operand)) {
        const Decimal negative{-decimal->unscaled, decimal->scale};
        if (IsMoney(type.id) && !MoneyInRange(negative.unscaled, type.id)) {
            Overflow(type.id);
        }
        return negative;
    }
    if (const auto* number = std::get_if<double>(&operand)) {
        return -*number;
    }
    return IntegerResult(-static_cast<Int128>(std::get<std::int64_t>(operand)), type.id);
}

// ------------------------------------------------------------------ aggregates

SumAccumulator::SumAccumulator(const Type& type) : type_(type), sum_type_(SumType(type)) {}

void SumAccumulator::Add(const Value& value) {
    if (IsNull(value)) {
        return;
    }
    const Value addend = Convert(value, type_, sum_type_);
    ++count_;
    if (IsNull(sum_)) {
        sum_ = addend;
    } else if (const auto* integer = std::get_if<std::int64_t>(&addend)) {
        sum_ = IntegerResult(static_cast<Int128>(std::get<std::int64_t>(sum_)) + *integer, sum_type_.id);
    } else if (const auto* number = std::get_if<double>(&addend)) {
        sum_ = FloatResult(std::get<double>(sum_) + *number, sum_type_.id);
    } else {
        sum_ = EvaluateDecimal(BinaryOperator::Add, std::get<Decimal>(sum_), std::get<Decimal>(addend),
                               sum_type_);
    }
}

Value SumAccumulator::Sum() const {
    return sum_;
}

Value SumAccumulator::Average() const {
    if (IsNull(sum_)) {
        return {};
    }
    if (const auto* integer = std::get_if<std::int64_t>(&sum_)) {
        return *integer / count_;
    }
    if (const auto* number = std::get_if<double>(&sum_)) {
        return *number / static_cast<double>(count_);
    }
    return EvaluateDecimal(BinaryOperator::Divide, std::get<Decimal>(sum_), Decimal{count_, 0},
                           AverageType(type_));
}

} // namespace devsql

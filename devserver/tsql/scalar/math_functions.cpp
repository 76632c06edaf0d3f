// Functions on numbers. Most results have the type in which the function computes (WorkingType).
#include <cmath>

#include "devserver/tsql/scalar/arithmetic.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/decimal.h"
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/overloaded.h"

namespace devsql {

namespace {

/// The type in which a function computes: small integers become int, bit and text float, smallmoney money.
Type WorkingType(const Type& type) {
    if (IsInteger(type.id)) {
        return Simple(type.id == TypeId::BigInt ? TypeId::BigInt : TypeId::Int);
    }
    if (IsMoney(type.id)) {
        return Simple(TypeId::Money);
    }
    return IsDecimal(type.id) ? type : Simple(TypeId::Float);
}

Type WorkingTypeOfFirst(Types types) {
    return WorkingType(types[0]);
}

/// A decimal loses its fraction.
Type WholeType(Types types) {
    const Type type = WorkingType(types[0]);
    return IsDecimal(type.id) ? DecimalType(type.precision, 0, type.id) : type;
}

/// The argument in the type in which the function computes.
Value Working(Values values, Types types) {
    return Convert(values[0], types[0], WorkingType(types[0]));
}

/// -1, 0 or 1.
std::int64_t SignOf(const Value& value) {
    return std::visit(Overloaded{
                          [](const Decimal& v) { return std::int64_t{v.unscaled > 0} - (v.unscaled < 0); },
                          [](std::int64_t v) { return std::int64_t{v > 0} - (v < 0); },
                          [](double v) { return std::int64_t{v > 0} - (v < 0); },
                          [](const auto&) { return std::int64_t{0}; },
                      },
                      value);
}

Value Abs(Values values, Types types) {
    const Value value = Working(values, types);
    return SignOf(value) < 0 ? Evaluate(UnaryOperator::Minus, value, WorkingType(types[0])) : value;
}

Value Sign(Values values, Types types) {
    return Convert(SignOf(Working(values, types)), Simple(TypeId::Int), WorkingType(types[0]));
}

/// Down for FLOOR, up for CEILING.
template <bool Up>
Value Whole(Values values, Types types) {
    const Value value = Working(values, types);
    if (const auto* number = std::get_if<double>(&value)) {
        return Up ? std::ceil(*number) : std::floor(*number);
    }
    const auto* decimal = std::get_if<Decimal>(&value);
    if (decimal == nullptr) {
        return value;
    }
    Decimal whole = *Rescale(*decimal, 0, Rounding::TowardZero);
    const bool exact = CompareDecimals(whole, *decimal) == 0;
    if (!exact && (decimal->unscaled > 0) == Up) {
        whole.unscaled += Up ? 1 : -1;
    }
    return Convert(whole, DecimalType(kMaxDigits, 0), WholeType(types));
}

Value RoundFloat(double value, int digits, bool cut) {
    // 10^308 is the largest power that a float holds.
    constexpr int most = 308;
    if (digits > most || digits < -most) {
        return digits > 0 ? value : 0.0;
    }
    const double power = std::pow(10.0, std::abs(digits));
    const double scaled = digits >= 0 ? value * power : value / power;
    if (!std::isfinite(scaled)) {
        return value;
    }
    const double whole = cut ? std::trunc(scaled) : std::round(scaled);
    return digits >= 0 ? whole / power : whole * power;
}

Decimal RoundDecimal(const Decimal& value, int digits, bool cut) {
    if (digits >= value.scale) {
        return value;
    }
    if (digits < -kMaxDigits) {
        return {0, value.scale};
    }
    const Rounding rounding = cut ? Rounding::TowardZero : Rounding::HalfUp;
    if (digits >= 0) {
        return *Rescale(*Rescale(value, digits, rounding), value.scale);
    }
    // Before the point: the number of tens, hundreds, ..., then as many zeros.
    const Int128 power = PowerOfTen(-digits);
    const Int128 whole = Rescale(value, 0, Rounding::TowardZero)->unscaled;
    Int128 count = whole / power;
    const Int128 rest = whole % power;
    const Int128 size = rest < 0 ? -rest : rest;
    if (!cut && size >= power - size) {
        count += whole < 0 ? -1 : 1;
    }
    return Decimal{count * power, 0};
}

Value Round(Values values, Types types) {
    const Type type = WorkingType(types[0]);
    const Value value = Working(values, types);
    const int digits = static_cast<int>(IntOf(values[1], types[1]));
    const bool cut = values.size() > 2 && IntOf(values[2], types[2]) != 0;
    if (const auto* number = std::get_if<double>(&value)) {
        return RoundFloat(*number, digits, cut);
    }
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        return Convert(RoundDecimal({*integer, 0}, digits, cut), DecimalType(kMaxDigits, 0), type);
    }
    const Decimal rounded = RoundDecimal(std::get<Decimal>(value), digits, cut);
    // A decimal of so many digits that the round number has one more doesn't fit: 8115.
    return Convert(rounded, DecimalType(kMaxDigits, rounded.scale), type);
}

constexpr ScalarFunction kFunctions[] = {
    {"ABS", 1, 1, WorkingTypeOfFirst, NullIfAnyNull<Abs>},
    {"SIGN", 1, 1, WorkingTypeOfFirst, NullIfAnyNull<Sign>},
    {"CEILING", 1, 1, WholeType, NullIfAnyNull<Whole<true>>},
    {"FLOOR", 1, 1, WholeType, NullIfAnyNull<Whole<false>>},
    {"ROUND", 2, 3, WorkingTypeOfFirst, NullIfAnyNull<Round>},
};

} // namespace

std::span<const ScalarFunction> MathFunctions() {
    return kFunctions;
}

} // namespace devsql

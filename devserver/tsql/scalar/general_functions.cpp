// Functions that choose between values of any type, and ISNUMERIC.
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

namespace {

/// ISNULL has the type of its first argument, and cuts a replacement that is longer. Only if the first
/// argument is the constant NULL, it has the type of the second.
Type IsNullType(Types types) {
    if (!IsUntypedNull(types[0])) {
        RequireImplicit(IsUntypedNull(types[1]) ? types[0].id : types[1].id, types[0].id);
        return Settled(types[0]);
    }
    return Settled(types[1]);
}

/// ISNULL.
Value IsNullOr(Values values, Types types) {
    const std::size_t chosen = IsNull(values[0]) ? 1 : 0;
    return Convert(values[chosen], types[chosen], IsNullType(types));
}

/// Raises 4151 if the first argument is the constant NULL, which has no type.
Type NullIfType(Types types) {
    RaiseIf(IsUntypedNull(types[0]), 4151);
    RequireComparable(types[0], types[1], "equal to");
    return Settled(types[0]);
}

Value NullIf(Values values, Types types) {
    if (AnyNull(values)) {
        return values[0];
    }
    return CompareValues(values[0], types[0], values[1], types[1]) == 0 ? Value{} : values[0];
}

/// Raises 4127 if all arguments are the constant NULL.
Type CoalesceType(Types types) {
    const Type type = CommonType(types);
    RaiseIf(IsUntypedNull(type), 4127);
    return type;
}

Value Coalesce(Values values, Types types) {
    const Type type = CoalesceType(types);
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!IsNull(values[i])) {
            return Convert(values[i], types[i], type);
        }
    }
    return {};
}

/// IIF and CHOOSE: the common type of the values that can be chosen, which are all arguments after the first.
/// Raises 8133 if all of them are the constant NULL.
Type ChosenType(Types types) {
    const Type type = CommonType(types.subspan(1));
    RaiseIf(IsUntypedNull(type), 8133);
    return type;
}

/// IIF. The condition comes as a bit, or as NULL if it is unknown, which counts as false.
Value IfThenElse(Values values, Types types) {
    const auto* condition = std::get_if<std::int64_t>(&values[0]);
    const std::size_t chosen = condition != nullptr && *condition != 0 ? 1 : 2;
    return Convert(values[chosen], types[chosen], ChosenType(types));
}

/// CHOOSE: values[0] is the index, counted from 1. NULL if there is no value with that index.
Value Choose(Values values, Types types) {
    if (IsNull(values[0])) {
        return {};
    }
    const std::int64_t index = IntOf(values[0], types[0]);
    if (index < 1 || index >= std::ssize(values)) {
        return {};
    }
    const auto chosen = static_cast<std::size_t>(index);
    return Convert(values[chosen], types[chosen], ChosenType(types));
}

/// 1 for a number, and for a text that can be converted to at least one numeric type ("1e5", "$12"); else 0.
Value IsNumeric(Values values, Types types) {
    const auto* text = std::get_if<std::string>(&values[0]);
    if (text == nullptr) {
        return std::int64_t{!IsNull(values[0]) && IsNumber(types[0].id)};
    }
    if (TrimBlanks(*text).empty()) {
        return std::int64_t{0};
    }
    return std::int64_t{ParseFloat(*text).has_value() || ParseMoney(*text).valid};
}

constexpr ScalarFunction kFunctions[] = {
    // The last value, takes_old_lobs, is true where text, ntext and image are allowed.
    {"ISNULL", 2, 2, IsNullType, IsNullOr, true},
    {"NULLIF", 2, 2, NullIfType, NullIf},
    {"COALESCE", 2, kAnyNumber, CoalesceType, Coalesce, true},
    {"IIF", 3, 3, ChosenType, IfThenElse, true},
    {"CHOOSE", 2, kAnyNumber, ChosenType, Choose, true},
    {"ISNUMERIC", 1, 1, Always<TypeId::Int>, IsNumeric},
};

} // namespace

std::span<const ScalarFunction> GeneralFunctions() {
    return kFunctions;
}

} // namespace devsql

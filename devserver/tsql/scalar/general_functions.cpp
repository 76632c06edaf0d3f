// Functions that choose between values of any type, and ISNUMERIC.
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

namespace {

/// The type of the first argument, even where the second is longer: ISNULL cuts its replacement.
Type IsNullType(Types types) {
    if (!IsUntypedNull(types[0])) {
        RequireImplicit(IsUntypedNull(types[1]) ? types[0].id : types[1].id, types[0].id);
        return Settled(types[0]);
    }
    return Settled(types[1]);
}

Value IsNullOr(Values values, Types types) {
    const std::size_t chosen = IsNull(values[0]) ? 1 : 0;
    return Convert(values[chosen], types[chosen], IsNullType(types));
}

Type NullIfType(Types types) {
    if (IsUntypedNull(types[0])) {
        RaiseError(4151);
    }
    RequireComparable(types[0], types[1], "equal to");
    return Settled(types[0]);
}

Value NullIf(Values values, Types types) {
    if (AnyNull(values)) {
        return values[0];
    }
    return CompareValues(values[0], types[0], values[1], types[1]) == 0 ? Value{} : values[0];
}

Type CoalesceType(Types types) {
    const Type type = CommonType(types);
    if (IsUntypedNull(type)) {
        RaiseError(4127);
    }
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

/// The common type of the values that can be chosen: all arguments after the first.
Type ChosenType(Types types) {
    const Type type = CommonType(types.subspan(1));
    if (IsUntypedNull(type)) {
        RaiseError(8133);
    }
    return type;
}

/// The condition comes as a bit; unknown is false.
Value IfThenElse(Values values, Types types) {
    const auto* condition = std::get_if<std::int64_t>(&values[0]);
    const std::size_t chosen = condition != nullptr && *condition != 0 ? 1 : 2;
    return Convert(values[chosen], types[chosen], ChosenType(types));
}

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

/// True for what converts to any of the number types, money with its currency signs included.
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

// The parts of the function table, and what the functions share: reading arguments, common result types.
#pragma once

#include <span>
#include <string>

#include "devserver/tsql/scalar/functions.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

using Values = std::span<const Value>;
using Types = std::span<const Type>;

std::span<const ScalarFunction> StringFunctions();
std::span<const ScalarFunction> StringSearchFunctions();
std::span<const ScalarFunction> CharacterFunctions();
std::span<const ScalarFunction> MathFunctions();
std::span<const ScalarFunction> DateFunctions();
std::span<const ScalarFunction> GeneralFunctions();

// ------------------------------------------------------------------ arguments

/// Any value as text: a text as it is, others as CAST writes them.
std::string TextOf(const Value& value, const Type& type);
/// As CAST to int, with its errors.
std::int64_t IntOf(const Value& value, const Type& type);
double FloatOf(const Value& value, const Type& type);
/// The datetime; a smalldatetime stays one.
DateTime DateOf(const Value& value, const Type& type);
bool AnyNull(Values values);

// ------------------------------------------------------------------ result types

/// Calls `Evaluate`, but returns NULL when an argument is NULL.
template <Value (*Evaluate)(Values, Types)>
Value NullIfAnyNull(Values values, Types types) {
    return AnyNull(values) ? Value{} : Evaluate(values, types);
}

template <TypeId Id, std::int32_t Length = 0>
Type Always(Types) {
    return Sized(Id, Length);
}

/// varchar or nvarchar wide enough for any text of the type.
Type TextTypeOf(const Type& type);
/// As TextTypeOf, but of the greatest length short of (max).
Type WideTextTypeOf(const Type& type);

} // namespace devsql

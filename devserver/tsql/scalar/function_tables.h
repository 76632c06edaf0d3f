// The parts of the table of scalar functions, and the functions that they share to read arguments and to
// compute results and their types.
#pragma once

#include <span>
#include <string>

#include "devserver/tsql/scalar/functions.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

using Values = std::span<const Value>;
using Types = std::span<const Type>;

std::span<const ScalarFunction> StringFunctions();
std::span<const ScalarFunction> MathFunctions();
std::span<const ScalarFunction> DateFunctions();
std::span<const ScalarFunction> GeneralFunctions();

// ------------------------------------------------------------------ arguments

/// The value as text: a text unchanged, any other value as CAST writes it.
std::string TextOf(const Value& value, const Type& type);

// Each converts as CAST to int, float or datetime does, with the same errors. The value must not be NULL.

std::int64_t IntOf(const Value& value, const Type& type);
double FloatOf(const Value& value, const Type& type);
DateTime DateOf(const Value& value, const Type& type);

bool AnyNull(Values values);

// ------------------------------------------------------------------ results and their types

/// Calls `Evaluate`, but returns NULL when an argument is NULL.
template <Value (*Evaluate)(Values, Types)>
Value NullIfAnyNull(Values values, Types types) {
    return AnyNull(values) ? Value{} : Evaluate(values, types);
}

/// The result type of a function that has the same type for all arguments.
template <TypeId Id, std::int32_t Length = 0>
Type Always(Types) {
    return Sized(Id, Length);
}

/// The varchar or nvarchar that is wide enough for any value of the type as text.
Type TextTypeOf(const Type& type);
/// As TextTypeOf, but varchar(8000) or nvarchar(4000) instead of a shorter type.
Type WideTextTypeOf(const Type& type);

} // namespace devsql

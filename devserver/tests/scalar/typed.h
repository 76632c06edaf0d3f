// Short functions for typed values and results in the tests of the scalar library. A result is shown as its
// full type and its text ("numeric(5,2) 1.50"), an error as its number and text ("8134 Divide by zero …").
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/engine/value.h"
#include "devserver/tsql/scalar/arithmetic.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/functions.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

struct Typed {
    Value value;
    Type type;
};

/// An integer literal: 5 of type int.
inline Typed Num(std::string_view literal) {
    const Literal l = ParseNumberLiteral(literal);
    return {l.value, l.type};
}
/// A value of a type: As("12.50", DecimalType(9, 2)).
inline Typed As(std::string_view text, const Type& type) {
    const Type source = Sized(TypeId::NVarChar, kMaxLength);
    return {Convert(std::string(text), source, type), type};
}
/// A value of an integer type.
inline Typed Whole(std::int64_t value, TypeId id = TypeId::Int) {
    return {value, Simple(id)};
}
inline Typed Real(double value, TypeId id = TypeId::Float) {
    return {value, Simple(id)};
}
/// The literals 'text', N'text' and 0x12AB.
inline Typed Text(std::string_view text) {
    const Literal l = TextLiteral(text, false);
    return {l.value, l.type};
}
inline Typed NText(std::string_view text) {
    const Literal l = TextLiteral(text, true);
    return {l.value, l.type};
}
inline Typed Hex(std::string_view text) {
    const Literal l = ParseBinaryLiteral(text);
    return {l.value, l.type};
}
inline Typed Date(std::string_view text) {
    return As(text, Simple(TypeId::DateTime));
}
/// NULL as a literal, which has no type, and NULL of a type.
inline Typed Null() {
    return {{}, kUntypedNull};
}
inline Typed NullOf(const Type& type) {
    return {{}, type};
}

/// The value as text, without its type: dates with milliseconds, bytes in hexadecimal digits.
inline std::string Shown(const Value& value, const Type& type) {
    if (IsNull(value)) {
        return "NULL";
    }
    const Type text = Sized(TypeId::NVarChar, kMaxLength);
    const bool date = IsDateTime(type.id);
    const auto style = date                ? std::optional<int>(121)
                       : IsBinary(type.id) ? std::optional<int>(1)
                                           : std::nullopt;
    return std::get<std::string>(Convert(value, type, text, style));
}
inline std::string Shown(const Typed& typed) {
    return Shown(typed.value, typed.type);
}
inline std::string ShownWithType(const Typed& typed) {
    return FullTypeName(typed.type) + " " + Shown(typed);
}

/// The result of `call`, or its error.
template <typename Call>
std::string Outcome(Call call) {
    try {
        return call();
    } catch (const SqlError& error) {
        return std::to_string(error.number()) + " " + error.text();
    }
}

/// The number of the error that `call` throws; 0 if it throws none.
template <typename Call>
int ErrorOf(Call call) {
    try {
        call();
        return 0;
    } catch (const SqlError& error) {
        return error.number();
    }
}

/// The result of CONVERT as text, or its error.
inline std::string Converted(const Typed& from, const Type& to, std::optional<int> style = std::nullopt) {
    return Outcome([&] { return Shown(Convert(from.value, from.type, to, style), to); });
}

/// The result of an operator with its type, or its error.
inline std::string Computed(const Typed& left, BinaryOperator op, const Typed& right) {
    return Outcome([&] {
        return ShownWithType({Evaluate(op, left.value, left.type, right.value, right.type),
                              OperatorType(op, left.type, right.type)});
    });
}

/// A function's result, after the checks that the T-SQL engine makes before a call.
inline Typed Called(std::string_view name, const std::vector<Typed>& arguments) {
    const ScalarFunction* function = FindFunction(name);
    if (function == nullptr) {
        throw SqlError(195, 15, 10, std::string(name));
    }
    std::vector<Value> values;
    std::vector<Type> types;
    for (const Typed& argument : arguments) {
        values.push_back(argument.value);
        types.push_back(argument.type);
    }
    CheckArgumentCount(*function, values.size());
    const Type type = ResultType(*function, types);
    return {function->evaluate(values, types), type};
}

struct FunctionCase {
    std::string_view name;
    std::vector<Typed> arguments;
    std::string_view expected; ///< without the type
};

inline std::string Result(const FunctionCase& c) {
    return Outcome([&] { return Shown(Called(c.name, c.arguments)); });
}

} // namespace devsql

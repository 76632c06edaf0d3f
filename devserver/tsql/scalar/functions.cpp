// Finds scalar functions by name, and has the functions that they share.
#include "devserver/tsql/scalar/functions.h"

#include <algorithm>
#include <vector>

#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

namespace {

std::vector<ScalarFunction> JoinTables() {
    std::vector<ScalarFunction> all;
    for (const auto& part : {StringFunctions(), MathFunctions(), DateFunctions(), GeneralFunctions()}) {
        all.insert(all.end(), part.begin(), part.end());
    }
    std::ranges::sort(all, {}, &ScalarFunction::name);
    return all;
}

/// Messages write functions in small letters.
std::string NameInMessages(const ScalarFunction& function) {
    return ToLower(function.name);
}

} // namespace

std::span<const ScalarFunction> AllFunctions() {
    static const std::vector<ScalarFunction> all = JoinTables();
    return all;
}

const ScalarFunction* FindFunction(std::string_view name) {
    const std::string upper = AsciiUpper(name);
    const auto all = AllFunctions();
    const auto found = std::ranges::lower_bound(all, std::string_view(upper), {}, &ScalarFunction::name);
    return found != all.end() && found->name == upper ? &*found : nullptr;
}

void CheckArgumentCount(const ScalarFunction& function, std::size_t count) {
    const auto least = static_cast<std::size_t>(function.min_arguments);
    const auto most = static_cast<std::size_t>(function.max_arguments);
    if (count >= least && count <= most) {
        return;
    }
    if (least == most) {
        RaiseError(174, {NameInMessages(function), std::to_string(least)});
    }
    RaiseError(189, {NameInMessages(function), std::to_string(least), std::to_string(most)});
}

Type ResultType(const ScalarFunction& function, Types arguments) {
    for (std::size_t i = 0; i < arguments.size() && !function.takes_old_lobs; ++i) {
        if (IsOldLob(arguments[i].id)) {
            RaiseError(8116, {TypeName(arguments[i].id), std::to_string(i + 1), NameInMessages(function)});
        }
    }
    return function.result_type(arguments);
}

std::string TextOf(const Value& value, const Type& type) {
    return ValueText(value, type);
}

std::int64_t IntOf(const Value& value, const Type& type) {
    return std::get<std::int64_t>(Convert(value, type, Simple(TypeId::Int)));
}

double FloatOf(const Value& value, const Type& type) {
    return std::get<double>(Convert(value, type, Simple(TypeId::Float)));
}

DateTime DateOf(const Value& value, const Type& type) {
    return std::get<DateTime>(Convert(value, type, Simple(TypeId::DateTime)));
}

bool AnyNull(Values values) {
    return std::any_of(values.begin(), values.end(), [](const Value& value) { return IsNull(value); });
}

Type TextTypeOf(const Type& type) {
    if (IsOldLob(type.id)) {
        return Sized(type.id == TypeId::NText ? TypeId::NVarChar : TypeId::VarChar, kMaxLength);
    }
    if (IsCharacter(type.id)) {
        return Sized(IsUnicode(type.id) ? TypeId::NVarChar : TypeId::VarChar, type.length);
    }
    // The longest that a number, date or uniqueidentifier is written with is 41 characters (a decimal with
    // sign, zero and point).
    constexpr std::int32_t written = 41;
    return Sized(TypeId::VarChar, IsBinary(type.id) && HasLength(type.id) ? type.length : written);
}

Type WideTextTypeOf(const Type& type) {
    const Type text = TextTypeOf(type);
    return text.length == kMaxLength ? text : Sized(text.id, IsUnicode(text.id) ? 4000 : 8000);
}

} // namespace devsql

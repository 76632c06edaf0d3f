// CAST and CONVERT: checks that the conversion is allowed, and calls the conversion to the target type.
#include "devserver/tsql/scalar/conversion.h"

#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

void RequireConvertible(const Type& from, const Type& to) {
    if (!IsUntypedNull(from) && ConversionAllowed(from.id, to.id) == Allowed::Never) {
        RaiseError(529, {TypeName(from.id), TypeName(to.id)});
    }
}

void RequireAssignable(const Type& from, const Type& to) {
    if (!IsUntypedNull(from) && from.id != to.id) {
        RequireImplicit(from.id, to.id);
    }
}

Value ConvertValue(const Value& value, const Type& from, const Type& to, Style style) {
    switch (to.id) {
    case TypeId::Bit:
    case TypeId::TinyInt:
    case TypeId::SmallInt:
    case TypeId::Int:
    case TypeId::BigInt:
        return ToInteger(value, from, to.id);
    case TypeId::Decimal:
    case TypeId::Numeric:
    case TypeId::Money:
    case TypeId::SmallMoney:
        return ToDecimalOrMoney(value, from, to);
    case TypeId::Real:
    case TypeId::Float:
        return ToApproximate(value, from, to.id);
    case TypeId::DateTime:
    case TypeId::SmallDateTime:
    case TypeId::Date:
        return ToDate(value, from, to.id, style);
    case TypeId::UniqueIdentifier:
        return ToGuid(value, from);
    case TypeId::Binary:
    case TypeId::VarBinary:
    case TypeId::Image:
    case TypeId::Timestamp:
        return ToBinary(value, from, to, style);
    default:
        return ToText(value, from, to, style);
    }
}

/// True if cutting `text` to the length of `to` loses more than blanks at its end.
bool LosesText(const std::string& text, const Type& to) {
    return HasLength(to.id) && to.length != kMaxLength &&
           TextLength(TrimTrailingBlanks(text)) > static_cast<std::size_t>(to.length);
}

bool LosesBytes(const std::string& bytes, const Type& to) {
    if (!HasLength(to.id) || to.length == kMaxLength) {
        return false;
    }
    const std::size_t last = bytes.find_last_not_of('\0');
    return last != std::string::npos && last >= static_cast<std::size_t>(to.length);
}

} // namespace

Value Convert(const Value& value, const Type& from, const Type& to, std::optional<int> style) {
    RequireConvertible(from, to);
    if (IsNull(value)) {
        return {};
    }
    return ConvertValue(value, from, to, style);
}

Value TryConvert(const Value& value, const Type& from, const Type& to, std::optional<int> style) {
    RequireConvertible(from, to);
    try {
        return Convert(value, from, to, style);
    } catch (const SqlError& error) {
        constexpr std::int32_t invalid_style = 281;
        if (error.number() == invalid_style) {
            throw;
        }
        return {};
    }
}

Value Assign(const Value& value, const Type& from, const Type& to) {
    RequireAssignable(from, to);
    if (IsNull(value)) {
        return {};
    }
    if (const auto* text = std::get_if<std::string>(&value); text != nullptr && IsCharacter(to.id)) {
        if (LosesText(*text, to)) {
            RaiseError(8152);
        }
    }
    if (const auto* bytes = std::get_if<Bytes>(&value); bytes != nullptr && IsBinary(to.id)) {
        if (LosesBytes(bytes->data, to)) {
            RaiseError(8152);
        }
    }
    if (std::holds_alternative<DateTime>(value) && IsCharacter(to.id) &&
        LosesText(ValueText(value, from), to)) {
        RaiseError(8152);
    }
    return ConvertValue(value, from, to, std::nullopt);
}

Value AssignVariable(const Value& value, const Type& from, const Type& to) {
    RequireAssignable(from, to);
    return Convert(value, from, to);
}

std::string ValueText(const Value& value, const Type& type) {
    return IsNull(value) ? "NULL" : WriteText(value, type, std::nullopt);
}

} // namespace devsql

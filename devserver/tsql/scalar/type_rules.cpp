// Kinds of types, the matrix of conversions and the type that several values have in common.
#include "devserver/tsql/scalar/type_rules.h"

#include <algorithm>
#include <array>

#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

namespace {

using enum TypeId;

// The kinds of types that convert alike: a row of the table below for a kind of source, a column for a kind
// of target.
enum Kind : std::uint8_t {
    kBinary,
    kChar,
    kNChar,
    kDate,
    kDecimal,
    kFloat,
    kInteger,
    kMoney,
    kBit,
    kTimestamp,
    kGuid,
    kImage,
    kNText,
    kText,
    kDay,
};

Kind KindOf(TypeId id) {
    // In the order of TypeId.
    constexpr std::array kinds = {kBit,   kInteger, kInteger,   kInteger, kInteger, kDecimal, kDecimal,
                                  kMoney, kMoney,   kFloat,     kFloat,   kDate,    kDate,    kChar,
                                  kChar,  kNChar,   kNChar,     kText,    kNText,   kBinary,  kBinary,
                                  kImage, kGuid,    kTimestamp, kDay};
    return kinds.at(static_cast<std::size_t>(id));
}

// i: implicitly, e: by CAST and CONVERT alone, -: never.
// Columns: binary char nchar date decimal float integer money bit timestamp guid image ntext text day.
constexpr std::array<std::string_view, 15> kConversions = {
    "iiii--i-iiii--e", // binary
    "eiiiiiiiieiiiii", // char
    "eiiiiiiii-i-iii", // nchar
    "eiiieeeeee----i", // date
    "-iiiiiiii------", // decimal
    "-iiiiiiii------", // float
    "iiiiiiiiii-----", // integer
    "-iiiiiiii------", // money
    "iiiiiiiiii-----", // bit
    "ii-i--i-ii-i---", // timestamp
    "iii-------i----", // uniqueidentifier
    "i--------i-i---", // image
    "-ii---------ii-", // ntext
    "-ii---------ii-", // text
    "-iii----------i", // date alone
};

/// The longer of two lengths of char or binary types; (max) is the longest.
std::int32_t Longer(std::int32_t a, std::int32_t b) {
    return a == kMaxLength || b == kMaxLength ? kMaxLength : std::max(a, b);
}

Type CommonDecimal(const Type& a, const Type& b) {
    const Type x = AsDecimalType(a);
    const Type y = AsDecimalType(b);
    const int scale = std::max(x.scale, y.scale);
    const int whole = std::max(x.precision - x.scale, y.precision - y.scale);
    // Whole digits come first: a value too large is an error, a value too fine only loses digits.
    return DecimalType(std::min(38, whole + scale), std::min(scale, 38 - whole),
                       a.id == Numeric || b.id == Numeric ? Numeric : TypeId::Decimal);
}

} // namespace

Type Settled(const Type& type) {
    return type.id == Int ? Simple(Int) : type;
}

Allowed ConversionAllowed(TypeId from, TypeId to) {
    const char allowed = kConversions.at(KindOf(from)).at(KindOf(to));
    return allowed == 'i' ? Allowed::Implicit : allowed == 'e' ? Allowed::Explicit : Allowed::Never;
}

void RequireImplicit(TypeId from, TypeId to) {
    const Allowed allowed = ConversionAllowed(from, to);
    RaiseIf(allowed != Allowed::Implicit, allowed == Allowed::Never ? 206 : 257,
            {TypeName(from), TypeName(to)});
}

int Precedence(TypeId id) {
    // From the weakest to the strongest. decimal and numeric are one type under two names.
    constexpr std::array order = {
        Binary,           VarBinary, Char,  VarChar, NChar,         NVarChar,
        UniqueIdentifier, Timestamp, Image, Text,    NText,         Bit,
        TinyInt,          SmallInt,  Int,   BigInt,  SmallMoney,    Money,
        Numeric,          Real,      Float, Date,    SmallDateTime, TypeId::DateTime};
    const TypeId one = id == TypeId::Decimal ? Numeric : id;
    return static_cast<int>(std::find(order.begin(), order.end(), one) - order.begin());
}

Type CommonType(const Type& a, const Type& b) {
    if (IsUntypedNull(a) || IsUntypedNull(b)) {
        const Type& other = IsUntypedNull(a) ? b : a;
        return IsUntypedNull(other) ? other : Settled(other);
    }
    const Type& strong = Precedence(b.id) > Precedence(a.id) ? b : a;
    const Type& weak = &strong == &a ? b : a;
    if (strong.id != weak.id) {
        RequireImplicit(weak.id, strong.id);
    }
    const bool exact = IsNumber(weak.id) && !IsApproximate(weak.id);
    if (IsDecimal(strong.id) && exact) {
        return CommonDecimal(a, b);
    }
    const bool both_text = IsCharacter(a.id) && IsCharacter(b.id);
    const bool both_binary = IsBinary(a.id) && IsBinary(b.id);
    if (!HasLength(strong.id) || !(both_text || both_binary)) {
        return Settled(strong);
    }
    // nchar and varchar give nvarchar: Unicode like the one, of varying length like the other.
    const bool varying = !IsFixedLength(a.id) || !IsFixedLength(b.id);
    const TypeId id = strong.id == NChar && varying ? NVarChar : strong.id;
    const std::int32_t length = Longer(a.length, b.length);
    return Sized(id, length == kMaxLength ? length : std::min(length, IsUnicode(id) ? 4000 : 8000));
}

Type CommonType(std::span<const Type> types) {
    Type common = kUntypedNull;
    for (const Type& type : types) {
        common = CommonType(common, type);
    }
    return common;
}

void RequireComparable(const Type& left, const Type& right, std::string_view op) {
    RaiseIf(IsOldLob(left.id) || IsOldLob(right.id), 402, {TypeName(left.id), TypeName(right.id), op});
    CommonType(left, right);
}

} // namespace devsql

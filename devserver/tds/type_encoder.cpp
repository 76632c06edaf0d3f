// A table of all types, and a writer for each kind of value. See type_encoder.h.
#include "devserver/tds/type_encoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <string_view>

#include "devserver/tds/bytes.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql::tds {

namespace {

constexpr std::uint16_t kShortNull = 0xFFFF;
constexpr std::uint64_t kChunkedNull = 0xFFFFFFFFFFFFFFFFU;
constexpr std::uint16_t kChunkedSize = 0xFFFF;
constexpr std::uint32_t kTimestampUserType = 80;
constexpr std::uint8_t kMoneyScale = 4;
constexpr int kMaxDigits = 38;
constexpr std::int32_t kTicksPerMinute = 300 * 60;
/// Clients send a text pointer back only to write by it, and this server has no statement for that. So the
/// pointer that it sends has no meaning.
constexpr std::size_t kTextPointerSize = 16;
constexpr std::size_t kTextTimestampSize = 8;

/// The value as a T. Throws EncodingError if it is another kind of value; `what` is the name of the kind.
template <class T>
const T& Get(const Value& value, const char* what) {
    const T* held = std::get_if<T>(&value);
    if (held == nullptr) {
        throw EncodingError(std::string("a value that is no ") + what + " stands in a column of that type");
    }
    return *held;
}

[[noreturn]] void ThrowOutOfRange(const char* what) {
    throw EncodingError(std::string("a value is out of the range of ") + what);
}

Int128 PowerOfTen(int exponent) {
    Int128 power = 1;
    for (int i = 0; i < exponent; ++i) {
        power *= 10;
    }
    return power;
}

/// The unscaled number of the value at another scale. Throws EncodingError if digits would be lost or it does
/// not fit.
Int128 Rescale(const Decimal& value, std::uint8_t scale, const char* what) {
    if (value.scale == scale) {
        return value.unscaled;
    }
    if (value.scale > scale) {
        const Int128 divisor = PowerOfTen(value.scale - scale);
        if (value.unscaled % divisor != 0) {
            ThrowOutOfRange(what);
        }
        return value.unscaled / divisor;
    }
    const Int128 factor = PowerOfTen(scale - value.scale);
    const Int128 limit = PowerOfTen(kMaxDigits) / factor;
    if (value.unscaled >= limit || value.unscaled <= -limit) {
        ThrowOutOfRange(what);
    }
    return value.unscaled * factor;
}

void AppendInteger(std::string& out, const WireForm& form, const Value& value) {
    const std::int64_t number = Get<std::int64_t>(value, "integer");
    const int bits = static_cast<int>(form.size) * 8;
    // tinyint is the only integer type without a sign.
    const std::int64_t low = form.size == 1 ? 0 : std::numeric_limits<std::int64_t>::min() >> (64 - bits);
    const std::int64_t high = form.size == 1 ? 255 : std::numeric_limits<std::int64_t>::max() >> (64 - bits);
    if (number < low || number > high) {
        ThrowOutOfRange("an integer type");
    }
    std::array<char, 1 + sizeof(number)> bytes{static_cast<char>(form.size)};
    for (std::uint32_t i = 0; i < form.size; ++i) {
        bytes[i + 1] = static_cast<char>(static_cast<std::uint8_t>(number >> (i * 8)));
    }
    out.append(bytes.data(), form.size + 1);
}

void AppendBit(std::string& out, const WireForm&, const Value& value) {
    AppendByte(out, 1);
    AppendByte(out, Get<std::int64_t>(value, "bit") != 0 ? 1 : 0);
}

void AppendFloat(std::string& out, const WireForm& form, const Value& value) {
    const double number = Get<double>(value, "float");
    AppendByte(out, static_cast<std::uint8_t>(form.size));
    if (form.size == sizeof(float)) {
        AppendLe(out, std::bit_cast<std::uint32_t>(static_cast<float>(number)));
    } else {
        AppendLe(out, std::bit_cast<std::uint64_t>(number));
    }
}

void AppendMoney(std::string& out, const WireForm& form, const Value& value) {
    const Int128 units = Rescale(Get<Decimal>(value, "money"), kMoneyScale, "money");
    AppendByte(out, static_cast<std::uint8_t>(form.size));
    if (form.size == 4) {
        if (units < std::numeric_limits<std::int32_t>::min() ||
            units > std::numeric_limits<std::int32_t>::max()) {
            ThrowOutOfRange("smallmoney");
        }
        AppendLe(out, static_cast<std::uint32_t>(units));
        return;
    }
    if (units < std::numeric_limits<std::int64_t>::min() ||
        units > std::numeric_limits<std::int64_t>::max()) {
        ThrowOutOfRange("money");
    }
    const auto bits = static_cast<std::uint64_t>(units);
    AppendLe(out, static_cast<std::uint32_t>(bits >> 32)); // the upper half comes first
    AppendLe(out, static_cast<std::uint32_t>(bits));
}

void AppendDateTime(std::string& out, const WireForm& form, const Value& value) {
    const DateTime& time = Get<DateTime>(value, "date");
    AppendByte(out, static_cast<std::uint8_t>(form.size));
    if (form.size == 8) {
        AppendLe(out, static_cast<std::uint32_t>(time.days));
        AppendLe(out, static_cast<std::uint32_t>(time.ticks));
        return;
    }
    if (time.days < 0 || time.days > std::numeric_limits<std::uint16_t>::max()) {
        ThrowOutOfRange("smalldatetime");
    }
    AppendLe(out, static_cast<std::uint16_t>(time.days));
    AppendLe(out, static_cast<std::uint16_t>(time.ticks / kTicksPerMinute));
}

/// Days since 0001-01-01 in three bytes.
void AppendDate(std::string& out, const WireForm& form, const Value& value) {
    constexpr std::int32_t kDaysTo1900 = 693595;
    const std::int32_t days = Get<DateTime>(value, "date").days + kDaysTo1900;
    AppendByte(out, static_cast<std::uint8_t>(form.size));
    for (int shift = 0; shift < 24; shift += 8) {
        AppendByte(out, static_cast<std::uint8_t>(days >> shift));
    }
}

void AppendDecimal(std::string& out, const WireForm& form, const Value& value) {
    const Int128 unscaled = Rescale(Get<Decimal>(value, "decimal"), form.scale, "decimal");
    const Int128 limit = PowerOfTen(form.precision);
    if (unscaled >= limit || unscaled <= -limit) {
        ThrowOutOfRange("decimal");
    }
    Int128 magnitude = unscaled < 0 ? -unscaled : unscaled;
    AppendByte(out, static_cast<std::uint8_t>(form.size));
    AppendByte(out, unscaled < 0 ? 0 : 1);
    std::array<char, sizeof(Int128)> bytes{};
    for (char& byte : bytes) {
        byte = static_cast<char>(static_cast<std::uint8_t>(magnitude & 0xFF));
        magnitude >>= 8;
    }
    out.append(bytes.data(), form.size - 1);
}

void AppendGuid(std::string& out, const WireForm& form, const Value& value) {
    // The first three groups are numbers: printed with the highest byte first, sent with the lowest byte
    // first.
    static constexpr std::array<std::uint8_t, 16> kOrder{3, 2, 1,  0,  5,  4,  7,  6,
                                                         8, 9, 10, 11, 12, 13, 14, 15};
    const Guid& guid = Get<Guid>(value, "uniqueidentifier");
    AppendByte(out, static_cast<std::uint8_t>(form.size));
    for (const std::uint8_t index : kOrder) {
        AppendByte(out, guid.bytes[index]);
    }
}

bool IsAscii(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) < 0; });
}

void AppendNarrow(std::string& out, std::string_view text) {
    if (IsAscii(text)) {
        out.append(text);
    } else {
        out += ToCodePage1252(text);
    }
}

void AppendWide(std::string& out, std::string_view text) {
    if (!IsAscii(text)) {
        out += ToUtf16Le(text);
        return;
    }
    const std::size_t before = out.size();
    out.resize(before + text.size() * 2);
    for (std::size_t i = 0; i < text.size(); ++i) {
        out[before + i * 2] = text[i];
    }
}

/// Appends the bytes that `append_content` appends, with their length before them as the form asks.
template <class AppendContent>
void AppendCounted(std::string& out, const WireForm& form, AppendContent append_content) {
    const bool pointer =
        form.type == WireType::Text || form.type == WireType::NText || form.type == WireType::Image;
    if (pointer) {
        AppendByte(out, kTextPointerSize);
        out.append(kTextPointerSize + kTextTimestampSize, '\0');
    }
    const std::size_t prefix = form.chunked ? 12 : pointer ? 4 : 2;
    const std::size_t start = out.size();
    out.append(prefix, '\0');
    append_content();
    const std::size_t length = out.size() - start - prefix;
    if (length > form.size) {
        throw EncodingError("a value of " + std::to_string(length) + " bytes stands in a column of " +
                            std::to_string(form.size));
    }
    std::string counted;
    if (form.chunked) {
        // All bytes are sent as one chunk; an empty value has no chunk.
        AppendLe(counted, static_cast<std::uint64_t>(length));
        AppendLe(counted, static_cast<std::uint32_t>(length));
        out.replace(start, prefix, counted);
        if (length > 0) {
            AppendLe(out, std::uint32_t{0});
        }
    } else if (pointer) {
        AppendLe(counted, static_cast<std::uint32_t>(length));
        out.replace(start, prefix, counted);
    } else {
        out[start] = static_cast<char>(length & 0xFF);
        out[start + 1] = static_cast<char>(length >> 8);
    }
}

/// Fills a value of char, nchar or binary up to its full length.
void Pad(std::string& out, std::size_t start, const WireForm& form, std::string_view filler) {
    while (out.size() - start < form.size) {
        out.append(filler);
    }
}

void AppendVarChar(std::string& out, const WireForm& form, const Value& value) {
    const std::string& text = Get<std::string>(value, "text");
    AppendCounted(out, form, [&] { AppendNarrow(out, text); });
}

void AppendChar(std::string& out, const WireForm& form, const Value& value) {
    const std::string& text = Get<std::string>(value, "text");
    AppendCounted(out, form, [&, start = out.size() + 2] {
        AppendNarrow(out, text);
        Pad(out, start, form, " ");
    });
}

void AppendNVarChar(std::string& out, const WireForm& form, const Value& value) {
    const std::string& text = Get<std::string>(value, "text");
    AppendCounted(out, form, [&] { AppendWide(out, text); });
}

/// Clients of a version before 7.3 have no date, so they get it as text.
void AppendDateText(std::string& out, const WireForm& form, const Value& value) {
    const Type date{TypeId::Date, 0, 0, 0};
    const Type text{TypeId::NVarChar, 10, 0, 0};
    AppendNVarChar(out, form, Convert(value, date, text));
}

void AppendNChar(std::string& out, const WireForm& form, const Value& value) {
    static constexpr std::string_view kWideBlank{" \0", 2};
    const std::string& text = Get<std::string>(value, "text");
    AppendCounted(out, form, [&, start = out.size() + 2] {
        AppendWide(out, text);
        Pad(out, start, form, kWideBlank);
    });
}

void AppendVarBinary(std::string& out, const WireForm& form, const Value& value) {
    const Bytes& bytes = Get<Bytes>(value, "binary");
    AppendCounted(out, form, [&] { out.append(bytes.data); });
}

void AppendBinary(std::string& out, const WireForm& form, const Value& value) {
    static constexpr std::string_view kZero{"\0", 1};
    const Bytes& bytes = Get<Bytes>(value, "binary");
    AppendCounted(out, form, [&, start = out.size() + 2] {
        out.append(bytes.data);
        Pad(out, start, form, kZero);
    });
}

/// Bytes of a decimal with its sign.
std::uint32_t DecimalSize(std::uint8_t precision) {
    return precision <= 9 ? 5 : precision <= 19 ? 9 : precision <= 28 ? 13 : 17;
}

bool HasCollation(WireType type) {
    return type == WireType::BigChar || type == WireType::BigVarChar || type == WireType::NChar ||
           type == WireType::NVarChar || type == WireType::Text || type == WireType::NText;
}

bool HasLongLength(WireType type) {
    return type == WireType::Text || type == WireType::NText || type == WireType::Image;
}

bool HasShortLength(WireType type) {
    return type == WireType::BigChar || type == WireType::BigVarChar || type == WireType::NChar ||
           type == WireType::NVarChar || type == WireType::BigBinary || type == WireType::BigVarBinary;
}

} // namespace

/// How the values of a type are written. The table has the entries in the order of TypeId.
struct TypeEncoder::Entry {
    TypeId id;
    WireType wire;
    /// Bytes of a value; 0 if the type's own length gives them.
    std::uint32_t size;
    /// Bytes for each unit of the type's length: 2 for UTF-16.
    std::uint32_t unit;
    /// The type that replaces it at (max) before 7.2.
    WireType large;
    Append append;
};

const TypeEncoder::Entry& TypeEncoder::EntryOf(TypeId id) {
    using enum TypeId;
    constexpr std::uint32_t kLongest = 0x7FFFFFFF;
    constexpr std::uint32_t kLongestWide = 0x7FFFFFFE;
    static constexpr std::array<Entry, 25> kEntries{{
        {Bit, WireType::BitN, 1, 0, WireType::BitN, AppendBit},
        {TinyInt, WireType::IntN, 1, 0, WireType::IntN, AppendInteger},
        {SmallInt, WireType::IntN, 2, 0, WireType::IntN, AppendInteger},
        {Int, WireType::IntN, 4, 0, WireType::IntN, AppendInteger},
        {BigInt, WireType::IntN, 8, 0, WireType::IntN, AppendInteger},
        {TypeId::Decimal, WireType::DecimalN, 0, 0, WireType::DecimalN, AppendDecimal},
        {Numeric, WireType::NumericN, 0, 0, WireType::NumericN, AppendDecimal},
        {Money, WireType::MoneyN, 8, 0, WireType::MoneyN, AppendMoney},
        {SmallMoney, WireType::MoneyN, 4, 0, WireType::MoneyN, AppendMoney},
        {Real, WireType::FloatN, 4, 0, WireType::FloatN, AppendFloat},
        {Float, WireType::FloatN, 8, 0, WireType::FloatN, AppendFloat},
        {TypeId::DateTime, WireType::DateTimeN, 8, 0, WireType::DateTimeN, AppendDateTime},
        {SmallDateTime, WireType::DateTimeN, 4, 0, WireType::DateTimeN, AppendDateTime},
        {Char, WireType::BigChar, 0, 1, WireType::Text, AppendChar},
        {VarChar, WireType::BigVarChar, 0, 1, WireType::Text, AppendVarChar},
        {NChar, WireType::NChar, 0, 2, WireType::NText, AppendNChar},
        {NVarChar, WireType::NVarChar, 0, 2, WireType::NText, AppendNVarChar},
        {Text, WireType::Text, kLongest, 1, WireType::Text, AppendVarChar},
        {NText, WireType::NText, kLongestWide, 2, WireType::NText, AppendNVarChar},
        {Binary, WireType::BigBinary, 0, 1, WireType::Image, AppendBinary},
        {VarBinary, WireType::BigVarBinary, 0, 1, WireType::Image, AppendVarBinary},
        {Image, WireType::Image, kLongest, 1, WireType::Image, AppendVarBinary},
        {UniqueIdentifier, WireType::Guid, 16, 0, WireType::Guid, AppendGuid},
        {Timestamp, WireType::BigBinary, 8, 0, WireType::BigBinary, AppendBinary},
        {Date, WireType::DateN, 3, 0, WireType::DateN, AppendDate},
    }};
    const Entry& entry = kEntries.at(static_cast<std::size_t>(id));
    if (entry.id != id) {
        throw EncodingError("the table of types is out of order");
    }
    return entry;
}

TypeEncoder::TypeEncoder(const Type& type, Version version)
    : append_(EntryOf(type.id).append), user_type_(type.id == TypeId::Timestamp ? kTimestampUserType : 0) {
    const Entry& entry = EntryOf(type.id);
    form_.type = entry.wire;
    form_.size = entry.size;
    if (type.id == TypeId::Date && !Has73(version)) {
        constexpr std::uint32_t kBytesOfDateText = 20;
        form_.type = WireType::NVarChar;
        form_.size = kBytesOfDateText;
        append_ = AppendDateText;
        return;
    }
    if (entry.wire == WireType::DecimalN || entry.wire == WireType::NumericN) {
        form_.precision = std::clamp<std::uint8_t>(type.precision, 1, kMaxDigits);
        form_.scale = std::min(type.scale, form_.precision);
        form_.size = DecimalSize(form_.precision);
        return;
    }
    if (entry.size != 0) {
        return;
    }
    const std::int32_t longest = entry.unit == 2 ? kLongestUnits : kLongestBytes;
    if (type.length != kMaxLength && type.length <= longest) {
        // A type of length 0, such as that of '', is announced with 1, because clients take 0 for no type at
        // all.
        form_.size = static_cast<std::uint32_t>(std::max(type.length, 1)) * entry.unit;
        return;
    }
    // There is no char(max), so a chunked value is never filled up.
    form_.size = entry.unit == 2 ? 0x7FFFFFFE : 0x7FFFFFFF;
    form_.chunked = Has72(version);
    append_ = entry.large == WireType::Text    ? AppendVarChar
              : entry.large == WireType::NText ? AppendNVarChar
                                               : AppendVarBinary;
    if (!form_.chunked) {
        form_.type = entry.large;
    } else {
        form_.type = entry.large == WireType::Text    ? WireType::BigVarChar
                     : entry.large == WireType::NText ? WireType::NVarChar
                                                      : WireType::BigVarBinary;
    }
}

bool TypeEncoder::HasTableName() const {
    return HasLongLength(form_.type);
}

void TypeEncoder::AppendTypeInfo(std::string& out) const {
    AppendByte(out, static_cast<std::uint8_t>(form_.type));
    if (form_.type == WireType::DateN) { // The only nullable type whose description has no size.
        return;
    }
    if (HasLongLength(form_.type)) {
        AppendLe(out, form_.size);
    } else if (HasShortLength(form_.type)) {
        AppendLe(out, form_.chunked ? kChunkedSize : static_cast<std::uint16_t>(form_.size));
    } else {
        AppendByte(out, static_cast<std::uint8_t>(form_.size));
    }
    if (form_.precision != 0) {
        AppendByte(out, form_.precision);
        AppendByte(out, form_.scale);
    }
    if (HasCollation(form_.type)) {
        for (const std::uint8_t byte : kCollation) {
            AppendByte(out, byte);
        }
    }
}

void TypeEncoder::AppendValue(std::string& out, const Value& value) const {
    if (!IsNull(value)) {
        append_(out, form_, value);
    } else if (form_.chunked) {
        AppendLe(out, kChunkedNull);
    } else if (HasShortLength(form_.type)) {
        AppendLe(out, kShortNull);
    } else {
        AppendByte(out, 0);
    }
}

} // namespace devsql::tds

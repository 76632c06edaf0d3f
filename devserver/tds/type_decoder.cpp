// One table of the types that a client may send, and a reader for each kind of value. See type_decoder.h.
#include "devserver/tds/type_decoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <optional>

#include "devserver/tsql/scalar/text.h"

namespace devsql::tds {

namespace {

constexpr std::uint16_t kShortNull = 0xFFFF;
constexpr std::uint16_t kChunkedSize = 0xFFFF;
constexpr std::uint32_t kLongNull = 0xFFFFFFFF;
constexpr std::uint64_t kChunkedNull = 0xFFFFFFFFFFFFFFFFU;
constexpr std::uint64_t kChunkedUnknown = 0xFFFFFFFFFFFFFFFEU;
constexpr std::uint8_t kMaxDigits = 38;
// The range of datetime, 1753-01-01 to 9999-12-31, in days since 1900-01-01; a tick is 1/300 s.
constexpr std::int32_t kFirstDay = -53690;
constexpr std::int32_t kLastDay = 2958463;
constexpr std::int32_t kTicksPerDay = 25'920'000;
constexpr std::int32_t kTicksPerMinute = 300 * 60;
/// Days from 0001-01-01, where the types of 7.3 begin, to 1900-01-01.
constexpr std::int32_t kDaysTo1900 = 693595;

/// How a type is written. Each comment says which bytes follow the type's number in the description; then,
/// after the semicolon, how the length of a value is written.
enum class Shape : std::uint8_t {
    Fixed,   ///< nothing; no length, because the type has a fixed one
    Byte,    ///< the size in a byte; a byte, 0 for NULL
    Numeric, ///< the size in a byte, the digits, the scale; a byte, 0 for NULL
    Scaled,  ///< the scale; a byte, 0 for NULL
    Plain,   ///< nothing; a byte, 0 for NULL
    Short,   ///< the size in two bytes; two bytes, 0xFFFF for NULL, or chunks for a (max) type
    Long,    ///< the size in four bytes; four bytes, 0xFFFFFFFF for NULL
};

/// The description of a type, and the parameter or column that it belongs to. Passed to the readers of
/// values.
struct Context : WireFormat {
    const ValuePlace& place;
};

const char* KindOf(const ValuePlace& place) {
    return place.column ? "Column" : "Parameter";
}

/// The beginning of an error's text: the parameter or column, and its type.
std::string Where(const ValuePlace& place, WireType wire) {
    std::array<char, 8> hex{};
    std::snprintf(hex.data(), hex.size(), "0x%02X", static_cast<unsigned>(wire));
    return std::string("The incoming tabular data stream (TDS) ") +
           (place.column ? "bulk load" : "remote procedure call (RPC)") + " protocol stream is incorrect. " +
           KindOf(place) + " " + std::to_string(place.ordinal) + " (\"" + place.name + "\"): Data type " +
           hex.data() + " ";
}

ProtocolError UnknownType(const ValuePlace& place, WireType wire) {
    return {error_number::kRpcUnknownType, kRequestSeverity, Where(place, wire) + "is unknown."};
}

ProtocolError InvalidLength(const Context& context) {
    return {error_number::kRpcInvalidLength, kRequestSeverity,
            Where(context.place, context.wire) + "has an invalid data length or metadata length."};
}

ProtocolError InvalidValue(const Context& context) {
    return {error_number::kRpcInvalidValue, kRequestSeverity,
            Where(context.place, context.wire) +
                "is not a valid instance of its type. Check the source data for invalid values."};
}

/// A number of T's size, with its lowest byte first.
template <std::unsigned_integral T>
T Number(std::string_view bytes) {
    return ByteReader(bytes).Le<T>();
}

/// A number of at most eight bytes, with its lowest byte first.
std::uint64_t AnyNumber(std::string_view bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
        value = value << 8 | static_cast<std::uint8_t>(bytes[i]);
    }
    return value;
}

Value ReadInteger(const Context&, std::string_view bytes) {
    const std::uint64_t raw = AnyNumber(bytes);
    if (bytes.size() == 1) {
        return static_cast<std::int64_t>(raw);
    }
    const int unused = 64 - static_cast<int>(bytes.size()) * 8;
    return static_cast<std::int64_t>(raw << unused) >> unused;
}

Value ReadBit(const Context&, std::string_view bytes) {
    return std::int64_t{bytes.front() != 0};
}

Value ReadFloat(const Context& context, std::string_view bytes) {
    const double number = bytes.size() == sizeof(float)
                              ? double{std::bit_cast<float>(Number<std::uint32_t>(bytes))}
                              : std::bit_cast<double>(Number<std::uint64_t>(bytes));
    if (!std::isfinite(number)) {
        throw InvalidValue(context);
    }
    return number;
}

Value ReadMoney(const Context&, std::string_view bytes) {
    if (bytes.size() == 4) {
        return Decimal{static_cast<std::int32_t>(Number<std::uint32_t>(bytes)), 4};
    }
    const std::uint64_t high = Number<std::uint32_t>(bytes.substr(0, 4)); // the upper half comes first
    return Decimal{static_cast<std::int64_t>(high << 32 | Number<std::uint32_t>(bytes.substr(4))), 4};
}

/// Throws ProtocolError (8023) for a day out of the range of datetime.
Value CheckedDateTime(const Context& context, std::int64_t days, std::int64_t ticks) {
    if (days < kFirstDay || days > kLastDay || ticks < 0 || ticks >= kTicksPerDay) {
        throw InvalidValue(context);
    }
    return DateTime{static_cast<std::int32_t>(days), static_cast<std::int32_t>(ticks)};
}

Value ReadDateTime(const Context& context, std::string_view bytes) {
    if (bytes.size() == 4) {
        const std::int64_t minutes = Number<std::uint16_t>(bytes.substr(2));
        return CheckedDateTime(context, Number<std::uint16_t>(bytes), minutes * kTicksPerMinute);
    }
    return CheckedDateTime(context, static_cast<std::int32_t>(Number<std::uint32_t>(bytes)),
                           Number<std::uint32_t>(bytes.substr(4)));
}

/// A time of 7.3 counts 10^-scale seconds since midnight. Rounded to 1/300 s it may be the next midnight.
std::int64_t TicksOfTime(const Context& context, std::string_view bytes) {
    std::uint64_t unit = 1;
    for (int i = 0; i < context.scale; ++i) {
        unit *= 10;
    }
    const std::uint64_t count = AnyNumber(bytes);
    if (count >= unit * 86400) {
        throw InvalidValue(context);
    }
    return static_cast<std::int64_t>((count * 300 + unit / 2) / unit);
}

/// As CheckedDateTime, but `ticks` may lie in the day before or after.
Value DateTimeOf(const Context& context, std::int64_t days, std::int64_t ticks) {
    const std::int64_t carried = ticks >= 0 ? ticks / kTicksPerDay : -1;
    return CheckedDateTime(context, days + carried, ticks - carried * kTicksPerDay);
}

Value ReadDate(const Context& context, std::string_view bytes) {
    if (bytes.size() != 3) {
        throw InvalidLength(context);
    }
    return DateTimeOf(context, static_cast<std::int64_t>(AnyNumber(bytes)) - kDaysTo1900, 0);
}

/// Bytes of a time of 7.3.
std::size_t TimeSize(std::uint8_t scale) {
    return scale <= 2 ? 3 : scale <= 4 ? 4 : 5;
}

Value ReadTime(const Context& context, std::string_view bytes) {
    if (bytes.size() != TimeSize(context.scale)) {
        throw InvalidLength(context);
    }
    return DateTimeOf(context, 0, TicksOfTime(context, bytes));
}

Value ReadDateTime2(const Context& context, std::string_view bytes) {
    const std::size_t time = TimeSize(context.scale);
    if (bytes.size() != time + 3) {
        throw InvalidLength(context);
    }
    const std::int64_t days = static_cast<std::int64_t>(AnyNumber(bytes.substr(time))) - kDaysTo1900;
    return DateTimeOf(context, days, TicksOfTime(context, bytes.substr(0, time)));
}

Value ReadDateTimeOffset(const Context& context, std::string_view bytes) {
    const std::size_t time = TimeSize(context.scale);
    if (bytes.size() != time + 5) {
        throw InvalidLength(context);
    }
    const std::int64_t days = static_cast<std::int64_t>(AnyNumber(bytes.substr(time, 3))) - kDaysTo1900;
    const auto offset = static_cast<std::int16_t>(Number<std::uint16_t>(bytes.substr(time + 3)));
    if (std::abs(offset) > 14 * 60) {
        throw InvalidValue(context);
    }
    return DateTimeOf(context, days,
                      TicksOfTime(context, bytes.substr(0, time)) + offset * std::int64_t{kTicksPerMinute});
}

Value ReadDecimal(const Context& context, std::string_view bytes) {
    const std::string_view digits = bytes.substr(1); // after the byte of the sign
    if (digits.empty() || digits.size() > 16) {
        throw InvalidLength(context);
    }
    Int128 limit = 1;
    for (int i = 0; i < context.type.precision; ++i) {
        limit *= 10;
    }
    // 16 bytes can hold up to 3.4 * 10^38, twice as much as the signed type Int128.
    const std::uint64_t high = digits.size() > 8 ? AnyNumber(digits.substr(8)) : 0;
    if (high >> 63 != 0) {
        throw InvalidValue(context);
    }
    const Int128 magnitude = static_cast<Int128>(high) << 64 | AnyNumber(digits.substr(0, 8));
    if (magnitude >= limit) {
        throw InvalidValue(context);
    }
    return Decimal{bytes.front() == 0 ? -magnitude : magnitude, context.type.scale};
}

Value ReadGuid(const Context&, std::string_view bytes) {
    static constexpr std::array<std::uint8_t, 16> kOrder{3, 2, 1,  0,  5,  4,  7,  6,
                                                         8, 9, 10, 11, 12, 13, 14, 15};
    Guid guid;
    for (std::size_t i = 0; i < kOrder.size(); ++i) {
        guid.bytes[i] = static_cast<std::uint8_t>(bytes[kOrder[i]]);
    }
    return guid;
}

Value ReadNarrow(const Context&, std::string_view bytes) {
    return FromCodePage1252(bytes);
}

Value ReadWide(const Context& context, std::string_view bytes) {
    if (bytes.size() % 2 != 0) {
        throw InvalidLength(context);
    }
    return FromUtf16Le(bytes);
}

Value ReadBinary(const Context&, std::string_view bytes) {
    return Bytes{std::string(bytes)};
}

using Read = Value (*)(const Context& context, std::string_view bytes);

/// A type that a client may send, and the function that reads its values. `type` is the type that the value
/// gets here; its length, precision and scale come from the description.
struct Entry {
    WireType wire;
    Shape shape;
    std::size_t size; ///< bytes of a fixed type
    bool collation;   ///< a collation follows in the description
    TypeId type;
    Read read;
};

using enum TypeId;

constexpr std::array<Entry, 38> kEntries{{
    {WireType::Int1, Shape::Fixed, 1, false, TinyInt, ReadInteger},
    {WireType::Bit, Shape::Fixed, 1, false, Bit, ReadBit},
    {WireType::Int2, Shape::Fixed, 2, false, SmallInt, ReadInteger},
    {WireType::Int4, Shape::Fixed, 4, false, Int, ReadInteger},
    {WireType::Int8, Shape::Fixed, 8, false, BigInt, ReadInteger},
    {WireType::Float4, Shape::Fixed, 4, false, Real, ReadFloat},
    {WireType::Float8, Shape::Fixed, 8, false, Float, ReadFloat},
    {WireType::Money4, Shape::Fixed, 4, false, SmallMoney, ReadMoney},
    {WireType::Money, Shape::Fixed, 8, false, Money, ReadMoney},
    {WireType::DateTime4, Shape::Fixed, 4, false, SmallDateTime, ReadDateTime},
    {WireType::DateTime, Shape::Fixed, 8, false, TypeId::DateTime, ReadDateTime},
    {WireType::IntN, Shape::Byte, 0, false, Int, ReadInteger},
    {WireType::BitN, Shape::Byte, 0, false, Bit, ReadBit},
    {WireType::FloatN, Shape::Byte, 0, false, Float, ReadFloat},
    {WireType::MoneyN, Shape::Byte, 0, false, Money, ReadMoney},
    {WireType::DateTimeN, Shape::Byte, 0, false, TypeId::DateTime, ReadDateTime},
    {WireType::Guid, Shape::Byte, 0, false, UniqueIdentifier, ReadGuid},
    {WireType::OldVarChar, Shape::Byte, 0, false, VarChar, ReadNarrow},
    {WireType::OldChar, Shape::Byte, 0, false, Char, ReadNarrow},
    {WireType::OldVarBinary, Shape::Byte, 0, false, VarBinary, ReadBinary},
    {WireType::OldBinary, Shape::Byte, 0, false, Binary, ReadBinary},
    {WireType::DecimalN, Shape::Numeric, 0, false, TypeId::Decimal, ReadDecimal},
    {WireType::NumericN, Shape::Numeric, 0, false, Numeric, ReadDecimal},
    {WireType::OldDecimal, Shape::Numeric, 0, false, TypeId::Decimal, ReadDecimal},
    {WireType::OldNumeric, Shape::Numeric, 0, false, Numeric, ReadDecimal},
    {WireType::DateN, Shape::Plain, 0, false, TypeId::DateTime, ReadDate},
    {WireType::TimeN, Shape::Scaled, 0, false, TypeId::DateTime, ReadTime},
    {WireType::DateTime2N, Shape::Scaled, 0, false, TypeId::DateTime, ReadDateTime2},
    {WireType::DateTimeOffsetN, Shape::Scaled, 0, false, TypeId::DateTime, ReadDateTimeOffset},
    {WireType::BigVarChar, Shape::Short, 0, true, VarChar, ReadNarrow},
    {WireType::BigChar, Shape::Short, 0, true, Char, ReadNarrow},
    {WireType::NVarChar, Shape::Short, 0, true, NVarChar, ReadWide},
    {WireType::NChar, Shape::Short, 0, true, NChar, ReadWide},
    {WireType::BigVarBinary, Shape::Short, 0, false, VarBinary, ReadBinary},
    {WireType::BigBinary, Shape::Short, 0, false, Binary, ReadBinary},
    {WireType::Text, Shape::Long, 0, true, Text, ReadNarrow},
    {WireType::NText, Shape::Long, 0, true, NText, ReadWide},
    {WireType::Image, Shape::Long, 0, false, Image, ReadBinary},
}};

/// A type that exists in the protocol and is refused by its name.
struct Refused {
    WireType wire;
    const char* name;
};

constexpr std::array<Refused, 4> kRefused{{
    {WireType::Variant, "sql_variant"},
    {WireType::Udt, "a CLR type"},
    {WireType::Xml, "xml"},
    {WireType::Table, "a table type"},
}};

/// Throws ProtocolError: 40510 for a type that is refused, 8009 for an unknown one.
const Entry& FindEntry(WireType wire, const ValuePlace& place) {
    for (const Refused& refused : kRefused) {
        if (refused.wire == wire) {
            throw ProtocolError(error_number::kNotSupported, kRequestSeverity,
                                std::string(KindOf(place)) + " " + std::to_string(place.ordinal) + " (\"" +
                                    place.name + "\"): the type " + refused.name +
                                    " is not supported by this development server.");
        }
    }
    const auto* const found =
        std::find_if(kEntries.begin(), kEntries.end(), [wire](const Entry& e) { return e.wire == wire; });
    if (found == kEntries.end()) {
        throw UnknownType(place, wire);
    }
    return *found;
}

struct Sized {
    WireType wire;
    std::size_t size;
    TypeId type;
};

/// The nullable types that stand for several types, which differ in size.
constexpr std::array<Sized, 12> kSized{{
    {WireType::IntN, 1, TinyInt},
    {WireType::IntN, 2, SmallInt},
    {WireType::IntN, 4, Int},
    {WireType::IntN, 8, BigInt},
    {WireType::BitN, 1, Bit},
    {WireType::FloatN, 4, Real},
    {WireType::FloatN, 8, Float},
    {WireType::MoneyN, 4, SmallMoney},
    {WireType::MoneyN, 8, Money},
    {WireType::DateTimeN, 4, SmallDateTime},
    {WireType::DateTimeN, 8, TypeId::DateTime},
    {WireType::Guid, 16, UniqueIdentifier},
}};

/// True for the types of text and binary that versions before 7.0 had.
bool IsOld(WireType wire) {
    return wire == WireType::OldVarChar || wire == WireType::OldChar || wire == WireType::OldVarBinary ||
           wire == WireType::OldBinary;
}

/// Sets the type of a description of the shape Byte by its size. Throws ProtocolError (8016) for an
/// impossible size.
void SettleByteType(Context& context) {
    if (IsOld(context.wire)) {
        context.type.length = std::max(1, static_cast<int>(context.size));
        return;
    }
    for (const Sized& sized : kSized) {
        if (sized.wire == context.wire && sized.size == context.size) {
            context.type.id = sized.type;
            return;
        }
    }
    throw InvalidLength(context);
}

void SettleShortType(Context& context, bool wide, bool chunks_allowed) {
    if (context.size == kChunkedSize) {
        if (!chunks_allowed) {
            throw InvalidLength(context);
        }
        context.type.length = kMaxLength;
        return;
    }
    if (context.size > kLongestBytes || (wide && context.size % 2 != 0)) {
        throw InvalidLength(context);
    }
    context.type.length = std::max(1, static_cast<int>(wide ? context.size / 2 : context.size));
}

void SettleNumericType(Context& context, ByteReader& reader) {
    context.type.precision = reader.Byte();
    context.type.scale = reader.Byte();
    if (context.type.precision < 1 || context.type.precision > kMaxDigits ||
        context.type.scale > context.type.precision) {
        throw InvalidLength(context);
    }
}

/// Reads the description that follows the type's number.
void ReadTypeInfo(ByteReader& reader, const Entry& entry, Version version, Context& context) {
    switch (entry.shape) {
    case Shape::Fixed:
        context.size = entry.size;
        break;
    case Shape::Plain:
        break;
    case Shape::Byte:
        context.size = reader.Byte();
        SettleByteType(context);
        break;
    case Shape::Numeric:
        context.size = reader.Byte();
        SettleNumericType(context, reader);
        break;
    case Shape::Scaled:
        context.scale = reader.Byte();
        if (context.scale > 7) {
            throw InvalidLength(context);
        }
        break;
    case Shape::Short:
        context.size = reader.Le<std::uint16_t>();
        SettleShortType(context, entry.read == ReadWide, Has72(version));
        break;
    case Shape::Long:
        context.size = reader.Le<std::uint32_t>();
        break;
    }
    if (entry.collation) {
        reader.Take(sizeof kCollation);
    }
}

/// Reads a value that is sent in chunks and joins them. Returns nothing for NULL.
std::optional<std::string> ReadChunks(ByteReader& reader, const Context& context) {
    const auto total = reader.Le<std::uint64_t>();
    if (total == kChunkedNull) {
        return std::nullopt;
    }
    std::string joined;
    for (std::size_t size = reader.Le<std::uint32_t>(); size != 0; size = reader.Le<std::uint32_t>()) {
        joined += reader.Take(size);
    }
    if (total != kChunkedUnknown && total != joined.size()) {
        throw InvalidLength(context);
    }
    return joined;
}

/// Reads a value whose length stands before it in one byte. Returns nothing for NULL.
std::optional<std::string> ReadByteCounted(ByteReader& reader, const Context& context, const Entry& entry) {
    const std::size_t size = reader.Byte();
    if (size == 0) {
        return std::nullopt;
    }
    const bool exact = entry.shape == Shape::Byte && !IsOld(entry.wire);
    if (exact ? size != context.size : entry.shape == Shape::Byte && size > context.size) {
        throw InvalidLength(context);
    }
    return std::string(reader.Take(size));
}

/// Reads the bytes of a value; returns nothing for NULL.
std::optional<std::string> ReadContent(ByteReader& reader, const Entry& entry, const Context& context) {
    switch (entry.shape) {
    case Shape::Fixed:
        return std::string(reader.Take(entry.size));
    case Shape::Byte:
    case Shape::Numeric:
    case Shape::Scaled:
    case Shape::Plain:
        return ReadByteCounted(reader, context, entry);
    case Shape::Short: {
        if (context.type.length == kMaxLength) {
            return ReadChunks(reader, context);
        }
        const std::size_t size = reader.Le<std::uint16_t>();
        if (size == kShortNull) {
            return std::nullopt;
        }
        if (size > context.size) {
            throw InvalidLength(context);
        }
        return std::string(reader.Take(size));
    }
    case Shape::Long: {
        const std::size_t size = reader.Le<std::uint32_t>();
        return size == kLongNull ? std::nullopt : std::optional(std::string(reader.Take(size)));
    }
    }
    throw UnknownType(context.place, context.wire);
}

} // namespace

WireFormat ReadFormat(ByteReader& reader, Version version, const ValuePlace& place) {
    const auto wire = static_cast<WireType>(reader.Byte());
    const Entry& entry = FindEntry(wire, place);
    Context context{{wire, Type{entry.type}, 0, 0}, place};
    ReadTypeInfo(reader, entry, version, context);
    const WireFormat& format = context; // without the place, which was only needed for errors
    return format;
}

Value ReadValue(ByteReader& reader, const WireFormat& format, const ValuePlace& place) {
    const Entry& entry = FindEntry(format.wire, place);
    const Context context{format, place};
    const std::optional<std::string> content = ReadContent(reader, entry, context);
    return content ? entry.read(context, *content) : Value{};
}

TypedValue ReadTypedValue(ByteReader& reader, Version version, const ValuePlace& place) {
    const WireFormat format = ReadFormat(reader, version, place);
    return {format.type, ReadValue(reader, format, place)};
}

} // namespace devsql::tds

// Reading the bytes of parameters, valid and invalid.
#include "devserver/tds/type_decoder.h"

#include <gtest/gtest.h>
#include <vector>

#include "devserver/tds/type_encoder.h"
#include "devserver/tests/hex.h"

namespace devsql::tds {
namespace {

using fakes::FromHex;

TypedValue Decode(const std::string& hex, Version version = Version::V74) {
    const std::string bytes = FromHex(hex);
    ByteReader reader(bytes);
    TypedValue typed = ReadTypedValue(reader, version, {1, "@p"});
    EXPECT_TRUE(reader.AtEnd()) << hex;
    return typed;
}

std::int32_t ErrorOf(const std::string& hex, Version version = Version::V74) {
    try {
        Decode(hex, version);
    } catch (const ProtocolError& error) {
        return error.number();
    }
    return 0;
}

Type Make(TypeId id, std::int32_t length = 0) {
    return {id, length};
}

struct Case {
    const char* hex;
    Type type;
    Value value;
};

TEST(TdsTypeDecoder, NumbersAreReadInNullableAndFixedForms) {
    const std::vector<Case> cases{
        {"26 01 01 FF", Make(TypeId::TinyInt), std::int64_t{255}},
        {"26 02 02 FE FF", Make(TypeId::SmallInt), std::int64_t{-2}},
        {"26 04 04 FE FF FF FF", Make(TypeId::Int), std::int64_t{-2}},
        {"26 08 08 00 00 00 00 00 00 00 80", Make(TypeId::BigInt), std::numeric_limits<std::int64_t>::min()},
        {"26 04 00", Make(TypeId::Int), Value{}},
        {"30 07", Make(TypeId::TinyInt), std::int64_t{7}},
        {"34 FF FF", Make(TypeId::SmallInt), std::int64_t{-1}},
        {"38 01 00 00 00", Make(TypeId::Int), std::int64_t{1}},
        {"7F 01 00 00 00 00 00 00 00", Make(TypeId::BigInt), std::int64_t{1}},
        {"32 01", Make(TypeId::Bit), std::int64_t{1}},
        {"68 01 01 02", Make(TypeId::Bit), std::int64_t{1}},
        {"6D 04 04 00 00 C0 3F", Make(TypeId::Real), 1.5},
        {"3E 00 00 00 00 00 00 00 C0", Make(TypeId::Float), -2.0},
        {"6E 08 08 FF FF FF FF F0 D8 FF FF", Make(TypeId::Money), Decimal{-10000, 4}},
        {"7A F0 D8 FF FF", Make(TypeId::SmallMoney), Decimal{-10000, 4}},
        {"6A 05 09 02 05 00 39 30 00 00", {TypeId::Decimal, 0, 9, 2}, Decimal{-12345, 2}},
        {"6C 11 26 00 02 01 07", {TypeId::Numeric, 0, 38, 0}, Decimal{7, 0}},
        {"6C 11 26 00 00", {TypeId::Numeric, 0, 38, 0}, Value{}},
    };
    for (const Case& c : cases) {
        const TypedValue typed = Decode(c.hex);
        EXPECT_EQ(typed.type, c.type) << c.hex;
        EXPECT_EQ(typed.value, c.value) << c.hex;
    }
}

TEST(TdsTypeDecoder, TextsAndBinariesAreReadInAllForms) {
    const std::vector<Case> cases{
        {"A7 05 00 0904D00034 02 00 80 61", Make(TypeId::VarChar, 5),
         std::string("\xE2\x82\xAC"
                     "a")},
        {"A7 05 00 0904D00034 FF FF", Make(TypeId::VarChar, 5), Value{}},
        {"AF 05 00 0904D00034 00 00", Make(TypeId::Char, 5), std::string()},
        {"E7 08 00 0904D00034 02 00 16 04", Make(TypeId::NVarChar, 4), std::string("\xD0\x96")},
        {"E7 00 00 0904D00034 00 00", Make(TypeId::NVarChar, 1), std::string()},
        {"EF 08 00 0904D00034 FF FF", Make(TypeId::NChar, 4), Value{}},
        {"E7 FF FF 0904D00034 FE FF FF FF FF FF FF FF 02 00 00 00 61 00 02 00 00 00 62 00 00 00 00 00",
         Make(TypeId::NVarChar, kMaxLength), std::string("ab")},
        {"A5 FF FF 01 00 00 00 00 00 00 00 01 00 00 00 07 00 00 00 00", Make(TypeId::VarBinary, kMaxLength),
         Bytes{"\x07"}},
        {"A7 FF FF 0904D00034 FF FF FF FF FF FF FF FF", Make(TypeId::VarChar, kMaxLength), Value{}},
        {"23 FF FF FF 7F 0904D00034 01 00 00 00 61", Make(TypeId::Text), std::string("a")},
        {"63 FF FF FF 7F 0904D00034 FF FF FF FF", Make(TypeId::NText), Value{}},
        {"22 FF FF FF 7F 00 00 00 00", Make(TypeId::Image), Bytes{}},
        {"A5 03 00 01 00 05", Make(TypeId::VarBinary, 3), Bytes{"\x05"}},
        {"AD 03 00 FF FF", Make(TypeId::Binary, 3), Value{}},
        {"27 05 02 61 62", Make(TypeId::VarChar, 5), std::string("ab")},
        {"25 05 00", Make(TypeId::VarBinary, 5), Value{}},
    };
    for (const Case& c : cases) {
        const TypedValue typed = Decode(c.hex);
        EXPECT_EQ(typed.type, c.type) << c.hex;
        EXPECT_EQ(typed.value, c.value) << c.hex;
    }
}

TEST(TdsTypeDecoder, DatesAndGuids) {
    EXPECT_EQ(Decode("6F 08 08 FF FF FF FF 2C 01 00 00").value, Value(DateTime{-1, 300}));
    EXPECT_EQ(Decode("6F 04 04 FF FF 01 00").value, Value(DateTime{65535, 18000}));
    EXPECT_EQ(Decode("3D 00 00 00 00 00 00 00 00").value, Value(DateTime{0, 0}));
    const Guid guid{
        {0, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}};
    EXPECT_EQ(Decode("24 10 10 33221100 5544 7766 8899AABBCCDDEEFF").value, Value(guid));
    EXPECT_EQ(Decode("24 10 00").value, Value{});
}

TEST(TdsTypeDecoder, DateTypesOf73BecomeDatetime) {
    // 693595 days after 0001-01-01 is 1900-01-01.
    EXPECT_EQ(Decode("28 03 5B 95 0A").value, Value(DateTime{0, 0}));
    EXPECT_EQ(Decode("29 00 03 01 00 00").value, Value(DateTime{0, 300}));
    // 23:59:59.9999999 rounds to the next midnight.
    EXPECT_EQ(Decode("2A 07 08 FF BF 69 2A C9 5B 95 0A").value, Value(DateTime{1, 0}));
    // 23:00 UTC is 01:00 of the next day at +02:00.
    EXPECT_EQ(Decode("2B 00 08 70 43 01 5B 95 0A 78 00").value, Value(DateTime{1, 300 * 3600}));
    EXPECT_EQ(Decode("2B 00 08 00 00 00 5B 95 0A C4 FF").value, Value(DateTime{-1, 300 * 3600 * 23}));
    EXPECT_EQ(Decode("28 00").type.id, TypeId::DateTime);
}

TEST(TdsTypeDecoder, EveryTypeThatIsSentCanBeReadBack) {
    const std::vector<std::pair<Type, Value>> values{
        {Make(TypeId::Bit), std::int64_t{0}},
        {Make(TypeId::BigInt), std::numeric_limits<std::int64_t>::max()},
        {{TypeId::Decimal, 0, 38, 10}, Decimal{-(Int128{1} << 100), 10}},
        {Make(TypeId::Money), Decimal{std::numeric_limits<std::int64_t>::min(), 4}},
        {Make(TypeId::SmallMoney), Decimal{std::numeric_limits<std::int32_t>::max(), 4}},
        {Make(TypeId::Float), 1.7976931348623157e308},
        {Make(TypeId::DateTime), DateTime{2958463, 25'919'999}},
        {Make(TypeId::DateTime), DateTime{-53690, 0}},
        {Make(TypeId::SmallDateTime), DateTime{0, 0}},
        {Make(TypeId::NVarChar, 4), std::string("\xF0\x9F\x98\x80")},
        {Make(TypeId::VarBinary, 8000), Bytes{std::string(8000, '\xFF')}},
        {Make(TypeId::NVarChar, kMaxLength), std::string(100000, 'x')},
    };
    for (const auto& [type, value] : values) {
        const TypeEncoder encoder(type, Version::V74);
        for (const Value& one : {value, Value{}}) {
            std::string bytes;
            encoder.AppendTypeInfo(bytes);
            encoder.AppendValue(bytes, one);
            ByteReader reader(bytes);
            const TypedValue typed = ReadTypedValue(reader, Version::V74, {1, ""});
            EXPECT_EQ(typed.type, type);
            EXPECT_EQ(typed.value, one);
            EXPECT_TRUE(reader.AtEnd());
        }
    }
}

TEST(TdsTypeDecoder, InvalidDataIsRefusedWithItsErrorNumber) {
    EXPECT_EQ(ErrorOf("99"), 8009);
    EXPECT_EQ(ErrorOf("62 00"), 40510); // sql_variant
    EXPECT_EQ(ErrorOf("F1 00"), 40510); // xml
    EXPECT_EQ(ErrorOf("F3 00"), 40510); // a table
    EXPECT_EQ(ErrorOf("26 03 00"), 8016);
    EXPECT_EQ(ErrorOf("26 04 02 00 00"), 8016);
    EXPECT_EQ(ErrorOf("E7 07 00 0904D00034 00 00"), 8016);
    EXPECT_EQ(ErrorOf("E7 08 00 0904D00034 01 00 61"), 8016);
    EXPECT_EQ(ErrorOf("A7 05 00 0904D00034 06 00 61 61 61 61 61 61"), 8016);
    EXPECT_EQ(ErrorOf("A7 41 1F 0904D00034 00 00"), 8016);
    EXPECT_EQ(ErrorOf("A7 FF FF 0904D00034 00 00", Version::V71), 8016);
    EXPECT_EQ(ErrorOf("6A 11 27 00 00"), 8016);
    EXPECT_EQ(ErrorOf("6A 11 05 06 00"), 8016);
    EXPECT_EQ(ErrorOf("6A 05 02 00 05 01 64 00 00 00"), 8023);
    EXPECT_EQ(ErrorOf("6A 11 26 00 11 01 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF"), 8023);
    EXPECT_EQ(ErrorOf("6D 08 08 00 00 00 00 00 00 F0 7F"), 8023);
    EXPECT_EQ(ErrorOf("6F 08 08 00 00 00 00 00 82 8B 01"), 8023);
    EXPECT_EQ(ErrorOf("6F 08 08 FF FF FF 7F 00 00 00 00"), 8023);
    EXPECT_EQ(ErrorOf("28 03 00 00 00"), 8023); // the year 1
    EXPECT_EQ(ErrorOf("29 08 00"), 8016);
    EXPECT_EQ(ErrorOf("E7 FF FF 0904D00034 05 00 00 00 00 00 00 00 02 00 00 00 61 00 00 00 00 00"), 8016);
}

TEST(TdsTypeDecoder, TruncatedDataIsRefused) {
    const std::vector<std::string> whole{
        "26 04 04 FE FF FF FF",
        "A7 05 00 0904D00034 02 00 80 61",
        "6A 05 09 02 05 00 39 30 00 00",
        "E7 FF FF 0904D00034 FE FF FF FF FF FF FF FF 02 00 00 00 61 00 00 00 00 00",
        "23 FF FF FF 7F 0904D00034 01 00 00 00 61",
        "2A 07 08 FF BF 69 2A C9 5B 95 0A",
        "24 10 10 33221100 5544 7766 8899AABBCCDDEEFF"};
    for (const std::string& hex : whole) {
        const std::string bytes = FromHex(hex);
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            ByteReader reader(std::string_view(bytes).substr(0, length));
            EXPECT_THROW(ReadTypedValue(reader, Version::V74, {1, ""}), ProtocolError)
                << hex << " cut to " << length;
        }
    }
}

} // namespace
} // namespace devsql::tds

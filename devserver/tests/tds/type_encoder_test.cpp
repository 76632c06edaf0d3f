// The bytes of each type and its values on the wire.
#include "devserver/tds/type_encoder.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "devserver/tests/hex.h"

namespace devsql::tds {
namespace {

using fakes::Hex;

constexpr const char* kCollationHex = "09 04 D0 00 34";

std::string TypeInfo(const Type& type, Version version = Version::V74) {
    std::string out;
    TypeEncoder(type, version).AppendTypeInfo(out);
    return Hex(out);
}

std::string Encoded(const Type& type, const Value& value, Version version = Version::V74) {
    std::string out;
    TypeEncoder(type, version).AppendValue(out, value);
    return Hex(out);
}

struct Case {
    const char* what;
    Type type;
    Value value;
    std::string type_info;
    std::string bytes;
};

Type Sized(TypeId id, std::int32_t length) {
    return {id, length};
}

Type Digits(TypeId id, std::uint8_t precision, std::uint8_t scale) {
    return {id, 0, precision, scale};
}

std::vector<Case> NumberCases() {
    constexpr auto kInt64Min = std::numeric_limits<std::int64_t>::min();
    return {
        {"bit", {TypeId::Bit}, std::int64_t{1}, "68 01", "01 01"},
        {"tinyint max", {TypeId::TinyInt}, std::int64_t{255}, "26 01", "01 FF"},
        {"smallint min", {TypeId::SmallInt}, std::int64_t{-32768}, "26 02", "02 00 80"},
        {"int", {TypeId::Int}, std::int64_t{-2}, "26 04", "04 FE FF FF FF"},
        {"bigint min", {TypeId::BigInt}, kInt64Min, "26 08", "08 00 00 00 00 00 00 00 80"},
        {"real", {TypeId::Real}, 1.5, "6D 04", "04 00 00 C0 3F"},
        {"float", {TypeId::Float}, -2.0, "6D 08", "08 00 00 00 00 00 00 00 C0"},
        {"money", {TypeId::Money}, Decimal{-10000, 4}, "6E 08", "08 FF FF FF FF F0 D8 FF FF"},
        {"money of scale 2", {TypeId::Money}, Decimal{100, 2}, "6E 08", "08 00 00 00 00 10 27 00 00"},
        {"smallmoney", {TypeId::SmallMoney}, Decimal{10000, 4}, "6E 04", "04 10 27 00 00"},
        {"decimal(9,2)", Digits(TypeId::Decimal, 9, 2), Decimal{-12345, 2}, "6A 05 09 02",
         "05 00 39 30 00 00"},
        {"numeric(19,0)", Digits(TypeId::Numeric, 19, 0), Decimal{1, 0}, "6C 09 13 00",
         "09 01 01 00 00 00 00 00 00 00"},
        {"decimal(28,4) of scale 0", Digits(TypeId::Decimal, 28, 4), Decimal{1, 0}, "6A 0D 1C 04",
         "0D 01 10 27 00 00 00 00 00 00 00 00 00 00"},
    };
}

std::vector<Case> OtherCases() {
    const std::string collation = kCollationHex;
    return {
        {"datetime", {TypeId::DateTime}, DateTime{-1, 300}, "6F 08", "08 FF FF FF FF 2C 01 00 00"},
        {"smalldatetime", {TypeId::SmallDateTime}, DateTime{65535, 18000}, "6F 04", "04 FF FF 01 00"},
        {"char pads", Sized(TypeId::Char, 3), std::string("a"), "AF 03 00 " + collation, "03 00 61 20 20"},
        {"varchar in 1252", Sized(TypeId::VarChar, 9), std::string("\xE2\x82\xAC"), "A7 09 00 " + collation,
         "01 00 80"},
        {"varchar empty", Sized(TypeId::VarChar, 0), std::string(), "A7 01 00 " + collation, "00 00"},
        {"nchar pads", Sized(TypeId::NChar, 2), std::string("a"), "EF 04 00 " + collation,
         "04 00 61 00 20 00"},
        {"nvarchar", Sized(TypeId::NVarChar, 5), std::string("\xD0\x96"), "E7 0A 00 " + collation,
         "02 00 16 04"},
        {"binary pads", Sized(TypeId::Binary, 3), Bytes{"\x01"}, "AD 03 00", "03 00 01 00 00"},
        {"varbinary", Sized(TypeId::VarBinary, 3), Bytes{"\x01"}, "A5 03 00", "01 00 01"},
        {"timestamp",
         {TypeId::Timestamp},
         Bytes{std::string("\0\0\0\0\0\0\x07\xD1", 8)},
         "AD 08 00",
         "08 00 00 00 00 00 00 00 07 D1"},
        {"uniqueidentifier",
         {TypeId::UniqueIdentifier},
         Guid{{0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE,
               0xFF}},
         "24 10",
         "10 33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF"},
    };
}

TEST(TdsTypeEncoder, NumbersAreEncoded) {
    for (const Case& c : NumberCases()) {
        EXPECT_EQ(TypeInfo(c.type), c.type_info) << c.what;
        EXPECT_EQ(Encoded(c.type, c.value), c.bytes) << c.what;
        EXPECT_EQ(Encoded(c.type, Value{}), "00") << c.what << ", NULL";
    }
}

TEST(TdsTypeEncoder, DatesTextsAndBinariesAreEncoded) {
    for (const Case& c : OtherCases()) {
        EXPECT_EQ(TypeInfo(c.type), c.type_info) << c.what;
        EXPECT_EQ(TypeInfo(c.type, Version::V71), c.type_info) << c.what << ", 7.1";
        EXPECT_EQ(Encoded(c.type, c.value), c.bytes) << c.what;
    }
}

TEST(TdsTypeEncoder, NullHasTheMarkerOfItsType) {
    for (const TypeId id : {TypeId::Char, TypeId::VarChar, TypeId::NChar, TypeId::NVarChar, TypeId::Binary,
                            TypeId::VarBinary, TypeId::Timestamp}) {
        EXPECT_EQ(Encoded(Sized(id, 5), Value{}), "FF FF") << static_cast<int>(id);
    }
    for (const TypeId id : {TypeId::DateTime, TypeId::SmallDateTime, TypeId::UniqueIdentifier, TypeId::Text,
                            TypeId::NText, TypeId::Image}) {
        EXPECT_EQ(Encoded({id}, Value{}), "00") << static_cast<int>(id);
    }
}

TEST(TdsTypeEncoder, DecimalsHaveUpToThirtyEightDigits) {
    const Type type = Digits(TypeId::Decimal, 38, 0);
    Int128 largest = 1;
    for (int i = 0; i < 38; ++i) {
        largest *= 10;
    }
    --largest;
    EXPECT_EQ(TypeInfo(type), "6A 11 26 00");
    EXPECT_EQ(Encoded(type, Decimal{largest, 0}), "11 01 FF FF FF FF 3F 22 8A 09 7A C4 86 5A A8 4C 3B 4B");
    EXPECT_EQ(Encoded(type, Decimal{-largest, 0}), "11 00 FF FF FF FF 3F 22 8A 09 7A C4 86 5A A8 4C 3B 4B");
}

TEST(TdsTypeEncoder, MaxTypesAreChunkedFrom72On) {
    const std::string collation = kCollationHex;
    EXPECT_EQ(TypeInfo(Sized(TypeId::VarChar, kMaxLength)), "A7 FF FF " + collation);
    EXPECT_EQ(TypeInfo(Sized(TypeId::NVarChar, kMaxLength)), "E7 FF FF " + collation);
    EXPECT_EQ(TypeInfo(Sized(TypeId::VarBinary, kMaxLength)), "A5 FF FF");
    EXPECT_EQ(Encoded(Sized(TypeId::VarChar, kMaxLength), std::string("ab")),
              "02 00 00 00 00 00 00 00 02 00 00 00 61 62 00 00 00 00");
    EXPECT_EQ(Encoded(Sized(TypeId::NVarChar, kMaxLength), std::string()),
              "00 00 00 00 00 00 00 00 00 00 00 00");
    EXPECT_EQ(Encoded(Sized(TypeId::VarBinary, kMaxLength), Value{}), "FF FF FF FF FF FF FF FF");
}

TEST(TdsTypeEncoder, MaxTypesAreTextNTextAndImageBefore72) {
    const std::string collation = kCollationHex;
    const std::string pointer = "10" + [] {
        std::string zeros;
        for (int i = 0; i < 24; ++i) {
            zeros += " 00";
        }
        return zeros;
    }();
    EXPECT_EQ(TypeInfo(Sized(TypeId::VarChar, kMaxLength), Version::V71), "23 FF FF FF 7F " + collation);
    EXPECT_EQ(TypeInfo(Sized(TypeId::NVarChar, kMaxLength), Version::V71), "63 FE FF FF 7F " + collation);
    EXPECT_EQ(TypeInfo(Sized(TypeId::VarBinary, kMaxLength), Version::V71), "22 FF FF FF 7F");
    EXPECT_EQ(Encoded(Sized(TypeId::VarChar, kMaxLength), std::string("a"), Version::V71),
              pointer + " 01 00 00 00 61");
    EXPECT_EQ(Encoded(Sized(TypeId::NVarChar, kMaxLength), std::string("a"), Version::V71),
              pointer + " 02 00 00 00 61 00");
    EXPECT_EQ(Encoded(Sized(TypeId::VarBinary, kMaxLength), Value{}, Version::V71), "00");
    EXPECT_TRUE(TypeEncoder(Sized(TypeId::VarBinary, kMaxLength), Version::V71).HasTableName());
    EXPECT_FALSE(TypeEncoder(Sized(TypeId::VarBinary, kMaxLength), Version::V72).HasTableName());
}

TEST(TdsTypeEncoder, TextValuesHaveATextPointerAndCanBeEmpty) {
    const std::string empty = Encoded({TypeId::Text}, std::string());
    EXPECT_EQ(empty.substr(0, 5), "10 00");
    EXPECT_EQ(empty.substr(empty.size() - 11), "00 00 00 00");
    EXPECT_EQ(empty.size(), (1 + 16 + 8 + 4) * 3 - 1U);
}

TEST(TdsTypeEncoder, ATypeOverTheLengthLimitBecomesMax) {
    EXPECT_EQ(TypeInfo(Sized(TypeId::VarChar, 8000)).substr(0, 8), "A7 40 1F");
    EXPECT_EQ(TypeInfo(Sized(TypeId::VarChar, 8001)).substr(0, 8), "A7 FF FF");
    EXPECT_EQ(TypeInfo(Sized(TypeId::NVarChar, 4000)).substr(0, 8), "E7 40 1F");
    EXPECT_EQ(TypeInfo(Sized(TypeId::NVarChar, 4001)).substr(0, 8), "E7 FF FF");
}

TEST(TdsTypeEncoder, OnlyATimestampHasAUserType) {
    EXPECT_EQ(TypeEncoder({TypeId::Timestamp}, Version::V74).UserType(), 80U);
    EXPECT_EQ(TypeEncoder(Sized(TypeId::Binary, 8), Version::V74).UserType(), 0U);
}

TEST(TdsTypeEncoder, AValueThatDoesNotFitItsTypeIsAnError) {
    EXPECT_THROW(Encoded({TypeId::TinyInt}, std::int64_t{256}), EncodingError);
    EXPECT_THROW(Encoded({TypeId::TinyInt}, std::int64_t{-1}), EncodingError);
    EXPECT_THROW(Encoded({TypeId::Int}, std::int64_t{1} << 31), EncodingError);
    EXPECT_THROW(Encoded({TypeId::Int}, std::string("1")), EncodingError);
    EXPECT_THROW(Encoded(Sized(TypeId::VarChar, 2), std::string("abc")), EncodingError);
    EXPECT_THROW(Encoded(Sized(TypeId::NVarChar, 2), std::string("abc")), EncodingError);
    EXPECT_THROW(Encoded(Digits(TypeId::Decimal, 3, 0), Decimal{1000, 0}), EncodingError);
    EXPECT_THROW(Encoded(Digits(TypeId::Decimal, 3, 1), Decimal{125, 2}), EncodingError);
    EXPECT_THROW(Encoded({TypeId::SmallMoney}, Decimal{Int128{1} << 31, 4}), EncodingError);
    EXPECT_THROW(Encoded({TypeId::SmallDateTime}, DateTime{-1, 0}), EncodingError);
}

} // namespace
} // namespace devsql::tds

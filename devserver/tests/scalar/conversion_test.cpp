// CAST, CONVERT, assignments and literals, except dates.
#include <gtest/gtest.h>

#include "devserver/tests/scalar/typed.h"

namespace devsql {
namespace {

const Type kBit = Simple(TypeId::Bit);
const Type kTinyInt = Simple(TypeId::TinyInt);
const Type kSmallInt = Simple(TypeId::SmallInt);
const Type kInt = Simple(TypeId::Int);
const Type kBigInt = Simple(TypeId::BigInt);
const Type kMoney = Simple(TypeId::Money);
const Type kSmallMoney = Simple(TypeId::SmallMoney);
const Type kFloat = Simple(TypeId::Float);
const Type kReal = Simple(TypeId::Real);
const Type kGuid = Simple(TypeId::UniqueIdentifier);

Type VarChar(std::int32_t length) {
    return Sized(TypeId::VarChar, length);
}
Type NVarChar(std::int32_t length) {
    return Sized(TypeId::NVarChar, length);
}
Type VarBinary(std::int32_t length) {
    return Sized(TypeId::VarBinary, length);
}

struct Case {
    Typed from;
    Type to;
    std::string_view expected;
    std::optional<int> style = std::nullopt;
};

void ExpectAll(std::span<const Case> cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(Converted(c.from, c.to, c.style), c.expected)
            << FullTypeName(c.from.type) << " " << Shown(c.from) << " to " << FullTypeName(c.to);
    }
}

TEST(ToIntegers, FromText) {
    const Case cases[] = {
        {Text("42"), kInt, "42"},
        {Text("  -42 "), kInt, "-42"},
        {Text("+7"), kTinyInt, "7"},
        {Text(""), kInt, "0"},
        {Text("-"), kInt, "0"},
        {Text("abc"), kInt,
         "245 Conversion failed when converting the varchar value 'abc' to data type int."},
        {Text("1.5"), kInt,
         "245 Conversion failed when converting the varchar value '1.5' to data type int."},
        {NText("x"), kSmallInt,
         "245 Conversion failed when converting the nvarchar value 'x' to data type smallint."},
        {Text("3000000000"), kInt,
         "248 The conversion of the varchar value '3000000000' overflowed an int column."},
        {Text("40000"), kSmallInt,
         "244 The conversion of the varchar value '40000' overflowed an INT2 column. Use a larger integer "
         "column."},
        {Text("256"), kTinyInt,
         "244 The conversion of the varchar value '256' overflowed an INT1 column. Use a larger integer "
         "column."},
        {Text("x"), kBigInt, "8114 Error converting data type varchar to bigint."},
        {Text("9223372036854775808"), kBigInt,
         "8115 Arithmetic overflow error converting expression to data type bigint."},
        {Text("TRUE"), kBit, "1"},
        {Text("false"), kBit, "0"},
        {Text("5"), kBit, "1"},
        {Text("yes"), kBit,
         "245 Conversion failed when converting the varchar value 'yes' to data type bit."},
    };
    ExpectAll(cases);
}

TEST(ToIntegers, FromNumbersCutsOrRounds) {
    const Case cases[] = {
        {Num("1.9"), kInt, "1"},
        {As("-1.9", DecimalType(5, 1)), kInt, "-1"},
        {As("1.5", kMoney), kInt, "2"},
        {Real(1.9), kInt, "1"},
        {Real(-1.9), kBigInt, "-1"},
        {Num("0.1"), kBit, "1"},
        {Whole(-3), kBit, "1"},
        {Whole(300), kTinyInt, "220 Arithmetic overflow error for data type tinyint, value = 300."},
        {Whole(-1), kTinyInt, "220 Arithmetic overflow error for data type tinyint, value = -1."},
        {Whole(3000000000, TypeId::BigInt), kInt,
         "8115 Arithmetic overflow error converting expression to data type int."},
        {Num("3000000000"), kInt, "8115 Arithmetic overflow error converting numeric to data type int."},
        {Real(1e20), kInt,
         "232 Arithmetic overflow error for type int, value = 100000000000000000000.000000."},
        {Real(1e20), kBigInt, "8115 Arithmetic overflow error converting expression to data type bigint."},
    };
    ExpectAll(cases);
}

TEST(ToDecimals, RoundAndOverflow) {
    const Case cases[] = {
        {Text(" 12.345 "), DecimalType(5, 2), "12.35"},
        {Text("1e2"), DecimalType(5, 2), "8114 Error converting data type varchar to numeric."},
        {Text(""), DecimalType(5, 2), "8114 Error converting data type varchar to numeric."},
        {Text("1234.5"), DecimalType(5, 2),
         "8115 Arithmetic overflow error converting varchar to data type numeric."},
        {Whole(1000), DecimalType(5, 2),
         "8115 Arithmetic overflow error converting int to data type numeric."},
        {Num("999.995"), DecimalType(5, 2),
         "8115 Arithmetic overflow error converting numeric to data type numeric."},
        {Real(0.1), DecimalType(20, 18), "0.100000000000000010"},
        {Real(1e10), DecimalType(5, 2),
         "8115 Arithmetic overflow error converting float to data type numeric."},
        {As("12.3456", kMoney), DecimalType(9, 2), "12.35"},
        {Whole(1, TypeId::Bit), DecimalType(3, 1), "1.0"},
    };
    ExpectAll(cases);
}

TEST(ToMoney, AcceptsCurrencySignsAndCommas) {
    const Case cases[] = {
        {Text("$1,234.56789"), kMoney, "1234.5679", 2},
        {Text("-£5"), kMoney, "-5.00"},
        {Text("€ 7.5"), kMoney, "7.50"},
        {Text(""), kMoney, "0.00"},
        {Text("abc"), kMoney,
         "235 Cannot convert a char value to money. The char value has incorrect syntax."},
        {Text("1$2"), kMoney,
         "235 Cannot convert a char value to money. The char value has incorrect syntax."},
        {Text("x"), kSmallMoney,
         "293 Cannot convert char value to smallmoney. The char value has incorrect syntax."},
        {Num("300000"), kSmallMoney,
         "8115 Arithmetic overflow error converting int to data type smallmoney."},
        {Real(2.5), kMoney, "2.50"},
    };
    for (const Case& c : cases) {
        const std::string result = Outcome([&] {
            const Value money = Convert(c.from.value, c.from.type, c.to);
            return std::get<std::string>(Convert(money, c.to, VarChar(40), c.style));
        });
        EXPECT_EQ(result, c.expected) << Shown(c.from);
    }
}

TEST(ToFloats, AcceptsAnExponent) {
    const Case cases[] = {
        {Text("1.5e3"), kFloat, "1500"},
        {Text(" +.5 "), kFloat, "0.5"},
        {Text(""), kFloat, "0"},
        {Text("inf"), kFloat, "8114 Error converting data type varchar to float."},
        {Text("1.5x"), kReal, "8114 Error converting data type varchar to real."},
        {Text("1e400"), kFloat, "8115 Arithmetic overflow error converting expression to data type float."},
        {Text("1e-400"), kFloat, "0"},
        {Num("0.1"), kReal, "0.1"},
        {Hex("0x01"), kFloat, "529 Explicit conversion from data type varbinary to float is not allowed."},
    };
    ExpectAll(cases);
}

TEST(ToText, FormatsNumbers) {
    const Case cases[] = {
        {Whole(-5), VarChar(10), "-5"},
        {Num("0.50"), VarChar(10), "0.50"},
        {As("-0.05", DecimalType(5, 2)), VarChar(10), "-0.05"},
        {As("1234567.891", kMoney), VarChar(20), "1234567.89"},
        {As("1234567.891", kMoney), VarChar(20), "1,234,567.89", 1},
        {As("-123.4", kMoney), VarChar(20), "-123.40", 1},
        {As("-123456.4", kMoney), VarChar(20), "-123,456.40", 1},
        {As("1234567.891", kMoney), VarChar(20), "1234567.8910", 2},
        {Real(1234567), VarChar(30), "1.23457e+006"},
        {Real(123456), VarChar(30), "123456"},
        {Real(0.0001), VarChar(30), "0.0001"},
        {Real(0.00001), VarChar(30), "1e-005"},
        {Real(1), VarChar(30), "1.0000000e+000", 1},
        {Real(1.5), VarChar(30), "1.500000000000000e+000", 2},
        {Whole(1, TypeId::Bit), Sized(TypeId::Char, 3), "1  "},
    };
    ExpectAll(cases);
}

TEST(ToText, CutsOrRefusesALongResult) {
    const Case cases[] = {
        {Text("abcdef"), VarChar(3), "abc"},
        {Text("ab"), Sized(TypeId::Char, 4), "ab  "},
        {NText("aΩ"), VarChar(5), "a?"},
        {Whole(12345), VarChar(3), "*"},
        {Whole(12345), Sized(TypeId::Char, 3), "*  "},
        {Whole(12345), NVarChar(3),
         "8115 Arithmetic overflow error converting expression to data type nvarchar."},
        {Whole(12345, TypeId::BigInt), VarChar(3),
         "8115 Arithmetic overflow error converting expression to data type varchar."},
        {Num("123.45"), VarChar(3),
         "8115 Arithmetic overflow error converting numeric to data type varchar."},
        {As("123.45", kMoney), VarChar(3),
         "234 There is insufficient result space to convert a money value to varchar."},
        {Real(1234.5), VarChar(3), "232 Arithmetic overflow error for type varchar, value = 1234.500000."},
        {Hex("0x41424344"), VarChar(3), "ABC"},
        {As("6F9619FF-8B86-D011-B42D-00C04FC964FF", kGuid), VarChar(10),
         "8170 Insufficient result space to convert uniqueidentifier value to char."},
    };
    ExpectAll(cases);
}

TEST(ToBinary, KeepsTheLowestBytesOfNumbers) {
    const Case cases[] = {
        {Whole(258), VarBinary(30), "0x00000102"},
        {Whole(258), VarBinary(1), "0x02"},
        {Whole(258), Sized(TypeId::Binary, 8), "0x0000000000000102"},
        {Whole(-1, TypeId::SmallInt), VarBinary(30), "0xFFFF"},
        {Whole(1, TypeId::BigInt), VarBinary(30), "0x0000000000000001"},
        {Date("1900-01-02"), VarBinary(30), "0x0000000100000000"},
    };
    ExpectAll(cases);
}

TEST(ToBinary, RefusesNumbersWithAFraction) {
    const Case cases[] = {
        {Num("1.5"), VarBinary(30),
         "529 Explicit conversion from data type numeric to varbinary is not allowed."},
        {As("1", kMoney), VarBinary(30),
         "529 Explicit conversion from data type money to varbinary is not allowed."},
        {Real(1), VarBinary(30), "529 Explicit conversion from data type float to varbinary is not allowed."},
        {Hex("0x01"), DecimalType(5, 0),
         "529 Explicit conversion from data type varbinary to decimal is not allowed."},
        {Hex("0x01"), kMoney, "529 Explicit conversion from data type varbinary to money is not allowed."},
    };
    ExpectAll(cases);
}

TEST(ToBinary, KeepsTheFirstBytesOfTextAndBinary) {
    const Case cases[] = {
        {Text("AB"), VarBinary(30), "0x4142"},
        {NText("AB"), VarBinary(30), "0x41004200"},
        {Text("ABC"), VarBinary(2), "0x4142"},
        {Text("AB"), Sized(TypeId::Binary, 4), "0x41420000"},
        {Text("0x4A4b"), VarBinary(30), "0x4A4B", 1},
        {Text("4A4b"), VarBinary(30), "0x4A4B", 2},
        {Text("4A4b"), VarBinary(30), "8114 Error converting data type varchar to varbinary.", 1},
        {Text("0x4A4"), VarBinary(30), "8114 Error converting data type varchar to varbinary.", 1},
        {As("6F9619FF-8B86-D011-B42D-00C04FC964FF", kGuid), VarBinary(30),
         "0xFF19966F868B11D0B42D00C04FC964FF"},
    };
    ExpectAll(cases);
}

TEST(FromBinary, ReturnsTheOriginalValue) {
    const Typed values[] = {Whole(-5),
                            Whole(-5, TypeId::SmallInt),
                            Whole(5, TypeId::TinyInt),
                            Whole(INT64_MIN, TypeId::BigInt),
                            Date("2001-02-03 04:05:06.007"),
                            As("2001-02-03 04:05", Simple(TypeId::SmallDateTime)),
                            As("6F9619FF-8B86-D011-B42D-00C04FC964FF", kGuid)};
    for (const Typed& typed : values) {
        const Value bytes = Convert(typed.value, typed.type, VarBinary(30));
        EXPECT_EQ(Shown(Convert(bytes, VarBinary(30), typed.type), typed.type), Shown(typed))
            << FullTypeName(typed.type);
    }
}

TEST(FromBinary, AcceptsShorterAndLongerData) {
    const Case cases[] = {
        {Hex("0x01"), kInt, "1"},
        {Hex("0xFFFFFFFFFF"), kInt, "-1"},
        {Hex("0x0100"), kTinyInt, "0"},
        {Hex("0x41420043"), VarChar(10), std::string_view("AB\0C", 4)},
        {Hex("0x41004200"), NVarChar(10), "AB"},
        {Hex("0x4142"), VarChar(10), "0x4142", 1},
        {Hex("0x4142"), VarChar(10), "4142", 2},
        {Hex("0xFFFFFFFFFFFFFFFFFF"), Simple(TypeId::DateTime),
         "210 Conversion failed when converting datetime from binary/varbinary string."},
    };
    ExpectAll(cases);
}

TEST(UniqueIdentifiers, AreReadInAllForms) {
    const Case cases[] = {
        {Text("6f9619ff-8b86-d011-b42d-00c04fc964ff"), VarChar(36), "6F9619FF-8B86-D011-B42D-00C04FC964FF"},
        {Text("{6F9619FF-8B86-D011-B42D-00C04FC964FF}"), VarChar(36), "6F9619FF-8B86-D011-B42D-00C04FC964FF"},
        {Text("6F9619FF8B86D011B42D00C04FC964FF0000"), VarChar(36),
         "8169 Conversion failed when converting from a character string to uniqueidentifier."},
        {Text("6F9619FF-8B86"), VarChar(36),
         "8169 Conversion failed when converting from a character string to uniqueidentifier."},
        {Text("XF9619FF-8B86-D011-B42D-00C04FC964FF"), VarChar(36),
         "8169 Conversion failed when converting from a character string to uniqueidentifier."},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Outcome([&] { return Shown(Convert(c.from.value, c.from.type, kGuid), kGuid); }),
                  c.expected);
    }
}

TEST(Conversions, BetweenUnrelatedTypesAreRefusedEvenForNull) {
    EXPECT_EQ(Converted(NullOf(kInt), kGuid),
              "529 Explicit conversion from data type int to uniqueidentifier is not allowed.");
    EXPECT_EQ(Converted(Null(), kGuid), "NULL");
    EXPECT_EQ(Converted(Whole(1), Simple(TypeId::Text)),
              "529 Explicit conversion from data type int to text is not allowed.");
}

TEST(TryConversions, ReturnNullInsteadOfTheErrorsOfValues) {
    EXPECT_TRUE(IsNull(TryConvert(Value("x"), VarChar(1), kInt)));
    EXPECT_EQ(TryConvert(Value("5"), VarChar(1), kInt), Value(std::int64_t{5}));
    EXPECT_EQ(ErrorOf([] { TryConvert(Value(std::int64_t{1}), kInt, kGuid); }), 529);
}

std::string Assigned(const Typed& from, const Type& to) {
    return Outcome([&] { return Shown(Assign(from.value, from.type, to), to); });
}

TEST(Assignments, RefuseToLoseText) {
    EXPECT_EQ(Assigned(Text("abcd"), VarChar(3)), "8152 String or binary data would be truncated.");
    EXPECT_EQ(Assigned(Text("abc   "), VarChar(3)), "abc") << "trailing blanks may be lost";
    EXPECT_EQ(Assigned(Text("ab"), Sized(TypeId::Char, 3)), "ab ");
    EXPECT_EQ(Assigned(NText("äöüx"), VarChar(3)), "8152 String or binary data would be truncated.");
    EXPECT_EQ(Assigned(Hex("0x010203"), VarBinary(2)), "8152 String or binary data would be truncated.");
    EXPECT_EQ(Assigned(Hex("0x01"), Sized(TypeId::Binary, 2)), "0x0100");
    EXPECT_EQ(Assigned(Text("abcd"), Simple(TypeId::Text)), "abcd");
}

TEST(Assignments, AllowOnlyImplicitConversions) {
    EXPECT_EQ(Assigned(Text("5"), kInt), "5");
    EXPECT_EQ(Assigned(Text("a"), VarBinary(5)), "257 Implicit conversion from data type varchar to "
                                                 "varbinary is not allowed. Use the CONVERT function to "
                                                 "run this query.");
    EXPECT_EQ(Assigned(Whole(5), kGuid), "206 Operand type clash: int is incompatible with uniqueidentifier");
    EXPECT_EQ(Assigned(Null(), kGuid), "NULL");
}

TEST(Assignments, ToVariablesCutSilently) {
    EXPECT_EQ(AssignVariable(Value("abcd"), VarChar(4), VarChar(3)), Value("abc"));
    EXPECT_EQ(ErrorOf([] { AssignVariable(Value("a"), VarChar(1), VarBinary(1)); }), 257);
}

TEST(ValueTexts, AreNeverCut) {
    EXPECT_EQ(ValueText(Value(), kInt), "NULL");
    EXPECT_EQ(ValueText(Value(std::int64_t{5}), kInt), "5");
    EXPECT_EQ(ValueText(Value(Decimal{15000, 4}), kMoney), "1.50");
}

std::string NumberLiteral(std::string_view text) {
    return Outcome([&] {
        const Literal literal = ParseNumberLiteral(text);
        return ShownWithType({literal.value, literal.type});
    });
}

TEST(Literals, OfNumbersHaveTheSmallestSuitableType) {
    EXPECT_EQ(NumberLiteral("42"), "int 42");
    EXPECT_EQ(NumberLiteral("0"), "int 0");
    EXPECT_EQ(NumberLiteral("007"), "int 7");
    EXPECT_EQ(NumberLiteral("2147483647"), "int 2147483647");
    EXPECT_EQ(NumberLiteral("2147483648"), "numeric(10,0) 2147483648");
    EXPECT_EQ(NumberLiteral("1.50"), "numeric(3,2) 1.50");
    EXPECT_EQ(NumberLiteral("0.5"), "numeric(1,1) 0.5");
    EXPECT_EQ(NumberLiteral(".25"), "numeric(2,2) 0.25");
    EXPECT_EQ(NumberLiteral("10."), "numeric(2,0) 10");
    EXPECT_EQ(NumberLiteral("1e3"), "float 1000");
    EXPECT_EQ(NumberLiteral("1e"), "float 1");
    EXPECT_EQ(NumberLiteral("2.5E-1"), "float 0.25");
    EXPECT_EQ(NumberLiteral("1e999"), "168 The floating point value '1e999' is out of the range of computer "
                                      "representation (8 bytes).");
    EXPECT_EQ(NumberLiteral("123456789012345678901234567890123456789"),
              "1007 The number '123456789012345678901234567890123456789' is out of the range for numeric "
              "representation (maximum precision 38).");
    EXPECT_EQ(ParseNumberLiteral("123").type, IntLiteralType(3));
}

TEST(Literals, OfMoneyBinaryAndTextHaveTheirTypes) {
    EXPECT_EQ(ParseMoneyLiteral("$1.5").value, Value(Decimal{15000, 4}));
    EXPECT_EQ(ParseMoneyLiteral("$").value, Value(Decimal{0, 4}));
    EXPECT_EQ(ErrorOf([] { ParseMoneyLiteral("$99999999999999999"); }), 151);
    EXPECT_EQ(ParseBinaryLiteral("0x").type, VarBinary(1));
    EXPECT_EQ(ParseBinaryLiteral("0xABC").value, Value(Bytes{"\x0A\xBC"}));
    EXPECT_EQ(TextLiteral("abc", false).type, VarChar(3));
    EXPECT_EQ(TextLiteral("Ω", false).value, Value("?"));
    EXPECT_EQ(TextLiteral("Ω", true).value, Value("Ω"));
    EXPECT_EQ(TextLiteral(std::string(4001, 'x'), true).type, NVarChar(kMaxLength));
    EXPECT_EQ(TextLiteral("", false).type, VarChar(1));
}

} // namespace
} // namespace devsql

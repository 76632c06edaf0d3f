// Operators and aggregates.
#include <gtest/gtest.h>

#include "devserver/tests/scalar/typed.h"

namespace devsql {
namespace {

using enum BinaryOperator;

const Type kMoney = Simple(TypeId::Money);

struct Case {
    Typed left;
    BinaryOperator op;
    Typed right;
    std::string_view expected;
};

void ExpectAll(std::span<const Case> cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(Computed(c.left, c.op, c.right), c.expected)
            << Shown(c.left) << " " << OperatorWord(c.op) << " " << Shown(c.right);
    }
}

TEST(Integers, ComputeInTheStrongerType) {
    const Case cases[] = {
        {Num("7"), Add, Num("5"), "int 12"},
        {Num("7"), Divide, Num("2"), "int 3"},
        {Whole(-7), Divide, Num("2"), "int -3"},
        {Whole(-7), Modulo, Num("3"), "int -1"},
        {Whole(INT32_MIN), Modulo, Whole(-1), "int 0"},
        {Whole(40000), Multiply, Whole(40000, TypeId::BigInt), "bigint 1600000000"},
        {Num("5"), Add, Text("6"), "int 11"},
        {Whole(1, TypeId::Bit), Add, Num("1"), "int 2"},
    };
    ExpectAll(cases);
}

TEST(Integers, OverflowAndDivisionByZeroAreErrors) {
    const Case cases[] = {
        {Whole(INT32_MAX), Add, Num("1"),
         "8115 Arithmetic overflow error converting expression to data type int."},
        {Whole(INT32_MIN), Divide, Whole(-1),
         "8115 Arithmetic overflow error converting expression to data type int."},
        {Whole(INT64_MAX, TypeId::BigInt), Multiply, Num("2"),
         "8115 Arithmetic overflow error converting expression to data type bigint."},
        {Whole(200, TypeId::TinyInt), Add, Whole(100, TypeId::TinyInt),
         "8115 Arithmetic overflow error converting expression to data type tinyint."},
        {Num("1"), Divide, Num("0"), "8134 Divide by zero error encountered."},
        {Num("1"), Modulo, Num("0"), "8134 Divide by zero error encountered."},
        {Num("1"), Add, Text("x"),
         "245 Conversion failed when converting the varchar value 'x' to data type int."},
    };
    ExpectAll(cases);
}

TEST(BitOperators, CombineBits) {
    const Case cases[] = {
        {Whole(12), BitAnd, Whole(10), "int 8"},
        {Whole(12), BitOr, Whole(10), "int 14"},
        {Whole(12), BitXor, Whole(10), "int 6"},
        {Whole(-1), BitAnd, Whole(255, TypeId::TinyInt), "int 255"},
        {Hex("0x0F"), BitAnd, Whole(5), "int 5"},
        {Whole(1, TypeId::Bit), BitXor, Whole(1, TypeId::Bit), "bit 0"},
    };
    ExpectAll(cases);
}

TEST(Decimals, KeepTheirDigits) {
    const Case cases[] = {
        {Num("1.0"), Divide, Num("3"), "numeric(7,6) 0.333333"},
        {Num("2.0"), Divide, Num("3"), "numeric(7,6) 0.666666"},
        {Num("1.0"), Divide, Whole(3), "numeric(13,12) 0.333333333333"},
        {Num("1.5"), Multiply, Num("1.50"), "numeric(6,3) 2.250"},
        {Num("1.5"), Add, Num("2"), "numeric(3,1) 3.5"},
        {Num("7.5"), Modulo, Num("2"), "numeric(2,1) 1.5"},
        {Num("1.5"), Subtract, Text("0.26"), "numeric(3,1) 1.2"},
        {As("99999999999999999999999999999999999999", DecimalType(38, 0)), Add, Num("1"),
         "8115 Arithmetic overflow error converting expression to data type numeric."},
        {Num("1.5"), Divide, Num("0.0"), "8134 Divide by zero error encountered."},
        {As("1.5", DecimalType(5, 1)), Add, As("2.5", DecimalType(5, 1)), "decimal(6,1) 4.0"},
    };
    ExpectAll(cases);
}

TEST(Money, CutsQuotientsAndRoundsProducts) {
    const Case cases[] = {
        {As("100", kMoney), Divide, As("339", kMoney), "money 0.29"},
        {As("10.5", kMoney), Multiply, Num("2"), "money 21.00"},
        {As("1.25", kMoney), Add, Text("$2.50"), "money 3.75"},
        {As("922337203685477.5807", kMoney), Add, As("0.0001", kMoney),
         "8115 Arithmetic overflow error converting expression to data type money."},
        {As("1", kMoney), Divide, Num("0"), "8134 Divide by zero error encountered."},
        {As("2", kMoney), Multiply, Num("1.5"), "numeric(22,5) 3.00000"},
    };
    ExpectAll(cases);
    // 100 / 339 is 0.29498; the fifth digit is lost, not rounded.
    const Value quotient = Evaluate(Divide, As("100", kMoney).value, kMoney, As("339", kMoney).value, kMoney);
    EXPECT_EQ(quotient, Value(Decimal{2949, 4}));
}

TEST(Floats, ComputeAndOverflow) {
    const Case cases[] = {
        {Real(1.5), Multiply, Num("2"), "float 3"},
        {Real(1), Divide, Num("4"), "float 0.25"},
        {Real(1), Divide, Real(0), "8134 Divide by zero error encountered."},
        {Real(1e308), Multiply, Real(10),
         "8115 Arithmetic overflow error converting expression to data type float."},
        {Real(0.1, TypeId::Real), Add, Whole(0), "real 0.1"},
        {Real(1.5), Add, Text("2.5e0"), "float 4"},
    };
    ExpectAll(cases);
}

TEST(Dates, AreShiftedByDays) {
    const Case cases[] = {
        {Date("2001-02-28"), Add, Num("1"), "datetime 2001-03-01 00:00:00.000"},
        {Date("2001-02-28"), Subtract, Num("0.5"), "datetime 2001-02-27 12:00:00.000"},
        {Date("2001-03-01 06:00"), Subtract, Date("2001-02-28"), "datetime 1900-01-02 06:00:00.000"},
        {Num("1"), Add, Date("2001-02-28"), "datetime 2001-03-01 00:00:00.000"},
        {Date("2001-02-28"), Add, Text("01:30"), "datetime 2001-02-28 01:30:00.000"},
        {As("2001-02-28", Simple(TypeId::SmallDateTime)), Add, Num("1"),
         "smalldatetime 2001-03-01 00:00:00.000"},
        {Date("9999-12-31"), Add, Num("1"), "517 Adding a value to a 'datetime' column caused an overflow."},
        {Date("1753-01-01"), Subtract, Num("1"),
         "517 Adding a value to a 'datetime' column caused an overflow."},
    };
    ExpectAll(cases);
}

TEST(Texts, AreJoined) {
    const Case cases[] = {
        {Text("ab"), Add, Text("cd"), "varchar(4) abcd"},
        {As("a", Sized(TypeId::Char, 3)), Add, Text("b"), "varchar(4) a  b"},
        {Text("ab"), Add, NText("Ω"), "nvarchar(3) abΩ"},
        {Hex("0x01"), Add, Hex("0x02"), "varbinary(2) 0x0102"},
    };
    ExpectAll(cases);
    const Typed longest{std::string(8000, 'x'), Sized(TypeId::VarChar, 8000)};
    const Value joined = Evaluate(Add, longest.value, longest.type, Value("y"), Sized(TypeId::VarChar, 1));
    EXPECT_EQ(std::get<std::string>(joined).size(), 8000U) << "varchar ends at 8000 bytes";
}

TEST(Operators, WithNullReturnNull) {
    const Case cases[] = {
        {Null(), Add, Num("1"), "int NULL"},
        {Text("a"), Add, Null(), "varchar(2) NULL"},
        {Null(), Divide, Num("0"), "int NULL"},
        {NullOf(Simple(TypeId::DateTime)), Subtract, Num("1"), "datetime NULL"},
    };
    ExpectAll(cases);
}

std::string Unary(UnaryOperator op, const Typed& operand) {
    return Outcome([&] {
        return ShownWithType({Evaluate(op, operand.value, operand.type), OperatorType(op, operand.type)});
    });
}

TEST(UnaryOperators, InvertSignsAndBits) {
    EXPECT_EQ(Unary(UnaryOperator::Minus, Num("5")), "int -5");
    EXPECT_EQ(Unary(UnaryOperator::Minus, Num("1.50")), "numeric(3,2) -1.50");
    EXPECT_EQ(Unary(UnaryOperator::Minus, Whole(5, TypeId::TinyInt)), "smallint -5");
    EXPECT_EQ(Unary(UnaryOperator::Minus, Whole(INT32_MIN)),
              "8115 Arithmetic overflow error converting expression to data type int.");
    EXPECT_EQ(Unary(UnaryOperator::BitNot, Whole(5)), "int -6");
    EXPECT_EQ(Unary(UnaryOperator::BitNot, Whole(5, TypeId::TinyInt)), "tinyint 250");
    EXPECT_EQ(Unary(UnaryOperator::BitNot, Whole(1, TypeId::Bit)), "bit 0");
    EXPECT_EQ(Unary(UnaryOperator::Plus, Text("a")), "varchar(1) a");
}

SumAccumulator SumOf(const Type& type, std::initializer_list<Value> values) {
    SumAccumulator sum(type);
    for (const Value& value : values) {
        sum.Add(value);
    }
    return sum;
}

TEST(Sums, AndAveragesIgnoreNull) {
    const Type integer = Simple(TypeId::Int);
    const SumAccumulator sum = SumOf(integer, {std::int64_t{1}, Value(), std::int64_t{2}, std::int64_t{4}});
    EXPECT_EQ(sum.Sum(), Value(std::int64_t{7}));
    EXPECT_EQ(sum.Average(), Value(std::int64_t{2})) << "the average of integers is an integer";
    EXPECT_EQ(sum.Count(), 3);
}

TEST(Sums, OfNoValuesAreNull) {
    const SumAccumulator sum = SumOf(Simple(TypeId::Int), {Value()});
    EXPECT_TRUE(IsNull(sum.Sum()));
    EXPECT_TRUE(IsNull(sum.Average()));
}

TEST(Sums, KeepDecimalsAndMoneyExact) {
    const Type decimal = DecimalType(5, 2);
    const SumAccumulator sum = SumOf(decimal, {Decimal{100, 2}, Decimal{200, 2}, Decimal{200, 2}});
    EXPECT_EQ(Shown(sum.Sum(), SumType(decimal)), "5.00");
    EXPECT_EQ(Shown(sum.Average(), AverageType(decimal)), "1.666666");
    const SumAccumulator money = SumOf(kMoney, {Decimal{10000, 4}, Decimal{5, 4}});
    EXPECT_EQ(money.Sum(), Value(Decimal{10005, 4}));
    EXPECT_EQ(money.Average(), Value(Decimal{5002, 4}));
}

TEST(Sums, OverflowTheirType) {
    EXPECT_EQ(ErrorOf([] { SumOf(Simple(TypeId::Int), {std::int64_t{INT32_MAX}, std::int64_t{1}}); }), 8115);
    EXPECT_EQ(ErrorOf([] { SumOf(Sized(TypeId::VarChar, 1), {}); }), 8117);
}

} // namespace
} // namespace devsql

// The function table, and the number, date and general functions.
#include <gtest/gtest.h>

#include "devserver/tests/scalar/typed.h"

namespace devsql {
namespace {

const Type kMoney = Simple(TypeId::Money);

void ExpectAll(std::span<const FunctionCase> cases) {
    for (const FunctionCase& c : cases) {
        std::string arguments;
        for (const Typed& argument : c.arguments) {
            arguments += " " + Shown(argument);
        }
        EXPECT_EQ(Result(c), c.expected) << c.name << arguments;
    }
}

TEST(FunctionTable, IgnoresLetterCase) {
    ASSERT_NE(FindFunction("SubString"), nullptr);
    EXPECT_EQ(FindFunction("SubString")->name, "SUBSTRING");
    EXPECT_EQ(FindFunction("getdate"), nullptr) << "functions that need the session are not in this table";
    for (const ScalarFunction& function : AllFunctions()) {
        EXPECT_EQ(FindFunction(function.name), &function) << function.name;
        EXPECT_LE(function.min_arguments, function.max_arguments) << function.name;
    }
}

TEST(FunctionTable, ChecksTheCountOfArguments) {
    EXPECT_EQ(Result({"LEN", {}, {}}), "174 The len function requires 1 argument(s).");
    EXPECT_EQ(Result({"ROUND", {Whole(1)}, {}}), "189 The round function requires 2 to 3 arguments.");
}

TEST(Numbers, KeepTheirType) {
    const FunctionCase cases[] = {
        {"ABS", {Whole(-5)}, "5"},
        {"ABS", {As("-1.50", DecimalType(5, 2))}, "1.50"},
        {"ABS", {Whole(INT32_MIN)}, "8115 Arithmetic overflow error converting expression to data type int."},
        {"ABS", {Text("-2.5")}, "2.5"},
        {"SIGN", {Whole(-5)}, "-1"},
        {"SIGN", {As("0", kMoney)}, "0.00"},
        {"SIGN", {Real(2.5)}, "1"},
        {"CEILING", {Num("123.45")}, "124"},
        {"CEILING", {As("-123.45", DecimalType(5, 2))}, "-123"},
        {"CEILING", {As("1.2", kMoney)}, "2.00"},
        {"FLOOR", {Num("123.45")}, "123"},
        {"FLOOR", {As("-123.45", DecimalType(5, 2))}, "-124"},
        {"FLOOR", {Real(-1.5)}, "-2"},
        {"FLOOR", {Whole(7)}, "7"},
    };
    ExpectAll(cases);
    EXPECT_EQ(Called("ABS", {Whole(5, TypeId::TinyInt)}).type, Simple(TypeId::Int));
    EXPECT_EQ(Called("CEILING", {Num("123.45")}).type, DecimalType(5, 0, TypeId::Numeric));
}

TEST(Rounding, WorksOnBothSidesOfTheDecimalPoint) {
    const FunctionCase cases[] = {
        {"ROUND", {Num("123.4567"), Whole(2)}, "123.4600"},
        {"ROUND", {Num("123.4567"), Whole(2), Whole(1)}, "123.4500"},
        {"ROUND", {As("-123.4567", DecimalType(7, 4)), Whole(2)}, "-123.4600"},
        {"ROUND", {Num("150.75"), Whole(0)}, "151.00"},
        {"ROUND", {Num("150.75"), Whole(0), Whole(1)}, "150.00"},
        {"ROUND", {Num("748.58"), Whole(-1)}, "750.00"},
        {"ROUND", {Num("748.58"), Whole(-2)}, "700.00"},
        {"ROUND",
         {Num("748.58"), Whole(-3)},
         "8115 Arithmetic overflow error converting numeric to data type numeric."},
        {"ROUND", {Num("748.58"), Whole(-4)}, "0.00"},
        {"ROUND", {Whole(1250), Whole(-2)}, "1300"},
        {"ROUND", {Whole(-1250), Whole(-2)}, "-1300"},
        {"ROUND", {Whole(1250), Whole(2)}, "1250"},
        {"ROUND", {Whole(1250), Whole(-50)}, "0"},
        {"ROUND", {Num("1.5"), Whole(INT32_MIN)}, "0.0"},
        {"ROUND", {Real(2.345), Whole(1)}, "2.3"},
        {"ROUND", {Real(-2.5), Whole(0)}, "-3"},
        {"ROUND", {As("1.2355", kMoney), Whole(2)}, "1.24"},
        {"ROUND", {Null(), Whole(2)}, "NULL"},
    };
    ExpectAll(cases);
}

TEST(Dates, AreCalculatedByPart) {
    const FunctionCase cases[] = {
        {"DATEADD", {Text("month"), Whole(1), Date("2001-01-31")}, "2001-02-28 00:00:00.000"},
        {"DATEADD", {Text("DD"), Num("1.9"), Text("2001-01-31")}, "2001-02-01 00:00:00.000"},
        {"DATEADD",
         {Text("yy"), Whole(9000), Date("2001-01-31")},
         "517 Adding a value to a 'datetime' column caused an overflow."},
        {"DATEADD",
         {Text("aeon"), Whole(1), Date("2001-01-31")},
         "155 'aeon' is not a recognized dateadd option."},
        {"DATEADD",
         {Text("dd"), Whole(1), Text("x")},
         "241 Conversion failed when converting date and/or time from character string."},
        {"DATEADD", {Text("dd"), Null(), Date("2001-01-31")}, "NULL"},
        {"DATEDIFF", {Text("dd"), Text("2001-01-31"), Date("2001-03-01")}, "29"},
        {"DATEDIFF",
         {Text("ms"), Text("1900-01-01"), Text("2001-01-01")},
         "535 The datediff function resulted in an overflow. The number of dateparts separating two "
         "date/time "
         "instances is too large. Try to use datediff with a less precise datepart."},
        {"DATEPART", {Text("weekday"), Date("2001-02-03")}, "7"},
        {"DATEPART", {Text("qq"), Date("2001-12-03")}, "4"},
        {"DATENAME", {Text("month"), Date("2001-02-03")}, "February"},
        {"DATENAME", {Text("dw"), Date("2001-02-03")}, "Saturday"},
        {"DATENAME", {Text("yy"), Date("2001-02-03")}, "2001"},
        {"YEAR", {Text("2001-02-03")}, "2001"},
        {"MONTH", {Date("2001-02-03")}, "2"},
        {"DAY", {Whole(0)}, "1"},
        {"DAY", {Null()}, "NULL"},
        {"ISDATE", {Text("2001-02-29")}, "0"},
        {"ISDATE", {Text("2000-02-29")}, "1"},
        {"ISDATE", {Text("now")}, "0"},
        {"ISDATE", {Date("2001-02-03")}, "1"},
        {"ISDATE", {Null()}, "0"},
    };
    ExpectAll(cases);
    const Type small = Simple(TypeId::SmallDateTime);
    EXPECT_EQ(Called("DATEADD", {Text("dd"), Whole(1), As("2001-02-03", small)}).type, small);
}

TEST(Choices, ReturnTheRightValueInTheRightType) {
    const FunctionCase cases[] = {
        {"ISNULL", {Null(), Text("abc")}, "abc"},
        {"ISNULL", {NullOf(Sized(TypeId::VarChar, 2)), Text("abc")}, "ab"},
        {"ISNULL", {NullOf(Simple(TypeId::Int)), Num("2.9")}, "2"},
        {"ISNULL", {Text("a"), Text("b")}, "a"},
        {"NULLIF", {Whole(1), Whole(1)}, "NULL"},
        {"NULLIF", {Text("a"), Text("A ")}, "NULL"},
        {"NULLIF", {Whole(1), Whole(2)}, "1"},
        {"NULLIF",
         {Null(), Whole(2)},
         "4151 The type of the first argument to NULLIF cannot be the NULL constant because the type of the "
         "first "
         "argument has to be known."},
        {"COALESCE", {Null(), NullOf(Simple(TypeId::Int)), Whole(5), Text("x")}, "5"},
        {"COALESCE", {Null(), Text("abc")}, "abc"},
        {"COALESCE",
         {Null(), Null()},
         "4127 At least one of the arguments to COALESCE must be an expression that is not the NULL "
         "constant."},
        {"IIF", {Whole(1, TypeId::Bit), Text("y"), Text("n")}, "y"},
        {"IIF", {NullOf(Simple(TypeId::Bit)), Text("y"), Text("n")}, "n"},
        {"IIF", {Whole(0, TypeId::Bit), Whole(1), Num("2.50")}, "2.50"},
        {"CHOOSE", {Whole(2), Text("a"), Text("b")}, "b"},
        {"CHOOSE", {Whole(3), Text("a"), Text("b")}, "NULL"},
        {"CHOOSE", {Whole(0), Text("a"), Text("b")}, "NULL"},
    };
    ExpectAll(cases);
    EXPECT_EQ(Called("ISNULL", {NullOf(Sized(TypeId::VarChar, 2)), Text("abc")}).type,
              Sized(TypeId::VarChar, 2));
    EXPECT_EQ(Called("COALESCE", {Whole(1), Num("2.50")}).type.id, TypeId::Numeric);
    EXPECT_EQ(Called("ISNULL", {Num("1"), Num("22")}).type, Simple(TypeId::Int))
        << "a literal's own type is never a result's type";
}

TEST(NumericTexts, AreThoseThatSomeNumberTypeAccepts) {
    struct Case {
        Typed value;
        std::string_view expected;
    };
    const Case cases[] = {{Text("1"), "1"},         {Text(" -1.5 "), "1"}, {Text("1e5"), "1"},
                          {Text("$1,000.50"), "1"}, {Text("."), "1"},      {Text("-"), "1"},
                          {Text("$"), "1"},         {Text(""), "0"},       {Text(" "), "0"},
                          {Text("abc"), "0"},       {Text("1-"), "0"},     {Text("1 2"), "0"},
                          {Whole(5), "1"},          {Null(), "0"},         {Date("2001-01-01"), "0"}};
    for (const Case& c : cases) {
        EXPECT_EQ(Result({"ISNUMERIC", {c.value}, {}}), c.expected) << Shown(c.value);
    }
}

} // namespace
} // namespace devsql

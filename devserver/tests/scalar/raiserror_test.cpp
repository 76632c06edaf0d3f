// The placeholders of RAISERROR.
#include <gtest/gtest.h>

#include "devserver/tests/scalar/typed.h"

namespace devsql {
namespace {

std::string Formatted(std::string_view text, const std::vector<Typed>& values) {
    return Outcome([&] {
        std::vector<FormatArgument> arguments;
        arguments.reserve(values.size());
        for (const Typed& value : values) {
            arguments.push_back({value.value, value.type});
        }
        return FormatRaiserror(text, arguments);
    });
}

struct Case {
    std::string_view text;
    std::vector<Typed> values;
    std::string_view expected;
};

TEST(Raiserror, InsertsItsArguments) {
    const Case cases[] = {
        {"no arguments", {}, "no arguments"},
        {"100%% of %s", {Text("it")}, "100% of it"},
        {"%d %i", {Whole(5), Whole(-5)}, "5 -5"},
        {"[%5d][%-5d][%05d][%+d][% d]",
         {Whole(42), Whole(42), Whole(42), Whole(42), Whole(42)},
         "[   42][42   ][00042][+42][ 42]"},
        {"%x %X %#x %o %u",
         {Whole(255), Whole(255), Whole(255), Whole(8), Whole(-1)},
         "ff FF 0xff 10 4294967295"},
        {"[%7s][%-7s][%.2s][%7.3s]",
         {Text("abcde"), Text("abcde"), Text("abcde"), Text("abcde")},
         "[  abcde][abcde  ][ab][    abc]"},
        {"[%*d][%.*s]", {Whole(5), Whole(42), Whole(2), Text("abc")}, "[   42][ab]"},
        {"%I64d", {Whole(5000000000, TypeId::BigInt)}, "5000000000"},
        {"%ld %hd", {Whole(1), Whole(2)}, "1 2"},
        {"%s and %d", {NullOf(Sized(TypeId::VarChar, 5))}, "(null) and (null)"},
        {"%.4d", {Whole(-42)}, "-0042"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Formatted(c.text, c.values), c.expected) << c.text;
    }
}

TEST(Raiserror, RefusesArgumentsThatDoNotFit) {
    EXPECT_EQ(Formatted("%d", {Text("x")}),
              "2786 The data type of substitution parameter 1 does not match the expected "
              "type of the format specification.");
    EXPECT_EQ(Formatted("%d %s", {Whole(1), Whole(2)}),
              "2786 The data type of substitution parameter 2 does not match the expected type of the format "
              "specification.");
    EXPECT_EQ(Formatted("50% zone", {}), "2787 Invalid format specification: '% z'.");
    EXPECT_EQ(Formatted("%", {}), "2787 Invalid format specification: '%'.");
    EXPECT_EQ(Formatted("%d", {Real(1.5)}),
              "2748 Cannot specify float data type (parameter 4) as a substitution "
              "parameter.");
    EXPECT_EQ(
        Formatted("x", std::vector<Typed>(21, Whole(1))),
        "2747 Too many substitution parameters for RAISERROR. Cannot exceed 20 substitution parameters.");
}

TEST(Raiserror, CutsALongMessage) {
    const std::string message = Formatted("%s", {Text(std::string(3000, 'x'))});
    EXPECT_EQ(message, std::string(2044, 'x') + "...");
    EXPECT_EQ(Formatted("%s", {Text(std::string(2047, 'x'))}).size(), 2047U);
    EXPECT_EQ(Formatted("%*d", {Whole(INT64_MIN, TypeId::BigInt), Whole(1)}).size(), 2047U);
    EXPECT_EQ(Formatted("%2000000000d", {Whole(1)}).size(), 2047U)
        << "a large width does not use up the memory";
}

} // namespace
} // namespace devsql

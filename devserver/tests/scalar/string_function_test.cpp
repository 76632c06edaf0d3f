// The string functions.
#include <gtest/gtest.h>

#include "devserver/tests/scalar/typed.h"

namespace devsql {
namespace {

void ExpectAll(std::span<const FunctionCase> cases) {
    for (const FunctionCase& c : cases) {
        std::string arguments;
        for (const Typed& argument : c.arguments) {
            arguments += " " + Shown(argument);
        }
        EXPECT_EQ(Result(c), c.expected) << c.name << arguments;
    }
}

TEST(Lengths, CountUnitsOrBytes) {
    const FunctionCase cases[] = {
        {"LEN", {Text("abc  ")}, "3"},        {"LEN", {NText("Ωé")}, "2"},
        {"LEN", {Whole(-12)}, "3"},           {"LEN", {Text("")}, "0"},
        {"LEN", {Hex("0x0102")}, "2"},        {"DATALENGTH", {Text("abc  ")}, "5"},
        {"DATALENGTH", {NText("Ωé")}, "4"},   {"DATALENGTH", {Whole(5)}, "4"},
        {"DATALENGTH", {Hex("0x0102")}, "2"}, {"DATALENGTH", {Num("1.5")}, "5"},
        {"DATALENGTH", {Null()}, "NULL"},
    };
    ExpectAll(cases);
}

TEST(Substrings, AreCutByPosition) {
    const FunctionCase cases[] = {
        {"LEFT", {Text("abcdef"), Whole(2)}, "ab"},
        {"LEFT", {Text("ab"), Whole(5)}, "ab"},
        {"LEFT", {Whole(12345), Whole(2)}, "12"},
        {"LEFT",
         {Text("ab"), Whole(-1)},
         "537 Invalid length parameter passed to the LEFT or SUBSTRING function."},
        {"RIGHT", {Text("abcdef"), Whole(2)}, "ef"},
        {"RIGHT", {Text("ab"), Whole(5)}, "ab"},
        {"RIGHT", {Text("ab"), Whole(-1)}, "536 Invalid length parameter passed to the right function."},
        {"SUBSTRING", {Text("abcdef"), Whole(2), Whole(3)}, "bcd"},
        {"SUBSTRING", {Text("abcdef"), Whole(0), Whole(3)}, "ab"},
        {"SUBSTRING", {Text("abcdef"), Whole(-5), Whole(3)}, ""},
        {"SUBSTRING", {Text("abcdef"), Whole(5), Whole(30)}, "ef"},
        {"SUBSTRING", {Text("abcdef"), Whole(9), Whole(3)}, ""},
        {"SUBSTRING", {Hex("0x01020304"), Whole(2), Whole(2)}, "0x0203"},
        {"SUBSTRING",
         {Text("ab"), Whole(1), Whole(-1)},
         "537 Invalid length parameter passed to the LEFT or SUBSTRING function."},
        {"SUBSTRING", {Text("ab"), Null(), Whole(1)}, "NULL"},
        {"STUFF", {Text("abcdef"), Whole(2), Whole(3), Text("ijklmn")}, "aijklmnef"},
        {"STUFF", {Text("abc"), Whole(0), Whole(1), Text("x")}, "NULL"},
        {"STUFF", {Text("abc"), Whole(4), Whole(1), Text("x")}, "NULL"},
        {"STUFF", {Text("abc"), Whole(2), Whole(9), Null()}, "a"},
    };
    ExpectAll(cases);
}

TEST(StringFunctions, ChangeTheText) {
    const FunctionCase cases[] = {
        {"UPPER", {Text("häuser")}, "HÄUSER"},
        {"LOWER", {Text("HÄUSER")}, "häuser"},
        {"LTRIM", {Text("  a b ")}, "a b "},
        {"RTRIM", {Text("  a b  ")}, "  a b"},
        {"TRIM", {Text("  a b  ")}, "a b"},
        {"REVERSE", {Text("abc")}, "cba"},
        {"REPLICATE", {Text("ab"), Whole(3)}, "ababab"},
        {"REPLICATE", {Text("ab"), Whole(-1)}, "NULL"},
        {"REPLICATE", {Text("ab"), Whole(0)}, ""},
        {"SPACE", {Whole(3)}, "   "},
        {"SPACE", {Whole(-1)}, "NULL"},
        {"REPLACE", {Text("abcABC"), Text("b"), Text("xx")}, "axxcAxxC"},
        {"REPLACE", {Text("abc"), Text(""), Text("x")}, "abc"},
        {"REPLACE", {Text("abc"), Text("b"), Text("")}, "ac"},
        {"REPLACE", {Text("abc"), Text("b"), Null()}, "NULL"},
        {"CONCAT", {Text("a"), Null(), Whole(5), NText("Ω")}, "a5Ω"},
    };
    ExpectAll(cases);
}

TEST(StringFunctions, CutAtTheMaximumLengthOfTheType) {
    EXPECT_EQ(std::get<std::string>(Called("REPLICATE", {Text("ab"), Whole(9000)}).value).size(), 8000U);
    const Type max = Sized(TypeId::VarChar, kMaxLength);
    EXPECT_EQ(std::get<std::string>(Called("REPLICATE", {As("ab", max), Whole(9000)}).value).size(), 18000U);
    EXPECT_EQ(ErrorOf([&] { Called("REPLICATE", {As("ab", max), Whole(INT32_MAX)}); }), 7119);
}

TEST(Positions, AreFoundIgnoringCase) {
    const FunctionCase cases[] = {
        {"CHARINDEX", {Text("C"), Text("abcabc")}, "3"},
        {"CHARINDEX", {Text("c"), Text("abcabc"), Whole(4)}, "6"},
        {"CHARINDEX", {Text("c"), Text("abc"), Whole(-2)}, "3"},
        {"CHARINDEX", {Text("x"), Text("abc")}, "0"},
        {"CHARINDEX", {Text(""), Text("abc")}, "0"},
        {"CHARINDEX", {Null(), Text("abc")}, "NULL"},
        {"PATINDEX", {Text("%[0-9]%"), Text("ab1")}, "3"},
    };
    ExpectAll(cases);
}

TEST(Characters, HaveNumbers) {
    const FunctionCase cases[] = {
        {"CHAR", {Whole(65)}, "A"},   {"CHAR", {Whole(128)}, "€"},    {"CHAR", {Whole(256)}, "NULL"},
        {"ASCII", {Text("A")}, "65"}, {"ASCII", {Text("€")}, "128"},  {"ASCII", {Text("")}, "NULL"},
        {"NCHAR", {Whole(937)}, "Ω"}, {"NCHAR", {Whole(-1)}, "NULL"}, {"UNICODE", {NText("Ω")}, "937"},
    };
    ExpectAll(cases);
}

TEST(NumbersAsText, HaveTheRequestedWidth) {
    const FunctionCase cases[] = {
        {"STR", {Num("123.45"), Whole(6), Whole(1)}, " 123.5"},
        {"STR", {Num("123.45")}, "       123"},
        {"STR", {Num("123.45"), Whole(2), Whole(2)}, "**"},
        {"STR", {Num("123.45"), Whole(4), Whole(2)}, " 123"},
        {"STR", {Num("123.45"), Whole(5), Whole(2)}, "123.5"},
        {"STR", {Real(-1.5), Whole(8), Whole(3)}, "  -1.500"},
    };
    ExpectAll(cases);
}

TEST(Names, AreQuoted) {
    const FunctionCase cases[] = {
        {"QUOTENAME", {Text("a]b")}, "[a]]b]"},
        {"QUOTENAME", {Text("a'b"), Text("'")}, "'a''b'"},
        {"QUOTENAME", {Text("a"), Text("\"")}, "\"a\""},
        {"QUOTENAME", {Text("a"), Text("x")}, "NULL"},
        {"QUOTENAME", {Text(std::string(129, 'a'))}, "NULL"},
    };
    ExpectAll(cases);
}

TEST(ResultTypes, FollowTheText) {
    EXPECT_EQ(Called("LEFT", {As("abc", Sized(TypeId::Char, 5)), Whole(1)}).type, Sized(TypeId::VarChar, 5));
    EXPECT_EQ(Called("UPPER", {NText("abc")}).type, Sized(TypeId::NVarChar, 3));
    EXPECT_EQ(Called("REPLACE", {Text("a"), Text("b"), NText("c")}).type, Sized(TypeId::NVarChar, 8000 / 2));
    EXPECT_EQ(Called("SUBSTRING", {Hex("0x01"), Whole(1), Whole(1)}).type, Sized(TypeId::VarBinary, 1));
    EXPECT_EQ(Called("CONCAT", {Text("abc"), Text("d")}).type, Sized(TypeId::VarChar, 4));
    EXPECT_EQ(Called("LEN", {As("a", Sized(TypeId::VarChar, kMaxLength))}).type, Simple(TypeId::BigInt));
}

TEST(TextNtextAndImage, AreAcceptedOnlyBySomeFunctions) {
    const Typed text = As("abc", Simple(TypeId::Text));
    EXPECT_EQ(Result({"SUBSTRING", {text, Whole(1), Whole(2)}, {}}), "ab");
    EXPECT_EQ(Result({"DATALENGTH", {text}, {}}), "3");
    EXPECT_EQ(Result({"LEN", {text}, {}}),
              "8116 Argument data type text is invalid for argument 1 of len function.");
}

} // namespace
} // namespace devsql

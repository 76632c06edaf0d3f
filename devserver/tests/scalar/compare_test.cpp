// The collation and the comparison of values.
#include <gtest/gtest.h>

#include <algorithm>

#include "devserver/tests/scalar/typed.h"
#include "devserver/tsql/scalar/compare.h"

namespace devsql {
namespace {

TEST(Collation, IgnoresCaseAndTrailingBlanks) {
    EXPECT_EQ(CompareText("Batch", "bATCH"), 0);
    EXPECT_EQ(CompareText("a", "a   "), 0);
    EXPECT_EQ(CompareText("", "  "), 0);
    EXPECT_EQ(CompareText("ÄÖÜ", "äöü"), 0);
    EXPECT_EQ(CompareText("ŠŒŽŸ", "šœžÿ"), 0);
}

TEST(Collation, DistinguishesAccentsAndLeadingBlanks) {
    EXPECT_NE(CompareText("resume", "résumé"), 0);
    EXPECT_NE(CompareText("a", " a"), 0);
    EXPECT_NE(CompareText("ss", "ß"), 0);
    EXPECT_NE(CompareText("oe", "œ"), 0);
    EXPECT_NE(CompareText("s", "š"), 0);
}

TEST(Collation, ALetterOutsideTheCodePageEqualsOnlyItself) {
    EXPECT_NE(CompareText("Ł", "ł"), 0);
    EXPECT_NE(CompareText("Ω", "ω"), 0);
    EXPECT_EQ(CompareText("Ω", "Ω "), 0);
}

TEST(Collation, SortsAsADictionary) {
    const std::vector<std::string> ordered = {"",     " a",   "!",       "_x",  "1",   "10", "2",    "A",
                                              "a b",  "aa",   "ab",      "Äb",  "Abc", "b",  "cote", "coté",
                                              "côte", "côté", "coteaux", "Œuf", "of",  "z",  "Ω",    "я"};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            const int expected = i < j ? -1 : static_cast<int>(i > j);
            EXPECT_EQ(CompareText(ordered[i], ordered[j]), expected)
                << ordered[i] << " against " << ordered[j];
        }
    }
}

TEST(SortKeys, CompareLikeTheirTexts) {
    const std::vector<std::string> texts = {"",    "a",    "A ",   "ab",    "a b", "é", "e",  "E1",  "_",
                                            "a-b", "ß",    "ss",   "ssa",   "Ω",   "😀", "\t", "a\t", "Éa",
                                            "ea",  "côte", "coté", "zebra", "ÿ",   "y", "œ",  "oe"};
    for (const std::string& a : texts) {
        for (const std::string& b : texts) {
            const int keys = SortKey(a).compare(SortKey(b));
            EXPECT_EQ((keys > 0) - (keys < 0), CompareText(a, b)) << a << " against " << b;
        }
    }
}

struct ComparisonCase {
    Typed a;
    Typed b;
    int expected;
};

TEST(Values, OfDifferentTypesCompareInTheStrongerType) {
    const ComparisonCase cases[] = {
        {Whole(2), Num("2.0"), 0},
        {Whole(2), Text("10"), -1},
        {Text("2"), Text("10"), 1},
        {Num("0.1"), Real(0.1), 0},
        {Whole(1, TypeId::Bit), Whole(1), 0},
        {As("1.2345", Simple(TypeId::Money)), Num("1.23456"), -1},
        {Date("2001-02-03"), Text("20010204"), -1},
        {Date("2001-02-03 12:00"), As("2001-02-03 12:00", Simple(TypeId::SmallDateTime)), 0},
        {As("ab", Sized(TypeId::Char, 10)), Text("AB"), 0},
        {NText("ä"), Text("Ä"), 0},
        {Hex("0x01"), Hex("0x0100"), 0},
        {Hex("0x01"), Hex("0x02"), -1},
        {Hex("0xFF"), Hex("0x01"), 1},
        {Hex("0x0A"), Whole(10), 0},
        {NullOf(Simple(TypeId::Int)), Whole(-5), -1},
        {NullOf(Simple(TypeId::Int)), NullOf(Simple(TypeId::Int)), 0},
    };
    for (const ComparisonCase& c : cases) {
        EXPECT_EQ(CompareValues(c.a.value, c.a.type, c.b.value, c.b.type), c.expected)
            << Shown(c.a) << " against " << Shown(c.b);
        EXPECT_EQ(CompareValues(c.b.value, c.b.type, c.a.value, c.a.type), -c.expected)
            << Shown(c.b) << " against " << Shown(c.a);
    }
}

TEST(Values, UniqueIdentifiersAreOrderedByTheirLastGroupFirst) {
    const Type guid = Simple(TypeId::UniqueIdentifier);
    const Typed a = As("FFFFFFFF-FFFF-FFFF-FFFF-000000000001", guid);
    const Typed b = As("00000000-0000-0000-0000-000000000002", guid);
    EXPECT_EQ(CompareValues(a.value, guid, b.value, guid), -1);
}

TEST(Values, TextThatIsNotANumberCannotBeComparedWithANumber) {
    EXPECT_EQ(ErrorOf([] {
                  CompareValues(Value("x"), Sized(TypeId::VarChar, 1), Value(std::int64_t{1}),
                                Simple(TypeId::Int));
              }),
              245);
}

} // namespace
} // namespace devsql

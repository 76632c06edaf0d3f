// Tests reading a recordset: its position, its fields, and its two ends.
#include "ado/recordset.h"

#include <gtest/gtest.h>

#include <functional>

#include "ado/errors.h"

namespace ado {
namespace {

Recordset ThreeRows() {
    RowStore rows;
    for (const char* text : {"one", "two", "three"}) {
        rows.Append({text, Null()});
    }
    return {{"a", "b"}, std::move(rows)};
}

std::int32_t NumberOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const CallError& error) {
        return error.Number();
    }
    return 0;
}

TEST(Recordset, BeginsAtItsFirstRowAndIsReadForwards) {
    Recordset rows = ThreeRows();
    std::string text;
    for (; !rows.Eof(); rows.MoveNext()) {
        EXPECT_FALSE(rows.Bof());
        text += rows.Fields().Item(0).Value().ToString() + ";";
        EXPECT_TRUE(rows.Fields().Item(1).Value().IsNull());
    }
    EXPECT_EQ(text, "one;two;three;");
    EXPECT_FALSE(rows.Bof());
    EXPECT_EQ(rows.State(), adStateOpen);
}

TEST(Recordset, CanBeReadAgainFromItsFirstRow) {
    Recordset rows = ThreeRows();
    rows.MoveNext();
    rows.MoveNext();
    rows.MoveNext();
    rows.MoveFirst();
    EXPECT_EQ(rows.Fields().Item(0).Value(), Variant("one"));
    rows.MoveNext();
    EXPECT_EQ(rows.Fields().Item(0).Value(), Variant("two"));
}

TEST(Recordset, WithoutRowsIsAtBothEnds) {
    Recordset rows({"a"}, {});
    EXPECT_TRUE(rows.Eof());
    EXPECT_TRUE(rows.Bof());
    EXPECT_EQ(rows.Fields().Count(), 1);
    EXPECT_EQ(rows.Fields().Item(0).Name(), "a");
    EXPECT_EQ(NumberOf([&] { rows.Fields().Item(0).Value(); }), 3021);
    EXPECT_EQ(NumberOf([&] { rows.MoveFirst(); }), 3021);
    EXPECT_EQ(NumberOf([&] { rows.MoveNext(); }), 3021);
}

TEST(Recordset, AfterItsLastRowHasNoValue) {
    Recordset rows = ThreeRows();
    for (int i = 0; i < 3; ++i) {
        rows.MoveNext();
    }
    try {
        rows.Fields().Item(0).Value();
        FAIL() << "has a value";
    } catch (const CallError& error) {
        EXPECT_EQ(error.Number(), kNoCurrentRecord);
        EXPECT_STREQ(error.what(),
                     "Either BOF or EOF is True, or the current record has been deleted. Requested "
                     "operation requires a current record.");
    }
    EXPECT_EQ(NumberOf([&] { rows.MoveNext(); }), 3021);
}

TEST(Recordset, ThatIsClosedHasNoFieldsAndCannotBeRead) {
    Recordset closed;
    EXPECT_EQ(closed.State(), adStateClosed);
    EXPECT_EQ(closed.Fields().Count(), 0);
    EXPECT_EQ(NumberOf([&] { closed.Fields().Item(0); }), 3265);
    EXPECT_EQ(NumberOf([&] { closed.Bof(); }), 3704);
    EXPECT_EQ(NumberOf([&] { closed.MoveFirst(); }), 3704);
    EXPECT_EQ(NumberOf([&] { closed.MoveNext(); }), 3704);
    try {
        closed.Eof();
        FAIL() << "was read";
    } catch (const CallError& error) {
        EXPECT_EQ(error.Number(), kObjectClosed);
        EXPECT_EQ(error.Source(), "ADODB.Recordset");
        EXPECT_STREQ(error.what(), "Operation is not allowed when the object is closed.");
    }
}

TEST(Recordset, FindsItsFieldsByPosition) {
    const Recordset rows = ThreeRows();
    EXPECT_EQ(rows.Fields().Count(), 2);
    EXPECT_EQ(rows.Fields().Item(1).Name(), "b");
    EXPECT_EQ(NumberOf([&] { rows.Fields().Item(2); }), 3265);
    EXPECT_EQ(NumberOf([&] { rows.Fields().Item(-1); }), 3265);
}

TEST(Recordset, ThatIsMovedKeepsItsPlace) {
    Recordset rows = ThreeRows();
    rows.MoveNext();
    Recordset other = std::move(rows);
    EXPECT_EQ(other.Fields().Item(0).Value(), Variant("two"));
    other.MoveNext();
    EXPECT_EQ(other.Fields().Item(0).Value(), Variant("three"));
}

} // namespace
} // namespace ado

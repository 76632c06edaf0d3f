// Values stored in SQLite are read back unchanged, and SQLite sorts them as T-SQL does.
#include <gtest/gtest.h>

#include "devserver/storage/codec.h"
#include "devserver/storage/sqlite.h"
#include "devserver/tests/tsql/transcript.h"

namespace devsql {
namespace {

class Codec : public ::testing::Test {
  protected:
    Codec() { connection.Execute("CREATE TABLE t(v COLLATE TSQL)"); }

    Value RoundTrip(const Value& value, const Type& type) {
        connection.Prepare("INSERT INTO t VALUES(?1)").Bind(1, value, type).Run();
        SqliteStatement row = connection.Prepare("SELECT v FROM t");
        row.Step();
        Value back = row.Column(0, type);
        row.Reset();
        connection.Execute("DELETE FROM t");
        return back;
    }

    /// Inserts `values` in reverse order; they must be sorted into the given order.
    void ExpectOrder(const std::vector<Value>& values, const Type& type) {
        for (auto value = values.rbegin(); value != values.rend(); ++value) {
            connection.Prepare("INSERT INTO t VALUES(?1)").Bind(1, *value, type).Run();
        }
        SqliteStatement row = connection.Prepare("SELECT v FROM t ORDER BY v");
        for (const Value& value : values) {
            ASSERT_TRUE(row.Step());
            EXPECT_EQ(row.Column(0, type), value);
        }
        row.Reset();
        connection.Execute("DELETE FROM t");
    }

    test::TemporaryFolder folder;
    SqliteConnection connection{folder.path() / "codec.db"};
};

constexpr Int128 kTenTo18 = 1000000000000000000;

TEST_F(Codec, EveryTypeIsReadBackUnchanged) {
    const std::pair<Type, Value> cases[] = {
        {{TypeId::Bit, 0, 0, 0}, std::int64_t{1}},
        {{TypeId::BigInt, 0, 0, 0}, std::int64_t{INT64_MIN}},
        {{TypeId::Float, 0, 0, 0}, 1.0},
        {{TypeId::Money, 0, 0, 0}, Decimal{-9223372036854775807, 4}},
        {{TypeId::Decimal, 0, 18, 3}, Decimal{kTenTo18 - 1, 3}},
        {{TypeId::Decimal, 0, 38, 10}, Decimal{kTenTo18 * kTenTo18 * -99, 10}},
        {{TypeId::DateTime, 0, 0, 0}, DateTime{-53690, 0}},
        {{TypeId::DateTime, 0, 0, 0}, DateTime{2958463, 25919999}},
        {{TypeId::VarChar, 10, 0, 0}, std::string("")},
        {{TypeId::NVarChar, 10, 0, 0}, std::string("nul\0in", 6)},
        {{TypeId::VarBinary, 10, 0, 0}, Bytes{""}},
        {{TypeId::VarBinary, 10, 0, 0}, Bytes{std::string("\0\xFF", 2)}},
        {{TypeId::UniqueIdentifier, 0, 0, 0}, Guid{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}}},
    };
    for (const auto& [type, value] : cases) {
        EXPECT_EQ(RoundTrip(value, type), value) << static_cast<int>(type.id);
        EXPECT_EQ(RoundTrip({}, type), Value()) << static_cast<int>(type.id);
    }
}

TEST_F(Codec, LongDecimalsSortByValue) {
    ExpectOrder({Decimal{-kTenTo18 * 1000, 2}, Decimal{-1, 2}, Decimal{0, 2}, Decimal{1, 2},
                 Decimal{kTenTo18 * 1000, 2}},
                {TypeId::Decimal, 0, 30, 2});
}

TEST_F(Codec, DatesBefore1900SortBeforeThem) {
    ExpectOrder({DateTime{-2, 5}, DateTime{-1, 0}, DateTime{-1, 100}, DateTime{0, 0}, DateTime{0, 1}},
                {TypeId::DateTime, 0, 0, 0});
}

TEST_F(Codec, TextSortsByTheCollation) {
    ExpectOrder(
        {std::string("A"), std::string("ab"), std::string("B"), std::string("\xC3\xBC"), std::string("v")},
        {TypeId::NVarChar, 10, 0, 0});
}

TEST_F(Codec, UniqueidentifiersSortByTheirLastGroupFirst) {
    ExpectOrder({Guid{{0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
                 Guid{{0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0}},
                 Guid{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}},
                 Guid{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0}}},
                {TypeId::UniqueIdentifier, 0, 0, 0});
}

TEST_F(Codec, AnExceptionOfAFunctionPassesThroughSqlite) {
    connection.AddFunction("fails", [](const FunctionCall&) { throw std::runtime_error("from inside"); });
    SqliteStatement statement = connection.Prepare("SELECT fails()");
    try {
        statement.Step();
        FAIL() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "from inside");
    }
}

} // namespace
} // namespace devsql

// INSERT BULK and the rows after it.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

/// The rows of a client that is slow: before every second row it returns Waiting once. `end` is returned
/// after the last row.
class Rows : public BulkRows {
  public:
    Rows(std::vector<Type> types, std::vector<std::vector<Value>> rows, Step end = Step::End)
        : types_(std::move(types)), rows_(std::move(rows)), end_(end) {}

    Step Next(std::vector<Value>& row) override {
        if (next_ % 2 == 1 && std::exchange(waits_, false)) {
            return Step::Waiting;
        }
        if (next_ == rows_.size()) {
            return end_;
        }
        waits_ = true;
        row = rows_[next_++];
        return Step::Row;
    }
    const std::vector<Type>& Types() const override { return types_; }

  private:
    std::vector<Type> types_;
    std::vector<std::vector<Value>> rows_;
    Step end_;
    std::size_t next_ = 0;
    bool waits_ = false;
};

const Type kInt{TypeId::Int};
const Type kText{TypeId::NVarChar, 50};

class BulkInsert : public TsqlTest {
  protected:
    void SetUp() override {
        client.Run("create table parent (id int primary key)\n"
                   "create table t (id int identity primary key, a int not null check (a < 100), b "
                   "varchar(5) default "
                   "('none'), p int references parent, c as a * 2)");
    }
    std::string Load(Rows rows) {
        Transcript transcript;
        client.session().LoadRows(rows, transcript);
        return transcript.text;
    }
    std::string Table() { return Run("select * from t"); }
};

TEST_F(BulkInsert, FiresTriggersOnlyWhereItAsksForThem) {
    client.Run("create trigger counts on t for insert as declare @n int select @n = count(*) from inserted "
               "print @n");
    Run("insert bulk t (a int)");
    EXPECT_EQ(Load({{kText}, {{"1"}, {"2"}}}), "(2)\n");
    Run("insert bulk t (a int) with (fire_triggers)");
    EXPECT_EQ(Load({{kText}, {{"3"}, {"4"}}}), "> 2\n(2)\n");
}

TEST_F(BulkInsert, RowsAreConvertedAndCounted) {
    EXPECT_EQ(
        Run("insert bulk dbo.t (a int, [b] varchar(5) collate Latin1_General_CI_AS null) with (tablock, "
            "rows_per_batch = 10, order (a asc, b desc))"),
        "\n");
    EXPECT_EQ(Load({{kText, kText}, {{"7", "x"}, {"8", Value()}}}), "(2)\n");
    EXPECT_EQ(Table(), "\nid|a|b|p|c\n1|7|x|NULL|14\n2|8|none|NULL|16\n(2)\n");
}

TEST_F(BulkInsert, HintsDecideOnDefaultsAndConstraints) {
    Run("insert bulk t (a int, b varchar(5), p int)");
    EXPECT_EQ(Load({{kInt, kText, kInt}, {{std::int64_t{500}, "x", std::int64_t{9}}}}), "(1)\n");
    Run("insert bulk t (a int, b varchar(5)) with (keep_nulls, check_constraints)");
    EXPECT_EQ(Load({{kInt, kText}, {{std::int64_t{1}, Value()}}}), "(1)\n");
    EXPECT_EQ(Run("select a, b, p from t"), "\na|b|p\n500|x|9\n1|NULL|NULL\n(2)\n");
    Run("insert bulk t (a int) with (check_constraints)");
    EXPECT_NE(Load({{kInt}, {{std::int64_t{500}}}}).find("Msg 547.16"), std::string::npos);
    Run("insert bulk t (a int, p int) with (check_constraints)");
    EXPECT_NE(Load({{kInt, kInt}, {{std::int64_t{1}, std::int64_t{9}}}}).find("Msg 547.16"),
              std::string::npos);
    EXPECT_NE(Run("insert bulk t (a int) with (nosuch)").find("Msg 321.15"), std::string::npos);
}

TEST_F(BulkInsert, IdentityValuesInTheRowsAreStored) {
    Run("insert bulk t (id int, a int)");
    EXPECT_EQ(Load({{kInt, kInt}, {{std::int64_t{40}, std::int64_t{1}}}}), "(1)\n");
    EXPECT_EQ(Run("insert t (a) values (2) select id from t"), "\n(1)\nid\n40\n41\n(2)\n");
}

TEST_F(BulkInsert, ARowThatFailsUndoesAllRows) {
    Run("insert bulk t (a int)");
    EXPECT_NE(Load({{kInt}, {{std::int64_t{1}}, {Value()}}}).find("Msg 515.16.2"), std::string::npos);
    Run("insert bulk t (id int, a int)");
    EXPECT_NE(Load({{kInt, kInt}, {{std::int64_t{1}, std::int64_t{1}}, {std::int64_t{1}, std::int64_t{2}}}})
                  .find("Msg 2627.14"),
              std::string::npos);
    Run("insert bulk t (a int, b varchar(5))");
    EXPECT_NE(
        Load({{kInt, kText}, {{std::int64_t{1}, "x"}, {std::int64_t{2}, "too long"}}}).find("Msg 8152.16"),
        std::string::npos);
    Run("insert bulk t (a int)");
    EXPECT_EQ(Load({{kInt}, {{std::int64_t{1}}}, BulkRows::Step::Gone}), "");
    Run("insert bulk t (a int, b varchar(5))");
    EXPECT_NE(Load({{kInt}, {{std::int64_t{1}}}}).find("Msg 213.16"), std::string::npos);
    EXPECT_EQ(Table(), "\nid|a|b|p|c\n(0)\n");
}

TEST_F(BulkInsert, ALoadIsPartOfTheTransactionAroundIt) {
    Run("begin tran insert bulk t (a int)");
    EXPECT_EQ(Load({{kInt}, {{std::int64_t{1}}}}), "(1)\n");
    EXPECT_EQ(Run("rollback select count(*) from t"), "\n\n0\n(1)\n");
}

TEST_F(BulkInsert, TheStatementMustNameExistingColumns) {
    EXPECT_EQ(Run("insert bulk nosuch (a int)"), "\nMsg 208.16.1 L1: Invalid object name 'nosuch'.\n");
    EXPECT_EQ(Run("insert bulk t (nosuch int)"), "\nMsg 207.16.1 L1: Invalid column name 'nosuch'.\n");
    for (const auto& [sql, number] : {std::pair{"insert bulk t (c int)", 271},
                                      {"insert bulk t (a int, A int)", 264},
                                      {"insert bulk t ()", 102},
                                      {"insert bulk t", 102}}) {
        Run(sql);
        ASSERT_FALSE(client.messages.empty()) << sql;
        EXPECT_EQ(client.messages[0].number, number) << sql;
    }
    EXPECT_NE(Load({{kInt}, {{std::int64_t{1}}}}).find("Msg 4002.16"), std::string::npos);
}

TEST_F(BulkInsert, AnotherRequestInsteadOfTheRowsEndsTheLoad) {
    Run("insert bulk t (a int)");
    EXPECT_NE(Run("select 1").find("Msg 4022.16"), std::string::npos);
    EXPECT_EQ(Run("select 1"), "\n\n1\n(1)\n");
    EXPECT_NE(Load({{kInt}, {{std::int64_t{1}}}}).find("Msg 4002.16"), std::string::npos);
}

} // namespace
} // namespace devsql::test

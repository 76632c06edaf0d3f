// The end of each statement is reported in its place: clients assign messages and counts to the statement
// that ends next.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

/// Records what comes, in order: "print a", "error 8134", "columns", "row", "done", "done 2", "done inside".
class Order : public ResultSink {
  public:
    void Columns(const std::vector<Column>&) override { Add("columns"); }
    void Row(const std::vector<Value>&) override { Add("row"); }
    void StatementDone(Command, std::optional<std::int64_t> rows, bool in_procedure) override {
        Add(std::string("done") + (in_procedure ? " inside" : "") +
            (rows ? " " + std::to_string(*rows) : ""));
    }
    void Send(const Message& message) override {
        Add(message.severity > 10 ? "error " + std::to_string(message.number) : "print " + message.text);
    }
    void DatabaseChanged(const std::string&, const std::string&) override {}
    void OutputParameter(const std::string&, const Type&, const Value&) override {}
    void ReturnStatus(std::int32_t status) override { Add("return " + std::to_string(status)); }

    std::string text;

  private:
    void Add(const std::string& what) { text += (text.empty() ? "" : ", ") + what; }
};

class StatementEnd : public TsqlTest {
  protected:
    std::string OrderOf(std::string_view sql) {
        Order order;
        client.session().ExecuteBatch(sql, order);
        return order.text;
    }
};

TEST_F(StatementEnd, EachStatementReportsItsEndButDeclarationsDoNot) {
    EXPECT_EQ(OrderOf("print 'a' print 'b'"), "print a, done, print b, done");
    EXPECT_EQ(OrderOf("declare @i int set @i = 1 select @i"), "done, columns, row, done 1");
    EXPECT_EQ(OrderOf("create table #t (a int) insert #t values (1), (2) print 'c' drop table #t"),
              "done, done 2, print c, done, done");
    EXPECT_EQ(OrderOf("begin tran rollback"), "done, done");
    EXPECT_EQ(OrderOf("raiserror('x', 5, 1) raiserror('y', 16, 1) print 'z'"),
              "print x, done, error 50000, done, print z, done");
}

TEST_F(StatementEnd, ControlFlowReportsOnlyTheStatementsInIt) {
    EXPECT_EQ(OrderOf("if 1 = 1 begin print 'a' print 'b' end"), "print a, done, print b, done");
    EXPECT_EQ(OrderOf("declare @i int set @i = 0 while @i < 2 set @i = @i + 1"), "done, done, done");
    EXPECT_EQ(OrderOf("goto there print 'a' there: return"), "");
}

TEST_F(StatementEnd, AFunctionReportsNoEndInTheStatementThatCallsIt) {
    client.Run(
        "create function f () returns int begin declare @i int set @i = 7 select @i = @i + 1 return @i end");
    EXPECT_EQ(OrderOf("declare @i int set @i = dbo.f() select @i = dbo.f() if dbo.f() = 8 print 'x'"),
              "done, done, print x, done");
}

TEST_F(StatementEnd, EachFailedStatementReportsItsOwnEnd) {
    EXPECT_EQ(
        OrderOf(
            "create table #t (a int not null) insert #t values (null) insert #t values (null) print 'on'"),
        "done, error 515, print The statement has been terminated., done, error 515, print The statement "
        "has been terminated., done, print on, done");
    EXPECT_EQ(OrderOf("if 1 / 0 = 1 print 'a' print 'b'"), "error 8134, done, print b, done");
}

TEST_F(StatementEnd, AResultSetThatACatchBlockTakesEnds) {
    const std::string order = OrderOf("begin try select 1 / 0 end try begin catch print 'caught' end catch");
    EXPECT_TRUE(order == "columns, done, print caught, done" || order == "done, print caught, done") << order;
}

TEST_F(StatementEnd, InAProcedureNocountSilencesStatementsThatGiveNothing) {
    client.Run(
        "create procedure p as declare @i int set @i = 1 print 'a' select 1 insert #nosuch values (1)");
    EXPECT_EQ(OrderOf("exec p"),
              "done inside, print a, done inside, columns, row, done inside 1, error 208, done inside, "
              "return -6");
    client.Run("create procedure q as set nocount on declare @i int set @i = 1 print 'a' select 1");
    EXPECT_EQ(OrderOf("exec q"), "print a, columns, row, done inside, return 0");
    EXPECT_EQ(OrderOf("exec nosuch print 'b'"), "error 2812, done, print b, done");
}

TEST_F(StatementEnd, AStringThatFailsReportsItsOwnEnd) {
    EXPECT_EQ(OrderOf("exec('print ''a'' select * from nosuch') print 'b'"),
              "print a, done, error 208, done, print b, done");
}

} // namespace
} // namespace devsql::test

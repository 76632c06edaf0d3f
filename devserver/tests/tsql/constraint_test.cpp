// Constraints of tables: keys, foreign keys and their cascades, checks, unique indexes. transcript.h explains
// how results and errors are written.
#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {
namespace {

class Constraint : public TsqlTest {
  protected:
    Constraint() {
        client.Run(R"(
create table unit (id int not null constraint pk_unit primary key, code varchar(5) null constraint uq_code unique,
    volume int null constraint ck_volume check (volume > 0))
create table batch (id int not null primary key, unit_id int null constraint fk_unit references unit (id))
create table phase (id int not null primary key,
    batch_id int not null constraint fk_batch references batch (id) on delete cascade on update cascade)
insert unit values (1, 'a', 5)
insert batch values (10, 1)
insert phase values (100, 10), (101, 10)
)");
    }
};

TEST_F(Constraint, EachViolationHasItsNumberAndNamesItsConstraint) {
    EXPECT_EQ(Run("insert unit values (1, 'b', 5)"),
              "\nMsg 2627.14.1 L1: Violation of PRIMARY KEY constraint 'pk_unit'. Cannot insert duplicate "
              "key in object "
              "'dbo.unit'. The duplicate key value is (1).\n> The statement has been terminated.\n");
    EXPECT_EQ(Run("insert unit values (2, 'A', 5)"),
              "\nMsg 2627.14.1 L1: Violation of UNIQUE KEY constraint 'uq_code'. Cannot insert duplicate key "
              "in object "
              "'dbo.unit'. The duplicate key value is (A).\n> The statement has been terminated.\n");
    EXPECT_EQ(
        Run("insert unit values (2, 'b', 0)"),
        "\nMsg 547.16.0 L1: The INSERT statement conflicted with the CHECK constraint \"ck_volume\". "
        "The conflict "
        "occurred in database \"tempdb\", table \"dbo.unit\", column 'volume'.\n> The statement has been "
        "terminated.\n");
    EXPECT_EQ(
        Run("insert batch values (11, 9)"),
        "\nMsg 547.16.0 L1: The INSERT statement conflicted with the FOREIGN KEY constraint \"fk_unit\". The "
        "conflict occurred in database \"tempdb\", table \"dbo.unit\", column 'id'.\n"
        "> The statement has been terminated.\n");
    EXPECT_EQ(Run("delete unit"), "\nMsg 547.16.0 L1: The DELETE statement conflicted with the REFERENCE "
                                  "constraint \"fk_unit\". The conflict "
                                  "occurred in database \"tempdb\", table \"dbo.batch\", column 'unit_id'.\n"
                                  "> The statement has been terminated.\n");
    EXPECT_EQ(Run("insert unit (code) values ('c')"),
              "\nMsg 515.16.2 L1: Cannot insert the value NULL into column 'id', table 'tempdb.dbo.unit'; "
              "column does not "
              "allow nulls. INSERT fails.\n> The statement has been terminated.\n");
}

TEST_F(Constraint, AFailedStatementChangesNothingAndTheBatchGoesOn) {
    EXPECT_EQ(Run(R"(
insert unit select 2, 'b', 1 union all select 3, 'b', 1
select @@error
select count(*) from unit)"),
              R"(
Msg 2627.14.1 L2: Violation of UNIQUE KEY constraint 'uq_code'. Cannot insert duplicate key in object 'dbo.unit'. The duplicate key value is (b).
> The statement has been terminated.

2627
(1)

1
(1)
)");
}

TEST_F(Constraint, CascadesFollowDeleteAndUpdate) {
    EXPECT_EQ(Run(R"(
update batch set id = 20
select batch_id from phase
delete batch
select count(*) from phase)"),
              R"(
(1)
batch_id
20
20
(2)
(1)

0
(1)
)");
}

TEST_F(Constraint, AUniqueConstraintAllowsOneNullOnly) {
    EXPECT_EQ(Run("insert unit (id) values (2)\ninsert unit (id) values (3)"), R"(
(1)
Msg 2627.14.1 L2: Violation of UNIQUE KEY constraint 'uq_code'. Cannot insert duplicate key in object 'dbo.unit'. The duplicate key value is (<NULL>).
> The statement has been terminated.
)");
}

TEST_F(Constraint, AUniqueIndexHasAnotherErrorThanAConstraint) {
    EXPECT_EQ(Run(R"(
create unique index ix_volume on unit (volume)
insert unit values (2, 'b', 5))"),
              R"(
Msg 2601.14.1 L3: Cannot insert duplicate key row in object 'dbo.unit' with unique index 'ix_volume'. The duplicate key value is (5).
> The statement has been terminated.
)");
}

TEST_F(Constraint, AForeignKeyWithNullRefersToNothing) {
    EXPECT_EQ(Run("insert batch values (11, null)"), "\n(1)\n");
}

TEST_F(Constraint, ARowMayReferToARowThatTheSameStatementInserts) {
    EXPECT_EQ(Run(R"(
create table tree (id int primary key, parent int null constraint fk_tree references tree (id))
insert tree select 1, 2 union all select 2, null
delete tree where id = 2
delete tree)"),
              R"(
(2)
Msg 547.16.0 L4: The DELETE statement conflicted with the SAME TABLE REFERENCE constraint "fk_tree". The conflict occurred in database "tempdb", table "dbo.tree", column 'parent'.
> The statement has been terminated.
(2)
)");
}

TEST_F(Constraint, NocheckSparesOldRowsAndSwitchesAConstraintOff) {
    EXPECT_EQ(Run(R"(
alter table unit with nocheck add constraint ck_code check (code <> 'a')
insert unit values (5, 'a2', 1)
insert unit values (6, 'A', 1)
GO
alter table unit add constraint ck_more check (volume > 100)
GO
alter table unit nocheck constraint ck_volume
insert unit values (7, 'q', -1)
alter table unit check constraint ck_volume
insert unit values (8, 'r', -1)
GO
alter table unit drop constraint ck_volume
insert unit values (8, 'r', -1))"),
              R"(
(1)
Msg 547.16.0 L4: The INSERT statement conflicted with the CHECK constraint "ck_code". The conflict occurred in database "tempdb", table "dbo.unit", column 'code'.
> The statement has been terminated.
Msg 547.16.0 L1: The ALTER TABLE statement conflicted with the CHECK constraint "ck_more". The conflict occurred in database "tempdb", table "dbo.unit", column 'volume'.
(1)
Msg 547.16.0 L4: The INSERT statement conflicted with the CHECK constraint "ck_volume". The conflict occurred in database "tempdb", table "dbo.unit", column 'volume'.
> The statement has been terminated.
(1)
)");
}

TEST_F(Constraint, ATableThatIsReferredToIsNeitherDroppedNorTruncated) {
    Run("drop table unit");
    EXPECT_EQ(client.messages.at(0).number, 3726);
    Run("truncate table unit");
    EXPECT_EQ(client.messages.at(0).number, 4712);
    Run("alter table unit drop constraint pk_unit");
    EXPECT_EQ(client.messages.at(0).number, 3725);
}

TEST_F(Constraint, AForeignKeyNeedsAKeyToReferTo) {
    const std::pair<const char*, int> cases[] = {
        {"create table x (a int references nosuch (id))", 1767},
        {"create table x (a int references unit (nosuch))", 1770},
        {"create table x (a int references unit (volume))", 1776},
        {"create table x (a varchar(5) references unit (id))", 1778},
        {"create table x (a int, b int, foreign key (a, b) references unit (id))", 1774},
    };
    for (const auto& [sql, number] : cases) {
        Run(sql);
        ASSERT_FALSE(client.messages.empty()) << sql;
        EXPECT_EQ(client.messages.at(0).number, number) << sql;
    }
}

TEST_F(Constraint, AViolatedCheckNamesItsColumnIfItUsesOnlyOne) {
    EXPECT_EQ(Run("alter table unit with nocheck add constraint ck_both check (volume > id and id < 9)\n"
                  "insert unit values (9, 'b', 20)"),
              "\nMsg 547.16.0 L2: The INSERT statement conflicted with the CHECK constraint \"ck_both\". The "
              "conflict occurred in database \"tempdb\", table \"dbo.unit\".\n"
              "> The statement has been terminated.\n");
    EXPECT_EQ(
        Run("alter table unit add constraint ck_id check (unit.id > len(10))"),
        "\nMsg 547.16.0 L1: The ALTER TABLE statement conflicted with the CHECK constraint \"ck_id\". The "
        "conflict occurred in database \"tempdb\", table \"dbo.unit\", column 'id'.\n");
}

TEST_F(Constraint, DroppingAColumnLooksForItsWholeNameInChecks) {
    EXPECT_EQ(
        Run("alter table unit add vol int, lume int\nalter table unit drop column vol\n"
            "alter table unit drop column volume"),
        "\nMsg 4922.16.1 L3: ALTER TABLE DROP COLUMN volume failed because one or more objects access this "
        "column.\n");
}

} // namespace
} // namespace devsql::test

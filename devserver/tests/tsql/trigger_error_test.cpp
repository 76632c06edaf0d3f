// Triggers: what their errors, rollbacks and commits end.
#include "devserver/tests/tsql/trigger_fixture.h"

namespace devsql::test {
namespace {

using TriggerErrors = Triggers;

TEST_F(TriggerErrors, ARollbackEndsTheBatchAndWhatFollowsItInTheTriggerIsDone) {
    EXPECT_EQ(Run(R"(
create table refused (id int)
GO
create trigger refuse on lot for insert, update as
if exists (select * from inserted where qty < 0)
begin
    declare @kept table (id int)
    insert @kept select id from inserted
    raiserror ('No lot has %d pieces.', 16, 1, -1)
    rollback transaction
    insert refused select id from @kept
    print 'count ' + str(@@trancount, 1) + ', rows ' + str((select count(*) from inserted), 1)
end
GO
insert lot (id, qty) values (1, 5)
begin transaction
insert lot (id, qty) values (2, 5)
insert lot (id, qty) values (3, -5)
print 'never here'
GO
select @@trancount n
update lot set qty = -1 where id = 1
print 'never here'
GO
create procedure add_lot @id int, @qty int as
insert lot (id, qty) values (@id, @qty)
print 'never here'
GO
exec add_lot 4, -1
print 'never here'
GO
select id, qty from lot
select id from refused
select event, id from journal)"),
              R"(
(1)
(1)
(1)
Msg 50000.16.1 refuse L6: No lot has -1 pieces.
(1)
> count 0, rows 0
Msg 3609.16.1 L4: The transaction ended in the trigger. The batch has been aborted.
n
0
(1)
(1)
Msg 50000.16.1 refuse L6: No lot has -1 pieces.
(1)
> count 0, rows 0
Msg 3609.16.1 L2: The transaction ended in the trigger. The batch has been aborted.
(1)
Msg 50000.16.1 refuse L6: No lot has -1 pieces.
(1)
> count 0, rows 0
Msg 3609.16.1 add_lot L2: The transaction ended in the trigger. The batch has been aborted.
id|qty
1|5
(1)
id
3
1
4
(3)
event|id
insert|1
(1)
)");
}

TEST_F(TriggerErrors, AnErrorUndoesTheStatementAndEndsTheBatch) {
    EXPECT_EQ(Run(R"(
create trigger divide on lot for insert as
print 'count ' + str(@@trancount, 1)
insert journal (id) select 1 / qty from inserted
GO
insert lot (id, qty) values (1, 1)
insert lot (id, qty) values (2, 0)
print 'never here'
GO
begin transaction
insert lot (id, qty) values (3, 1)
insert lot (id, qty) values (4, 0)
GO
select @@trancount n
insert lot (id, qty) values (1, 1)
print 'a duplicate key fires nothing'
select id from lot
GO
alter trigger divide on lot for insert as select * from nosuch
GO
insert lot (id) values (5)
print 'never here'
GO
alter trigger divide on lot for insert as raiserror ('told', 16, 1)
GO
insert lot (id) values (6)
print 'RAISERROR alone ends nothing'
select id from lot)"),
              R"(
> count 1
(1)
(1)
> count 1
Msg 8134.16.1 divide L4: Divide by zero error encountered.
> count 1
(1)
(1)
> count 1
Msg 8134.16.1 divide L4: Divide by zero error encountered.
n
0
(1)
Msg 2627.14.1 L2: Violation of PRIMARY KEY constraint 'PK__lot__5AD320C4'. Cannot insert duplicate key in object 'dbo.lot'. The duplicate key value is (1).
> The statement has been terminated.
> a duplicate key fires nothing
id
1
(1)
Msg 208.16.1 divide L1: Invalid object name 'nosuch'.
Msg 50000.16.1 divide L1: told
(1)
> RAISERROR alone ends nothing
id
1
6
(2)
)");
}

TEST_F(TriggerErrors, AnErrorIsCaughtOutsideAndInside) {
    EXPECT_EQ(Run(R"(
create trigger divide on lot for insert as
insert journal (id) select 1 / qty from inserted
GO
set nocount on
begin try
    insert lot (id, qty) values (1, 0)
end try
begin catch
    select error_number() n, error_procedure() p, error_line() l, @@trancount c, xact_state() x
end catch
begin transaction
begin try
    insert lot (id, qty) values (2, 0)
end try
begin catch
    select error_number() n, @@trancount c, xact_state() x
    rollback
end catch
begin try
    alter table lot add more int
    exec ('alter trigger divide on lot for insert as rollback')
    insert lot (id) values (3)
end try
begin catch
    select error_number() n, @@trancount c, xact_state() x
end catch
select count(*) lots from lot
GO
alter trigger divide on lot for insert as
begin try
    insert journal (id) select 1 / qty from inserted
end try
begin catch
    print error_message() + str(xact_state(), 3)
end catch
GO
insert lot (id, qty) values (4, 0)
print 'never here'
GO
alter trigger divide on lot for insert as
begin try
    raiserror ('raised', 16, 1)
end try
begin catch
    print error_message() + str(xact_state(), 3)
end catch
GO
insert lot (id, qty) values (5, 0)
select id from lot)"),
              R"(
n|p|l|c|x
8134|divide|3|0|0
n|c|x
8134|1|-1
n|c|x
3609|0|0
lots
0
> Divide by zero error encountered. -1
Msg 3616.16.1 L1: An error was raised during trigger execution. The batch has been aborted and the user transaction, if any, has been rolled back.
> raised  1
id
5
)");
}

TEST_F(TriggerErrors, MayCommitAndSetSavepoints) {
    EXPECT_EQ(Run(R"(
create trigger marks on lot for insert as
set nocount on
save transaction here
update lot set note = 'gone' where id in (select id from inserted)
rollback transaction here
update lot set note = 'kept' where id in (select id from inserted)
GO
insert lot (id) values (1)
begin transaction
insert lot (id) values (2)
rollback transaction here
update lot set qty = 9 where id = 2
commit
select id, qty, note from lot
GO
alter trigger marks on lot for insert as rollback transaction before
GO
begin transaction
save transaction before
insert lot (id) values (3)
insert lot (id) values (4)
print 'goes on'
commit
select count(*) n from lot where id > 2
GO
alter trigger marks on lot for insert as commit
GO
insert lot (id) values (5)
print 'never here'
GO
begin transaction
insert lot (id) values (6)
GO
select @@trancount c, count(*) n from lot where id > 4)"),
              R"(
(1)
(1)
(1)
id|qty|note
1|0|kept
2|9|NULL
(2)
(1)
(1)
> goes on
n
0
(1)
Msg 3609.16.1 L1: The transaction ended in the trigger. The batch has been aborted.
Msg 3609.16.1 L2: The transaction ended in the trigger. The batch has been aborted.
c|n
0|2
(1)
)");
}

} // namespace
} // namespace devsql::test

// Triggers: which statements fire them, and what they see.
#include "devserver/tests/tsql/trigger_fixture.h"

namespace devsql::test {
namespace {

TEST_F(Triggers, SeeTheRowsOfTheWholeStatement) {
    EXPECT_EQ(Run(R"(
insert lot (id, name) values (1, 'one')
insert lot (id, name) select id + 1, 'two' from lot union all select id + 2, 'three' from lot
update lot set name = name + '!' where id > 1
delete lot where id < 3
select * from journal order by no
select id, name from lot)"),
              R"(
(1)
(2)
(2)
(2)
no|event|id|was|became
1|insert|1|NULL|one
2|insert|2|NULL|two
3|insert|3|NULL|three
4|update|2|two|two!
5|update|3|three|three!
6|delete|1|one|NULL
7|delete|2|two!|NULL
(7)
id|name
3|three!
(1)
)");
}

TEST_F(Triggers, FireOnceForAStatementThatChangesNothing) {
    EXPECT_EQ(Run(R"(
create trigger count_rows on lot for insert, update, delete as
declare @n int
set @n = @@rowcount
print 'rows ' + str(@n, 2) + ' of ' + str((select count(*) from inserted), 2) + str((select count(*) from deleted), 2)
GO
insert lot (id) select 1 where 1 = 0
update lot set qty = 1
delete lot
insert lot (id) select 1 union select 2
truncate table lot)"),
              R"(
> rows  0 of  0 0
(0)
> rows  0 of  0 0
(0)
> rows  0 of  0 0
(0)
> rows  2 of  2 0
(2)
)");
}

TEST_F(Triggers, KnowTheColumnsThatAnUpdateNames) {
    EXPECT_EQ(Run(R"(
create trigger named on lot after insert, update, delete as
if update(qty) print 'qty'
if update(name) or update([note]) print 'name or note'
if not update(id) print 'not id'
select columns_updated() bits
GO
insert lot (id) values (1)
update lot set qty = qty where 1 = 0
update l set note = 'x', qty = 2 from lot l
delete lot)"),
              R"(
> qty
> name or note
bits
0x0F
(1)
(1)
> qty
> not id
bits
0x04
(1)
(0)
> qty
> name or note
> not id
bits
0x0C
(1)
(1)
> not id
bits
0x00
(1)
(1)
)");
    EXPECT_EQ(Run("if update(qty) print 'x'"),
              "\nMsg 140.15.1 L1: Can only use IF UPDATE within a CREATE TRIGGER statement.\n");
    EXPECT_EQ(Run("select 1 + update('qty')"),
              "\n\nMsg 140.15.1 L1: Can only use IF UPDATE within a CREATE TRIGGER statement.\n");
}

TEST_F(Triggers, OfOneTableRunInTheOrderInWhichTheyWereMadeAndThoseSwitchedOffDoNot) {
    EXPECT_EQ(Run(R"(
create trigger b on lot for insert as print 'b'
GO
create trigger a on lot for insert as print 'a'
GO
insert lot (id) values (1)
alter table lot disable trigger b
insert lot (id) values (2)
disable trigger a, lot_journal on lot
enable trigger b on dbo.lot
insert lot (id) values (3)
disable trigger all on lot
insert lot (id) values (4)
alter table lot enable trigger all
insert lot (id) values (5)
drop trigger a, dbo.b
insert lot (id) values (6)
select id from journal order by no)"),
              R"(
> b
> a
(1)
> a
(1)
> b
(1)
(1)
> b
> a
(1)
(1)
id
1
2
5
6
(4)
)");
}

TEST_F(Triggers, FireOtherTriggersAndOnlyTheOptionMakesThemFireThemselves) {
    EXPECT_EQ(Run(R"(
create table counted (n int)
insert counted values (0)
GO
create trigger journal_counts on journal for insert as
set nocount on
print 'level ' + str(@@nestlevel, 1) + str(trigger_nestlevel(), 2) + ' of ' + object_name(@@procid)
update counted set n = n + (select count(*) from inserted)
GO
create trigger lot_self on lot after update as
if trigger_nestlevel(object_id('lot_self')) < 3
    update lot set qty = qty + 1 where id in (select id from inserted)
GO
set nocount on
insert lot (id, name) select 1, 'x' union select 2, 'y'
update lot set name = 'z' where id = 2
select id, qty from lot
select n from counted
GO
use master
create database self
GO
use self
create table t (n int)
insert t values (0)
GO
create trigger again on t for update as if (select n from t) < 4 update t set n = n + 1
GO
set nocount on
update t set n = 1
select n from t
alter database self set recursive_triggers on
update t set n = 1
select n from t
GO
alter trigger again on t for update as update t set n = n + 1
GO
update t set n = 1
select n from t, (select @@trancount c) x)"),
              R"(
(1)
> level 2 2 of journal_counts
> level 2 2 of journal_counts
> level 3 3 of journal_counts
id|qty
1|0
2|1
n
4
n
2
n
4
Msg 217.16.1 again L1: Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32).
)");
}

TEST_F(Triggers, OfTablesThatACascadeReachesSeeAllItsRows) {
    EXPECT_EQ(Run(R"(
create table part (id int primary key, lot int references lot on delete cascade on update cascade)
create table piece (id int primary key, part int default 0 references part on delete set null)
GO
create trigger part_all on part for update, delete as
set nocount on
print 'part: ' + str((select count(*) from deleted), 1) + str((select count(*) from inserted), 2)
if update(lot) print 'its lot'
if update(id) print 'never here'
GO
create trigger piece_all on piece for update as
print 'piece: ' + str((select count(*) from deleted where part is not null), 1) + str((select count(*) from inserted where part is null), 2)
GO
create trigger lot_all on lot for update, delete as print 'lot: ' + str((select count(*) from deleted), 1)
GO
set nocount on
insert lot (id) select 1 union select 2 union select 3
insert part values (11, 1) insert part values (12, 1) insert part values (21, 2)
insert piece values (1, 11) insert piece values (2, 21)
update lot set id = id + 10 where id < 3
delete lot where id > 10
delete lot where id = 3
select id, part from piece)"),
              R"(
> part: 3 3
> its lot
> lot: 2
> piece: 2 2
> part: 3 0
> lot: 2
> lot: 1
id|part
1|NULL
2|NULL
)");
}

TEST_F(Triggers, SeeIdentitiesAsTheirOwnScopeDoes) {
    EXPECT_EQ(Run(R"(
create table numbered (id int identity(100, 1) primary key, stamp timestamp, twice as id * 2, body varchar(5))
GO
create trigger numbered_journal on numbered for insert as
set nocount on
insert journal (id, became) select twice, str(datalength(stamp), 1) from inserted
GO
insert journal (event) values ('first')
insert numbered (body) values ('x')
select @@identity a, scope_identity() s, ident_current('numbered') i, @@rowcount r
select no, id, became from journal)"),
              R"(
(1)
(1)
a|s|i|r
2|100|100|1
(1)
no|id|became
1|NULL|NULL
2|200|8
(2)
)");
}

/// A script as sites keep them: several statements, cursors over what was written, totals kept by a trigger.
TEST_F(Triggers, OfASiteKeepItsTotals) {
    EXPECT_EQ(Run(R"(
create table dbo.Customer (CustomerID int identity primary key, Name varchar(30), Credit money not null, Owed money not null default 0)
create table dbo.Invoice (InvoiceID int identity primary key, CustomerID int not null references Customer, State char(1) not null default 'O')
create table dbo.InvoiceLine (InvoiceID int not null references Invoice on delete cascade, Line int not null, Amount money not null,
    constraint PK_InvoiceLine primary key (InvoiceID, Line))
create table dbo.History (HistoryID int identity primary key, What varchar(80), Who sysname default suser_sname(), Stamp datetime default getdate())
GO
if exists (select * from sysobjects where name = 'tr_InvoiceLine' and type = 'TR')
    drop trigger dbo.tr_InvoiceLine
GO
create trigger dbo.tr_InvoiceLine on dbo.InvoiceLine with encryption for insert, update, delete not for replication as
begin
    if @@rowcount = 0 return
    set nocount on
    declare @invoice int, @change money, @owed money, @credit money, @name varchar(30)
    if update(InvoiceID) and exists (select * from deleted) and exists (select * from inserted)
    begin
        raiserror ('A line stays with its invoice.', 16, 1)
        rollback transaction
        return
    end
    declare changes cursor local fast_forward for
        select InvoiceID, sum(Amount) from (select InvoiceID, Amount from inserted union all select InvoiceID, -Amount from deleted) c
        group by InvoiceID order by InvoiceID
    open changes
    fetch next from changes into @invoice, @change
    while @@fetch_status = 0
    begin
        update c set Owed = c.Owed + @change from dbo.Customer c join dbo.Invoice i on i.CustomerID = c.CustomerID where i.InvoiceID = @invoice
        select @owed = c.Owed, @credit = c.Credit, @name = c.Name from dbo.Customer c join dbo.Invoice i on i.CustomerID = c.CustomerID
        where i.InvoiceID = @invoice
        if @owed > @credit
        begin
            close changes
            deallocate changes
            raiserror ('%s would owe too much by invoice %d.', 16, 1, @name, @invoice)
            rollback transaction
            return
        end
        fetch next from changes into @invoice, @change
    end
    close changes
    deallocate changes
end
GO
create trigger dbo.tr_Invoice on dbo.Invoice for update, delete as
set nocount on
if update(State) and exists (select * from inserted i join deleted d on d.InvoiceID = i.InvoiceID where d.State = 'C' and i.State <> 'C')
begin
    raiserror ('A closed invoice stays closed.', 16, 1)
    rollback transaction
    return
end
insert dbo.History (What)
select case when i.InvoiceID is null then 'removed ' else 'state ' + d.State + i.State + ' ' end + convert(varchar(10), d.InvoiceID)
from deleted d left join inserted i on i.InvoiceID = d.InvoiceID order by d.InvoiceID
GO
insert Customer (Name, Credit) values ('Ash', 100)
insert Customer (Name, Credit) values ('Birch', 50)
insert Invoice (CustomerID) select CustomerID from Customer
insert InvoiceLine select i.InvoiceID, n.Line, n.Line * 10 from Invoice i cross join (select 1 Line union select 2) n
update InvoiceLine set Amount = Amount + 5 where InvoiceID = 1 and Line = 2
select Name, Owed from Customer
GO
update InvoiceLine set Amount = 500 where Line = 1
print 'never here'
GO
update InvoiceLine set InvoiceID = 2, Line = 3 where InvoiceID = 1 and Line = 1
GO
update Invoice set State = 'C' where InvoiceID = 2
delete InvoiceLine where Amount > 1000
delete InvoiceLine where InvoiceID = 1
delete Invoice where InvoiceID = 1
begin tran
update Invoice set State = 'O'
GO
select Name, Owed, @@trancount n from Customer
select count(*) lines from InvoiceLine
select What, Who from History order by HistoryID)"),
              R"(
(1)
(1)
(2)
(4)
(1)
Name|Owed
Ash|35.0000
Birch|30.0000
(2)
Msg 50000.16.1 tr_InvoiceLine L26: Ash would owe too much by invoice 1.
Msg 3609.16.1 L1: The transaction ended in the trigger. The batch has been aborted.
Msg 50000.16.1 tr_InvoiceLine L8: A line stays with its invoice.
Msg 3609.16.1 L1: The transaction ended in the trigger. The batch has been aborted.
(1)
(0)
(2)
(1)
Msg 50000.16.1 tr_Invoice L5: A closed invoice stays closed.
Msg 3609.16.1 L6: The transaction ended in the trigger. The batch has been aborted.
Name|Owed|n
Ash|0.0000|0
Birch|30.0000|0
(2)
lines
2
(1)
What|Who
state OC 2|sa
removed 1|sa
(2)
)");
}

} // namespace
} // namespace devsql::test

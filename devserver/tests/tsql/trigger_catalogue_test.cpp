// Triggers as objects of a database: what is refused, what the catalogue says, what they survive.
#include "devserver/tests/tsql/trigger_fixture.h"

namespace devsql::test {
namespace {

using TriggerObjects = Triggers;

TEST_F(TriggerObjects, AreRefusedWhereSqlServerRefusesThem) {
    client.Run("create schema other\nGO\ncreate view seen as select id from lot\nGO\n"
               "create table other.far (id int)\ncreate table texts (id int, body text)");
    const std::pair<const char*, int> cases[] = {
        {"create trigger lot_journal on lot for insert as print 1", 2714},
        {"create trigger x on nosuch for insert as print 1", 8197},
        {"create trigger x on seen for insert as print 1", 8197},
        {"create trigger dbo.x on other.far for insert as print 1", 2103},
        {"create trigger x on master.dbo.sysobjects for insert as print 1", 2108},
        {"create trigger tempdb.dbo.x on lot for insert as print 1", 166},
        {"alter trigger lot_journal on texts for insert as print 1", 2110},
        {"alter trigger x on lot for insert as print 1", 208},
        {"alter trigger seen on lot for insert as print 1", 2010},
        {"drop trigger x", 3701},
        {"drop trigger lot", 3705},
        {"drop table lot_journal", 3705},
        {"disable trigger x on lot", 1088},
        {"disable trigger all on nosuch", 1088},
        {"alter table lot enable trigger x", 4920},
        {"alter table nosuch enable trigger all", 4902},
        {"create trigger x on lot instead of insert as print 1", 40517},
        {"create trigger x on database for create_table as print 1", 40517},
        {"create trigger x on all server for logon as print 1", 40517},
        {"create trigger x on #t for insert as print 1", 40517},
        {"create trigger x on lot for insert, insert as print 1", 156},
        {"create trigger x on lot for as print 1", 156},
        {"create trigger x on lot for insert as", 102},
        {"create trigger x on lot as print 1", 156},
        {"print 1 create trigger x on lot for insert as print 1", 111},
        {"insert lot (id) output inserted.id values (1)", 334},
        {"insert texts (id) output inserted.id into lot (id) values (1)", 331},
        {"select * from inserted", 208},
        {"exec sp_settriggerorder 'lot_journal', 'first', 'insert'", 40510}};
    for (const auto& [sql, number] : cases) {
        client.Run(sql);
        ASSERT_FALSE(client.messages.empty()) << sql;
        EXPECT_EQ(client.messages.front().number, number) << sql << ": " << client.messages.front().text;
    }
    EXPECT_EQ(Run(R"(
create trigger wrong on texts for insert as
declare @n int
if (select max(id) from inserted) = 1 delete inserted
if (select max(id) from inserted) = 2 update d set id = 1 from deleted d
if (select max(id) from inserted) = 3 select * from inserted
if (select max(id) from inserted) = 4 select @n = 1 from inserted where body like 'x'
if (select max(id) from inserted) = 5 exec ('select * from inserted')
if (select max(id) from inserted) = 6 and update(nosuch) print 'never here'
if (select max(id) from inserted) = 7 insert lot (id) output inserted.id into texts (id) values (1)
if (select max(id) from inserted) = 8 select id from inserted i
GO
insert texts (id) values (1)
GO
insert texts (id) values (2)
GO
insert texts (id) values (3)
GO
insert texts (id) values (4)
GO
insert texts (id) values (5)
GO
insert texts (id) values (6)
GO
insert texts (id) values (7)
GO
insert texts (id) values (8)
GO
create trigger lot_return on lot for insert as return 1
GO
insert lot (id) values (1))"),
              R"(
Msg 286.16.1 wrong L4: The logical tables INSERTED and DELETED cannot be updated.
Msg 286.16.1 wrong L5: The logical tables INSERTED and DELETED cannot be updated.
Msg 311.16.1 wrong L6: Cannot use text, ntext, or image columns in the 'inserted' and 'deleted' tables.
Msg 311.16.1 wrong L7: Cannot use text, ntext, or image columns in the 'inserted' and 'deleted' tables.
Msg 208.16.1 L1: Invalid object name 'inserted'.
Msg 207.16.1 wrong L9: Invalid column name 'nosuch'.
Msg 207.16.1 wrong L9: Invalid column name 'nosuch'.
Msg 207.16.1 wrong L9: Invalid column name 'nosuch'.
Msg 178.15.1 lot_return L1: A RETURN statement with a return value cannot be used in this context.
)");
}

TEST_F(TriggerObjects, AreInTheCatalogueAndGoWithTheirTable) {
    EXPECT_EQ(Run(R"(
create trigger hidden on lot with encryption after delete as print 1
GO
disable trigger hidden on lot
select name, xtype, type, object_name(parent_obj) p, sysstat from sysobjects where xtype = 'TR' order by name
select object_name(instrig) i, object_name(updtrig) u, object_name(deltrig) d from sysobjects where name = 'lot'
select name, object_name(parent_id) p, is_disabled, is_instead_of_trigger, type_desc from sys.triggers order by name
select object_name(object_id) n, type, type_desc from sys.trigger_events order by 1, 2
select name, type_desc from sys.objects where type = 'TR' order by name
select count(*) n, max(len(definition)) from sys.sql_modules where object_id in (object_id('hidden'), object_id('lot_journal', 'TR'))
select objectproperty(object_id('hidden'), 'IsTrigger') t, objectproperty(object_id('hidden'), 'ExecIsDeleteTrigger') d,
    objectproperty(object_id('hidden'), 'ExecIsInsertTrigger') i, objectproperty(object_id('hidden'), 'ExecIsTriggerDisabled') o,
    objectproperty(object_id('hidden'), 'ExecIsAfterTrigger') a, objectproperty(object_id('hidden'), 'IsConstraint') c
exec sp_helptrigger 'lot'
exec sp_helptrigger 'lot', 'insert'
exec sp_helptrigger 'nosuch'
exec sp_helptrigger 'lot', 'select'
exec sp_helptext 'hidden'
exec sp_helpconstraint 'journal', 'nomsg'
GO
exec sp_rename 'hidden', 'shown'
alter table lot add added int
exec sp_rename 'lot', 'batch'
insert batch (id, added) values (1, 2)
enable trigger shown on batch
delete batch
select event, id from journal
exec sp_helptext 'lot_journal'
drop table batch
select count(*) n from sys.triggers)"),
              R"(
name|xtype|type|p|sysstat
hidden|TR|TR|lot|8
lot_journal|TR|TR|lot|8
(2)
i|u|d
lot_journal|lot_journal|hidden
(1)
name|p|is_disabled|is_instead_of_trigger|type_desc
hidden|lot|1|0|SQL_TRIGGER
lot_journal|lot|0|0|SQL_TRIGGER
(2)
n|type|type_desc
hidden|3|DELETE
lot_journal|1|INSERT
lot_journal|2|UPDATE
lot_journal|3|DELETE
(4)
name|type_desc
hidden|SQL_TRIGGER
lot_journal|SQL_TRIGGER
(2)
n|
2|339
(1)
t|d|i|o|a|c
1|1|0|1|1|0
(1)
trigger_name|trigger_owner|isupdate|isdelete|isinsert|isafter|isinsteadof|trigger_schema
hidden|dbo|0|1|0|1|0|dbo
lot_journal|dbo|1|1|1|1|0|dbo
(2)
trigger_name|trigger_owner|isupdate|isdelete|isinsert|isafter|isinsteadof|trigger_schema
lot_journal|dbo|1|1|1|1|0|dbo
(1)
Msg 15009.16.1 sp_helptrigger L8: The object 'nosuch' does not exist in database 'tempdb' or is invalid for this operation.
return 1
Msg 15305.16.1 sp_helptrigger L13: The @TriggerType parameter value must be 'insert', 'update', or 'delete'.
return 1
> The text for object 'hidden' is encrypted.
> No constraints are defined on object 'journal', or you do not have permissions.
> Caution: Changing any part of an object name could break scripts and stored procedures.
> Caution: Changing any part of an object name could break scripts and stored procedures.
(1)
> 1
(1)
event|id
insert|1
delete|1
(2)
Text
create trigger lot_journal on lot after insert, update, delete as

set nocount on

insert journal (event, id, was, became)

select case when d.id is null then 'insert' when i.id is null then 'delete' else 'update' end,

    coalesce(i.id, d.id), d.name, i.name

from inserted i full join deleted d on d.id = i.id order by coalesce(i.id, d.id)



(7)
n
0
(1)
)");
}

TEST_F(TriggerObjects, SurviveARestartADetachAndANewName) {
    EXPECT_EQ(Run(R"(
use master
create database kept on (name = kept, filename = 'D:\kept.mdf')
GO
use kept
create table t (id int)
GO
create trigger told on t for insert as print db_name() + ' ' + object_name(@@procid)
GO
use master
exec sp_detach_db 'kept'
exec sp_attach_db 'kept', 'D:\kept.mdf'
insert kept.dbo.t values (1)
exec sp_renamedb 'kept', 'other'
insert other.dbo.t values (2))"),
              R"(
> kept told
(1)
> The database name 'other' has been set.
> other told
(1)
)");
    client.Leave();
    server.Start();
    client = server.Login("other");
    EXPECT_EQ(Run("insert t values (3)"), "\n> other told\n(1)\n");
}

} // namespace
} // namespace devsql::test

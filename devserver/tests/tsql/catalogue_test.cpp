// The catalogue: system tables and views, property functions, the procedures that drivers call.
#include "devserver/tests/tsql/test_database.h"
#include "devserver/tsql/catalogue/embedded_sql.h"

namespace devsql::test {
namespace {

class Catalogue : public TsqlTest {
  protected:
    Catalogue() {
        client.Run(R"(
create database Shop
GO
use Shop
exec sp_addtype 'label', 'nvarchar(20)', 'NULL'
create table item (id int identity(1, 1) not null constraint pk_item primary key, name label not null,
    price money null constraint df_price default (0), code char(8) not null constraint uq_code unique,
    constraint ck_price check (price >= 0))
create table sale (id bigint not null, item int not null constraint fk_item references item (id), amount decimal(12, 3) null)
create index ix_sale on sale (item, id desc)
GO
create view cheap as select id, name from item where price < 1
GO
create procedure find_item @name nvarchar(20) = N'%', @count int output as select @count = count(*) from item
)");
    }
};

TEST_F(Catalogue, SysobjectsListsEverything) {
    EXPECT_EQ(Run("select name, xtype, type from sysobjects order by xtype, name"), R"(
name|xtype|type
ck_price|C |C 
df_price|D |D 
fk_item|F |F 
find_item|P |P 
pk_item|PK|K 
item|U |U 
sale|U |U 
uq_code|UQ|K 
cheap|V |V 
(9)
)");
}

TEST_F(Catalogue, SyscolumnsAndInformationSchemaAgree) {
    EXPECT_EQ(Run(R"(
select c.name, t.name type, c.length, c.prec, c.scale, c.isnullable, c.colstat from syscolumns c
join systypes t on t.xusertype = c.xusertype where c.id = object_id('item') order by c.colid
select column_name, ordinal_position, column_default, is_nullable, data_type, character_maximum_length, numeric_precision,
    numeric_scale, domain_name from information_schema.columns where table_name = 'item' order by ordinal_position
select object_name(id), count(*) from syscolumns group by id order by 1)"),
              R"(
name|type|length|prec|scale|isnullable|colstat
id|int|4|10|0|0|1
name|label|40|20|NULL|0|0
price|money|8|19|4|1|0
code|char|8|8|NULL|0|0
(4)
column_name|ordinal_position|column_default|is_nullable|data_type|character_maximum_length|numeric_precision|numeric_scale|domain_name
id|1|NULL|NO|int|NULL|10|0|NULL
name|2|NULL|NO|nvarchar|20|NULL|NULL|label
price|3|(0)|YES|money|NULL|19|4|NULL
code|4|NULL|NO|char|8|NULL|NULL|NULL
(4)
|
cheap|2
find_item|2
item|4
sale|3
(4)
)");
}

TEST_F(Catalogue, NewerViewsShowTheSame) {
    EXPECT_EQ(Run(R"(
select name, type_desc from sys.objects where type = 'U' order by name
select t.name, c.name, c.is_identity, c.is_nullable, c.max_length, c.precision, c.scale from sys.tables t
join sys.columns c on c.object_id = t.object_id where t.name = 'sale' order by c.column_id
select name from sys.procedures
select i.name, i.type_desc, i.is_primary_key from sys.indexes i where i.object_id = object_id('item') order by i.index_id
select name, recovery_model_desc from sys.databases where name = 'Shop'
select table_name, table_type from information_schema.tables order by table_name
select routine_name, routine_type from information_schema.routines
select parameter_name, parameter_mode, data_type from information_schema.parameters order by ordinal_position
select constraint_name, constraint_type from information_schema.table_constraints order by 1)"),
              R"(
name|type_desc
item|USER_TABLE
sale|USER_TABLE
(2)
name|name|is_identity|is_nullable|max_length|precision|scale
sale|id|0|0|8|19|0
sale|item|0|0|4|10|0
sale|amount|0|1|9|12|3
(3)
name
find_item
(1)
name|type_desc|is_primary_key
pk_item|CLUSTERED|1
uq_code|NONCLUSTERED|0
(2)
name|recovery_model_desc
Shop|FULL
(1)
table_name|table_type
cheap|VIEW
item|BASE TABLE
sale|BASE TABLE
(3)
routine_name|routine_type
find_item|PROCEDURE
(1)
parameter_name|parameter_mode|data_type
@name|IN|nvarchar
@count|INOUT|int
(2)
constraint_name|constraint_type
ck_price|CHECK
fk_item|FOREIGN KEY
pk_item|PRIMARY KEY
uq_code|UNIQUE
(4)
)");
}

TEST_F(Catalogue, PropertyFunctionsAnswer) {
    EXPECT_EQ(Run(R"(
select objectproperty(object_id('item'), 'IsUserTable'), objectproperty(object_id(N'[dbo].[find_item]'), N'IsProcedure'),
    objectproperty(object_id('cheap'), 'IsView'), objectproperty(object_id('item'), 'TableHasPrimaryKey'),
    objectproperty(object_id('sale'), 'TableHasPrimaryKey'), objectproperty(1, 'IsUserTable')
select columnproperty(object_id('item'), 'id', 'IsIdentity'), columnproperty(object_id('item'), 'name', 'AllowsNull'),
    col_length('item', 'name'), col_name(object_id('item'), 2), ident_seed('item'), ident_incr('item')
select object_id('nosuch'), object_id('item', 'V'), object_id('Shop..item') - object_id('item'), db_name(), db_name(1), db_id('msdb'),
    user_name(), suser_name(), is_member('db_owner'))"),
              R"(
|||||
1|1|1|1|0|NULL
(1)
|||||
1|0|40|name|1|1
(1)
||||||||
NULL|NULL|0|Shop|master|4|dbo|sa|1
(1)
)");
}

TEST_F(Catalogue, TheServerReportsItsVersionAndThatItIsNotSqlServer) {
    EXPECT_EQ(Run("select @@servername, serverproperty('MachineName'), serverproperty('InstanceName'), "
                  "app_name(), host_name()"),
              R"(
||||
TESTSERVER\KV_BATCH|TESTSERVER|KV_BATCH|tests|TESTHOST
(1)
)");
    client.Run("select @@version");
    EXPECT_NE(std::get<std::string>(client.last_row.at(0)).find("not Microsoft SQL Server"),
              std::string::npos);
}

TEST_F(Catalogue, TheProceduresThatDriversCallReturnTheirResultSets) {
    EXPECT_EQ(Run("exec sp_tables @table_type = \"'TABLE'\""), R"(
TABLE_QUALIFIER|TABLE_OWNER|TABLE_NAME|TABLE_TYPE|REMARKS
Shop|dbo|item|TABLE|NULL
Shop|dbo|sale|TABLE|NULL
(2)
)");
    EXPECT_EQ(Run("exec sp_columns 'sale'"), R"(
TABLE_QUALIFIER|TABLE_OWNER|TABLE_NAME|COLUMN_NAME|DATA_TYPE|TYPE_NAME|PRECISION|LENGTH|SCALE|RADIX|NULLABLE|REMARKS|COLUMN_DEF|SQL_DATA_TYPE|SQL_DATETIME_SUB|CHAR_OCTET_LENGTH|ORDINAL_POSITION|IS_NULLABLE|SS_DATA_TYPE
Shop|dbo|sale|id|-5|bigint|19|8|0|10|0|NULL|NULL|-5|NULL|NULL|1|NO|63
Shop|dbo|sale|item|4|int|10|4|0|10|0|NULL|NULL|4|NULL|NULL|2|NO|56
Shop|dbo|sale|amount|3|decimal|12|14|3|10|1|NULL|NULL|3|NULL|NULL|3|YES|106
(3)
)");
    EXPECT_EQ(Run("exec sp_stored_procedures '%'"), R"(
PROCEDURE_QUALIFIER|PROCEDURE_OWNER|PROCEDURE_NAME|NUM_INPUT_PARAMS|NUM_OUTPUT_PARAMS|NUM_RESULT_SETS|REMARKS|PROCEDURE_TYPE
Shop|dbo|find_item;1|-1|-1|-1|NULL|2
(1)
)");
    EXPECT_EQ(Run("exec sp_sproc_columns 'find_item'"), R"(
PROCEDURE_QUALIFIER|PROCEDURE_OWNER|PROCEDURE_NAME|COLUMN_NAME|COLUMN_TYPE|DATA_TYPE|TYPE_NAME|PRECISION|LENGTH|SCALE|RADIX|NULLABLE|REMARKS|COLUMN_DEF|SQL_DATA_TYPE|SQL_DATETIME_SUB|CHAR_OCTET_LENGTH|ORDINAL_POSITION|IS_NULLABLE|SS_DATA_TYPE
Shop|dbo|find_item;1|@RETURN_VALUE|5|4|int|10|4|0|10|0|NULL|NULL|4|NULL|NULL|0|NO|38
Shop|dbo|find_item;1|@name|1|-9|nvarchar|20|40|NULL|NULL|1|NULL|NULL|-9|NULL|40|1|YES|39
Shop|dbo|find_item;1|@count|2|4|int|10|4|0|10|1|NULL|NULL|4|NULL|NULL|2|YES|38
(3)
)");
}

TEST_F(Catalogue, RolesUsersAndRightsAreKept) {
    EXPECT_EQ(Run(R"(
exec sp_addlogin 'bob', 'pw', 'Shop'
exec sp_grantdbaccess 'bob'
exec sp_addrole 'readers'
exec sp_addrolemember 'readers', 'bob'
grant select, insert on item to readers
deny delete on item to public
select u.name, g.name from sysmembers m join sysusers u on u.uid = m.memberuid join sysusers g on g.uid = m.groupuid where u.name = 'bob'
select user_name(uid), action, protecttype from sysprotects where id = object_id('item') order by action
revoke insert on item from readers
select count(*) from sysprotects
exec sp_droprole 'readers')"),
              R"(
name|name
bob|readers
(1)
|action|protecttype
readers|193|205
readers|195|205
public|196|206
(3)

2
(1)
Msg 15144.16.1 sp_droprole L12: The role has members. It must be empty before it can be dropped.
return 1
)");
    const std::pair<const char*, int> cases[] = {{"exec sp_addlogin 'bob', 'x'", 15025},
                                                 {"exec sp_grantdbaccess 'nobody'", 15007},
                                                 {"exec sp_addrole 'readers'", 15023},
                                                 {"exec sp_addrolemember 'nosuch', 'bob'", 15014},
                                                 {"exec sp_addrolemember 'readers', 'nosuch'", 15410},
                                                 {"grant select on nosuch to bob", 15151},
                                                 {"grant select on item to nosuch", 15151},
                                                 {"exec sp_defaultdb 'nosuch', 'Shop'", 15007}};
    for (const auto& [sql, number] : cases) {
        client.Run(sql);
        ASSERT_FALSE(client.messages.empty()) << sql;
        EXPECT_EQ(client.messages.at(0).number, number) << sql;
    }
}

TEST_F(Catalogue, SyscommentsHoldsTheTextInPiecesOf4000) {
    const std::string filler(9000, 'x');
    client.Run("create procedure long_one as --" + filler + "\nprint 1");
    EXPECT_EQ(Run("select colid, len(text) from syscomments where id = object_id('long_one') order by colid"),
              R"(
colid|
1|4000
2|4000
3|1040
(3)
)");
}

TEST_F(Catalogue, ShowsConstraintsIndexesAndRowCountsToScripts) {
    EXPECT_EQ(Run(R"(
set nocount on
insert item (name, code) values (N'a', 'b')
exec sp_helpindex sale
exec sp_helpconstraint sale, 'nomsg'
select o.name, i.rows from sysobjects o join sysindexes i on i.id = o.id and i.indid < 2 order by o.name
select constraint_name, unique_constraint_name, delete_rule from information_schema.referential_constraints
select constraint_name, check_clause from information_schema.check_constraints
select table_name, column_name, constraint_name from information_schema.constraint_column_usage order by 1, 2
select name, unique_index_id from sys.key_constraints order by name
select s.spid - @@spid, db_name(s.dbid), d.login_name from master..sysprocesses s
join sys.dm_exec_sessions d on d.session_id = s.spid where s.dbid = db_id('Shop')
exec sp_MSforeachtable 'print ''?''')"),
              R"(
index_name|index_description|index_keys
ix_sale|nonclustered located on PRIMARY|item, id(-)
constraint_type|constraint_name|delete_action|update_action|status_enabled|status_for_replication|constraint_keys
FOREIGN KEY|fk_item|NO ACTION|NO ACTION|Enabled|Is_For_Replication|item
 | | | | | |REFERENCES Shop.dbo.item (id)
name|rows
item|1
sale|0
constraint_name|unique_constraint_name|delete_rule
fk_item|pk_item|NO ACTION
constraint_name|check_clause
ck_price|(price >= 0)
table_name|column_name|constraint_name
item|code|uq_code
item|id|pk_item
sale|item|fk_item
name|unique_index_id
pk_item|1
uq_code|2
||login_name
0|Shop|sa
> [dbo].[item]
> [dbo].[sale]
)");
}

TEST_F(Catalogue, AUserTypeIsFoundUnderItsOwnNumberAndName) {
    EXPECT_EQ(Run(R"(
create table typed (a label, b sysname, c int)
GO
create procedure takes @a label as return
GO
select c.name, t.name type, b.name below from syscolumns c join systypes t on t.xusertype = c.xusertype
join systypes b on b.xusertype = c.xtype where c.id = object_id('typed') order by c.colid
select c.name, t.name old from syscolumns c join systypes t on t.usertype = c.usertype where c.id = object_id('typed')
order by c.colid
select c.name, t.name type, t.is_user_defined, type_name(c.user_type_id) named, type_id(t.name) - c.user_type_id same
from sys.columns c join sys.types t on t.user_type_id = c.user_type_id where object_id = object_id('typed') order by column_id
select type_name(user_type_id) type from sys.parameters where object_id = object_id('takes')
select type_id('nothing') no, type_name(999) no)"),
              R"(
name|type|below
a|label|nvarchar
b|sysname|nvarchar
c|int|int
(3)
name|old
a|label
b|sysname
c|int
(3)
name|type|is_user_defined|named|same
a|label|1|label|0
b|sysname|0|sysname|0
c|int|0|int|0
(3)
type
label
(1)
no|no
NULL|NULL
(1)
)");
    EXPECT_EQ(Run(R"(
create table #help (name sysname, type sysname, computed varchar(3), length int, prec int null, scale int null,
    nullable varchar(3), collation sysname null)
create table #columns (q sysname, o sysname, t sysname, name sysname, dt int, type sysname, p int, l int, s int null,
    r int null, n int, rem varchar(9) null, d varchar(9) null, sdt int, sub int null, oct int null, pos int,
    isn varchar(3), ss int)
insert #columns exec sp_columns 'typed'
select name, dt, type, p, l, ss from #columns order by pos)"),
              R"(
(3)
name|dt|type|p|l|ss
a|-9|label|20|40|39
b|-9|sysname|128|256|39
c|4|int|10|4|38
(3)
)");
    EXPECT_NE(Run("exec sp_help 'typed'").find("\na|label|no|40|"), std::string::npos);
    EXPECT_NE(Run("exec sp_help 'takes'").find("\n@a|label|40|"), std::string::npos);
}

TEST_F(Catalogue, ACheckOfOneColumnIsListedWithThatColumn) {
    EXPECT_EQ(Run(R"(
create table checked (low int check (low > 0), high int constraint ck_high check ([high] < 9),
    note varchar(9) constraint df_note default '', constraint ck_order check (low < high and len(note) < 9))
select name, col_name(parent_object_id, parent_column_id) col from sys.check_constraints
where parent_object_id = object_id('checked') and name like 'ck[_]_%' and name not like 'CK[_][_]%' order by name
select left(o.name, 18) name, n.colid from sysconstraints n join sysobjects o on o.id = n.constid
where n.id = object_id('checked') order by 2, 1)"),
              R"(
name|col
ck_high|high
ck_order|NULL
(2)
name|colid
ck_order|0
CK__checked__low__|1
ck_high|2
df_note|3
(4)
)");
    const std::string told = Run("exec sp_helpconstraint 'checked', 'nomsg'");
    EXPECT_NE(told.find("\nCHECK on column high|ck_high|"), std::string::npos) << told;
    EXPECT_NE(told.find("\nCHECK Table Level|ck_order|"), std::string::npos) << told;
    EXPECT_NE(told.find("\nDEFAULT on column note|df_note|"), std::string::npos) << told;
}

TEST_F(Catalogue, EveryViewHasTheColumnsThatItsFileNames) {
    int views = 0;
    for (const std::string_view file : {embedded::kSystemTables, embedded::kSysViews,
                                        embedded::kInformationSchema, embedded::kServerViews}) {
        for (const std::string_view batch : embedded::Batches(file)) {
            constexpr std::string_view kCreate = "CREATE VIEW ";
            const std::string_view view = batch.substr(batch.find(kCreate) + kCreate.size());
            const std::string name(view.substr(0, view.find(" (\n")));
            EXPECT_EQ(Run("select * from " + name + " where 1 = 0").find("Msg "), std::string::npos)
                << Run("select * from " + name);
            ++views;
        }
    }
    EXPECT_GE(views, 60);
}

} // namespace
} // namespace devsql::test

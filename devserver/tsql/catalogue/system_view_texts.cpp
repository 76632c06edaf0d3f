// Each view: its schema, name, columns with their types, and the query. {db} is the database's alias in
// SQLite, {name} the database's name as a text, {types} a table of the server's types. Bytes and precision of
// a column follow from its type by the expressions below.
#include "devserver/tsql/catalogue/system_view_texts.h"

#include <array>

// Bytes that a column takes, digits or characters, and digits behind the point, of a row c of devsql_columns
// joined with t of {types}.
#define COLUMN_BYTES                                                                                         \
    "CASE WHEN c.length = -1 THEN -1 WHEN t.type_name IN ('nchar', 'nvarchar') THEN c.length * 2 "           \
    "WHEN t.type_name IN ('char', 'varchar', 'binary', 'varbinary') THEN c.length "                          \
    "WHEN t.type_name IN ('decimal', 'numeric') THEN CASE WHEN c.precision <= 9 THEN 5 WHEN c.precision <= " \
    "19 THEN 9 "                                                                                             \
    "WHEN c.precision <= 28 THEN 13 ELSE 17 END WHEN t.type_name IN ('text', 'ntext', 'image') THEN 16 "     \
    "ELSE t.bytes END"
#define COLUMN_DIGITS                                                                                        \
    "CASE WHEN t.type_name IN ('nchar', 'nvarchar', 'char', 'varchar', 'binary', 'varbinary') THEN "         \
    "c.length "                                                                                              \
    "WHEN t.type_name IN ('decimal', 'numeric') THEN c.precision WHEN t.digits = 0 THEN NULL ELSE t.digits " \
    "END"
#define COLUMN_SCALE                                                                                         \
    "CASE WHEN t.type_name IN ('decimal', 'numeric') THEN c.scale WHEN t.type_name IN ('money', "            \
    "'smallmoney') "                                                                                         \
    "THEN 4 WHEN t.type_name = 'datetime' THEN 3 WHEN t.type_name IN ('int', 'bigint', 'smallint', "         \
    "'tinyint', "                                                                                            \
    "'smalldatetime') THEN 0 ELSE NULL END"
// The number of a column's or parameter's user type in systypes and sys.types; without a user type, the
// number of its system type.
#define USER_TYPE(below, system_name)                                                                        \
    "CASE coalesce(c.user_type, '') WHEN '' THEN " below " WHEN 'sysname' THEN " system_name                 \
    " ELSE (SELECT 256 + u.rowid FROM {db}.devsql_types u WHERE u.schema || '.' || u.name = c.user_type) "   \
    "END"
#define SCHEMA_ID                                                                                            \
    "CASE WHEN o.schema = 'dbo' THEN 1 ELSE (SELECT s.rowid + 10 FROM {db}.devsql_schemas s WHERE s.name = " \
    "o.schema) END"

// The column of a constraint o that concerns one column alone; 0 for any other.
#define CONSTRAINT_COLUMN                                                                                    \
    "coalesce(CASE o.type WHEN 'C' THEN tsql_check_column({name}, o.id) WHEN 'D' THEN (SELECT d.id FROM "    \
    "{db}.devsql_columns d WHERE d.object = o.parent AND d.default_id = o.id) END, 0)"

namespace devsql {
namespace {

constexpr std::array kViews = {
    // ---------------------------------------------------------------- SQL Server 2000's tables
    SystemViewSource{
        "", "sysobjects",
        "name sysname, id int, xtype char(2), uid smallint, info smallint, status int, "
        "base_schema_ver int, replinfo int, "
        "parent_obj int, crdate datetime, ftcatid smallint, schema_ver int, stats_schema_ver "
        "int, type char(2), "
        "userstat smallint, sysstat smallint, indexdel smallint, refdate datetime, version int, "
        "deltrig int, instrig int, "
        "updtrig int, seltrig int, category int, cache smallint",
        "SELECT o.name, o.id, CASE WHEN length(o.type) = 1 THEN o.type || ' ' ELSE o.type END "
        "AS xtype, 1 AS uid, 0 AS info, "
        "0 AS status, 0 AS base_schema_ver, 0 AS replinfo, o.parent AS parent_obj, o.created AS "
        "crdate, 0 AS ftcatid, "
        "0 AS schema_ver, 0 AS stats_schema_ver, CASE WHEN o.type IN ('PK', 'UQ') THEN 'K ' "
        "WHEN length(o.type) = 1 THEN "
        "o.type || ' ' ELSE o.type END AS type, 1 AS userstat, CASE o.type WHEN 'U' THEN 3 WHEN 'V' THEN 2 "
        "WHEN 'P' THEN 4 WHEN 'PK' THEN 9 WHEN 'UQ' THEN 9 WHEN 'F' THEN 11 WHEN 'C' THEN 7 "
        "WHEN 'D' THEN 6 ELSE 0 END AS sysstat, 0 AS indexdel, "
        "o.created AS refdate, "
        "0 AS version, 0 AS deltrig, 0 AS instrig, 0 AS updtrig, 0 AS seltrig, CASE WHEN "
        "o.shipped THEN 2 ELSE 0 END AS "
        "category, 0 AS cache FROM {db}.devsql_objects o"},
    SystemViewSource{
        "", "syscolumns",
        "name sysname, id int, xtype tinyint, typestat tinyint, xusertype smallint, length smallint, xprec "
        "tinyint, "
        "xscale tinyint, colid smallint, xoffset smallint, bitpos tinyint, reserved tinyint, colstat "
        "smallint, cdefault int, "
        "domain int, number smallint, colorder smallint, autoval varbinary(255), offset smallint, status "
        "tinyint, "
        "type tinyint, usertype smallint, printfmt varchar(255), prec smallint, scale int, iscomputed int, "
        "isoutparam int, "
        "isnullable int, collation sysname",
        "SELECT c.name, c.object AS id, t.xtype, 0 AS typestat, " USER_TYPE(
            "t.xtype",
            "256") " AS xusertype, " COLUMN_BYTES " AS length, "
                   "c.precision AS xprec, c.scale AS xscale, c.id AS colid, 0 AS xoffset, 0 AS bitpos, 0 AS "
                   "reserved, "
                   "CASE WHEN c.identity THEN 1 ELSE 0 END AS colstat, coalesce(c.default_id, 0) AS "
                   "cdefault, 0 AS "
                   "domain, "
                   "0 AS number, coalesce(c.position, 0) + 1 AS colorder, NULL AS autoval, 0 AS offset, "
                   "(CASE WHEN c.nullable THEN 8 ELSE 0 END) + (CASE WHEN c.identity THEN 128 ELSE 0 END) + "
                   "(CASE WHEN c.output THEN 64 ELSE 0 END) AS status, t.tds AS type, " USER_TYPE(
                       "t.usertype",
                       "18") " AS usertype, NULL AS "
                             "printfmt, " COLUMN_DIGITS " AS prec, " COLUMN_SCALE
                             " AS scale, CASE WHEN coalesce(c.computed, '') <> '' THEN 1 ELSE 0 END AS "
                             "iscomputed, coalesce(c.output, 0) AS isoutparam, c.nullable AS isnullable, "
                             "CASE WHEN t.type_name IN "
                             "('char', "
                             "'varchar', 'nchar', 'nvarchar', 'text', 'ntext') THEN "
                             "'SQL_Latin1_General_CP1_CI_AS' END AS "
                             "collation "
                             "FROM {db}.devsql_columns c CROSS JOIN {types} t ON t.type = c.type"},
    SystemViewSource{
        "", "sysindexes",
        "id int, status int, first binary(6), indid smallint, root binary(6), minlen smallint, keycnt "
        "smallint, "
        "groupid smallint, dpages int, reserved int, used int, rowcnt bigint, rowmodctr int, name sysname, "
        "rows int",
        "SELECT i.object AS id, (CASE WHEN i.is_unique THEN 2 ELSE 0 END) + (CASE WHEN i.clustered THEN 16 "
        "ELSE 0 END) + "
        "(CASE WHEN i.primary_key THEN 2048 ELSE 0 END) + (CASE WHEN i.is_constraint AND NOT i.primary_key "
        "THEN 4096 ELSE 0 "
        "END) AS status, NULL AS first, i.id AS indid, NULL AS root, 0 AS minlen, (SELECT count(*) FROM "
        "{db}.devsql_index_columns k WHERE k.object = i.object AND k.id = i.id) AS keycnt, 1 AS groupid, 0 "
        "AS dpages, "
        "0 AS reserved, 0 AS used, tsql_rows({name}, i.object) AS rowcnt, 0 AS rowmodctr, i.name, "
        "tsql_rows({name}, i.object) AS rows FROM {db}.devsql_indexes i "
        "UNION ALL SELECT o.id, 0, NULL, 0, NULL, 0, 0, 1, 0, 0, 0, tsql_rows({name}, o.id), 0, o.name, "
        "tsql_rows({name}, o.id) FROM {db}.devsql_objects "
        "o WHERE "
        "o.type = 'U' AND NOT EXISTS (SELECT 1 FROM {db}.devsql_indexes i WHERE i.object = o.id AND "
        "i.clustered)"},
    SystemViewSource{"", "sysindexkeys", "id int, indid smallint, colid smallint, keyno smallint",
                     "SELECT object AS id, id AS indid, column_id AS colid, ordinal AS keyno FROM "
                     "{db}.devsql_index_columns"},
    SystemViewSource{"", "sysforeignkeys",
                     "constid int, fkeyid int, rkeyid int, fkey smallint, rkey smallint, keyno smallint",
                     "SELECT k.id AS constid, k.object AS fkeyid, k.referenced AS rkeyid, c.column_id AS "
                     "fkey, c.referenced_column AS "
                     "rkey, c.ordinal AS keyno FROM {db}.devsql_foreign_keys k JOIN "
                     "{db}.devsql_foreign_key_columns c ON c.id = k.id"},
    SystemViewSource{
        "", "sysreferences", "constid int, fkeyid int, rkeyid int, rkeyindid smallint, keycnt smallint",
        "SELECT k.id AS constid, k.object AS fkeyid, k.referenced AS rkeyid, 1 AS rkeyindid, (SELECT "
        "count(*) FROM "
        "{db}.devsql_foreign_key_columns c WHERE c.id = k.id) AS keycnt FROM {db}.devsql_foreign_keys k"},
    SystemViewSource{"", "sysconstraints", "constid int, id int, colid smallint, status int",
                     "SELECT o.id AS constid, o.parent AS id, " CONSTRAINT_COLUMN
                     " AS colid, CASE o.type WHEN 'PK' THEN 1 WHEN "
                     "'UQ' THEN 2 WHEN 'F' THEN 3 "
                     "WHEN 'C' THEN 4 ELSE 5 END AS status FROM {db}.devsql_objects o WHERE o.type IN ('PK', "
                     "'UQ', 'F', 'C', 'D')"},
    SystemViewSource{
        "", "syscomments",
        "id int, number smallint, colid smallint, status smallint, ctext varbinary(8000), texttype smallint, "
        "language smallint, encrypted bit, compressed bit, text nvarchar(4000)",
        "WITH RECURSIVE piece(id, number, part, encrypted) AS (SELECT id, 1, text, encrypted FROM "
        "{db}.devsql_objects WHERE "
        "text <> '' UNION ALL SELECT id, number + 1, substr(part, 4001), encrypted FROM piece WHERE "
        "length(part) > 4000) "
        "SELECT id, 1 AS number, number AS colid, 2 AS status, NULL AS ctext, 2 AS texttype, 0 AS language, "
        "encrypted, "
        "0 AS compressed, CASE WHEN encrypted THEN NULL ELSE substr(part, 1, 4000) END AS text FROM piece"},
    SystemViewSource{
        "", "systypes",
        "name sysname, xtype tinyint, status tinyint, xusertype smallint, length smallint, xprec tinyint, "
        "xscale tinyint, "
        "tdefault int, domain int, uid smallint, reserved smallint, collationid int, usertype smallint, "
        "variable bit, "
        "allownulls bit, type tinyint, prec smallint, scale tinyint, collation sysname",
        "SELECT t.type_name AS name, t.xtype, 0 AS status, t.xtype AS xusertype, t.bytes AS length, t.digits "
        "AS xprec, "
        "0 AS xscale, 0 AS tdefault, 0 AS domain, 4 AS uid, 0 AS reserved, NULL AS collationid, t.usertype, "
        "t.type_name IN ('varchar', 'nvarchar', 'varbinary') AS variable, 1 AS allownulls, t.tds AS type, "
        "t.digits AS prec, "
        "0 AS scale, NULL AS collation FROM {types} t UNION ALL SELECT 'sysname', 231, 0, 256, 256, 0, 0, 0, "
        "0, 4, 0, NULL, "
        "18, 1, 0, 39, 128, 0, NULL UNION ALL SELECT c.name, t.xtype, 0, 256 + c.rowid, " COLUMN_BYTES
        ", c.precision, c.scale, 0, 0, 1, 0, NULL, 256 + c.rowid, 0, c.nullable, t.tds, " COLUMN_DIGITS
        ", " COLUMN_SCALE ", NULL FROM {db}.devsql_types c JOIN {types} t ON t.type = c.type"},
    SystemViewSource{
        "", "sysusers",
        "uid smallint, status smallint, name sysname, sid varbinary(85), createdate datetime, updatedate "
        "datetime, "
        "altuid smallint, gid smallint, hasdbaccess int, islogin int, isntname int, isntgroup int, isntuser "
        "int, "
        "issqluser int, isaliased int, issqlrole int, isapprole int",
        "SELECT u.id AS uid, 0 AS status, u.name, CASE WHEN u.id = 1 THEN coalesce((SELECT l.sid FROM "
        "main.devsql_databases d "
        "JOIN main.devsql_logins l ON l.name = d.owner WHERE d.name = {name}), x'01') ELSE (SELECT l.sid "
        "FROM "
        "main.devsql_logins l WHERE l.name = u.login) END AS sid, u.created AS createdate, u.created AS "
        "updatedate, "
        "NULL AS altuid, CASE WHEN u.role THEN u.id ELSE 0 END AS gid, CASE WHEN u.role THEN 0 ELSE 1 END AS "
        "hasdbaccess, "
        "CASE WHEN u.role THEN 0 ELSE 1 END AS islogin, 0 AS isntname, 0 AS isntgroup, 0 AS isntuser, "
        "CASE WHEN u.role THEN 0 ELSE 1 END AS issqluser, 0 AS isaliased, u.role AS issqlrole, 0 AS "
        "isapprole "
        "FROM {db}.devsql_users u"},
    SystemViewSource{"", "sysmembers", "memberuid smallint, groupuid smallint",
                     "SELECT member AS memberuid, role AS groupuid FROM {db}.devsql_members"},
    SystemViewSource{
        "", "sysprotects",
        "id int, uid smallint, action tinyint, protecttype tinyint, columns varbinary(4000), grantor "
        "smallint",
        "SELECT p.object AS id, p.grantee AS uid, CASE p.permission WHEN 'SELECT' THEN 193 WHEN 'INSERT' "
        "THEN 195 WHEN "
        "'DELETE' THEN 196 WHEN 'UPDATE' THEN 197 WHEN 'EXECUTE' THEN 224 WHEN 'REFERENCES' THEN 26 ELSE 0 "
        "END AS action, "
        "CASE p.state WHEN 'DENY' THEN 206 ELSE 205 END AS protecttype, NULL AS columns, 1 AS grantor "
        "FROM {db}.devsql_permissions p"},
    SystemViewSource{"", "sysfilegroups",
                     "groupid smallint, allocpolicy smallint, status int, groupname sysname",
                     "SELECT 1 AS groupid, 0 AS allocpolicy, 16 AS status, 'PRIMARY' AS groupname"},
    SystemViewSource{"", "sysfiles",
                     "fileid smallint, groupid smallint, size int, maxsize int, growth int, status int, perf "
                     "int, name nchar(128), "
                     "filename nchar(260)",
                     "SELECT f.id AS fileid, CASE WHEN f.log THEN 0 ELSE 1 END AS groupid, CAST(f.size AS "
                     "INTEGER) / 8 AS size, "
                     "-1 AS maxsize, 10 AS growth, CASE WHEN f.log THEN 66 ELSE 2 END AS status, 0 AS perf, "
                     "f.name, f.client_path AS "
                     "filename FROM main.devsql_files f JOIN main.devsql_databases d ON d.id = f.database "
                     "WHERE d.name = {name}"},
    SystemViewSource{"", "sysaltfiles",
                     "fileid smallint, groupid smallint, size int, maxsize int, growth int, status int, perf "
                     "int, dbid smallint, name nchar(128), filename nchar(260)",
                     "SELECT f.id AS fileid, CASE WHEN f.log THEN 0 ELSE 1 END AS groupid, CAST(f.size AS "
                     "INTEGER) / 8 AS size, -1 AS maxsize, 10 AS growth, CASE WHEN f.log THEN 66 ELSE 2 END "
                     "AS status, 0 AS perf, f.database AS dbid, f.name, f.client_path AS filename FROM "
                     "main.devsql_files f"},
    // ---------------------------------------------------------------- of the server
    SystemViewSource{
        "", "sysdatabases",
        "name sysname, dbid smallint, sid varbinary(85), mode smallint, status int, status2 int, crdate "
        "datetime, "
        "reserved datetime, category int, cmptlevel tinyint, filename nvarchar(260), version smallint",
        "SELECT d.name, d.id AS dbid, (SELECT l.sid FROM main.devsql_logins l WHERE l.name = d.owner) AS "
        "sid, 0 AS mode, "
        "CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = "
        "'SINGLE_USER' AND "
        "p.value = 'ON') THEN 4096 ELSE 0 END + 24 AS status, 0 AS status2, d.created AS crdate, 0 AS "
        "reserved, "
        "CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = "
        "'PUBLISHED' AND "
        "p.value = 'ON') THEN 1 ELSE 0 END + CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p WHERE "
        "p.database = d.id AND p.name = 'DISTRIBUTOR' AND p.value = 'ON') THEN 16 ELSE 0 END AS category, 80 "
        "AS cmptlevel, (SELECT f.client_path FROM "
        "main.devsql_files f "
        "WHERE f.database = d.id AND f.id = 1) AS filename, 539 AS version FROM main.devsql_databases d"},
    SystemViewSource{
        "", "syslogins",
        "sid varbinary(85), status smallint, createdate datetime, updatedate datetime, name sysname, dbname "
        "sysname, "
        "language sysname, denylogin int, hasaccess int, isntname int, isntgroup int, isntuser int, sysadmin "
        "int, "
        "securityadmin int, serveradmin int, setupadmin int, processadmin int, diskadmin int, dbcreator int, "
        "bulkadmin int, loginname sysname",
        "SELECT sid, 9 AS status, created AS createdate, created AS updatedate, name, coalesce(database, "
        "'master') AS dbname, "
        "'us_english' AS language, 0 AS denylogin, 1 AS hasaccess, 0 AS isntname, 0 AS isntgroup, 0 AS "
        "isntuser, "
        "administrator AS sysadmin, 0 AS securityadmin, 0 AS serveradmin, 0 AS setupadmin, 0 AS "
        "processadmin, 0 AS diskadmin, "
        "0 AS dbcreator, 0 AS bulkadmin, name AS loginname FROM main.devsql_logins"},
    SystemViewSource{"", "sysxlogins", "name sysname, sid varbinary(85)",
                     "SELECT name, sid FROM main.devsql_logins"},
    // ---------------------------------------------------------------- SQL Server 2005's views
    SystemViewSource{
        "sys", "databases",
        "name sysname, database_id int, source_database_id int, owner_sid varbinary(85), create_date "
        "datetime, "
        "compatibility_level tinyint, collation_name sysname, user_access tinyint, user_access_desc "
        "nvarchar(60), "
        "is_read_only bit, state tinyint, state_desc nvarchar(60), recovery_model tinyint, "
        "recovery_model_desc nvarchar(60), "
        "is_published bit, is_subscribed bit",
        "SELECT d.name, d.id AS database_id, NULL AS source_database_id, (SELECT l.sid FROM "
        "main.devsql_logins l WHERE "
        "l.name = d.owner) AS owner_sid, d.created AS create_date, 140 AS compatibility_level, "
        "'SQL_Latin1_General_CP1_CI_AS' AS collation_name, coalesce((SELECT p.value = 'ON' FROM "
        "main.devsql_options p WHERE "
        "p.database = d.id AND p.name = 'SINGLE_USER'), 0) AS user_access, CASE WHEN EXISTS (SELECT 1 FROM "
        "main.devsql_options p WHERE p.database = d.id AND p.name = 'SINGLE_USER' AND p.value = 'ON') THEN "
        "'SINGLE_USER' ELSE "
        "'MULTI_USER' END AS user_access_desc, 0 AS is_read_only, "
        "CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = "
        "'OFFLINE' "
        "AND p.value = 'ON') THEN 6 ELSE 0 END AS state, "
        "CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = "
        "'OFFLINE' "
        "AND p.value = 'ON') THEN 'OFFLINE' ELSE 'ONLINE' END AS state_desc, "
        "CASE coalesce((SELECT p.value FROM main.devsql_options p WHERE p.database = d.id AND p.name = "
        "'RECOVERY'), 'FULL') "
        "WHEN 'SIMPLE' THEN 3 WHEN 'BULK_LOGGED' THEN 2 ELSE 1 END AS recovery_model, coalesce((SELECT "
        "p.value FROM "
        "main.devsql_options p WHERE p.database = d.id AND p.name = 'RECOVERY'), 'FULL') AS "
        "recovery_model_desc, "
        "EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = 'PUBLISHED' AND "
        "p.value = 'ON') AS is_published, 0 AS is_subscribed FROM main.devsql_databases d"},
    SystemViewSource{
        "sys", "objects",
        "name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2), "
        "type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit, is_published "
        "bit",
        "SELECT o.name, o.id AS object_id, NULL AS principal_id, " SCHEMA_ID
        " AS schema_id, o.parent AS parent_object_id, "
        "CASE WHEN length(o.type) = 1 THEN o.type || ' ' ELSE o.type END AS type, CASE o.type WHEN 'U' THEN "
        "'USER_TABLE' WHEN "
        "'V' THEN 'VIEW' WHEN 'P' THEN 'SQL_STORED_PROCEDURE' WHEN 'FN' THEN 'SQL_SCALAR_FUNCTION' WHEN 'PK' "
        "THEN 'PRIMARY_KEY_CONSTRAINT' WHEN "
        "'UQ' THEN "
        "'UNIQUE_CONSTRAINT' WHEN 'F' THEN 'FOREIGN_KEY_CONSTRAINT' WHEN 'C' THEN 'CHECK_CONSTRAINT' ELSE "
        "'DEFAULT_CONSTRAINT' END AS type_desc, o.created AS create_date, o.created AS modify_date, "
        "o.shipped AS "
        "is_ms_shipped, 0 AS is_published FROM {db}.devsql_objects o"},
    SystemViewSource{
        "sys", "tables",
        "name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2), "
        "type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit",
        "SELECT o.name, o.id AS object_id, NULL AS principal_id, " SCHEMA_ID
        " AS schema_id, 0 AS parent_object_id, 'U ' AS "
        "type, 'USER_TABLE' AS type_desc, o.created AS create_date, o.created AS modify_date, o.shipped AS "
        "is_ms_shipped "
        "FROM {db}.devsql_objects o WHERE o.type = 'U'"},
    SystemViewSource{
        "sys", "views",
        "name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2), "
        "type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit",
        "SELECT o.name, o.id AS object_id, NULL AS principal_id, " SCHEMA_ID
        " AS schema_id, 0 AS parent_object_id, 'V ' AS "
        "type, 'VIEW' AS type_desc, o.created AS create_date, o.created AS modify_date, o.shipped AS "
        "is_ms_shipped "
        "FROM {db}.devsql_objects o WHERE o.type = 'V'"},
    SystemViewSource{
        "sys", "procedures",
        "name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2), "
        "type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit",
        "SELECT o.name, o.id AS object_id, NULL AS principal_id, " SCHEMA_ID
        " AS schema_id, 0 AS parent_object_id, 'P ' AS "
        "type, 'SQL_STORED_PROCEDURE' AS type_desc, o.created AS create_date, o.created AS modify_date, "
        "o.shipped AS "
        "is_ms_shipped FROM {db}.devsql_objects o WHERE o.type = 'P'"},
    SystemViewSource{
        "sys", "columns",
        "object_id int, name sysname, column_id int, system_type_id tinyint, user_type_id int, max_length "
        "smallint, "
        "precision tinyint, scale tinyint, collation_name sysname, is_nullable bit, is_ansi_padded bit, "
        "is_rowguidcol bit, "
        "is_identity bit, is_computed bit, default_object_id int",
        "SELECT c.object AS object_id, c.name, c.id AS column_id, t.xtype AS system_type_id, " USER_TYPE(
            "t.xtype",
            "256") " AS "
                   "user_type_id, " COLUMN_BYTES
                   " AS max_length, coalesce(CASE WHEN t.type_name IN ('char', 'varchar', "
                   "'nchar', 'nvarchar', 'binary', "
                   "'varbinary') THEN 0 ELSE " COLUMN_DIGITS " END, 0) AS precision, coalesce(" COLUMN_SCALE
                   ", 0) AS scale, "
                   "CASE WHEN t.type_name IN ('char', 'varchar', 'nchar', 'nvarchar', 'text', 'ntext') THEN "
                   "'SQL_Latin1_General_CP1_CI_AS' END AS collation_name, c.nullable AS is_nullable, 1 AS "
                   "is_ansi_padded, c.row_guid AS "
                   "is_rowguidcol, c.identity AS is_identity, coalesce(c.computed, '') <> '' AS is_computed, "
                   "coalesce(c.default_id, 0) AS "
                   "default_object_id FROM {db}.devsql_columns c CROSS JOIN {types} t ON t.type = c.type "
                   "CROSS JOIN "
                   "{db}.devsql_objects o ON "
                   "o.id = c.object AND o.type IN ('U', 'V')"},
    SystemViewSource{
        "sys", "parameters",
        "object_id int, name sysname, parameter_id int, system_type_id tinyint, user_type_id "
        "int, max_length smallint, "
        "precision tinyint, scale tinyint, is_output bit, has_default_value bit",
        "SELECT c.object AS object_id, c.name, CASE c.name WHEN '' THEN 0 ELSE c.id END AS parameter_id, "
        "t.xtype AS system_type_id, " USER_TYPE(
            "t.xtype",
            "256") " AS user_type_id, " COLUMN_BYTES
                   " AS max_length, c.precision, c.scale, c.output AS is_output, 0 AS has_default_value "
                   "FROM {db}.devsql_columns c CROSS JOIN {types} t ON t.type = c.type CROSS JOIN "
                   "{db}.devsql_objects "
                   "o ON o.id = c.object AND "
                   "o.type IN ('P', 'FN')"},
    SystemViewSource{"sys", "indexes",
                     "object_id int, name sysname, index_id int, type tinyint, type_desc nvarchar(60), "
                     "is_unique bit, is_primary_key bit, "
                     "is_unique_constraint bit, is_disabled bit",
                     "SELECT i.object AS object_id, i.name, i.id AS index_id, CASE WHEN i.clustered THEN 1 "
                     "ELSE 2 END AS type, CASE WHEN "
                     "i.clustered THEN 'CLUSTERED' ELSE 'NONCLUSTERED' END AS type_desc, i.is_unique, "
                     "i.primary_key AS is_primary_key, "
                     "i.is_constraint AND NOT i.primary_key AS is_unique_constraint, 0 AS is_disabled FROM "
                     "{db}.devsql_indexes i"},
    SystemViewSource{
        "sys", "foreign_keys",
        "name sysname, object_id int, parent_object_id int, referenced_object_id int, is_disabled bit, "
        "delete_referential_action tinyint, update_referential_action tinyint",
        "SELECT o.name, k.id AS object_id, k.object AS parent_object_id, k.referenced AS "
        "referenced_object_id, o.disabled AS "
        "is_disabled, k.on_delete AS delete_referential_action, k.on_update AS update_referential_action "
        "FROM "
        "{db}.devsql_foreign_keys k JOIN {db}.devsql_objects o ON o.id = k.id"},
    SystemViewSource{
        "sys", "check_constraints",
        "name sysname, object_id int, parent_object_id int, definition nvarchar(max), is_disabled bit, "
        "parent_column_id int",
        "SELECT o.name, o.id AS object_id, o.parent AS parent_object_id, o.text AS definition, o.disabled AS "
        "is_disabled, " CONSTRAINT_COLUMN " AS parent_column_id FROM "
        "{db}.devsql_objects o WHERE o.type = 'C'"},
    SystemViewSource{
        "sys", "default_constraints",
        "name sysname, object_id int, parent_object_id int, parent_column_id int, definition nvarchar(max)",
        "SELECT o.name, o.id AS object_id, o.parent AS parent_object_id, (SELECT c.id FROM "
        "{db}.devsql_columns c WHERE "
        "c.object = o.parent AND c.default_id = o.id) AS parent_column_id, o.text AS definition FROM "
        "{db}.devsql_objects o "
        "WHERE o.type = 'D'"},
    SystemViewSource{"sys", "schemas", "name sysname, schema_id int, principal_id int",
                     "SELECT s.name, CASE WHEN s.name = 'dbo' THEN 1 ELSE s.rowid + 10 END AS schema_id, 1 "
                     "AS principal_id FROM "
                     "{db}.devsql_schemas s"},
    SystemViewSource{"sys", "types",
                     "name sysname, system_type_id tinyint, user_type_id int, schema_id int, max_length "
                     "smallint, precision tinyint, "
                     "scale tinyint, is_nullable bit, is_user_defined bit",
                     "SELECT t.type_name AS name, t.xtype AS system_type_id, t.xtype AS user_type_id, 4 AS "
                     "schema_id, t.bytes AS "
                     "max_length, t.digits AS precision, 0 AS scale, 1 AS is_nullable, 0 AS is_user_defined "
                     "FROM {types} t UNION ALL SELECT 'sysname', 231, 256, 4, 256, 0, 0, 0, 0 UNION ALL "
                     "SELECT c.name, t.xtype, 256 + c.rowid, 1, " COLUMN_BYTES
                     ", c.precision, c.scale, c.nullable, 1 FROM "
                     "{db}.devsql_types c JOIN {types} t ON t.type = c.type"},
    SystemViewSource{
        "sys", "database_principals",
        "name sysname, principal_id int, type char(1), type_desc nvarchar(60), default_schema_name sysname, "
        "create_date datetime, sid varbinary(85), is_fixed_role bit",
        "SELECT u.name, u.id AS principal_id, CASE WHEN u.role THEN 'R' ELSE 'S' END AS type, CASE WHEN "
        "u.role THEN "
        "'DATABASE_ROLE' ELSE 'SQL_USER' END AS type_desc, 'dbo' AS default_schema_name, u.created AS "
        "create_date, (SELECT "
        "l.sid FROM main.devsql_logins l WHERE l.name = u.login) AS sid, u.id BETWEEN 16384 AND 16399 AS "
        "is_fixed_role FROM "
        "{db}.devsql_users u"},
    SystemViewSource{"sys", "server_principals",
                     "name sysname, principal_id int, sid varbinary(85), type char(1), type_desc "
                     "nvarchar(60), is_disabled int",
                     "SELECT name, rowid AS principal_id, sid, 'S' AS type, 'SQL_LOGIN' AS type_desc, 0 AS "
                     "is_disabled FROM "
                     "main.devsql_logins"},
    SystemViewSource{"sys", "database_files",
                     "file_id int, type tinyint, type_desc nvarchar(60), data_space_id int, name sysname, "
                     "physical_name nvarchar(260), "
                     "state tinyint, state_desc nvarchar(60), size int",
                     "SELECT f.id AS file_id, f.log AS type, CASE WHEN f.log THEN 'LOG' ELSE 'ROWS' END AS "
                     "type_desc, CASE WHEN f.log THEN "
                     "0 ELSE 1 END AS data_space_id, f.name, f.client_path AS physical_name, 0 AS state, "
                     "'ONLINE' AS state_desc, "
                     "CAST(f.size AS INTEGER) / 8 AS size FROM main.devsql_files f JOIN "
                     "main.devsql_databases d ON d.id = f.database WHERE "
                     "d.name = {name}"},
    // ---------------------------------------------------------------- INFORMATION_SCHEMA
    SystemViewSource{
        "INFORMATION_SCHEMA", "TABLES",
        "TABLE_CATALOG sysname, TABLE_SCHEMA sysname, TABLE_NAME sysname, TABLE_TYPE varchar(10)",
        "SELECT {name} AS TABLE_CATALOG, o.schema AS TABLE_SCHEMA, o.name AS TABLE_NAME, CASE o.type WHEN "
        "'U' THEN "
        "'BASE TABLE' ELSE 'VIEW' END AS TABLE_TYPE FROM {db}.devsql_objects o WHERE o.type IN ('U', 'V')"},
    SystemViewSource{
        "INFORMATION_SCHEMA", "VIEWS",
        "TABLE_CATALOG sysname, TABLE_SCHEMA sysname, TABLE_NAME sysname, VIEW_DEFINITION nvarchar(4000), "
        "CHECK_OPTION varchar(7), IS_UPDATABLE varchar(2)",
        "SELECT {name} AS TABLE_CATALOG, o.schema AS TABLE_SCHEMA, o.name AS TABLE_NAME, o.text AS "
        "VIEW_DEFINITION, 'NONE' AS "
        "CHECK_OPTION, 'NO' AS IS_UPDATABLE FROM {db}.devsql_objects o WHERE o.type = 'V'"},
    SystemViewSource{
        "INFORMATION_SCHEMA", "SCHEMATA", "CATALOG_NAME sysname, SCHEMA_NAME sysname, SCHEMA_OWNER sysname",
        "SELECT {name} AS CATALOG_NAME, name AS SCHEMA_NAME, owner AS SCHEMA_OWNER FROM {db}.devsql_schemas"},
    SystemViewSource{
        "INFORMATION_SCHEMA", "COLUMNS",
        "TABLE_CATALOG sysname, TABLE_SCHEMA sysname, TABLE_NAME sysname, COLUMN_NAME sysname, "
        "ORDINAL_POSITION int, "
        "COLUMN_DEFAULT nvarchar(4000), IS_NULLABLE varchar(3), DATA_TYPE sysname, CHARACTER_MAXIMUM_LENGTH "
        "int, "
        "CHARACTER_OCTET_LENGTH int, NUMERIC_PRECISION tinyint, NUMERIC_PRECISION_RADIX smallint, "
        "NUMERIC_SCALE int, "
        "DATETIME_PRECISION smallint, CHARACTER_SET_CATALOG sysname, CHARACTER_SET_SCHEMA sysname, "
        "CHARACTER_SET_NAME "
        "sysname, COLLATION_CATALOG sysname, COLLATION_SCHEMA sysname, COLLATION_NAME sysname, "
        "DOMAIN_CATALOG sysname, "
        "DOMAIN_SCHEMA sysname, DOMAIN_NAME sysname",
        "SELECT {name} AS TABLE_CATALOG, o.schema AS TABLE_SCHEMA, o.name AS TABLE_NAME, c.name AS "
        "COLUMN_NAME, (SELECT "
        "count(*) FROM {db}.devsql_columns b WHERE b.object = c.object AND b.position <= c.position) AS "
        "ORDINAL_POSITION, "
        "CASE WHEN c.default_text = '' THEN NULL ELSE c.default_text END AS COLUMN_DEFAULT, CASE WHEN "
        "c.nullable THEN 'YES' "
        "ELSE 'NO' END AS IS_NULLABLE, t.type_name AS DATA_TYPE, CASE WHEN t.type_name IN ('char', "
        "'varchar', 'nchar', "
        "'nvarchar', 'binary', 'varbinary') THEN c.length WHEN t.type_name IN ('text', 'image') THEN "
        "2147483647 WHEN "
        "t.type_name = 'ntext' THEN 1073741823 END AS CHARACTER_MAXIMUM_LENGTH, CASE WHEN t.type_name IN "
        "('nchar', "
        "'nvarchar') AND c.length > 0 THEN c.length * 2 WHEN t.type_name IN ('char', 'varchar', 'nchar', "
        "'nvarchar', "
        "'binary', 'varbinary') THEN c.length WHEN t.type_name IN ('text', 'image', 'ntext') THEN 2147483647 "
        "END AS "
        "CHARACTER_OCTET_LENGTH, CASE WHEN t.type_name IN ('decimal', 'numeric') THEN c.precision WHEN "
        "t.type_name IN "
        "('bigint', 'int', 'smallint', 'tinyint', 'money', 'smallmoney', 'real', 'float') THEN t.digits END "
        "AS "
        "NUMERIC_PRECISION, CASE WHEN t.type_name IN ('real', 'float') THEN 2 WHEN t.type_name IN "
        "('decimal', 'numeric', "
        "'bigint', 'int', 'smallint', 'tinyint', 'money', 'smallmoney') THEN 10 END AS "
        "NUMERIC_PRECISION_RADIX, CASE WHEN "
        "t.type_name IN ('datetime', 'smalldatetime') THEN NULL ELSE " COLUMN_SCALE
        " END AS NUMERIC_SCALE, CASE "
        "t.type_name WHEN 'datetime' THEN 3 WHEN 'smalldatetime' THEN 0 END AS DATETIME_PRECISION, NULL AS "
        "CHARACTER_SET_CATALOG, NULL AS CHARACTER_SET_SCHEMA, CASE WHEN t.type_name IN ('char', 'varchar', "
        "'text') THEN "
        "'iso_1' WHEN t.type_name IN ('nchar', 'nvarchar', 'ntext') THEN 'UNICODE' END AS "
        "CHARACTER_SET_NAME, NULL AS "
        "COLLATION_CATALOG, NULL AS COLLATION_SCHEMA, CASE WHEN t.type_name IN ('char', 'varchar', 'text', "
        "'nchar', "
        "'nvarchar', 'ntext') THEN 'SQL_Latin1_General_CP1_CI_AS' END AS COLLATION_NAME, NULL AS "
        "DOMAIN_CATALOG, "
        "CASE WHEN coalesce(c.user_type, '') LIKE '%.%' THEN substr(c.user_type, 1, instr(c.user_type, '.') "
        "- 1) END AS "
        "DOMAIN_SCHEMA, CASE WHEN coalesce(c.user_type, '') LIKE '%.%' THEN substr(c.user_type, "
        "instr(c.user_type, '.') + 1) "
        "END AS DOMAIN_NAME FROM {db}.devsql_columns c CROSS JOIN {types} t ON t.type = c.type CROSS JOIN "
        "{db}.devsql_objects o ON o.id = "
        "c.object AND o.type IN ('U', 'V')"},
    SystemViewSource{
        "INFORMATION_SCHEMA", "ROUTINES",
        "SPECIFIC_CATALOG sysname, SPECIFIC_SCHEMA sysname, SPECIFIC_NAME sysname, "
        "ROUTINE_CATALOG sysname, ROUTINE_SCHEMA "
        "sysname, ROUTINE_NAME sysname, ROUTINE_TYPE nvarchar(20), DATA_TYPE sysname, "
        "ROUTINE_DEFINITION nvarchar(4000), "
        "CREATED datetime, LAST_ALTERED datetime",
        "SELECT {name} AS SPECIFIC_CATALOG, o.schema AS SPECIFIC_SCHEMA, o.name AS "
        "SPECIFIC_NAME, {name} AS ROUTINE_CATALOG, "
        "o.schema AS ROUTINE_SCHEMA, o.name AS ROUTINE_NAME, CASE o.type WHEN 'P' THEN 'PROCEDURE' ELSE "
        "'FUNCTION' END AS ROUTINE_TYPE, (SELECT t.type_name FROM {db}.devsql_columns c JOIN {types} t ON "
        "t.type = c.type WHERE c.object = o.id AND c.name = '') "
        "AS DATA_TYPE, CASE WHEN "
        "o.encrypted THEN NULL ELSE substr(o.text, 1, 4000) END AS ROUTINE_DEFINITION, "
        "o.created AS CREATED, o.created AS "
        "LAST_ALTERED FROM {db}.devsql_objects o WHERE o.type IN ('P', 'FN')"},
    SystemViewSource{
        "INFORMATION_SCHEMA", "PARAMETERS",
        "SPECIFIC_CATALOG sysname, SPECIFIC_SCHEMA sysname, SPECIFIC_NAME sysname, "
        "ORDINAL_POSITION int, PARAMETER_MODE "
        "nvarchar(10), IS_RESULT nvarchar(10), PARAMETER_NAME sysname, DATA_TYPE sysname, "
        "CHARACTER_MAXIMUM_LENGTH int, "
        "NUMERIC_PRECISION tinyint, NUMERIC_SCALE int",
        "SELECT {name} AS SPECIFIC_CATALOG, o.schema AS SPECIFIC_SCHEMA, o.name AS "
        "SPECIFIC_NAME, CASE c.name WHEN '' THEN 0 ELSE c.id END AS ORDINAL_POSITION, "
        "CASE WHEN c.name = '' THEN 'OUT' WHEN c.output THEN 'INOUT' ELSE 'IN' END AS PARAMETER_MODE, CASE "
        "c.name WHEN '' THEN 'YES' ELSE 'NO' END AS IS_RESULT, "
        "c.name AS PARAMETER_NAME, "
        "t.type_name AS DATA_TYPE, CASE WHEN t.type_name IN ('char', 'varchar', 'nchar', "
        "'nvarchar', 'binary', 'varbinary') "
        "THEN c.length END AS CHARACTER_MAXIMUM_LENGTH, CASE WHEN t.type_name IN ('decimal', "
        "'numeric') THEN c.precision "
        "WHEN t.digits > 0 THEN t.digits END AS NUMERIC_PRECISION, " COLUMN_SCALE " AS NUMERIC_SCALE FROM "
        "{db}.devsql_columns c CROSS JOIN {types} t ON t.type = c.type CROSS JOIN {db}.devsql_objects o ON "
        "o.id = c.object AND o.type IN ('P', 'FN')"},
    SystemViewSource{"INFORMATION_SCHEMA", "TABLE_CONSTRAINTS",
                     "CONSTRAINT_CATALOG sysname, CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname, "
                     "TABLE_CATALOG sysname, TABLE_SCHEMA "
                     "sysname, TABLE_NAME sysname, CONSTRAINT_TYPE varchar(11)",
                     "SELECT {name} AS CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, o.name AS "
                     "CONSTRAINT_NAME, {name} AS "
                     "TABLE_CATALOG, p.schema AS TABLE_SCHEMA, p.name AS TABLE_NAME, CASE o.type WHEN 'PK' "
                     "THEN 'PRIMARY KEY' WHEN 'UQ' "
                     "THEN 'UNIQUE' WHEN 'F' THEN 'FOREIGN KEY' ELSE 'CHECK' END AS CONSTRAINT_TYPE FROM "
                     "{db}.devsql_objects o JOIN "
                     "{db}.devsql_objects p ON p.id = o.parent WHERE o.type IN ('PK', 'UQ', 'F', 'C')"},
    SystemViewSource{"INFORMATION_SCHEMA", "KEY_COLUMN_USAGE",
                     "CONSTRAINT_CATALOG sysname, CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname, "
                     "TABLE_CATALOG sysname, TABLE_SCHEMA "
                     "sysname, TABLE_NAME sysname, COLUMN_NAME sysname, ORDINAL_POSITION int",
                     "SELECT {name} AS CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, i.name AS "
                     "CONSTRAINT_NAME, {name} AS "
                     "TABLE_CATALOG, o.schema AS TABLE_SCHEMA, o.name AS TABLE_NAME, c.name AS COLUMN_NAME, "
                     "k.ordinal AS ORDINAL_POSITION "
                     "FROM {db}.devsql_indexes i JOIN {db}.devsql_index_columns k ON k.object = i.object AND "
                     "k.id = i.id JOIN "
                     "{db}.devsql_columns c ON c.object = i.object AND c.id = k.column_id JOIN "
                     "{db}.devsql_objects o ON o.id = i.object "
                     "WHERE i.is_constraint UNION ALL SELECT {name}, p.schema, o.name, {name}, p.schema, "
                     "p.name, c.name, k.ordinal FROM "
                     "{db}.devsql_foreign_keys f JOIN {db}.devsql_objects o ON o.id = f.id JOIN "
                     "{db}.devsql_objects p ON p.id = f.object "
                     "JOIN {db}.devsql_foreign_key_columns k ON k.id = f.id JOIN {db}.devsql_columns c ON "
                     "c.object = f.object AND c.id = "
                     "k.column_id"},
};

} // namespace

std::span<const SystemViewSource> SystemViewSources() {
    return kViews;
}

} // namespace devsql

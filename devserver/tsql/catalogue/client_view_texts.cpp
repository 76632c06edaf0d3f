// The views that clients of others and scripts look at beside the catalogue's own: sessions, what is empty
// here because the server has no such objects, INFORMATION_SCHEMA's constraints. As in system_view_texts.cpp;
// {sessions} is a table of who is connected (id, login, host, program, database, isolation).
#include <array>

#include "devserver/tsql/catalogue/system_view_texts.h"

// What every view of a kind of objects begins with.
#define OBJECT_COLUMNS                                                                                       \
    "name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2), "     \
    "type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit"

namespace devsql {
namespace {

constexpr std::array kViews = {
    // ---------------------------------------------------------------- sessions
    SystemViewSource{
        "", "sysmessages",
        "error int, severity smallint, dlevel smallint, description nvarchar(255), msglangid smallint",
        "SELECT error, severity, 0 AS dlevel, description, 1033 AS msglangid FROM {messages} UNION ALL "
        "SELECT error, severity, dlevel, description, msglangid FROM main.sysusermessages"},
    SystemViewSource{
        "sys", "messages",
        "message_id int, language_id smallint, severity tinyint, is_event_logged bit, text nvarchar(2048)",
        "SELECT error AS message_id, 1033 AS language_id, severity, 0 AS is_event_logged, description AS "
        "text FROM {messages} UNION ALL SELECT error, msglangid, severity, 0, description FROM "
        "main.sysusermessages"},
    SystemViewSource{
        "", "sysprocesses",
        "spid smallint, kpid smallint, blocked smallint, waittype binary(2), waittime bigint, "
        "lastwaittype nchar(32), waitresource nchar(256), dbid smallint, uid smallint, cpu int, "
        "physical_io bigint, memusage int, open_tran smallint, status nchar(30), sid binary(86), hostname "
        "nchar(128), program_name nchar(128), hostprocess nchar(10), cmd nchar(16), nt_domain nchar(128), "
        "nt_username nchar(128), net_address nchar(12), net_library nchar(12), loginame nchar(128)",
        "SELECT s.id AS spid, 0 AS kpid, 0 AS blocked, x'0000' AS waittype, 0 AS waittime, 'MISCELLANEOUS' "
        "AS lastwaittype, '' AS waitresource, coalesce((SELECT d.id FROM main.devsql_databases d WHERE "
        "d.name = s.database), 1) AS dbid, 1 AS uid, 0 AS cpu, 0 AS physical_io, 0 AS memusage, 0 AS "
        "open_tran, CASE WHEN s.own THEN 'runnable' ELSE 'sleeping' END AS status, NULL AS sid, s.host AS "
        "hostname, s.program AS program_name, '' AS hostprocess, CASE WHEN s.own THEN 'SELECT' ELSE "
        "'AWAITING COMMAND' END AS cmd, '' AS nt_domain, '' AS nt_username, '' AS net_address, 'TCP/IP' AS "
        "net_library, s.login AS loginame FROM {sessions} s"},
    SystemViewSource{
        "sys", "dm_exec_sessions",
        "session_id smallint, host_name nvarchar(128), program_name nvarchar(128), login_name "
        "nvarchar(128), status nvarchar(30), database_id smallint, transaction_isolation_level smallint, "
        "is_user_process bit, original_login_name nvarchar(128)",
        "SELECT s.id AS session_id, s.host AS host_name, s.program AS program_name, s.login AS login_name, "
        "CASE WHEN s.own THEN 'running' ELSE 'sleeping' END AS status, coalesce((SELECT d.id FROM "
        "main.devsql_databases d WHERE d.name = s.database), 1) AS database_id, s.isolation AS "
        "transaction_isolation_level, 1 AS is_user_process, s.login AS original_login_name FROM {sessions} "
        "s"},
    // ---------------------------------------------------------------- objects
    SystemViewSource{"sys", "system_views", "name sysname, object_id int, schema_id int",
                     "SELECT 'dm_exec_sessions' AS name, -1 AS object_id, 4 AS schema_id"},
    SystemViewSource{
        "sys", "key_constraints", OBJECT_COLUMNS ", unique_index_id int, is_system_named bit",
        "SELECT o.name, o.id AS object_id, NULL AS principal_id, 1 AS schema_id, o.parent AS "
        "parent_object_id, o.type, CASE o.type WHEN 'PK' THEN 'PRIMARY_KEY_CONSTRAINT' ELSE "
        "'UNIQUE_CONSTRAINT' END AS type_desc, o.created AS create_date, o.created AS modify_date, 0 AS "
        "is_ms_shipped, (SELECT i.id FROM {db}.devsql_indexes i WHERE i.object = o.parent AND i.name = "
        "o.name) AS unique_index_id, 0 AS is_system_named FROM {db}.devsql_objects o WHERE o.type IN "
        "('PK', 'UQ')"},
    SystemViewSource{
        "sys", "index_columns",
        "object_id int, index_id int, index_column_id int, column_id int, key_ordinal tinyint, "
        "is_descending_key bit, "
        "is_included_column bit",
        "SELECT object AS object_id, id AS index_id, ordinal AS index_column_id, column_id, ordinal AS "
        "key_ordinal, "
        "descending AS is_descending_key, 0 AS is_included_column FROM {db}.devsql_index_columns"},
    SystemViewSource{
        "sys", "foreign_key_columns",
        "constraint_object_id int, constraint_column_id int, parent_object_id int, parent_column_id int, "
        "referenced_object_id int, referenced_column_id int",
        "SELECT k.id AS constraint_object_id, c.ordinal AS constraint_column_id, k.object AS "
        "parent_object_id, c.column_id AS "
        "parent_column_id, k.referenced AS referenced_object_id, c.referenced_column AS referenced_column_id "
        "FROM "
        "{db}.devsql_foreign_keys k JOIN {db}.devsql_foreign_key_columns c ON c.id = k.id"},
    SystemViewSource{
        "sys", "sql_modules",
        "object_id int, definition nvarchar(max), uses_ansi_nulls bit, uses_quoted_identifier bit",
        "SELECT o.id AS object_id, CASE WHEN o.encrypted THEN NULL ELSE o.text END AS definition, "
        "o.ansi_nulls AS "
        "uses_ansi_nulls, o.quoted_identifier AS uses_quoted_identifier FROM {db}.devsql_objects o WHERE "
        "o.type IN ('P', 'V', 'FN')"},
    SystemViewSource{"sys", "identity_columns",
                     "object_id int, name sysname, column_id int, seed_value bigint, increment_value bigint, "
                     "last_value bigint",
                     "SELECT c.object AS object_id, c.name, c.id AS column_id, c.seed AS seed_value, "
                     "c.increment AS increment_value, "
                     "(SELECT i.value FROM {db}.devsql_identities i WHERE i.object = c.object) AS last_value "
                     "FROM {db}.devsql_columns c "
                     "WHERE c.identity"},
    SystemViewSource{
        "sys", "computed_columns",
        "object_id int, name sysname, column_id int, definition nvarchar(max), is_persisted bit",
        "SELECT c.object AS object_id, c.name, c.id AS column_id, c.computed AS definition, 0 AS "
        "is_persisted FROM {db}.devsql_columns c WHERE coalesce(c.computed, '') <> ''"},
    SystemViewSource{
        "sys", "partitions",
        "partition_id bigint, object_id int, index_id int, partition_number int, hobt_id bigint, rows bigint",
        "SELECT o.id * 256 + coalesce(i.id, 0) AS partition_id, o.id AS object_id, coalesce(i.id, 0) AS "
        "index_id, 1 AS partition_number, o.id * 256 + coalesce(i.id, 0) AS hobt_id, tsql_rows({name}, "
        "o.id) AS rows FROM {db}.devsql_objects o LEFT JOIN {db}.devsql_indexes i ON i.object = o.id WHERE "
        "o.type = 'U' UNION ALL SELECT o.id * 256, o.id, 0, 1, o.id * 256, tsql_rows({name}, o.id) FROM "
        "{db}.devsql_objects o WHERE o.type = 'U' AND EXISTS (SELECT 1 FROM {db}.devsql_indexes i WHERE "
        "i.object = o.id) AND NOT EXISTS (SELECT 1 FROM {db}.devsql_indexes i WHERE i.object = o.id AND "
        "i.clustered)"},
    SystemViewSource{"sys", "filegroups",
                     "name sysname, data_space_id int, type char(2), type_desc nvarchar(60), is_default bit",
                     "SELECT 'PRIMARY' AS name, 1 AS data_space_id, 'FG' AS type, 'ROWS_FILEGROUP' AS "
                     "type_desc, 1 AS is_default"},
    SystemViewSource{"sys", "triggers",
                     OBJECT_COLUMNS ", parent_id int, is_disabled bit, is_instead_of_trigger bit",
                     "SELECT NULL AS name, NULL AS object_id, NULL AS principal_id, NULL AS schema_id, NULL "
                     "AS parent_object_id, NULL AS type, NULL AS type_desc, NULL AS create_date, NULL AS "
                     "modify_date, NULL AS is_ms_shipped, NULL AS parent_id, NULL AS is_disabled, NULL AS "
                     "is_instead_of_trigger WHERE 0"},
    SystemViewSource{"sys", "synonyms", OBJECT_COLUMNS ", base_object_name nvarchar(1035)",
                     "SELECT NULL AS name, NULL AS object_id, NULL AS principal_id, NULL AS schema_id, NULL "
                     "AS parent_object_id, NULL AS type, NULL AS type_desc, NULL AS create_date, NULL AS "
                     "modify_date, NULL AS is_ms_shipped, NULL AS base_object_name WHERE 0"},
    SystemViewSource{"sys", "extended_properties",
                     "class tinyint, major_id int, minor_id int, name sysname, value nvarchar(3750)",
                     "SELECT json_extract(p.key, '$[0]') AS class, json_extract(p.key, '$[1]') AS major_id, "
                     "json_extract(p.key, '$[2]') AS minor_id, json_extract(p.key, '$[3]') AS name, p.value "
                     "FROM (SELECT substr(name, 10) AS key, value FROM {db}.devsql_settings WHERE name LIKE "
                     "'property:%') AS p"},
    SystemViewSource{"sys", "master_files",
                     "database_id int, file_id int, type tinyint, type_desc nvarchar(60), name sysname, "
                     "physical_name nvarchar(260), "
                     "state tinyint, size int",
                     "SELECT f.database AS database_id, f.id AS file_id, f.log AS type, CASE WHEN f.log THEN "
                     "'LOG' ELSE 'ROWS' END AS "
                     "type_desc, f.name, f.client_path AS physical_name, 0 AS state, CAST(f.size AS INTEGER) "
                     "/ 8 AS size FROM "
                     "main.devsql_files f"},
    // ---------------------------------------------------------------- INFORMATION_SCHEMA
    SystemViewSource{"INFORMATION_SCHEMA", "CHECK_CONSTRAINTS",
                     "CONSTRAINT_CATALOG sysname, CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname, "
                     "CHECK_CLAUSE nvarchar(4000)",
                     "SELECT {name} AS CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, o.name AS "
                     "CONSTRAINT_NAME, o.text AS CHECK_CLAUSE FROM {db}.devsql_objects o WHERE o.type = 'C'"},
    SystemViewSource{
        "INFORMATION_SCHEMA", "REFERENTIAL_CONSTRAINTS",
        "CONSTRAINT_CATALOG sysname, CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname, "
        "UNIQUE_CONSTRAINT_CATALOG sysname, UNIQUE_CONSTRAINT_SCHEMA sysname, UNIQUE_CONSTRAINT_NAME "
        "sysname, MATCH_OPTION varchar(7), UPDATE_RULE varchar(11), DELETE_RULE varchar(11)",
        "SELECT {name} AS CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, o.name AS CONSTRAINT_NAME, "
        "{name} AS UNIQUE_CONSTRAINT_CATALOG, r.schema AS UNIQUE_CONSTRAINT_SCHEMA, (SELECT i.name FROM "
        "{db}.devsql_indexes i WHERE i.object = k.referenced AND i.is_unique AND (SELECT count(*) FROM "
        "{db}.devsql_index_columns x WHERE x.object = i.object AND x.id = i.id) = (SELECT count(*) FROM "
        "{db}.devsql_foreign_key_columns f WHERE f.id = k.id) AND NOT EXISTS (SELECT 1 FROM "
        "{db}.devsql_foreign_key_columns f WHERE f.id = k.id AND f.referenced_column NOT IN (SELECT "
        "x.column_id FROM {db}.devsql_index_columns x WHERE x.object = i.object AND x.id = i.id)) ORDER BY "
        "i.primary_key DESC LIMIT 1) AS UNIQUE_CONSTRAINT_NAME, 'SIMPLE' AS MATCH_OPTION, CASE k.on_update "
        "WHEN 1 THEN 'CASCADE' WHEN 2 THEN 'SET NULL' WHEN 3 THEN 'SET DEFAULT' ELSE 'NO ACTION' END AS "
        "UPDATE_RULE, CASE k.on_delete WHEN 1 THEN 'CASCADE' WHEN 2 THEN 'SET NULL' WHEN 3 THEN 'SET "
        "DEFAULT' ELSE 'NO ACTION' END AS DELETE_RULE FROM {db}.devsql_foreign_keys k JOIN "
        "{db}.devsql_objects o ON o.id = k.id JOIN {db}.devsql_objects r ON r.id = k.referenced"},
    SystemViewSource{
        "INFORMATION_SCHEMA", "CONSTRAINT_COLUMN_USAGE",
        "TABLE_CATALOG sysname, TABLE_SCHEMA sysname, TABLE_NAME sysname, COLUMN_NAME sysname, "
        "CONSTRAINT_CATALOG sysname, CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname",
        "SELECT {name} AS TABLE_CATALOG, o.schema AS TABLE_SCHEMA, o.name AS TABLE_NAME, c.name AS "
        "COLUMN_NAME, {name} AS CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, i.name AS "
        "CONSTRAINT_NAME FROM {db}.devsql_indexes i JOIN {db}.devsql_index_columns k ON k.object = i.object "
        "AND k.id = i.id JOIN {db}.devsql_columns c ON c.object = i.object AND c.id = k.column_id JOIN "
        "{db}.devsql_objects o ON o.id = i.object WHERE i.is_constraint UNION ALL SELECT {name}, p.schema, "
        "p.name, c.name, {name}, o.schema, o.name FROM {db}.devsql_foreign_keys f JOIN {db}.devsql_objects "
        "o ON o.id = f.id JOIN {db}.devsql_objects p ON p.id = f.object JOIN "
        "{db}.devsql_foreign_key_columns k ON k.id = f.id JOIN {db}.devsql_columns c ON c.object = f.object "
        "AND c.id = k.column_id"},
    SystemViewSource{
        "INFORMATION_SCHEMA", "CONSTRAINT_TABLE_USAGE",
        "TABLE_CATALOG sysname, TABLE_SCHEMA sysname, TABLE_NAME sysname, CONSTRAINT_CATALOG sysname, "
        "CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname",
        "SELECT {name} AS TABLE_CATALOG, p.schema AS TABLE_SCHEMA, p.name AS TABLE_NAME, {name} AS "
        "CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, o.name AS CONSTRAINT_NAME FROM "
        "{db}.devsql_objects o JOIN {db}.devsql_objects p ON p.id = o.parent WHERE o.type IN ('PK', 'UQ', "
        "'F', 'C')"},
};

} // namespace

std::span<const SystemViewSource> ClientViewSources() {
    return kViews;
}

} // namespace devsql

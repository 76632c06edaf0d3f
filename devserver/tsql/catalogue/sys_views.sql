-- The views of the schema sys, as SQL Server 2005 and later have them. Views of objects that this server does not have
-- are empty.
-- The form of these files is described in fragments.sql.

CREATE VIEW sys.databases (
    name sysname, database_id int, source_database_id int, owner_sid varbinary(85), create_date datetime,
    compatibility_level tinyint, collation_name sysname, user_access tinyint, user_access_desc nvarchar(60),
    is_read_only bit, state tinyint, state_desc nvarchar(60), recovery_model tinyint,
    recovery_model_desc nvarchar(60), is_published bit, is_subscribed bit
) AS
SELECT d.name, d.id AS database_id, NULL AS source_database_id,
    (SELECT l.sid FROM main.devsql_logins l WHERE l.name = d.owner) AS owner_sid, d.created AS create_date,
    140 AS compatibility_level, 'SQL_Latin1_General_CP1_CI_AS' AS collation_name,
    coalesce((SELECT p.value = 'ON' FROM main.devsql_options p WHERE p.database = d.id
        AND p.name = 'SINGLE_USER'), 0) AS user_access,
    CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = 'SINGLE_USER'
        AND p.value = 'ON') THEN 'SINGLE_USER' ELSE 'MULTI_USER' END AS user_access_desc,
    0 AS is_read_only,
    CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = 'OFFLINE'
        AND p.value = 'ON') THEN 6 ELSE 0 END AS state,
    CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = 'OFFLINE'
        AND p.value = 'ON') THEN 'OFFLINE' ELSE 'ONLINE' END AS state_desc,
    CASE coalesce((SELECT p.value FROM main.devsql_options p WHERE p.database = d.id AND p.name = 'RECOVERY'),
        'FULL') WHEN 'SIMPLE' THEN 3 WHEN 'BULK_LOGGED' THEN 2 ELSE 1 END AS recovery_model,
    coalesce((SELECT p.value FROM main.devsql_options p WHERE p.database = d.id AND p.name = 'RECOVERY'),
        'FULL') AS recovery_model_desc,
    EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = 'PUBLISHED'
        AND p.value = 'ON') AS is_published,
    0 AS is_subscribed
FROM main.devsql_databases d
GO

CREATE VIEW sys.objects (
    name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2),
    type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit, is_published bit
) AS
SELECT o.name, o.id AS object_id, NULL AS principal_id, {schema_id} AS schema_id, o.parent AS parent_object_id,
    CASE WHEN length(o.type) = 1 THEN o.type || ' ' ELSE o.type END AS type,
    CASE o.type WHEN 'U' THEN 'USER_TABLE' WHEN 'V' THEN 'VIEW' WHEN 'P' THEN 'SQL_STORED_PROCEDURE'
        WHEN 'FN' THEN 'SQL_SCALAR_FUNCTION' WHEN 'TR' THEN 'SQL_TRIGGER' WHEN 'PK' THEN 'PRIMARY_KEY_CONSTRAINT'
        WHEN 'UQ' THEN 'UNIQUE_CONSTRAINT' WHEN 'F' THEN 'FOREIGN_KEY_CONSTRAINT'
        WHEN 'C' THEN 'CHECK_CONSTRAINT' ELSE 'DEFAULT_CONSTRAINT' END AS type_desc,
    o.created AS create_date, o.created AS modify_date, o.shipped AS is_ms_shipped, 0 AS is_published
FROM {db}.devsql_objects o
GO

CREATE VIEW sys.tables (
    name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2),
    type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit
) AS
SELECT o.name, o.id AS object_id, NULL AS principal_id, {schema_id} AS schema_id, 0 AS parent_object_id,
    'U ' AS type, 'USER_TABLE' AS type_desc, o.created AS create_date, o.created AS modify_date,
    o.shipped AS is_ms_shipped
FROM {db}.devsql_objects o
WHERE o.type = 'U'
GO

CREATE VIEW sys.views (
    name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2),
    type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit
) AS
SELECT o.name, o.id AS object_id, NULL AS principal_id, {schema_id} AS schema_id, 0 AS parent_object_id,
    'V ' AS type, 'VIEW' AS type_desc, o.created AS create_date, o.created AS modify_date,
    o.shipped AS is_ms_shipped
FROM {db}.devsql_objects o
WHERE o.type = 'V'
GO

CREATE VIEW sys.procedures (
    name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2),
    type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit
) AS
SELECT o.name, o.id AS object_id, NULL AS principal_id, {schema_id} AS schema_id, 0 AS parent_object_id,
    'P ' AS type, 'SQL_STORED_PROCEDURE' AS type_desc, o.created AS create_date, o.created AS modify_date,
    o.shipped AS is_ms_shipped
FROM {db}.devsql_objects o
WHERE o.type = 'P'
GO

CREATE VIEW sys.columns (
    object_id int, name sysname, column_id int, system_type_id tinyint, user_type_id int, max_length smallint,
    precision tinyint, scale tinyint, collation_name sysname, is_nullable bit, is_ansi_padded bit,
    is_rowguidcol bit, is_identity bit, is_computed bit, default_object_id int
) AS
SELECT c.object AS object_id, c.name, c.id AS column_id, t.xtype AS system_type_id,
    {user_type_id} AS user_type_id, {column_bytes} AS max_length,
    coalesce(CASE WHEN t.type_name IN ('char', 'varchar', 'nchar', 'nvarchar', 'binary', 'varbinary') THEN 0
        ELSE {column_digits} END, 0) AS precision,
    coalesce({column_scale}, 0) AS scale,
    CASE WHEN t.type_name IN ('char', 'varchar', 'nchar', 'nvarchar', 'text',
        'ntext') THEN 'SQL_Latin1_General_CP1_CI_AS' END AS collation_name,
    c.nullable AS is_nullable, 1 AS is_ansi_padded, c.row_guid AS is_rowguidcol, c.identity AS is_identity,
    coalesce(c.computed, '') <> '' AS is_computed, coalesce(c.default_id, 0) AS default_object_id
FROM {db}.devsql_columns c
    CROSS JOIN {types} t ON t.type = c.type
    CROSS JOIN {db}.devsql_objects o ON o.id = c.object AND o.type IN ('U', 'V')
GO

CREATE VIEW sys.parameters (
    object_id int, name sysname, parameter_id int, system_type_id tinyint, user_type_id int,
    max_length smallint, precision tinyint, scale tinyint, is_output bit, has_default_value bit
) AS
SELECT c.object AS object_id, c.name, CASE c.name WHEN '' THEN 0 ELSE c.id END AS parameter_id,
    t.xtype AS system_type_id, {user_type_id} AS user_type_id, {column_bytes} AS max_length, c.precision,
    c.scale, c.output AS is_output, 0 AS has_default_value
FROM {db}.devsql_columns c
    CROSS JOIN {types} t ON t.type = c.type
    CROSS JOIN {db}.devsql_objects o ON o.id = c.object AND o.type IN ('P', 'FN')
GO

CREATE VIEW sys.indexes (
    object_id int, name sysname, index_id int, type tinyint, type_desc nvarchar(60), is_unique bit,
    is_primary_key bit, is_unique_constraint bit, is_disabled bit
) AS
SELECT i.object AS object_id, i.name, i.id AS index_id, CASE WHEN i.clustered THEN 1 ELSE 2 END AS type,
    CASE WHEN i.clustered THEN 'CLUSTERED' ELSE 'NONCLUSTERED' END AS type_desc, i.is_unique,
    i.primary_key AS is_primary_key, i.is_constraint AND NOT i.primary_key AS is_unique_constraint,
    0 AS is_disabled
FROM {db}.devsql_indexes i
GO

CREATE VIEW sys.foreign_keys (
    name sysname, object_id int, parent_object_id int, referenced_object_id int, is_disabled bit,
    delete_referential_action tinyint, update_referential_action tinyint
) AS
SELECT o.name, k.id AS object_id, k.object AS parent_object_id, k.referenced AS referenced_object_id,
    o.disabled AS is_disabled, k.on_delete AS delete_referential_action,
    k.on_update AS update_referential_action
FROM {db}.devsql_foreign_keys k
    JOIN {db}.devsql_objects o ON o.id = k.id
GO

CREATE VIEW sys.check_constraints (
    name sysname, object_id int, parent_object_id int, definition nvarchar(max), is_disabled bit,
    parent_column_id int
) AS
SELECT o.name, o.id AS object_id, o.parent AS parent_object_id, o.text AS definition, o.disabled AS is_disabled,
    {constraint_column} AS parent_column_id
FROM {db}.devsql_objects o
WHERE o.type = 'C'
GO

CREATE VIEW sys.default_constraints (
    name sysname, object_id int, parent_object_id int, parent_column_id int, definition nvarchar(max)
) AS
SELECT o.name, o.id AS object_id, o.parent AS parent_object_id,
    (SELECT c.id FROM {db}.devsql_columns c WHERE c.object = o.parent AND c.default_id = o.id)
        AS parent_column_id,
    o.text AS definition
FROM {db}.devsql_objects o
WHERE o.type = 'D'
GO

CREATE VIEW sys.schemas (
    name sysname, schema_id int, principal_id int
) AS
SELECT s.name, CASE WHEN s.name = 'dbo' THEN 1 ELSE s.rowid + 10 END AS schema_id, 1 AS principal_id
FROM {db}.devsql_schemas s
GO

CREATE VIEW sys.types (
    name sysname, system_type_id tinyint, user_type_id int, schema_id int, max_length smallint,
    precision tinyint, scale tinyint, is_nullable bit, is_user_defined bit
) AS
SELECT t.type_name AS name, t.xtype AS system_type_id, t.xtype AS user_type_id, 4 AS schema_id,
    t.bytes AS max_length, t.digits AS precision, 0 AS scale, 1 AS is_nullable, 0 AS is_user_defined
FROM {types} t
UNION ALL
SELECT 'sysname', 231, 256, 4, 256, 0, 0, 0, 0
UNION ALL
SELECT c.name, t.xtype, 256 + c.rowid, 1, {column_bytes}, c.precision, c.scale, c.nullable, 1
FROM {db}.devsql_types c
    JOIN {types} t ON t.type = c.type
GO

CREATE VIEW sys.database_principals (
    name sysname, principal_id int, type char(1), type_desc nvarchar(60), default_schema_name sysname,
    create_date datetime, sid varbinary(85), is_fixed_role bit
) AS
SELECT u.name, u.id AS principal_id, CASE WHEN u.role THEN 'R' ELSE 'S' END AS type,
    CASE WHEN u.role THEN 'DATABASE_ROLE' ELSE 'SQL_USER' END AS type_desc, 'dbo' AS default_schema_name,
    u.created AS create_date, (SELECT l.sid FROM main.devsql_logins l WHERE l.name = u.login) AS sid,
    u.id BETWEEN 16384 AND 16399 AS is_fixed_role
FROM {db}.devsql_users u
GO

CREATE VIEW sys.server_principals (
    name sysname, principal_id int, sid varbinary(85), type char(1), type_desc nvarchar(60), is_disabled int
) AS
SELECT name, rowid AS principal_id, sid, 'S' AS type, 'SQL_LOGIN' AS type_desc, 0 AS is_disabled
FROM main.devsql_logins
GO

CREATE VIEW sys.database_files (
    file_id int, type tinyint, type_desc nvarchar(60), data_space_id int, name sysname,
    physical_name nvarchar(260), state tinyint, state_desc nvarchar(60), size int
) AS
SELECT f.id AS file_id, f.log AS type, CASE WHEN f.log THEN 'LOG' ELSE 'ROWS' END AS type_desc,
    CASE WHEN f.log THEN 0 ELSE 1 END AS data_space_id, f.name, f.client_path AS physical_name, 0 AS state,
    'ONLINE' AS state_desc, CAST(f.size AS INTEGER) / 8 AS size
FROM main.devsql_files f
    JOIN main.devsql_databases d ON d.id = f.database
WHERE d.name = {name}
GO

CREATE VIEW sys.messages (
    message_id int, language_id smallint, severity tinyint, is_event_logged bit, text nvarchar(2048)
) AS
SELECT error AS message_id, 1033 AS language_id, severity, 0 AS is_event_logged, description AS text
FROM {messages}
UNION ALL
SELECT error, msglangid, severity, 0, description
FROM main.sysusermessages
GO

CREATE VIEW sys.dm_exec_sessions (
    session_id smallint, host_name nvarchar(128), program_name nvarchar(128), login_name nvarchar(128),
    status nvarchar(30), database_id smallint, transaction_isolation_level smallint, is_user_process bit,
    original_login_name nvarchar(128)
) AS
SELECT s.id AS session_id, s.host AS host_name, s.program AS program_name, s.login AS login_name,
    CASE WHEN s.own THEN 'running' ELSE 'sleeping' END AS status,
    coalesce((SELECT d.id FROM main.devsql_databases d WHERE d.name = s.database), 1) AS database_id,
    s.isolation AS transaction_isolation_level, 1 AS is_user_process, s.login AS original_login_name
FROM {sessions} s
GO

CREATE VIEW sys.system_views (
    name sysname, object_id int, schema_id int
) AS
SELECT 'dm_exec_sessions' AS name, -1 AS object_id, 4 AS schema_id
GO

CREATE VIEW sys.key_constraints (
    name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2),
    type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit, unique_index_id int,
    is_system_named bit
) AS
SELECT o.name, o.id AS object_id, NULL AS principal_id, 1 AS schema_id, o.parent AS parent_object_id, o.type,
    CASE o.type WHEN 'PK' THEN 'PRIMARY_KEY_CONSTRAINT' ELSE 'UNIQUE_CONSTRAINT' END AS type_desc,
    o.created AS create_date, o.created AS modify_date, 0 AS is_ms_shipped,
    (SELECT i.id FROM {db}.devsql_indexes i WHERE i.object = o.parent AND i.name = o.name) AS unique_index_id,
    0 AS is_system_named
FROM {db}.devsql_objects o
WHERE o.type IN ('PK', 'UQ')
GO

CREATE VIEW sys.index_columns (
    object_id int, index_id int, index_column_id int, column_id int, key_ordinal tinyint, is_descending_key bit,
    is_included_column bit
) AS
SELECT object AS object_id, id AS index_id, ordinal AS index_column_id, column_id, ordinal AS key_ordinal,
    descending AS is_descending_key, 0 AS is_included_column
FROM {db}.devsql_index_columns
GO

CREATE VIEW sys.foreign_key_columns (
    constraint_object_id int, constraint_column_id int, parent_object_id int, parent_column_id int,
    referenced_object_id int, referenced_column_id int
) AS
SELECT k.id AS constraint_object_id, c.ordinal AS constraint_column_id, k.object AS parent_object_id,
    c.column_id AS parent_column_id, k.referenced AS referenced_object_id,
    c.referenced_column AS referenced_column_id
FROM {db}.devsql_foreign_keys k
    JOIN {db}.devsql_foreign_key_columns c ON c.id = k.id
GO

CREATE VIEW sys.sql_modules (
    object_id int, definition nvarchar(max), uses_ansi_nulls bit, uses_quoted_identifier bit
) AS
SELECT o.id AS object_id, CASE WHEN o.encrypted THEN NULL ELSE o.text END AS definition,
    o.ansi_nulls AS uses_ansi_nulls, o.quoted_identifier AS uses_quoted_identifier
FROM {db}.devsql_objects o
WHERE o.type IN ('P', 'V', 'FN', 'TR')
GO

CREATE VIEW sys.identity_columns (
    object_id int, name sysname, column_id int, seed_value bigint, increment_value bigint, last_value bigint
) AS
SELECT c.object AS object_id, c.name, c.id AS column_id, c.seed AS seed_value, c.increment AS increment_value,
    (SELECT i.value FROM {db}.devsql_identities i WHERE i.object = c.object) AS last_value
FROM {db}.devsql_columns c
WHERE c.identity
GO

CREATE VIEW sys.computed_columns (
    object_id int, name sysname, column_id int, definition nvarchar(max), is_persisted bit
) AS
SELECT c.object AS object_id, c.name, c.id AS column_id, c.computed AS definition, 0 AS is_persisted
FROM {db}.devsql_columns c
WHERE coalesce(c.computed, '') <> ''
GO

CREATE VIEW sys.partitions (
    partition_id bigint, object_id int, index_id int, partition_number int, hobt_id bigint, rows bigint
) AS
SELECT o.id * 256 + coalesce(i.id, 0) AS partition_id, o.id AS object_id, coalesce(i.id, 0) AS index_id,
    1 AS partition_number, o.id * 256 + coalesce(i.id, 0) AS hobt_id, tsql_rows({name}, o.id) AS rows
FROM {db}.devsql_objects o
    LEFT JOIN {db}.devsql_indexes i ON i.object = o.id
WHERE o.type = 'U'
UNION ALL
SELECT o.id * 256, o.id, 0, 1, o.id * 256, tsql_rows({name}, o.id)
FROM {db}.devsql_objects o
WHERE o.type = 'U' AND EXISTS (SELECT 1 FROM {db}.devsql_indexes i WHERE i.object = o.id)
    AND NOT EXISTS (SELECT 1 FROM {db}.devsql_indexes i WHERE i.object = o.id AND i.clustered)
GO

CREATE VIEW sys.filegroups (
    name sysname, data_space_id int, type char(2), type_desc nvarchar(60), is_default bit
) AS
SELECT 'PRIMARY' AS name, 1 AS data_space_id, 'FG' AS type, 'ROWS_FILEGROUP' AS type_desc, 1 AS is_default
GO

CREATE VIEW sys.triggers (
    name sysname, object_id int, parent_class tinyint, parent_class_desc nvarchar(60), parent_id int,
    type char(2), type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit,
    is_disabled bit, is_not_for_replication bit, is_instead_of_trigger bit
) AS
SELECT o.name, o.id AS object_id, 1 AS parent_class, 'OBJECT_OR_COLUMN' AS parent_class_desc, o.parent AS parent_id,
    'TR' AS type, 'SQL_TRIGGER' AS type_desc, o.created AS create_date, o.created AS modify_date,
    o.shipped AS is_ms_shipped, o.disabled AS is_disabled, 0 AS is_not_for_replication, 0 AS is_instead_of_trigger
FROM {db}.devsql_objects o
WHERE o.type = 'TR'
GO

CREATE VIEW sys.trigger_events (
    object_id int, type int, type_desc nvarchar(60), is_first bit, is_last bit, event_group_type int,
    event_group_type_desc nvarchar(60), is_trigger_event bit
) AS
SELECT o.id AS object_id, e.type, e.word AS type_desc, 0 AS is_first, 0 AS is_last, NULL AS event_group_type,
    NULL AS event_group_type_desc, 1 AS is_trigger_event
FROM {db}.devsql_objects o
    JOIN (SELECT 1 AS type, 1 AS bit, 'INSERT' AS word UNION ALL SELECT 2, 2, 'UPDATE' UNION ALL SELECT 3, 4, 'DELETE') e
        ON tsql_trigger_events({name}, o.id) & e.bit
WHERE o.type = 'TR'
GO

CREATE VIEW sys.synonyms (
    name sysname, object_id int, principal_id int, schema_id int, parent_object_id int, type char(2),
    type_desc nvarchar(60), create_date datetime, modify_date datetime, is_ms_shipped bit,
    base_object_name nvarchar(1035)
) AS
SELECT NULL AS name, NULL AS object_id, NULL AS principal_id, NULL AS schema_id, NULL AS parent_object_id,
    NULL AS type, NULL AS type_desc, NULL AS create_date, NULL AS modify_date, NULL AS is_ms_shipped,
    NULL AS base_object_name
WHERE 0
GO

CREATE VIEW sys.extended_properties (
    class tinyint, major_id int, minor_id int, name sysname, value nvarchar(3750)
) AS
SELECT json_extract(p.key, '$[0]') AS class, json_extract(p.key, '$[1]') AS major_id,
    json_extract(p.key, '$[2]') AS minor_id, json_extract(p.key, '$[3]') AS name, p.value
FROM (SELECT substr(name, 10) AS key, value FROM {db}.devsql_settings WHERE name LIKE 'property:%') AS p
GO

CREATE VIEW sys.master_files (
    database_id int, file_id int, type tinyint, type_desc nvarchar(60), name sysname,
    physical_name nvarchar(260), state tinyint, size int
) AS
SELECT f.database AS database_id, f.id AS file_id, f.log AS type,
    CASE WHEN f.log THEN 'LOG' ELSE 'ROWS' END AS type_desc, f.name, f.client_path AS physical_name, 0 AS state,
    CAST(f.size AS INTEGER) / 8 AS size
FROM main.devsql_files f
GO

-- The types and columns as ODBC describes them. driver_procedures.sql reads these two views.
CREATE VIEW sys.spt_types (
    position int, type_name sysname, odbc_2_type smallint, odbc_3_type smallint, digits int, prefix varchar(32),
    suffix varchar(32), create_params varchar(32), nullable smallint, searchable smallint, unsigned_attribute smallint,
    money smallint, auto_increment smallint, minimum_scale smallint, maximum_scale smallint, sql_data_type smallint,
    datetime_sub smallint, radix int, usertype smallint
) AS
SELECT t.position, t.type_name, t.odbc AS odbc_2_type,
    CASE t.odbc WHEN 11 THEN 93 ELSE t.odbc END AS odbc_3_type,
    CASE WHEN t.digits <> 0 THEN t.digits
        WHEN t.type_name = 'ntext' THEN 1073741823
        WHEN t.type_name IN ('text', 'image') THEN 2147483647
        WHEN t.type_name IN ('nchar', 'nvarchar') THEN 4000
        WHEN t.type_name IN ('char', 'varchar', 'binary', 'varbinary', 'decimal', 'numeric') THEN
            CASE WHEN t.odbc IN (2, 3) THEN 38 ELSE 8000 END
        ELSE t.bytes END AS digits,
    nullif(t.prefix, '') AS prefix, nullif(t.suffix, '') AS suffix, nullif(t.parameters, '') AS create_params,
    t.type_name <> 'timestamp' AS nullable,
    CASE WHEN t.type_name = 'image' THEN 0
        WHEN t.type_name IN ('text', 'ntext') THEN 1
        WHEN {is_text} OR {is_date} THEN 3
        ELSE 2 END AS searchable,
    CASE WHEN {is_number} THEN t.type_name = 'tinyint' END AS unsigned_attribute,
    t.type_name IN ('money', 'smallmoney') AS money,
    CASE WHEN {is_number} THEN 0 END AS auto_increment,
    CASE WHEN {is_integer} OR {is_decimal} THEN 0 END AS minimum_scale,
    CASE WHEN {is_decimal} THEN 38 WHEN {is_integer} THEN 0 END AS maximum_scale,
    CASE WHEN {is_date} THEN 9 ELSE t.odbc END AS sql_data_type,
    CASE WHEN t.type_name = 'date' THEN 1 WHEN {is_date} THEN 3 END AS datetime_sub,
    CASE WHEN t.type_name IN ('real', 'float') THEN 2 WHEN {is_number} THEN 10 END AS radix, t.usertype
FROM {types} t
GO

-- One row for each column of a table or view and each parameter. The precision of a decimal is in the catalogue; the
-- length of a decimal, of money and of dates is that of their C types.
CREATE VIEW sys.spt_columns (
    object_id int, object_type char(2), owner sysname, object sysname, name sysname, column_id int, ordinal int,
    data_type smallint, type_name sysname, digits int, length int, scale smallint, radix smallint,
    nullable smallint, is_identity bit, is_output bit, column_def nvarchar(4000), sql_data_type smallint,
    datetime_sub smallint, octets int, ss_type tinyint, ss_nullable_type tinyint
) AS
SELECT c.object AS object_id, o.type AS object_type, o.schema AS owner, o.name AS object, c.name, c.id AS column_id,
    (SELECT count(*) FROM {db}.devsql_columns b WHERE b.object = c.object AND b.position <= c.position) AS ordinal,
    {odbc_type} AS data_type,
    CASE coalesce(c.user_type, '') WHEN '' THEN t.type_name
        ELSE substr(c.user_type, instr(c.user_type, '.') + 1) END AS type_name,
    {odbc_precision} AS digits,
    CASE WHEN {is_decimal} THEN c.precision + 2
        WHEN t.type_name IN ('money', 'smallmoney') THEN t.digits + 2
        WHEN t.type_name = 'date' THEN 6
        WHEN {is_date} THEN 16
        WHEN c.length = -1 OR t.type_name IN ('text', 'ntext', 'image') THEN 2147483647
        ELSE {column_bytes} END AS length,
    CASE WHEN t.type_name = 'date' THEN NULL WHEN t.type_name = 'bit' THEN 0 ELSE {column_scale} END AS scale,
    CASE WHEN t.type_name IN ('real', 'float') THEN 2 WHEN {is_number} AND t.type_name <> 'bit' THEN 10 END AS radix,
    c.nullable, c.identity AS is_identity, coalesce(c.output, 0) AS is_output,
    nullif(c.default_text, '') AS column_def,
    CASE WHEN {is_date} THEN 9 ELSE {odbc_type} END AS sql_data_type,
    CASE WHEN t.type_name = 'date' THEN 1 WHEN {is_date} THEN 3 END AS datetime_sub,
    CASE WHEN c.length = -1 OR t.type_name IN ('text', 'ntext', 'image') THEN 2147483647
        WHEN {is_text} OR t.type_name IN ('binary', 'varbinary', 'timestamp') THEN {column_bytes} END AS octets,
    t.tds AS ss_type,
    CASE t.type_name WHEN 'decimal' THEN 106 WHEN 'numeric' THEN 108 WHEN 'int' THEN 38 WHEN 'smallint' THEN 38
        WHEN 'tinyint' THEN 38 WHEN 'bigint' THEN 108 WHEN 'real' THEN 109 WHEN 'float' THEN 109
        WHEN 'money' THEN 110 WHEN 'smallmoney' THEN 110 WHEN 'datetime' THEN 111 WHEN 'smalldatetime' THEN 111
        ELSE t.tds END AS ss_nullable_type
FROM {db}.devsql_columns c
    CROSS JOIN {types} t ON t.type = c.type
    CROSS JOIN {db}.devsql_objects o ON o.id = c.object
GO

-- The views of INFORMATION_SCHEMA.
-- The form of these files is described in fragments.sql.

CREATE VIEW INFORMATION_SCHEMA.TABLES (
    TABLE_CATALOG sysname, TABLE_SCHEMA sysname, TABLE_NAME sysname, TABLE_TYPE varchar(10)
) AS
SELECT {name} AS TABLE_CATALOG, o.schema AS TABLE_SCHEMA, o.name AS TABLE_NAME,
    CASE o.type WHEN 'U' THEN 'BASE TABLE' ELSE 'VIEW' END AS TABLE_TYPE
FROM {db}.devsql_objects o
WHERE o.type IN ('U', 'V')
GO

CREATE VIEW INFORMATION_SCHEMA.VIEWS (
    TABLE_CATALOG sysname, TABLE_SCHEMA sysname, TABLE_NAME sysname, VIEW_DEFINITION nvarchar(4000),
    CHECK_OPTION varchar(7), IS_UPDATABLE varchar(2)
) AS
SELECT {name} AS TABLE_CATALOG, o.schema AS TABLE_SCHEMA, o.name AS TABLE_NAME, o.text AS VIEW_DEFINITION,
    'NONE' AS CHECK_OPTION, 'NO' AS IS_UPDATABLE
FROM {db}.devsql_objects o
WHERE o.type = 'V'
GO

CREATE VIEW INFORMATION_SCHEMA.SCHEMATA (
    CATALOG_NAME sysname, SCHEMA_NAME sysname, SCHEMA_OWNER sysname
) AS
SELECT {name} AS CATALOG_NAME, name AS SCHEMA_NAME, owner AS SCHEMA_OWNER
FROM {db}.devsql_schemas
GO

CREATE VIEW INFORMATION_SCHEMA.COLUMNS (
    TABLE_CATALOG sysname, TABLE_SCHEMA sysname, TABLE_NAME sysname, COLUMN_NAME sysname, ORDINAL_POSITION int,
    COLUMN_DEFAULT nvarchar(4000), IS_NULLABLE varchar(3), DATA_TYPE sysname, CHARACTER_MAXIMUM_LENGTH int,
    CHARACTER_OCTET_LENGTH int, NUMERIC_PRECISION tinyint, NUMERIC_PRECISION_RADIX smallint, NUMERIC_SCALE int,
    DATETIME_PRECISION smallint, CHARACTER_SET_CATALOG sysname, CHARACTER_SET_SCHEMA sysname,
    CHARACTER_SET_NAME sysname, COLLATION_CATALOG sysname, COLLATION_SCHEMA sysname, COLLATION_NAME sysname,
    DOMAIN_CATALOG sysname, DOMAIN_SCHEMA sysname, DOMAIN_NAME sysname
) AS
SELECT {name} AS TABLE_CATALOG, o.schema AS TABLE_SCHEMA, o.name AS TABLE_NAME, c.name AS COLUMN_NAME,
    (SELECT count(*) FROM {db}.devsql_columns b WHERE b.object = c.object AND b.position <= c.position)
        AS ORDINAL_POSITION,
    CASE WHEN c.default_text = '' THEN NULL ELSE c.default_text END AS COLUMN_DEFAULT,
    CASE WHEN c.nullable THEN 'YES' ELSE 'NO' END AS IS_NULLABLE, t.type_name AS DATA_TYPE,
    CASE WHEN t.type_name IN ('char', 'varchar', 'nchar', 'nvarchar', 'binary', 'varbinary') THEN c.length
        WHEN t.type_name IN ('text', 'image') THEN 2147483647 WHEN t.type_name = 'ntext' THEN 1073741823 END
        AS CHARACTER_MAXIMUM_LENGTH,
    CASE WHEN t.type_name IN ('nchar', 'nvarchar') AND c.length > 0 THEN c.length * 2
        WHEN t.type_name IN ('char', 'varchar', 'nchar', 'nvarchar', 'binary', 'varbinary') THEN c.length
        WHEN t.type_name IN ('text', 'image', 'ntext') THEN 2147483647 END AS CHARACTER_OCTET_LENGTH,
    CASE WHEN t.type_name IN ('decimal', 'numeric') THEN c.precision WHEN t.type_name IN ('bigint', 'int',
        'smallint', 'tinyint', 'money', 'smallmoney', 'real', 'float') THEN t.digits END AS NUMERIC_PRECISION,
    CASE WHEN t.type_name IN ('real', 'float') THEN 2 WHEN t.type_name IN ('decimal', 'numeric', 'bigint',
        'int', 'smallint', 'tinyint', 'money', 'smallmoney') THEN 10 END AS NUMERIC_PRECISION_RADIX,
    CASE WHEN t.type_name IN ('datetime', 'smalldatetime') THEN NULL ELSE {column_scale} END AS NUMERIC_SCALE,
    CASE t.type_name WHEN 'datetime' THEN 3 WHEN 'smalldatetime' THEN 0 END AS DATETIME_PRECISION,
    NULL AS CHARACTER_SET_CATALOG, NULL AS CHARACTER_SET_SCHEMA,
    CASE WHEN t.type_name IN ('char', 'varchar', 'text') THEN 'iso_1' WHEN t.type_name IN ('nchar', 'nvarchar',
        'ntext') THEN 'UNICODE' END AS CHARACTER_SET_NAME,
    NULL AS COLLATION_CATALOG, NULL AS COLLATION_SCHEMA,
    CASE WHEN t.type_name IN ('char', 'varchar', 'text', 'nchar', 'nvarchar',
        'ntext') THEN 'SQL_Latin1_General_CP1_CI_AS' END AS COLLATION_NAME,
    NULL AS DOMAIN_CATALOG,
    CASE WHEN coalesce(c.user_type, '') LIKE '%.%' THEN substr(c.user_type, 1, instr(c.user_type, '.') - 1) END
        AS DOMAIN_SCHEMA,
    CASE WHEN coalesce(c.user_type, '') LIKE '%.%' THEN substr(c.user_type, instr(c.user_type, '.') + 1) END
        AS DOMAIN_NAME
FROM {db}.devsql_columns c
    CROSS JOIN {types} t ON t.type = c.type
    CROSS JOIN {db}.devsql_objects o ON o.id = c.object AND o.type IN ('U', 'V')
GO

CREATE VIEW INFORMATION_SCHEMA.ROUTINES (
    SPECIFIC_CATALOG sysname, SPECIFIC_SCHEMA sysname, SPECIFIC_NAME sysname, ROUTINE_CATALOG sysname,
    ROUTINE_SCHEMA sysname, ROUTINE_NAME sysname, ROUTINE_TYPE nvarchar(20), DATA_TYPE sysname,
    ROUTINE_DEFINITION nvarchar(4000), CREATED datetime, LAST_ALTERED datetime
) AS
SELECT {name} AS SPECIFIC_CATALOG, o.schema AS SPECIFIC_SCHEMA, o.name AS SPECIFIC_NAME,
    {name} AS ROUTINE_CATALOG, o.schema AS ROUTINE_SCHEMA, o.name AS ROUTINE_NAME,
    CASE o.type WHEN 'P' THEN 'PROCEDURE' ELSE 'FUNCTION' END AS ROUTINE_TYPE,
    (SELECT t.type_name FROM {db}.devsql_columns c JOIN {types} t ON t.type = c.type WHERE c.object = o.id
        AND c.name = '') AS DATA_TYPE,
    CASE WHEN o.encrypted THEN NULL ELSE substr(o.text, 1, 4000) END AS ROUTINE_DEFINITION,
    o.created AS CREATED, o.created AS LAST_ALTERED
FROM {db}.devsql_objects o
WHERE o.type IN ('P', 'FN')
GO

CREATE VIEW INFORMATION_SCHEMA.PARAMETERS (
    SPECIFIC_CATALOG sysname, SPECIFIC_SCHEMA sysname, SPECIFIC_NAME sysname, ORDINAL_POSITION int,
    PARAMETER_MODE nvarchar(10), IS_RESULT nvarchar(10), PARAMETER_NAME sysname, DATA_TYPE sysname,
    CHARACTER_MAXIMUM_LENGTH int, NUMERIC_PRECISION tinyint, NUMERIC_SCALE int
) AS
SELECT {name} AS SPECIFIC_CATALOG, o.schema AS SPECIFIC_SCHEMA, o.name AS SPECIFIC_NAME,
    CASE c.name WHEN '' THEN 0 ELSE c.id END AS ORDINAL_POSITION,
    CASE WHEN c.name = '' THEN 'OUT' WHEN c.output THEN 'INOUT' ELSE 'IN' END AS PARAMETER_MODE,
    CASE c.name WHEN '' THEN 'YES' ELSE 'NO' END AS IS_RESULT, c.name AS PARAMETER_NAME,
    t.type_name AS DATA_TYPE,
    CASE WHEN t.type_name IN ('char', 'varchar', 'nchar', 'nvarchar', 'binary', 'varbinary') THEN c.length END
        AS CHARACTER_MAXIMUM_LENGTH,
    CASE WHEN t.type_name IN ('decimal', 'numeric') THEN c.precision WHEN t.digits > 0 THEN t.digits END
        AS NUMERIC_PRECISION,
    {column_scale} AS NUMERIC_SCALE
FROM {db}.devsql_columns c
    CROSS JOIN {types} t ON t.type = c.type
    CROSS JOIN {db}.devsql_objects o ON o.id = c.object AND o.type IN ('P', 'FN')
GO

CREATE VIEW INFORMATION_SCHEMA.TABLE_CONSTRAINTS (
    CONSTRAINT_CATALOG sysname, CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname, TABLE_CATALOG sysname,
    TABLE_SCHEMA sysname, TABLE_NAME sysname, CONSTRAINT_TYPE varchar(11)
) AS
SELECT {name} AS CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, o.name AS CONSTRAINT_NAME,
    {name} AS TABLE_CATALOG, p.schema AS TABLE_SCHEMA, p.name AS TABLE_NAME,
    CASE o.type WHEN 'PK' THEN 'PRIMARY KEY' WHEN 'UQ' THEN 'UNIQUE' WHEN 'F' THEN 'FOREIGN KEY' ELSE 'CHECK'
        END AS CONSTRAINT_TYPE
FROM {db}.devsql_objects o
    JOIN {db}.devsql_objects p ON p.id = o.parent
WHERE o.type IN ('PK', 'UQ', 'F', 'C')
GO

CREATE VIEW INFORMATION_SCHEMA.KEY_COLUMN_USAGE (
    CONSTRAINT_CATALOG sysname, CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname, TABLE_CATALOG sysname,
    TABLE_SCHEMA sysname, TABLE_NAME sysname, COLUMN_NAME sysname, ORDINAL_POSITION int
) AS
SELECT {name} AS CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, i.name AS CONSTRAINT_NAME,
    {name} AS TABLE_CATALOG, o.schema AS TABLE_SCHEMA, o.name AS TABLE_NAME, c.name AS COLUMN_NAME,
    k.ordinal AS ORDINAL_POSITION
FROM {db}.devsql_indexes i
    JOIN {db}.devsql_index_columns k ON k.object = i.object AND k.id = i.id
    JOIN {db}.devsql_columns c ON c.object = i.object AND c.id = k.column_id
    JOIN {db}.devsql_objects o ON o.id = i.object
WHERE i.is_constraint
UNION ALL
SELECT {name}, p.schema, o.name, {name}, p.schema, p.name, c.name, k.ordinal
FROM {db}.devsql_foreign_keys f
    JOIN {db}.devsql_objects o ON o.id = f.id
    JOIN {db}.devsql_objects p ON p.id = f.object
    JOIN {db}.devsql_foreign_key_columns k ON k.id = f.id
    JOIN {db}.devsql_columns c ON c.object = f.object AND c.id = k.column_id
GO

CREATE VIEW INFORMATION_SCHEMA.CHECK_CONSTRAINTS (
    CONSTRAINT_CATALOG sysname, CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname, CHECK_CLAUSE nvarchar(4000)
) AS
SELECT {name} AS CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, o.name AS CONSTRAINT_NAME,
    o.text AS CHECK_CLAUSE
FROM {db}.devsql_objects o
WHERE o.type = 'C'
GO

CREATE VIEW INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS (
    CONSTRAINT_CATALOG sysname, CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname,
    UNIQUE_CONSTRAINT_CATALOG sysname, UNIQUE_CONSTRAINT_SCHEMA sysname, UNIQUE_CONSTRAINT_NAME sysname,
    MATCH_OPTION varchar(7), UPDATE_RULE varchar(11), DELETE_RULE varchar(11)
) AS
SELECT {name} AS CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, o.name AS CONSTRAINT_NAME,
    {name} AS UNIQUE_CONSTRAINT_CATALOG, r.schema AS UNIQUE_CONSTRAINT_SCHEMA,
    (SELECT i.name FROM {db}.devsql_indexes i WHERE i.object = k.referenced AND i.is_unique AND (SELECT count(*)
        FROM {db}.devsql_index_columns x WHERE x.object = i.object AND x.id = i.id) = (SELECT count(*)
        FROM {db}.devsql_foreign_key_columns f WHERE f.id = k.id) AND NOT EXISTS (SELECT 1
        FROM {db}.devsql_foreign_key_columns f WHERE f.id = k.id
        AND f.referenced_column NOT IN (SELECT x.column_id FROM {db}.devsql_index_columns x
        WHERE x.object = i.object AND x.id = i.id)) ORDER BY i.primary_key DESC LIMIT 1)
        AS UNIQUE_CONSTRAINT_NAME,
    'SIMPLE' AS MATCH_OPTION,
    CASE k.on_update WHEN 1 THEN 'CASCADE' WHEN 2 THEN 'SET NULL' WHEN 3 THEN 'SET DEFAULT' ELSE 'NO ACTION' END
        AS UPDATE_RULE,
    CASE k.on_delete WHEN 1 THEN 'CASCADE' WHEN 2 THEN 'SET NULL' WHEN 3 THEN 'SET DEFAULT' ELSE 'NO ACTION' END
        AS DELETE_RULE
FROM {db}.devsql_foreign_keys k
    JOIN {db}.devsql_objects o ON o.id = k.id
    JOIN {db}.devsql_objects r ON r.id = k.referenced
GO

CREATE VIEW INFORMATION_SCHEMA.CONSTRAINT_COLUMN_USAGE (
    TABLE_CATALOG sysname, TABLE_SCHEMA sysname, TABLE_NAME sysname, COLUMN_NAME sysname,
    CONSTRAINT_CATALOG sysname, CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname
) AS
SELECT {name} AS TABLE_CATALOG, o.schema AS TABLE_SCHEMA, o.name AS TABLE_NAME, c.name AS COLUMN_NAME,
    {name} AS CONSTRAINT_CATALOG, o.schema AS CONSTRAINT_SCHEMA, i.name AS CONSTRAINT_NAME
FROM {db}.devsql_indexes i
    JOIN {db}.devsql_index_columns k ON k.object = i.object AND k.id = i.id
    JOIN {db}.devsql_columns c ON c.object = i.object AND c.id = k.column_id
    JOIN {db}.devsql_objects o ON o.id = i.object
WHERE i.is_constraint
UNION ALL
SELECT {name}, p.schema, p.name, c.name, {name}, o.schema, o.name
FROM {db}.devsql_foreign_keys f
    JOIN {db}.devsql_objects o ON o.id = f.id
    JOIN {db}.devsql_objects p ON p.id = f.object
    JOIN {db}.devsql_foreign_key_columns k ON k.id = f.id
    JOIN {db}.devsql_columns c ON c.object = f.object AND c.id = k.column_id
GO

CREATE VIEW INFORMATION_SCHEMA.CONSTRAINT_TABLE_USAGE (
    TABLE_CATALOG sysname, TABLE_SCHEMA sysname, TABLE_NAME sysname, CONSTRAINT_CATALOG sysname,
    CONSTRAINT_SCHEMA sysname, CONSTRAINT_NAME sysname
) AS
SELECT {name} AS TABLE_CATALOG, p.schema AS TABLE_SCHEMA, p.name AS TABLE_NAME, {name} AS CONSTRAINT_CATALOG,
    o.schema AS CONSTRAINT_SCHEMA, o.name AS CONSTRAINT_NAME
FROM {db}.devsql_objects o
    JOIN {db}.devsql_objects p ON p.id = o.parent
WHERE o.type IN ('PK', 'UQ', 'F', 'C')
GO

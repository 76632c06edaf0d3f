-- Procedures of master that ODBC drivers and other clients ask about tables, columns, keys and types, with the columns
-- and numbers of ODBC. Patterns are LIKE patterns in which \ makes the next character literal. Clients call some of
-- them with a version in the name, sp_columns_100 for one; the server then runs the procedure without it. GO ends each
-- batch; see msdb_procedures.sql.

CREATE OR ALTER PROCEDURE dbo.sp_datatype_info @data_type int = 0, @ODBCVer tinyint = 2
AS
SELECT type_name AS TYPE_NAME, CASE WHEN @ODBCVer >= 3 THEN odbc_3_type ELSE odbc_2_type END AS DATA_TYPE,
    digits AS [PRECISION], prefix AS LITERAL_PREFIX, suffix AS LITERAL_SUFFIX, create_params AS CREATE_PARAMS,
    nullable AS NULLABLE, CONVERT(smallint, 0) AS CASE_SENSITIVE, searchable AS SEARCHABLE,
    unsigned_attribute AS UNSIGNED_ATTRIBUTE, money AS MONEY, auto_increment AS AUTO_INCREMENT,
    type_name AS LOCAL_TYPE_NAME, minimum_scale AS MINIMUM_SCALE, maximum_scale AS MAXIMUM_SCALE,
    sql_data_type AS SQL_DATA_TYPE, datetime_sub AS SQL_DATETIME_SUB, radix AS NUM_PREC_RADIX,
    CONVERT(smallint, NULL) AS INTERVAL_PRECISION, usertype AS USERTYPE
FROM sys.spt_types
WHERE COALESCE(@data_type, 0) = 0 OR CASE WHEN @ODBCVer >= 3 THEN odbc_3_type ELSE odbc_2_type END = @data_type
ORDER BY odbc_2_type, position
RETURN 0
GO

-- "%" for one argument and an empty text for the others asks for the databases, the owners or the kinds of tables.
CREATE OR ALTER PROCEDURE dbo.sp_tables
    @table_name nvarchar(384) = NULL, @table_owner nvarchar(384) = NULL, @table_qualifier sysname = NULL,
    @table_type varchar(100) = NULL, @fUsePattern bit = 1
AS
DECLARE @qualifier sysname, @owner sysname, @type varchar(32), @all varchar(9)
SET @all = CASE
    WHEN @table_name = N'' AND @table_owner = N'' AND @table_qualifier = N'%' THEN 'databases'
    WHEN @table_name = N'' AND @table_owner = N'%' AND @table_qualifier = N'' THEN 'owners'
    WHEN @table_name = N'' AND @table_owner = N'' AND @table_qualifier = N'' AND @table_type = '%' THEN 'types' END
IF @all = 'databases'
    SELECT CONVERT(sysname, name) AS TABLE_QUALIFIER, @owner AS TABLE_OWNER, @owner AS TABLE_NAME, @type AS TABLE_TYPE,
        CONVERT(varchar(254), NULL) AS REMARKS
    FROM master.dbo.sysdatabases ORDER BY 1
ELSE IF @all = 'owners'
    SELECT DISTINCT @qualifier AS TABLE_QUALIFIER, CONVERT(sysname, TABLE_SCHEMA) AS TABLE_OWNER,
        @qualifier AS TABLE_NAME, @type AS TABLE_TYPE, CONVERT(varchar(254), NULL) AS REMARKS
    FROM INFORMATION_SCHEMA.TABLES ORDER BY 2
ELSE IF @all = 'types'
    SELECT @qualifier AS TABLE_QUALIFIER, @owner AS TABLE_OWNER, @owner AS TABLE_NAME,
        CONVERT(varchar(32), kind) AS TABLE_TYPE, CONVERT(varchar(254), NULL) AS REMARKS
    FROM (SELECT 'SYSTEM TABLE' AS kind UNION SELECT 'TABLE' UNION SELECT 'VIEW') k ORDER BY 4
ELSE
    SELECT CONVERT(sysname, DB_NAME()) AS TABLE_QUALIFIER, CONVERT(sysname, TABLE_SCHEMA) AS TABLE_OWNER,
        CONVERT(sysname, TABLE_NAME) AS TABLE_NAME, CONVERT(varchar(32), REPLACE(TABLE_TYPE, 'BASE ', '')) AS TABLE_TYPE,
        CONVERT(varchar(254), NULL) AS REMARKS
    FROM INFORMATION_SCHEMA.TABLES
    WHERE TABLE_NAME LIKE COALESCE(@table_name, N'%') ESCAPE '\' AND TABLE_SCHEMA LIKE COALESCE(@table_owner, N'%') ESCAPE '\'
        AND (COALESCE(@table_type, '') = '' OR CHARINDEX('''' + REPLACE(TABLE_TYPE, 'BASE ', '') + '''', @table_type) > 0)
    ORDER BY TABLE_TYPE, TABLE_OWNER, TABLE_NAME
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_columns
    @table_name nvarchar(384), @table_owner nvarchar(384) = NULL, @table_qualifier sysname = NULL,
    @column_name nvarchar(384) = NULL, @ODBCVer int = 2, @fUsePattern bit = 1
AS
SELECT CONVERT(sysname, DB_NAME()) AS TABLE_QUALIFIER, owner AS TABLE_OWNER, object AS TABLE_NAME, name AS COLUMN_NAME,
    data_type AS DATA_TYPE,
    CONVERT(sysname, type_name + CASE is_identity WHEN 1 THEN N' identity' ELSE N'' END) AS TYPE_NAME,
    digits AS [PRECISION], length AS LENGTH, scale AS SCALE, radix AS RADIX, nullable AS NULLABLE,
    CONVERT(varchar(254), NULL) AS REMARKS, column_def AS COLUMN_DEF, sql_data_type AS SQL_DATA_TYPE,
    datetime_sub AS SQL_DATETIME_SUB, octets AS CHAR_OCTET_LENGTH, ordinal AS ORDINAL_POSITION,
    CONVERT(varchar(254), CASE nullable WHEN 1 THEN 'YES' ELSE 'NO' END) AS IS_NULLABLE,
    CASE nullable WHEN 1 THEN ss_nullable_type ELSE ss_type END AS SS_DATA_TYPE
FROM sys.spt_columns
WHERE object_type IN ('U', 'V') AND object LIKE COALESCE(@table_name, N'%') ESCAPE '\'
    AND owner LIKE COALESCE(@table_owner, N'%') ESCAPE '\' AND name LIKE COALESCE(@column_name, N'%') ESCAPE '\'
ORDER BY owner, object, ordinal
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_stored_procedures
    @sp_name nvarchar(390) = NULL, @sp_owner nvarchar(384) = NULL, @sp_qualifier sysname = NULL, @fUsePattern bit = 1
AS
SELECT CONVERT(sysname, DB_NAME()) AS PROCEDURE_QUALIFIER, CONVERT(sysname, ROUTINE_SCHEMA) AS PROCEDURE_OWNER,
    CONVERT(nvarchar(134), ROUTINE_NAME + N';1') AS PROCEDURE_NAME, -1 AS NUM_INPUT_PARAMS, -1 AS NUM_OUTPUT_PARAMS,
    -1 AS NUM_RESULT_SETS, CONVERT(varchar(254), NULL) AS REMARKS, CONVERT(smallint, 2) AS PROCEDURE_TYPE
FROM INFORMATION_SCHEMA.ROUTINES
WHERE ROUTINE_TYPE = 'PROCEDURE' AND ROUTINE_NAME LIKE COALESCE(@sp_name, N'%') ESCAPE '\'
    AND ROUTINE_SCHEMA LIKE COALESCE(@sp_owner, N'%') ESCAPE '\'
ORDER BY PROCEDURE_OWNER, PROCEDURE_NAME
RETURN 0
GO

-- The return value comes first. It is int, whose row in spt_types is joined.
CREATE OR ALTER PROCEDURE dbo.sp_sproc_columns
    @procedure_name nvarchar(390) = '%', @procedure_owner nvarchar(384) = NULL, @procedure_qualifier sysname = NULL,
    @column_name nvarchar(384) = NULL, @ODBCVer int = 2, @fUsePattern bit = 1
AS
SELECT CONVERT(sysname, DB_NAME()) AS PROCEDURE_QUALIFIER, p.owner AS PROCEDURE_OWNER,
    CONVERT(nvarchar(134), p.object + N';1') AS PROCEDURE_NAME, p.name AS COLUMN_NAME,
    CONVERT(smallint, p.kind) AS COLUMN_TYPE, p.data_type AS DATA_TYPE, p.type_name AS TYPE_NAME,
    p.digits AS [PRECISION], p.length AS LENGTH, p.scale AS SCALE, p.radix AS RADIX,
    CONVERT(smallint, p.nullable) AS NULLABLE, CONVERT(varchar(254), NULL) AS REMARKS,
    CONVERT(nvarchar(4000), NULL) AS COLUMN_DEF, p.sql_data_type AS SQL_DATA_TYPE, p.datetime_sub AS SQL_DATETIME_SUB,
    p.octets AS CHAR_OCTET_LENGTH, p.ordinal AS ORDINAL_POSITION,
    CONVERT(varchar(254), CASE p.nullable WHEN 1 THEN 'YES' ELSE 'NO' END) AS IS_NULLABLE,
    p.ss_nullable_type AS SS_DATA_TYPE
FROM (SELECT owner, object, name, CASE is_output WHEN 1 THEN 2 ELSE 1 END AS kind, data_type, type_name, digits,
        length, scale, radix, 1 AS nullable, sql_data_type, datetime_sub, octets, ordinal, ss_nullable_type
    FROM sys.spt_columns WHERE object_type = 'P'
    UNION ALL
    SELECT ROUTINE_SCHEMA, ROUTINE_NAME, '@RETURN_VALUE', 5, 4, 'int', 10, 4, 0, 10, 0, 4, NULL, NULL, 0, 38
    FROM INFORMATION_SCHEMA.ROUTINES WHERE ROUTINE_TYPE = 'PROCEDURE') p
WHERE p.object LIKE COALESCE(@procedure_name, N'%') ESCAPE '\' AND p.owner LIKE COALESCE(@procedure_owner, N'%') ESCAPE '\'
    AND p.name LIKE COALESCE(@column_name, N'%') ESCAPE '\'
ORDER BY PROCEDURE_OWNER, PROCEDURE_NAME, ORDINAL_POSITION
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_pkeys
    @table_name sysname, @table_owner sysname = NULL, @table_qualifier sysname = NULL
AS
SELECT CONVERT(sysname, DB_NAME()) AS TABLE_QUALIFIER, c.owner AS TABLE_OWNER, c.object AS TABLE_NAME,
    c.name AS COLUMN_NAME, CONVERT(smallint, k.key_ordinal) AS KEY_SEQ, i.name AS PK_NAME
FROM sys.indexes i JOIN sys.index_columns k ON k.object_id = i.object_id AND k.index_id = i.index_id
    JOIN sys.spt_columns c ON c.object_id = k.object_id AND c.column_id = k.column_id
WHERE i.is_primary_key = 1 AND c.object LIKE COALESCE(@table_name, N'%') ESCAPE '\'
    AND c.owner LIKE COALESCE(@table_owner, N'%') ESCAPE '\'
ORDER BY TABLE_OWNER, TABLE_NAME, KEY_SEQ
RETURN 0
GO

-- The rules are ODBC's numbers: 0 cascade, 1 no action, 2 set null, 3 set default.
CREATE OR ALTER PROCEDURE dbo.sp_fkeys
    @pktable_name sysname = NULL, @pktable_owner sysname = NULL, @pktable_qualifier sysname = NULL,
    @fktable_name sysname = NULL, @fktable_owner sysname = NULL, @fktable_qualifier sysname = NULL
AS
IF @pktable_name IS NULL AND @fktable_name IS NULL
BEGIN
    RAISERROR (15252, 16, 1)
    RETURN 1
END
SELECT CONVERT(sysname, DB_NAME()) AS PKTABLE_QUALIFIER, p.owner AS PKTABLE_OWNER, p.object AS PKTABLE_NAME,
    p.name AS PKCOLUMN_NAME, CONVERT(sysname, DB_NAME()) AS FKTABLE_QUALIFIER, c.owner AS FKTABLE_OWNER,
    c.object AS FKTABLE_NAME, c.name AS FKCOLUMN_NAME, CONVERT(smallint, k.constraint_column_id) AS KEY_SEQ,
    CONVERT(smallint, CASE f.update_referential_action WHEN 0 THEN 1 WHEN 1 THEN 0
        ELSE f.update_referential_action END) AS UPDATE_RULE,
    CONVERT(smallint, CASE f.delete_referential_action WHEN 0 THEN 1 WHEN 1 THEN 0
        ELSE f.delete_referential_action END) AS DELETE_RULE,
    f.name AS FK_NAME, i.name AS PK_NAME, CONVERT(smallint, 7) AS DEFERRABILITY
FROM sys.foreign_keys f JOIN sys.foreign_key_columns k ON k.constraint_object_id = f.object_id
    JOIN sys.spt_columns c ON c.object_id = k.parent_object_id AND c.column_id = k.parent_column_id
    JOIN sys.spt_columns p ON p.object_id = k.referenced_object_id AND p.column_id = k.referenced_column_id
    LEFT JOIN sys.indexes i ON i.object_id = f.referenced_object_id AND i.is_primary_key = 1
WHERE (@pktable_name IS NULL OR p.object = @pktable_name) AND (@pktable_owner IS NULL OR p.owner = @pktable_owner)
    AND c.object LIKE COALESCE(@fktable_name, N'%') ESCAPE '\' AND c.owner LIKE COALESCE(@fktable_owner, N'%') ESCAPE '\'
ORDER BY FKTABLE_OWNER, FKTABLE_NAME, FK_NAME, KEY_SEQ
RETURN 0
GO

-- The first row of a table is the number of its rows.
CREATE OR ALTER PROCEDURE dbo.sp_statistics
    @table_name sysname, @table_owner sysname = NULL, @table_qualifier sysname = NULL, @index_name sysname = '%',
    @is_unique char(1) = 'N', @accuracy char(1) = 'Q'
AS
SELECT CONVERT(sysname, DB_NAME()) AS TABLE_QUALIFIER, s.owner AS TABLE_OWNER, s.object AS TABLE_NAME,
    CONVERT(smallint, s.non_unique) AS NON_UNIQUE, CONVERT(sysname, s.qualifier) AS INDEX_QUALIFIER,
    CONVERT(sysname, s.index_name) AS INDEX_NAME, CONVERT(smallint, s.type) AS TYPE,
    CONVERT(smallint, s.key_ordinal) AS SEQ_IN_INDEX, CONVERT(sysname, s.name) AS COLUMN_NAME,
    CONVERT(char(1), s.collation) AS COLLATION, CONVERT(int, s.rows) AS CARDINALITY, CONVERT(int, NULL) AS PAGES,
    CONVERT(varchar(128), NULL) AS FILTER_CONDITION
FROM (SELECT TABLE_SCHEMA AS owner, TABLE_NAME AS object, NULL AS non_unique, NULL AS qualifier, NULL AS index_name,
        0 AS type, NULL AS key_ordinal, NULL AS name, NULL AS collation, x.rows
    FROM INFORMATION_SCHEMA.TABLES t JOIN sysindexes x ON x.id = OBJECT_ID(QUOTENAME(TABLE_SCHEMA) + '.' + QUOTENAME(TABLE_NAME))
        AND x.indid < 2
    UNION ALL
    SELECT c.owner, c.object, CASE i.is_unique WHEN 1 THEN 0 ELSE 1 END, c.object, i.name,
        CASE i.index_id WHEN 1 THEN 1 ELSE 3 END, k.key_ordinal, c.name,
        CASE k.is_descending_key WHEN 1 THEN 'D' ELSE 'A' END, NULL
    FROM sys.indexes i JOIN sys.index_columns k ON k.object_id = i.object_id AND k.index_id = i.index_id
        JOIN sys.spt_columns c ON c.object_id = k.object_id AND c.column_id = k.column_id
    WHERE (i.is_unique = 1 OR COALESCE(@is_unique, 'N') <> 'Y') AND i.name LIKE COALESCE(@index_name, N'%') ESCAPE '\') s
WHERE s.object LIKE COALESCE(@table_name, N'%') ESCAPE '\' AND s.owner LIKE COALESCE(@table_owner, N'%') ESCAPE '\'
ORDER BY TABLE_OWNER, TABLE_NAME, NON_UNIQUE, TYPE, INDEX_NAME, SEQ_IN_INDEX
RETURN 0
GO

-- The columns that identify a row ('R': those of the primary key or of another unique index), or that every change of the
-- row changes ('V': timestamp).
CREATE OR ALTER PROCEDURE dbo.sp_special_columns
    @table_name sysname, @table_owner sysname = NULL, @qualifier sysname = NULL, @col_type char(1) = 'R',
    @scope char(1) = 'T', @nullable char(1) = 'U', @ODBCVer int = 2
AS
SELECT CONVERT(smallint, CASE WHEN @col_type = 'V' THEN NULL ELSE 2 END) AS SCOPE, c.name AS COLUMN_NAME,
    c.data_type AS DATA_TYPE,
    CONVERT(sysname, c.type_name + CASE c.is_identity WHEN 1 THEN N' identity' ELSE N'' END) AS TYPE_NAME,
    c.digits AS [PRECISION], c.length AS LENGTH, c.scale AS SCALE, CONVERT(smallint, 1) AS PSEUDO_COLUMN
FROM sys.spt_columns c LEFT JOIN sys.index_columns k ON k.object_id = c.object_id AND k.column_id = c.column_id
    AND k.index_id = (SELECT TOP 1 i.index_id FROM sys.indexes i WHERE i.object_id = c.object_id AND i.is_unique = 1
        ORDER BY i.is_primary_key DESC, i.index_id)
WHERE c.object_type = 'U' AND c.object LIKE COALESCE(@table_name, N'%') ESCAPE '\'
    AND c.owner LIKE COALESCE(@table_owner, N'%') ESCAPE '\'
    AND (@col_type = 'V' AND c.ss_type = 45 AND c.type_name = N'timestamp' OR
        COALESCE(@col_type, 'R') <> 'V' AND k.key_ordinal IS NOT NULL)
ORDER BY c.owner, c.object, k.key_ordinal
RETURN 0
GO

-- Procedures of master: about tables, indexes and constraints, for each table or database, and users' messages. GO ends
-- each batch; see msdb_procedures.sql.

USE master
GO

CREATE OR ALTER PROCEDURE dbo.sp_helpindex @objname nvarchar(776)
AS
SET NOCOUNT ON
DECLARE @id int, @indid smallint, @keys nvarchar(2126)
SET @id = OBJECT_ID(@objname)
IF @id IS NULL
BEGIN
    DECLARE @db sysname
    SET @db = DB_NAME()
    RAISERROR (15009, 16, 1, @objname, @db)
    RETURN 1
END
SELECT @indid = MIN(indid) FROM sysindexes WHERE id = @id AND indid > 0
IF @indid IS NULL
BEGIN
    RAISERROR (15472, 10, 1, @objname)
    RETURN 0
END
DECLARE @list TABLE (indid smallint, keys nvarchar(2126))
WHILE @indid IS NOT NULL
BEGIN
    SET @keys = NULL
    SELECT @keys = COALESCE(@keys + N', ', N'') + c.name + CASE WHEN k.is_descending_key = 1 THEN N'(-)' ELSE N'' END
    FROM sys.index_columns k JOIN syscolumns c ON c.id = k.object_id AND c.colid = k.column_id
    WHERE k.object_id = @id AND k.index_id = @indid ORDER BY k.key_ordinal
    INSERT @list VALUES (@indid, @keys)
    SELECT @indid = MIN(indid) FROM sysindexes WHERE id = @id AND indid > @indid
END
SELECT i.name AS index_name,
    CONVERT(varchar(210), CASE WHEN i.indid = 1 THEN 'clustered' ELSE 'nonclustered' END +
    CASE WHEN i.status & 2 = 2 THEN ', unique' ELSE '' END +
    CASE WHEN i.status & 2048 = 2048 THEN ', primary key' ELSE '' END +
    CASE WHEN i.status & 4096 = 4096 THEN ', unique key' ELSE '' END + ' located on PRIMARY') AS index_description,
    l.keys AS index_keys
FROM sysindexes i JOIN @list l ON l.indid = i.indid WHERE i.id = @id ORDER BY i.name
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_helpconstraint @objname nvarchar(776), @nomsg varchar(5) = 'msg'
AS
SET NOCOUNT ON
DECLARE @id int, @con int, @keys nvarchar(4000), @references nvarchar(4000)
SET @id = OBJECT_ID(@objname)
IF @id IS NULL
BEGIN
    DECLARE @db sysname
    SET @db = DB_NAME()
    RAISERROR (15009, 16, 1, @objname, @db)
    RETURN 1
END
DECLARE @list TABLE (id int, part int, keys nvarchar(4000))
SELECT @con = MIN(id) FROM sysobjects WHERE parent_obj = @id AND xtype <> 'TR'
WHILE @con IS NOT NULL
BEGIN
    SELECT @keys = NULL, @references = NULL
    SELECT @keys = COALESCE(@keys + N', ', N'') + column_name FROM INFORMATION_SCHEMA.KEY_COLUMN_USAGE
    WHERE constraint_name = OBJECT_NAME(@con) ORDER BY ordinal_position
    SELECT @references = COALESCE(@references + N', ', N'REFERENCES ' + DB_NAME() + N'.dbo.' + OBJECT_NAME(f.rkeyid) +
        N' (') + c.name
    FROM sysforeignkeys f JOIN syscolumns c ON c.id = f.rkeyid AND c.colid = f.rkey WHERE f.constid = @con
    ORDER BY f.keyno
    SELECT @keys = definition FROM sys.check_constraints WHERE object_id = @con
    SELECT @keys = definition FROM sys.default_constraints WHERE object_id = @con
    INSERT @list VALUES (@con, 1, @keys)
    IF @references IS NOT NULL
        INSERT @list VALUES (@con, 2, @references + N')')
    SELECT @con = MIN(id) FROM sysobjects WHERE parent_obj = @id AND xtype <> 'TR' AND id > @con
END
IF @nomsg <> 'nomsg'
    SELECT @objname AS [Object Name]
IF NOT EXISTS (SELECT * FROM @list)
    PRINT 'No constraints are defined on object ''' + @objname + ''', or you do not have permissions.'
ELSE
    SELECT CASE WHEN l.part = 2 THEN N' ' WHEN o.xtype = 'PK' THEN N'PRIMARY KEY' + i.kind WHEN o.xtype = 'UQ' THEN
            N'UNIQUE' + i.kind WHEN o.xtype = 'F' THEN N'FOREIGN KEY' WHEN o.xtype = 'D' THEN N'DEFAULT on column ' + c.name
            ELSE N'CHECK ' + COALESCE(N'on column ' + c.name, N'Table Level') END AS constraint_type,
        CASE WHEN l.part = 2 THEN N' ' ELSE o.name END AS constraint_name,
        CASE WHEN l.part = 2 THEN ' ' WHEN o.xtype = 'F' THEN r.delete_rule ELSE '(n/a)' END AS delete_action,
        CASE WHEN l.part = 2 THEN ' ' WHEN o.xtype = 'F' THEN r.update_rule ELSE '(n/a)' END AS update_action,
        CASE WHEN l.part = 2 THEN ' ' WHEN o.xtype NOT IN ('F', 'C') THEN '(n/a)' WHEN
            COALESCE(k.is_disabled, h.is_disabled) = 1 THEN 'Disabled' ELSE 'Enabled' END AS status_enabled,
        CASE WHEN l.part = 2 THEN ' ' WHEN o.xtype IN ('F', 'C') THEN 'Is_For_Replication' ELSE '(n/a)' END
            AS status_for_replication,
        l.keys AS constraint_keys
    FROM @list l JOIN sysobjects o ON o.id = l.id
        LEFT JOIN (SELECT name, CASE WHEN index_id = 1 THEN N' (clustered)' ELSE N' (non-clustered)' END AS kind
            FROM sys.indexes WHERE object_id = @id) i ON i.name = o.name
        LEFT JOIN INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS r ON r.constraint_name = o.name
        LEFT JOIN sys.foreign_keys k ON k.object_id = o.id LEFT JOIN sys.check_constraints h ON h.object_id = o.id
        LEFT JOIN sysconstraints n ON n.constid = o.id LEFT JOIN syscolumns c ON c.id = @id AND c.colid = n.colid
    ORDER BY CASE o.xtype WHEN 'C' THEN 1 WHEN 'D' THEN 2 WHEN 'F' THEN 3 WHEN 'PK' THEN 4 ELSE 5 END, o.name, l.part
IF EXISTS (SELECT * FROM sysreferences WHERE rkeyid = @id)
    SELECT DB_NAME() + N'.dbo.' + OBJECT_NAME(fkeyid) + N': ' + OBJECT_NAME(constid) AS
        [Table is referenced by foreign key]
    FROM sysreferences WHERE rkeyid = @id ORDER BY 1
ELSE IF @nomsg <> 'nomsg'
    PRINT 'No foreign keys reference table ''' + @objname + ''', or you do not have permissions on referencing tables.'
RETURN 0
GO

-- What a table takes is not known: SQLite tells it only where it is built to.
CREATE OR ALTER PROCEDURE dbo.sp_spaceused @objname nvarchar(776) = NULL, @updateusage varchar(5) = 'false'
AS
SET NOCOUNT ON
DECLARE @db sysname
SET @db = DB_NAME()
IF @objname IS NULL
BEGIN
    SELECT @db AS database_name, LTRIM(STR(SUM(size) / 128.0, 15, 2)) + ' MB' AS database_size,
        '0.00 MB' AS [unallocated space] FROM sysfiles
    SELECT LTRIM(STR(SUM(size) * 8.0, 15, 0)) + ' KB' AS reserved, LTRIM(STR(SUM(size) * 8.0, 15, 0)) + ' KB' AS data,
        CONVERT(varchar(18), NULL) AS index_size, CONVERT(varchar(18), NULL) AS unused FROM sysfiles WHERE groupid > 0
    RETURN 0
END
IF COALESCE(OBJECTPROPERTY(OBJECT_ID(@objname), 'IsUserTable'), 0) = 0
BEGIN
    RAISERROR (15009, 16, 1, @objname, @db)
    RETURN 1
END
SELECT OBJECT_NAME(id) AS name, CONVERT(char(11), rows) AS rows, CONVERT(varchar(18), NULL) AS reserved,
    CONVERT(varchar(18), NULL) AS data, CONVERT(varchar(18), NULL) AS index_size, CONVERT(varchar(18), NULL) AS unused
FROM sysindexes WHERE id = OBJECT_ID(@objname) AND indid < 2
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_helprole @rolename sysname = NULL
AS
SET NOCOUNT ON
SELECT name AS RoleName, uid AS RoleId, 0 AS IsAppRole FROM sysusers
WHERE issqlrole = 1 AND (@rolename IS NULL OR name = @rolename)
RETURN 0
GO

-- Statements are compiled whenever they run: nothing to mark, nothing to refresh.
CREATE OR ALTER PROCEDURE dbo.sp_recompile @objname nvarchar(776)
AS
IF OBJECT_ID(@objname) IS NULL
BEGIN
    DECLARE @db sysname
    SET @db = DB_NAME()
    RAISERROR (15009, 16, 1, @objname, @db)
    RETURN 1
END
PRINT 'Object ''' + @objname + ''' was successfully marked for recompilation.'
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_refreshview @viewname nvarchar(776)
AS
IF OBJECT_ID(@viewname, 'V') IS NULL
BEGIN
    DECLARE @db sysname
    SET @db = DB_NAME()
    RAISERROR (15009, 16, 1, @viewname, @db)
    RETURN 1
END
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_updatestats @resample char(8) = 'NO'
AS
PRINT 'Statistics for all tables have been updated.'
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_MSforeachtable @command1 nvarchar(2000), @replacechar nchar(1) = N'?',
    @command2 nvarchar(2000) = NULL, @command3 nvarchar(2000) = NULL, @whereand nvarchar(2000) = NULL,
    @precommand nvarchar(2000) = NULL, @postcommand nvarchar(2000) = NULL
AS
DECLARE @table nvarchar(517), @sql nvarchar(max)
IF @precommand IS NOT NULL
    EXEC (@precommand)
CREATE TABLE #each (name nvarchar(517))
SET @sql = N'INSERT #each SELECT N''['' + SCHEMA_NAME(o.uid) + N''].['' + o.name + N'']'' FROM sysobjects o
    WHERE o.xtype = ''U'' ' + COALESCE(@whereand, N'') + N' ORDER BY o.name'
SET NOCOUNT ON
EXEC (@sql)
SET NOCOUNT OFF
DECLARE each CURSOR LOCAL FOR SELECT name FROM #each
OPEN each
FETCH NEXT FROM each INTO @table
WHILE @@FETCH_STATUS = 0
BEGIN
    SET @sql = REPLACE(@command1, @replacechar, @table)
    EXEC (@sql)
    SET @sql = REPLACE(@command2, @replacechar, @table)
    IF @sql IS NOT NULL
        EXEC (@sql)
    SET @sql = REPLACE(@command3, @replacechar, @table)
    IF @sql IS NOT NULL
        EXEC (@sql)
    FETCH NEXT FROM each INTO @table
END
IF @postcommand IS NOT NULL
    EXEC (@postcommand)
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_MSforeachdb @command1 nvarchar(2000), @replacechar nchar(1) = N'?'
AS
DECLARE @database sysname, @sql nvarchar(max)
DECLARE each CURSOR LOCAL FOR SELECT name FROM master.dbo.sysdatabases ORDER BY dbid
OPEN each
FETCH NEXT FROM each INTO @database
WHILE @@FETCH_STATUS = 0
BEGIN
    SET @sql = REPLACE(@command1, @replacechar, @database)
    EXEC (@sql)
    FETCH NEXT FROM each INTO @database
END
RETURN 0
GO

IF OBJECT_ID('dbo.sysmessages') IS NOT NULL
    EXEC sp_rename 'dbo.sysmessages', 'sysusermessages'
IF OBJECT_ID('dbo.sysusermessages') IS NULL
CREATE TABLE dbo.sysusermessages (
    error int NOT NULL PRIMARY KEY, severity smallint NOT NULL, dlevel smallint NOT NULL,
    description nvarchar(255) NULL, msglangid smallint NOT NULL)
GO

CREATE OR ALTER PROCEDURE dbo.sp_addmessage @msgnum int, @severity smallint, @msgtext nvarchar(255),
    @lang sysname = NULL, @with_log varchar(5) = 'FALSE', @replace varchar(7) = NULL
AS
SET NOCOUNT ON
IF @msgnum <= 50000 OR @severity NOT BETWEEN 1 AND 25
BEGIN
    RAISERROR (15600, 15, 1, 'sp_addmessage')
    RETURN 1
END
IF @replace = 'replace'
    DELETE master.dbo.sysusermessages WHERE error = @msgnum
IF EXISTS (SELECT * FROM master.dbo.sysusermessages WHERE error = @msgnum)
BEGIN
    RAISERROR (15043, 16, 1)
    RETURN 1
END
INSERT master.dbo.sysusermessages VALUES (@msgnum, @severity, 0, @msgtext, 1033)
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_dropmessage @msgnum int, @lang sysname = NULL
AS
SET NOCOUNT ON
DELETE master.dbo.sysusermessages WHERE error = @msgnum
IF @@ROWCOUNT = 0
BEGIN
    RAISERROR (15179, 16, 1, @msgnum)
    RETURN 1
END
RETURN 0
GO

-- The sessions that the argument selects: those of a login, one by its number, 'active' ones (the session that asks; all
-- others wait for their clients), or all.
CREATE OR ALTER PROCEDURE dbo.sp_who @loginame sysname = NULL
AS
IF @loginame LIKE N'%[^0-9]%' AND @loginame <> N'active' AND NOT EXISTS
    (SELECT * FROM master.dbo.syslogins WHERE loginname = @loginame)
BEGIN
    RAISERROR (15007, 16, 1, @loginame)
    RETURN 1
END
SELECT p.spid, CONVERT(smallint, 0) AS ecid, p.status, CONVERT(sysname, p.loginame) AS loginame, p.hostname,
    CONVERT(char(5), '0') AS blk, DB_NAME(p.dbid) AS dbname, p.cmd
FROM master.dbo.sysprocesses p
WHERE COALESCE(@loginame, N'') = N'' OR @loginame = N'active' AND p.spid = @@SPID OR p.loginame = @loginame
    OR CONVERT(nvarchar(9), p.spid) = @loginame
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_who2 @loginame sysname = NULL
AS
SELECT CONVERT(char(5), p.spid) AS SPID, CONVERT(nvarchar(30), RTRIM(CASE p.status WHEN 'runnable' THEN 'RUNNABLE'
        ELSE p.status END)) AS Status, CONVERT(sysname, p.loginame) AS Login,
    CONVERT(sysname, p.hostname) AS HostName, CONVERT(char(5), '  .') AS BlkBy, DB_NAME(p.dbid) AS DBName,
    CONVERT(nvarchar(16), RTRIM(p.cmd)) AS Command, CONVERT(sysname, p.program_name) AS ProgramName
FROM master.dbo.sysprocesses p
WHERE COALESCE(@loginame, N'') = N'' OR @loginame = N'active' AND p.spid = @@SPID OR p.loginame = @loginame
    OR CONVERT(nvarchar(9), p.spid) = @loginame
RETURN 0
GO

-- Every level is accepted; the language is always that of level 140.
CREATE OR ALTER PROCEDURE dbo.sp_dbcmptlevel @dbname sysname = NULL, @new_cmptlevel int = NULL
AS
SET NOCOUNT ON
IF @dbname IS NOT NULL AND DB_ID(@dbname) IS NULL
BEGIN
    RAISERROR (15010, 16, 1, @dbname)
    RETURN 1
END
IF @new_cmptlevel IS NULL
    RAISERROR (15054, 10, 1, '140')
ELSE IF @new_cmptlevel NOT IN (80, 90, 100, 110, 120, 130, 140)
BEGIN
    RAISERROR (15048, 16, 1, '80, 90, 100, 110, 120, 130, 140')
    RETURN 1
END
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_helptrigger @tabname nvarchar(776), @triggertype char(6) = NULL
AS
SET NOCOUNT ON
IF COALESCE(OBJECTPROPERTY(OBJECT_ID(@tabname), 'IsUserTable'), 0) = 0
BEGIN
    DECLARE @db sysname
    SET @db = DB_NAME()
    RAISERROR (15009, 16, 1, @tabname, @db)
    RETURN 1
END
IF @triggertype NOT IN ('insert', 'update', 'delete')
BEGIN
    RAISERROR (15305, 16, 1)
    RETURN 1
END
SET NOCOUNT OFF
SELECT t.name AS trigger_name, 'dbo' AS trigger_owner, OBJECTPROPERTY(t.object_id, 'ExecIsUpdateTrigger') AS isupdate,
    OBJECTPROPERTY(t.object_id, 'ExecIsDeleteTrigger') AS isdelete,
    OBJECTPROPERTY(t.object_id, 'ExecIsInsertTrigger') AS isinsert, 1 AS isafter, 0 AS isinsteadof,
    (SELECT s.name FROM sys.objects o JOIN sys.schemas s ON s.schema_id = o.schema_id WHERE o.object_id = t.object_id)
        AS trigger_schema
FROM sys.triggers t
WHERE t.parent_id = OBJECT_ID(@tabname)
    AND (@triggertype IS NULL OR OBJECTPROPERTY(t.object_id, 'ExecIs' + RTRIM(@triggertype) + 'Trigger') = 1)
ORDER BY t.name
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_help @objname nvarchar(776) = NULL
AS
SET NOCOUNT ON
DECLARE @id int, @type char(2), @db sysname
IF @objname IS NULL
BEGIN
    SELECT name AS Name, 'dbo' AS Owner, CASE xtype WHEN 'U' THEN 'user table' WHEN 'V' THEN 'view'
            WHEN 'P' THEN 'stored procedure' WHEN 'FN' THEN 'scalar function' WHEN 'PK' THEN 'primary key cns'
            WHEN 'UQ' THEN 'unique cns' WHEN 'F' THEN 'foreign key cns' WHEN 'C' THEN 'check cns'
            WHEN 'TR' THEN 'trigger' ELSE 'default (maybe cns)' END AS Object_type
    FROM sysobjects ORDER BY Object_type, Name
    RETURN 0
END
SELECT @id = id, @type = xtype FROM sysobjects WHERE id = OBJECT_ID(@objname)
IF @id IS NULL
BEGIN
    SET @db = DB_NAME()
    RAISERROR (15009, 16, 1, @objname, @db)
    RETURN 1
END
SELECT name AS Name, 'dbo' AS Owner, CASE xtype WHEN 'U' THEN 'user table' WHEN 'V' THEN 'view'
        WHEN 'P' THEN 'stored procedure' WHEN 'FN' THEN 'scalar function' WHEN 'TR' THEN 'trigger'
        ELSE 'constraint' END AS Type,
    crdate AS Created_datetime
FROM sysobjects WHERE id = @id
IF @type = 'TR'
    RETURN 0
IF @type IN ('P', 'FN')
BEGIN
    SELECT c.name AS Parameter_name, t.name AS Type, c.length AS Length, c.prec AS Prec, c.scale AS Scale,
        c.colid AS Param_order, c.collation AS Collation
    FROM syscolumns c JOIN systypes t ON t.xusertype = c.xusertype WHERE c.id = @id ORDER BY c.colid
    RETURN 0
END
SELECT c.name AS Column_name, t.name AS Type, CASE c.iscomputed WHEN 1 THEN 'yes' ELSE 'no' END AS Computed,
    c.length AS Length, c.prec AS Prec, c.scale AS Scale, CASE c.isnullable WHEN 1 THEN 'yes' ELSE 'no' END AS Nullable,
    c.collation AS Collation
FROM syscolumns c JOIN systypes t ON t.xusertype = c.xusertype WHERE c.id = @id ORDER BY c.colorder
IF @type <> 'U'
    RETURN 0
SELECT name AS [Identity], IDENT_SEED(@objname) AS Seed, IDENT_INCR(@objname) AS Increment, 0 AS [Not For Replication]
FROM syscolumns WHERE id = @id AND colstat & 1 = 1
UNION ALL
SELECT N'No identity column defined.', NULL, NULL, NULL
WHERE NOT EXISTS (SELECT * FROM syscolumns WHERE id = @id AND colstat & 1 = 1)
SELECT name AS [RowGuidCol] FROM sys.columns WHERE object_id = @id AND is_rowguidcol = 1
UNION ALL
SELECT N'No rowguidcol column defined.'
WHERE NOT EXISTS (SELECT * FROM sys.columns WHERE object_id = @id AND is_rowguidcol = 1)
SELECT N'PRIMARY' AS Data_located_on_filegroup
EXEC sp_helpindex @objname
EXEC sp_helpconstraint @objname, 'nomsg'
RETURN 0
GO

-- Storage and statistics need no care here: these succeed and do nothing.
CREATE OR ALTER PROCEDURE dbo.sp_tableoption
    @TableNamePattern nvarchar(776), @OptionName varchar(35), @OptionValue varchar(12)
AS RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_indexoption
    @IndexNamePattern nvarchar(1035), @OptionName varchar(35), @OptionValue varchar(12)
AS RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_autostats
    @tblname nvarchar(776), @flagc varchar(10) = NULL, @indname sysname = NULL
AS RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_createstats
    @indexonly char(9) = NULL, @fullscan char(9) = NULL, @norecompute char(12) = NULL
AS RETURN 0
GO

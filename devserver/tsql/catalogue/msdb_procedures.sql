-- What msdb and master consist of beside the catalogue: the package store and the job tables of msdb with their procedures,
-- and procedures of master about users, logins and databases. GO ends each batch. They run at the first start of a
-- version of the server: kBootstrapVersion in embedded_sql.h rises when a file changes.

USE msdb
GO

IF OBJECT_ID('dbo.sysdtspackages') IS NULL
CREATE TABLE dbo.sysdtspackages (
    name sysname NOT NULL,
    id uniqueidentifier NOT NULL,
    versionid uniqueidentifier NOT NULL,
    description nvarchar(1024) NULL,
    categoryid uniqueidentifier NOT NULL,
    createdate datetime NULL,
    owner sysname NOT NULL,
    packagedata image NULL,
    owner_sid varbinary(85) NOT NULL,
    packagetype int NOT NULL DEFAULT (0),
    CONSTRAINT pk_dtspackages PRIMARY KEY (id, versionid)
)
IF OBJECT_ID('dbo.sysdtscategories') IS NULL
BEGIN
    CREATE TABLE dbo.sysdtscategories (
        name sysname NOT NULL, description nvarchar(1024) NULL, id uniqueidentifier NOT NULL PRIMARY KEY,
        parentid uniqueidentifier NOT NULL)
    INSERT dbo.sysdtscategories VALUES (N'Local', N'Packages of this server',
        'B8C30002-A282-11D1-B7D9-00C04FB6EFD5', 'B8C30000-A282-11D1-B7D9-00C04FB6EFD5')
END
GO

IF OBJECT_ID('dbo.syscategories') IS NULL
BEGIN
    CREATE TABLE dbo.syscategories (
        category_id int IDENTITY (100, 1) NOT NULL PRIMARY KEY,
        category_class int NOT NULL, category_type tinyint NOT NULL, name sysname NOT NULL)
    SET IDENTITY_INSERT dbo.syscategories ON
    INSERT dbo.syscategories (category_id, category_class, category_type, name) VALUES
        (0, 1, 1, N'[Uncategorized (Local)]'), (1, 1, 1, N'Jobs from MSX'), (2, 1, 2, N'[Uncategorized (Multi-Server)]'),
        (3, 1, 1, N'Database Maintenance'), (4, 1, 1, N'Web Assistant'), (5, 1, 1, N'Full-Text'),
        (10, 1, 1, N'REPL-Distribution'), (11, 1, 1, N'REPL-Distribution Cleanup'), (12, 1, 1, N'REPL-History Cleanup'),
        (13, 1, 1, N'REPL-LogReader'), (14, 1, 1, N'REPL-Merge'), (15, 1, 1, N'REPL-Snapshot'), (16, 1, 1, N'REPL-Checkup'),
        (17, 1, 1, N'REPL-Subscription Cleanup'), (18, 1, 1, N'REPL-Alert Response'), (19, 1, 1, N'REPL-QueueReader'),
        (98, 2, 3, N'[Uncategorized]'), (99, 3, 3, N'[Uncategorized]')
    SET IDENTITY_INSERT dbo.syscategories OFF
END
IF OBJECT_ID('dbo.sysjobs') IS NULL
CREATE TABLE dbo.sysjobs (
    job_id uniqueidentifier NOT NULL PRIMARY KEY, originating_server nvarchar(30) NOT NULL, name sysname NOT NULL,
    enabled tinyint NOT NULL, description nvarchar(512) NULL, start_step_id int NOT NULL, category_id int NOT NULL,
    owner_sid varbinary(85) NOT NULL, notify_level_eventlog int NOT NULL, notify_level_email int NOT NULL,
    notify_level_netsend int NOT NULL, notify_level_page int NOT NULL, notify_email_operator_id int NOT NULL,
    notify_netsend_operator_id int NOT NULL, notify_page_operator_id int NOT NULL, delete_level int NOT NULL,
    date_created datetime NOT NULL, date_modified datetime NOT NULL, version_number int NOT NULL)
GO

CREATE OR ALTER PROCEDURE dbo.sp_add_dtspackage
    @name sysname, @id uniqueidentifier, @versionid uniqueidentifier, @description nvarchar(255),
    @categoryid uniqueidentifier, @owner sysname, @packagedata image, @packagetype int = 0
AS
SET NOCOUNT ON
IF @name IS NULL OR @name = N'' OR @id IS NULL OR @versionid IS NULL
BEGIN
    RAISERROR (14043, 16, 1, N'@name, @id or @versionid')
    RETURN 1
END
IF @categoryid IS NULL
    SET @categoryid = 'B8C30002-A282-11D1-B7D9-00C04FB6EFD5'
IF NOT EXISTS (SELECT * FROM msdb.dbo.sysdtscategories WHERE id = @categoryid)
BEGIN
    DECLARE @category nvarchar(50)
    SET @category = CONVERT(nvarchar(50), @categoryid)
    RAISERROR (14262, 16, 1, N'@categoryid', @category)
    RETURN 1
END
IF EXISTS (SELECT * FROM msdb.dbo.sysdtspackages WHERE id = @id AND versionid = @versionid)
BEGIN
    DECLARE @version nvarchar(50)
    SET @version = CONVERT(nvarchar(50), @versionid)
    RAISERROR (14590, 16, 1, @name, @version)
    RETURN 1
END
IF EXISTS (SELECT * FROM msdb.dbo.sysdtspackages WHERE name = @name AND id <> @id)
BEGIN
    RAISERROR (14590, 16, 1, @name, N'another id')
    RETURN 1
END
INSERT msdb.dbo.sysdtspackages (name, id, versionid, description, categoryid, createdate, owner, packagedata, owner_sid,
    packagetype)
VALUES (@name, @id, @versionid, @description, @categoryid, GETDATE(), COALESCE(@owner, SUSER_SNAME()), @packagedata,
    COALESCE(SUSER_SID(), 0x01), COALESCE(@packagetype, 0))
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_drop_dtspackage
    @name sysname, @id uniqueidentifier, @versionid uniqueidentifier
AS
SET NOCOUNT ON
DECLARE @find_id uniqueidentifier, @find_version uniqueidentifier, @what nvarchar(128)
IF @id IS NULL
    SELECT TOP 1 @find_id = id FROM msdb.dbo.sysdtspackages WHERE name = @name ORDER BY createdate DESC
ELSE
    SELECT TOP 1 @find_id = id FROM msdb.dbo.sysdtspackages WHERE id = @id
IF @find_id IS NULL AND @versionid IS NOT NULL AND @name IS NULL
    SELECT @find_id = id FROM msdb.dbo.sysdtspackages WHERE versionid = @versionid
IF @versionid IS NULL
    SELECT TOP 1 @find_version = versionid FROM msdb.dbo.sysdtspackages WHERE id = @find_id ORDER BY createdate DESC
ELSE
    SELECT @find_version = versionid FROM msdb.dbo.sysdtspackages WHERE id = @find_id AND versionid = @versionid
IF @find_id IS NULL OR @find_version IS NULL
BEGIN
    SET @what = COALESCE(@name, CONVERT(nvarchar(50), @id), CONVERT(nvarchar(50), @versionid), N'')
    RAISERROR (14262, 16, 1, N'DTS Package', @what)
    RETURN 1
END
DELETE msdb.dbo.sysdtspackages WHERE id = @find_id AND versionid = @find_version
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_enum_dtspackages
    @name_filter sysname = '%', @description_filter nvarchar(255) = '%', @categoryid uniqueidentifier = NULL,
    @flags int = 0, @id uniqueidentifier = NULL, @wanttype int = NULL
AS
SET NOCOUNT ON
SELECT  p.name, p.id, p.versionid, p.description, p.createdate, p.owner,
        DATALENGTH(p.packagedata) AS size,
        p.packagedata,
        CASE WHEN p.owner_sid = SUSER_SID() THEN 1 ELSE 0 END AS isowner, p.packagetype
FROM    msdb.dbo.sysdtspackages p
WHERE   (@name_filter IS NULL OR p.name LIKE @name_filter)
    AND (@description_filter IS NULL OR @description_filter = N'%' OR p.description LIKE @description_filter)
    AND (@categoryid IS NULL OR p.categoryid = @categoryid)
    AND (@id IS NULL OR p.id = @id)
    AND (@wanttype IS NULL OR p.packagetype = @wanttype)
    AND (@flags & 1 = 0 OR NOT EXISTS (SELECT * FROM msdb.dbo.sysdtspackages n
         WHERE n.id = p.id AND n.createdate > p.createdate))
ORDER BY p.name, p.createdate DESC
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_get_dtspackage
    @name sysname, @id uniqueidentifier, @versionid uniqueidentifier
AS
SET NOCOUNT ON
DECLARE @find_id uniqueidentifier, @find_version uniqueidentifier, @what nvarchar(128)
SET @find_id = @id
IF @find_id IS NULL
    SELECT TOP 1 @find_id = id FROM msdb.dbo.sysdtspackages WHERE name = @name ORDER BY createdate DESC
SET @find_version = @versionid
IF @find_version IS NULL
    SELECT TOP 1 @find_version = versionid FROM msdb.dbo.sysdtspackages WHERE id = @find_id ORDER BY createdate DESC
IF NOT EXISTS (SELECT * FROM msdb.dbo.sysdtspackages WHERE id = @find_id AND versionid = @find_version)
BEGIN
    SET @what = COALESCE(@name, CONVERT(nvarchar(50), @id), N'')
    RAISERROR (14262, 16, 1, N'DTS Package', @what)
    RETURN 1
END
SELECT  name, id, versionid, description, createdate, owner, DATALENGTH(packagedata) AS size, packagedata,
        CASE WHEN owner_sid = SUSER_SID() THEN 1 ELSE 0 END AS isowner, packagetype
FROM    msdb.dbo.sysdtspackages
WHERE   id = @find_id AND versionid = @find_version
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_add_job
    @job_name sysname, @enabled tinyint = 1, @description nvarchar(512) = NULL, @start_step_id int = 1,
    @category_name sysname = NULL, @category_id int = NULL, @owner_login_name sysname = NULL,
    @job_id uniqueidentifier = NULL OUTPUT
AS
SET NOCOUNT ON
IF EXISTS (SELECT * FROM msdb.dbo.sysjobs WHERE name = @job_name)
BEGIN
    RAISERROR (14261, 16, 1, N'@job_name', @job_name)
    RETURN 1
END
IF @category_name IS NOT NULL
    SELECT @category_id = category_id FROM msdb.dbo.syscategories WHERE category_class = 1 AND name = @category_name
IF @category_name IS NOT NULL AND @category_id IS NULL
BEGIN
    RAISERROR (14262, 16, 1, N'@category_name', @category_name)
    RETURN 1
END
SET @job_id = NEWID()
INSERT msdb.dbo.sysjobs VALUES (@job_id, LEFT(@@SERVERNAME, 30), @job_name, @enabled, @description, @start_step_id,
    COALESCE(@category_id, 0), COALESCE(SUSER_SID(), 0x01), 0, 0, 0, 0, 0, 0, 0, 0, GETDATE(), GETDATE(), 1)
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_delete_job
    @job_id uniqueidentifier = NULL, @job_name sysname = NULL
AS
SET NOCOUNT ON
IF @job_id IS NULL
    SELECT @job_id = job_id FROM msdb.dbo.sysjobs WHERE name = @job_name
IF NOT EXISTS (SELECT * FROM msdb.dbo.sysjobs WHERE job_id = @job_id)
BEGIN
    DECLARE @what nvarchar(128)
    SET @what = COALESCE(@job_name, CONVERT(nvarchar(50), @job_id), N'')
    RAISERROR (14262, 16, 1, N'@job_name', @what)
    RETURN 1
END
DELETE msdb.dbo.sysjobs WHERE job_id = @job_id
RETURN 0
GO

USE master
GO

CREATE OR ALTER PROCEDURE dbo.sp_helpuser @name_in_db sysname = NULL
AS
SET NOCOUNT ON
SELECT u.name AS UserName, COALESCE(g.name, N'public') AS GroupName, l.loginname AS LoginName,
    l.dbname AS DefDBName, u.uid AS UserID, u.sid AS SID
FROM sysusers u LEFT JOIN sysmembers m ON m.memberuid = u.uid LEFT JOIN sysusers g ON g.uid = m.groupuid
    LEFT JOIN master.dbo.syslogins l ON l.sid = u.sid
WHERE u.issqlrole = 0 AND u.hasdbaccess = 1 AND (@name_in_db IS NULL OR u.name = @name_in_db)
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_helprolemember @rolename sysname = NULL
AS
SET NOCOUNT ON
SELECT g.name AS DbRole, u.name AS MemberName, u.sid AS MemberSID
FROM sysmembers m JOIN sysusers u ON u.uid = m.memberuid JOIN sysusers g ON g.uid = m.groupuid
WHERE @rolename IS NULL OR g.name = @rolename
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_server_info @attribute_id int = NULL
AS
SET NOCOUNT ON
CREATE TABLE #info (attribute_id int NOT NULL, attribute_name varchar(60) NOT NULL, attribute_value varchar(255) NULL)
INSERT #info VALUES (1, 'DBMS_NAME', 'Microsoft SQL Server')
INSERT #info VALUES (2, 'DBMS_VER', CONVERT(varchar(255), SERVERPROPERTY('ProductVersion')))
INSERT #info VALUES (10, 'OWNER_TERM', 'owner')
INSERT #info VALUES (11, 'TABLE_TERM', 'table')
INSERT #info VALUES (12, 'MAX_OWNER_NAME_LENGTH', '128')
INSERT #info VALUES (16, 'IDENTIFIER_CASE', 'MIXED')
INSERT #info VALUES (18, 'COLLATION_SEQ', 'charset=iso_1 sort_order=nocase_iso')
SELECT * FROM #info WHERE @attribute_id IS NULL OR attribute_id = @attribute_id
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_helplogins @LoginNamePattern sysname = NULL
AS
SET NOCOUNT ON
SELECT loginname AS LoginName, sid AS SID, dbname AS DefDBName, language AS DefLangName, 'yes' AS AUser, 'no' AS ARemote
FROM master.dbo.syslogins WHERE @LoginNamePattern IS NULL OR loginname = @LoginNamePattern
RETURN 0
GO

CREATE OR ALTER PROCEDURE dbo.sp_databases
AS
SET NOCOUNT ON
SELECT name AS DATABASE_NAME, CONVERT(int, 2048) AS DATABASE_SIZE, CONVERT(varchar(254), NULL) AS REMARKS
FROM master.dbo.sysdatabases ORDER BY name
RETURN 0
GO

USE master
GO

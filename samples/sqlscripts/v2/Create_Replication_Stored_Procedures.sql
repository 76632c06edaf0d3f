/*
	Lotkeeper - transactional replication of the batch database, schema version 2

	Procedures of the console's Replication tab and of the synchronisation. This script prepares nothing on the
	server: spInstallReplication does, when it is called. The publisher is the server on which it is called, the
	subscriber is the other one of the pair.
*/
SET NOCOUNT ON
GO

USE [Batch]
GO

IF DB_NAME() <> N'Batch'
BEGIN
	RAISERROR (N'There is no database "Batch" on %s. No procedure was created.', 16, 127, N'###SERVER###')
	SET NOEXEC ON
END
GO

SET QUOTED_IDENTIFIER ON
GO
SET ANSI_NULLS ON
GO

PRINT N'Creating replication procedures on ###server###...'
GO

IF EXISTS (SELECT * FROM dbo.sysobjects WHERE id = object_id(N'[dbo].[spUninstallReplication]') AND OBJECTPROPERTY(id, N'IsProcedure') = 1)
	DROP PROCEDURE [dbo].[spUninstallReplication]
GO
IF EXISTS (SELECT * FROM dbo.sysobjects WHERE id = object_id(N'[dbo].[spInstallReplication]') AND OBJECTPROPERTY(id, N'IsProcedure') = 1)
	DROP PROCEDURE [dbo].[spInstallReplication]
GO
IF EXISTS (SELECT * FROM dbo.sysobjects WHERE id = object_id(N'[dbo].[spReplicationPair]') AND OBJECTPROPERTY(id, N'IsProcedure') = 1)
	DROP PROCEDURE [dbo].[spReplicationPair]
GO

/* The names of the two servers of the pair, their logins and the folders of their files. */
CREATE PROCEDURE [dbo].[spReplicationPair]
	@Publication sysname OUTPUT,
	@Publisher sysname OUTPUT,
	@Subscriber sysname OUTPUT,
	@SubscriberUser sysname OUTPUT,
	@SubscriberPassword sysname OUTPUT,
	@DataFolder nvarchar(255) OUTPUT,
	@SnapshotFolder nvarchar(255) OUTPUT
AS
	SET NOCOUNT ON
	SET @Publisher = N'###SERVER###'
	IF @Publisher = N'###SERVERA###'
	BEGIN
		SET @Publication = N'batch_' + REPLACE(N'###servera###', N'\', N'_')
		SET @Subscriber = N'###SERVERB###'
		SET @SubscriberUser = N'###USERIDB###'
		SET @SubscriberPassword = N'###PASSWORDB###'
		SET @DataFolder = N'###DATAPATHA###'
		SET @SnapshotFolder = N'###UNCREPLDATAPATHA###'
	END
	ELSE
	BEGIN
		SET @Publication = N'batch_' + REPLACE(N'###serverb###', N'\', N'_')
		SET @Subscriber = N'###SERVERA###'
		SET @SubscriberUser = N'###USERIDA###'
		SET @SubscriberPassword = N'###PASSWORDA###'
		SET @DataFolder = N'###DATAPATHB###'
		SET @SnapshotFolder = N'###UNCREPLDATAPATHB###'
	END
	IF @Subscriber = N'' OR @SubscriberUser = N'' OR @SnapshotFolder = N''
	BEGIN
		RAISERROR (N'Replication needs both servers, their logins and the UNC path ''%s''.', 16, 1, N'###UNCREPLDATAPATH###')
		RETURN 1
	END
	RETURN 0
GO

/* Ends the subscription of the other server, which removes the job of the distribution agent. */
CREATE PROCEDURE [dbo].[spUninstallReplication]
AS
	SET NOCOUNT ON
	DECLARE @intResult int, @strPublication sysname, @strPublisher sysname, @strSubscriber sysname,
		@strUser sysname, @strPassword sysname, @strData nvarchar(255), @strSnapshot nvarchar(255), @strDb sysname

	SET @strDb = DB_NAME()
	IF DATABASEPROPERTYEX(@strDb, N'IsPublished') = 0
	BEGIN
		PRINT N'Replication is not installed in this database.'
		RETURN 0
	END

	EXEC @intResult = dbo.spReplicationPair @strPublication OUTPUT, @strPublisher OUTPUT, @strSubscriber OUTPUT,
		@strUser OUTPUT, @strPassword OUTPUT, @strData OUTPUT, @strSnapshot OUTPUT
	IF @intResult <> 0
		RETURN 1

	/* An installation that failed half way may have published the database without a publication. */
	IF EXISTS (SELECT * FROM dbo.syspublications WHERE name = @strPublication)
	BEGIN
		EXEC @intResult = sp_dropsubscription @publication = @strPublication, @article = N'all', @subscriber = N'all'
		IF @intResult = 0
			EXEC @intResult = sp_droppublication @publication = @strPublication
	END
	IF @intResult = 0
		EXEC @intResult = sp_replicationdboption @dbname = @strDb, @optname = N'publish', @value = N'false'
	IF @intResult <> 0
	BEGIN
		RAISERROR (N'Replication of ''%s'' could not be removed.', 16, 1, @strPublication)
		RETURN 2
	END
	PRINT N'Replication from ' + @strPublisher + N' to ' + @strSubscriber + N' removed.'
	RETURN 0
GO

/* Publishes every table with a primary key to the other server, which first gets the data of this one. */
CREATE PROCEDURE [dbo].[spInstallReplication]
AS
	SET NOCOUNT ON
	DECLARE @intResult int, @strPublication sysname, @strPublisher sysname, @strSubscriber sysname,
		@strUser sysname, @strPassword sysname, @strData nvarchar(255), @strSnapshot nvarchar(255), @strDb sysname,
		@strTable sysname, @strText nvarchar(255)

	EXEC @intResult = dbo.spReplicationPair @strPublication OUTPUT, @strPublisher OUTPUT, @strSubscriber OUTPUT,
		@strUser OUTPUT, @strPassword OUTPUT, @strData OUTPUT, @strSnapshot OUTPUT
	IF @intResult <> 0
		RETURN 1
	EXEC @intResult = dbo.spUninstallReplication
	IF @intResult <> 0
		RETURN 2
	SET @strDb = DB_NAME()

	/* The server is its own distributor. */
	IF NOT EXISTS (SELECT * FROM master.dbo.sysservers WHERE srvname = N'repl_distributor')
	BEGIN
		EXEC @intResult = master.dbo.sp_adddistributor @distributor = @strPublisher, @password = N'###PASSWORD###'
		IF @intResult = 0
			EXEC @intResult = master.dbo.sp_adddistributiondb @database = N'distribution', @data_folder = @strData,
				@log_folder = @strData
		IF @intResult = 0
			EXEC @intResult = master.dbo.sp_adddistpublisher @publisher = @strPublisher,
				@distribution_db = N'distribution', @working_directory = @strSnapshot
		IF @intResult <> 0
		BEGIN
			RAISERROR (N'%s could not be made a distributor.', 16, 1, @strPublisher)
			RETURN 3
		END
	END
	IF NOT EXISTS (SELECT * FROM master.dbo.sysservers WHERE srvname = @strSubscriber AND sub = 1)
		EXEC sp_addsubscriber @subscriber = @strSubscriber, @login = @strUser, @password = @strPassword, @security_mode = 0

	SET @strText = N'Batch data of ' + @strPublisher
	EXEC @intResult = sp_replicationdboption @dbname = @strDb, @optname = N'publish', @value = N'true'
	IF @intResult = 0
		EXEC @intResult = sp_addpublication @publication = @strPublication, @description = @strText,
			@repl_freq = N'continuous', @status = N'active'
	IF @intResult = 0
		EXEC @intResult = sp_addpublication_snapshot @publication = @strPublication

	DECLARE curTables CURSOR LOCAL STATIC FOR
		SELECT	name
		FROM	dbo.sysobjects
		WHERE	xtype = 'U' AND OBJECTPROPERTY(id, N'IsMSShipped') = 0
			AND OBJECTPROPERTY(id, N'TableHasPrimaryKey') = 1 AND name NOT IN (N'LKConfig', N'BatchSummary')
	OPEN curTables
	FETCH NEXT FROM curTables INTO @strTable
	WHILE @@FETCH_STATUS = 0 AND @intResult = 0
	BEGIN
		EXEC @intResult = sp_addarticle @publication = @strPublication, @article = @strTable, @source_owner = N'dbo',
			@source_object = @strTable
		FETCH NEXT FROM curTables INTO @strTable
	END
	CLOSE curTables
	DEALLOCATE curTables

	IF @intResult = 0
		EXEC @intResult = sp_addsubscription @publication = @strPublication, @article = N'all',
			@subscriber = @strSubscriber, @destination_db = @strDb, @sync_type = N'automatic', @subscription_type = N'push'
	IF @intResult <> 0 OR NOT EXISTS (
		SELECT	j.job_id
		FROM	msdb.dbo.sysjobs j INNER JOIN msdb.dbo.syscategories c ON c.category_id = j.category_id
		WHERE	c.category_class = 1 AND c.name = N'REPL-Distribution')
	BEGIN
		RAISERROR (N'Replication from %s to %s could not be installed.', 16, 1, @strPublisher, @strSubscriber)
		RETURN 4
	END
	PRINT N'Replication from ' + @strPublisher + N' to ' + @strSubscriber + N' installed.'
	RETURN 0
GO

PRINT N'Replication procedures created.'
GO

SET NOEXEC OFF
GO

/*
	Lotkeeper - stored procedures of the batch database, schema version 1

	Can be run again: every procedure is dropped and created again. The only table that is dropped is BatchSummary,
	whose rows spBatchSummaryRecalc can calculate again.
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

PRINT N'Creating work tables...'
GO

IF EXISTS (SELECT * FROM dbo.sysobjects WHERE id = object_id(N'[dbo].[BatchSummary]') AND OBJECTPROPERTY(id, N'IsUserTable') = 1)
	DROP TABLE [dbo].[BatchSummary]
GO
CREATE TABLE [dbo].[BatchSummary] (
	[RecipeId] [int] NOT NULL ,
	[Month] [char] (7) NOT NULL ,
	[Batches] [int] NOT NULL ,
	[Aborted] [int] NOT NULL ,
	[Quantity] [decimal] (18, 3) NOT NULL ,
	[MeanYield] [real] NULL ,
	[Cost] [money] NOT NULL ,
	[Calculated] [datetime] NOT NULL CONSTRAINT [DF_BatchSummary_Calculated] DEFAULT (GETDATE()) ,
	CONSTRAINT [PK_BatchSummary] PRIMARY KEY CLUSTERED ([RecipeId], [Month]) ON [PRIMARY]
) ON [PRIMARY]
GO

PRINT N'Dropping old procedures...'
GO

DECLARE @strName sysname
DECLARE curOld CURSOR LOCAL STATIC FOR
	SELECT	name
	FROM	dbo.sysobjects
	WHERE	OBJECTPROPERTY(id, N'IsProcedure') = 1
		AND name IN (N'spGetConfig', N'spSetConfig', N'spStartBatch', N'spEndBatch', N'spStartPhase', N'spEndPhase',
			N'spAddEvent', N'spAcknowledgeEvents', N'spPurgeEvents', N'spListUnits', N'spSetUnitLimits', N'spSetUserSecrets',
			N'spReceiveLot', N'spConsumeLot', N'spLotConsumption', N'spAddBatchNote', N'spFindBatches', N'spTableCounts',
			N'spBatchOverview', N'spBatchOverviewRecalc', N'spBatchSummary', N'spBatchSummaryRecalc',
			N'spUpgradeDatabase', N'spStdSynchronize', N'spStdSynchronizePull')
OPEN curOld
FETCH NEXT FROM curOld INTO @strName
WHILE @@FETCH_STATUS = 0
BEGIN
	EXEC (N'DROP PROCEDURE [dbo].[' + @strName + N']')
	FETCH NEXT FROM curOld INTO @strName
END
CLOSE curOld
DEALLOCATE curOld
GO

PRINT N'Creating procedures...'
GO

/* Returns 0 and the value, or 1 if there is no such parameter. */
CREATE PROCEDURE [dbo].[spGetConfig]
	@ParameterName nvarchar(100),
	@Value nvarchar(255) OUTPUT
AS
	SET NOCOUNT ON
	SET @Value = NULL
	SELECT @Value = Value FROM dbo.LKConfig WHERE ParameterName = @ParameterName
	IF @@ROWCOUNT = 0
		RETURN 1
	RETURN 0
GO

CREATE PROCEDURE [dbo].[spSetConfig]
	@ParameterName nvarchar(100),
	@Value nvarchar(255),
	@Description nvarchar(255) = NULL
AS
	SET NOCOUNT ON
	IF @ParameterName = N'DatabaseVersion'
	BEGIN
		RAISERROR (N'The parameter ''%s'' belongs to the installation and can not be set.', 16, 1, @ParameterName)
		RETURN 1
	END

	DECLARE @intError int, @intRows int
	BEGIN TRANSACTION
	UPDATE	dbo.LKConfig
	SET	Value = @Value, Description = COALESCE(@Description, Description), Changed = GETDATE()
	WHERE	ParameterName = @ParameterName
	SELECT @intError = @@ERROR, @intRows = @@ROWCOUNT
	IF @intError = 0 AND @intRows = 0
	BEGIN
		INSERT INTO dbo.LKConfig (ParameterName, Value, Description) VALUES (@ParameterName, @Value, @Description)
		SET @intError = @@ERROR
	END
	IF @intError <> 0
	BEGIN
		ROLLBACK TRANSACTION
		RETURN 2
	END
	COMMIT TRANSACTION
	RETURN 0
GO

CREATE PROCEDURE [dbo].[spAddEvent]
	@Severity tinyint,
	@Category varchar(16),
	@Message nvarchar(400),
	@BatchId int = NULL,
	@UnitId smallint = NULL,
	@Value float = NULL,
	@EventId bigint = NULL OUTPUT
AS
	SET NOCOUNT ON
	INSERT INTO dbo.Events (BatchId, UnitId, Severity, Category, Message, Value)
		VALUES (@BatchId, @UnitId, @Severity, UPPER(@Category), @Message, @Value)
	IF @@ERROR <> 0
		RETURN 1
	SET @EventId = SCOPE_IDENTITY()
	RETURN 0
GO

/* Without a start time the batch starts now. */
CREATE PROCEDURE [dbo].[spStartBatch]
	@BatchName nvarchar(32),
	@RecipeId int,
	@UnitId smallint,
	@PlannedQuantity decimal(12, 3) = NULL,
	@OrderNo varchar(20) = NULL,
	@CustomerName nvarchar(80) = NULL,
	@StartedBy int = 1,
	@StartTime datetime = NULL,
	@BatchId int = NULL OUTPUT
AS
	SET NOCOUNT ON
	DECLARE @decSize decimal(12, 3), @bitReleased bit, @intError int, @strMessage nvarchar(400)

	SELECT @decSize = BatchSize, @bitReleased = Released FROM dbo.Recipes WHERE RecipeId = @RecipeId
	IF @@ROWCOUNT = 0
	BEGIN
		RAISERROR (N'There is no recipe %d.', 16, 1, @RecipeId)
		RETURN 1
	END
	IF @bitReleased = 0
	BEGIN
		RAISERROR (N'Recipe %d is not released.', 16, 1, @RecipeId)
		RETURN 2
	END
	IF EXISTS (SELECT * FROM dbo.Batches WHERE UnitId = @UnitId AND Status IN (1, 2))
	BEGIN
		RAISERROR (N'Unit %d is occupied by another batch.', 16, 1, @UnitId)
		RETURN 3
	END

	BEGIN TRANSACTION
	INSERT INTO dbo.Batches (BatchName, RecipeId, UnitId, OrderNo, CustomerName, Status, PlannedQuantity, StartTime, StartedBy)
		VALUES (@BatchName, @RecipeId, @UnitId, @OrderNo, @CustomerName, 1, ISNULL(@PlannedQuantity, @decSize),
			ISNULL(@StartTime, GETDATE()), @StartedBy)
	SELECT @intError = @@ERROR, @BatchId = SCOPE_IDENTITY()
	IF @intError = 0
	BEGIN
		SET @strMessage = N'Batch ' + @BatchName + N' started'
		EXEC @intError = dbo.spAddEvent 0, 'batch', @strMessage, @BatchId = @BatchId, @UnitId = @UnitId
	END
	IF @intError <> 0
	BEGIN
		ROLLBACK TRANSACTION
		SET @BatchId = NULL
		RETURN 4
	END
	COMMIT TRANSACTION
	RETURN 0
GO

CREATE PROCEDURE [dbo].[spEndBatch]
	@BatchId int,
	@ProducedQuantity decimal(12, 3) = 0,
	@Aborted bit = 0,
	@EndTime datetime = NULL
AS
	SET NOCOUNT ON
	DECLARE @dtmEnd datetime
	SET @dtmEnd = ISNULL(@EndTime, GETDATE())
	UPDATE	dbo.Batches
	SET	Status = CASE WHEN @Aborted = 1 THEN 4 ELSE 3 END,
		ProducedQuantity = @ProducedQuantity,
		EndTime = @dtmEnd,
		Yield = @ProducedQuantity / NULLIF(PlannedQuantity, 0)
	WHERE	BatchId = @BatchId AND Status IN (1, 2)
	IF @@ROWCOUNT = 0
	BEGIN
		RAISERROR (N'Batch %d is not running.', 16, 1, @BatchId)
		RETURN 1
	END
	UPDATE dbo.BatchPhases SET EndTime = @dtmEnd WHERE BatchId = @BatchId AND EndTime IS NULL
	EXEC dbo.spAddEvent @Severity = 0, @Category = 'BATCH', @Message = N'Batch ended', @BatchId = @BatchId
	RETURN 0
GO

CREATE PROCEDURE [dbo].[spStartPhase]
	@BatchId int,
	@StepNo smallint,
	@StartTime datetime = NULL
AS
	SET NOCOUNT ON
	INSERT INTO dbo.BatchPhases (BatchId, StepNo, PhaseId, UnitId, StartTime, SetPoint)
		SELECT	b.BatchId, s.StepNo, s.PhaseId, s.UnitId, ISNULL(@StartTime, GETDATE()), s.SetPoint
		FROM	dbo.Batches b INNER JOIN dbo.RecipePhases s ON s.RecipeId = b.RecipeId
		WHERE	b.BatchId = @BatchId AND s.StepNo = @StepNo AND b.Status = 1
	IF @@ROWCOUNT <> 1
	BEGIN
		RAISERROR (N'Step %d of batch %d can not be started.', 16, 1, @StepNo, @BatchId)
		RETURN 1
	END
	RETURN 0
GO

CREATE PROCEDURE [dbo].[spEndPhase]
	@BatchId int,
	@StepNo smallint,
	@ActualValue float = NULL,
	@Minutes int = NULL OUTPUT
AS
	SET NOCOUNT ON
	UPDATE	dbo.BatchPhases
	SET	EndTime = GETDATE(), ActualValue = @ActualValue
	WHERE	BatchId = @BatchId AND StepNo = @StepNo AND EndTime IS NULL
	IF @@ROWCOUNT = 0
		RETURN 1
	SELECT	@Minutes = DATEDIFF(minute, StartTime, EndTime)
	FROM	dbo.BatchPhases
	WHERE	BatchId = @BatchId AND StepNo = @StepNo
	RETURN 0
GO

CREATE PROCEDURE [dbo].[spAcknowledgeEvents]
	@UserId int,
	@Before datetime,
	@MaxSeverity tinyint = 255
AS
	UPDATE	dbo.Events
	SET	Acknowledged = 1, AcknowledgedBy = @UserId
	WHERE	Acknowledged = 0 AND EventTime < @Before AND Severity <= @MaxSeverity
	RETURN @@ROWCOUNT
GO

/* Deletes in portions, so that the log of a large table stays small. */
CREATE PROCEDURE [dbo].[spPurgeEvents]
	@Before datetime = NULL,
	@Deleted int = 0 OUTPUT
AS
	SET NOCOUNT ON
	DECLARE @intRows int, @strDays nvarchar(255)
	IF @Before IS NULL
	BEGIN
		EXEC dbo.spGetConfig N'EventKeepDays', @strDays OUTPUT
		SET @Before = DATEADD(day, -CONVERT(int, ISNULL(@strDays, N'365')), GETDATE())
	END
	SET @Deleted = 0
	SET @intRows = 1
	WHILE @intRows > 0
	BEGIN
		DELETE FROM dbo.Events
		WHERE	EventId IN (SELECT TOP 1000 EventId FROM dbo.Events WHERE EventTime < @Before AND Acknowledged = 1)
		SET @intRows = @@ROWCOUNT
		SET @Deleted = @Deleted + @intRows
	END
	RETURN 0
GO

CREATE PROCEDURE [dbo].[spListUnits]
	@ActiveOnly bit = 1,
	@UnitClass char(8) = NULL
AS
	SET NOCOUNT ON
	SELECT	u.UnitId, u.UnitName, u.Area, RTRIM(u.UnitClass) AS UnitClass, u.MaxVolume, u.MaxTemperature, u.TemperatureUnit,
		b.BatchName AS CurrentBatch, b.StartTime AS OccupiedSince
	FROM	dbo.Units u LEFT OUTER JOIN dbo.Batches b ON b.UnitId = u.UnitId AND b.Status IN (1, 2)
	WHERE	(u.Active = 1 OR @ActiveOnly = 0) AND (@UnitClass IS NULL OR u.UnitClass = @UnitClass)
	ORDER BY u.UnitName
GO

CREATE PROCEDURE [dbo].[spSetUnitLimits]
	@UnitId smallint,
	@MaxVolume decimal(10, 3),
	@MaxTemperature real = NULL,
	@LastCleaned smalldatetime = NULL
AS
	UPDATE	dbo.Units
	SET	MaxVolume = @MaxVolume, MaxTemperature = @MaxTemperature, LastCleaned = ISNULL(@LastCleaned, LastCleaned)
	WHERE	UnitId = @UnitId
	RETURN @@ERROR
GO

CREATE PROCEDURE [dbo].[spSetUserSecrets]
	@LoginName nvarchar(128),
	@PasswordHash varbinary(64),
	@Initials char(3) = 'XXX',
	@Picture image = NULL
AS
	UPDATE	dbo.LKUser
	SET	PasswordHash = @PasswordHash, Initials = @Initials, Picture = @Picture
	WHERE	LoginName = @LoginName
	IF @@ROWCOUNT = 0
		RETURN 1
	RETURN 0
GO

CREATE PROCEDURE [dbo].[spReceiveLot]
	@MaterialCode char(10),
	@LotNumber varchar(24),
	@Quantity decimal(12, 3),
	@UnitPrice money = NULL,
	@Supplier nvarchar(80) = N'',
	@Expires smalldatetime = NULL,
	@LotId int OUTPUT
AS
	SET NOCOUNT ON
	INSERT INTO dbo.Lots (LotNumber, MaterialId, Supplier, Expires, Quantity, Remaining, UnitPrice)
		SELECT	@LotNumber, MaterialId, NULLIF(@Supplier, N''), @Expires, @Quantity, @Quantity,
			COALESCE(@UnitPrice, ListPrice, 0)
		FROM	dbo.Materials
		WHERE	MaterialCode = @MaterialCode
	IF @@ROWCOUNT = 0
	BEGIN
		RAISERROR (N'Lot %s was not received: unknown material.', 16, 1, @LotNumber)
		RETURN 1
	END
	SET @LotId = @@IDENTITY
	RETURN 0
GO

CREATE PROCEDURE [dbo].[spConsumeLot]
	@BatchId int,
	@LotId int,
	@Quantity decimal(12, 3),
	@UserId int = 1
AS
	SET NOCOUNT ON
	DECLARE @intError int, @intRows int

	BEGIN TRANSACTION
	UPDATE	dbo.Lots
	SET	Remaining = Remaining - @Quantity
	WHERE	LotId = @LotId AND Released = 1 AND Remaining >= @Quantity
	SELECT @intError = @@ERROR, @intRows = @@ROWCOUNT
	IF @intError <> 0 OR @intRows = 0
	BEGIN
		ROLLBACK TRANSACTION
		RAISERROR (N'Lot %d is not released or holds too little.', 16, 1, @LotId)
		RETURN 1
	END

	INSERT INTO dbo.BatchMaterials (BatchId, LotId, Quantity, BookedBy) VALUES (@BatchId, @LotId, @Quantity, @UserId)
	IF @@ERROR <> 0
	BEGIN
		ROLLBACK TRANSACTION
		RETURN 2
	END

	UPDATE	b
	SET	Cost = b.Cost + @Quantity * l.UnitPrice
	FROM	dbo.Batches b, dbo.Lots l
	WHERE	b.BatchId = @BatchId AND l.LotId = @LotId
	IF @@ERROR <> 0
	BEGIN
		ROLLBACK TRANSACTION
		RETURN 3
	END
	COMMIT TRANSACTION
	RETURN 0
GO

/* Two result sets: the lot, and the batches that used it. */
CREATE PROCEDURE [dbo].[spLotConsumption]
	@LotNumber varchar(24)
AS
	SET NOCOUNT ON
	SELECT	l.LotId, l.LotNumber, m.MaterialName, l.Received, l.Quantity, l.Remaining, m.MeasureUnit
	FROM	dbo.Lots l INNER JOIN dbo.Materials m ON m.MaterialId = l.MaterialId
	WHERE	l.LotNumber = @LotNumber

	SELECT	b.BatchName, SUM(x.Quantity) AS Consumed, COUNT(*) AS Bookings, MAX(x.Booked) AS LastBooked
	FROM	dbo.BatchMaterials x
		INNER JOIN dbo.Lots l ON l.LotId = x.LotId
		INNER JOIN dbo.Batches b ON b.BatchId = x.BatchId
	WHERE	l.LotNumber = @LotNumber
	GROUP BY b.BatchName
	HAVING	SUM(x.Quantity) > 0
	ORDER BY b.BatchName
GO

CREATE PROCEDURE [dbo].[spAddBatchNote]
	@BatchGuid uniqueidentifier,
	@Notes ntext,
	@Remark nvarchar(255) = NULL
AS
	SET NOCOUNT ON
	UPDATE	dbo.Batches
	SET	Notes = @Notes, Remark = ISNULL(@Remark, Remark)
	WHERE	BatchGuid = @BatchGuid
	IF @@ROWCOUNT = 0
		RETURN 1
	RETURN 0
GO

/* @Column is a column of vBatchOverview; @Pattern is a LIKE pattern. */
CREATE PROCEDURE [dbo].[spFindBatches]
	@Column sysname = N'BatchName',
	@Pattern nvarchar(100) = N'%',
	@MaxRows int = 100,
	@Found int = NULL OUTPUT
AS
	SET NOCOUNT ON
	DECLARE @strSql nvarchar(4000)
	IF NOT EXISTS (SELECT * FROM dbo.syscolumns WHERE id = object_id(N'[dbo].[vBatchOverview]') AND name = @Column)
	BEGIN
		RAISERROR (N'The overview has no column ''%s''.', 16, 1, @Column)
		RETURN 1
	END
	SET @strSql = N'SELECT TOP ' + CONVERT(nvarchar(10), @MaxRows)
		+ N' BatchId, BatchName, StatusText, StartTime FROM dbo.vBatchOverview WHERE CONVERT(nvarchar(255), '
		+ QUOTENAME(@Column) + N') LIKE @p ORDER BY BatchId SET @n = @@ROWCOUNT'
	EXEC sp_executesql @strSql, N'@p nvarchar(100), @n int OUTPUT', @p = @Pattern, @n = @Found OUTPUT
	RETURN 0
GO

CREATE PROCEDURE [dbo].[spTableCounts]
AS
	SET NOCOUNT ON
	DECLARE @strTable sysname
	CREATE TABLE #Counts (TableName nvarchar(128) COLLATE database_default NOT NULL, RowTotal int NOT NULL)
	DECLARE curTables CURSOR LOCAL FAST_FORWARD FOR
		SELECT name FROM dbo.sysobjects WHERE xtype = 'U' AND OBJECTPROPERTY(id, N'IsMSShipped') = 0
	OPEN curTables
	FETCH NEXT FROM curTables INTO @strTable
	WHILE @@FETCH_STATUS = 0
	BEGIN
		EXEC (N'INSERT INTO #Counts SELECT N''' + @strTable + N''', COUNT(*) FROM [dbo].[' + @strTable + N']')
		FETCH NEXT FROM curTables INTO @strTable
	END
	CLOSE curTables
	DEALLOCATE curTables
	SELECT TableName, RowTotal FROM #Counts ORDER BY TableName
	DROP TABLE #Counts
	RETURN 0
GO

/* The rows of the export BatchOverviewExport. */
CREATE PROCEDURE [dbo].[spBatchOverview]
	@From datetime = NULL,
	@To datetime = NULL,
	@Status tinyint = NULL
AS
	SET NOCOUNT ON
	SELECT	BatchId, BatchName, RecipeName, RecipeVersion, ProductCode, UnitName, OrderNo, CustomerName, StatusText,
		PlannedQuantity, ProducedQuantity,
		CONVERT(varchar(19), StartTime, 120) AS StartTime, CONVERT(varchar(19), EndTime, 120) AS EndTime,
		DurationMinutes, Cost, ROUND(Yield * 100, 1) AS YieldPercent
	FROM	dbo.vBatchOverview
	WHERE	(@From IS NULL OR StartTime >= @From) AND (@To IS NULL OR StartTime < @To)
		AND (@Status IS NULL OR Status = @Status)
	ORDER BY BatchId
GO

/* Calculates cost and yield of every ended batch again and returns how many differed. */
CREATE PROCEDURE [dbo].[spBatchOverviewRecalc]
AS
	SET NOCOUNT ON
	DECLARE @intBatch int, @monOld money, @monNew money, @intChanged int
	SET @intChanged = 0
	DECLARE curBatches CURSOR LOCAL STATIC FOR
		SELECT BatchId, Cost FROM dbo.Batches WHERE Status >= 3 ORDER BY BatchId
	OPEN curBatches
	FETCH NEXT FROM curBatches INTO @intBatch, @monOld
	WHILE @@FETCH_STATUS = 0
	BEGIN
		SELECT	@monNew = ISNULL(SUM(x.Quantity * l.UnitPrice), 0)
		FROM	dbo.BatchMaterials x INNER JOIN dbo.Lots l ON l.LotId = x.LotId
		WHERE	x.BatchId = @intBatch
		IF @monNew <> @monOld
			SET @intChanged = @intChanged + 1
		UPDATE	dbo.Batches
		SET	Cost = @monNew, Yield = ProducedQuantity / NULLIF(PlannedQuantity, 0)
		WHERE	BatchId = @intBatch
		FETCH NEXT FROM curBatches INTO @intBatch, @monOld
	END
	CLOSE curBatches
	DEALLOCATE curBatches
	RETURN @intChanged
GO

/* The rows of the export BatchSummaryExport. */
CREATE PROCEDURE [dbo].[spBatchSummary]
	@Month char(7) = '%'
AS
	SET NOCOUNT ON
	SELECT	r.RecipeName, s.Month, s.Batches, s.Aborted, s.Quantity, s.MeanYield, s.Cost, s.Calculated
	FROM	dbo.BatchSummary s INNER JOIN dbo.Recipes r ON r.RecipeId = s.RecipeId
	WHERE	s.Month LIKE RTRIM(@Month)
	ORDER BY s.Month, r.RecipeName
GO

CREATE PROCEDURE [dbo].[spBatchSummaryRecalc]
	@Months smallint = 12
AS
	SET NOCOUNT ON
	DECLARE @chrFirst char(7)
	SET @chrFirst = CONVERT(char(7), DATEADD(month, -@Months, GETDATE()), 120)

	SELECT	RecipeId, CONVERT(char(7), StartTime, 120) AS Month, COUNT(*) AS Batches,
		SUM(CASE Status WHEN 4 THEN 1 ELSE 0 END) AS Aborted,
		SUM(ISNULL(ProducedQuantity, 0)) AS Quantity, AVG(Yield) AS MeanYield, SUM(Cost) AS Cost
	INTO	#Summary
	FROM	dbo.Batches
	WHERE	Status >= 3 AND CONVERT(char(7), StartTime, 120) >= @chrFirst
	GROUP BY RecipeId, CONVERT(char(7), StartTime, 120)

	BEGIN TRANSACTION
	DELETE FROM dbo.BatchSummary WHERE Month >= @chrFirst
	IF @@ERROR <> 0
	BEGIN
		ROLLBACK TRANSACTION
		RETURN 1
	END
	INSERT INTO dbo.BatchSummary (RecipeId, Month, Batches, Aborted, Quantity, MeanYield, Cost)
		SELECT RecipeId, Month, Batches, Aborted, Quantity, MeanYield, Cost FROM #Summary
	IF @@ERROR <> 0
	BEGIN
		ROLLBACK TRANSACTION
		RETURN 2
	END
	COMMIT TRANSACTION
	DROP TABLE #Summary
	RETURN 0
GO

/*
	Copies the data of an older batch database on the same server into this one. There is nothing older than
	version 1, so this version refuses.
*/
CREATE PROCEDURE [dbo].[spUpgradeDatabase]
	@SourceVersion int,
	@DestVersion int,
	@SourceDatabase nvarchar(128),
	@DestDatabase nvarchar(128),
	@User nvarchar(128),
	@Password nvarchar(128)
AS
	SET NOCOUNT ON
	RAISERROR (N'Database ''%s'' of version %d can not be upgraded to version %d: version 1 has no predecessor.', 16, 1,
		@SourceDatabase, @SourceVersion, @DestVersion)
	RETURN 1
GO

/*
	Makes the tables of this database equal to those of the source. Runs on the destination server, where
	spStdSynchronize of the source calls it, because only a local statement can insert explicit identity values.
	All rows are fetched before the transaction begins, so that it is a local transaction.
*/
CREATE PROCEDURE [dbo].[spStdSynchronizePull]
	@SourceServer nvarchar(128),
	@SourceDatabase nvarchar(128),
	@SourceUser nvarchar(128),
	@SourcePassword nvarchar(128)
AS
	SET NOCOUNT ON
	DECLARE @intNo int, @intLast int, @intError int, @strTable sysname, @strColumns nvarchar(2000), @strSql nvarchar(4000)

	CREATE TABLE #Tables (
		TableNo int IDENTITY (1, 1) NOT NULL,
		TableName nvarchar(128) COLLATE database_default NOT NULL,
		ColumnList nvarchar(2000) COLLATE database_default NULL
	)
	INSERT INTO #Tables (TableName) VALUES (N'LKUser')
	INSERT INTO #Tables (TableName) VALUES (N'Units')
	INSERT INTO #Tables (TableName) VALUES (N'Phases')
	INSERT INTO #Tables (TableName) VALUES (N'Recipes')
	INSERT INTO #Tables (TableName) VALUES (N'RecipePhases')
	INSERT INTO #Tables (TableName) VALUES (N'Materials')
	INSERT INTO #Tables (TableName) VALUES (N'Lots')
	INSERT INTO #Tables (TableName) VALUES (N'Batches')
	INSERT INTO #Tables (TableName) VALUES (N'BatchPhases')
	INSERT INTO #Tables (TableName) VALUES (N'BatchMaterials')
	INSERT INTO #Tables (TableName) VALUES (N'Events')
	SELECT @intLast = MAX(TableNo) FROM #Tables

	IF EXISTS (SELECT * FROM master.dbo.sysservers WHERE srvname = N'LKSYNC_SOURCE')
		EXEC sp_dropserver N'LKSYNC_SOURCE', N'droplogins'
	EXEC sp_addlinkedserver @server = N'LKSYNC_SOURCE', @srvproduct = N'', @provider = N'SQLOLEDB', @datasrc = @SourceServer
	EXEC sp_addlinkedsrvlogin N'LKSYNC_SOURCE', N'false', NULL, @SourceUser, @SourcePassword

	/* The server sets a timestamp column (type 189) itself. The -1 remains if a statement does not even start. */
	SET @intError = 0
	SET @intNo = 1
	WHILE @intNo <= @intLast AND @intError = 0
	BEGIN
		SELECT @strTable = TableName FROM #Tables WHERE TableNo = @intNo
		SET @strColumns = NULL
		SELECT	@strColumns = ISNULL(@strColumns + N', ', N'') + QUOTENAME(name)
		FROM	dbo.syscolumns
		WHERE	id = object_id(N'dbo.' + @strTable) AND xtype <> 189
		UPDATE #Tables SET ColumnList = @strColumns WHERE TableNo = @intNo

		SET @strSql = N'IF object_id(N''dbo.Sync' + @strTable + N''') IS NOT NULL DROP TABLE dbo.Sync' + @strTable
		EXEC sp_executesql @strSql
		SET @intError = -1
		SET @strSql = N'SELECT ' + @strColumns + N' INTO dbo.Sync' + @strTable + N' FROM LKSYNC_SOURCE.'
			+ QUOTENAME(@SourceDatabase) + N'.dbo.' + @strTable + N' SET @e = @@ERROR'
		EXEC sp_executesql @strSql, N'@e int OUTPUT', @e = @intError OUTPUT
		SET @intNo = @intNo + 1
	END
	EXEC sp_dropserver N'LKSYNC_SOURCE', N'droplogins'

	IF @intError = 0
	BEGIN
		BEGIN TRANSACTION
		SET @intNo = @intLast
		WHILE @intNo >= 1 AND @intError = 0
		BEGIN
			SELECT @strTable = TableName FROM #Tables WHERE TableNo = @intNo
			SET @intError = -1
			SET @strSql = N'DELETE FROM dbo.' + @strTable + N' SET @e = @@ERROR'
			EXEC sp_executesql @strSql, N'@e int OUTPUT', @e = @intError OUTPUT
			SET @intNo = @intNo - 1
		END
		SET @intNo = 1
		WHILE @intNo <= @intLast AND @intError = 0
		BEGIN
			SELECT @strTable = TableName, @strColumns = ColumnList FROM #Tables WHERE TableNo = @intNo
			SET @intError = -1
			SET @strSql = N'INSERT INTO dbo.' + @strTable + N' (' + @strColumns + N') SELECT ' + @strColumns
				+ N' FROM dbo.Sync' + @strTable + N' SET @e = @@ERROR'
			IF OBJECTPROPERTY(object_id(N'dbo.' + @strTable), N'TableHasIdentity') = 1
				SET @strSql = N'SET IDENTITY_INSERT dbo.' + @strTable + N' ON ' + @strSql
					+ N' SET IDENTITY_INSERT dbo.' + @strTable + N' OFF'
			EXEC sp_executesql @strSql, N'@e int OUTPUT', @e = @intError OUTPUT
			SET @intNo = @intNo + 1
		END
		IF @intError = 0
			COMMIT TRANSACTION
		ELSE
			ROLLBACK TRANSACTION
	END

	SET @intNo = 1
	WHILE @intNo <= @intLast
	BEGIN
		SELECT @strTable = TableName FROM #Tables WHERE TableNo = @intNo
		SET @strSql = N'IF object_id(N''dbo.Sync' + @strTable + N''') IS NOT NULL DROP TABLE dbo.Sync' + @strTable
		EXEC sp_executesql @strSql
		SET @intNo = @intNo + 1
	END
	IF @intError <> 0
	BEGIN
		RAISERROR (N'Synchronisation with %s failed with error %d. Nothing was changed.', 16, 1, @SourceServer, @intError)
		RETURN 1
	END
	RETURN 0
GO

/* Synchronises this database (the source) with a destination database on the other server of the pair. */
CREATE PROCEDURE [dbo].[spStdSynchronize]
	@User nvarchar(128),
	@Password nvarchar(128),
	@DestServer nvarchar(128),
	@SourceServer nvarchar(128),
	@DestDatabase nvarchar(128),
	@SourceDatabase nvarchar(128),
	@DestUser nvarchar(128),
	@SourceUser nvarchar(128),
	@DestPassword nvarchar(128),
	@SourcePassword nvarchar(128)
AS
	SET NOCOUNT ON
	DECLARE @intResult int, @strProc nvarchar(400)
	IF @SourceServer = @DestServer AND @SourceDatabase = @DestDatabase
	BEGIN
		RAISERROR (N'Source and destination are the same database ''%s''.', 16, 1, @DestDatabase)
		RETURN 1
	END

	IF EXISTS (SELECT * FROM master.dbo.sysservers WHERE srvname = N'LKSYNC_DEST')
		EXEC sp_dropserver N'LKSYNC_DEST', N'droplogins'
	EXEC sp_addlinkedserver @server = N'LKSYNC_DEST', @srvproduct = N'', @provider = N'SQLOLEDB', @datasrc = @DestServer
	EXEC sp_addlinkedsrvlogin N'LKSYNC_DEST', N'false', NULL, @DestUser, @DestPassword
	EXEC sp_serveroption N'LKSYNC_DEST', N'rpc out', N'true'

	SET @intResult = -1
	SET @strProc = N'LKSYNC_DEST.' + QUOTENAME(@DestDatabase) + N'.dbo.spStdSynchronizePull'
	EXEC @intResult = @strProc @SourceServer, @SourceDatabase, @SourceUser, @SourcePassword
	EXEC sp_dropserver N'LKSYNC_DEST', N'droplogins'
	IF ISNULL(@intResult, -1) <> 0
	BEGIN
		RAISERROR (N'Database ''%s'' on %s was not synchronised.', 16, 1, @DestDatabase, @DestServer)
		RETURN 2
	END
	EXEC dbo.spAddEvent 0, 'SYNC', N'Synchronised with the other server'
	RETURN 0
GO

/*
	An upgrade and a synchronisation call spUninstallReplication whether or not replication was ever prepared. The
	script of the replication procedures replaces this procedure by the full one.
*/
IF NOT EXISTS (SELECT * FROM dbo.sysobjects WHERE id = object_id(N'[dbo].[spUninstallReplication]') AND OBJECTPROPERTY(id, N'IsProcedure') = 1)
	EXEC (N'CREATE PROCEDURE [dbo].[spUninstallReplication]
AS
	SET NOCOUNT ON
	PRINT N''Replication was never prepared in this database.''
	RETURN 0')
GO

PRINT N'Granting rights...'
GO

DECLARE @strProcedure sysname, @intGranted int
SET @intGranted = 0
DECLARE curGrant CURSOR LOCAL STATIC FOR
	SELECT	name
	FROM	dbo.sysobjects
	WHERE	xtype = 'P' AND name LIKE N'sp%' AND name NOT LIKE N'sp%Replication' AND name NOT LIKE N'spStd%'
		AND name NOT IN (N'spUpgradeDatabase', N'spReplicationPair', N'spTableCounts')
OPEN curGrant
FETCH NEXT FROM curGrant INTO @strProcedure
WHILE @@FETCH_STATUS = 0
BEGIN
	EXEC (N'GRANT EXECUTE ON [dbo].[' + @strProcedure + N'] TO [LKBatchUser]')
	SET @intGranted = @intGranted + 1
	FETCH NEXT FROM curGrant INTO @strProcedure
END
CLOSE curGrant
DEALLOCATE curGrant
PRINT CONVERT(nvarchar(10), @intGranted) + N' procedures granted.'
GO

GRANT EXECUTE ON [dbo].[spBatchOverview] TO [LKBatchReader]
GRANT EXECUTE ON [dbo].[spBatchSummary] TO [LKBatchReader]
GO

PRINT N'Stored procedures created.'
GO

SET NOEXEC OFF
GO

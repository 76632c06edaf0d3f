/*
	Lotkeeper - create the batch database, schema version 2

	Creates database "Batch" on ###SERVER### with its tables, view and roles. Drops nothing: if a database of
	that name exists, the script says so and ends. Rename or remove the old database first.
*/
SET NOCOUNT ON
GO

USE [master]
GO

/* State 127 ends OSQL and SqlCMD; for any other tool NOEXEC prevents the following batches from running. */
IF EXISTS (SELECT * FROM master.dbo.sysdatabases WHERE name = N'Batch')
BEGIN
	RAISERROR (N'Database "Batch" exists already on %s. Nothing was changed.', 16, 127, N'###SERVER###')
	SET NOEXEC ON
END
GO

PRINT N'Creating database "Batch" on ###SERVER###...'
GO

CREATE DATABASE [Batch]
ON PRIMARY
(
	NAME = N'Batch_data',
	FILENAME = N'###DATAPATH###\Batch_data.mdf',
	SIZE = 20MB,
	MAXSIZE = UNLIMITED,
	FILEGROWTH = 10%
)
LOG ON
(
	NAME = N'Batch_log',
	FILENAME = N'###DATAPATH###\Batch_log.ldf',
	SIZE = 10MB,
	FILEGROWTH = 5MB
)
COLLATE Latin1_General_CI_AS
GO

/* A failed CREATE DATABASE must not put the tables into master. */
IF NOT EXISTS (SELECT * FROM master.dbo.sysdatabases WHERE name = N'Batch')
BEGIN
	RAISERROR (N'Database "Batch" could not be created in %s.', 16, 127, N'###DATAPATH###')
	SET NOEXEC ON
END
GO

ALTER DATABASE [Batch] SET RECOVERY SIMPLE
GO
ALTER DATABASE [Batch] SET AUTO_SHRINK OFF
GO

USE [Batch]
GO

SET QUOTED_IDENTIFIER ON
GO
SET ANSI_NULLS ON
GO

PRINT N'Creating user types...'
GO

IF NOT EXISTS (SELECT * FROM dbo.systypes WHERE name = N'LKName')
	EXEC sp_addtype N'LKName', N'nvarchar(50)', N'NOT NULL'
GO
IF NOT EXISTS (SELECT * FROM dbo.systypes WHERE name = N'LKQuantity')
	EXEC sp_addtype N'LKQuantity', N'decimal(12,3)', N'NULL'
GO

PRINT N'Creating tables...'
GO

CREATE TABLE [dbo].[LKConfig] (
	[ParameterName] [nvarchar] (100) NOT NULL ,
	[Value] [nvarchar] (255) NULL ,
	[Description] [nvarchar] (255) NULL ,
	[ChangedBy] [nvarchar] (128) NULL ,
	[Changed] [datetime] NOT NULL CONSTRAINT [DF_LKConfig_Changed] DEFAULT (GETDATE()) ,
	CONSTRAINT [PK_LKConfig] PRIMARY KEY CLUSTERED ([ParameterName]) WITH FILLFACTOR = 90 ON [PRIMARY]
) ON [PRIMARY]
GO

CREATE TABLE [dbo].[LKUser] (
	[UserId] [int] IDENTITY (1, 1) NOT NULL ,
	[LoginName] [nvarchar] (128) NOT NULL ,
	[FullName] [LKName] NOT NULL ,
	[Initials] [char] (3) NULL ,
	[RoleLevel] [tinyint] NOT NULL CONSTRAINT [DF_LKUser_RoleLevel] DEFAULT (1) ,
	[PasswordHash] [varbinary] (64) NULL ,
	[Picture] [image] NULL ,
	[Active] [bit] NOT NULL CONSTRAINT [DF_LKUser_Active] DEFAULT (1) ,
	[Created] [smalldatetime] NOT NULL CONSTRAINT [DF_LKUser_Created] DEFAULT (GETDATE()) ,
	CONSTRAINT [PK_LKUser] PRIMARY KEY CLUSTERED ([UserId]) ON [PRIMARY] ,
	CONSTRAINT [UQ_LKUser_LoginName] UNIQUE NONCLUSTERED ([LoginName]) ON [PRIMARY] ,
	CONSTRAINT [CK_LKUser_RoleLevel] CHECK ([RoleLevel] >= 0 AND [RoleLevel] <= 9)
) ON [PRIMARY] TEXTIMAGE_ON [PRIMARY]
GO

CREATE TABLE [dbo].[Units] (
	[UnitId] [smallint] IDENTITY (1, 1) NOT NULL ,
	[UnitName] [LKName] NOT NULL ,
	[Area] [nvarchar] (50) NULL ,
	[UnitClass] [char] (8) NOT NULL CONSTRAINT [DF_Units_UnitClass] DEFAULT ('VESSEL') ,
	[MaxVolume] [decimal] (10, 3) NULL ,
	[TemperatureLimit] [real] NULL ,
	[TemperatureUnit] [varchar] (4) NULL ,
	[SerialNo] [varchar] (32) NULL ,
	[LastCleaned] [smalldatetime] NULL ,
	[Active] [bit] NOT NULL CONSTRAINT [DF_Units_Active] DEFAULT (1) ,
	CONSTRAINT [PK_Units] PRIMARY KEY CLUSTERED ([UnitId]) ON [PRIMARY] ,
	CONSTRAINT [UQ_Units_UnitName] UNIQUE NONCLUSTERED ([UnitName]) ON [PRIMARY]
) ON [PRIMARY]
GO

CREATE TABLE [dbo].[Phases] (
	[PhaseId] [int] NOT NULL ,
	[PhaseName] [LKName] NOT NULL ,
	[Category] [char] (1) NOT NULL CONSTRAINT [DF_Phases_Category] DEFAULT ('P') ,
	[NominalMinutes] [int] NOT NULL CONSTRAINT [DF_Phases_NominalMinutes] DEFAULT (0) ,
	CONSTRAINT [PK_Phases] PRIMARY KEY CLUSTERED ([PhaseId]) ON [PRIMARY] ,
	CONSTRAINT [CK_Phases_Category] CHECK ([Category] IN ('P', 'M', 'C'))
) ON [PRIMARY]
GO

CREATE TABLE [dbo].[Recipes] (
	[RecipeId] [int] IDENTITY (1, 1) NOT NULL ,
	[RecipeName] [LKName] NOT NULL ,
	[Revision] [smallint] NOT NULL CONSTRAINT [DF_Recipes_Revision] DEFAULT (1) ,
	[ProductCode] [char] (10) NOT NULL ,
	[BatchSize] [LKQuantity] NOT NULL ,
	[Header] [text] NULL ,
	[Instructions] [ntext] NULL ,
	[Released] [bit] NOT NULL CONSTRAINT [DF_Recipes_Released] DEFAULT (0) ,
	[ReleasedAt] [datetime] NULL ,
	[RecipeGuid] [uniqueidentifier] NOT NULL CONSTRAINT [DF_Recipes_RecipeGuid] DEFAULT (NEWID()) ,
	CONSTRAINT [PK_Recipes] PRIMARY KEY CLUSTERED ([RecipeId]) ON [PRIMARY] ,
	CONSTRAINT [UQ_Recipes_Name_Revision] UNIQUE NONCLUSTERED ([RecipeName], [Revision]) ON [PRIMARY] ,
	CONSTRAINT [CK_Recipes_BatchSize] CHECK ([BatchSize] > 0)
) ON [PRIMARY] TEXTIMAGE_ON [PRIMARY]
GO

CREATE TABLE [dbo].[RecipePhases] (
	[RecipeId] [int] NOT NULL ,
	[StepNo] [smallint] NOT NULL ,
	[PhaseId] [int] NOT NULL ,
	[UnitId] [smallint] NOT NULL ,
	[SetPoint] [float] NULL ,
	CONSTRAINT [PK_RecipePhases] PRIMARY KEY CLUSTERED ([RecipeId], [StepNo]) ON [PRIMARY] ,
	CONSTRAINT [FK_RecipePhases_Recipes] FOREIGN KEY ([RecipeId])
		REFERENCES [dbo].[Recipes] ([RecipeId]) ON DELETE CASCADE ,
	CONSTRAINT [FK_RecipePhases_Phases] FOREIGN KEY ([PhaseId]) REFERENCES [dbo].[Phases] ([PhaseId]) ,
	CONSTRAINT [FK_RecipePhases_Units] FOREIGN KEY ([UnitId]) REFERENCES [dbo].[Units] ([UnitId])
) ON [PRIMARY]
GO

CREATE TABLE [dbo].[Materials] (
	[MaterialId] [int] IDENTITY (1, 1) NOT NULL ,
	[MaterialCode] [char] (10) NOT NULL ,
	[MaterialName] [LKName] NOT NULL ,
	[MeasureUnit] [varchar] (8) NOT NULL CONSTRAINT [DF_Materials_MeasureUnit] DEFAULT ('kg') ,
	[Density] [float] NULL ,
	[MinStock] [LKQuantity] NULL ,
	[ListPrice] [smallmoney] NULL ,
	[Hazardous] [bit] NOT NULL CONSTRAINT [DF_Materials_Hazardous] DEFAULT (0) ,
	[DataSheet] [image] NULL ,
	CONSTRAINT [PK_Materials] PRIMARY KEY CLUSTERED ([MaterialId]) ON [PRIMARY] ,
	CONSTRAINT [UQ_Materials_MaterialCode] UNIQUE NONCLUSTERED ([MaterialCode]) ON [PRIMARY]
) ON [PRIMARY] TEXTIMAGE_ON [PRIMARY]
GO

CREATE TABLE [dbo].[Lots] (
	[LotId] [int] IDENTITY (1, 1) NOT NULL ,
	[LotNumber] [varchar] (24) NOT NULL ,
	[MaterialId] [int] NOT NULL ,
	[Supplier] [nvarchar] (80) NULL ,
	[Received] [smalldatetime] NOT NULL CONSTRAINT [DF_Lots_Received] DEFAULT (GETDATE()) ,
	[Expires] [smalldatetime] NULL ,
	[Quantity] [LKQuantity] NOT NULL ,
	[Remaining] [LKQuantity] NOT NULL ,
	[UnitPrice] [money] NOT NULL CONSTRAINT [DF_Lots_UnitPrice] DEFAULT (0) ,
	[Released] [bit] NOT NULL CONSTRAINT [DF_Lots_Released] DEFAULT (0) ,
	[Blocked] [bit] NOT NULL CONSTRAINT [DF_Lots_Blocked] DEFAULT (0) ,
	CONSTRAINT [PK_Lots] PRIMARY KEY CLUSTERED ([LotId]) ON [PRIMARY] ,
	CONSTRAINT [UQ_Lots_LotNumber] UNIQUE NONCLUSTERED ([LotNumber]) ON [PRIMARY] ,
	CONSTRAINT [CK_Lots_Remaining] CHECK ([Remaining] >= 0 AND [Remaining] <= [Quantity]) ,
	CONSTRAINT [FK_Lots_Materials] FOREIGN KEY ([MaterialId]) REFERENCES [dbo].[Materials] ([MaterialId])
) ON [PRIMARY]
GO

/* The orders for which batches are made. Version 1 stored them with each batch. */
CREATE TABLE [dbo].[Orders] (
	[OrderId] [int] IDENTITY (1, 1) NOT NULL ,
	[OrderNo] [varchar] (20) NULL ,
	[CustomerName] [nvarchar] (80) NULL ,
	[Due] [smalldatetime] NULL ,
	CONSTRAINT [PK_Orders] PRIMARY KEY CLUSTERED ([OrderId]) ON [PRIMARY] ,
	CONSTRAINT [CK_Orders_Content] CHECK ([OrderNo] IS NOT NULL OR [CustomerName] IS NOT NULL)
) ON [PRIMARY]
GO

/* Status: 0 planned, 1 running, 2 held, 3 completed, 4 aborted. */
CREATE TABLE [dbo].[Batches] (
	[BatchId] [int] IDENTITY (1000, 1) NOT NULL ,
	[BatchName] [nvarchar] (32) NOT NULL ,
	[RecipeId] [int] NOT NULL ,
	[UnitId] [smallint] NOT NULL ,
	[OrderId] [int] NULL ,
	[Status] [tinyint] NOT NULL CONSTRAINT [DF_Batches_Status] DEFAULT (0) ,
	[PlannedQuantity] [LKQuantity] NOT NULL ,
	[ProducedQuantity] [LKQuantity] NULL ,
	[StartTime] [datetime] NULL ,
	[EndTime] [datetime] NULL ,
	[Cost] [money] NOT NULL CONSTRAINT [DF_Batches_Cost] DEFAULT (0) ,
	[Yield] [real] NULL ,
	[StartedBy] [int] NULL ,
	[Remark] [nvarchar] (255) NULL ,
	[Notes] [ntext] NULL ,
	[BatchGuid] [uniqueidentifier] NOT NULL CONSTRAINT [DF_Batches_BatchGuid] DEFAULT (NEWID()) ,
	[RowStamp] [timestamp] NOT NULL ,
	CONSTRAINT [PK_Batches] PRIMARY KEY CLUSTERED ([BatchId]) WITH FILLFACTOR = 80 ON [PRIMARY] ,
	CONSTRAINT [UQ_Batches_BatchName] UNIQUE NONCLUSTERED ([BatchName]) ON [PRIMARY] ,
	CONSTRAINT [CK_Batches_Status] CHECK ([Status] BETWEEN 0 AND 4) ,
	CONSTRAINT [CK_Batches_EndTime] CHECK ([EndTime] IS NULL OR [EndTime] >= [StartTime]) ,
	CONSTRAINT [FK_Batches_Recipes] FOREIGN KEY ([RecipeId]) REFERENCES [dbo].[Recipes] ([RecipeId]) ,
	CONSTRAINT [FK_Batches_Units] FOREIGN KEY ([UnitId]) REFERENCES [dbo].[Units] ([UnitId]) ,
	CONSTRAINT [FK_Batches_Orders] FOREIGN KEY ([OrderId]) REFERENCES [dbo].[Orders] ([OrderId]) ,
	CONSTRAINT [FK_Batches_LKUser] FOREIGN KEY ([StartedBy]) REFERENCES [dbo].[LKUser] ([UserId])
) ON [PRIMARY] TEXTIMAGE_ON [PRIMARY]
GO

CREATE TABLE [dbo].[BatchPhases] (
	[BatchPhaseId] [int] IDENTITY (1, 1) NOT NULL ,
	[BatchId] [int] NOT NULL ,
	[StepNo] [smallint] NOT NULL ,
	[PhaseId] [int] NOT NULL ,
	[UnitId] [smallint] NOT NULL ,
	[StartTime] [datetime] NOT NULL CONSTRAINT [DF_BatchPhases_StartTime] DEFAULT (GETDATE()) ,
	[EndTime] [datetime] NULL ,
	[SetPoint] [float] NULL ,
	[ActualValue] [float] NULL ,
	CONSTRAINT [PK_BatchPhases] PRIMARY KEY NONCLUSTERED ([BatchPhaseId]) ON [PRIMARY] ,
	CONSTRAINT [FK_BatchPhases_Batches] FOREIGN KEY ([BatchId])
		REFERENCES [dbo].[Batches] ([BatchId]) ON DELETE CASCADE ,
	CONSTRAINT [FK_BatchPhases_Phases] FOREIGN KEY ([PhaseId]) REFERENCES [dbo].[Phases] ([PhaseId]) ,
	CONSTRAINT [FK_BatchPhases_Units] FOREIGN KEY ([UnitId]) REFERENCES [dbo].[Units] ([UnitId])
) ON [PRIMARY]
GO

CREATE TABLE [dbo].[BatchMaterials] (
	[BatchMaterialId] [int] IDENTITY (1, 1) NOT NULL ,
	[BatchId] [int] NOT NULL ,
	[LotId] [int] NOT NULL ,
	[Quantity] [LKQuantity] NOT NULL ,
	[Booked] [datetime] NOT NULL CONSTRAINT [DF_BatchMaterials_Booked] DEFAULT (GETDATE()) ,
	[BookedBy] [int] NULL ,
	CONSTRAINT [PK_BatchMaterials] PRIMARY KEY CLUSTERED ([BatchMaterialId]) ON [PRIMARY] ,
	CONSTRAINT [CK_BatchMaterials_Quantity] CHECK ([Quantity] > 0)
) ON [PRIMARY]
GO

CREATE TABLE [dbo].[Events] (
	[EventId] [bigint] IDENTITY (1, 1) NOT NULL ,
	[EventTime] [datetime] NOT NULL CONSTRAINT [DF_Events_EventTime] DEFAULT (GETDATE()) ,
	[BatchId] [int] NULL ,
	[UnitId] [smallint] NULL ,
	[Severity] [tinyint] NOT NULL CONSTRAINT [DF_Events_Severity] DEFAULT (0) ,
	[Category] [varchar] (16) NOT NULL CONSTRAINT [DF_Events_Category] DEFAULT ('SYSTEM') ,
	[Message] [nvarchar] (400) NOT NULL ,
	[Value] [float] NULL ,
	[Acknowledged] [bit] NOT NULL CONSTRAINT [DF_Events_Acknowledged] DEFAULT (0) ,
	[AcknowledgedBy] [int] NULL ,
	[AcknowledgedAt] [datetime] NULL ,
	CONSTRAINT [PK_Events] PRIMARY KEY CLUSTERED ([EventId]) ON [PRIMARY]
) ON [PRIMARY]
GO

PRINT N'Creating foreign keys and indexes...'
GO

ALTER TABLE [dbo].[BatchMaterials] ADD
	CONSTRAINT [FK_BatchMaterials_Batches] FOREIGN KEY ([BatchId]) REFERENCES [dbo].[Batches] ([BatchId]) ,
	CONSTRAINT [FK_BatchMaterials_Lots] FOREIGN KEY ([LotId]) REFERENCES [dbo].[Lots] ([LotId])
GO
ALTER TABLE [dbo].[Events] WITH NOCHECK ADD
	CONSTRAINT [FK_Events_Batches] FOREIGN KEY ([BatchId]) REFERENCES [dbo].[Batches] ([BatchId])
GO

CREATE INDEX [IX_Orders_OrderNo] ON [dbo].[Orders] ([OrderNo]) ON [PRIMARY]
GO
CREATE INDEX [IX_Batches_StartTime] ON [dbo].[Batches] ([StartTime]) WITH FILLFACTOR = 80 ON [PRIMARY]
GO
CREATE UNIQUE CLUSTERED INDEX [IX_BatchPhases_Batch_Step] ON [dbo].[BatchPhases] ([BatchId], [StepNo]) ON [PRIMARY]
GO
CREATE INDEX [IX_BatchMaterials_LotId] ON [dbo].[BatchMaterials] ([LotId]) ON [PRIMARY]
GO
CREATE INDEX [IX_Events_Batch_Time] ON [dbo].[Events] ([BatchId], [EventTime] DESC) ON [PRIMARY]
GO

PRINT N'Creating views...'
GO

IF EXISTS (SELECT * FROM dbo.sysobjects WHERE id = object_id(N'[dbo].[vBatchOverview]') AND OBJECTPROPERTY(id, N'IsView') = 1)
	DROP VIEW [dbo].[vBatchOverview]
GO

CREATE VIEW [dbo].[vBatchOverview]
AS
SELECT	b.BatchId, b.BatchName, r.RecipeName, r.Revision AS RecipeVersion, r.ProductCode, u.UnitName,
	o.OrderNo, o.CustomerName, o.Due, b.Status,
	CASE b.Status
		WHEN 0 THEN N'Planned'
		WHEN 1 THEN N'Running'
		WHEN 2 THEN N'Held'
		WHEN 3 THEN N'Completed'
		ELSE N'Aborted'
	END AS StatusText,
	b.PlannedQuantity, b.ProducedQuantity, b.StartTime, b.EndTime,
	DATEDIFF(minute, b.StartTime, b.EndTime) AS DurationMinutes,
	b.Cost, b.Yield, ISNULL(p.FullName, N'-') AS StartedByName
FROM	dbo.Batches b
	INNER JOIN dbo.Recipes r ON r.RecipeId = b.RecipeId
	INNER JOIN dbo.Units u ON u.UnitId = b.UnitId
	LEFT OUTER JOIN dbo.Orders o ON o.OrderId = b.OrderId
	LEFT OUTER JOIN dbo.LKUser p ON p.UserId = b.StartedBy
GO

PRINT N'Creating roles and users...'
GO

IF NOT EXISTS (SELECT * FROM dbo.sysusers WHERE name = N'LKBatchUser' AND issqlrole = 1)
	EXEC sp_addrole N'LKBatchUser'
GO
IF NOT EXISTS (SELECT * FROM dbo.sysusers WHERE name = N'LKBatchReader' AND issqlrole = 1)
	EXEC sp_addrole N'LKBatchReader'
GO

IF N'###USERID###' <> N'' AND NOT EXISTS (SELECT * FROM master.dbo.syslogins WHERE loginname = N'###USERID###')
	EXEC sp_addlogin N'###USERID###', N'###PASSWORD###', N'Batch'
GO

/* The login that creates the database is its owner and needs no separate user. */
IF N'###USERID###' <> N'' AND NOT EXISTS (SELECT * FROM dbo.sysusers WHERE sid = SUSER_SID(N'###USERID###'))
BEGIN
	EXEC sp_grantdbaccess N'###USERID###', N'###USERID###'
	EXEC sp_addrolemember N'LKBatchUser', N'###USERID###'
END
GO

GRANT SELECT ON [dbo].[vBatchOverview] TO [LKBatchUser], [LKBatchReader]
GO
GRANT SELECT ON [dbo].[LKConfig] TO [LKBatchUser]
GO

PRINT N'Database "Batch" created.'
GO

SET NOEXEC OFF
GO

-- A workshop's database in the manner of scripts that tools of SQL Server 2005 to 2017 generate.
USE [master]
GO
/****** Object:  Database [Workshop]    Script Date: 3/1/2016 10:00:00 AM ******/
IF EXISTS (SELECT name FROM sys.databases WHERE name = N'Workshop')
BEGIN
    ALTER DATABASE [Workshop] SET SINGLE_USER WITH ROLLBACK IMMEDIATE;
    DROP DATABASE [Workshop];
END
GO
IF NOT EXISTS (SELECT * FROM sys.databases WHERE name = N'Workshop')
CREATE DATABASE [Workshop]
 CONTAINMENT = NONE
 ON  PRIMARY
( NAME = N'Workshop', FILENAME = N'D:\Data\Workshop.mdf' , SIZE = 5120KB , MAXSIZE = UNLIMITED, FILEGROWTH = 1024KB ),
 FILEGROUP [HISTORY]
( NAME = N'Workshop_history', FILENAME = N'D:\Data\Workshop_history.ndf' , SIZE = 3MB , MAXSIZE = 100MB , FILEGROWTH = 10%)
 LOG ON
( NAME = N'Workshop_log', FILENAME = N'D:\Data\Workshop_log.ldf' , SIZE = 2048KB , MAXSIZE = 2048GB , FILEGROWTH = 10%)
 COLLATE SQL_Latin1_General_CP1_CI_AS
GO
ALTER DATABASE [Workshop] SET COMPATIBILITY_LEVEL = 110
GO
IF (1 = FULLTEXTSERVICEPROPERTY('IsFullTextInstalled'))
begin
EXEC [Workshop].[dbo].[sp_fulltext_database] @action = 'enable'
end
GO
ALTER DATABASE [Workshop] SET ANSI_NULL_DEFAULT OFF
GO
ALTER DATABASE [Workshop] SET ANSI_NULLS OFF
GO
ALTER DATABASE [Workshop] SET ARITHABORT OFF
GO
ALTER DATABASE [Workshop] SET AUTO_CLOSE OFF
GO
ALTER DATABASE [Workshop] SET AUTO_SHRINK OFF
GO
ALTER DATABASE [Workshop] SET AUTO_UPDATE_STATISTICS ON
GO
ALTER DATABASE [Workshop] SET CURSOR_DEFAULT  GLOBAL
GO
ALTER DATABASE [Workshop] SET  DISABLE_BROKER
GO
ALTER DATABASE [Workshop] SET AUTO_UPDATE_STATISTICS_ASYNC OFF
GO
ALTER DATABASE [Workshop] SET DATE_CORRELATION_OPTIMIZATION OFF
GO
ALTER DATABASE [Workshop] SET TRUSTWORTHY OFF
GO
ALTER DATABASE [Workshop] SET READ_COMMITTED_SNAPSHOT OFF WITH NO_WAIT
GO
ALTER DATABASE [Workshop] SET HONOR_BROKER_PRIORITY OFF
GO
ALTER DATABASE [Workshop] SET RECOVERY SIMPLE, PAGE_VERIFY CHECKSUM
GO
ALTER DATABASE [Workshop] SET  MULTI_USER
GO
ALTER DATABASE [Workshop] SET DB_CHAINING OFF
GO
ALTER DATABASE [Workshop] SET FILESTREAM( NON_TRANSACTED_ACCESS = OFF )
GO
ALTER DATABASE [Workshop] SET TARGET_RECOVERY_TIME = 0 SECONDS
GO
ALTER DATABASE [Workshop] SET  READ_WRITE
GO
ALTER AUTHORIZATION ON DATABASE::[Workshop] TO [sa]
GO
USE [Workshop]
GO
IF NOT EXISTS (SELECT * FROM sys.schemas WHERE name = N'stock')
EXEC sys.sp_executesql N'CREATE SCHEMA [stock] AUTHORIZATION [dbo]'
GO
CREATE SCHEMA [history]
GO
/****** Object:  UserDefinedDataType [dbo].[PartNumber] ******/
CREATE TYPE [dbo].[PartNumber] FROM [nvarchar](12) NOT NULL
GO
CREATE TYPE [dbo].[Flag] FROM [bit] NOT NULL
GO
SET ANSI_NULLS ON
GO
SET QUOTED_IDENTIFIER ON
GO
SET ANSI_PADDING ON
GO
IF NOT EXISTS (SELECT * FROM sys.objects WHERE object_id = OBJECT_ID(N'[stock].[Part]') AND type in (N'U'))
BEGIN
CREATE TABLE [stock].[Part](
	[PartID] [int] IDENTITY(1,1) NOT NULL,
	[Number] [dbo].[PartNumber] NOT NULL,
	[Name] [nvarchar](50) COLLATE SQL_Latin1_General_CP1_CI_AS NOT NULL,
	[Weight] [decimal](8, 2) NULL,
	[Cost] [money] NOT NULL,
	[OnSale] [dbo].[Flag] NOT NULL CONSTRAINT [DF_Part_OnSale]  DEFAULT ((1)),
	[Label]  AS (([Number]+N' ')+[Name]),
	[Drawing] [varbinary](max) NULL,
	[rowguid] [uniqueidentifier] ROWGUIDCOL  NOT NULL CONSTRAINT [DF_Part_rowguid]  DEFAULT (newid()),
	[ModifiedDate] [datetime] NOT NULL,
	[Version] [timestamp] NOT NULL,
 CONSTRAINT [PK_Part_PartID] PRIMARY KEY CLUSTERED
(
	[PartID] ASC
)WITH (PAD_INDEX = OFF, STATISTICS_NORECOMPUTE = OFF, IGNORE_DUP_KEY = OFF, ALLOW_ROW_LOCKS = ON, ALLOW_PAGE_LOCKS = ON, FILLFACTOR = 90) ON [PRIMARY],
 CONSTRAINT [UQ_Part_Number] UNIQUE NONCLUSTERED ([Number] ASC) WITH (PAD_INDEX = OFF) ON [PRIMARY]
) ON [PRIMARY] TEXTIMAGE_ON [PRIMARY]
END
GO
SET ANSI_PADDING OFF
GO
CREATE TABLE [stock].[Movement](
	[MovementID] [bigint] IDENTITY(1000,10) NOT NULL,
	[PartID] [int] NOT NULL,
	[Day] [date] NOT NULL,
	[Quantity] [int] NOT NULL,
	[Remark] [nvarchar](max) NULL,
	CONSTRAINT [PK_Movement] PRIMARY KEY CLUSTERED ([MovementID] ASC)
) ON [PRIMARY]
GO
CREATE TABLE [history].[Movement](
	[MovementID] [bigint] NOT NULL,
	[Day] [date] NOT NULL,
	[Quantity] [int] NOT NULL,
	[Reason] [varchar](20) NULL
) ON [HISTORY]
GO
/****** Object:  Index [IX_Movement_Part] ******/
CREATE NONCLUSTERED INDEX [IX_Movement_Part] ON [stock].[Movement]
(
	[PartID] ASC,
	[Day] DESC
)
INCLUDE ( [Quantity]) WITH (PAD_INDEX = OFF, STATISTICS_NORECOMPUTE = OFF, SORT_IN_TEMPDB = OFF, DROP_EXISTING = OFF, ONLINE = OFF, ALLOW_ROW_LOCKS = ON, ALLOW_PAGE_LOCKS = ON) ON [PRIMARY]
GO
ALTER TABLE [stock].[Part] ADD  CONSTRAINT [DF_Part_ModifiedDate]  DEFAULT (getdate()) FOR [ModifiedDate]
GO
ALTER TABLE [stock].[Movement]  WITH CHECK ADD  CONSTRAINT [FK_Movement_Part] FOREIGN KEY([PartID])
REFERENCES [stock].[Part] ([PartID])
ON UPDATE CASCADE
ON DELETE CASCADE
GO
ALTER TABLE [stock].[Movement] CHECK CONSTRAINT [FK_Movement_Part]
GO
ALTER TABLE [stock].[Part]  WITH CHECK ADD  CONSTRAINT [CK_Part_Cost] CHECK  (([Cost]>=(0.00)))
GO
ALTER TABLE [stock].[Part]  WITH NOCHECK ADD  CONSTRAINT [CK_Part_Number] CHECK  (([Number] like N'[A-Z][A-Z]-[^0]%' AND NOT [Number] like N'%[_]%'))
GO
EXEC sys.sp_addextendedproperty @name=N'MS_Description', @value=N'What lies on the shelves.' , @level0type=N'SCHEMA',@level0name=N'stock', @level1type=N'TABLE',@level1name=N'Part'
GO
EXEC sys.sp_addextendedproperty @name=N'MS_Description', @value=N'Net weight in kilograms.' , @level0type=N'SCHEMA',@level0name=N'stock', @level1type=N'TABLE',@level1name=N'Part', @level2type=N'COLUMN',@level2name=N'Weight'
GO
DROP TABLE IF EXISTS [stock].[Nothing]
GO
DROP PROCEDURE IF EXISTS [stock].[uspMove]
GO
CREATE OR ALTER PROCEDURE [stock].[uspMove]
    @Number nvarchar(12), @Quantity int, @Day datetime = NULL, @Id bigint = NULL OUTPUT
WITH EXECUTE AS CALLER
AS
BEGIN
    SET NOCOUNT ON;
    BEGIN TRY
        BEGIN TRANSACTION;
        DECLARE @new TABLE (id bigint, part int);
        INSERT INTO [stock].[Movement] ([PartID], [Day], [Quantity])
        OUTPUT inserted.MovementID, inserted.PartID INTO @new (id, part)
        SELECT p.[PartID], COALESCE(@Day, GETDATE()), @Quantity FROM [stock].[Part] AS p WHERE p.[Number] = @Number;
        IF @@ROWCOUNT = 0
            RAISERROR (N'There is no part %s.', 16, 1, @Number);
        SELECT @Id = id FROM @new;
        COMMIT TRANSACTION;
    END TRY
    BEGIN CATCH
        IF @@TRANCOUNT > 0
            ROLLBACK TRANSACTION;
        DECLARE @message nvarchar(4000) = ERROR_MESSAGE();
        RAISERROR (@message, 16, 1);
        RETURN -1;
    END CATCH;
    RETURN 0;
END;
GO
CREATE FUNCTION [stock].[ufnOnHand](@PartID [int]) RETURNS [int] AS
BEGIN
    RETURN (SELECT SUM(Quantity) FROM stock.Movement WHERE PartID = @PartID)
END;
GO
CREATE VIEW [stock].[vOnHand] WITH SCHEMABINDING AS
SELECT p.[PartID], p.[Name], SUM(ISNULL(m.[Quantity], 0)) AS [OnHand], COUNT_BIG(*) AS [Rows]
FROM [stock].[Part] p LEFT OUTER JOIN [stock].[Movement] m ON m.[PartID] = p.[PartID]
GROUP BY p.[PartID], p.[Name];
GO
SET IDENTITY_INSERT [stock].[Part] ON
INSERT [stock].[Part] ([PartID], [Number], [Name], [Weight], [Cost], [OnSale], [Drawing], [rowguid], [ModifiedDate]) VALUES (1, N'AB-100', N'Bolt', CAST(0.25 AS Decimal(8, 2)), 1.5000, 1, 0x0123456789ABCDEF, N'694215b7-08f7-4c0d-acb1-d734ba44c0c8', CAST(N'2008-03-11T10:01:36.827' AS DateTime))
INSERT [stock].[Part] ([PartID], [Number], [Name], [Weight], [Cost], [OnSale], [Drawing], [rowguid], [ModifiedDate]) VALUES (7, N'AB-200', N'Nut', NULL, 0.7500, 0, NULL, N'58ae430e-92f9-4ad1-b29c-4bbc8b5b4b9b', CAST(0x00009A5C00A53CF8 AS DateTime))
SET IDENTITY_INSERT [stock].[Part] OFF
GO
INSERT INTO [stock].[Part] ([Number], [Name], [Cost]) VALUES (N'CD-100', N'Washer', 0.1), (N'CD-110', N'Ring', 0.2);
GO
INSERT INTO [stock].[Part] ([Number], [Name], [Cost]) VALUES (N'CD-010', N'Refused by its check', 0.1)
GO
DECLARE @id bigint, @status int;
EXEC @status = [stock].[uspMove] @Number = N'AB-100', @Quantity = 12, @Day = '20160301', @Id = @id OUTPUT;
EXEC [stock].[uspMove] N'AB-100', -2;
EXEC [stock].[uspMove] N'CD-110', 5, '2016-03-02T00:00:00';
EXEC [stock].[uspMove] N'ZZ-999', 5;
PRINT CONCAT('First movement: ', @id, NULL, ', status ', @status);
GO
DELETE TOP (1) FROM [stock].[Movement]
OUTPUT deleted.MovementID, deleted.[Day], deleted.Quantity, 'moved' INTO [history].[Movement]
WHERE [Quantity] < 0
GO
;WITH numbered AS (SELECT PartID, ROW_NUMBER() OVER (ORDER BY Cost DESC) AS n FROM stock.Part)
SELECT p.Label, IIF(p.Cost > 0.5, 'dear', 'cheap') AS Class, CHOOSE(n.n, 'first', 'second', 'third') AS Place,
    TRY_CONVERT(int, p.Name) AS NotANumber, TRY_CAST('12' AS int) AS Number
FROM stock.Part p INNER JOIN numbered n ON n.PartID = p.PartID
ORDER BY n.n OFFSET 1 ROWS FETCH NEXT 2 ROWS ONLY;
GO
SELECT EOMONTH('20160210') AS LastDay, DATEFROMPARTS(2016, 2, 29) AS LeapDay, DATABASEPROPERTYEX(N'Workshop', 'Recovery') AS Recovery
GO
CREATE ROLE [readers] AUTHORIZATION [dbo]
GO
CREATE USER [auditor] WITHOUT LOGIN
GO
ALTER ROLE [readers] ADD MEMBER [auditor]
GO
GRANT SELECT ON [stock].[vOnHand] TO [readers] AS [dbo]
GO
GRANT EXECUTE ON OBJECT::[stock].[uspMove] TO [readers]
GO
GRANT SELECT ON SCHEMA::[stock] TO [readers]
GO
ALTER SCHEMA [dbo] TRANSFER [history].[Movement]
GO
SELECT * FROM stock.Part FOR XML AUTO
GO
USE [master]
GO
ALTER DATABASE [Workshop] SET  READ_WRITE
GO
PRINT N'Workshop is ready'
GO

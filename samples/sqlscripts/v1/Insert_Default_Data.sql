/*
	Lotkeeper - default data of the batch database, schema version 1

	Can be run again: only missing rows are inserted, existing rows are not changed.
*/
SET NOCOUNT ON
GO

USE [Batch]
GO

IF DB_NAME() <> N'Batch'
BEGIN
	RAISERROR (N'There is no database "Batch" on %s. No data was inserted.', 16, 127, N'###SERVER###')
	SET NOEXEC ON
END
GO

PRINT N'Inserting configuration...'
GO

CREATE TABLE #Config (
	[ParameterName] [nvarchar] (100) COLLATE database_default NOT NULL PRIMARY KEY ,
	[Value] [nvarchar] (255) COLLATE database_default NULL ,
	[Description] [nvarchar] (255) COLLATE database_default NULL
)
INSERT INTO #Config VALUES (N'DatabaseVersion', N'1', N'Version of the database schema')
INSERT INTO #Config VALUES (N'ServerName', N'###SERVER###', N'Server that holds this database')
INSERT INTO #Config VALUES (N'ServerA', N'###SERVERA###', N'First server of the redundant pair')
INSERT INTO #Config VALUES (N'ServerB', NULLIF(N'###SERVERB###', N''), N'Second server; empty on a single server')
INSERT INTO #Config VALUES (N'Domain', NULLIF(N'###DOMAIN###', N''), N'Domain of the operators'' accounts')
INSERT INTO #Config VALUES (N'DataPathA', N'###DATAPATHA###', N'Folder of the database files on Server A')
INSERT INTO #Config VALUES (N'DataPathB', NULLIF(N'###DATAPATHB###', N''), N'Folder of the database files on Server B')
INSERT INTO #Config VALUES (N'EventSource', N'lotkeeper@###server###', N'Sender of the messages to operators')
INSERT INTO #Config VALUES (N'Currency', N'€', N'Currency of all prices')
INSERT INTO #Config VALUES (N'EventKeepDays', N'365', N'Days before an acknowledged event may be purged')
INSERT INTO #Config VALUES (N'InstalledAt', CONVERT(nvarchar(19), GETDATE(), 120), N'Time of the first installation')
GO

DECLARE @intRows int
INSERT INTO dbo.LKConfig (ParameterName, Value, Description)
	SELECT	c.ParameterName, c.Value, c.Description
	FROM	#Config c
	WHERE	NOT EXISTS (SELECT * FROM dbo.LKConfig k WHERE k.ParameterName = c.ParameterName)
SET @intRows = @@ROWCOUNT
PRINT CONVERT(nvarchar(10), @intRows) + N' parameters inserted.'
DROP TABLE #Config
GO

PRINT N'Inserting users...'
GO

IF NOT EXISTS (SELECT * FROM dbo.LKUser)
BEGIN
	DECLARE @strPrefix nvarchar(64)
	SET @strPrefix = N'###DOMAIN###'
	IF LEN(@strPrefix) > 0
		SET @strPrefix = @strPrefix + N'\'

	SET IDENTITY_INSERT dbo.LKUser ON
	INSERT INTO dbo.LKUser (UserId, LoginName, FullName, Initials, RoleLevel, PasswordHash)
		VALUES (1, N'System', N'Lotkeeper', NULL, 9, NULL)
	INSERT INTO dbo.LKUser (UserId, LoginName, FullName, Initials, RoleLevel, PasswordHash)
		VALUES (2, @strPrefix + N'Engineer', N'Process engineer', 'ENG', 7, 0x3D91F0A6C27744E88B1502D96E0C7FA3)
	INSERT INTO dbo.LKUser (UserId, LoginName, FullName, Initials, RoleLevel, PasswordHash)
		VALUES (3, @strPrefix + N'Operator', N'Shift operator', 'OPR', 3, NULL)
	INSERT INTO dbo.LKUser (UserId, LoginName, FullName, Initials, RoleLevel, PasswordHash, Active)
		VALUES (4, @strPrefix + N'Gast', N'Gast (nur Lesen, geprüft)', 'GST', 0, NULL, 0)
	SET IDENTITY_INSERT dbo.LKUser OFF
END
GO

PRINT N'Inserting units and phases...'
GO

IF NOT EXISTS (SELECT * FROM dbo.Units)
BEGIN
	SET IDENTITY_INSERT dbo.Units ON
	INSERT INTO dbo.Units (UnitId, UnitName, Area, UnitClass, MaxVolume, MaxTemperature, TemperatureUnit)
		VALUES (1, N'Mixer R100', N'Hall 1', 'VESSEL', 2500.0, 95, '°C')
	INSERT INTO dbo.Units (UnitId, UnitName, Area, UnitClass, MaxVolume, MaxTemperature, TemperatureUnit)
		VALUES (2, N'Rührkessel R200', N'Hall 1', 'VESSEL', 5000.0, 140.5, '°C')
	INSERT INTO dbo.Units (UnitId, UnitName, Area, UnitClass, MaxVolume, MaxTemperature, TemperatureUnit)
		VALUES (3, N'Kühler K300', N'Hall 2', 'COOLER', 1200.5, 40, '°C')
	INSERT INTO dbo.Units (UnitId, UnitName, Area, UnitClass, MaxVolume, MaxTemperature, TemperatureUnit)
		VALUES (4, N'Filling line F400', N'Hall 2', 'FILLER', NULL, NULL, NULL)
	SET IDENTITY_INSERT dbo.Units OFF

	INSERT INTO dbo.Phases (PhaseId, PhaseName, Category, NominalMinutes) VALUES (10, N'Charge', 'M', 15)
	INSERT INTO dbo.Phases (PhaseId, PhaseName, Category, NominalMinutes) VALUES (20, N'Heat', 'P', 45)
	INSERT INTO dbo.Phases (PhaseId, PhaseName, Category, NominalMinutes) VALUES (30, N'Mix', 'P', 60)
	INSERT INTO dbo.Phases (PhaseId, PhaseName, Category, NominalMinutes) VALUES (40, N'Cool', 'P', 30)
	INSERT INTO dbo.Phases (PhaseId, PhaseName, Category, NominalMinutes) VALUES (50, N'Transfer', 'M', 20)
	INSERT INTO dbo.Phases (PhaseId, PhaseName, Category) VALUES (90, N'Clean in place', 'C')
END
GO

PRINT N'Inserting materials and lots...'
GO

IF NOT EXISTS (SELECT * FROM dbo.Materials)
BEGIN
	INSERT INTO dbo.Materials (MaterialCode, MaterialName, MeasureUnit, Density, MinStock, ListPrice)
		VALUES ('WATER-DI', N'Water, deionised (< 5 µS/cm)', 'l', 0.998, 1000, 0.02)
	INSERT INTO dbo.Materials (MaterialCode, MaterialName, MeasureUnit, Density, MinStock, ListPrice)
		VALUES ('SUGAR-01', N'Sugar, refined', 'kg', 1.59, 500, 0.85)
	INSERT INTO dbo.Materials (MaterialCode, MaterialName, MeasureUnit, Density, MinStock, ListPrice, Hazardous, DataSheet)
		VALUES ('ETHANOL-96', N'Ethanol 96 %', 'l', 7.89E-1, 200, 3.4, 1,
			0x255044462D312E320A25E2E3CFD30A)
	INSERT INTO dbo.Materials (MaterialCode, MaterialName, ListPrice)
		VALUES ('CREME-07', N'Crème base', $12.7500)

	INSERT INTO dbo.Lots (LotNumber, MaterialId, Supplier, Received, Expires, Quantity, Remaining, UnitPrice, Released)
		SELECT	'W-0001', MaterialId, N'Own plant', '20040105', NULL, 100000, 100000, 0.0185, 1
		FROM	dbo.Materials
		WHERE	MaterialCode = 'WATER-DI'
	INSERT INTO dbo.Lots (LotNumber, MaterialId, Supplier, Received, Expires, Quantity, Remaining, UnitPrice, Released)
		SELECT	'S-' + RTRIM(MaterialCode), MaterialId, N'Zuckerfabrik Süd', '20040112 14:30', '20060112', 1250.5, 1250.5, ListPrice, 1
		FROM	dbo.Materials
		WHERE	MaterialCode LIKE 'SUGAR%'
END
GO

PRINT N'Inserting recipes...'
GO

IF NOT EXISTS (SELECT * FROM dbo.Recipes)
BEGIN
	INSERT INTO dbo.Recipes (RecipeName, Version, ProductCode, BatchSize, Header, Instructions, Released, ReleasedAt)
		VALUES (N'Syrup 65', 1, 'SYR-65', 2000, 'Lotkeeper recipe',
N'1. Charge water and heat to 80 °C.
2. Add sugar slowly; don''t exceed 85 °C.
3. Mix for one hour, then cool.', 1, '20040120 08:00:00')
	INSERT INTO dbo.Recipes (RecipeName, Version, ProductCode, BatchSize, Header, Instructions)
		VALUES (N'Crème liquide', 3, 'CRM-10', 850.25, 'Lotkeeper recipe', NULL)

	INSERT INTO dbo.RecipePhases (RecipeId, StepNo, PhaseId, UnitId, SetPoint)
		SELECT	r.RecipeId, p.PhaseId / 10, p.PhaseId,
			CASE p.PhaseName WHEN N'Cool' THEN 3 WHEN N'Transfer' THEN 4 ELSE 1 END,
			CASE WHEN p.PhaseName = N'Heat' THEN 80.0 WHEN p.PhaseName = N'Cool' THEN 22.5 END
		FROM	dbo.Recipes r CROSS JOIN dbo.Phases p
		WHERE	p.Category <> 'C'
		ORDER BY r.RecipeId, p.PhaseId
END
GO

INSERT INTO dbo.Events (Severity, Category, Message)
	SELECT	0, 'INSTALL', N'Default data of version ' + k.Value + N' inserted on ' + ISNULL(@@SERVERNAME, N'###SERVER###')
	FROM	dbo.LKConfig k
	WHERE	k.ParameterName = N'DatabaseVersion'
		AND NOT EXISTS (SELECT * FROM dbo.Events WHERE Category = 'INSTALL')
GO

PRINT N'Default data inserted.'
GO

SET NOEXEC OFF
GO

# Installs the sample templates on a development server with a database client, and tests the result: the rows, the
# rights, every procedure. Does not use the program or its query tool, which have their own tests.
#
#   installed_samples_test.py DEVSQLSERVER SCRIPT_FOLDER
import datetime
import decimal
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest
import uuid

import pymssql

# Registers the driver with which a server connects to linked servers.
ODBC_CONFIG = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "src", "odbc", "odbc_config")
USER, PASSWORD = "lk_admin", "Pass_1!"
TEMPLATES = ("Create_Batch_Database", "Insert_Default_Data", "Create_Batch_Stored_Procedures",
             "Create_Replication_Stored_Procedures")


class Server:
    """A development server in a new folder, which stop() deletes."""

    def __init__(self, program):
        self.root = tempfile.mkdtemp(prefix="kv-samples-")
        logins = os.path.join(self.root, "logins")
        with open(os.open(logins, os.O_CREAT | os.O_WRONLY, 0o600), "w") as file:
            file.write(f"{USER}:{PASSWORD}\n")
        self.data = os.path.join(self.root, "data")
        os.mkdir(self.data)
        self.process = subprocess.Popen([program, "--root", os.path.join(self.root, "server"), "--port", "0",
                                         "--logins", logins], stdout=subprocess.PIPE, text=True,
                                        env=dict(os.environ, ODBCSYSINI=ODBC_CONFIG))
        ready = self.process.stdout.readline()
        match = re.match(r"devsqlserver: ready on 127\.0\.0\.1:(\d+)", ready)
        if match is None:
            self.stop()
            raise RuntimeError(f"the server did not start: {ready!r}")
        self.port = int(match.group(1))

    def connect(self, database="master"):
        return pymssql.connect(server="127.0.0.1", port=str(self.port), user=USER, password=PASSWORD,
                               database=database, autocommit=True, login_timeout=60, timeout=60)

    def stop(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(20)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.process.stdout.close()
        shutil.rmtree(self.root)


def modified(template, data_path, more=()):
    """The script that an unattended run makes from the template: Server B, the domain and the UNC paths are empty. `more`
    has further values, as the console would use."""
    values = {"server": "NODE1", "servera": "NODE1", "userid": USER, "userida": USER, "password": PASSWORD,
              "passworda": PASSWORD, "datapath": data_path, "datapatha": data_path, **dict(more)}

    def value(match):
        name = match.group(1)
        text = values.get(name.lower(), "")
        return text.lower() if name in ("server", "servera", "serverb") else text

    with open(template, encoding="cp1252", newline="") as file:
        return re.sub(r"###([A-Za-z]+)###", value, file.read())


def batches(script):
    return [batch for batch in re.split(r"(?mi)^GO\r?$\n?", script) if batch.strip()]


def run(cursor, statement, parameters=None):
    """Returns all result sets of a statement; raises the server's first error."""
    cursor.execute(statement, parameters) if parameters else cursor.execute(statement)
    results = []
    while True:
        if cursor.description is not None:
            results.append([tuple(row) for row in cursor.fetchall()])
        if not cursor.nextset():
            return results


def install(connection, script):
    """Runs a script as a query tool does: every batch, even after an error. Returns the errors."""
    errors = []
    with connection.cursor() as cursor:
        for number, batch in enumerate(batches(script), 1):
            try:
                run(cursor, batch)
            except pymssql.Error as error:
                errors.append(f"batch {number}: {error}\n{batch.strip()[:400]}")
    return errors


class InstalledSamples(unittest.TestCase):
    program = folder = version = None

    @classmethod
    def setUpClass(cls):
        cls.server = Server(cls.program)
        cls.addClassCleanup(cls.server.stop)
        cls.errors = {}
        for name in TEMPLATES:
            with cls.server.connect() as connection:
                cls.errors[name] = install(connection, cls.script(name))

    @classmethod
    def script(cls, name):
        return modified(os.path.join(cls.folder, name + ".sql"), cls.server.data)

    def setUp(self):
        if any(self.errors.values()) and "Runs" not in self._testMethodName:
            self.fail("the templates did not run")
        self.connection = self.server.connect("Batch" if not any(self.errors.values()) else "master")
        self.addCleanup(self.connection.close)
        self.cursor = self.connection.cursor()

    def ask(self, statement, *parameters):
        results = run(self.cursor, statement, parameters)
        return results[0] if results else []

    def one(self, statement, *parameters):
        rows = self.ask(statement, *parameters)
        self.assertEqual(len(rows), 1, statement)
        return rows[0][0] if len(rows[0]) == 1 else rows[0]

    def refused(self, statement, text):
        with self.assertRaises(pymssql.Error) as caught:
            run(self.cursor, statement)
        self.assertIn(text, str(caught.exception))

    def released_lot(self, number, quantity):
        lot = self.one(f"DECLARE @l int EXEC dbo.spReceiveLot 'SUGAR-01', '{number}', {quantity}, 1.5, N'Süd', "
                       "'20300101', @LotId = @l OUTPUT SELECT @l")
        self.ask(f"UPDATE dbo.Lots SET Released = 1 WHERE LotId = {lot}")
        return lot

    def started_batch(self, name, unit=1, more=""):
        return self.one("DECLARE @r int, @b int "
                        f"EXEC @r = dbo.spStartBatch N'{name}', 1, {unit}{more}, @BatchId = @b OUTPUT SELECT @b")

    def test_EveryTemplateRunsWithoutErrors(self):
        for name in TEMPLATES:
            with self.subTest(name):
                self.assertEqual(self.errors[name], [])

    def test_TheDatabaseHasItsFilesInTheDataPath(self):
        # While a client uses the database, the server keeps two auxiliary files of the data file in the folder.
        files = [name for name in os.listdir(self.server.data) if not name.endswith(("-wal", "-shm"))]
        self.assertEqual(sorted(files), ["Batch_data.mdf", "Batch_log.ldf"])
        self.assertEqual(self.one("SELECT COUNT(*) FROM master.dbo.sysdatabases WHERE name = N'Batch'"), 1)

    def test_TheDefaultDataHaveTheirLetters(self):
        self.assertEqual(self.one("SELECT Value FROM LKConfig WHERE ParameterName like N'DatabaseVersion'"), self.version)
        self.assertEqual(self.one("SELECT Value FROM dbo.LKConfig WHERE ParameterName = N'Currency'"), "€")
        self.assertIsNone(self.one("SELECT Value FROM dbo.LKConfig WHERE ParameterName = N'ServerB'"))
        self.assertEqual(self.one("SELECT Value FROM dbo.LKConfig WHERE ParameterName = N'EventSource'"),
                         "lotkeeper@node1")
        self.assertEqual(self.ask("SELECT UnitId, UnitName, TemperatureUnit FROM dbo.Units ORDER BY UnitId"),
                         [(1, "Mixer R100", "°C"), (2, "Rührkessel R200", "°C"), (3, "Kühler K300", "°C"),
                          (4, "Filling line F400", None)])
        self.assertEqual(self.one("SELECT Instructions FROM dbo.Recipes WHERE RecipeId = 1"),
                         "1. Charge water and heat to 80 °C.\r\n2. Add sugar slowly; don't exceed 85 °C.\r\n"
                         "3. Mix for one hour, then cool.")
        self.assertEqual(self.one("SELECT DataSheet FROM dbo.Materials WHERE MaterialCode = 'ETHANOL-96'"),
                         bytes.fromhex("255044462D312E320A25E2E3CFD30A"))
        self.assertEqual(self.ask("SELECT LotNumber, Supplier, Received, UnitPrice FROM dbo.Lots ORDER BY LotId")[1],
                         ("S-SUGAR-01", "Zuckerfabrik Süd", datetime.datetime(2004, 1, 12, 14, 30),
                          decimal.Decimal("0.85")))
        self.assertEqual(self.ask("SELECT RecipeId, StepNo, UnitId, SetPoint FROM dbo.RecipePhases ORDER BY 1, 2")[:5],
                         [(1, 1, 1, None), (1, 2, 1, 80.0), (1, 3, 1, None), (1, 4, 3, 22.5), (1, 5, 4, None)])

    def test_KeysAndChecksAreEnforced(self):
        self.refused("INSERT INTO dbo.LKUser (LoginName, FullName) VALUES (N'system', N'Twin')", "UQ_LKUser_LoginName")
        self.refused("INSERT INTO dbo.Phases VALUES (99, N'x', 'Q', 0)", "CK_Phases_Category")
        self.refused("INSERT INTO dbo.RecipePhases VALUES (1, 77, 12345, 1, NULL)", "FK_RecipePhases_Phases")
        self.refused("INSERT INTO dbo.Lots (LotNumber, MaterialId, Quantity, Remaining) VALUES ('X', 1, 1, 2)",
                     "CK_Lots_Remaining")
        self.refused("DELETE FROM dbo.Units WHERE UnitId = 1", "FK_RecipePhases_Units")

    def test_ConfigurationIsReadAndWritten(self):
        read = ("DECLARE @v nvarchar(255), @r int EXEC @r = dbo.spGetConfig N'{}', @v OUTPUT "
                "SELECT @r, @v")
        self.assertEqual(self.one(read.format("Nothing")), (1, None))
        self.ask("EXEC dbo.spSetConfig N'Shift', N'früh', N'Current shift'")
        self.ask("EXEC dbo.spSetConfig @Value = N'spät', @ParameterName = N'Shift'")
        self.assertEqual(self.one(read.format("Shift")), (0, "spät"))
        self.assertEqual(self.one("SELECT Description FROM dbo.LKConfig WHERE ParameterName = N'Shift'"),
                         "Current shift")
        self.refused("EXEC dbo.spSetConfig N'DatabaseVersion', N'7'", "'DatabaseVersion'")
        self.assertEqual(self.one(read.format("DatabaseVersion")), (0, self.version))

    def test_ABatchRunsFromStartToEnd(self):
        lot = self.released_lot("L-WAY", 100)
        batch = self.started_batch("Way-1", 1, ", 500, 'O-1', N'Müller & Söhne', 2, '20240105 10:00'")
        self.assertGreaterEqual(batch, 1000)
        self.refused("EXEC dbo.spStartBatch N'Way-2', 1, 1", "Unit 1 is occupied")
        self.refused("EXEC dbo.spStartBatch N'Way-2', 2, 2", "Recipe 2 is not released")
        self.refused("EXEC dbo.spStartBatch N'Way-2', 99, 2", "There is no recipe 99")
        self.assertIn(("Mixer R100", "Way-1"), [(row[1], row[7]) for row in self.ask("EXEC dbo.spListUnits")])

        self.ask(f"EXEC dbo.spStartPhase {batch}, 2, '20240105 10:05'")
        self.refused(f"EXEC dbo.spStartPhase {batch}, 77", f"Step 77 of batch {batch}")
        result, minutes = self.one(f"DECLARE @m int, @r int EXEC @r = dbo.spEndPhase {batch}, 2, 79.25, @m OUTPUT "
                                   "SELECT @r, @m")
        self.assertEqual(result, 0)
        self.assertGreater(minutes, 0)
        self.assertEqual(self.one(f"SELECT SetPoint, ActualValue FROM dbo.BatchPhases WHERE BatchId = {batch}"),
                         (80.0, 79.25))

        self.ask(f"EXEC dbo.spConsumeLot {batch}, {lot}, 40.5, 3")
        self.refused(f"EXEC dbo.spConsumeLot {batch}, {lot}, 60", f"Lot {lot} is not released or holds too little")
        self.assertEqual(self.one(f"SELECT Remaining FROM dbo.Lots WHERE LotId = {lot}"), decimal.Decimal("59.500"))
        self.assertEqual(self.one(f"SELECT Cost FROM dbo.Batches WHERE BatchId = {batch}"), decimal.Decimal("60.75"))

        self.ask(f"EXEC dbo.spEndBatch {batch}, 450, @EndTime = '20240105 12:30'")
        self.refused(f"EXEC dbo.spEndBatch {batch}", f"Batch {batch} is not running")
        row = [row for row in self.ask("EXEC dbo.spBatchOverview '20240101', '20240201'") if row[0] == batch][0]
        self.assertEqual(row[1:9], ("Way-1", "Syrup 65", 1, "SYR-65    ", "Mixer R100", "O-1", "Müller & Söhne",
                                    "Completed"))
        self.assertEqual(row[9:14], (decimal.Decimal("500.000"), decimal.Decimal("450.000"), "2024-01-05 10:00:00",
                                     "2024-01-05 12:30:00", 150))
        self.assertEqual(row[14], decimal.Decimal("60.75"))
        self.assertAlmostEqual(row[15], 90.0, 4)

        lots, uses = run(self.cursor, "EXEC dbo.spLotConsumption 'L-WAY'")
        self.assertEqual((lots[0][1], lots[0][2]), ("L-WAY", "Sugar, refined"))
        self.assertEqual(uses[0][:3], ("Way-1", decimal.Decimal("40.500"), 1))

        guid = self.one(f"SELECT BatchGuid FROM dbo.Batches WHERE BatchId = {batch}")
        self.assertIsInstance(guid, uuid.UUID)
        self.ask(f"EXEC dbo.spAddBatchNote '{guid}', N'Schön gelaufen', N'ok'")
        self.assertEqual(self.one(f"SELECT Notes, Remark FROM dbo.Batches WHERE BatchId = {batch}"),
                         ("Schön gelaufen", "ok"))

    def test_AFailedStartChangesNothing(self):
        batch = self.started_batch("Twin", 4)
        events = self.one("SELECT COUNT(*) FROM dbo.Events")
        self.refused("EXEC dbo.spStartBatch N'twin', 1, 3", "UQ_Batches_BatchName")
        self.assertEqual(self.one("SELECT @@TRANCOUNT"), 0)
        self.assertEqual(self.one("SELECT COUNT(*) FROM dbo.Events"), events)
        self.ask(f"EXEC dbo.spEndBatch {batch}, @Aborted = 1")
        self.assertEqual(self.one(f"SELECT StatusText FROM dbo.vBatchOverview WHERE BatchId = {batch}"), "Aborted")

    def test_EventsAreAddedAcknowledgedAndPurged(self):
        event = self.one("DECLARE @e bigint EXEC dbo.spAddEvent 3, 'alarm', N'Too hot', @UnitId = 2, @Value = 141.5, "
                         "@EventId = @e OUTPUT SELECT @e")
        self.assertEqual(self.one(f"SELECT Category, Message, UnitId, Value, Acknowledged FROM dbo.Events "
                                  f"WHERE EventId = {event}"), ("ALARM", "Too hot", 2, 141.5, False))
        self.ask(f"UPDATE dbo.Events SET EventTime = '20010101' WHERE EventId = {event}")
        self.assertEqual(self.one("DECLARE @n int EXEC @n = dbo.spAcknowledgeEvents 3, '20020101' SELECT @n"), 1)
        self.assertEqual(self.one("DECLARE @d int EXEC dbo.spPurgeEvents @Deleted = @d OUTPUT SELECT @d"), 1)
        self.assertEqual(self.ask(f"SELECT * FROM dbo.Events WHERE EventId = {event}"), [])

    def test_UnitsUsersAndLotsAreChanged(self):
        self.ask("EXEC dbo.spSetUnitLimits 3, 1200.125, 38.5, '20240229 08:00'")
        limit = "MaxTemperature" if self.version == "1" else "TemperatureLimit"
        self.assertEqual(self.one(f"SELECT MaxVolume, {limit}, LastCleaned FROM dbo.Units WHERE UnitId = 3"),
                         (decimal.Decimal("1200.125"), 38.5, datetime.datetime(2024, 2, 29, 8, 0)))
        self.assertEqual(self.one("DECLARE @r int EXEC @r = dbo.spSetUserSecrets N'OPERATOR', 0x00FF10, 'OP', "
                                  "0x89504E47 SELECT @r"), 0)
        self.assertEqual(self.one("SELECT PasswordHash, Initials, Picture FROM dbo.LKUser WHERE UserId = 3"),
                         (b"\x00\xff\x10", "OP ", b"\x89PNG"))
        self.assertEqual(self.one("DECLARE @r int EXEC @r = dbo.spSetUserSecrets N'Nobody', 0x SELECT @r"), 1)
        self.refused("DECLARE @l int EXEC dbo.spReceiveLot 'NONE', 'L-X', 1, @LotId = @l OUTPUT", "Lot L-X was not")

    def test_BatchesAreFoundByAnyColumn(self):
        batch = self.started_batch("Find-1", 2)
        self.addCleanup(lambda: self.ask(f"EXEC dbo.spEndBatch {batch}"))
        self.assertEqual([row[1] for row in self.ask("EXEC dbo.spFindBatches N'BatchName', N'find%', 5")], ["Find-1"])
        rows, found = run(self.cursor, "DECLARE @n int EXEC dbo.spFindBatches @Column = N'UnitName', "
                                       "@Pattern = N'R_hrkessel%', @Found = @n OUTPUT SELECT @n")
        self.assertEqual(found, [(len(rows),)])
        self.refused("EXEC dbo.spFindBatches N'Nothing'", "no column 'Nothing'")

    def test_TablesAreCounted(self):
        counts = dict(self.ask("EXEC dbo.spTableCounts"))
        self.assertEqual(counts["Phases"], 6)
        self.assertEqual(counts["RecipePhases"], 10)
        self.assertEqual([row[0] for row in self.ask("EXEC dbo.spTableCounts") if row[0] != "Orders"],
                         ["Batches", "BatchMaterials", "BatchPhases", "BatchSummary", "Events", "LKConfig", "LKUser",
                          "Lots", "Materials", "Phases", "RecipePhases", "Recipes", "Units"])
        self.assertEqual("Orders" in counts, self.version != "1")

    def test_RecalculationsCorrectTheFigures(self):
        lot = self.released_lot("L-CALC", 1000)
        batch = self.started_batch("Calc-1", 3, ", 200")
        self.ask(f"EXEC dbo.spConsumeLot {batch}, {lot}, 100")
        self.ask(f"EXEC dbo.spEndBatch {batch}, 150")
        self.ask(f"UPDATE dbo.Batches SET Cost = 0, Yield = NULL WHERE BatchId = {batch}")
        self.assertEqual(self.one("DECLARE @n int EXEC @n = dbo.spBatchOverviewRecalc SELECT @n"), 1)
        self.assertEqual(self.one(f"SELECT Cost, Yield FROM dbo.Batches WHERE BatchId = {batch}"),
                         (decimal.Decimal("150"), 0.75))
        self.assertEqual(self.one("DECLARE @r int EXEC @r = dbo.spBatchSummaryRecalc 2 SELECT @r"), 0)
        month = self.one("SELECT CONVERT(char(7), GETDATE(), 120)")
        row = [row for row in self.ask(f"EXEC dbo.spBatchSummary '{month}'") if row[0] == "Syrup 65"][0]
        expected = self.one("SELECT COUNT(*), SUM(ISNULL(ProducedQuantity, 0)), SUM(Cost) FROM dbo.Batches "
                            f"WHERE Status >= 3 AND CONVERT(char(7), StartTime, 120) = '{month}' AND RecipeId = 1")
        self.assertEqual((row[2], row[4], row[6]), expected)

    def test_AnUpgradeFromAnUnknownVersionIsRefused(self):
        self.refused("spUpgradeDatabase 7, 9, N'TmpBatchUpgradeDb', N'Batch', N'u', N'p'",
                     "'TmpBatchUpgradeDb' of version 7 can not be upgraded to version 9")
        self.assertEqual(self.one("SELECT @@TRANCOUNT"), 0)

    def test_SynchronisingADatabaseWithItselfIsRefused(self):
        self.refused("spStdSynchronize N'u', N'p', N'S', N's', N'Batch', N'batch', N'u', N'u', N'p', N'p'",
                     "are the same database")

    def test_ReplicationWithoutAPartnerIsRefused(self):
        self.refused("exec spInstallReplication", "Replication needs both servers")

    def test_RightsAreGrantedToTheRole(self):
        rows = self.ask("SELECT name FROM dbo.sysusers WHERE issqlrole = 1 AND name LIKE N'LK%' ORDER BY name")
        self.assertEqual(rows, [("LKBatchReader",), ("LKBatchUser",)])

    # Its name makes it the last test: runs all scripts again on a database in use.
    def test_zASecondRunKeepsTheData(self):
        self.ask("INSERT INTO dbo.LKConfig (ParameterName, Value) VALUES (N'Own', N'kept')")
        tables = "SELECT name FROM dbo.sysobjects WHERE xtype = 'U' ORDER BY name"
        counted = [name for (name,) in self.ask(tables) if name != "BatchSummary"]
        before = {name: self.one(f"SELECT COUNT(*) FROM dbo.{name}") for name in counted}
        with self.server.connect() as connection:
            errors = install(connection, self.script("Create_Batch_Database"))
        self.assertEqual(len(errors), 1, errors)
        self.assertIn('Database "Batch" exists already on NODE1', errors[0])
        for name in TEMPLATES[1:]:
            with self.server.connect() as connection:
                self.assertEqual(install(connection, self.script(name)), [], name)
        self.assertEqual({name: self.one(f"SELECT COUNT(*) FROM dbo.{name}") for name in counted}, before)
        self.assertEqual(self.one("SELECT COUNT(*) FROM master.dbo.sysobjects WHERE name = N'Batches'"), 0)


class WithoutDatabase(unittest.TestCase):
    program = folder = None

    def test_NoScriptChangesMasterIfTheDatabaseIsMissing(self):
        server = Server(self.program)
        self.addCleanup(server.stop)
        for name in TEMPLATES:
            data = os.path.join(server.root, "no such folder")
            with self.subTest(name), server.connect() as connection:
                errors = install(connection, modified(os.path.join(self.folder, name + ".sql"), data))
                self.assertTrue(any('atabase "Batch"' in error for error in errors), errors)
                cursor = connection.cursor()
                self.assertEqual(run(cursor, "SELECT name FROM master.dbo.sysobjects WHERE name LIKE N'sp%Batch%' "
                                             "OR name IN (N'Batches', N'LKConfig')")[-1], [])


if __name__ == "__main__":
    for suite in (InstalledSamples, WithoutDatabase):
        suite.program, suite.folder = sys.argv[1:3]
    InstalledSamples.version = os.path.basename(sys.argv[2]).removeprefix("v")
    unittest.main(argv=[sys.argv[0]] + sys.argv[3:])

# The new features of version 2 of the sample templates, and its spUpgradeDatabase, which must copy every row of a used
# version 1 database. Uses a database client, not the program.
#
#   upgraded_samples_test.py DEVSQLSERVER SAMPLES_FOLDER
import decimal
import os
import sys
import unittest

import pymssql

from installed_samples_test import TEMPLATES, USER, Server, install, modified, run


class OnAServer(unittest.TestCase):
    program = samples = None

    @classmethod
    def setUpClass(cls):
        cls.server = Server(cls.program)
        cls.addClassCleanup(cls.server.stop)

    @classmethod
    def install(cls, version, data=None, templates=TEMPLATES[:3]):
        for name in templates:
            script = modified(os.path.join(cls.samples, version, name + ".sql"), data or cls.server.data)
            with cls.server.connect() as connection:
                errors = install(connection, script)
                assert not errors, errors

    @classmethod
    def ask(cls, statement, database="Batch"):
        with cls.server.connect(database) as connection, connection.cursor() as cursor:
            results = run(cursor, statement)
            return results[0] if results else []


class VersionTwo(OnAServer):
    """The features that version 1 does not have."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.install("v2")

    def test_BatchesOfOneOrderShareIt(self):
        for name, unit, order in (("O-1", 1, "'A-17', N'Süd'"), ("O-2", 2, "'A-17', N'Süd'"), ("O-3", 3, "'A-17', NULL"),
                                  ("O-4", 4, "NULL, NULL")):
            self.ask(f"EXEC dbo.spStartBatch N'{name}', 1, {unit}, 100, {order}")
        self.assertEqual([row[:3] + row[4:] for row in self.ask("EXEC dbo.spListOrders 1")],
                         [(1, "A-17", "Süd", 2, decimal.Decimal(0)), (2, "A-17", None, 1, decimal.Decimal(0))])
        self.assertEqual(self.ask("SELECT BatchName, OrderNo, CustomerName FROM dbo.vBatchOverview ORDER BY BatchId"),
                         [("O-1", "A-17", "Süd"), ("O-2", "A-17", "Süd"), ("O-3", "A-17", None), ("O-4", None, None)])

    def test_ABlockedLotIsNotConsumed(self):
        self.ask("UPDATE dbo.Lots SET Released = 1")
        self.ask("EXEC dbo.spBlockLot 'W-0001'")
        with self.assertRaisesRegex(pymssql.Error, "Lot 1 is blocked"):
            self.ask("EXEC dbo.spConsumeLot 1000, 1, 5")
        self.assertEqual(self.ask("DECLARE @r int EXEC @r = dbo.spBlockLot 'none' SELECT @r"), [(1,)])

    def test_TheUserWhoSetAParameterIsStored(self):
        self.ask("EXEC dbo.spSetConfig N'Line', N'4'")
        self.assertEqual(self.ask("SELECT ChangedBy FROM dbo.LKConfig WHERE ParameterName = N'Line'"), [(USER,)])


# Fills a version 1 database: every table gets rows, with values that a careless copy would lose.
USE_OF_VERSION_1 = [
    "DECLARE @b int EXEC dbo.spStartBatch N'B-1', 1, 1, 500, 'A-17', N'Müller & Söhne', 2, '20240105 10:00', @b OUTPUT "
    "EXEC dbo.spStartPhase @b, 2, '20240105 10:05' UPDATE dbo.Lots SET Released = 1 EXEC dbo.spConsumeLot @b, 1, 12.5 "
    "EXEC dbo.spEndPhase @b, 2, 79.25 EXEC dbo.spEndBatch @b, 450, 0, '20240105 12:30'",
    "DECLARE @b int EXEC dbo.spStartBatch N'B-2', 1, 1, 500, 'A-17', N'Müller & Söhne', 2, NULL, @b OUTPUT",
    "DECLARE @b int EXEC dbo.spStartBatch N'B-3', 1, 2, 500.125, NULL, N'Crème SA', 3, NULL, @b OUTPUT",
    "DECLARE @b int EXEC dbo.spStartBatch N'B-4', 1, 3, NULL, 'A-18', NULL, 1, NULL, @b OUTPUT "
    "EXEC dbo.spEndBatch @b, 0, 1 DELETE FROM dbo.Events WHERE BatchId = @b DELETE FROM dbo.Batches WHERE BatchId = @b",
    "DECLARE @b int EXEC dbo.spStartBatch N'B-5', 1, 4, NULL, NULL, NULL, 1, NULL, @b OUTPUT",
    "UPDATE dbo.Batches SET Notes = REPLICATE(N'ä', 3000), Remark = N'ok – 10 €' WHERE BatchName = N'B-2'",
    "EXEC dbo.spSetUserSecrets N'OPERATOR', 0x00FF10, 'OP', 0x89504E47",
    "EXEC dbo.spSetUnitLimits 3, 1200.125, 38.5, '20240229 08:00'",
    "UPDATE dbo.Units SET Active = 0 WHERE UnitId = 4 DELETE FROM dbo.Phases WHERE PhaseId = 90",
    "EXEC dbo.spSetConfig N'Shift', N'früh', N'Current shift'",
    "EXEC dbo.spSetConfig N'ServerB', N'NODE2' EXEC dbo.spSetConfig N'Currency', N'CHF'",
    "EXEC dbo.spAcknowledgeEvents 3, '20300101', 0",
    "EXEC dbo.spBatchSummaryRecalc 1200",
]
# The columns of version 1 that are renamed in version 2, by table.
RENAMED = {"Units": {"MaxTemperature": "TemperatureLimit"}, "Recipes": {"Version": "Revision"}}


class TwoDatabases(OnAServer):
    """A used version 1 database under the temporary name, and a new version 2 database."""

    @classmethod
    def make_databases(cls):
        cls.install("v1")
        for statement in USE_OF_VERSION_1:
            cls.ask(statement)
        cls.alone_in("Batch", "ALTER DATABASE [Batch] MODIFY NAME = TmpBatchUpgradeDb")
        data = os.path.join(cls.server.root, "new")
        os.makedirs(data, exist_ok=True)
        cls.install("v2", data, [TEMPLATES[0], TEMPLATES[2], TEMPLATES[1]])

    @classmethod
    def alone_in(cls, database, statement):
        """Disconnects everybody from the database and runs the statement: a session ends some time after its client."""
        with cls.server.connect() as connection, connection.cursor() as cursor:
            for step in (f"ALTER DATABASE [{database}] SET SINGLE_USER WITH ROLLBACK IMMEDIATE",
                         f"ALTER DATABASE [{database}] SET MULTI_USER", statement):
                run(cursor, step)

    @classmethod
    def take_over(cls):
        cls.ask("spUpgradeDatabase 1, 2, N'TmpBatchUpgradeDb', N'Batch', N'u', N'p'")

    def columns(self, table):
        return [row[0] for row in self.ask("SELECT COLUMN_NAME FROM INFORMATION_SCHEMA.COLUMNS WHERE "
                                           f"TABLE_NAME = '{table}' AND DATA_TYPE <> 'timestamp'", "TmpBatchUpgradeDb")]

    def rows(self, table, columns, database):
        return sorted(self.ask(f"SELECT {', '.join(columns)} FROM dbo.{table}", database), key=repr)

    def everything(self, database="Batch"):
        tables = [row[0] for row in self.ask("SELECT name FROM sysobjects WHERE xtype = 'U'", database)]
        return {table: self.rows(table, ["*"], database) for table in tables}


class TakenOver(TwoDatabases):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.make_databases()
        cls.source_before = cls().everything("TmpBatchUpgradeDb")
        cls.take_over()

    def test_EveryRowOfEveryTableIsCopied(self):
        for table in ("LKUser", "Units", "Phases", "Recipes", "RecipePhases", "Materials", "Lots", "BatchPhases",
                      "BatchMaterials", "BatchSummary"):
            with self.subTest(table):
                old = self.columns(table)
                new = [RENAMED.get(table, {}).get(name, name) for name in old]
                wanted = self.rows(table, old, "TmpBatchUpgradeDb")
                self.assertTrue(wanted)
                self.assertEqual(self.rows(table, new, "Batch"), wanted)

    def test_OrdersAndCustomersOfBatchesAreMovedToTheirTable(self):
        old = self.columns("Batches")
        wanted = self.rows("Batches", old, "TmpBatchUpgradeDb")
        self.assertEqual(len(wanted), 4)
        self.assertEqual(self.rows("Batches b LEFT OUTER JOIN dbo.Orders o ON o.OrderId = b.OrderId",
                                   [name if name in ("OrderNo", "CustomerName") else "b." + name for name in old],
                                   "Batch"), wanted)
        self.assertEqual(self.rows("Orders", ["OrderNo", "CustomerName", "Due"], "Batch"),
                         [("A-17", "Müller & Söhne", None), (None, "Crème SA", None)])

    def test_EventsAreCopiedAndOneIsAdded(self):
        columns = self.columns("Events")
        new = self.rows("Events", columns, "Batch")
        added = [row for row in new if row not in self.rows("Events", columns, "TmpBatchUpgradeDb")]
        self.assertEqual(len(new) - 1, len(self.rows("Events", columns, "TmpBatchUpgradeDb")))
        self.assertEqual([row[6] for row in added], ["Version 2 took over 4 batches of version 1"])

    def test_TheSitesSettingsAreKept(self):
        wanted = dict(self.ask("SELECT ParameterName, Value FROM dbo.LKConfig", "TmpBatchUpgradeDb"))
        self.assertEqual((wanted["Shift"], wanted["ServerB"], wanted["Currency"]), ("früh", "NODE2", "CHF"))
        wanted["DatabaseVersion"] = "2"
        self.assertEqual(dict(self.ask("SELECT ParameterName, Value FROM dbo.LKConfig")), wanted)

    def test_NumbersContinueAfterTheLastOne(self):
        last = self.ask("SELECT MAX(BatchId) FROM dbo.Batches")[0][0]
        number = self.ask("SET NOCOUNT ON DECLARE @b int BEGIN TRANSACTION EXEC dbo.spStartBatch N'B-6', 1, 3, @BatchId = @b "
                          "OUTPUT ROLLBACK TRANSACTION SELECT @b")[0][0]
        self.assertEqual(number, last + 1)

    def test_TheSourceIsNotChanged(self):
        self.assertEqual(self.everything("TmpBatchUpgradeDb"), self.source_before)


class NotTakenOver(TwoDatabases):
    def setUp(self):
        self.make_databases()
        self.addCleanup(self.drop_databases)

    def drop_databases(self):
        for database in ("Batch", "TmpBatchUpgradeDb"):
            self.alone_in(database, f"DROP DATABASE [{database}]")

    def test_AFailureLeavesTheNewDatabaseUnchanged(self):
        before = self.everything()
        for spoil in ("UPDATE dbo.BatchPhases SET StepNo = -1 ALTER TABLE dbo.BatchPhases DROP COLUMN SetPoint",
                      "DROP TABLE dbo.BatchSummary"):
            self.ask(spoil, "TmpBatchUpgradeDb")
            with self.assertRaises(pymssql.Error):
                self.take_over()
            self.assertEqual(self.everything(), before)

    def test_ADatabaseWithBatchesIsRefused(self):
        self.take_over()
        before = self.everything()
        with self.assertRaisesRegex(pymssql.Error, "'Batch' holds batches already"):
            self.take_over()
        self.assertEqual(self.everything(), before)

    def test_AMissingSourceIsRefused(self):
        with self.assertRaises(pymssql.Error):
            self.ask("spUpgradeDatabase 1, 2, N'NoSuchDb', N'Batch', N'u', N'p'")
        self.assertEqual(self.ask("SELECT COUNT(*) FROM dbo.Units"), [(4,)])


if __name__ == "__main__":
    OnAServer.program, OnAServer.samples = sys.argv[1:3]
    unittest.main(argv=[sys.argv[0]] + sys.argv[3:])

# Installs the sample templates on a pair of development servers with a database client: spStdSynchronize must make the
# destination's tables equal to the source's or change nothing, and replication can be installed and uninstalled. Does
# not use the program.
#
#   synchronised_samples_test.py DEVSQLSERVER SAMPLES_FOLDER
import os
import sys
import unittest

import pymssql

from installed_samples_test import PASSWORD, TEMPLATES, USER, Server, install, modified, run
from upgraded_samples_test import USE_OF_VERSION_1

OWN_TABLES = ("LKConfig", "BatchSummary")
JOBS = ("SELECT j.name FROM msdb.dbo.sysjobs j INNER JOIN msdb.dbo.syscategories c ON c.category_id = j.category_id "
        "WHERE c.category_class = 1 AND c.name = N'REPL-Distribution'")


class Node(Server):
    """A server of the pair."""

    @property
    def name(self):
        return f"127.0.0.1,{self.port}"

    def install(self, folder, templates, values):
        for name in templates:
            script = modified(os.path.join(folder, name + ".sql"), self.data, values)
            with self.connect() as connection:
                errors = install(connection, script)
                assert not errors, errors

    def ask(self, statement, database="Batch"):
        with self.connect(database) as connection, connection.cursor() as cursor:
            results = run(cursor, statement)
            return results[0] if results else []

    def everything(self):
        tables = sorted(row[0] for row in self.ask("SELECT name FROM sysobjects WHERE xtype = 'U'"))
        contents = {}
        for table in tables:
            columns = [row[0] for row in self.ask("SELECT COLUMN_NAME FROM INFORMATION_SCHEMA.COLUMNS WHERE TABLE_NAME = "
                                                  f"'{table}' AND DATA_TYPE <> 'timestamp'")]
            contents[table] = sorted(self.ask(f"SELECT {', '.join(columns)} FROM dbo.{table}"), key=repr)
        return contents


class Pair(unittest.TestCase):
    program = samples = None

    def setUp(self):
        self.a, self.b = Node(self.program), Node(self.program)
        for server in (self.a, self.b):
            self.addCleanup(server.stop)

    def values(self, selected):
        return {"server": selected.name, "servera": self.a.name, "serverb": self.b.name, "useridb": USER,
                "passwordb": PASSWORD, "datapathb": self.b.data, "uncrepldatapath": selected.data,
                "uncrepldatapatha": self.a.data, "uncrepldatapathb": self.b.data}

    def install(self, version_a, version_b, templates=TEMPLATES[:3]):
        for server, version in ((self.a, version_a), (self.b, version_b)):
            server.install(os.path.join(self.samples, version), templates, self.values(server))

    def synchronise(self, source, destination, password=PASSWORD):
        source.ask(f"spStdSynchronize N'{USER}', N'{PASSWORD}', N'{destination.name}', N'{source.name}', N'Batch', N'Batch', "
                   f"N'{USER}', N'{USER}', N'{password}', N'{PASSWORD}'")

    def assert_synchronised(self, source, destination):
        before = {server: server.everything() for server in (source, destination)}
        self.synchronise(source, destination)
        wanted = {table: before[destination if table in OWN_TABLES else source][table] for table in before[source]}
        self.assertEqual(destination.everything(), wanted)
        self.assert_nothing_left()

    def assert_refused(self, source, destination, text, **login):
        before = destination.everything()
        with self.assertRaisesRegex(pymssql.Error, text):
            self.synchronise(source, destination, **login)
        self.assertEqual(destination.everything(), before)
        self.assert_nothing_left()

    def assert_nothing_left(self):
        """Checks that no linked server, which would have a password, is left."""
        for server in (self.a, self.b):
            if server.process.poll() is None:
                self.assertEqual(server.ask("SELECT srvname FROM master.dbo.sysservers WHERE srvname LIKE N'LKSYNC%'"), [])

    def test_BothDirections(self):
        for version in ("v1", "v2"):
            with self.subTest(version):
                self.install(version, version)
                for statement in USE_OF_VERSION_1 if version == "v1" else [
                        "EXEC dbo.spStartBatch N'B-1', 1, 1, 500, 'A-17', N'Müller', 2", "EXEC dbo.spBlockLot 'W-0001'"]:
                    self.a.ask(statement)
                self.assert_synchronised(self.a, self.b)
                self.b.ask("EXEC dbo.spStartBatch N'B-9', 1, 3 DELETE FROM dbo.RecipePhases WHERE StepNo = 5")
                self.assert_synchronised(self.b, self.a)
                # The next number follows the source's last one.
                self.a.ask("EXEC dbo.spStartBatch N'B-10', 1, 4" if version == "v2" else
                           "UPDATE dbo.Batches SET Status = 4 EXEC dbo.spStartBatch N'B-10', 1, 4")
                self.assertEqual(self.a.ask("SELECT BatchId - (SELECT MAX(BatchId) FROM dbo.Batches WHERE BatchName <> "
                                            "N'B-10') FROM dbo.Batches WHERE BatchName = N'B-10'"), [(1,)])
                for server in (self.a, self.b):
                    server.ask("ALTER DATABASE [Batch] SET SINGLE_USER WITH ROLLBACK IMMEDIATE DROP DATABASE [Batch]", "master")

    def test_AFailureChangesNothing(self):
        self.install("v1", "v2")
        # The other version does not have these columns.
        self.assert_refused(self.b, self.a, "Invalid column name 'MaxTemperature'")
        self.assert_refused(self.a, self.b, "Invalid column name '(ChangedBy|TemperatureLimit)'")
        self.assert_refused(self.a, self.b, "Login failed", password="wrong")
        self.b.process.kill()
        self.b.process.wait()
        with self.assertRaisesRegex(pymssql.Error, "LKSYNC_DEST"):
            self.synchronise(self.a, self.b)
        self.assert_nothing_left()

    def test_ARowThatTheDestinationRefusesRollsBackEverything(self):
        self.install("v2", "v2")
        self.a.ask("EXEC dbo.spStartBatch N'B-1', 1, 1 EXEC dbo.spAddEvent 5, 'alarm', N'Too hot'")
        self.b.ask("EXEC dbo.spStartBatch N'Kept', 1, 2 ALTER TABLE dbo.Events WITH NOCHECK ADD CONSTRAINT CK_Low "
                   "CHECK (Severity < 3)")
        self.assert_refused(self.a, self.b, "was not synchronised|CK_Low")

    def test_ReplicationIsInstalledAndUninstalled(self):
        self.install("v2", "v2", TEMPLATES)
        self.a.ask("exec spUninstallReplication")  # nothing to do
        for _ in range(2):  # the second time it is already installed
            self.a.ask("exec spInstallReplication")
            self.assertEqual(len(self.a.ask(JOBS)), 1)
        self.assertEqual(sorted(row[0] for row in self.a.ask("SELECT name FROM dbo.sysarticles")),
                         sorted(set(self.a.everything()) - set(OWN_TABLES)))
        self.assertEqual(self.b.ask(JOBS), [])
        for _ in range(2):
            self.a.ask("exec spUninstallReplication")
            self.assertEqual(self.a.ask(JOBS), [])
            self.assertEqual(self.a.ask("SELECT name FROM dbo.syspublications"), [])
        # From the other server.
        self.b.ask("exec spInstallReplication")
        self.assertEqual((len(self.b.ask(JOBS)), self.a.ask(JOBS)), (1, []))
        self.b.ask("exec spUninstallReplication")


if __name__ == "__main__":
    Pair.program, Pair.samples = sys.argv[1:3]
    unittest.main(argv=[sys.argv[0]] + sys.argv[3:])

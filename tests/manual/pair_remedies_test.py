# Tries the manual's repairs for a pair of servers: a fault stops a synchronisation, an installation or an uninstallation
# of replication, and the manual's statements and the console's commands repair the result.
#
#   pair_remedies_test.py DEVSQLSERVER BIN_FOLDER [TEST …]
import os
import shutil
import sys
import unittest

from remedy_fixture import HERE, ConsoleCommands, repair, stopped_at, wire_to
from test_machine import PASSWORD, USER, DevServer, Machine, contents, fresh_folder
from unattended_install_test import UnattendedTestCase

SYNCHRONIZE = ("synchronize", "Batch", "Batch")
SYNCHRONIZE_LINE = " : Error in CSynchronizeDbMgr::Synchronize('Batch', 'Batch')"
INSTALL_LINE = " : Error in CSQLReplicationMgr::InstallReplication('Batch')"
UNINSTALL_LINE = " : Error in CSQLReplicationMgr::UninstallReplication('Batch')"
# A synchronisation does not copy a server's settings.
OWN_TABLES = ("LKConfig",)


class PairRemedy(UnattendedTestCase):
    """Two servers with version 1, and the replication procedures on Server A; each test makes its own pair."""

    def setUp(self):
        self.folder = fresh_folder()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.machine = Machine(self.binaries, os.path.join(self.folder, "machine"))
        self.a, self.b = (DevServer(self.dev_server, os.path.join(self.folder, name)).start() for name in "ab")
        self.data = {letter: os.path.join(self.folder, "data of " + letter) for letter in "AB"}
        self.distribution = os.path.join(self.folder, "distribution data")
        os.mkdir(self.distribution)
        for letter, server in (("A", self.a), ("B", self.b)):
            self.addCleanup(server.stop)
            os.mkdir(self.data[letter])
            self.machine.run("/scriptfolder", self.machine.scripts, "/server", server.name, "/user", USER, "/password",
                             PASSWORD, "/sqldatapath", self.data[letter], "/installdb")
            self.assertEqual(self.machine.log_lines(), [])
        self.wire_a, self.wire_b = wire_to(self, self.a), wire_to(self, self.b)
        self.console = ConsoleCommands(self.machine, {
            f"{name}{letter}": value for letter, wire in (("A", self.wire_a), ("B", self.wire_b))
            for name, value in (("Server", f"{HERE},{wire.port}"), ("User", USER), ("Password", PASSWORD),
                                ("SQLDataPath", self.distribution), ("SQLUNCReplDataPath", self.data[letter]))
        } | {"ScriptFolder": self.machine.scripts})
        self.do("create-replication-procedures")
        self.a.ask("EXEC dbo.spAddEvent 1, 'Test', N'only on Server A'", "Batch")

    def do(self, *command):
        """Runs a command with Server A selected, which must succeed; returns its output."""
        succeeded, printed = self.console.run("a", *command)
        self.assertTrue(succeeded, printed)
        return printed.strip()

    def stop_at(self, statement, command, line, server=None, wire=None):
        """Runs the command and kills the server before the statement. The command must fail and log this line."""
        succeeded, _ = stopped_at(self, server or self.a, wire or self.wire_a, statement,
                                  lambda: self.console.run("a", *command))
        self.assertFalse(succeeded)
        self.assertEqual(self.machine.log_lines(), [line])

    def replication(self):
        return self.do("is-replication-installed", "Batch")

    def rows(self, server):
        """All rows by table, without a server's settings and the events that its synchronisations add."""
        return {table: [row for row in rows if table != "Events" or "SYNC" not in row]
                for table, rows in contents(server)["rows"].items() if table not in OWN_TABLES}

    def assert_same_rows(self):
        self.assertEqual(self.rows(self.b), self.rows(self.a))


class AfterAStoppedSynchronisation(PairRemedy):
    def test_without_replication_it_is_done_again(self):
        before = self.rows(self.b)
        self.stop_at("spStdSynchronize", SYNCHRONIZE, SYNCHRONIZE_LINE)
        self.assertEqual(self.rows(self.b), before)
        self.do(*SYNCHRONIZE)
        self.assert_same_rows()

    def test_the_destination_stopped_in_the_middle(self):
        self.stop_at("spStdSynchronizePull", SYNCHRONIZE, SYNCHRONIZE_LINE, self.b, self.wire_b)
        self.do(*SYNCHRONIZE)
        self.assert_same_rows()

    def test_replication_stayed_installed(self):
        self.do("install-replication", "Batch")
        self.stop_at("spUninstallReplication", SYNCHRONIZE, SYNCHRONIZE_LINE)
        self.assertEqual(self.replication(), "installed")
        self.do(*SYNCHRONIZE)
        self.assert_same_rows()
        self.assertEqual(self.replication(), "installed")

    def test_replication_was_uninstalled_and_nothing_was_synchronised(self):
        self.do("install-replication", "Batch")
        self.stop_at("spStdSynchronize", SYNCHRONIZE, SYNCHRONIZE_LINE)
        self.assertEqual(self.replication(), "not installed")
        self.do(*SYNCHRONIZE)
        repair(self.a, "install-replication", "Batch")
        self.assert_same_rows()
        self.assertEqual(self.replication(), "installed")

    def test_replication_was_not_installed_again(self):
        self.do("install-replication", "Batch")
        self.stop_at("spInstallReplication", SYNCHRONIZE, SYNCHRONIZE_LINE)
        self.assert_same_rows()
        self.assertEqual(self.replication(), "not installed")
        repair(self.a, "install-replication", "Batch")
        self.assertEqual(self.replication(), "installed")


class AfterAStoppedSwitchOfReplication(PairRemedy):
    def test_it_was_not_installed(self):
        self.stop_at("spInstallReplication", ("install-replication", "Batch"), INSTALL_LINE)
        self.assertEqual(self.replication(), "not installed")
        self.do("install-replication", "Batch")
        self.assertEqual(self.replication(), "installed")

    def test_it_was_installed_in_part(self):
        """Without the folder of the distribution database the server becomes a distributor without a database."""
        os.rmdir(self.distribution)
        succeeded, _ = self.console.run("a", "install-replication", "Batch")
        os.mkdir(self.distribution)
        self.assertFalse(succeeded)
        self.assertEqual(self.machine.log_lines(), [INSTALL_LINE])
        self.assertEqual(self.replication(), "not installed")
        repair(self.a, "uninstall-replication", "Batch")
        self.assertFalse(self.console.run("a", "install-replication", "Batch")[0])
        repair(self.a, "remove-distributor")
        repair(self.a, "install-replication", "Batch")
        self.assertEqual(self.replication(), "installed")

    def test_it_was_not_uninstalled(self):
        self.do("install-replication", "Batch")
        self.stop_at("spUninstallReplication", ("uninstall-replication", "Batch"), UNINSTALL_LINE)
        self.assertEqual(self.replication(), "installed")
        repair(self.a, "uninstall-replication", "Batch")
        self.assertEqual(self.replication(), "not installed")

    def test_it_was_uninstalled_in_part(self):
        """The state after a run that was stopped after the procedure's first step."""
        self.do("install-replication", "Batch")
        publication = self.a.column("SELECT name FROM syspublications", "Batch")[0]
        self.a.ask(f"EXEC sp_dropsubscription @publication = N'{publication}', @article = N'all', @subscriber = N'all'",
                   "Batch")
        repair(self.a, "uninstall-replication", "Batch")
        self.assertEqual(self.replication(), "not installed")
        self.assertEqual(int(self.a.ask("SELECT DATABASEPROPERTYEX('Batch', 'IsPublished')")[0][0]), 0)
        self.do("install-replication", "Batch")
        self.assertEqual(self.replication(), "installed")


if __name__ == "__main__":
    UnattendedTestCase.dev_server, UnattendedTestCase.binaries = map(os.path.abspath, sys.argv[1:3])
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)

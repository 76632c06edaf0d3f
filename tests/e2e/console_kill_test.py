# The console on a screen while its server is killed in the middle of each command. The message box shows the connection's
# errors, the button can be used again, and the command works once the server is restarted.
#
#   console_kill_test.py DEVSQLSERVER BIN_FOLDER [--wine] [TEST …]
from console_automation import (LONGEST, REPLICATION, SEPARATOR, STORED_PROC, SYNCHRONIZE, UPGRADE, VIEW_DATA,
                                ConsoleTest, main, record)
from console_wire import HERE, Wire
from test_machine import wait_for

# A procedure that records each call in a table. Its first call does not end.
ENDLESS = ("CREATE PROCEDURE {0} {1} AS INSERT INTO dbo.Calls VALUES (N'{0}') "
           "IF (SELECT COUNT(*) FROM dbo.Calls WHERE Name = N'{0}') = 1 WAITFOR DELAY '01:00:00' {2}")
VERSIONED = [
    "CREATE DATABASE {0}",
    "USE {0}",
    "CREATE TABLE LKConfig (ParameterName nvarchar(50) NOT NULL, Value nvarchar(50) NULL)",
    "INSERT INTO LKConfig VALUES (N'DatabaseVersion', N'{1}')",
    "CREATE TABLE Calls (Name sysname NOT NULL)",
]
OLDER = [statement.format("Older", 1) for statement in VERSIONED] + [
    ENDLESS.format("spEndless", "", "SELECT 'ended' AS Word"),
    ENDLESS.format("spInstallReplication", "", "EXEC msdb.dbo.sp_add_job @job_name = N'distribution', "
                                               "@category_name = N'REPL-Distribution'"),
    ENDLESS.format("spStdSynchronize", ", ".join(f"@p{i} sysname" for i in range(10)), ""),
    ENDLESS.format("spUninstallReplication", "", "EXEC msdb.dbo.sp_delete_job @job_name = N'distribution'"),
]
NEWER = [statement.format("Newer", 2) for statement in VERSIONED] + [
    "CREATE TABLE Last (Number int NOT NULL)",
    "CREATE PROCEDURE spUninstallReplication AS SET NOCOUNT ON",
    ENDLESS.format("spUpgradeDatabase", "@from int, @to int, " + ", ".join(f"@p{i} sysname" for i in range(4)), ""),
]
SPARE = ["CREATE DATABASE Spare ON (NAME = Spare_data, FILENAME = '{0}Spare_data.mdf') "
         "LOG ON (NAME = Spare_log, FILENAME = '{0}Spare_log.ldf')"]


# The errors of a connection that is lost, and of one that cannot be opened.
LOST = record("Unexpected EOF from the server", 20017, "08S01")
REFUSED = SEPARATOR.join([
    record("Unable to connect: Adaptive Server is unavailable or does not exist", 20009, "08S01"),
    record("Unable to connect to data source", 0, "08001")])


class ConsoleKill(ConsoleTest):
    def setUp(self):
        super().setUp()
        self.wire = Wire()
        self.addCleanup(self.wire.close)
        self.wire.up(self.a.port)
        for statements in (OLDER, NEWER, [line.format(self.machine.native(self.data[self.a] + "/")) for line in SPARE]):
            self.prepare(statements)
        self.console = self.open_console()

    def address_of(self, server):
        return f"{HERE},{self.wire.port}" if server is self.a else server.name

    def calls(self, database, procedure):
        return self.a.column("SELECT Name FROM dbo.Calls", database).count(procedure)

    def called(self, database, procedure, times):
        wait_for(lambda: self.calls(database, procedure) == times, LONGEST)

    def in_call(self, database, procedure):
        """Waits until the server runs the procedure for the first time."""
        return lambda: self.called(database, procedure, 1)

    def at(self, statement):
        """Waits until the program has sent the statement, which is held back from the server."""
        held = self.wire.hold(statement)
        return lambda: self.assertTrue(held.wait(LONGEST), f"not sent: {statement}")

    def killed(self, wait_until_busy, order, boxes=(LOST,)):
        """Gives the order, kills the server during its work, and closes the message boxes that are expected then."""
        words = self.console.begin(*order)
        wait_until_busy()
        self.wire.down()
        self.a.kill()
        self.console.finish(words)
        for text in boxes:
            self.assertEqual(self.console.do("box"), ["KVLSQLDbMgr", self.in_box(text)], order)
            self.console.do("answer")

    def run_again(self):
        self.a.port = 0
        self.wire.up(self.a.start().port)

    def items_become(self, name, wanted):
        self.becomes(lambda: self.console.do("items", name), wanted)

    def cannot_be_used(self, name):
        self.becomes(lambda: self.console.can_use(name), False)

    def databases_become(self, name, known):
        self.becomes(lambda: "Older" in self.console.do("items", name), known)

    def test_EachCommandSurvivesTheLossOfItsServer(self):
        self.synchronize()
        self.upgrade()
        self.replicate()
        self.view_data()
        self.run_procedures()
        self.console.close()

    def synchronize(self):
        console = self.console
        console.do("tab", SYNCHRONIZE)
        console.do("choose", "cboSynchronizeSourceDatabase", "Older")
        self.killed(self.in_call("Older", "spStdSynchronize"), ("click", "cmdSynchronize"))
        self.comes_back(console, "cmdSynchronize")
        self.run_again()
        console.do("click", "cmdSynchronize")
        self.called("Older", "spStdSynchronize", 2)
        self.comes_back(console, "cmdSynchronize")

    def upgrade(self):
        """Rename, upgrade and remove. Each command reads the lists again when it ends; without a server they are empty."""
        console = self.console
        console.do("tab", UPGRADE)
        console.do("choose", "cboRenameDatabase", "Spare")
        console.do("fill", "edtRenameNewDatabase", "Spare2")
        self.killed(self.at("MODIFY NAME"), ("click", "cmdRename"), (REFUSED, LOST))
        self.lists_come_back("cmdRename")
        console.do("choose", "cboRenameDatabase", "Spare")
        console.do("click", "cmdRename")
        self.becomes(lambda: "Spare2" in console.do("items", "cboRenameDatabase"), True)
        self.comes_back(console, "cmdRename")
        self.assertEqual(self.files(self.a), ["Spare2_data.mdf", "Spare2_log.ldf"])

        console.do("choose", "cboUpgradeDatabaseSource", "Older")
        console.do("fill", "cboUpgradeDatabaseDest", "Newer")
        self.killed(self.in_call("Newer", "spUpgradeDatabase"), ("click", "cmdUpgrade"), (REFUSED, LOST))
        self.lists_come_back("cmdUpgrade")
        console.do("choose", "cboUpgradeDatabaseSource", "Older")
        console.do("click", "cmdUpgrade")
        self.called("Newer", "spUpgradeDatabase", 2)
        self.comes_back(console, "cmdUpgrade")

        console.do("choose", "cboRemoveDatabase", "Spare2")
        self.killed(self.at("DROP DATABASE"), ("click", "cmdRemove"), (REFUSED, LOST))
        self.lists_come_back("cmdRemove")
        console.do("choose", "cboRemoveDatabase", "Spare2")
        console.do("click", "cmdRemove")
        self.becomes(lambda: "Spare2" in console.do("items", "cboRemoveDatabase"), False)
        self.comes_back(console, "cmdRemove")
        self.assertEqual(self.files(self.a), [])

    def lists_come_back(self, button):
        """After a kill on the Upgrade tab, the button can be used at once. The lists are filled again when the server runs
        and the tab is opened again."""
        self.comes_back(self.console, button)
        self.items_become("cboRemoveDatabase", [])
        self.run_again()
        self.console.do("tab", SYNCHRONIZE)
        self.console.do("tab", UPGRADE)
        self.databases_become("cboRemoveDatabase", True)

    def replicate(self):
        self.console.do("tab", REPLICATION)
        # Opening the tab reads the status; the label shows when that has ended.
        self.becomes(lambda: "activated for" in self.console.text("lblSQLServerReplicationStatus"), True)
        self.killed(self.at("sysjobs"), ("choose", "cboSQLReplicationDatabase", "Older"))
        self.status_comes_back("not ")
        self.killed(self.in_call("Older", "spInstallReplication"), ("click", "cmdInstallReplication"), (REFUSED, LOST))
        self.status_comes_back("not ")
        self.console.do("click", "cmdInstallReplication")
        self.status_becomes("Transaction replication is activated for the SQL Server database 'Older'.")
        self.killed(self.in_call("Older", "spUninstallReplication"), ("click", "cmdUninstallReplication"),
                    (REFUSED, LOST))
        self.status_comes_back("")
        self.console.do("click", "cmdUninstallReplication")
        self.status_becomes("Transaction replication is not activated for the SQL Server database 'Older'.")

    def status_becomes(self, text):
        self.becomes(lambda: self.console.text("lblSQLServerReplicationStatus"), text)

    def status_comes_back(self, word):
        """After a kill on the Replication tab, no button can be used before the status is known again."""
        console = self.console
        self.status_becomes("Replication status for database 'Older' could not be retieved from the SQL Server!")
        self.cannot_be_used("cmdInstallReplication")
        self.cannot_be_used("cmdUninstallReplication")
        self.run_again()
        for database in ("Newer", "Older"):
            console.do("choose", "cboSQLReplicationDatabase", database)
            self.status_becomes(f"Transaction replication is {word}activated for the SQL Server database '{database}'.")

    def list_databases(self, tab, option, combo):
        """On a tab whose list of databases follows the choice of a server."""
        console = self.console
        console.do("tab", tab)
        self.databases_become(combo, True)
        console.do("click", option + ".1")
        self.databases_become(combo, False)
        self.killed(self.at("sp_helpdb"), ("click", option + ".0"))
        self.items_become(combo, [])
        self.run_again()
        console.do("click", option + ".1")
        self.becomes(lambda: "master" in console.do("items", combo), True)
        console.do("click", option + ".0")
        self.databases_become(combo, True)

    def view_data(self):
        console = self.console
        self.list_databases(VIEW_DATA, "optViewDataCurrentServer", "cboViewDataDatabase")
        self.killed(self.at("INFORMATION_SCHEMA"), ("choose", "cboViewDataDatabase", "Older"))
        self.items_become("lstViewDataTables", [])
        self.cannot_be_used("lstViewDataTables")
        self.run_again()
        for database, tables in (("Newer", ["LKConfig", "Calls", "Last"]), ("Older", ["LKConfig", "Calls"])):
            console.do("choose", "cboViewDataDatabase", database)
            self.items_become("lstViewDataTables", tables)
        self.becomes(lambda: console.can_use("lvwViewData"), True)
        self.killed(self.at("SELECT * FROM Calls"), ("choose", "lstViewDataTables", "Calls"))
        self.becomes(lambda: console.do("headers", "lvwViewData"), [])
        self.cannot_be_used("lvwViewData")
        self.run_again()
        for table, headers in (("LKConfig", ["ParameterName", "Value"]), ("Calls", ["Name"])):
            console.do("choose", "lstViewDataTables", table)
            self.becomes(lambda: console.do("headers", "lvwViewData"), headers)
            self.becomes(lambda: console.can_use("lvwViewData"), True)
        self.becomes(lambda: console.row(0), ["spStdSynchronize"])

    def run_procedures(self):
        console = self.console
        self.list_databases(STORED_PROC, "optStoredProcCurrentServer", "cboStoredProcDatabase")
        self.killed(self.at("sp_stored_procedures"), ("choose", "cboStoredProcDatabase", "Older"))
        self.items_become("cboStoredProcedure", [])
        self.cannot_be_used("cboStoredProcedure")
        self.run_again()
        for database, last in (("Newer", "spUpgradeDatabase"), ("Older", "spUninstallReplication")):
            console.do("choose", "cboStoredProcDatabase", database)
            self.becomes(lambda: console.do("items", "cboStoredProcedure")[-1:], [last])
        self.killed(self.at("sp_helptext 'spStdSynchronize'"), ("choose", "cboStoredProcedure", "spStdSynchronize"))
        self.becomes(lambda: console.text("edtStoredProcedure"), "")
        self.run_again()
        console.do("choose", "cboStoredProcedure", "spEndless")
        self.becomes(lambda: "CREATE PROCEDURE spEndless" in console.text("edtStoredProcedure"), True)
        self.run_in_dialog()

    def run_in_dialog(self):
        console = self.console
        self.killed(self.at("sp_sproc_columns"), ("click", "cmdExecute"))
        console.do("form", "dialog")
        self.parameters_come_back()
        self.killed(self.at("sp_sproc_columns"), ("click", "cmdReload"))
        self.parameters_come_back()
        self.killed(self.in_call("Older", "spEndless"), ("click", "cmdExecute"))
        self.cannot_be_used("lvwViewData")
        self.comes_back(console, "cmdExecute")
        self.run_again()
        console.do("click", "cmdExecute")
        self.becomes(lambda: console.do("rows", "lvwViewData"), ["1"])
        self.becomes(lambda: console.can_use("lvwViewData"), True)
        self.becomes(lambda: console.row(0), ["ended"])
        console.do("click", "cmdClose")
        console.do("form", "main")

    def parameters_come_back(self):
        self.items_become("lstParameters", [])
        self.cannot_be_used("lstParameters")
        self.run_again()
        self.console.do("click", "cmdReload")
        self.items_become("lstParameters", ["@RETURN_VALUE"])


if __name__ == "__main__":
    main(ConsoleKill)

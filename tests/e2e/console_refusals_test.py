# What each command of the console refuses: the exact text of its message box, and that the command can be used again
# afterwards. Also the console that is closed while a command runs.
#
#   console_refusals_test.py DEVSQLSERVER BIN_FOLDER [--wine] [TEST …]
import os

from console_automation import (REPLICATION, SCRIPT, SEPARATOR, SYNCHRONIZE, UPGRADE, ConsoleTest, main, record)
from test_machine import wait_for

TITLE = "KVLSQLDbMgr"
VERSIONED = ["CREATE DATABASE {0}", "USE {0}",
             "CREATE TABLE LKConfig (ParameterName nvarchar(50) NOT NULL, Value nvarchar(50) NULL)",
             "INSERT INTO LKConfig VALUES (N'DatabaseVersion', N'{1}')"]
REFUSED = -2147217900  # the error number of a statement that the server refuses


def no_procedure(name):
    return record(f"Could not find stored procedure '{name}'.", 2812, "42000", REFUSED)


def no_single_user(database):
    return record(f"Option 'SINGLE_USER' cannot be set in database '{database}'.", 5058, "42000", REFUSED)


class ConsoleRefusals(ConsoleTest):
    def setUp(self):
        super().setUp()
        # The console's check boxes for packages can only be used with server versions below 12.
        self.machine.set_registry(version="9.00.1399.06")
        self.machine.add_to_registry(self.SERVER_INSTALLED)

    def refused(self, console, button, text):
        """The click shows this message box and does nothing else."""
        console.do("click", button)
        self.box_comes(console, text)
        self.comes_back(console, button)

    def box_comes(self, console, text):
        self.assertEqual(console.do("box"), [TITLE, self.in_box(text)])
        console.do("answer")

    def test_general(self):
        console = self.open_console()
        console.do("click", "cmdGetRemoteSettings")
        self.box_comes(console, "Lotkeeper redundancy must be configured!")
        self.assertEqual(console.text("edtServerName.1"), self.b.name)
        for button, box in (("cmdBrowseForScriptFolder", "edtScriptFolder"),
                            ("cmdBrowseForSQLDataPath.1", "edtSQLDataPath.1")):
            before = console.text(box)
            console.do("click", button)
            console.do("picker")
            console.do("press", "Escape")
            console.do("form", "main")
            self.assertEqual(console.text(box), before)
        console.close()

    def test_script(self):
        console = self.open_console()
        folder = os.path.join(self.folder, "scripts")
        os.mkdir(folder)
        console.do("fill", "edtScriptFolder", self.machine.native(folder))
        console.do("tab", SCRIPT)
        self.refused(console, "cmdCreateInstall", "No scripts or DTS packages selected!")
        console.do("click", "chkCreateInstallBatchDatabase")
        self.becomes(lambda: console.do("checked", "chkCreateInstallBatchDatabase"), ["yes"])
        self.refused(console, "cmdCreateInstall", "You must specify a script folder!")
        user_script = os.path.join(folder, "mine.sql")
        with open(user_script, "w") as file:
            file.write("CREATE DATABASE Mine\nGO\n")
        self.refused(console, "cmdCreateInstall", "No scripts or DTS packages were found in the script folder!")

        console.do("click", "chkCreateInstallBatchDatabase")
        self.becomes(lambda: console.do("checked", "chkCreateInstallBatchDatabase"), ["no"])
        self.assertFalse(console.can_use("chkCreateInstallScriptFile"))
        console.do("fill", "edtCreateInstallScriptFile", self.machine.native(folder))
        console.do("click", "cmdBrowseForScriptFile")
        console.do("picker")
        console.do("type", "mine.sql")  # the dialog opens at the folder that is in the box
        console.do("pick")
        console.do("form", "main")
        self.becomes(lambda: console.text("edtCreateInstallScriptFile"), self.machine.native(user_script))
        console.do("click", "chkCreateInstallScriptFile")
        self.becomes(lambda: console.do("checked", "chkCreateInstallScriptFile"), ["yes"])
        console.do("click", "optCreateInstallScriptFiles.1")
        os.rename(self.machine.tool, self.machine.tool + ".away")
        self.refused(console, "cmdCreateInstall", "The query tool OSQL.EXE was not found!")
        os.rename(self.machine.tool + ".away", self.machine.tool)
        console.do("click", "cmdCreateInstall")
        wait_for(lambda: "Mine" in self.a.column("SELECT name FROM master.dbo.sysdatabases"))
        self.comes_back(console, "cmdCreateInstall")

        self.a.kill()
        self.refused(console, "cmdGetInstalledPackages",
                     "Information about installed packages could not be read from the SQL Server installation!")
        console.close()

    def test_databases(self):
        for name, version in (("Older", 1), ("Newer", 2)):
            self.prepare([line.format(name, version) for line in VERSIONED])
        console = self.open_console()
        console.do("fill", "edtServerName.1", self.a.name)
        console.do("tab", SYNCHRONIZE)
        for box in ("cboSynchronizeSourceDatabase", "cboSynchronizeDestDatabase"):
            console.do("choose", box, "Older")
        self.refused(console, "cmdSynchronize", "Different source and destination database must be specified!")
        console.do("choose", "cboSynchronizeDestDatabase", "Newer")
        self.refused(console, "cmdSynchronize", no_procedure("spStdSynchronize"))

        console.do("tab", UPGRADE)
        console.do("choose", "cboRenameDatabase", "Older")
        console.do("fill", "edtRenameNewDatabase", "Newer")
        self.refused(console, "cmdRename", "The database 'Newer' already exist!")
        console.do("choose", "cboUpgradeDatabaseSource", "Older")
        console.do("fill", "cboUpgradeDatabaseDest", "Newer")
        self.refused(console, "cmdUpgrade", no_procedure("spUninstallReplication"))
        console.do("choose", "cboRemoveDatabase", "model")
        self.refused(console, "cmdRemove", no_single_user("model"))
        console.do("choose", "cboRenameDatabase", "model")
        console.do("fill", "edtRenameNewDatabase", "Model2")
        self.refused(console, "cmdRename", no_single_user("model"))

        console.do("tab", REPLICATION)
        console.do("choose", "cboSQLReplicationDatabase", "Older")
        off = "Transaction replication is not activated for the SQL Server database 'Older'."
        self.becomes(lambda: console.text("lblSQLServerReplicationStatus"), off)
        console.do("click", "cmdInstallReplication")
        self.box_comes(console, no_procedure("spInstallReplication"))
        self.becomes(lambda: console.text("lblSQLServerReplicationStatus"), off)
        console.do("choose", "cboSQLReplicationDatabase", "Newer")
        self.becomes(lambda: console.text("lblSQLServerReplicationStatus"), off.replace("Older", "Newer"))
        console.do("press", "End")
        console.do("type", "q")
        self.box_comes(console, SEPARATOR.join([
            record("Login failed for user 'lk_admin'.", 18456, "42000", REFUSED),
            record('Cannot open database "Newerq" requested by the login. The login failed.', 4060, "42000", REFUSED),
            record("Unable to connect to data source", 0, "08001")]))
        self.becomes(lambda: console.text("lblSQLServerReplicationStatus"),
                     "Replication status for database 'Newerq' could not be retieved from the SQL Server!")
        for button in ("cmdInstallReplication", "cmdUninstallReplication"):
            self.assertFalse(console.can_use(button))
        console.close()
        self.assertEqual([line.split("(")[0] for line in self.log()], [" : Error in " + name for name in (
            "CSynchronizeDbMgr::Synchronize", "CUpgradeDbMgr::UpgradeDatabase", "CUpgradeDbMgr::RemoveDatabase",
            "CUpgradeDbMgr::RenameDatabase", "CSQLReplicationMgr::InstallReplication",
            "CSQLReplicationMgr::IsReplicationInstalled")])

    def test_closed_while_a_command_runs(self):
        """The window closes at the next step of the command. The command runs to its end, and then the program ends."""
        self.machine.set_scripts("v1")
        console = self.open_console()
        console.do("fill", "edtScriptFolder", self.machine.native(self.machine.scripts))
        console.do("tab", SCRIPT)
        for box in ("chkCreateInstallBatchDatabase", "chkCreateInstallBatchDefaultData"):
            console.do("click", box)
            self.becomes(lambda: console.do("checked", box), ["yes"])
        console.do("click", "cmdCreateInstall")
        wait_for(self.machine.data_files)
        console.do("press", "Alt+F4")
        console.end()
        console.leave()
        self.assertEqual(self.machine.data_files(), ["Create_Batch_Database.sql", "Insert_Default_Data.sql"])
        self.assertEqual(self.log(), [])
        if not self.wine:  # under Wine each console starts with an empty registry
            console = self.open()
            self.assertEqual(console.text("edtServerName.1"), self.b.name)  # typed texts were saved
            console.close()


if __name__ == "__main__":
    main(ConsoleRefusals)

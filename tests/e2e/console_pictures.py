# Takes the pictures of every tab and of the procedure dialog for README and the manual, from the real console with two
# development servers. tools/take-pictures runs it.
#
#   console_pictures.py DEVSQLSERVER BIN_FOLDER [--wine]
#
# KV_PICTURES names the folder for the pictures; with KV_DARK=1 they show a dark desktop (Linux).
import os

from console_automation import (GENERAL, REPLICATION, SCRIPT, STORED_PROC, SYNCHRONIZE, UPGRADE, VIEW_DATA, ConsoleTest,
                                main)

# In a KDE session Qt reads its colours from this file.
DARK = """[Colors:Window]
BackgroundNormal=42,46,50
ForegroundNormal=252,252,252
[Colors:Button]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
[Colors:View]
BackgroundNormal=27,30,32
BackgroundAlternate=35,38,41
ForegroundNormal=252,252,252
[Colors:Selection]
BackgroundNormal=61,174,233
ForegroundNormal=252,252,252
[Colors:Tooltip]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
"""


class ConsolePictures(ConsoleTest):
    def setUp(self):
        super().setUp()
        if os.environ.get("KV_DARK"):
            with open(os.path.join(self.machine.folder, "kdeglobals"), "w") as file:
                file.write(DARK)
            self.machine.environment.update(XDG_CURRENT_DESKTOP="KDE", KDE_FULL_SESSION="true", KDE_SESSION_VERSION="5")

    def test_pictures(self):
        self.install(self.a, "v1")
        self.a.ask("EXEC dbo.spStartBatch N'B-1', 1, 1, 500, 'A-17', N'Smith', 2", "Batch")
        self.install(self.b, "v1")
        console = self.open_console()
        console.do("tab", SCRIPT)
        console.do("click", "chkCreateInstallBatchDatabase")
        console.picture("console-script")
        console.do("tab", SYNCHRONIZE)
        for box in ("cboSynchronizeSourceDatabase", "cboSynchronizeDestDatabase"):
            console.do("choose", box, "Batch")
        console.picture("console-synchronize")
        console.do("tab", UPGRADE)
        for box in ("cboRenameDatabase", "cboUpgradeDatabaseSource", "cboRemoveDatabase"):
            console.do("choose", box, "Batch")
        console.do("fill", "edtRenameNewDatabase", "BatchOld")
        console.picture("console-upgrade")
        console.do("tab", REPLICATION)
        console.do("choose", "cboSQLReplicationDatabase", "Batch")
        self.becomes(lambda: "'Batch'" in console.text("lblSQLServerReplicationStatus"), True)
        console.picture("console-replication")
        console.do("tab", VIEW_DATA)
        for database in ("tempdb", "Batch"):  # a preselected database is only read after another one was chosen
            console.do("choose", "cboViewDataDatabase", database)
        self.becomes(lambda: "Units" in console.do("items", "lstViewDataTables"), True)
        console.do("choose", "lstViewDataTables", "Units")
        self.becomes(lambda: console.can_use("lvwViewData"), True)
        console.picture("console-view-data")
        self.take_procedures(console)
        console.do("tab", GENERAL)
        for box, text in (("edtScriptFolder", self.path("scripts")), ("edtServerName.0", "LOTKEEPER-A"),
                          ("edtServerName.1", "LOTKEEPER-B"), ("edtPassword.0", "lot-Keeper_2024"),
                          ("edtPassword.1", "lot-Keeper_2024"), ("edtSQLDataPath.0", self.path("Data")),
                          ("edtSQLDataPath.1", self.path("Data"))):
            console.do("fill", box, text)
        console.picture("console-general")
        console.close()

    def take_procedures(self, console):
        console.do("tab", STORED_PROC)
        for database in ("tempdb", "Batch"):
            console.do("choose", "cboStoredProcDatabase", database)
        self.becomes(lambda: "spStartBatch" in console.do("items", "cboStoredProcedure"), True)
        console.do("choose", "cboStoredProcedure", "spStartBatch")
        self.becomes(lambda: "spStartBatch" in console.text("edtStoredProcedure"), True)
        console.picture("console-stored-proc")
        console.do("click", "cmdExecute")
        console.do("form", "dialog")
        parameters = console.do("items", "lstParameters")
        console.do("choose", "lstParameters", parameters[1])
        self.becomes(lambda: console.text("edtDirection"), "Input")
        console.do("fill", "edtValue", "B-2")
        console.picture("procedure-dialog")
        console.do("click", "cmdClose")
        console.do("form", "main")

    def path(self, name):
        return "D:\\Lotkeeper\\" + name if self.wine else "/var/opt/lotkeeper/" + name


if __name__ == "__main__":
    main(ConsolePictures)

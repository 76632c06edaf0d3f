# A complete installation by mouse and keyboard: reads the local settings, picks the script folder, runs all scripts,
# installs all packages and lists them. Then checks the server, the folders and the log.
#
#   console_walk_test.py DEVSQLSERVER BIN_FOLDER [--wine] [TEST …]
import os
import shlex
import shutil

from console_automation import SCRIPT, ConsoleTest, main
from test_machine import PACKAGES, PASSWORD, TEMPLATES, TOP, USER, set_up

SCRIPTS = ("chkCreateInstallBatchDatabase", "chkCreateInstallBatchStoredProcedures", "chkCreateInstallBatchDefaultData")
PACKAGE_BOXES = ("chkStandardSynchronize", "chkUpgradeDatabaseV1ToV2", "chkBatchOverviewExport",
                 "chkBatchOverviewRecalcExport", "chkBatchSummaryExport", "chkBatchSummaryRecalcExport")


class ConsoleWalk(ConsoleTest):
    def open_walk(self):
        """Opens the console. Returns it and the script folder's path in the form to be typed."""
        machine = self.machine
        if not self.wine:
            return self.open(), machine.scripts
        # Wine's folder dialog can open at any folder of drive C:, but only at the root of drive Z:.
        name = os.path.basename(self.folder)
        scripts = os.path.join(os.environ.get("WINEPREFIX", os.path.join(TOP, "build", "wine-screen")), "drive_c", name)
        self.addCleanup(shutil.rmtree, scripts, ignore_errors=True)
        library = machine.native(os.path.join(self.binaries, "dts_com_server.dll"))
        before = set_up(("regsvr32", "/s", library)) + " && " + shlex.join(["cp", "-r", machine.scripts, scripts])
        return self.open(before, set_up(("regsvr32", "/s", "/u", library))), "C:\\" + name

    def test_installs_everything_by_clicks(self):
        # The console's check boxes for packages can only be used with server versions below 12.
        self.machine.set_registry(version="9.00.1399.06", login=(self.a.name, USER, PASSWORD))
        console, scripts = self.open_walk()
        self.fetch_settings(console)
        self.pick_script_folder(console, scripts)
        self.install_all(console)
        console.do("click", "cmdGetInstalledPackages")
        listed = console.do("box")[1]
        console.do("answer")
        console.close()
        for name in PACKAGES:
            self.assertIn(name, listed)
        self.assertIn("Batch", self.a.column("SELECT name FROM master.dbo.sysdatabases"))
        self.assertIn("DatabaseVersion", self.a.column("SELECT ParameterName FROM Batch.dbo.LKConfig"))
        self.assertEqual(sorted(set(self.a.column("SELECT name FROM msdb.dbo.sysdtspackages"))), sorted(PACKAGES))
        for name in TEMPLATES:
            self.assertIn(name + ".txt", self.machine.data_files())
            self.assertNotRegex(self.machine.output(name), r"Msg \d+, Level 1[1-9]")
        self.assertEqual(self.machine.log_lines(), [])

    def fetch_settings(self, console):
        console.do("click", "cmdGetLocalSettings")
        self.becomes(lambda: console.text("edtServerName.0"), self.a.name)
        # The text box of the data path gets the focus with its text selected, so typing replaces the text.
        self.becomes(lambda: console.do("focus", "edtSQLDataPath.0"), ["yes"])
        folder = self.machine.native(self.data[self.a])
        console.do("type", folder)
        self.becomes(lambda: console.text("edtSQLDataPath.0"), folder)

    def pick_script_folder(self, console, folder):
        console.do("fill", "edtScriptFolder", folder)
        console.do("click", "cmdBrowseForScriptFolder")
        name = folder.replace("\\", "/").rpartition("/")[2]
        self.becomes(lambda: console.do("folder"), [name])  # the dialog opens at the typed folder
        console.do("pick")
        self.becomes(lambda: console.text("edtScriptFolder"), folder)

    def install_all(self, console):
        console.do("press", "Control+Tab")
        self.becomes(lambda: console.is_open(SCRIPT), True)
        for box in SCRIPTS + PACKAGE_BOXES:
            console.do("click", box)
            self.becomes(lambda: console.do("checked", box), ["yes"])
        console.do("click", "optCreateInstallScriptFiles.1")
        self.becomes(lambda: console.do("checked", "optCreateInstallScriptFiles.1"), ["yes"])
        console.do("click", "cmdCreateInstall")
        console.do("await", "lblStatus", "Installation completed...")
        console.picture("console-script")
        self.comes_back(console, "cmdCreateInstall")
        self.becomes(lambda: console.text("lblStatus"), "")


if __name__ == "__main__":
    main(ConsoleWalk)

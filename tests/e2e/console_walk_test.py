# The whole way through the console by clicks alone, on a screen under Wine, and what stands on the server afterwards.
#
#   console_walk_test.py DEVSQLSERVER BIN_FOLDER
#
# With KV_PICTURES set to a folder, pictures of the first two tabs are put there.
import glob
import os
import shlex
import shutil
import sys
import unittest

from console_automation import keep_picture, run_on_screen
from test_machine import PACKAGES, PASSWORD, TEMPLATES, RUNNER, TOP, USER, DevServer, Machine, fresh_folder, set_up


class ConsoleWalk(unittest.TestCase):
    dev_server = binaries = None

    def setUp(self):
        self.folder = fresh_folder()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.machine = Machine(self.binaries, os.path.join(self.folder, "machine"), wine=True, screen=True)
        self.server = DevServer(self.dev_server, os.path.join(self.folder, "server"), self.machine.drives()).start()
        self.addCleanup(self.server.stop)

    def walk(self):
        """Everything that needs the screen's prefix, in one run: registry, classes, the walk, the classes' end."""
        machine = self.machine
        library = machine.native(os.path.join(self.binaries, "dts_com_server.dll"))
        # Wine's tree of folders opens at a folder of the drive C:, and of the drive Z: at its root alone.
        name = os.path.basename(self.folder)
        scripts = os.path.join(os.environ.get("WINEPREFIX", os.path.join(TOP, "build", "wine-screen")), "drive_c", name)
        self.addCleanup(shutil.rmtree, scripts, ignore_errors=True)
        walk = [RUNNER, os.path.join(self.binaries, "console_walk.exe"), machine.native(machine.program), self.server.name,
                machine.native(machine.data), "C:\\" + name]
        if os.environ.get("KV_PICTURES"):
            walk.append(machine.native(self.folder))
        copy = shlex.join(["cp", "-r", machine.scripts, scripts])
        command = set_up(("regsvr32", "/s", library)) + " && " + copy
        command += " && " + shlex.join(walk) + "; walked=$?; "
        command += set_up(("regsvr32", "/s", "/u", library)) + "; exit $walked"
        walked = run_on_screen(machine, machine.with_registry(f"( {command} )"), 600)
        for bitmap in glob.glob(os.path.join(self.folder, "*.bmp")):
            keep_picture(bitmap, os.path.basename(bitmap)[:-len(".bmp")])
        return walked

    def test_installs_everything_by_clicks(self):
        # Packages can be chosen by hand below version 12 alone.
        self.machine.set_registry(version="9.00.1399.06", login=(self.server.name, USER, PASSWORD))
        walked = self.walk()
        left = {name: self.machine.output(name) for name in TEMPLATES if name + ".txt" in self.machine.data_files()}
        self.assertEqual(walked.returncode, 0, "\n".join([walked.stdout, walked.stderr, *self.machine.log_lines(),
                                                          str(left)[-2000:]]))
        self.assertIn("Batch", self.server.column("SELECT name FROM master.dbo.sysdatabases"))
        self.assertIn("DatabaseVersion", self.server.column("SELECT ParameterName FROM Batch.dbo.LKConfig"))
        self.assertEqual(sorted(set(self.server.column("SELECT name FROM msdb.dbo.sysdtspackages"))), sorted(PACKAGES))
        for name in PACKAGES:
            self.assertIn(name, walked.stdout)
        for name in TEMPLATES:
            self.assertIn(name + ".txt", self.machine.data_files())
            self.assertNotRegex(self.machine.output(name), r"Msg \d+, Level 1[1-9]")
        self.assertEqual(self.machine.log_lines(), [])


if __name__ == "__main__":
    ConsoleWalk.dev_server, ConsoleWalk.binaries = map(os.path.abspath, sys.argv[1:3])
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])

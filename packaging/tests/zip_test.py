"""Unpacks both archives and holds them to the build; runs the x64 one where it lies, under Wine."""
import os
import shutil
import tempfile
import unittest
import zipfile

import support
from support import STAGED, differences, package
import release
from test_machine import DevServer


class Archive(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="kv-zip-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def unpack(self, arch):
        with zipfile.ZipFile(package(f"KVLSQLDbMgr-{{version}}-{arch}.zip")) as archive:
            archive.extractall(self.folder)
        return os.path.join(self.folder, f"KVLSQLDbMgr-{release.VERSION}-{arch}")

    def test_the_files_are_those_of_the_build(self):
        for arch in ("x64", "x86"):
            differences(self, os.path.join(STAGED, f"windows-{arch}"), self.unpack(arch))

    def test_it_runs_where_it_was_unpacked(self):
        home = self.unpack("x64")
        machine = support.machine_with(home, os.path.join(self.folder, "machine"))
        with DevServer(support.DEVSQLSERVER, os.path.join(self.folder, "server"), drives=("Z=/",)) as server:
            terminal = machine.run(*machine.install_arguments(server, "/installdb"))
            self.assertEqual(machine.log_lines(), [], terminal)
            self.assertIn("Batch", server.column("SELECT name FROM sysdatabases"))
        self.assertIn("Create_Batch_Database.sql", machine.data_files())


if __name__ == "__main__":
    unittest.main(verbosity=2)

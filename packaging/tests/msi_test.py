"""Installs the x64 package under Wine in a prefix of its own, uses it against a development server, upgrades an older
version, removes it. The x86 package cannot be installed there: its tables and files are read instead."""
import os
import shutil
import subprocess
import tempfile
import unittest

import support
from support import STAGED, content, differences, files_below, package, run
import msi
import release
from test_machine import DevServer, RUNNER

X64, X86 = (package(f"KVLSQLDbMgr-{{version}}-{arch}.msi") for arch in ("x64", "x86"))


class Tables(unittest.TestCase):
    """What Wine does not show: rights, and the x86 package."""

    def rows(self, file, table):
        return [line.split("\t") for line in run(["msiinfo", "export", file, table]).splitlines()[3:]]

    def test_the_folder_with_passwords_is_the_administrators_alone(self):
        for file in (X64, X86):
            rights = sorted((row[0], row[1], row[3], int(row[4])) for row in self.rows(file, "LockPermissions"))
            self.assertEqual(rights, [("DATA", "CreateFolder", "Administrators", msi.FULL_RIGHTS),
                                      ("DATA", "CreateFolder", "SYSTEM", msi.FULL_RIGHTS)])
            self.assertIn("DATA", [row[0] for row in self.rows(file, "CreateFolder")])

    def test_all_that_lies_in_it_goes_on_removal(self):
        for file in (X64, X86):
            self.assertIn(["cData", "*", "DATA", str(msi.ON_REMOVE)], [row[1:] for row in self.rows(file, "RemoveFile")])

    def test_each_architecture_has_its_folder_and_its_registry_view(self):
        for file, template, programs, locator in ((X64, "x64;1033", "ProgramFiles64Folder", 18),
                                                  (X86, "Intel;1033", "ProgramFilesFolder", 2)):
            self.assertIn(f"Template: {template}", run(["msiinfo", "suminfo", file]))
            folders = {row[0]: row for row in self.rows(file, "Directory")}
            self.assertEqual(folders["LOTKEEPER"][1], programs)
            self.assertEqual([int(row[4]) for row in self.rows(file, "RegLocator")], [locator])

    def test_the_two_can_be_installed_side_by_side(self):
        def identifiers(file):
            properties = dict(row[:2] for row in self.rows(file, "Property"))
            components = {row[1] for row in self.rows(file, "Component")}
            return {properties["ProductCode"], properties["UpgradeCode"]} | components
        self.assertFalse(identifiers(X64) & identifiers(X86))

    def test_the_files_of_x86_are_those_of_the_build(self):
        with tempfile.TemporaryDirectory() as folder:
            run(["msiextract", "-C", folder, X86])
            for path, folders, _ in os.walk(folder):
                if "Database Manager" in folders:
                    differences(self, os.path.join(STAGED, "windows-x86"), os.path.join(path, "Database Manager"))
                    return
            self.fail("the package has no folder \"Database Manager\"")


class Installed(unittest.TestCase):
    """An older version, a run, the upgrade, the removal; a downgrade; a folder of one's own."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="kv-msi-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.prefix = os.path.join(self.folder, "wine")
        os.environ["WINEPREFIX"] = self.prefix
        self.addCleanup(os.environ.pop, "WINEPREFIX")
        self.addCleanup(subprocess.run, ["wineserver", "-k"], env=dict(os.environ), stderr=subprocess.DEVNULL)
        self.drive = os.path.join(self.prefix, "drive_c")
        self.home = os.path.join(self.drive, "Program Files", "Lotkeeper", "Database Manager")

    def wine(self, *arguments, expect=0):
        environment = dict(os.environ)
        environment.pop("DISPLAY", None)
        done = subprocess.run([RUNNER, *arguments], env=environment, capture_output=True, text=True, errors="replace",
                              timeout=300, stdin=subprocess.DEVNULL)
        if expect is not None:
            self.assertEqual(done.returncode, expect, done.stdout + done.stderr)
        return done

    def msiexec(self, *arguments, expect=0):
        return self.wine("msiexec", *arguments, "/qn", expect=expect)

    def native(self, path):
        return "Z:" + path.replace("/", "\\")

    def registered_folder(self):
        found = self.wine("reg", "query", f"HKLM\\{msi.REGISTRY_KEY}", "/v", "Folder", "/reg:64", expect=None)
        return found.stdout if found.returncode == 0 else ""

    def start_menu(self):
        """The names of the product's entries. Windows has one menu for all users; Wine takes the user's own."""
        return sorted(name for path, _, files in os.walk(self.drive) if path.endswith("/Start Menu/Programs/Lotkeeper")
                      for name in files)

    def older_package(self):
        """The same product, three builds ago, with a file that the newer one no longer has."""
        staged = os.path.join(self.folder, "staged")
        shutil.copytree(os.path.join(STAGED, "windows-x64"), staged)
        with open(os.path.join(staged, "old notes.txt"), "w") as file:
            file.write("of the older version\n")
        older = os.path.join(self.folder, "older.msi")
        major, minor, patch, number = release.VERSION.split(".")
        msi.build(staged, "x64", older, os.path.join(self.folder, "work"), ".".join((major, minor, patch, str(int(number) - 3))))
        return older, staged

    def without_data(self, folder):
        return [name for name in files_below(folder) if not name.startswith("Data/")]

    def install_batch(self, server):
        """An unattended run of the installed program, which makes the database."""
        machine = support.machine_with(self.home, os.path.join(self.folder, "machine"))
        terminal = machine.run(*machine.install_arguments(server, "/installdb"))
        self.assertEqual(machine.log_lines(), [], terminal)
        return machine

    def test_install_use_upgrade_remove(self):
        older, staged = self.older_package()
        self.msiexec("/i", self.native(older))
        self.assertEqual(self.without_data(self.home), files_below(staged))
        self.assertTrue(os.path.isdir(os.path.join(self.home, "Data")))
        self.assertIn("Database Manager", self.registered_folder())
        self.assertEqual(self.start_menu(), [f"{release.PRODUCT} Manual.lnk", f"{release.PRODUCT}.lnk"])

        with DevServer(support.DEVSQLSERVER, os.path.join(self.folder, "server"), drives=("Z=/",)) as server:
            machine = self.install_batch(server)
            self.assertIn("Batch", server.column("SELECT name FROM sysdatabases"))
            self.assertIn(("1",), [row[:1] for row in server.ask(
                "SELECT Value FROM LKConfig WHERE ParameterName = 'DatabaseVersion'", "Batch")])
        data = {name: content(os.path.join(self.home, "Data", name)) for name in machine.data_files()}
        self.assertIn("Create_Batch_Database.sql", data)

        self.msiexec("/i", self.native(X64))
        self.assertEqual(self.without_data(self.home), files_below(os.path.join(STAGED, "windows-x64")))
        self.assertEqual({name: content(os.path.join(self.home, "Data", name)) for name in machine.data_files()}, data)
        self.assertTrue(os.path.isdir(machine.log_folder))

        self.msiexec("/x", self.native(X64))
        self.assertFalse(os.path.exists(self.home), files_below(self.home))
        # Windows removes the empty folder above as well; Wine leaves it.
        parent = os.path.dirname(self.home)
        self.assertEqual(os.listdir(parent) if os.path.exists(parent) else [], [])
        self.assertEqual(self.start_menu(), [])
        self.assertEqual(self.registered_folder(), "")

    def test_an_older_version_over_a_newer_one_is_refused(self):
        """Not after an upgrade: Wine forgets the new version's upgrade code when it removes the old version."""
        self.msiexec("/i", self.native(X64))
        older, _ = self.older_package()
        self.assertNotEqual(self.msiexec("/i", self.native(older), expect=None).returncode, 0)
        self.assertEqual(self.without_data(self.home), files_below(os.path.join(STAGED, "windows-x64")))

    def test_a_folder_of_ones_own(self):
        chosen = os.path.join(self.drive, "Tools", "Lotkeeper here")
        self.msiexec("/i", self.native(X64), "INSTALLFOLDER=C:\\Tools\\Lotkeeper here")
        self.assertEqual(self.without_data(chosen), files_below(os.path.join(STAGED, "windows-x64")))
        self.msiexec("/x", self.native(X64))
        self.assertFalse(os.path.exists(chosen))


if __name__ == "__main__":
    unittest.main(verbosity=2)

# Tries the manual's repairs for one server: a fault stops a run, the manual's statements repair the result, and the old
# data are complete in the database "Batch".
#
#   remedies_test.py DEVSQLSERVER BIN_FOLDER [TEST …]
import glob
import os
import re
import shutil
import sys
import unittest

from remedy_fixture import HERE, REPAIRS, RENAMED_FILES, TEMPORARY, TEMPORARY_FILES, ConsoleCommands, Remedy, stopped_at, wire_to
from test_machine import PASSWORD, USER
from unattended_install_test import UnattendedTestCase
from unattended_upgrade_test import OLD_FILES, RENAME_LINE, UPGRADE_LINE


class AfterAStoppedUpgrade(Remedy):
    def test_the_database_stayed_in_single_user_mode(self):
        self.upgrade_stopped_at("ALTER DATABASE [Batch] SET MULTI_USER")
        self.assertEqual(self.access("Batch"), "SINGLE_USER")
        self.assertIn(RENAME_LINE, self.machine.log_lines())
        self.repair("multi-user")
        self.assert_batch_has_the_old_data()

    def test_only_the_temporary_database_exists(self):
        os.remove(os.path.join(self.machine.scripts, "Create_Batch_Database.sql"))
        self.upgrade()
        self.assertEqual(self.upgradable(), {TEMPORARY: "1"})
        self.rename_the_old_database_back()
        self.assert_batch_has_the_old_data()
        self.upgrade_again()

    def test_the_files_could_not_be_copied(self):
        os.mkdir(os.path.join(self.machine.data, TEMPORARY_FILES[1]))
        self.addCleanup(os.rmdir, os.path.join(self.machine.data, TEMPORARY_FILES[1]))
        # Without the create script no new database is created in the folder of the old files.
        os.remove(os.path.join(self.machine.scripts, "Create_Batch_Database.sql"))
        self.upgrade()
        self.assertIn(RENAME_LINE, self.machine.log_lines())
        self.assertEqual(self.upgradable(), {})
        self.repair("detached", change=lambda line: self.with_paths_of_this_test(line).replace(
            "Batch_dat.mdf", OLD_FILES[0]))
        self.assert_batch_has_the_old_data()

    def test_the_server_stopped_before_the_files_were_attached(self):
        self.upgrade_stopped_at("sp_attach_db")
        self.assertEqual(self.upgradable(), {})
        self.assertEqual(self.files(), TEMPORARY_FILES)
        self.rename_files()
        self.repair("detached", change=lambda line: self.with_paths_of_this_test(line).replace(
            "Batch_dat.mdf", RENAMED_FILES[0]).replace("Batch_log.ldf", RENAMED_FILES[1]))
        self.assert_batch_has_the_old_data()
        self.upgrade_again()

    def test_the_data_were_not_taken_over(self):
        self.upgrade_stopped_at("spUpgradeDatabase ")
        self.assertIn(UPGRADE_LINE, self.machine.log_lines())
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "1"})
        self.go_back()

    def test_the_upgrade_tab_copies_the_data(self):
        self.upgrade_stopped_at("spUpgradeDatabase ")
        console = ConsoleCommands(self.machine, {"ServerA": self.server.name, "UserA": USER, "PasswordA": PASSWORD})
        self.assertEqual(console.run("a", "upgrade-database", "Batch", TEMPORARY), (True, ""))
        self.assertEqual(len(self.server.ask("SELECT * FROM dbo.Lots", "Batch")),
                         len(self.server.ask("SELECT * FROM dbo.Lots", TEMPORARY)))
        self.assert_old_data_under(TEMPORARY)

    def test_a_second_run_stopped_while_it_removed_the_temporary_database(self):
        self.upgrade()
        self.upgrade_stopped_at(f"ALTER DATABASE [{TEMPORARY}] SET MULTI_USER")
        self.assertEqual(self.access(TEMPORARY), "SINGLE_USER")
        self.repair("single-user")
        self.assertEqual(self.access(TEMPORARY), "MULTI_USER")
        self.assert_old_data_under(TEMPORARY)

    def test_going_back_after_an_upgrade_that_went_well(self):
        self.upgrade()
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "1"})
        self.go_back()

    def go_back(self):
        """Does steps 3 and 4 of the manual, removes the failed database, and upgrades again."""
        self.repair("put-aside")
        self.rename_the_old_database_back()
        self.assert_batch_has_the_old_data()
        self.drop("Batch_failed_upgrade")
        self.upgrade_again()


class AfterAStoppedRename(Remedy):
    """The console's command "Rename", from "Batch" to "Plant2", stopped by killing the server before a statement."""

    NEW_FILES = ["Plant2_data.mdf", "Plant2_log.ldf"]

    def setUp(self):
        super().setUp()
        self.wire = wire_to(self, self.server)
        self.console = ConsoleCommands(self.machine, {
            "ServerA": f"{HERE},{self.wire.port}", "UserA": USER, "PasswordA": PASSWORD, "SQLDataPathA": self.machine.data})
        self.addCleanup(lambda: [self.drop(name) for name in self.databases() if name == "Plant2"])

    def rename(self):
        return self.console.run("a", "rename-database", "Batch", "Plant2")

    def stop_at(self, statement):
        succeeded, _ = stopped_at(self, self.server, self.wire, statement, self.rename)
        self.assertFalse(succeeded)
        self.assertEqual(self.machine.log_lines(), [" : Error in CUpgradeDbMgr::RenameDatabase('Batch', 'Plant2')"])

    def assert_a_rename_works(self):
        """Checks that the old data are complete under the old name, and that the next rename succeeds."""
        self.assert_batch_has_the_old_data()
        self.assertEqual(self.rename(), (True, ""))
        self.assert_old_data_under("Plant2")
        self.assertEqual(self.files(), self.NEW_FILES)

    def test_before_anything_was_changed(self):
        for statement in ("ALTER DATABASE [Batch] SET SINGLE_USER", "MODIFY NAME"):
            with self.subTest(statement):
                shutil.rmtree(self.machine.log_folder)
                os.mkdir(self.machine.log_folder)
                self.stop_at(statement)
                self.assert_batch_has_the_old_data()
        self.assert_a_rename_works()

    def test_the_database_stayed_in_single_user_mode(self):
        self.stop_at("ALTER DATABASE [Batch] SET MULTI_USER")
        self.assertEqual(self.access("Batch"), "SINGLE_USER")
        self.repair("multi-user")
        self.assert_a_rename_works()

    def check_new_name_with_old_files(self, statement):
        self.stop_at(statement)
        self.assertIn("Plant2", self.databases())
        self.assertNotIn("Batch", self.databases())
        self.assertEqual(self.files(), OLD_FILES)
        self.assert_old_data_under("Plant2")
        self.repair("rename-back")
        self.assert_a_rename_works()

    def test_the_name_is_new_and_the_logical_files_are_old(self):
        self.check_new_name_with_old_files("MODIFY FILE (NAME=Batch_data")

    def test_the_name_and_one_logical_file_are_new(self):
        self.check_new_name_with_old_files("MODIFY FILE (NAME=Batch_log")

    def test_the_name_is_new_and_the_files_have_not_moved(self):
        self.check_new_name_with_old_files("sp_detach_db")

    def test_the_files_have_moved_and_are_not_attached(self):
        self.stop_at("sp_attach_db")
        self.assertEqual(set(self.databases()) & {"Batch", "Plant2"}, set())
        self.assertEqual(self.files(), self.NEW_FILES)
        self.repair("attach-renamed", change=self.with_paths_of_this_test)
        self.assert_old_data_under("Plant2")
        self.assertEqual(self.access("Plant2"), "MULTI_USER")

    def test_the_files_could_not_be_copied(self):
        in_the_way = os.path.join(self.machine.data, self.NEW_FILES[1])
        os.mkdir(in_the_way)
        self.assertFalse(self.rename()[0])
        self.assertEqual(set(self.databases()) & {"Batch", "Plant2"}, set())
        self.repair("detached", change=lambda line: self.with_paths_of_this_test(line).replace(
            "Batch_dat.mdf", OLD_FILES[0]))
        os.rmdir(in_the_way)
        self.assert_a_rename_works()


class AfterAStoppedRemoval(Remedy):
    def test_the_database_stayed_in_single_user_mode(self):
        wire = wire_to(self, self.server)
        console = ConsoleCommands(self.machine, {"ServerA": f"{HERE},{wire.port}", "UserA": USER, "PasswordA": PASSWORD})
        remove = lambda: console.run("a", "remove-database", "Batch")  # noqa: E731
        self.assertFalse(stopped_at(self, self.server, wire, "ALTER DATABASE [Batch] SET MULTI_USER", remove)[0])
        self.assertEqual(self.access("Batch"), "SINGLE_USER")
        self.repair("multi-user")
        self.assert_batch_has_the_old_data()
        self.assertEqual(remove(), (True, ""))
        self.assertNotIn("Batch", self.databases())


class TheManual(unittest.TestCase):
    def test_every_repair_is_tried(self):
        tried = set()
        for path in glob.glob(os.path.join(os.path.dirname(os.path.abspath(__file__)), "*.py")):
            with open(path, encoding="utf-8") as file:
                tried |= set(re.findall(r'\brepair\((?:self\.server, |self\.a, |self\.b, )?\s*"([\w-]+)"', file.read()))
        self.assertEqual(tried, set(REPAIRS))


if __name__ == "__main__":
    UnattendedTestCase.dev_server, UnattendedTestCase.binaries = map(os.path.abspath, sys.argv[1:3])
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)

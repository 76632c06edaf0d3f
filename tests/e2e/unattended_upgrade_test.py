# The unattended upgrade from end to end: runs the program against a development server with a version 1 database that has
# been in use. Other clients then read what is on the server and on disk.
#
#   unattended_upgrade_test.py DEVSQLSERVER BIN_FOLDER [--wine] [TEST …]
import os
import re
import shutil
import sys
import unittest

import pymssql

from test_machine import (PACKAGES, PASSWORD, TEMPLATES, TOP, USER, DevServer, Machine, contents, fresh_folder,
                          wait_for)
from unattended_install_test import UnattendedTestCase

sys.path.insert(0, os.path.join(TOP, "tests", "samples"))
from upgraded_samples_test import RENAMED, USE_OF_VERSION_1  # noqa: E402

TEMPORARY = "TmpBatchUpgradeDb"
OLD_FILES = ["Batch_data.mdf", "Batch_log.ldf"]
TEMPORARY_FILES = [TEMPORARY + "_data.mdf", TEMPORARY + "_log.ldf"]
OWN_LINE = " : Error in modMain::DoAutomaticUpgrade"
INFO_LINE = " : Error in CUpgradeDbMgr::GetDatabaseInfo('Batch')"
RENAME_LINE = f" : Error in CUpgradeDbMgr::RenameDatabase('Batch', '{TEMPORARY}')"
UPGRADE_LINE = f" : Error in CUpgradeDbMgr::UpgradeDatabase('Batch', '{TEMPORARY}')"


class UpgradeTestCase(UnattendedTestCase):
    """Each test starts with a version 1 database that has been in use, and with the scripts of version 2. The program
    installs the database once for each class; each test gets a copy of its files."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.folder = fresh_folder()
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        cls.machine = Machine(cls.binaries, os.path.join(cls.folder, "machine"), wine=cls.wine)
        cls.server = DevServer(cls.dev_server, os.path.join(cls.folder, "server"), cls.machine.drives()).start()
        cls.addClassCleanup(cls.server.stop)
        cls.machine.set_registry(login=(cls.server.name, USER, PASSWORD))
        cls.machine.run(*cls.machine.install_arguments(cls.server, "/installdb", "/installdts"))
        for statement in USE_OF_VERSION_1:
            cls.server.ask(statement, "Batch")
        cls.old = contents(cls.server)
        cls.server.ask("ALTER DATABASE [Batch] SET SINGLE_USER WITH ROLLBACK IMMEDIATE EXEC sp_detach_db N'Batch'")
        cls.kept = os.path.join(cls.folder, "kept")
        shutil.copytree(cls.machine.data, cls.kept)

    def setUp(self):
        for folder in (self.machine.data, os.path.join(self.machine.install, "Data"), self.machine.log_folder):
            shutil.rmtree(folder, ignore_errors=True)
        os.mkdir(self.machine.log_folder)
        shutil.copytree(self.kept, self.machine.data)
        self.attach_old_database()
        self.addCleanup(self.drop_databases)
        self.machine.set_scripts("v2")

    def attach_old_database(self):
        # The paths have the form that the installation uses: the data path, a backslash, the file's name.
        folder = self.machine.native(self.machine.data).replace("/", "\\")
        self.server.ask(f"EXEC sp_attach_db N'Batch', N'{folder}\\{OLD_FILES[0]}', N'{folder}\\{OLD_FILES[1]}'")

    def drop_databases(self):
        for name in self.upgradable():
            self.drop(name)

    def drop(self, name):
        self.server.ask(f"ALTER DATABASE [{name}] SET SINGLE_USER WITH ROLLBACK IMMEDIATE DROP DATABASE [{name}]")

    def set_login(self, login):
        self.machine.set_registry(login=login)
        self.addCleanup(self.machine.set_registry, login=(self.server.name, USER, PASSWORD))

    def upgrade(self):
        return self.machine.run("/upgradedb", "/scriptfolder", self.machine.native(self.machine.scripts))

    def version(self, database="Batch"):
        return self.server.ask("SELECT Value FROM LKConfig WHERE ParameterName = N'DatabaseVersion'", database)[0][0]

    def upgradable(self):
        """The versions of the two databases that an upgrade works on, by name, as far as they exist."""
        return {name: self.version(name) for name in self.databases() if name in ("Batch", TEMPORARY)}

    def files(self):
        """The names in the data folder, without the files that the server adds while a database is in use."""
        return sorted(name for name in os.listdir(self.machine.data) if not name.endswith(("-wal", "-shm")))

    def columns(self, table, database):
        return [row[0] for row in self.server.ask("SELECT COLUMN_NAME FROM INFORMATION_SCHEMA.COLUMNS WHERE TABLE_NAME = "
                                                  f"'{table}' AND DATA_TYPE <> 'timestamp'", database)]

    def rows(self, table, columns, database):
        return sorted(self.server.ask(f"SELECT {', '.join(columns)} FROM dbo.{table}", database), key=repr)

    def assert_old_data_under(self, database):
        self.assertEqual(contents(self.server, database), self.old)

    def write_over(self, name, old, new):
        """Replaces a text in a template of version 2."""
        text = self.template(name)
        self.assertEqual(text.count(old), 1)
        self.machine.write_template(name, text.replace(old, new).replace("\n", "\r\n").encode("cp1252"))


class Upgrade(UpgradeTestCase):
    def test_version_1_is_renamed_and_version_2_gets_its_data(self):
        self.assertEqual((self.upgradable(), self.files()), ({"Batch": "1"}, OLD_FILES))
        self.upgrade()
        self.assert_quiet()
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "1"})
        self.assertEqual(self.files(), OLD_FILES + TEMPORARY_FILES)
        self.assert_old_data_under(TEMPORARY)
        for table in ("LKUser", "Units", "Phases", "Recipes", "RecipePhases", "Materials", "Lots", "BatchPhases",
                      "BatchMaterials"):
            old = self.columns(table, TEMPORARY)
            wanted = self.rows(table, old, TEMPORARY)
            self.assertTrue(wanted, table)
            self.assertEqual(self.rows(table, [RENAMED.get(table, {}).get(name, name) for name in old], "Batch"), wanted)
        self.assertEqual(self.rows("vBatchOverview", ["BatchName", "OrderNo", "CustomerName", "Cost"], "Batch"),
                         self.rows("vBatchOverview", ["BatchName", "OrderNo", "CustomerName", "Cost"], TEMPORARY))
        self.assertEqual(self.packages(), sorted(PACKAGES))

    def test_the_files_of_both_databases_are_named_after_them(self):
        self.upgrade()
        for database in ("Batch", TEMPORARY):
            files = [(row[0].strip(), os.path.basename(row[2].strip().replace("\\", "/")))
                     for row in self.server.ask("exec sp_helpfile", database)]
            self.assertEqual(files, [(f"{database}_data", f"{database}_data.mdf"), (f"{database}_log", f"{database}_log.ldf")])

    def test_connections_to_the_old_database_are_ended(self):
        with self.server.connect("Batch") as held, held.cursor() as cursor:
            cursor.execute("SELECT COUNT(*) FROM dbo.Units")
            cursor.fetchall()
            self.upgrade()
            self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "1"})
            with self.assertRaises(pymssql.Error):
                cursor.execute("SELECT COUNT(*) FROM dbo.Units")
        self.assert_quiet()

    def test_a_second_run_renames_the_result_of_the_first(self):
        self.upgrade()
        first = contents(self.server)
        self.upgrade()
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "2"})
        self.assertEqual(contents(self.server, TEMPORARY), first)
        self.assertEqual(self.machine.log_lines(), [UPGRADE_LINE])  # version 2 cannot be upgraded to version 2
        self.assertEqual(self.files(), OLD_FILES + TEMPORARY_FILES)

    def test_data_are_taken_over_without_packages(self):
        for package in PACKAGES:
            os.remove(os.path.join(self.machine.scripts, package + ".dts"))
        self.upgrade()
        self.assert_quiet()
        self.assertEqual(self.server.ask("SELECT COUNT(*) FROM Batches", "Batch"), [(4,)])


class TwoUpgrades(UpgradeTestCase):
    """Two runs at the same time. The second would delete the database that the first has renamed, the only copy of the
    old data."""

    WAITING = ("USE [master]\n"
               "WHILE NOT EXISTS (SELECT * FROM sysobjects WHERE name = 'GoOn') WAITFOR DELAY '00:00:00.100'\nGO")

    def go_on(self):
        """Lets the script end that waits."""
        self.server.ask("CREATE TABLE GoOn (a int)")

    def start_and_wait_for_the_create_script(self):
        program = self.machine.start("/upgradedb", "/scriptfolder", self.machine.native(self.machine.scripts))
        self.addCleanup(program.kill)
        wait_for(lambda: "Create_Batch_Database.txt" in self.machine.data_files() or program.poll() is not None, 60)
        self.assertIsNone(program.poll())
        return program

    def test_a_second_run_during_the_first_changes_nothing_and_reports_it(self):
        self.write_over("Create_Batch_Database", "USE [master]\nGO", self.WAITING)
        first = self.start_and_wait_for_the_create_script()
        self.assertEqual((self.upgradable(), self.files()), ({TEMPORARY: "1"}, TEMPORARY_FILES))
        said = self.upgrade()
        self.assertIsNone(first.poll(), "the first run ended before the second one")
        self.assertIn("Another upgrade is running. Nothing was changed.", said)
        self.assertEqual(self.machine.log_lines(), [OWN_LINE])
        self.go_on()
        self.assertEqual(first.wait(120), 0)
        self.assertEqual(self.machine.log_lines(), [OWN_LINE])
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "1"})
        self.assert_old_data_under(TEMPORARY)
        self.assertEqual(self.server.ask("SELECT COUNT(*) FROM Batches", "Batch"), [(4,)])

    def test_a_killed_run_does_not_lock_out_the_next(self):
        # The query tool continues after the program was killed; this script makes it only wait.
        self.machine.write_template("Create_Batch_Database", self.WAITING.encode())
        first = self.start_and_wait_for_the_create_script()
        first.kill()
        first.wait(60)
        said = self.upgrade()
        self.assertNotIn("Another upgrade is running", said)
        self.assertEqual(self.machine.log_lines(), [INFO_LINE, OWN_LINE])  # there is no "Batch" to upgrade
        self.assert_old_data_under(TEMPORARY)


class Aborted(UpgradeTestCase):
    def assert_untouched(self, log):
        self.assertEqual(self.machine.log_lines(), log)
        self.assertEqual((self.upgradable(), self.files()), ({"Batch": "1"}, OLD_FILES))
        self.assert_old_data_under("Batch")

    def test_a_refused_login_changes_nothing(self):
        self.set_login((self.server.name, USER, "wrong"))
        self.upgrade()
        self.assert_untouched([INFO_LINE, OWN_LINE])

    def test_a_missing_login_key_changes_nothing(self):
        self.set_login(None)
        self.upgrade()
        lines = self.machine.log_lines()
        self.assertEqual(lines[-2:], [INFO_LINE, OWN_LINE])
        self.assertEqual(len(lines), 8)
        for value in ("ServerName", "UserID", "PWD"):
            self.assertEqual(len([line for line in lines if "mRegistry::" in line and f"'{value}'" in line]), 2, lines)
        self.assert_untouched(lines)

    def test_a_missing_template_leaves_the_old_data_under_the_temporary_name_and_so_does_a_second_run(self):
        os.remove(os.path.join(self.machine.scripts, "Insert_Default_Data.sql"))
        self.upgrade()
        self.assertEqual(self.machine.log_lines(), [OWN_LINE])
        for _ in range(2):
            self.assertEqual((self.upgradable(), self.files()), ({TEMPORARY: "1"}, TEMPORARY_FILES))
            self.assert_old_data_under(TEMPORARY)
            self.upgrade()
        self.assertEqual(self.machine.log_lines(), [OWN_LINE] + 2 * [INFO_LINE, OWN_LINE])

    def test_a_missing_tool_leaves_the_old_data_under_the_temporary_name(self):
        self.addCleanup(os.rename, self.machine.tool + ".away", self.machine.tool)
        os.rename(self.machine.tool, self.machine.tool + ".away")
        self.upgrade()
        self.assertEqual(self.machine.log_lines(), [OWN_LINE])
        self.assertEqual((self.upgradable(), self.files()), ({TEMPORARY: "1"}, TEMPORARY_FILES))
        self.assert_old_data_under(TEMPORARY)

    def test_without_a_database_nothing_is_done(self):
        self.drop("Batch")
        databases = self.databases()
        self.upgrade()
        self.assertEqual(self.machine.log_lines(), [INFO_LINE, OWN_LINE])
        self.assertEqual((self.databases(), self.files()), (databases, []))


class NotAborted(UpgradeTestCase):
    """Failures after which the run continues."""

    def test_a_file_that_cannot_be_copied_leaves_the_old_database_detached_with_its_files(self):
        # A folder with the name of the new file cannot be replaced by a copy.
        os.mkdir(os.path.join(self.machine.data, TEMPORARY_FILES[0]))
        self.upgrade()
        self.assertEqual(self.machine.log_lines(), [RENAME_LINE, UPGRADE_LINE])
        self.assertEqual(self.upgradable(), {})
        self.assertEqual(self.files(), OLD_FILES + TEMPORARY_FILES[:1])
        # The create script does not overwrite the old files, and they can be attached by hand.
        self.assertRegex(self.machine.output("Create_Batch_Database"), r"Msg \d+, Level 1[1-9]")
        self.attach_old_database()
        self.assert_old_data_under("Batch")

    def test_a_file_with_the_temporary_name_is_overwritten(self):
        with open(os.path.join(self.machine.data, TEMPORARY_FILES[0]), "w") as file:
            file.write("left from something else")
        self.upgrade()
        self.assert_quiet()
        self.assert_old_data_under(TEMPORARY)

    def break_procedure(self):
        self.write_over("Create_Batch_Stored_Procedures", "IF @SourceVersion <> 1 OR @DestVersion <> 2", "IF 1 = 1")

    def test_an_upgrade_procedure_that_fails_leaves_the_old_data_under_the_temporary_name(self):
        self.break_procedure()
        self.upgrade()
        self.assertEqual(self.machine.log_lines(), [UPGRADE_LINE])
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "1"})
        self.assertEqual(self.files(), OLD_FILES + TEMPORARY_FILES)
        self.assert_old_data_under(TEMPORARY)
        self.assertEqual(self.server.ask("SELECT COUNT(*) FROM Batches", "Batch"), [(0,)])

    # This is intended, and the only case in which old data are lost: if a run did not take the data over, the next run
    # deletes their only copy.
    def test_a_run_after_one_that_took_no_data_over_deletes_the_only_copy_of_the_old_data(self):
        self.break_procedure()
        self.upgrade()
        self.assert_old_data_under(TEMPORARY)
        self.upgrade()
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "2"})
        for database in ("Batch", TEMPORARY):
            self.assertEqual(self.server.ask("SELECT COUNT(*) FROM Batches", database), [(0,)])
        self.assertEqual(self.files(), OLD_FILES + TEMPORARY_FILES)

    def test_a_published_database_is_renamed_but_its_files_are_not_and_no_new_one_is_created(self):
        # The server does not detach a published database, so its files keep the names that the new database needs.
        self.server.ask(f"EXEC sp_adddistributor @distributor = N'{self.server.name}' "
                        "EXEC sp_adddistributiondb @database = N'distribution' "
                        f"EXEC sp_adddistpublisher @publisher = N'{self.server.name}', @distribution_db = N'distribution'")
        publish = "EXEC sp_replicationdboption @dbname = N'{}', @optname = N'publish', @value = N'{}'"
        self.server.ask(publish.format("Batch", "true"))
        self.addCleanup(self.server.ask, publish.format(TEMPORARY, "false"))
        self.upgrade()
        self.assertEqual(self.machine.log_lines(), [RENAME_LINE, UPGRADE_LINE])
        self.assertEqual((self.upgradable(), self.files()), ({TEMPORARY: "1"}, OLD_FILES))
        self.assert_old_data_under(TEMPORARY)

    def test_a_script_that_fails_leaves_the_old_data_under_the_temporary_name(self):
        self.machine.write_template("Create_Batch_Database", b"SELECT * FROM NoSuchTable\r\nGO\r\n")
        self.upgrade()
        self.assertEqual(self.machine.log_lines(), [UPGRADE_LINE])
        self.assertEqual((self.upgradable(), self.files()), ({TEMPORARY: "1"}, TEMPORARY_FILES))
        self.assert_old_data_under(TEMPORARY)
        for name in TEMPLATES:
            self.assertTrue(re.search(r"Msg \d+, Level 1[1-9]", self.machine.output(name)), name)


if __name__ == "__main__":
    UnattendedTestCase.dev_server, UnattendedTestCase.binaries = map(os.path.abspath, sys.argv[1:3])
    rest = sys.argv[3:]
    if "--wine" in rest:
        rest.remove("--wine")
        UnattendedTestCase.wine = True
    unittest.main(argv=[sys.argv[0], *rest], verbosity=2)

# The remedies of the manual, each tried: a fault brings a run to a stop, the manual's own statements repair what it left,
# and the old data are found whole under the name that the plant works with.
#
#   remedies_test.py DEVSQLSERVER BIN_FOLDER [TEST …]
import os
import re
import sys
import threading
import unittest

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(TOP, "tests", "e2e")]
from console_wire import HERE, Wire  # noqa: E402
from test_machine import PASSWORD, USER  # noqa: E402
from unattended_install_test import WholeWay  # noqa: E402
from unattended_upgrade_test import (OLD_FILES, RENAME_LINE, TEMPORARY, TEMPORARY_FILES, UPGRADE_LINE,  # noqa: E402
                                     UpgradeWay)

RENAMED_FILES = ["Batch_old_data.mdf", "Batch_old_log.ldf"]
MANUAL = os.path.join(TOP, "docs", "manual")


def remedies():
    """The statements of each repair, by its name, as they stand in the manual."""
    found = {}
    for name in sorted(os.listdir(MANUAL)):
        if name.endswith(".md"):
            with open(os.path.join(MANUAL, name), encoding="utf-8") as file:
                for repair, block in re.findall(r"<!-- repair: ([\w-]+) -->\n\s*```sql\n(.*?)```", file.read(), re.DOTALL):
                    found[repair] = [line.strip() for line in block.splitlines() if line.strip()]
    return found


REMEDIES = remedies()


class Remedy(UpgradeWay):
    def repair(self, name, database="master", change=lambda line: line):
        """Runs the manual's statements, one after the other, as the manual says."""
        for statement in REMEDIES[name]:
            self.server.ask(change(statement), database)

    def upgrade_stopped_at(self, statement):
        """An upgrade whose server is killed in front of the statement; afterwards the server runs again."""
        wire = Wire()
        self.addCleanup(wire.close)
        wire.up(self.server.port)
        self.set_login((f"{HERE},{wire.port}", USER, PASSWORD))
        held = wire.hold(statement)
        run = threading.Thread(target=self.upgrade)
        run.start()
        self.assertTrue(held.wait(120), statement)
        wire.down()
        self.server.kill()
        run.join(300)
        self.assertFalse(run.is_alive())
        self.server.start()

    def rename_files(self):
        """What the manual has the engineer do in the folder of the data files."""
        for old, new in zip(TEMPORARY_FILES, RENAMED_FILES):
            os.rename(os.path.join(self.machine.data, old), os.path.join(self.machine.data, new))

    def give_the_old_database_its_name_back(self):
        self.repair("release-old")
        self.rename_files()
        self.repair("attach-old", change=self.with_the_paths_of_this_machine)

    def with_the_paths_of_this_machine(self, line):
        """A statement of the manual with paths that exist, in the place of its example's."""
        folder = self.machine.native(self.machine.data).replace("/", "\\")
        return line.replace("D:\\SQLData", folder)

    def upgrade_again(self):
        """Once the cause is gone, the next upgrade must go through with all the old data."""
        self.machine.set_scripts("v2")
        self.set_login((self.server.name, USER, PASSWORD))
        self.upgrade()
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "1"})
        self.assert_old_data_under(TEMPORARY)

    def access(self, database):
        return self.server.ask(f"SELECT DATABASEPROPERTYEX('{database}', 'UserAccess')")[0][0]

    def assert_the_plant_works_with_the_old_data(self):
        self.assertEqual(self.version("Batch"), "1")
        self.assertEqual(self.access("Batch"), "MULTI_USER")
        self.assert_old_data_under("Batch")


class AfterAStoppedUpgrade(Remedy):
    def test_somebody_was_thrown_out_and_nobody_is_let_in(self):
        self.upgrade_stopped_at("ALTER DATABASE [Batch] SET MULTI_USER")
        self.assertEqual(self.access("Batch"), "SINGLE_USER")
        self.assertIn(RENAME_LINE, self.machine.log_lines())
        self.repair("multi-user")
        self.assert_the_plant_works_with_the_old_data()

    def test_the_temporary_database_alone_is_there(self):
        os.remove(os.path.join(self.machine.scripts, "Create_Batch_Database.sql"))
        self.upgrade()
        self.assertEqual(self.upgradable(), {TEMPORARY: "1"})
        self.give_the_old_database_its_name_back()
        self.assert_the_plant_works_with_the_old_data()
        self.upgrade_again()

    def test_the_files_could_not_be_copied(self):
        os.mkdir(os.path.join(self.machine.data, TEMPORARY_FILES[1]))
        self.addCleanup(os.rmdir, os.path.join(self.machine.data, TEMPORARY_FILES[1]))
        # Without the create script nothing is made in the place of the old files.
        os.remove(os.path.join(self.machine.scripts, "Create_Batch_Database.sql"))
        self.upgrade()
        self.assertIn(RENAME_LINE, self.machine.log_lines())
        self.assertEqual(self.upgradable(), {})
        self.repair("detached", change=lambda line: self.with_the_paths_of_this_machine(line).replace(
            "Batch_dat.mdf", OLD_FILES[0]))
        self.assert_the_plant_works_with_the_old_data()

    def test_the_server_stopped_before_the_files_were_attached(self):
        self.upgrade_stopped_at("sp_attach_db")
        self.assertEqual(self.upgradable(), {})
        self.assertEqual(self.files(), TEMPORARY_FILES)
        self.rename_files()
        self.repair("detached", change=lambda line: self.with_the_paths_of_this_machine(line).replace(
            "Batch_dat.mdf", RENAMED_FILES[0]).replace("Batch_log.ldf", RENAMED_FILES[1]))
        self.assert_the_plant_works_with_the_old_data()
        self.upgrade_again()

    def test_the_data_were_not_taken_over(self):
        self.upgrade_stopped_at("spUpgradeDatabase ")
        self.assertIn(UPGRADE_LINE, self.machine.log_lines())
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "1"})
        self.go_back()

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
        """Steps 3 and 4 of the manual; and the next upgrade, after the failed one is removed."""
        self.repair("put-aside")
        self.give_the_old_database_its_name_back()
        self.assert_the_plant_works_with_the_old_data()
        self.drop("Batch_failed_upgrade")
        self.upgrade_again()


class AfterAStoppedSynchronisation(Remedy):
    """Replication as a site's procedures see it: a job of the distribution is what tells that it is on."""

    JOBS = ("SELECT j.name FROM msdb.dbo.sysjobs j INNER JOIN msdb.dbo.syscategories c ON c.category_id = j.category_id "
            "WHERE c.category_class = 1 AND c.name = N'REPL-Distribution'")
    PROCEDURES = {
        "spInstallReplication": "EXEC msdb.dbo.sp_add_job @job_name = N'distribution', "
                                "@category_name = N'REPL-Distribution'",
        "spUninstallReplication": "EXEC msdb.dbo.sp_delete_job @job_name = N'distribution'",
    }

    def setUp(self):
        super().setUp()
        for name, body in self.PROCEDURES.items():
            self.server.ask(f"IF OBJECT_ID(N'dbo.{name}') IS NOT NULL DROP PROCEDURE dbo.{name}", "Batch")
            self.server.ask(f"CREATE PROCEDURE dbo.{name} AS {body}", "Batch")

    def test_replication_stayed_off(self):
        self.assertEqual(self.server.ask(self.JOBS), [])
        self.repair("install-replication", "Batch")
        self.assertEqual(self.server.ask(self.JOBS), [("distribution",)])
        self.repair("uninstall-replication", "Batch")
        self.assertEqual(self.server.ask(self.JOBS), [])


class TheManual(unittest.TestCase):
    def test_every_remedy_is_tried(self):
        with open(os.path.abspath(__file__), encoding="utf-8") as file:
            tried = set(re.findall(r'self\.repair\(\s*"([\w-]+)"', file.read()))
        self.assertEqual(tried, set(REMEDIES))


if __name__ == "__main__":
    WholeWay.dev_server, WholeWay.binaries = map(os.path.abspath, sys.argv[1:3])
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)

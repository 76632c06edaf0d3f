# Unattended runs, only what differs on Linux: paths with "/", separate arguments, text in UTF-8, the registry file, the
# user's resource limits and file permissions.
#
#   unattended_linux_test.py DEVSQLSERVER BIN_FOLDER [TEST …]
import os
import resource
import shutil
import stat
import subprocess
import sys
import unittest

from test_machine import DevServer, Machine, PACKAGES, PASSWORD, USER, contents
from unattended_install_test import UnattendedTestCase
from unattended_upgrade_test import OLD_FILES, OWN_LINE, TEMPORARY, TEMPORARY_FILES, UPGRADE_LINE, UpgradeTestCase


class SlashPaths(UpgradeTestCase):
    """The server reports paths with "/", as an SQL Server on Linux does."""

    def attach_old_database(self):
        self.server.ask(f"EXEC sp_attach_db N'Batch', N'{self.machine.data}/{OLD_FILES[0]}', "
                        f"N'{self.machine.data}/{OLD_FILES[1]}'")

    def test_the_old_database_is_renamed_and_the_new_one_gets_its_data(self):
        self.upgrade()
        self.assert_quiet()
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "1"})
        self.assertEqual(self.files(), OLD_FILES + TEMPORARY_FILES)
        self.assert_old_data_under(TEMPORARY)
        self.assertEqual([row[2].strip() for row in self.server.ask("exec sp_helpfile", TEMPORARY)],
                         [f"{self.machine.data}/{name}" for name in TEMPORARY_FILES])

    def test_a_second_run_renames_the_result_of_the_first(self):
        self.upgrade()
        self.upgrade()
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "2"})
        self.assertEqual(self.machine.log_lines(), [UPGRADE_LINE])  # version 2 cannot be upgraded to version 2

    def test_the_files_keep_their_permissions(self):
        for name in OLD_FILES:
            os.chmod(os.path.join(self.machine.data, name), 0o600)
        self.upgrade()
        self.assert_quiet()
        for name in TEMPORARY_FILES:
            mode = stat.S_IMODE(os.stat(os.path.join(self.machine.data, name)).st_mode)
            self.assertEqual(oct(mode), "0o600", name)

    def test_a_data_path_outside_the_code_page_is_refused_before_any_change(self):
        folder = os.path.join(self.folder, "Łukasz")
        shutil.copytree(self.machine.data, folder)
        self.drop("Batch")
        self.server.ask(f"EXEC sp_attach_db N'Batch', N'{folder}/{OLD_FILES[0]}', N'{folder}/{OLD_FILES[1]}'")
        said = self.upgrade()
        self.assertIn("?ukasz/Batch_data.mdf' has characters that code page 1252 lacks. Nothing was changed.", said)
        self.assertEqual(self.machine.log_lines(), [OWN_LINE])
        self.assertEqual(self.upgradable(), {"Batch": "1"})
        self.assert_old_data_under("Batch")


class Arguments(UnattendedTestCase):
    HELP = "The following command arguments can be defined:"

    def test_help_after_a_path_argument_is_not_taken_as_its_value(self):
        for arguments in (["/scriptfolder", "/help"], ["/sqldatapath", "-Help"]):
            self.assertIn(self.HELP, self.machine.run(*arguments))

    def test_a_password_that_begins_like_an_argument_is_accepted(self):
        said = self.install("/installdb", user="slash", password="/p-w")
        self.assertNotIn("cannot show its window", said)
        self.assert_quiet()
        self.assertTrue(self.batch_exists())


class Text(UnattendedTestCase):
    def test_a_password_that_looks_like_misread_utf8_arrives_as_typed(self):
        for locale in ("C", "C.UTF-8", "de_DE.ISO-8859-1"):
            self.machine.environment.update(LANG=locale, LC_ALL=locale)
            if self.batch_exists():
                self.server.ask("DROP DATABASE Batch")
            self.install("/installdb", user="mojibake", password="Ã¤")
            self.assert_quiet()
            self.assertTrue(self.batch_exists(), locale)

    def test_an_argument_outside_the_code_page_is_refused_by_name(self):
        for argument, login in (("/user", {"user": "Łukasz"}), ("/password", {"password": "Łukasz"}),
                                ("/password", {"password": b"p\xe4".decode(errors="surrogateescape")})):
            said = self.install("/installdb", "/installdts", **login)
            self.assertIn(f"{argument} has characters that code page 1252 lacks. Nothing was changed.", said)
        self.machine.data = os.path.join(self.folder, "Łukasz")
        os.mkdir(self.machine.data)
        self.assertIn("/sqldatapath has characters that code page 1252 lacks.", self.install("/installdb"))
        self.assertEqual(self.machine.log_lines(), 4 * [OWN_LINE])
        self.assertFalse(self.batch_exists())
        self.assertEqual((self.packages(), self.machine.data_files()), ([], []))


class HomeOutsideTheCodePage(UnattendedTestCase):
    """The machine is in a folder whose name has characters that code page 1252 lacks; the server's data are not."""

    def setUp(self):
        super().setUp()
        self.machine = Machine(self.binaries, os.path.join(self.folder, "home", "Łukasz Ωmega"))
        self.machine.data = os.path.join(self.folder, "data")
        os.mkdir(self.machine.data)

    def test_the_database_is_installed_and_upgraded(self):
        self.install("/installdb", "/installdts")
        self.assert_quiet()
        self.assertTrue(self.batch_exists())
        self.assertEqual(self.packages(), sorted(PACKAGES))
        self.machine.set_scripts("v2")
        self.machine.set_registry(login=(self.server.name, USER, PASSWORD))
        said = self.machine.run("/upgradedb", "/scriptfolder", self.machine.scripts)
        self.assert_quiet()
        self.assertIn("[17/17] Ended.", said)
        self.assertEqual(self.server.ask("SELECT Value FROM LKConfig WHERE ParameterName = N'DatabaseVersion'",
                                         "Batch"), [("2",)])

    def test_a_failure_is_logged_in_the_folder_that_the_registry_names(self):
        os.remove(os.path.join(self.machine.scripts, "Insert_Default_Data.sql"))
        self.install("/installdb")
        self.assertEqual(self.machine.log_lines(), [OWN_LINE])


class RegistryFile(UnattendedTestCase):
    def setUp(self):
        super().setUp()
        self.path = self.machine.environment["KVLSQLDBMGR_REGISTRY"]

    def assert_one_line(self, said, reason):
        lines = [line for line in said.splitlines() if self.path in line and "Run-time" not in line]
        self.assertEqual(lines[:1], [f"KVLSQLDbMgr: registry file {self.path}{reason}"])
        self.assertEqual(said.count("registry file"), 1, said)

    def run_upgrade(self):
        # Without the registry, the log would be written to the root folder. The limit prevents that.
        return self.machine.run("/upgradedb", "/scriptfolder", self.machine.scripts, preexec_fn=forbid_file_writes)

    def test_a_missing_file_is_reported_once(self):
        os.remove(self.path)
        self.assert_one_line(self.run_upgrade(), ": it does not exist")

    def test_an_unreadable_file_is_reported_once(self):
        os.remove(self.path)
        os.mkdir(self.path)
        self.assert_one_line(self.run_upgrade(), ": it is not a plain file")

    def test_a_damaged_file_is_reported_once_with_the_line(self):
        with open(self.path, "w") as file:
            file.write("REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\A]\nnonsense\n")
        self.assert_one_line(self.run_upgrade(), ", line 4: neither a key nor a value nor a comment")

    def test_a_damaged_file_does_not_end_a_run_whose_terminal_is_closed(self):
        with open(self.path, "w") as file:
            file.write("nonsense")
        reader, writer = os.pipe()
        os.close(reader)
        program = subprocess.Popen([self.machine.program, "/upgradedb", "/scriptfolder", self.machine.scripts],
                                   env=self.machine.environment, stdin=subprocess.DEVNULL, stderr=writer,
                                   cwd=self.machine.install, preexec_fn=forbid_file_writes)
        os.close(writer)
        self.assertEqual(program.wait(120), 0)


def forbid_file_writes():
    resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0))


def limit_file_size():
    resource.setrlimit(resource.RLIMIT_FSIZE, (2048, 2048))


class LimitedFiles(UnattendedTestCase):
    """Runs as after `ulimit -f`."""

    def run_limited(self, *what):
        return self.machine.run(*self.machine.install_arguments(self.server, *what), preexec_fn=limit_file_size)

    def test_a_script_over_the_limit_is_not_written_in_part_and_the_failure_is_logged(self):
        said = self.run_limited("/installdb")
        self.assertIn("Ended.", said)
        self.assertEqual(self.machine.log_lines(), [OWN_LINE])
        self.assertEqual(self.machine.data_files(), [])
        self.assertFalse(self.batch_exists())

    def test_a_log_line_over_the_limit_is_not_written_in_part(self):
        os.remove(os.path.join(self.machine.scripts, "Create_Batch_Database.sql"))
        log = os.path.join(self.machine.log_folder, "KVLSQLDbMgr.log")
        full = "2006-05-12 14:03:22 : Error in a\r\n" * 60
        with open(log, "w", newline="") as file:
            file.write(full[:2040 - 2] + "\r\n")
        said = self.run_limited("/installdb")
        self.assertIn("Run-time error '61':", said)
        self.assertEqual(os.path.getsize(log), 2040)
        self.install("/installdb")
        with open(log, newline="") as file:
            self.assertTrue(file.read()[2040:].endswith(OWN_LINE + "\r\n"))


if __name__ == "__main__":
    UnattendedTestCase.dev_server, UnattendedTestCase.binaries = map(os.path.abspath, sys.argv[1:3])
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)

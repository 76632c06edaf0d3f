# The unattended installation from end to end: runs the program against a development server. Other clients then read what
# is on the server.
#
#   unattended_install_test.py DEVSQLSERVER BIN_FOLDER [--wine] [TEST …]
import os
import re
import shutil
import stat
import sys
import unittest

from test_machine import (PACKAGES, PASSWORD, TEMPLATES, USER, DevServer, Machine, contents, fresh_folder,
                   install_by_pymssql, wait_for)


class UnattendedTestCase(unittest.TestCase):
    """A machine with the program, and a development server."""

    dev_server = binaries = None
    wine = False

    @classmethod
    def setUpClass(cls):
        if cls.wine:
            cls.register_packages("/s")
            cls.addClassCleanup(cls.register_packages, "/s", "/u")

    @classmethod
    def register_packages(cls, *options):
        """Runs regsvr32 on the tests' COM classes for packages."""
        folder = fresh_folder()
        try:
            machine = Machine(cls.binaries, os.path.join(folder, "m"), wine=True)
            library = machine.native(os.path.join(cls.binaries, "dts_com_server.dll"))
            machine.prepare("regsvr32", *options, library)
            machine.forget_registry()  # leaves a clean prefix when a class of tests has ended
        finally:
            shutil.rmtree(folder, ignore_errors=True)

    def setUp(self):
        self.folder = fresh_folder()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.machine = Machine(self.binaries, os.path.join(self.folder, "machine"), wine=self.wine)
        self.server = DevServer(self.dev_server, os.path.join(self.folder, "server"), self.machine.drives()).start()
        self.addCleanup(self.server.stop)

    def install(self, *what, **login):
        return self.machine.run(*self.machine.install_arguments(self.server, *what, **login))

    def databases(self):
        return self.server.column("SELECT name FROM master.dbo.sysdatabases")

    def batch_exists(self):
        return "Batch" in self.databases()

    def packages(self):
        return self.server.column("SELECT name FROM msdb.dbo.sysdtspackages")

    def assert_quiet(self):
        """Checks that no failure was logged and that the server reported no error."""
        self.assertEqual(self.machine.log_lines(), [])
        for name in TEMPLATES:
            if name + ".txt" in self.machine.data_files():
                self.assertNotRegex(self.machine.output(name), r"Msg \d+, Level 1[1-9]")

    def template(self, name):
        with open(os.path.join(self.machine.scripts, name + ".sql"), encoding="cp1252") as file:
            return file.read()

    def named_in_template(self, name, kind):
        return sorted(re.findall(rf"(?mi)\bCREATE {kind} \[?dbo\]?\.\[?(\w+)\]?", self.template(name)))



class Installation(UnattendedTestCase):
    def test_the_database_has_the_objects_of_the_templates(self):
        self.install("/installdb")
        self.assert_quiet()
        self.assertIn("Batch", self.databases())
        self.assertEqual(sorted(os.listdir(self.machine.data)), ["Batch_data.mdf", "Batch_log.ldf"])
        self.assertEqual(self.server.column("SELECT name FROM sysobjects WHERE xtype = 'U'", "Batch"),
                         sorted(self.named_in_template("Create_Batch_Database", "TABLE") +
                                self.named_in_template("Create_Batch_Stored_Procedures", "TABLE")))
        self.assertEqual(self.server.column("SELECT name FROM sysobjects WHERE xtype = 'V'", "Batch"),
                         self.named_in_template("Create_Batch_Database", "VIEW"))
        procedures = self.named_in_template("Create_Batch_Stored_Procedures", "PROCEDURE")
        self.assertGreater(len(procedures), 12)
        self.assertEqual(self.server.column("SELECT name FROM sysobjects WHERE xtype = 'P'", "Batch"), procedures)
        self.assertEqual(self.server.ask_bsqldb("SELECT Value FROM LKConfig WHERE ParameterName = 'DatabaseVersion'\n",
                                                "Batch"), ["1"])
        self.assertEqual(self.packages(), [])

    def test_the_database_equals_one_that_an_independent_client_installs(self):
        self.install("/installdb")
        other_folder = os.path.join(self.folder, "other data")
        os.mkdir(other_folder)
        with DevServer(self.dev_server, os.path.join(self.folder, "other"), self.machine.drives()) as other:
            values = {"server": other.name, "userid": USER, "password": PASSWORD,
                      "datapath": self.with_backslashes(other_folder)}
            values.update({name + "a": value for name, value in values.items()})
            install_by_pymssql(other, self.machine.scripts, TEMPLATES, values)
            theirs = contents(other)
            other_name = other.name
        ours = contents(self.server)
        # The tables contain the server's name, its data folder and the time of installation, which differ.
        self.assertEqual(self.neutral(ours["rows"], self.machine.data, self.server.name),
                         self.neutral(theirs["rows"], other_folder, other_name))
        self.assertGreater(sum(len(rows) for rows in ours["rows"].values()), 20)
        self.assertEqual(self.neutral(ours["texts"], self.machine.data, self.server.name),
                         self.neutral(theirs["texts"], other_folder, other_name))
        for what in ("objects", "columns"):
            self.assertEqual(ours[what], theirs[what])

    def with_backslashes(self, path):
        """The path as the program sends it to the server, on both systems."""
        return self.machine.native(path).replace("/", "\\")

    def neutral(self, lists, data_folder, server_name):
        """The rows of each list as text, without what differs between two installations."""
        def without_names(text):
            text = text.replace(repr(self.with_backslashes(data_folder))[1:-1], "FOLDER").replace(server_name, "SERVER")
            return re.sub(r"\d{4}-\d\d-\d\d[ T]\d\d:\d\d:\d\d", "TIME", text)

        return {name: [without_names(repr(row)) for row in rows] for name, rows in lists.items()}

    def test_procedures_are_installed_into_an_existing_database(self):
        self.install("/installdb")
        procedures = self.server.column("SELECT name FROM sysobjects WHERE xtype = 'P'", "Batch")
        for name in procedures:
            self.server.ask(f"DROP PROCEDURE [{name}]", "Batch")
        rows = contents(self.server)["rows"]
        self.install("/installsp")
        self.assert_quiet()
        self.assertEqual(self.server.column("SELECT name FROM sysobjects WHERE xtype = 'P'", "Batch"), procedures)
        self.assertEqual(contents(self.server)["rows"], rows)

    def test_packages_are_stored_without_a_database(self):
        self.machine.run(*self.machine.login(self.server), "/installdts")
        self.assertEqual(self.machine.log_lines(), [])
        self.assertEqual(self.packages(), sorted(PACKAGES))
        self.assertFalse(self.batch_exists())
        self.assertEqual(self.machine.data_files(), [])
        for name in PACKAGES:
            with open(os.path.join(self.machine.scripts, name + ".dts"), "rb") as file:
                self.assertEqual(
                    self.server.ask(f"SELECT packagedata FROM msdb.dbo.sysdtspackages WHERE name = '{name}'"),
                    [(file.read(),)])

    def test_database_procedures_and_packages_are_installed_together_and_installed_again(self):
        self.install("/installdb", "/installsp", "/installdts")
        self.assert_quiet()
        self.assertTrue(self.batch_exists())
        self.assertEqual(self.packages(), sorted(PACKAGES))
        before = contents(self.server)
        versions = self.server.column("SELECT versionid FROM msdb.dbo.sysdtspackages")
        self.install("/installdb", "/installsp", "/installdts")
        self.assertEqual(self.machine.log_lines(), [])
        self.assertIn("Batch", self.machine.output("Create_Batch_Database"))
        self.assertRegex(self.machine.output("Create_Batch_Database"), r"Level 16")
        self.assertEqual(contents(self.server)["objects"], before["objects"])
        # The packages are replaced, not added.
        self.assertEqual(self.packages(), sorted(PACKAGES))
        self.assertNotEqual(self.server.column("SELECT versionid FROM msdb.dbo.sysdtspackages"), versions)

    def test_progress_is_written_to_the_terminal_without_a_display(self):
        said = self.install("/installsp")
        self.assertIn("Installing / Upgrading Lotkeeper database\n", said.replace("\r", ""))
        for text in ("[0/4] Initializing installation...", "[1/4] Modifying sql scripts...",
                     "[3/4] Installing batch stored procedures...", "[4/4] Ended."):
            self.assertIn(text, said)

    def test_progress_is_shown_in_a_window_if_there_is_a_display(self):
        if not self.wine:
            # console_module_test.py shows the window on Linux.
            self.assertIn("[0/4]", self.install("/installsp"))
            return
        said = self.machine.on_a_screen(*self.machine.install_arguments(self.server, "/installdb"))
        self.assertNotIn("Initializing installation", said)
        self.assert_quiet()
        self.assertTrue(self.batch_exists())

    def test_a_password_may_be_empty(self):
        self.install("/installdb", user="empty", password="")
        self.assert_quiet()
        self.assertTrue(self.batch_exists())

    def test_text_outside_ascii_arrives_as_typed(self):
        self.machine.environment["LC_ALL"] = "C.UTF-8"  # the encoding in which Wine reads the command line
        scripts = self.machine.scripts
        self.machine.scripts = os.path.join(self.folder, "Skripte für €")
        os.rename(scripts, self.machine.scripts)
        self.machine.data = os.path.join(self.folder, "Daten ß")
        os.mkdir(self.machine.data)
        self.install("/installdb", "/installdts", user="müller", password="pä€")
        self.assert_quiet()
        self.assertTrue(self.batch_exists())
        self.assertEqual(sorted(os.listdir(self.machine.data)), ["Batch_data.mdf", "Batch_log.ldf"])
        self.assertEqual(self.packages(), sorted(PACKAGES))

    def test_a_missing_package_file_is_skipped(self):
        os.remove(os.path.join(self.machine.scripts, "BatchOverviewExport.dts"))
        self.machine.run(*self.machine.login(self.server), "/installdts")
        self.assertEqual(self.machine.log_lines(), [])
        self.assertEqual(self.packages(), sorted(set(PACKAGES) - {"BatchOverviewExport"}))

    def test_a_damaged_package_file_is_logged_and_the_others_are_stored(self):
        with open(os.path.join(self.machine.scripts, "BatchOverviewExport.dts"), "wb") as file:
            file.write(b"no package")
        self.machine.run(*self.machine.login(self.server), "/installdts")
        self.assertEqual(self.machine.log_lines(), [" : Error in CSQLScriptMgr::InstallDTSPackage(2)"])
        self.assertEqual(self.packages(), sorted(set(PACKAGES) - {"BatchOverviewExport"}))


class BadInput(UnattendedTestCase):
    ABORT = " : Error in modMain::DoAutomaticUpgrade"
    PACKAGE_FAILURES = [f" : Error in CSQLScriptMgr::InstallDTSPackage({number})" for number in range(6)]

    def assert_nothing_on_the_server(self):
        self.assertFalse(self.batch_exists())
        self.assertEqual(self.packages(), [])
        self.assertEqual(os.listdir(self.machine.data), [])

    def modify(self, content):
        """The script that the program makes from a template with this content."""
        self.machine.write_template("Create_Batch_Stored_Procedures", content)
        self.install("/installsp")
        self.assertEqual(self.machine.log_lines(), [])
        return self.machine.read_modified("Create_Batch_Stored_Procedures")

    def test_every_line_end_becomes_cr_lf(self):
        self.assertEqual(self.modify(b"PRINT 1\nPRINT 2\rPRINT 3\r\nPRINT 4\r\r\n"),
                         b"PRINT 1\r\nPRINT 2\r\nPRINT 3\r\nPRINT 4\r\n\r\n\r\n")

    def test_a_missing_last_line_end_is_added(self):
        self.assertEqual(self.modify(b"PRINT '###SERVER###'"),
                         b"PRINT '" + self.server.name.encode() + b"'\r\n\r\n")

    def test_bytes_outside_ascii_are_kept_and_reach_the_server(self):
        content = b"PRINT '\x80 \xfcber \xb0C \xdf'\r\n"
        self.assertEqual(self.modify(content), content + b"\r\n")
        self.assertIn("\u20ac \xfcber \xb0C \xdf", self.machine.output("Create_Batch_Stored_Procedures"))

    def test_nul_bytes_are_kept(self):
        content = b"PRINT 'a\x00b'\r\n-- \x00\x00\r\n"
        self.assertEqual(self.modify(content), content + b"\r\n")

    def test_an_empty_template_becomes_an_empty_line(self):
        self.assertEqual(self.modify(b""), b"\r\n")

    def test_tokens_in_a_template_of_200_mb_are_replaced_to_its_end(self):
        self.use_tool("test_tool.EXE")
        line = b"-- ###SERVER### " + b"x" * 80 + b"\r\n"
        count = 200_000_000 // len(line) + 1
        modified = self.modify(line * count)
        replaced = line.replace(b"###SERVER###", self.server.name.encode())
        self.assertEqual(len(modified), len(replaced) * count + 2)
        self.assertEqual(modified, replaced * count + b"\r\n")

    def use_tool(self, name):
        os.remove(self.machine.tool)
        shutil.copy(os.path.join(self.binaries, name), self.machine.tool)

    def test_a_script_folder_that_is_a_file_ends_the_run_before_any_change(self):
        self.machine.scripts = os.path.join(self.machine.scripts, "Insert_Default_Data.sql")
        self.install("/installdb", "/installdts")
        self.assertEqual(self.machine.log_lines(), [self.ABORT])
        self.assert_nothing_on_the_server()

    def test_a_missing_template_ends_the_run_before_any_change(self):
        os.remove(os.path.join(self.machine.scripts, "Insert_Default_Data.sql"))
        self.install("/installdb", "/installdts")
        self.assertEqual(self.machine.log_lines(), [self.ABORT])
        self.assert_nothing_on_the_server()
        # The scripts that were written before the failure are kept.
        self.assertEqual(self.machine.data_files(), ["Create_Batch_Database.sql"])

    def test_a_missing_log_folder_is_reported_with_the_log_files_path_and_not_created(self):
        os.rmdir(self.machine.log_folder)
        os.remove(os.path.join(self.machine.scripts, "Create_Batch_Database.sql"))
        said = self.install("/installdb", "/installdts").replace("\r", "")
        self.assertIn("KVLSQLDbMgr (X): Run-time error '76':\n\nPath not found\n\n", said)
        self.assertIn("Log\\KVLSQLDbMgr.log", said)
        self.assertFalse(os.path.exists(self.machine.log_folder))
        self.assert_nothing_on_the_server()

    def test_a_data_folder_that_cannot_be_created_ends_the_run_before_any_change(self):
        with open(os.path.join(self.machine.install, "Data"), "w"):
            pass
        self.install("/installdb", "/installdts")
        self.assertEqual(self.machine.log_lines(), [self.ABORT])
        self.assert_nothing_on_the_server()

    def test_without_a_query_tool_packages_are_not_stored_either(self):
        os.remove(self.machine.tool)
        self.install("/installdb", "/installdts")
        self.assertEqual(self.machine.log_lines(), [self.ABORT])
        self.assert_nothing_on_the_server()

    def test_a_query_tool_that_cannot_start_is_not_noticed(self):
        with open(self.machine.tool, "wb") as file:
            file.write(b"this is no program")
        os.chmod(self.machine.tool, stat.S_IRUSR | stat.S_IWUSR)
        self.install("/installdb", "/installdts")
        self.assertEqual(self.machine.log_lines(), [])
        self.assertFalse(self.batch_exists())
        self.assertEqual(self.packages(), sorted(PACKAGES))

    def test_a_query_tool_with_an_error_exit_code_is_not_noticed(self):
        self.use_tool("test_tool.EXE")
        self.install("/installdb", "/installdts", password="x --exit 3")
        self.assertEqual([line for line in self.machine.log_lines() if "InstallDTSPackage" not in line], [])
        for name in TEMPLATES:
            self.assertIn("[--exit]\n[3]\n", self.machine.output(name))

    def test_a_query_tool_that_writes_nothing_is_not_noticed(self):
        self.use_tool("test_tool.EXE")
        self.machine.run(*self.machine.login(self.server, user="u --silent"), "/sqldatapath",
                         self.machine.native(self.machine.data), "/installdb")
        self.assertEqual(self.machine.log_lines(), [])
        self.assertEqual(self.machine.data_files(), sorted(name + ".sql" for name in TEMPLATES))

    def test_an_unknown_server_version_is_reported_and_the_run_continues_with_the_default(self):
        self.machine.set_registry(version="11.0.2100.60")
        said = self.install("/installdb")
        self.assertIn("KVLSQLDbMgr (!): Can't determine installed SQL Server version!", said)
        self.assertEqual(self.machine.log_lines(), [])
        self.assertTrue(self.batch_exists())

    def test_a_server_version_without_a_dot_ends_the_run(self):
        self.machine.set_registry(version="14")
        self.install("/installdb", "/installdts")
        self.assertEqual(self.machine.log_lines(), [self.ABORT])
        self.assert_nothing_on_the_server()

    def test_an_unreachable_server_is_reported_in_the_query_tools_output(self):
        self.server.stop()
        self.install("/installdb", "/installdts")
        self.assertEqual(self.machine.log_lines(), self.PACKAGE_FAILURES)
        for name in TEMPLATES:
            self.assertNotEqual(self.machine.output(name).strip(), "")
        self.server.start()
        self.assert_nothing_on_the_server()

    def test_a_refused_login_is_reported_in_the_query_tools_output(self):
        self.install("/installdb", "/installdts", password="wrong")
        self.assertEqual(self.machine.log_lines(), self.PACKAGE_FAILURES)
        for name in TEMPLATES:
            self.assertIn(f"Login failed for user '{USER}'", self.machine.output(name))
        self.assert_nothing_on_the_server()

    def test_the_run_continues_when_the_server_dies_during_a_script(self):
        self.install("/installdb")
        before = contents(self.server)
        self.machine.write_template("Create_Batch_Stored_Procedures", b"USE Batch\r\nGO\r\nPRINT 'begun'\r\n"
                                    b"CREATE TABLE Witness (a int)\r\nGO\r\nWAITFOR DELAY '00:01:00'\r\nGO\r\n")
        program = self.machine.start(*self.machine.install_arguments(self.server, "/installsp", "/installdts"))
        self.addCleanup(program.kill)
        wait_for(lambda: self.server.ask("SELECT name FROM sysobjects WHERE name = 'Witness'", "Batch"))
        self.server.kill()
        program.wait(120)
        self.assertEqual(self.machine.log_lines(), self.PACKAGE_FAILURES)
        self.assertIn("begun", self.machine.output("Create_Batch_Stored_Procedures"))
        # The committed change is there, and the rest of the database is as before.
        self.server.start()
        self.assertEqual(self.server.ask("SELECT name FROM sysobjects WHERE name = 'Witness'", "Batch"),
                         [("Witness",)])
        self.server.ask("DROP TABLE Witness", "Batch")
        self.assertEqual(contents(self.server), before)

    def test_the_next_script_runs_after_one_that_failed(self):
        self.machine.write_template("Create_Batch_Database", b"SELECT * FROM NoSuchTable\r\nGO\r\n")
        self.machine.write_template("Insert_Default_Data", b"PRINT 'second'\r\nGO\r\n")
        self.machine.write_template("Create_Batch_Stored_Procedures", b"PRINT 'third'\r\nGO\r\n")
        self.install("/installdb")
        self.assertEqual(self.machine.log_lines(), [])
        self.assertIn("Msg 208", self.machine.output("Create_Batch_Database"))
        self.assertIn("second", self.machine.output("Insert_Default_Data"))
        self.assertIn("third", self.machine.output("Create_Batch_Stored_Procedures"))


class CommandLine(UnattendedTestCase):
    NO_WINDOW = "The console cannot show its window here."

    def test_a_command_line_without_a_complete_task_opens_the_window_and_changes_nothing(self):
        for arguments in ([], ["/frobnicate"], ["/installdb"], ["/upgradedb"],
                          ["/scriptfolder", self.machine.native(self.machine.scripts)],
                          ["/upgradedb", "/scriptfolder", self.machine.native("/no such folder")],
                          [*self.machine.login(self.server), "/installdb"]):
            said = self.machine.run(*arguments)
            self.assertIn(self.NO_WINDOW, said, arguments)
            self.assertNotIn("following command arguments", said)
        self.assertEqual(self.machine.log_lines(), [])
        self.assertEqual(self.machine.data_files(), [])
        self.assertFalse(self.batch_exists())

    def test_help_takes_precedence_over_a_task(self):
        said = self.install("/installdb", "-HELP").replace("\r", "")
        self.assertIn(self.NO_WINDOW, said)
        self.assertIn("The following command arguments can be defined:\n\n/help\n", said)
        self.assertFalse(self.batch_exists())


if __name__ == "__main__":
    UnattendedTestCase.dev_server, UnattendedTestCase.binaries = map(os.path.abspath, sys.argv[1:3])
    rest = sys.argv[3:]
    if "--wine" in rest:
        rest.remove("--wine")
        UnattendedTestCase.wine = True
    unittest.main(argv=[sys.argv[0], *rest], verbosity=2)

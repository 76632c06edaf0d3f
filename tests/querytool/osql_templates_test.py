# Runs the complete sample templates with OSQL.EXE on a development server, and checks the result with the tool itself
# and with an independent client.
#
#   osql_templates_test.py DEVSQLSERVER OSQL.EXE SCRIPT_FOLDER [--wine]
import datetime
import os
import subprocess
import sys
import threading
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
TOP = os.path.dirname(os.path.dirname(HERE))
sys.path.insert(0, os.path.join(TOP, "tests", "samples"))

from installed_samples_test import PASSWORD, TEMPLATES, USER, Server, modified  # noqa: E402


class Templates(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = Server(PROGRAM)
        cls.addClassCleanup(cls.server.stop)
        cls.codes, cls.outputs = {}, {}
        for name in TEMPLATES:
            path = os.path.join(cls.server.root, name + ".sql")
            with open(path, "w", encoding="cp1252", newline="") as file:
                file.write(modified(os.path.join(FOLDER, name + ".sql"), cls.server.data))
            output = os.path.join(cls.server.root, name + ".txt")
            cls.codes[name] = cls.tool("-i", cls.native(path), "-o", cls.native(output)).returncode
            with open(output, encoding="cp1252") as file:
                cls.outputs[name] = file.read()

    @classmethod
    def native(cls, path):
        return "Z:" + path.replace("/", "\\") if WINE else path

    @classmethod
    def tool(cls, *arguments):
        command = [os.path.join(TOP, "tests", "run-under-wine")] if WINE else []
        command += [TOOL, "-S", f"127.0.0.1,{cls.server.port}", "-U", USER, "-P", PASSWORD, *arguments]
        environment = dict(os.environ, ODBCSYSINI=os.path.join(TOP, "src", "odbc", "odbc_config"))
        return subprocess.run(command, stdout=subprocess.PIPE, env=environment, timeout=300, stdin=subprocess.DEVNULL)

    def ask(self, query):
        """The words of the tool's output for a query, without headings and counts."""
        done = self.tool("-d", "Batch", "-n", "-h-1", "-w", "500", "-Q", "SET NOCOUNT ON " + query)
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout.decode("cp1252").split()

    def test_every_template_runs_without_an_error(self):
        for name in TEMPLATES:
            errors = [line for line in self.outputs[name].splitlines() if "Msg " in line or "lost" in line]
            self.assertEqual((self.codes[name], errors), (0, []), name)

    def test_every_batch_of_a_template_was_run(self):
        for name in TEMPLATES:
            self.assertTrue(self.outputs[name].endswith("1> "), self.outputs[name][-200:])

    def test_tables_and_procedures_stand_as_another_client_sees_them(self):
        with self.server.connect("Batch") as connection, connection.cursor() as cursor:
            for kind in ("U", "P", "V"):
                cursor.execute("SELECT name FROM sysobjects WHERE xtype = %s ORDER BY name", (kind,))
                names = [row[0] for row in cursor.fetchall()]
                self.assertTrue(names, kind)
                self.assertEqual(self.ask(f"SELECT name FROM sysobjects WHERE xtype = '{kind}' ORDER BY name"), names)

    def test_the_version_is_read_as_the_program_reads_it(self):
        with self.server.connect("Batch") as connection, connection.cursor() as cursor:
            cursor.execute("SELECT * FROM LKConfig")
            row = [value for row in cursor.fetchall() for value in row if row[0] == "DatabaseVersion"]
        self.assertTrue(row)
        words = self.ask("SELECT * FROM LKConfig WHERE 1 = 1")
        for value in row:
            # The tool prints a time to the millisecond, as the real one does.
            text = value.isoformat(" ", "milliseconds") if isinstance(value, datetime.datetime) else str(value)
            for word in text.split():
                self.assertIn(word, words)

    def test_a_guard_ends_the_tool(self):
        """Statements after the guard's RAISERROR with state 127 are not run, because the tool ends or because of NOEXEC."""
        path = os.path.join(self.server.root, "Create_Batch_Database.sql")
        done = self.tool("-n", "-i", self.native(path))
        lines = done.stdout.decode("cp1252").replace("\r", "").split("\n")
        last = next(number for number, line in enumerate(lines) if "exists already" in line)
        self.assertTrue(lines[last - 1].startswith("Msg 50000, Level 16"), lines)
        if WINE:  # the driver there does not give the state
            self.assertEqual((done.returncode, [line for line in lines if "Msg" in line]), (0, [lines[last - 1]]))
        else:
            self.assertEqual((done.returncode, lines[last + 1:]), (50000 & 0xFF, [""]))

    def test_a_batch_that_is_thrown_out_is_a_failure(self):
        done = []
        batch = "set nocount on insert Running values (@@spid) waitfor delay '00:05:00' print 'the end'"
        with self.server.connect("master") as connection, connection.cursor() as cursor:
            cursor.execute("CREATE TABLE Running (number int)")
            thread = threading.Thread(target=lambda: done.append(self.tool("-b", "-d", "master", "-Q", batch)))
            thread.start()
            numbers, end = [], time.monotonic() + 120
            while not numbers and time.monotonic() < end:
                cursor.execute("SELECT number FROM Running")
                numbers = cursor.fetchall()
                time.sleep(0.02)
            self.assertEqual(len(numbers), 1, "the batch does not run")
            cursor.execute(f"KILL {numbers[0][0]}")
        thread.join(120)
        self.assertFalse(thread.is_alive())
        self.assertNotEqual(done[0].returncode, 0)
        self.assertIn(b"Msg 596, Level 21", done[0].stdout)
        self.assertNotIn(b"the end", done[0].stdout)

    def test_a_login_that_is_refused_is_told(self):
        command = [os.path.join(TOP, "tests", "run-under-wine")] if WINE else []
        command += [TOOL, "-S", f"127.0.0.1,{self.server.port}", "-U", USER, "-P", "-Q", "SELECT 1"]
        environment = dict(os.environ, ODBCSYSINI=os.path.join(TOP, "src", "odbc", "odbc_config"))
        done = subprocess.run(command, stdout=subprocess.PIPE, env=environment, timeout=60)
        self.assertEqual(done.returncode, 1)
        self.assertIn(f"Login failed for user '{USER}'.", done.stdout.decode())


if __name__ == "__main__":
    PROGRAM, TOOL, FOLDER = sys.argv[1:4]
    WINE = "--wine" in sys.argv[4:]
    unittest.main(argv=[sys.argv[0], "-v"])

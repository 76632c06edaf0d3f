# Tests OSQL.EXE as a program: its command line, its files and its exit code. The server (devserver/tests) sends the results
# that a test asks for, dies, or does not answer. --wine runs the tool under Wine.
#
#   osql_test.py DIRECTIVE_SERVER OSQL.EXE [--wine]
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
TOP = os.path.dirname(os.path.dirname(HERE))
LIMIT = "5"  # seconds: for every batch of the tool, and for the answer to a cancelling


class ToolRunner:
    """Runs the tool: has a server, and a folder for the tool's files."""

    def __init__(self, server, tool, wine):
        self.tool, self.wine = tool, wine
        self.folder = tempfile.mkdtemp(prefix="osql test ")  # with a blank, as installations have it
        self.server = subprocess.Popen([server], stdout=subprocess.PIPE, text=True)
        self.port = int(self.server.stdout.readline())
        self.environment = dict(os.environ, ODBCSYSINI=os.path.join(TOP, "src", "odbc", "odbc_config"))
        self.environment.pop("OSQLPASSWORD", None)

    def path(self, name):
        return os.path.join(self.folder, name)

    def native(self, name):
        """A path in the form that the tool needs."""
        path = self.path(name)
        return "Z:" + path.replace("/", "\\") if self.wine else path

    def run(self, *arguments, user="sa", password=("-Psecret",), port=None, stdin=b""):
        """Runs the tool and returns its exit code and standard output."""
        command = [os.path.join(TOP, "tests", "run-under-wine")] if self.wine else []
        command += [self.tool, "-S", f"127.0.0.1,{port or self.port}", "-U", user, *password, *arguments]
        done = subprocess.run(command, input=stdin, stdout=subprocess.PIPE, env=self.environment, timeout=120,
                              cwd=self.folder)
        return done.returncode, done.stdout.replace(b"\r\n", b"\n")

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def stop(self):
        self.server.kill()
        self.server.wait()
        self.server.stdout.close()
        shutil.rmtree(self.folder)


class ToolTest(unittest.TestCase):
    def setUp(self):
        self.runner = ToolRunner(*ARGUMENTS)

    def tearDown(self):
        self.runner.stop()

    def script(self, content, *switches, **how):
        """Runs a script file with an output file, and returns the exit code and the content of the output file."""
        self.runner.write("a.sql", content)
        code, printed = self.runner.run("-i", self.runner.native("a.sql"), "-o", self.runner.native("a.txt"), *switches,
                                       **how)
        self.assertEqual(printed, b"")
        return code, self.runner.read("a.txt")


class Osql(ToolTest):
    def test_a_script_runs_whole_and_its_output_stands_in_the_file(self):
        code, output = self.script(b"rows 2\r\nprint hello\r\nGO\r\nerror 50000\r\nrows 1\r\nGO\r\ntouched 1\r\ngo")
        self.assertEqual(code, 0)
        self.assertEqual(output.decode("cp1252").split("\r\n"), [
            "1> 2> 3>  id          name         ",
            " ----------- ------------ ",
            "           1 row 1        ",
            "           2 NULL         ",
            "",
            "(2 rows affected)",
            "hello",
            # Under Wine the driver is FreeTDS's for ODBC, which does not give the state.
            f"1> 2> 3> Msg 50000, Level 16, {'' if self.runner.wine else 'State 1, '}Server DIRECT, Line 1",
            "Made to fail.",
            " id          name         ",
            " ----------- ------------ ",
            "           1 row 1        ",
            "",
            "(1 row affected)",
            "1> 2> (1 row affected)",
            "1> "])

    def test_text_of_the_code_page_comes_back_as_it_was(self):
        text = bytes(b for b in range(0xA0, 0x100)) + "€ŠŽœ™’".encode("cp1252")
        code, output = self.script(b"print " + text + b"\nGO\n", "-n")
        self.assertEqual((code, output), (0, text + b"\r\n"))

    def test_a_marked_unicode_file_is_understood(self):
        for encoding in ("utf-8-sig", "utf-16"):
            code, output = self.script("print café €\nGO\n".encode(encoding), "-n")
            self.assertEqual((code, output), (0, "café €\r\n".encode("cp1252")))

    def test_every_line_end_ends_a_line(self):
        for end in (b"\r\n", b"\n", b"\r"):
            code, output = self.script(end.join([b"print a", b"GO", b"print b", b"GO 2", b"print c"]), "-n")
            self.assertEqual((code, output), (0, b"a\r\nb\r\nb\r\nc\r\n"))

    def test_nul_bytes_do_not_end_a_batch(self):
        code, output = self.script(b"-- a\0b\nprint behind\nGO\n", "-n")
        self.assertEqual((code, output), (0, b"behind\r\n"))

    def test_an_empty_script_gives_an_empty_output(self):
        self.assertEqual(self.script(b"", "-n"), (0, b""))

    def test_a_very_large_batch_arrives_whole(self):
        batch = b"length\n" + b"-- padding of the batch\n" * 1_000_000
        code, output = self.script(batch + b"GO\n", "-n", "-h-1")
        self.assertEqual((code, output.split()[0]), (0, str(len(batch)).encode()))

    def test_an_empty_password_does_not_swallow_the_next_switch(self):
        code, output = self.script(b"print in\nGO\n", "-n", user="guest", password=("-P",))
        self.assertEqual((code, output), (0, b"in\r\n"))
        code, output = self.script(b"print in\nGO\n", "-n", user="guest", password=("-P", ""))
        self.assertEqual((code, output), (0, b"in\r\n"))

    def test_a_refused_login_stands_in_the_output_file(self):
        code, output = self.script(b"print in\nGO\n", password=("-P", "wrong"))
        self.assertEqual(code, 1)
        self.assertIn(b"Login failed for user 'sa'.\r\n", output)

    def test_a_server_that_is_not_there_stands_in_the_output_file(self):
        with socket.socket() as unused:
            unused.bind(("127.0.0.1", 0))
            code, output = self.script(b"print in\nGO\n", port=unused.getsockname()[1])
        self.assertEqual(code, 1)
        self.assertIn(b"Unable to connect", output)

    def test_a_server_that_keeps_silent_ends_with_the_login_time_out(self):
        with socket.socket() as silent:
            silent.bind(("127.0.0.1", 0))
            silent.listen()
            code, output = self.script(b"print in\nGO\n", "-l", "1", port=silent.getsockname()[1])
        self.assertEqual(code, 1)
        self.assertTrue(output.endswith(b"Timeout expired\r\n"), output)

    def test_a_server_that_dies_in_the_middle_is_told_and_nothing_hangs(self):
        code, output = self.script(b"print first\nGO\ndie 50000\nGO\nprint never\nGO\n", "-n")
        self.assertEqual(code, 1)
        self.assertTrue(output.startswith(b"first\r\n"), output[:100])
        self.assertTrue(output.endswith(b"The connection to the server is lost.\r\n"), output[-200:])
        self.assertNotIn(b"never", output)

    def test_a_batch_that_takes_too_long_is_told_and_the_next_one_runs(self):
        code, output = self.script(b"wait\nGO\nprint next\nGO\n", "-n", "-t", LIMIT)
        self.assertEqual((code, output), (0, b"Timeout expired\r\nnext\r\n"))

    def test_a_script_that_is_not_there_is_named_in_the_output_file(self):
        code, _ = self.runner.run("-i", self.runner.native("nosuch.sql"), "-o", self.runner.native("a.txt"))
        self.assertEqual(code, 1)
        self.assertIn(b"nosuch.sql", self.runner.read("a.txt"))

    def test_an_output_file_that_cannot_be_made_is_a_failure(self):
        code, printed = self.runner.run("-Q", "print a", "-o", self.runner.native("nosuch/a.txt"))
        self.assertEqual((code, printed), (1, b""))

    def test_a_wrong_switch_is_named_in_the_output_file(self):
        code, output = self.script(b"print a\nGO\n", "-Z")
        self.assertEqual(code, 1)
        self.assertIn(b"-Z", output)
        code, output = self.script(b"print a\nGO\n", "-E")
        self.assertEqual(code, 1)
        self.assertIn(b"trusted connections are not supported", output)

    def test_the_first_error_stops_a_script_on_request(self):
        code, output = self.script(b"error 50000\nGO\nprint never\nGO\n", "-n", "-b")
        self.assertEqual(code, 1)
        self.assertNotIn(b"never", output)

    def test_a_query_runs_and_its_output_is_printed(self):
        self.assertEqual(self.runner.run("-n", "-Q", "print *"), (0, b"*\n"))

    def test_without_a_script_the_standard_input_is_read(self):
        self.assertEqual(self.runner.run("-n", stdin=b"print a\nGO\nprint b"), (0, b"a\nb\n"))

    def test_errors_go_to_the_error_channel_as_the_help_writes_it(self):
        for switches in (("-r", "0"), ("-r0",), ("-r",)):
            code, printed = self.runner.run("-n", *switches, stdin=b"error 50000\nprint a\n")
            self.assertEqual((code, printed), (0, b"a\n"), switches)
        self.assertEqual(self.runner.run("-n", "-r", "1", stdin=b"error 50000\nprint a\n"), (0, b""))

    def test_exit_gives_a_querys_value_as_exit_code(self):
        code, _ = self.runner.run("-n", stdin=b"print a\nEXIT(length)\n")
        self.assertEqual(code, len("print a\nlength"))

    def test_the_help_names_the_version(self):
        code, printed = self.runner.run("-?")
        self.assertEqual(code, 0)
        self.assertIn(b"version", printed)


class OsqlByDbLibrary(ToolTest):
    """Order and state of messages with FreeTDS's DB-Library. Not under Wine: there the tool has FreeTDS's
    driver for ODBC, which sorts the messages of a statement and gives no state."""

    def test_messages_stand_in_the_servers_order(self):
        code, output = self.script(b"raise 0 1 x\nraise 0 1 y\nraise 1 1 low\nraise 16 5 err\nprint after\n", "-n")
        self.assertEqual((code, output.decode().split("\r\n")), (0, [
            "x", "y", "low", "Msg 50000, Level 16, State 5, Server DIRECT, Line 1", "err", "after", ""]))

    def test_messages_stand_between_the_results_that_they_came_between(self):
        code, output = self.script(b"print a\nrows 1\nraise 1 1 b\ntouched 2\nprint c\nerror 50000\ntouched 3\n", "-n")
        self.assertEqual((code, output.decode().split("\r\n")), (0, [
            "a", " id          name         ", " ----------- ------------ ", "           1 row 1        ", "",
            "(1 row affected)", "b", "(2 rows affected)", "c", "Msg 50000, Level 16, State 1, Server DIRECT, Line 1",
            "Made to fail.", "(3 rows affected)", ""]))

    def test_the_session_has_the_options_that_a_tool_over_odbc_has(self):
        code, output = self.script(b"batches\n", "-n")
        self.assertEqual(code, 0)
        for option in (b"ANSI_NULLS ON", b"ANSI_NULL_DFLT_ON ON", b"ANSI_PADDING ON", b"ANSI_WARNINGS ON",
                       b"CONCAT_NULL_YIELDS_NULL ON", b"QUOTED_IDENTIFIER ON", b"TEXTSIZE 2147483647"):
            self.assertIn(b"SET " + option, output)

    def test_state_127_ends_the_tool_whatever_the_severity(self):
        for severity in (0, 10, 16):
            code, output = self.script(f"print a\nraise {severity} 127 stop\nprint b\nGO\nprint c\nGO\n".encode(), "-n")
            lines = output.decode().split("\r\n")
            self.assertEqual((code, lines[0], lines[-2:]), (50000 & 0xFF, "a", ["stop", ""]))

    def test_another_state_ends_nothing(self):
        code, output = self.script(b"raise 16 126 no\nGO\nprint c\nGO\n", "-n")
        self.assertEqual((code, output[-5:]), (0, b"\r\nc\r\n"))

    def test_a_batch_that_the_end_leaves_running_is_given_up(self):
        # So many rows that the server sends the first of them before it waits.
        code, _ = self.script(b"raise 16 127 stop\nrows 3000\nwait\nGO\n", "-n")
        self.assertEqual(code, 50000 & 0xFF)

    def test_a_server_that_does_not_answer_the_cancelling_either_is_lost(self):
        code, output = self.script(b"stuck\nGO\nprint never\nGO\n", "-n", "-t", LIMIT)
        self.assertEqual((code, output), (1, b"Timeout expired\r\nThe connection to the server is lost.\r\n"))


if __name__ == "__main__":
    ARGUMENTS = (sys.argv[1], sys.argv[2], "--wine" in sys.argv[3:])
    loader = unittest.defaultTestLoader
    cases = (Osql,) if ARGUMENTS[2] else (Osql, OsqlByDbLibrary)
    result = unittest.TextTestRunner(verbosity=2).run(
        unittest.TestSuite(loader.loadTestsFromTestCase(case) for case in cases))
    sys.exit(not result.wasSuccessful())

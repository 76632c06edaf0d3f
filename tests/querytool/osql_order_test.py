# Compares the output of OSQL.EXE with that of two other tools: FreeTDS's fisql (messages, counts and rows in their
# order) and tsql (messages). The scripts are the cases below and the sample templates.
#
#   osql_order_test.py DEVSQLSERVER OSQL.EXE SCRIPT_FOLDER
import os
import re
import subprocess
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
TOP = os.path.dirname(os.path.dirname(HERE))
sys.path.insert(0, os.path.join(TOP, "tests", "samples"))

from installed_samples_test import PASSWORD, TEMPLATES, USER, Server, modified  # noqa: E402

CASES = {
    "messages of every kind": """print 'x' print 'y' raiserror('low', 1, 1) raiserror('err', 16, 5) print 'after'
GO
raiserror('first', 16, 1) print 'second' raiserror('third', 11, 2) raiserror('fourth', 10, 3)
GO
""",
    "results and counts between messages": """print 'a' select 1 as one print 'b' select 2 as two, 'x' as t
create table #t (n int, t varchar(5))
insert #t values (1, 'x') print 'in' insert #t select 2, 'y' union all select 3, null
update #t set n = 9 where n = 99
raiserror('between', 16, 1)
select * from #t
delete #t
GO
select * from #t
GO
""",
    "errors of the server": """select * from NoSuchTable
GO
print 'before' insert NoSuchTable values (1)
GO
selec 1
GO
print 1 / 0 print 'after'
GO
create table #u (a int not null primary key) insert #u values (1) insert #u values (1) insert #u values (null) print 'end'
GO
""",
    "a database that is not there": """use NoSuchDatabase
GO
print 'and on'
GO
""",
    "no counts": """set nocount on
GO
create table #n (a int) insert #n values (1) select a from #n print 'end'
GO
""",
}

ERROR = "Msg {} Level {} State {} Line {}: {}"


def osql_lines(text):
    """The tool's output in the form that is compared: one line for each error, cells separated by single blanks."""
    text = re.sub(r"Msg (\d+), Level (\d+), State (\d+), Server [^,\n]+(?:, Procedure [^,\n]+)?, Line (\d+)\n(.*)",
                  lambda match: ERROR.format(*match.groups()), text)
    # fisql shows no heading for a result without rows.
    text = re.sub(r".*\n [- ]+\n\n(?=\(0 rows affected\))", "", text)
    return squeezed(text.replace("(1 row affected)", "(1 rows affected)"))


def fisql_lines(text):
    """The output of fisql in the same form."""
    text = re.sub(r"Msg (\d+), Level (\d+), State (\d+):\nServer '[^']*'(?:, Procedure '[^']*')?, Line (\d+):\n(.*)",
                  lambda match: ERROR.format(*match.groups()), text)
    # It shows changes of database and language, and the return status, alone or beside the count.
    text = re.sub(r"Changed (?:database context|language setting) to .*\n", "", text)
    text = re.sub(r"\(return status = -?\d+\)\n", "", text)
    return squeezed(re.sub(r", return status = -?\d+\)", ")", text))


def squeezed(text):
    """The lines that are not empty, with single blanks."""
    lines = [" ".join(line.split()) for line in text.splitlines()]
    return [line for line in lines if line]


def messages(lines):
    """Only the lines of errors, without headings, rows and counts."""
    return [line for line in lines if line.startswith("Msg ")]


class Order(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.server = Server(PROGRAM)
        self.addCleanup(self.server.stop)
        self.configuration = self.path("freetds.conf")
        with open(self.configuration, "w") as file:
            file.write(f"[dev]\nhost = 127.0.0.1\nport = {self.server.port}\ntds version = 7.2\n"
                       "client charset = CP1252\ntext size = 2147483647\n")

    def path(self, name):
        return os.path.join(self.server.root, name)

    def run_tool(self, *command, stdin=subprocess.DEVNULL):
        environment = dict(os.environ, FREETDSCONF=self.configuration, FREETDS=self.configuration)
        done = subprocess.run(command, env=environment, stdin=stdin, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              timeout=120)
        return done.stdout.decode("cp1252").replace("\r", "")

    def osql(self, script):
        return osql_lines(self.run_tool(TOOL, "-S", f"127.0.0.1,{self.server.port}", "-U", USER, "-P", PASSWORD, "-n",
                                        "-I", "-w", "2000", "-i", script))

    def fisql(self, script):
        return fisql_lines(self.run_tool("fisql", "-S", "dev", "-U", USER, "-P", PASSWORD, "-w", "2000", "-i", script))

    def tsql_errors(self, script):
        with open(script, "rb") as file:
            said = self.run_tool("tsql", "-S", "dev", "-U", USER, "-P", PASSWORD, "-o", "q", stdin=file)
        found = re.findall(r"Msg (\d+) \(severity (\d+), state (\d+)\) from \S+(?: Procedure \S+)? Line (\d+):\n"
                           r"\t\"(.*)\"\n", said)
        return [ERROR.format(*groups) for groups in found if int(groups[1]) > 10]

    def write(self, name, text):
        with open(self.path(name), "w", encoding="cp1252", newline="") as file:
            file.write(text)
        return self.path(name)

    def test_the_cases(self):
        for name, text in CASES.items():
            with self.subTest(name):
                script = self.write("case.sql", text)
                lines = self.osql(script)
                self.assertTrue(lines)
                self.assertEqual(lines, self.fisql(script))
                self.assertEqual(messages(lines), self.tsql_errors(script))

    def test_the_templates_on_a_fresh_server_each(self):
        """Each tool has its own server, since a template changes the output of its next run."""
        said = []
        for tool in (self.osql, self.fisql):
            lines = []
            for name in TEMPLATES:
                script = self.write(name + ".sql", modified(os.path.join(FOLDER, name + ".sql"), self.server.data))
                lines.append((name, tool(script)))
            said.append(lines)
            self.doCleanups()
            self.setUp()
        self.assertEqual(said[0], said[1])

    def test_within_a_procedure_a_message_comes_after_the_count_of_the_rows_before_it(self):
        """fisql prints the counts only at the end of the procedure, so the output is compared with fixed lines."""
        script = self.write("procedure.sql", "use tempdb\nGO\ncreate procedure p as print 'a' select 1 as one "
                            "raiserror('low', 5, 1) select 2 as two raiserror('no', 16, 1) print 'z'\nGO\nexec p\nGO\n")
        self.assertEqual(self.osql(script), [
            "a", "one", "-----------", "1", "(1 rows affected)", "low", "two", "-----------", "2", "(1 rows affected)",
            "Msg 50000 Level 16 State 1 Line 1: no", "z"])
        self.assertEqual(messages(self.osql(script)), self.tsql_errors(script))

    def test_state_127_ends_osql_while_fisql_continues(self):
        script = self.write("guard.sql", "print 'a' raiserror('stop', 16, 127) print 'b'\nGO\nprint 'c'\nGO\n")
        theirs = self.fisql(script)
        self.assertEqual(theirs[-2:], ["b", "c"])
        self.assertEqual(self.osql(script), theirs[:-2])


if __name__ == "__main__":
    PROGRAM, TOOL, FOLDER = sys.argv[1:4]
    unittest.main(argv=[sys.argv[0], "-v"])

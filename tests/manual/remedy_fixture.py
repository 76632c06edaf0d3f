# The fixture of the tests of the manual's repairs: the repairs, which are blocks of statements in the manual, each with
# its name in a comment before it; a program that runs the console's commands; and stopping a run by killing its server.
import os
import re
import shutil
import subprocess
import sys
import threading

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(TOP, "tests", "e2e")]
from console_wire import HERE, Wire  # noqa: E402
from test_machine import PASSWORD, USER  # noqa: E402
from unattended_upgrade_test import TEMPORARY, TEMPORARY_FILES, UpgradeTestCase  # noqa: E402

MANUAL = os.path.join(TOP, "docs", "manual")
RENAMED_FILES = ["Batch_old_data.mdf", "Batch_old_log.ldf"]


def _read():
    found = {}
    for name in sorted(os.listdir(MANUAL)):
        if name.endswith(".md"):
            with open(os.path.join(MANUAL, name), encoding="utf-8") as file:
                for repair, block in re.findall(r"<!-- repair: ([\w-]+) -->\n\s*```sql\n(.*?)```", file.read(), re.DOTALL):
                    found[repair] = [line.strip() for line in block.splitlines() if line.strip()]
    return found


# The statements of each repair, by its name.
REPAIRS = _read()


class ConsoleCommands:
    """Runs commands of the console's tabs on one server or a pair with server_pair_tool, which needs no window."""

    def __init__(self, machine, settings):
        """`settings`: the fields of the General tab, such as {"ServerA": "127.0.0.1,1433"}."""
        self.machine = machine
        # The log is named after the program.
        self.program = os.path.join(machine.folder, "console", "KVLSQLDbMgr")
        os.makedirs(os.path.dirname(self.program), exist_ok=True)
        shutil.copy(os.path.join(machine.binaries, "server_pair_tool"), self.program)
        self.settings = os.path.join(machine.folder, "pair.txt")
        with open(self.settings, "w", encoding="utf-8") as file:
            file.writelines(f"{name}={value}\n" for name, value in settings.items())

    def run(self, selected, *command):
        """Runs the command with server "a" or "b" selected. Returns whether it succeeded, and its output."""
        run = subprocess.run([self.program, self.settings, selected, *command], env=self.machine.environment,
                             stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace", timeout=300)
        if run.returncode not in (0, 1):
            raise AssertionError(f"{command}: exit code {run.returncode}\n{run.stdout}{run.stderr}")
        return run.returncode == 0, run.stdout + run.stderr


def repair(server, name, database="master", change=lambda line: line):
    """Runs the manual's statements one after the other."""
    for statement in REPAIRS[name]:
        server.ask(change(statement), database)


def wire_to(test, server):
    """Returns a proxy of the server that can hold and cut connections; it is closed at the end of the test."""
    wire = Wire()
    test.addCleanup(wire.close)
    wire.up(server.port)
    return wire


def stopped_at(test, server, wire, statement, action):
    """Runs the action, and kills the server after a client has sent the statement and before the server gets it. Then
    starts the server again. Returns the result of the action."""
    held, results = wire.hold(statement), []
    run = threading.Thread(target=lambda: results.append(action()))
    run.start()
    test.assertTrue(held.wait(120), statement)
    wire.down()
    server.kill()
    run.join(300)
    test.assertFalse(run.is_alive(), statement)
    server.start()
    wire.up(server.port)
    return results[0]


class Remedy(UpgradeTestCase):
    """One server with a used version 1 database; the scripts of version 2 are in the script folder."""

    def repair(self, name, database="master", change=lambda line: line):
        repair(self.server, name, database, change)

    def upgrade_stopped_at(self, statement):
        wire = wire_to(self, self.server)
        self.set_login((f"{HERE},{wire.port}", USER, PASSWORD))
        stopped_at(self, self.server, wire, statement, self.upgrade)

    def rename_files(self):
        """Renames the database's files, as the manual tells the engineer to."""
        for old, new in zip(TEMPORARY_FILES, RENAMED_FILES):
            os.rename(os.path.join(self.machine.data, old), os.path.join(self.machine.data, new))

    def rename_the_old_database_back(self):
        self.repair("release-old")
        self.rename_files()
        self.repair("attach-old", change=self.with_paths_of_this_test)

    def with_paths_of_this_test(self, line):
        """A line of the manual, in which the example's paths are replaced by those of this test."""
        folder = self.machine.native(self.machine.data).replace("/", "\\")
        return line.replace("D:\\SQLData", folder)

    def upgrade_again(self):
        """Checks that the next upgrade, without the fault, succeeds and keeps all the old data."""
        self.machine.set_scripts("v2")
        self.set_login((self.server.name, USER, PASSWORD))
        self.upgrade()
        self.assertEqual(self.upgradable(), {"Batch": "2", TEMPORARY: "1"})
        self.assert_old_data_under(TEMPORARY)

    def access(self, database):
        return self.server.ask(f"SELECT DATABASEPROPERTYEX('{database}', 'UserAccess')")[0][0]

    def assert_batch_has_the_old_data(self):
        self.assertEqual(self.version("Batch"), "1")
        self.assertEqual(self.access("Batch"), "MULTI_USER")
        self.assert_old_data_under("Batch")

# A person at the console under Wine and the two servers that it is told of: what the tests of the console by clicks and
# keys stand on. What is done there, and what must come of it, is theirs.
#
# With KV_PICTURES set to a folder, pictures of what is on show are put there.
import os
import select
import shlex
import shutil
import signal
import subprocess
import time
import unittest

from test_machine import (PASSWORD, RUNNER, TEMPLATES, TOP, USER, DevServer, Machine, fresh_folder, install_by_pymssql, set_up,
                   wait_for)

SCRIPT, SYNCHRONIZE, UPGRADE, REPLICATION, VIEW_DATA, STORED_PROC = range(1, 7)
LONGEST = 60  # seconds that anything may take to be seen; a machine at work takes a tenth of it
FIRST_ANSWER = 300  # others may have the screen until then


def start_on_screen(machine, command, **streams):
    """Starts a line of the shell on a screen, at the head of a group of processes."""
    environment = machine.wine_environment()
    if "KV_SCREEN" in os.environ:
        environment["DISPLAY"] = os.environ["DISPLAY"]
    return subprocess.Popen([os.path.join(TOP, "tests", "with-screen"), "sh", "-c", command], env=environment,
                            cwd=machine.install, start_new_session=True, **streams)


def run_on_screen(machine, command, seconds):
    """Runs a line of the shell to its end, or to the end of its time: what it said until then is told."""
    process = start_on_screen(machine, command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, errors="replace")
    try:
        said, complained = process.communicate(timeout=seconds)
    except subprocess.TimeoutExpired:
        end_group(process)
        said, complained = process.communicate()
    return subprocess.CompletedProcess(command, process.returncode, said, complained)


def end_group(process):
    """Ends the leader of a group and whatever it has started: none of them may keep the screen."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


def keep_picture(bitmap, name):
    target = os.path.join(os.environ["KV_PICTURES"], name + ".png")
    subprocess.run(["convert", bitmap, "-alpha", "off", "-strip", target], check=True)


class Person:
    """At the console: each order is carried out by mouse and keyboard, and answered by what was seen."""

    escapes = (("\\n", "\n"), ("\\r", "\r"), ("\\t", "\t"), ("\\\\", "\\"))

    def __init__(self, machine, binaries):
        self.machine, self.gone = machine, False
        # Where a server is installed the Replication tab can be used.
        more = os.path.join(machine.folder, "more.reg")
        with open(more, "w") as file:
            file.write("REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Orvik\\Quorlen\\Lotkeeper\\CustomFunctions]\n"
                       '"SqlServerInstalled"="TRUE"\n"UseTransactionalReplication"="FALSE"\n')
        operator = os.path.join(binaries, "console_operator.exe")
        command = machine.with_registry(shlex.join([RUNNER, operator, machine.native(machine.program)]), more)
        self.process = start_on_screen(machine, command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                       encoding="cp1252", bufsize=1)

    def sit_down(self):
        """Waits until the console stands there."""
        self.answer_of("the start", FIRST_ANSWER)

    def answer_of(self, order, seconds=2 * LONGEST):
        # One line follows each order, so nothing of it can lie read and unseen in this side's buffer.
        if not select.select([self.process.stdout], [], [], seconds)[0]:
            end_group(self.process)
            raise AssertionError(f"{order}: no answer, the program does not take messages")
        line = self.process.stdout.readline().rstrip("\r\n")
        if not line.startswith("= "):
            raise AssertionError(f"{order}: {line or 'the operator has gone'}")
        return line[2:]

    def begin(self, *words):
        """Gives an order and does not wait for its end; finish() must come before the next."""
        self.process.stdin.write("\t".join(map(str, words)) + "\n")
        self.process.stdin.flush()
        return words

    def finish(self, words):
        """The texts that came back."""
        line = self.answer_of(words)
        return [self.plain(text) for text in line.split("\t")] if line else []

    def do(self, *words):
        return self.finish(self.begin(*words))

    def plain(self, text):
        result = []
        while text:
            escape = next((pair for pair in self.escapes if text.startswith(pair[0])), (text[0], text[0]))
            result.append(escape[1])
            text = text[len(escape[0]):]
        return "".join(result)

    def text(self, name):
        return "".join(self.do("text", name))

    def can_use(self, name):
        return self.do("enabled", name) == ["yes"]

    def row(self, number):
        return self.do("row", "lvwViewData", number)

    def picture(self, name):
        if os.environ.get("KV_PICTURES") and not self.gone:
            bitmap = os.path.join(self.machine.folder, "picture.bmp")
            shown = None
            while shown is None or shown != open(bitmap, "rb").read():  # until nothing is left to paint
                shown = open(bitmap, "rb").read() if shown is not None else b""
                time.sleep(0.3)
                self.do("picture", self.machine.native(bitmap))
            keep_picture(bitmap, name)

    def close(self):
        self.do("close")
        self.gone = True

    def leave(self):
        self.process.stdin.close()
        try:
            self.process.wait(LONGEST)
        except subprocess.TimeoutExpired:
            end_group(self.process)
            raise
        finally:
            self.process.stdout.close()


class ConsoleTest(unittest.TestCase):
    """Two servers, and a machine with the program beside them."""

    dev_server = binaries = None

    def setUp(self):
        self.folder = fresh_folder()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.machine = Machine(self.binaries, os.path.join(self.folder, "m"), wine=True, screen=True)
        self.data = {}
        self.a, self.b = (self.start_server(name) for name in ("a", "b"))

    def start_server(self, name):
        server = DevServer(self.dev_server, os.path.join(self.folder, name), self.machine.drives()).start()
        self.addCleanup(server.stop)
        self.data[server] = os.path.join(self.folder, name, "data")
        os.mkdir(self.data[server])
        return server

    def install(self, server, version):
        def path(which):
            return self.machine.native(self.data[which])
        values = {"server": server.name, "servera": self.a.name, "serverb": self.b.name, "userid": USER,
                  "userida": USER, "useridb": USER, "password": PASSWORD, "passworda": PASSWORD, "passwordb": PASSWORD,
                  "datapath": path(server), "datapatha": path(self.a), "datapathb": path(self.b),
                  "uncrepldatapath": path(server), "uncrepldatapatha": path(self.a), "uncrepldatapathb": path(self.b)}
        folder = os.path.join(TOP, "samples", "sqlscripts", version)
        install_by_pymssql(server, folder, (*TEMPLATES, "Create_Replication_Stored_Procedures"), values)

    def prepare(self, statements):
        with self.a.connect() as connection, connection.cursor() as cursor:
            for statement in statements:
                cursor.execute(statement)

    def told_name(self, server):
        """What the console is told that the server is called."""
        return server.name

    def at_the_console(self):
        """A console in whose first tab both servers are told."""
        person = Person(self.machine, self.binaries)
        self.addCleanup(person.leave)
        person.sit_down()
        self.addCleanup(person.picture, self.id().rpartition(".")[2] + "-at-the-end")
        for index, server in enumerate((self.a, self.b)):
            for box, text in (("edtServerName", self.told_name(server)), ("edtUserID", USER),
                              ("edtPassword", PASSWORD), ("edtSQLDataPath", self.machine.native(self.data[server]))):
                person.do("fill", f"{box}.{index}", text)
        return person

    def becomes(self, ask, wanted):
        """What the console comes to show, within a generous time."""
        seen = []
        try:
            wait_for(lambda: seen.append(ask()) or seen[-1] == wanted, LONGEST)
        except RuntimeError:
            self.assertEqual(seen[-1], wanted)

    def comes_back(self, person, button):
        """The button of a command that is at work, or has done with it."""
        self.becomes(lambda: person.can_use(button), True)
        self.becomes(lambda: person.do("focus", button), ["yes"])

    def told(self):
        """The log, without what is not in the registry."""
        return [line for line in self.machine.log_lines() if " : Error in mRegistry::" not in line]

    def files(self, server):
        return sorted(os.listdir(self.data[server]))

# The fixture of the tests that operate the console on a screen by mouse and keyboard, with two servers. The same tests run
# on Linux and, with --wine, on Windows: each toolkit has an operator program (linux/console_operator.py,
# windows/console_operator.cpp). Both accept the same orders.
#
# KV_PICTURES names a folder for pictures of the screen; without it no pictures are taken.
import os
import select
import shlex
import shutil
import signal
import subprocess
import sys
import time
import unittest

from test_machine import (PASSWORD, RUNNER, TEMPLATES, TOP, USER, DevServer, Machine, fresh_folder, install_by_pymssql,
                          wait_for)

GENERAL, SCRIPT, SYNCHRONIZE, UPGRADE, REPLICATION, VIEW_DATA, STORED_PROC = range(7)
LONGEST = 60  # seconds that a change on the screen may take; a busy machine needs a tenth of that
FIRST_ANSWER = 300  # seconds until the first answer: other tests may use the screen before
ESCAPES = {"\\n": "\n", "\\r": "\r", "\\t": "\t", "\\\\": "\\"}
LOTKEEPER = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Orvik\\Quorlen\\Lotkeeper"


def end_group(process):
    """Kills the process group of this process: none of its programs may stay on the screen."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


def unescaped(text):
    result = []
    while text:
        escape = text[:2] if text[:2] in ESCAPES else text[0]
        result.append(ESCAPES.get(escape, escape))
        text = text[len(escape):]
    return "".join(result)


def operator_command(machine, before, after):
    """A shell command that starts the machine's console and the program that operates it. It must be run on a screen."""
    if machine.wine:
        operator = shlex.join([RUNNER, os.path.join(machine.binaries, "console_operator.exe"),
                               machine.native(machine.program)])
        return machine.with_registry(f"{before} && {{ {operator}; {after} < /dev/null; }}")
    operator = shlex.join(["/usr/bin/python3", os.path.join(TOP, "tests", "e2e", "linux", "console_operator.py"),
                           machine.program, os.path.join(machine.binaries, "form_controls")])
    # The session bus and its services write to both streams too; those lines go to a file.
    session = shlex.join(["dbus-run-session", "--", "sh", "-c", f"exec {operator} >&3 2>&4"])
    return f"{session} 3>&1 4>&2 > {shlex.quote(os.path.join(machine.folder, 'session.log'))} 2>&1"


class Console:
    """An open console. The operator carries out each order by mouse and keyboard and answers with what the screen shows."""

    def __init__(self, machine, before="true", after="true"):
        """`before` and `after` are shell commands that run before and after it under Wine, with its registry."""
        self.machine, self.closed = machine, False
        environment = machine.environment_on_screen()
        screen = [os.path.join(TOP, "tests", "with-screen")] + ([] if machine.wine else ["--no-wine"])
        command = [*screen, "sh", "-c", operator_command(machine, before, after)]
        self.process = subprocess.Popen(command, env=environment, cwd=machine.install, start_new_session=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1,
                                        encoding="cp1252" if machine.wine else "utf-8")

    def wait_until_open(self):
        self.answer_of("the start", FIRST_ANSWER)

    def answer_of(self, order, seconds=2 * LONGEST):
        """Reads the operator's answer to an order. Fails if it reports a failure, has ended or does not answer."""
        # The operator writes one line for each order, so nothing is left in this process's buffer, which select ignores.
        if not select.select([self.process.stdout], [], [], seconds)[0]:
            end_group(self.process)
            raise AssertionError(f"{order}: no answer, the program handles no messages")
        line = self.process.stdout.readline().rstrip("\r\n")
        if not line.startswith("= "):
            raise AssertionError(f"{order}: {unescaped(line) or 'the operator has ended'}")
        return line[2:]

    def begin(self, *words):
        """Gives an order and does not wait for the answer. finish() must be called before the next order."""
        self.process.stdin.write("\t".join(map(str, words)) + "\n")
        self.process.stdin.flush()
        return words

    def finish(self, words):
        """Waits for the answer and returns its texts."""
        line = self.answer_of(words)
        return [unescaped(text) for text in line.split("\t")] if line else []

    def do(self, *words):
        """Gives an order and returns the texts of the answer."""
        return self.finish(self.begin(*words))

    def text(self, name):
        return "".join(self.do("text", name))

    def is_open(self, tab):
        return self.do("shown", f"fraMainTab.{tab}") == ["yes"]

    def can_use(self, name):
        return self.do("enabled", name) == ["yes"]

    def row(self, number):
        return self.do("row", "lvwViewData", number)

    def picture(self, name):
        """Takes a picture if KV_PICTURES is set."""
        if os.environ.get("KV_PICTURES") and not self.closed:
            self.take_picture(os.path.join(os.environ["KV_PICTURES"], name + ".png"))

    def take_picture(self, target):
        bitmap = os.path.join(self.machine.folder, "picture.bmp")
        before, shown = None, b""
        while before != shown:  # until the window is painted completely
            before = shown
            time.sleep(0.3)
            self.do("picture", self.machine.native(bitmap))
            with open(bitmap, "rb") as file:
                shown = file.read()
        subprocess.run(["convert", bitmap, "-alpha", "off", "-strip", "+dither", "-colors", "128",
                        "-define", "png:compression-level=9", "PNG8:" + target], check=True)

    def close(self):
        self.do("close")
        self.closed = True

    def end(self):
        """Waits for the program's end."""
        self.do("end")
        self.closed = True

    def leave(self):
        """Ends the operator and its screen, which the next console under Wine needs."""
        if self.process.stdin.closed:
            return
        self.process.stdin.close()
        try:
            self.process.wait(LONGEST)
        except subprocess.TimeoutExpired:
            end_group(self.process)
            raise
        finally:
            self.process.stdout.close()


# Stands between two errors in a message box.
SEPARATOR = "\r\n----------------------------------------------\r\n\r\n"


def record(text, native, state, number=-2147467259):
    """An error of a connection as the message box shows it."""
    return f"Error:\t{number}\r\nDesc:\t[FreeTDS][SQL Server]{text}\r\n\t{native}\r\n\tSQL Server\r\n\t{state}\r\n"


class ConsoleTest(unittest.TestCase):
    """A machine with the program, and two servers, `a` and `b`."""

    dev_server = binaries = None
    wine = False
    # The Replication tab can only be used if the registry has these values.
    SERVER_INSTALLED = (f"[{LOTKEEPER}\\CustomFunctions]\n"
                        '"SqlServerInstalled"="TRUE"\n"UseTransactionalReplication"="FALSE"\n')

    def setUp(self):
        self.folder = fresh_folder()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.machine = Machine(self.binaries, os.path.join(self.folder, "m"), wine=self.wine, screen=True)
        self.machine.add_to_registry(self.SERVER_INSTALLED)
        self.data = {}
        self.a, self.b = (self.start_server(name) for name in ("a", "b"))

    def start_server(self, name):
        server = DevServer(self.dev_server, os.path.join(self.folder, name), self.machine.drives()).start()
        self.addCleanup(server.stop)
        self.data[server] = os.path.join(self.folder, name, "data")
        os.mkdir(self.data[server])
        return server

    def install(self, server, version):
        """Installs the sample database of a version ("v1", "v2"), without the program."""
        def path(which):
            return self.machine.native(self.data[which])
        values = {"server": server.name, "servera": self.a.name, "serverb": self.b.name, "userid": USER,
                  "userida": USER, "useridb": USER, "password": PASSWORD, "passworda": PASSWORD, "passwordb": PASSWORD,
                  "datapath": path(server), "datapatha": path(self.a), "datapathb": path(self.b),
                  "uncrepldatapath": path(server), "uncrepldatapatha": path(self.a), "uncrepldatapathb": path(self.b)}
        folder = os.path.join(TOP, "samples", "sqlscripts", version)
        install_by_pymssql(server, folder, (*TEMPLATES, "Create_Replication_Stored_Procedures"), values)

    def prepare(self, statements):
        """Runs these statements on server `a`."""
        with self.a.connect() as connection, connection.cursor() as cursor:
            for statement in statements:
                cursor.execute(statement)

    def address_of(self, server):
        """The name of the server that is typed into the General tab."""
        return server.name

    def open(self, *around):
        """Opens the console; `around` are Console's `before` and `after`. It is closed when the test ends."""
        console = Console(self.machine, *around)
        self.addCleanup(console.leave)
        console.wait_until_open()
        self.addCleanup(self.picture_of_a_failure, console)
        return console

    def picture_of_a_failure(self, console):
        """Takes a picture if a test ends before it has closed the console."""
        console.picture(self.id().rpartition(".")[2] + "-failed")

    def open_console(self):
        """Opens the console and fills in both servers on its General tab."""
        console = self.open()
        for index, server in enumerate((self.a, self.b)):
            for box, text in (("edtServerName", self.address_of(server)), ("edtUserID", USER),
                              ("edtPassword", PASSWORD), ("edtSQLDataPath", self.machine.native(self.data[server]))):
                console.do("fill", f"{box}.{index}", text)
        return console

    def becomes(self, ask, wanted):
        """Waits until `ask` returns `wanted`; fails after LONGEST."""
        seen = []
        try:
            wait_for(lambda: seen.append(ask()) or seen[-1] == wanted, LONGEST)
        except RuntimeError:
            self.assertEqual(seen[-1], wanted)

    def comes_back(self, console, button):
        """Waits until the command has ended: its button can be used and has the focus."""
        self.becomes(lambda: console.can_use(button), True)
        self.becomes(lambda: console.do("focus", button), ["yes"])

    def in_box(self, text):
        """A text of the program as a message box shows it on this system."""
        return text if self.wine else text.replace("\r\n", "\n")

    def log(self):
        """The log's lines, without those about missing registry keys."""
        return [line for line in self.machine.log_lines() if " : Error in mRegistry::" not in line]

    def files(self, server):
        return sorted(os.listdir(self.data[server]))


def main(test_class, **options):
    """Runs the tests of a file. The arguments are DEVSQLSERVER BIN_FOLDER [--wine] [TEST …]."""
    test_class.dev_server, test_class.binaries = map(os.path.abspath, sys.argv[1:3])
    rest = sys.argv[3:]
    if "--wine" in rest:
        rest.remove("--wine")
        test_class.wine = True
    unittest.main(argv=[sys.argv[0], *rest], **options)

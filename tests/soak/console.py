# Opens the console's real window and uses it, many times in one process, with each toolkit: Qt without a screen, and
# Windows' own controls under Wine.
import os
import re
import select
import shlex
import subprocess

from console_automation import end_group
from test_machine import PASSWORD, RUNNER, TOP, USER, DevServer, Machine

OPENS, SHORT_OPENS = 600, 2
ACTS = 10000  # opens and commands, on each toolkit
LONGEST_OPEN = 300  # seconds
LONGEST_START = 1800  # seconds until the first open: Wine's prefix may have to be made, or another test has the screen
# The allocator keeps some memory. The leak of one window would be more than this within a run.
ALLOWED = {"memory in KB": (4096, 0.1)}

PROBE = ["CREATE DATABASE Probe", "USE Probe", "CREATE TABLE Few (Number int)", "CREATE TABLE Many (Number int, Word varchar(20))",
         "INSERT Few VALUES (1) INSERT Few VALUES (2) INSERT Few VALUES (3)",
         "DECLARE @i int SET @i = 0 WHILE @i < 500 BEGIN INSERT Many VALUES (@i, 'word') SET @i = @i + 1 END",
         "CREATE PROCEDURE spProbe AS SELECT 42"]


# Without these keys the Replication tab cannot be used, and a line is logged each time that it is opened.
REPLICATION_KEYS = ("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Orvik\\Quorlen\\Lotkeeper\\CustomFunctions]\n"
                    '"SqlServerInstalled"="TRUE"\n"UseTransactionalReplication"="FALSE"\n')


def prepare(server, machine):
    with server.connect() as connection, connection.cursor() as cursor:
        for statement in PROBE:
            cursor.execute(statement)
        data, log = (machine.native(os.path.join(machine.data, "Alpha" + end)) for end in ("_data.mdf", "_log.ldf"))
        cursor.execute(f"CREATE DATABASE Alpha ON (NAME = Alpha_data, FILENAME = '{data}') "
                       f"LOG ON (NAME = Alpha_log, FILENAME = '{log}')")


def start(machine, program, settings_file):
    """Starts the program as the leader of a group of processes, with a pipe for its output."""
    if machine.wine:
        more = os.path.join(machine.folder, "more.reg")
        with open(more, "w", encoding="ascii") as file:
            file.write("REGEDIT4\n\n" + REPLICATION_KEYS)
        command = machine.with_registry(shlex.join([RUNNER, program, machine.native(settings_file)]), more)
        words = [os.path.join(TOP, "tests", "with-screen"), "sh", "-c", command]
        environment = machine.wine_environment()
        if "KV_SCREEN" in os.environ:
            environment["DISPLAY"] = os.environ["DISPLAY"]
    else:
        with open(machine.environment["KVLSQLDBMGR_REGISTRY"], "a", encoding="ascii") as file:
            file.write(REPLICATION_KEYS)
        words = [program, settings_file]
        # The toolkit's libraries do not free all memory at the end of the process.
        environment = dict(machine.environment, QT_QPA_PLATFORM="offscreen",
                           LSAN_OPTIONS=f"suppressions={TOP}/tests/leaks_of_others.txt:print_suppressions=0")
    return subprocess.Popen(words, env=environment, cwd=machine.install, stdin=subprocess.DEVNULL,
                            stdout=subprocess.PIPE, text=True, errors="replace", bufsize=1, start_new_session=True)


def lines(process):
    """The lines that the program prints. Raises if none comes for too long."""
    longest = LONGEST_START
    while True:
        if not select.select([process.stdout], [], [], longest)[0]:
            raise RuntimeError(f"nothing has happened for {longest} s")
        line = process.stdout.readline()
        if not line:
            return
        yield line.rstrip("\r\n")
        longest = LONGEST_OPEN


def watch(part, toolkit, process, machine):
    """Counts the opens and commands of a run and records its figures, to its end."""
    series = {}
    log = part.measure(f"{toolkit}: lines of the log", "lines", 0)
    acts = 0
    for line in lines(process):
        match = re.fullmatch(r"at (\d+) (\d+) (.*)", line)
        if match is None:
            part.fail(f"{toolkit}: {line}")
            continue
        now = int(match.group(1)) + int(match.group(2))
        part.count(f"opens and commands with {toolkit}", now - acts)
        acts = now
        for name, figure in (pair.split("=") for pair in match.group(3).split("; ")):
            if name not in series:
                series[name] = part.measure(f"{toolkit}: {name}", "", *ALLOWED.get(name, (0,)))
            series[name].take(int(figure))
        log.take(log_lines(machine))
        part.progress()
    part.check(process.wait(60) == 0, f"{toolkit}: the program ended with {process.returncode}")
    part.check(log_lines(machine) == 0, f"{toolkit}: the log has lines: {log_text(machine)[:400]}")


def log_text(machine):
    text = ""
    for name in os.listdir(machine.log_folder):
        with open(os.path.join(machine.log_folder, name), encoding="cp1252") as file:
            text += file.read()
    return text


def log_lines(machine):
    return log_text(machine).count("\n")


def run_on(part, settings, toolkit, binaries, wine):
    opens = SHORT_OPENS if settings.short else OPENS
    with settings.folder() as folder:
        machine = Machine(binaries, os.path.join(folder, "machine"), wine=wine, screen=wine)
        with DevServer(settings.dev_server, os.path.join(folder, "server"), machine.drives()) as server:
            prepare(server, machine)
            settings_file = os.path.join(folder, "settings.txt")
            with open(settings_file, "w", encoding="ascii") as file:
                file.write("\n".join([server.name, server.name, USER, PASSWORD, machine.native(machine.data),
                                      str(opens)]) + "\n")
            program = os.path.join(binaries, "console_soak" + (".exe" if wine else ""))
            process = start(machine, program, settings_file)
            try:
                watch(part, toolkit, process, machine)
            finally:
                end_group(process)
                process.stdout.close()


def run(part, settings):
    toolkit, binaries, wine = ("Qt", settings.binaries, False) if part.name == "console" else \
        ("Win32", settings.windows, True)
    part.want(f"opens and commands with {toolkit}", ACTS)
    run_on(part, settings, toolkit, binaries, wine)

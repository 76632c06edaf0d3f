# Installs and upgrades again and again on one pair of servers. Each run must leave the expected state, and neither the
# servers nor the machines nor the logs may grow.
import contextlib
import os
import resource
import subprocess

import processes
from test_machine import PACKAGES, PASSWORD, RUNNER, USER, DevServer, Machine, wait_for
from unattended_install_test import UnattendedTestCase
from upgraded_samples_test import USE_OF_VERSION_1

TEMPORARY = "TmpBatchUpgradeDb"
RUNS, SHORT_RUNS = 1000, 4  # of the program; an installation and an upgrade are two
WINDOWS_RUNS = 100
LONGEST_RUN = 300  # seconds
BATCHES = 4  # in the database after the use of version 1
QUIET_SECONDS = 60  # the longest time in which a server closes the files of its last clients
SAME = 10  # equal figures in a row that show that it has closed them; they are taken 20 ms apart


class Node:
    """A server of the pair, and the machines on which the program runs for it."""

    def __init__(self, part, settings, folder, windows):
        self.server = DevServer(settings.dev_server, os.path.join(folder, "server"), ("Z=/",))
        self.machines = {"Linux": Machine(settings.binaries, os.path.join(folder, "linux"))}
        if windows:
            self.machines["Windows"] = Machine(settings.windows, os.path.join(folder, "windows"), wine=True)
        name = os.path.basename(folder)
        self.memory = part.measure(f"memory of server {name}", "KB", 8192, 0.1)
        self.descriptors = part.measure(f"open files of server {name}", "files", 0)
        self.files = part.measure(f"files of server {name} and of its machines", "files", 0)
        self.log = part.measure(f"lines of the logs of {name}", "lines", 0)
        self.folder = folder

    def drop(self):
        for name in self.server.column("SELECT name FROM master.dbo.sysdatabases WHERE name IN ('Batch', "
                                       f"'{TEMPORARY}')"):
            self.server.ask(f"ALTER DATABASE [{name}] SET SINGLE_USER WITH ROLLBACK IMMEDIATE DROP DATABASE [{name}]")
        self.server.ask("DELETE msdb.dbo.sysdtspackages")

    def take_measures(self):
        process = self.server.process.pid
        self.descriptors.take(open_files_at_rest(process))
        self.memory.take(processes.resident_kilobytes(process))
        self.files.take(sum(len(files) for _, _, files in os.walk(self.folder)))
        self.log.take(sum(len(machine.log_lines()) for machine in self.machines.values()))


def open_files_at_rest(process):
    """The number of open files, once it stays the same: a server closes the files of a client a little after it has gone."""
    seen = []
    wait_for(lambda: seen.append(processes.open_files(process)) or
             (len(seen) > SAME and len(set(seen[-SAME:])) == 1), QUIET_SECONDS)
    return seen[-1]


@contextlib.contextmanager
def package_classes(settings, wanted):
    """Registers the tests' package objects under Wine while the runs take place."""
    if not wanted:
        yield
        return
    UnattendedTestCase.binaries = settings.windows
    UnattendedTestCase.register_packages("/s")
    try:
        yield
    finally:
        UnattendedTestCase.register_packages("/s", "/u")


def expect(part, what, seen, wanted):
    part.check(seen == wanted, f"{what}: {seen!r} and not {wanted!r}")


def packages(server):
    return server.column("SELECT name FROM msdb.dbo.sysdtspackages")


def install(part, node, system):
    machine = node.machines[system]
    machine.set_scripts("v1")
    node.drop()
    machine.run(*machine.install_arguments(node.server, "/installdb", "/installdts"), timeout=LONGEST_RUN)
    part.count(f"installations on {system}")
    expect(part, "version installed", node.server.ask(
        "SELECT Value FROM LKConfig WHERE ParameterName = N'DatabaseVersion'", "Batch"), [("1",)])
    expect(part, "log", machine.log_lines(), [])
    expect(part, "packages", packages(node.server), sorted(PACKAGES))


def upgrade(part, node, system):
    machine = node.machines[system]
    machine.set_scripts("v2")
    for statement in USE_OF_VERSION_1:
        node.server.ask(statement, "Batch")
    machine.run("/upgradedb", "/scriptfolder", machine.native(machine.scripts), timeout=LONGEST_RUN)
    part.count(f"upgrades on {system}")
    for database, version in (("Batch", "2"), (TEMPORARY, "1")):
        expect(part, f"version of {database}", node.server.ask(
            "SELECT Value FROM LKConfig WHERE ParameterName = N'DatabaseVersion'", database), [(version,)])
        expect(part, f"batches in {database}", node.server.ask("SELECT COUNT(*) FROM Batches", database), [(BATCHES,)])
    expect(part, "log", machine.log_lines(), [])


def left_in_temporary_folder():
    return len(os.listdir(os.environ["TMPDIR"]))


def wine_server(part):
    """The process of Wine's server. It outlives the programs, so anything of theirs that is not freed shows in its figures."""
    for process, words in processes.running():
        if words and os.path.basename(words[0]).startswith(b"wineserver") and \
                processes.with_prefix(process, wine_prefix()):
            return process
    part.fail("no server of Wine is running")
    return None


def wine_prefix():
    return os.environ.get("WINEPREFIX", os.path.join(os.path.dirname(os.path.dirname(RUNNER)), "build", "wine"))


def rounds(settings):
    """The system of each round; a round is an installation and an upgrade. One in ten is on Windows, if there is one."""
    count = (SHORT_RUNS if settings.short else RUNS) // 2
    windows = 0 if settings.short or not settings.windows else WINDOWS_RUNS // 2
    every = count // windows if windows else 0
    return ["Windows" if windows and number % every == 0 else "Linux" for number in range(count)]


def run(part, settings):
    part.want("installations and upgrades", RUNS)
    part.want("of them under Wine", WINDOWS_RUNS)
    plan = rounds(settings)
    programs = part.measure("highest memory of a run of the program", "KB", 4096, 0.1)
    temporary = part.measure("files in the temporary folder", "files", 0)
    wine = [part.measure("memory of Wine's server", "KB", 4096, 0.2), part.measure("open files of Wine's server", "files", 4)]
    with settings.folder() as folder, package_classes(settings, "Windows" in plan):
        nodes = [Node(part, settings, os.path.join(folder, name), "Windows" in plan) for name in ("A", "B")]
        with nodes[0].server, nodes[1].server:
            for number, system in enumerate(plan):
                node = nodes[number % 2 if system == "Linux" else (number // 2) % 2]
                one_round(part, node, system)
                node.take_measures()
                programs.take(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)
                temporary.take(left_in_temporary_folder())
                if system == "Windows" and (process := wine_server(part)):
                    for series, figure in zip(wine, (processes.resident_kilobytes(process), processes.open_files(process))):
                        series.take(figure)
                part.progress()
                if len(part.failures) > 20:
                    break
        for node in nodes:
            for machine in node.machines.values():
                machine.forget_registry()


def one_round(part, node, system):
    machine = node.machines[system]
    machine.set_registry(login=(node.server.name, USER, PASSWORD))
    for step in (install, upgrade):
        try:
            step(part, node, system)
        except subprocess.TimeoutExpired:
            part.fail(f"{step.__name__} on {system} took more than {LONGEST_RUN} s")
        part.count("installations and upgrades")
        if system == "Windows":
            part.count("of them under Wine")

# Measures how much time the program adds to the work of a server. Listing 200 databases is compared with pymssql, and the
# unattended upgrade with the same scripts run by hand.
#
#   database_bench.py DEVSQLSERVER BIN_FOLDER
import os
import shutil
import statistics
import subprocess
import sys
import time

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(TOP, "tests", "e2e")]

import pymssql  # noqa: E402
from test_machine import PASSWORD, USER, DevServer, Machine, fresh_folder  # noqa: E402

DATABASES, LISTINGS, ROUNDS, UPGRADES = 200, 20, 7, 24
TEMPORARY = "TmpBatchUpgradeDb"
SCRIPTS = ("Create_Batch_Database", "Create_Batch_Stored_Procedures", "Insert_Default_Data")


def timed(work):
    begin = time.perf_counter()
    work()
    return time.perf_counter() - begin


def listings(server, machine, binaries):
    """Lists the databases in both ways by turns, and prints the best round of each: other work of the machine only makes a
    round slower, never faster."""
    for number in range(DATABASES):
        server.ask(f"CREATE DATABASE [Database {number:03}]")
    command = [os.path.join(binaries, "catalogue_bench"), server.name, USER, PASSWORD, str(LISTINGS)]
    ours, theirs = [], []
    for _ in range(ROUNDS):
        run = subprocess.run(command, env=machine.environment, capture_output=True, text=True, check=True)
        count, seconds = run.stdout.split()
        ours.append(float(seconds))

        def by_pymssql():
            for _ in range(LISTINGS):
                rows = server.ask("exec sp_helpdb")
                assert len(rows) == int(count), (len(rows), count)

        theirs.append(timed(by_pymssql) / LISTINGS)
    print(f"GetDatabases, {count} databases: {min(ours) * 1000:.2f} ms; pymssql, the same rows: {min(theirs) * 1000:.2f} ms; "
          f"ratio {min(ours) / min(theirs):.2f}")
    for number in range(DATABASES):
        server.ask(f"DROP DATABASE [Database {number:03}]")


class Upgrade:
    """A database of version 1, which is restored before every run, and the ways to upgrade it to version 2."""

    def __init__(self, server, machine):
        self.server, self.machine = server, machine
        machine.set_registry(login=(server.name, USER, PASSWORD))
        machine.run(*machine.install_arguments(server, "/installdb"))
        machine.set_scripts("v2")
        for name in os.listdir(machine.scripts):
            if name.endswith(".dts"):  # a package has no script to run by hand
                os.remove(os.path.join(machine.scripts, name))
        server.ask("ALTER DATABASE [Batch] SET SINGLE_USER WITH ROLLBACK IMMEDIATE EXEC sp_detach_db N'Batch'")
        self.kept = machine.data + " kept"
        shutil.copytree(machine.data, self.kept)

    def put_back(self):
        for name in ("Batch", TEMPORARY):
            self.server.ask(f"IF DB_ID('{name}') IS NOT NULL DROP DATABASE [{name}]")
        shutil.rmtree(self.machine.data)
        shutil.copytree(self.kept, self.machine.data)
        self.server.ask(f"EXEC sp_attach_db N'Batch', {self.file('Batch_data.mdf')}, {self.file('Batch_log.ldf')}")

    def file(self, name):
        return "N'" + self.machine.data.replace("/", "\\") + "\\" + name + "'"

    def check(self):
        versions = [self.server.ask("SELECT Value FROM LKConfig WHERE ParameterName = N'DatabaseVersion'", name)[0][0]
                    for name in ("Batch", TEMPORARY)]
        assert versions == ["2", "1"], versions
        assert self.machine.log_lines() == [], self.machine.log_lines()

    def whole(self):
        self.machine.run("/upgradedb", "/scriptfolder", self.machine.scripts)

    def osql(self, *script, statements=""):
        """Runs the query tool with a script or with these statements."""
        if statements:
            script = (os.path.join(self.machine.install, "Data", "by hand.sql"),)
            with open(script[0], "w", encoding="cp1252") as file:
                file.write(statements)
        subprocess.run([self.machine.tool, "-S", self.server.name, "-U", USER, "-P", PASSWORD, "-i", script[0], "-o",
                        script[0] + ".out"], env=self.machine.environment, check=False)

    def bsqldb(self, *script, statements=""):
        if script:
            with open(script[0], encoding="cp1252") as text:
                statements = text.read()
        self.server.ask_bsqldb(statements)

    def by_hand(self, tool):
        """Upgrades as an operator would with the tool. The tool is started for the statements before the move of the files,
        for those after it, for each script that the program has modified, and for the statements after the scripts.
        Returns the seconds that the scripts took."""
        batch, temporary = "Batch", TEMPORARY
        run = getattr(self, tool)
        run(statements="\nGO\n".join((
            f"IF DB_ID('{temporary}') IS NOT NULL DROP DATABASE [{temporary}]",
            f"ALTER DATABASE [{batch}] SET SINGLE_USER WITH ROLLBACK IMMEDIATE",
            f"ALTER DATABASE [{batch}] SET MULTI_USER",
            f"ALTER DATABASE {batch} MODIFY NAME = {temporary}",
            f"ALTER DATABASE {temporary} MODIFY FILE (NAME=Batch_data, NEWNAME={temporary}_data)",
            f"ALTER DATABASE {temporary} MODIFY FILE (NAME=Batch_log, NEWNAME={temporary}_log)",
            f"EXEC sp_detach_db N'{temporary}', N'true'", "")))
        for end in ("_data.mdf", "_log.ldf"):
            old, new = (os.path.join(self.machine.data, name + end) for name in (batch, temporary))
            shutil.copyfile(old, new)
            os.remove(old)
        run(statements=f"EXEC sp_attach_db N'{temporary}', {self.file(temporary + '_data.mdf')}, "
                       f"{self.file(temporary + '_log.ldf')}\nGO\n")
        scripts = timed(lambda: [run(os.path.join(self.machine.install, "Data", name + ".sql")) for name in SCRIPTS])
        run(statements=f"USE Batch\nGO\nEXEC spUninstallReplication\nGO\nEXEC spUpgradeDatabase 1, 2, N'{TEMPORARY}', "
                       f"N'Batch', N'{USER}', N'{PASSWORD}'\nGO\n")
        return scripts

    def round(self, first):
        """Runs each way once, one right after the other, so that a busy time of the machine affects all of them. `first` is
        the way to begin with. Returns for each way its seconds, and the seconds of the scripts in it."""
        ways = {"program": self.whole, "osql": lambda: self.by_hand("osql"), "bsqldb": lambda: self.by_hand("bsqldb")}
        names = list(ways)
        taken = {}
        for name in names[first:] + names[:first]:
            self.put_back()
            begin = time.perf_counter()
            scripts = ways[name]()
            taken[name] = (time.perf_counter() - begin, scripts)
            self.check()
        return taken


def upgrades(server, machine):
    upgrade = Upgrade(server, machine)
    upgrade.round(0)  # not measured: files are read from the disk for the first time
    rounds = [upgrade.round(number % 3) for number in range(UPGRADES)]
    print(f"/upgradedb, medians of {UPGRADES} rounds: {1000 * statistics.median(taken['program'][0] for taken in rounds):.0f} ms")
    for tool in ("osql", "bsqldb"):
        # The program runs the scripts with osql, so the time of its scripts is that of the run by hand with osql in the
        # same round.
        added = sorted((taken["program"][0] - taken["osql"][1] - (taken[tool][0] - taken[tool][1])) / taken["program"][0]
                       for taken in rounds)
        seconds, scripts = (1000 * statistics.median(taken[tool][part] for taken in rounds) for part in (0, 1))
        print(f"  by hand with {tool}, a start for each script and for the statements between them: {seconds:.0f} ms, the "
              f"scripts {scripts:.0f} of it; without the scripts the program adds {100 * statistics.median(added):.1f} % of "
              f"its whole (wanted: below 10; half of the rounds lie between {100 * added[UPGRADES // 4]:.1f} and "
              f"{100 * added[-1 - UPGRADES // 4]:.1f})")


def main(dev_server, binaries):
    folder = fresh_folder()
    try:
        machine = Machine(binaries, os.path.join(folder, "machine"))
        with DevServer(dev_server, os.path.join(folder, "server")) as server:
            listings(server, machine, binaries)
            upgrades(server, machine)
    finally:
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    print(f"pymssql {pymssql.__version__}")
    main(*map(os.path.abspath, sys.argv[1:3]))

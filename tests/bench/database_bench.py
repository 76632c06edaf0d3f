# What the program adds to the work of a server: 200 databases listed, against pymssql; the unattended upgrade, against the
# same scripts run by hand.
#
#   database_bench.py DEVSQLSERVER BIN_FOLDER
import os
import shutil
import subprocess
import sys
import time

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(TOP, "tests", "e2e")]

import pymssql  # noqa: E402
from plant import PASSWORD, USER, DevServer, Machine, fresh_folder  # noqa: E402

# The best of several rounds in turn: whatever else the machine does makes a round slower, never faster.
DATABASES, LISTINGS, ROUNDS = 200, 20, 7
TEMPORARY = "TmpBatchUpgradeDb"
SCRIPTS = ("Create_Batch_Database", "Create_Batch_Stored_Procedures", "Insert_Default_Data")


def timed(work):
    begin = time.perf_counter()
    work()
    return time.perf_counter() - begin


def listings(server, machine, binaries):
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
    """Version 1, put back for every run, and the ways to version 2."""

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

    def scripts_by(self, tool):
        """The scripts as the program has modified them, one start of the tool for each."""
        for name in SCRIPTS:
            script = os.path.join(self.machine.install, "Data", name + ".sql")
            getattr(self, tool)(script)

    def osql(self, script):
        subprocess.run([self.machine.tool, "-S", self.server.name, "-U", USER, "-P", PASSWORD, "-i", script, "-o",
                        script + ".out"], env=self.machine.environment, check=False)

    def bsqldb(self, script):
        with open(script, encoding="cp1252") as text:
            self.server.ask_bsqldb(text.read())

    def statements(self, *batches):
        with self.server.connect() as connection, connection.cursor() as cursor:
            for batch in batches:
                cursor.execute(batch)
                while cursor.nextset():
                    pass

    def aside(self):
        """Removing and renaming, as an operator would type it."""
        batch, temporary = "Batch", TEMPORARY
        self.statements(f"IF DB_ID('{temporary}') IS NOT NULL DROP DATABASE [{temporary}]",
                        f"ALTER DATABASE [{batch}] SET SINGLE_USER WITH ROLLBACK IMMEDIATE",
                        f"ALTER DATABASE [{batch}] SET MULTI_USER",
                        f"ALTER DATABASE {batch} MODIFY NAME = {temporary}",
                        f"ALTER DATABASE {temporary} MODIFY FILE (NAME=Batch_data, NEWNAME={temporary}_data)",
                        f"ALTER DATABASE {temporary} MODIFY FILE (NAME=Batch_log, NEWNAME={temporary}_log)",
                        f"sp_detach_db N'{temporary}', N'true'")
        for end in ("_data.mdf", "_log.ldf"):
            old, new = (os.path.join(self.machine.data, name + end) for name in (batch, temporary))
            shutil.copyfile(old, new)
            os.remove(old)
        self.statements(f"sp_attach_db N'{temporary}', {self.file(temporary + '_data.mdf')}, "
                        f"{self.file(temporary + '_log.ldf')}")

    def take_over(self):
        self.statements("USE Batch", "spUninstallReplication",
                        f"spUpgradeDatabase 1, 2, N'{TEMPORARY}', N'Batch', N'{USER}', N'{PASSWORD}'")

    def measure(self):
        runs = []
        for _ in range(ROUNDS):
            run = {}
            self.put_back()
            run["whole"] = timed(self.whole)
            self.check()
            for tool in ("osql", "bsqldb"):
                self.put_back()
                run["aside " + tool] = timed(self.aside)
                run[tool] = timed(lambda: self.scripts_by(tool))
                run["over " + tool] = timed(self.take_over)
                self.check()
            runs.append(run)
        return {name: min(run[name] for run in runs) for name in runs[0]}


def upgrades(server, machine):
    times = Upgrade(server, machine).measure()
    whole = times["whole"]
    print(f"/upgradedb: {whole * 1000:.0f} ms, best of {ROUNDS}")
    for tool in ("osql", "bsqldb"):
        statements = times["aside " + tool] + times["over " + tool]
        print(f"  by hand: scripts by {tool} {times[tool] * 1000:.0f} ms, statements by pymssql {statements * 1000:.0f} ms; "
              f"ratio {whole / (times[tool] + statements):.2f}")
    added = whole - times["osql"] - times["aside osql"] - times["over osql"]
    print(f"  the program adds {added * 1000:.0f} ms, {100 * added / whole:.1f} % of the whole")


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

# The run of ./demo: prints each step, and checks every result on the servers before it reports it.
#
#   demo.py BIN_FOLDER
import os
import re
import shutil
import subprocess
import sys

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path[:0] = [os.path.join(TOP, "tests", "e2e"), os.path.join(TOP, "tests", "samples")]
from test_machine import PACKAGES, PASSWORD, TEMPLATES, USER, DevServer, Machine  # noqa: E402
from upgraded_samples_test import RENAMED, USE_OF_VERSION_1  # noqa: E402

TEMPORARY = "TmpBatchUpgradeDb"
# Tables that a synchronisation does not copy: a server's settings, and figures that it calculates itself.
OWN_TABLES = ("LKConfig", "BatchSummary")


def heading(text):
    print(f"\n== {text}", flush=True)


def check(claim, holds):
    """Prints a result that was checked; ends the run if it does not hold."""
    print(f"   {'ok    ' if holds else 'FAILED'} {claim}", flush=True)
    if not holds:
        sys.exit(1)


class Node:
    """A computer of the pair, with its server and the program."""

    def __init__(self, name, binaries, folder):
        self.name = name
        self.machine = Machine(binaries, os.path.join(folder, "machine"))
        self.server = DevServer(os.path.join(binaries, "devsqlserver"), os.path.join(folder, "server"))

    def databases(self):
        return self.server.ask_bsqldb("SELECT name FROM master.dbo.sysdatabases ORDER BY name\n")

    def packages(self):
        return self.server.ask_bsqldb("SELECT name FROM msdb.dbo.sysdtspackages ORDER BY name\n")

    def files(self):
        """The files of the data folder, without the two auxiliary files that the server keeps for a database in use."""
        return sorted(name for name in os.listdir(self.machine.data) if not name.endswith(("-wal", "-shm")))

    def version(self, database="Batch"):
        lines = self.server.ask_bsqldb("SELECT Value FROM LKConfig WHERE ParameterName = 'DatabaseVersion'\n", database)
        return lines[0] if lines else "(none)"

    def tables(self, database="Batch"):
        return self.server.column("SELECT name FROM sysobjects WHERE xtype = 'U'", database)

    def count(self, table, database="Batch"):
        return int(self.server.ask_bsqldb(f"SELECT COUNT(*) FROM [{table}]\n", database)[0])

    def columns(self, table, database="Batch"):
        return [row[0] for row in self.server.ask("SELECT COLUMN_NAME FROM INFORMATION_SCHEMA.COLUMNS WHERE TABLE_NAME = "
                                                  f"'{table}' AND DATA_TYPE <> 'timestamp'", database)]

    def rows(self, table, columns, database="Batch"):
        names = ", ".join(f"[{name}]" for name in columns)
        return sorted(self.server.ask(f"SELECT {names} FROM dbo.[{table}]", database), key=repr)

    def show(self):
        for database in self.databases():
            if database in ("Batch", TEMPORARY):
                print(f"   {self.name}: {database}, version {self.version(database)}, "
                      f"{sum(self.count(table, database) for table in self.tables(database))} rows in "
                      f"{len(self.tables(database))} tables")
        print(f"   {self.name}: databases {', '.join(self.databases())}")
        print(f"   {self.name}: packages  {', '.join(self.packages()) or '(none)'}")
        print(f"   {self.name}: files in the data folder {', '.join(self.files()) or '(none)'}", flush=True)

    def run_program(self, *arguments):
        shown = [f'"{argument}"' if " " in argument else argument for argument in arguments]
        print(f"   {self.name}: KVLSQLDbMgr " + " ".join(shown), flush=True)
        for line in self.machine.run(*arguments, timeout=600).splitlines():
            print("   | " + line, flush=True)

    def check_quiet(self, lines=()):
        """Checks that the log has only these lines and that the query tool reported no error."""
        check(f"{self.name}: the program logged no failure", self.machine.log_lines() == list(lines))
        for name in TEMPLATES:
            check(f"{self.name}: the query tool reported no error for {name}.sql",
                  not re.search(r"Msg \d+, Level 1[1-9]", self.machine.output(name)))

    def in_template(self, name, kind):
        """The names of the objects of this kind that a script template creates."""
        with open(os.path.join(self.machine.scripts, name + ".sql"), encoding="cp1252") as file:
            return sorted(re.findall(rf"(?mi)\bCREATE {kind} \[?dbo\]?\.\[?(\w+)\]?", file.read()))


def install(node):
    machine, server = node.machine, node.server
    node.show()
    check(f'{node.name}: there is no database "Batch"', "Batch" not in node.databases())
    node.run_program(*machine.install_arguments(server, "/installdb", "/installsp", "/installdts"))
    node.show()
    node.check_quiet()
    check(f"{node.name}: data file and log file are in the data folder", node.files() == ["Batch_data.mdf", "Batch_log.ldf"])
    tables = sorted(node.in_template("Create_Batch_Database", "TABLE") +
                    node.in_template("Create_Batch_Stored_Procedures", "TABLE"))
    check(f"{node.name}: it has the {len(tables)} tables of the templates", node.tables() == tables)
    procedures = node.in_template("Create_Batch_Stored_Procedures", "PROCEDURE")
    check(f"{node.name}: it has the {len(procedures)} stored procedures of the template",
          server.column("SELECT name FROM sysobjects WHERE xtype = 'P'", "Batch") == procedures)
    check(f"{node.name}: DatabaseVersion in LKConfig is 1", node.version() == "1")
    check(f"{node.name}: the {len(PACKAGES)} packages are stored", sorted(node.packages()) == sorted(PACKAGES))
    check(f"{node.name}: it has the default data", node.count("LKConfig") > 1 and node.count("Units") == 4)


def use(node):
    """Adds the batches of some days, so that there are data to upgrade."""
    for statement in USE_OF_VERSION_1:
        node.server.ask(statement, "Batch")
    for table in node.tables():
        print(f"     {table:<24} {node.count(table):>6}")
    check(f"{node.name}: every table has rows", all(node.count(table) for table in node.tables()))


def upgrade(node):
    old = {table: node.rows(table, node.columns(table)) for table in node.tables()}
    node.machine.set_scripts("v2")
    node.machine.set_registry(login=(node.server.name, USER, PASSWORD))
    print(f"   {node.name}: before")
    node.show()
    node.run_program("/upgradedb", "/scriptfolder", node.machine.scripts)
    print(f"   {node.name}: after")
    node.show()
    node.check_quiet()
    check(f"{node.name}: version 1 is renamed to {TEMPORARY}, Batch is version 2",
          (node.version(TEMPORARY), node.version()) == ("1", "2"))
    check(f"{node.name}: both databases have their files in the folder of the old ones", node.files() ==
          ["Batch_data.mdf", "Batch_log.ldf", TEMPORARY + "_data.mdf", TEMPORARY + "_log.ldf"])
    check(f"{node.name}: {TEMPORARY} has the rows that Batch had",
          {table: node.rows(table, node.columns(table, TEMPORARY), TEMPORARY) for table in node.tables(TEMPORARY)} == old)
    check_carried_over(node, old)


def check_carried_over(node, old):
    print(f"     {'table':<24} {'version 1':>10} {'version 2':>10}")
    for table in sorted(old):
        print(f"     {table:<24} {len(old[table]):>10} {node.count(table):>10}", flush=True)
    for table in sorted(set(old) - {"Batches", "Events", "LKConfig"}):
        names = [RENAMED.get(table, {}).get(name, name) for name in node.columns(table, TEMPORARY)]
        check(f"{node.name}: {table} has the same rows", node.rows(table, names) == old[table])
    overview = ["BatchName", "RecipeName", "UnitName", "OrderNo", "CustomerName", "StatusText", "StartTime", "EndTime",
                "Cost", "Yield"]
    check(f"{node.name}: Batches and the new table Orders together have the data that Batches had",
          node.rows("vBatchOverview", overview) == node.rows("vBatchOverview", overview, TEMPORARY))
    check(f"{node.name}: Events has the old events and one of the upgrade", node.count("Events") == len(old["Events"]) + 1)


class Pair:
    """The two nodes, operated from Server A. The program's command line cannot do what the console's tabs do, so a small
    program calls the same managers."""

    def __init__(self, a, b):
        self.a, self.b = a, b
        self.tool = os.path.join(a.machine.install, "server_pair_tool")
        shutil.copy(os.path.join(a.machine.binaries, "server_pair_tool"), self.tool)
        self.settings = os.path.join(a.machine.folder, "pair.txt")
        with open(self.settings, "w") as file:
            for letter, node in (("A", a), ("B", b)):
                file.write(f"Server{letter}={node.server.name}\nUser{letter}={USER}\nPassword{letter}={PASSWORD}\n"
                           f"SQLDataPath{letter}={node.machine.data}\nSQLUNCReplDataPath{letter}={node.machine.data}\n")
            file.write(f"ScriptFolder={a.machine.scripts}\n")

    def run(self, selected, *command):
        """Runs an operation with the node as the selected server; returns its output."""
        letter = "a" if selected is self.a else "b"
        print(f"   {selected.name} selected: {' '.join(command)}", flush=True)
        run = subprocess.run([self.tool, self.settings, letter, *command], env=self.a.machine.environment,
                             stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace", timeout=600)
        for line in run.stderr.splitlines():
            print("   | " + line, flush=True)
        check(f"{selected.name}: {command[0]} ran to its end", run.returncode == 0)
        return run.stdout.strip()

    def other(self, node):
        return self.b if node is self.a else self.a


def differing(a, b):
    """The tables whose rows differ on two nodes."""
    return [table for table in a.tables() if table not in OWN_TABLES and
            a.rows(table, a.columns(table)) != b.rows(table, b.columns(table))]


def synchronise(pair, source):
    destination = pair.other(source)
    print(f"   tables that differ before: {', '.join(differing(source, destination)) or '(none)'}")
    wanted = {table: source.rows(table, source.columns(table)) for table in source.tables()}
    pair.run(source, "synchronize", "Batch", "Batch")
    tables = [table for table in source.tables() if table not in OWN_TABLES]
    print(f"     {'table':<24} {source.name:>10} {destination.name:>10}")
    for table in tables:
        print(f"     {table:<24} {source.count(table):>10} {destination.count(table):>10}", flush=True)
    check(f"the {len(tables)} tables of {destination.name} have the rows of {source.name}",
          all(destination.rows(table, destination.columns(table)) == wanted[table] for table in tables))
    check(f"{destination.name} keeps its own settings",
          destination.server.ask("SELECT Value FROM LKConfig WHERE ParameterName = 'ServerA'", "Batch") ==
          [(destination.server.name,)])


def replicate(pair):
    """Installs replication, synchronises, and uninstalls replication."""
    a, b = pair.a, pair.b
    jobs = ("SELECT j.name FROM msdb.dbo.sysjobs j INNER JOIN msdb.dbo.syscategories c ON c.category_id = j.category_id "
            "WHERE c.category_class = 1 AND c.name = N'REPL-Distribution'")
    pair.run(a, "create-replication-procedures")
    check(f"{a.name}: the query tool reported no error",
          not re.search(r"Msg \d+, Level 1[1-9]", a.machine.output("Create_Replication_Stored_Procedures")))
    check("replication is not installed", pair.run(a, "is-replication-installed", "Batch") == "not installed" and not a.server.ask(jobs))
    pair.run(a, "install-replication", "Batch")
    print("   a development server stores publications, subscriptions and jobs; it does not copy rows by itself")
    job = a.server.ask(jobs)
    check("replication is installed", pair.run(a, "is-replication-installed", "Batch") == "installed" and len(job) == 1)
    print(f"   {a.name}: job {job[0][0]}")
    articles = a.server.column("SELECT name FROM sysarticles", "Batch")
    check(f"{len(articles)} tables are published to {b.name}",
          articles == [table for table in a.tables() if table not in OWN_TABLES])
    a.server.ask("EXEC dbo.spEndBatch 1001, 480", "Batch")
    synchronise(pair, a)
    check("the synchronisation uninstalled replication and installed it again", a.server.ask(jobs) == job)
    pair.run(a, "uninstall-replication", "Batch")
    check("replication is not installed", pair.run(a, "is-replication-installed", "Batch") == "not installed" and not a.server.ask(jobs))


def main():
    binaries = os.path.abspath(sys.argv[1])
    folder = os.path.abspath("build/demo")
    shutil.rmtree(folder, ignore_errors=True)
    a, b = (Node(f"Server {name}", binaries, os.path.join(folder, name)) for name in "AB")
    heading("Two development servers, started for this run")
    with a.server, b.server:
        for node in (a, b):
            print(f"   {node.name}: {node.server.name}, login {USER}")
        print("   " + " ".join(a.server.ask_bsqldb("SELECT @@VERSION\n"))[:110])
        heading("The unattended installation of version 1 on both (checked with bsqldb and pymssql)")
        for node in (a, b):
            install(node)
        heading("Server A is used for a while")
        use(a)
        heading("The unattended upgrade to version 2 on both")
        for node in (a, b):
            upgrade(node)
        pair = Pair(a, b)
        heading("Server A is synchronised with Server B")
        synchronise(pair, a)
        heading("Server B is synchronised with Server A, after some work on Server B")
        b.server.ask("EXEC dbo.spStartBatch N'B-9', 1, 3, 250, 'A-19', N'Nord', 3 EXEC dbo.spBlockLot 'W-0001'", "Batch")
        synchronise(pair, b)
        heading("Replication from Server A to Server B")
        replicate(pair)
    heading("Done: everything above was verified, and the servers are stopped.")
    for node in (a, b):
        print(f"   {node.name}: the modified scripts and the query tool's output are in "
              f"{os.path.relpath(node.machine.install)}/Data")


if __name__ == "__main__":
    main()

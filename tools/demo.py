# The demo's run: what it does is printed as it goes, and every claim is asked over the wire before it is made.
#
#   demo.py BIN_FOLDER
import os
import re
import shutil
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
from plant import PACKAGES, TEMPLATES, USER, DevServer, Machine  # noqa: E402


def heading(text):
    print(f"\n== {text}", flush=True)


def check(claim, holds):
    print(f"   {'ok    ' if holds else 'FAILED'} {claim}", flush=True)
    if not holds:
        sys.exit(1)


def databases(server):
    return server.ask_bsqldb("SELECT name FROM master.dbo.sysdatabases ORDER BY name\n")


def packages(server):
    return server.ask_bsqldb("SELECT name FROM msdb.dbo.sysdtspackages ORDER BY name\n")


def show_server(server, machine):
    print(f"   databases: {', '.join(databases(server))}")
    print(f"   packages:  {', '.join(packages(server)) or '(none)'}")
    print(f"   files in the data folder: {', '.join(sorted(os.listdir(machine.data))) or '(none)'}", flush=True)


def run_program(machine, arguments):
    shown = [f'"{argument}"' if " " in argument else argument for argument in arguments]
    print("   KVLSQLDbMgr " + " ".join(shown), flush=True)
    result = subprocess.run([machine.program, *arguments], env=machine.environment, stdin=subprocess.DEVNULL,
                            stderr=subprocess.PIPE, text=True, cwd=machine.install, timeout=600)
    for line in result.stderr.splitlines():
        print("   | " + line, flush=True)


def template(machine, name):
    with open(os.path.join(machine.scripts, name + ".sql"), encoding="cp1252") as file:
        return file.read()


def in_template(machine, name, kind):
    return sorted(re.findall(rf"(?mi)\bCREATE {kind} \[?dbo\]?\.\[?(\w+)\]?", template(machine, name)))


def verify(server, machine):
    check("the program logged no failure", machine.log_lines() == [])
    for name in TEMPLATES:
        check(f"the query tool reported no error for {name}.sql",
              not re.search(r"Msg \d+, Level 1[1-9]", machine.output(name)))
    check('the database "Batch" stands on the server', "Batch" in databases(server))
    check("its data file and its log file lie in the data folder",
          sorted(os.listdir(machine.data)) == ["Batch_data.mdf", "Batch_log.ldf"])
    tables = sorted(in_template(machine, "Create_Batch_Database", "TABLE") +
                    in_template(machine, "Create_Batch_Stored_Procedures", "TABLE"))
    check(f"its {len(tables)} tables are those of the templates",
          server.column("SELECT name FROM sysobjects WHERE xtype = 'U'", "Batch") == tables)
    procedures = in_template(machine, "Create_Batch_Stored_Procedures", "PROCEDURE")
    check(f"its {len(procedures)} stored procedures are those of the template",
          server.column("SELECT name FROM sysobjects WHERE xtype = 'P'", "Batch") == procedures)
    version = server.ask_bsqldb("SELECT Value FROM LKConfig WHERE ParameterName = 'DatabaseVersion'\n", "Batch")
    check(f"LKConfig says DatabaseVersion {version[0] if version else '(nothing)'}", version == ["1"])
    check(f"the {len(PACKAGES)} packages are stored", sorted(packages(server)) == sorted(PACKAGES))
    print("   rows:")
    for table in tables:
        print(f"     {table:<24} {server.ask_bsqldb(f'SELECT COUNT(*) FROM [{table}]' + chr(10), 'Batch')[0]:>6}")
    check("the default data are there", int(server.ask_bsqldb("SELECT COUNT(*) FROM LKConfig\n", "Batch")[0]) > 1)


def main():
    binaries = os.path.abspath(sys.argv[1])
    folder = os.path.abspath("build/demo")
    shutil.rmtree(folder, ignore_errors=True)
    machine = Machine(binaries, os.path.join(folder, "machine"))
    heading("A development server, started for this run")
    with DevServer(os.path.join(binaries, "devsqlserver"), os.path.join(folder, "server")) as server:
        print(f"   {server.name}, login {USER}")
        print("   " + " ".join(server.ask_bsqldb("SELECT @@VERSION\n"))[:110])
        heading("On the server before (asked by bsqldb)")
        show_server(server, machine)
        check('there is no database "Batch"', "Batch" not in databases(server))
        heading("The unattended installation")
        run_program(machine, machine.install_arguments(server, "/installdb", "/installsp", "/installdts"))
        heading("On the server after (asked by bsqldb and pymssql)")
        show_server(server, machine)
        verify(server, machine)
    heading("Done: everything above was verified, and the server is stopped.")
    print(f"   The modified scripts and the query tool's output: {os.path.relpath(machine.install)}/Data")


if __name__ == "__main__":
    main()

# Opens the console on a pair of development servers with the sample database and the General tab filled in, and prints
# what can be tried. When the window is closed, the servers are stopped and all files deleted.
#
#   demo_console.py SERVER_BIN_FOLDER PROGRAM_BIN_FOLDER [--windows]
import contextlib
import os
import shlex
import shutil
import signal
import subprocess
import sys

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path[:0] = [os.path.join(TOP, "tests", "e2e"), os.path.join(TOP, "tests", "samples")]
from test_machine import PASSWORD, RUNNER, USER, DevServer, Machine  # noqa: E402
from upgraded_samples_test import USE_OF_VERSION_1  # noqa: E402

FOLDER = os.path.join(TOP, "build", "demo-console")
LOTKEEPER = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Orvik\\Quorlen\\Lotkeeper\\CustomFunctions"
SETTINGS = "HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\KVLSQLDbMgr\\Settings"
INTERRUPTED = 130  # the exit code of a program that Ctrl+C ended
DISPLAYS = ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")

WHAT_TO_TRY = """
   General      the fields of both servers are filled in; empty a user's name and the other tabs are disabled
   Script       tick "Create Batch Database", choose "Create and Install script files", press Run
   Synchronize  source and destination "Batch": Server A's rows go to Server B
   Upgrade      rename "Batch" to another name, or remove it: no question is asked
   Replication  choose "Batch", install and uninstall
   View Data    choose "Batch", then a table: "Units" has an identity column, marked with a star
   Stored Proc. choose "Batch" and "spStartBatch"; the green arrow opens the dialog that runs it
Close the window and everything is stopped and deleted."""


def settings(machine, servers, scripts, data):
    """The remembered entries of the General tab, with which the program fills it."""
    values = {"edtScriptFolder": machine.native(scripts)}
    for index, server in enumerate(servers):
        values |= {f"edtServerName{index}": server.name, f"edtUserID{index}": USER, f"edtPassword{index}": PASSWORD,
                   f"edtSQLDataPath{index}": machine.native(data[index]),
                   f"edtSQLUNCReplDataPath{index}": machine.native(data[index])}
    return values


def remember(machine, values):
    """Writes the entries: on Linux to the program's settings file, for Windows to a registry file, whose path it
    returns."""
    if machine.wine:
        path = os.path.join(machine.folder, "settings.reg")
        lines = [f'"{key}"="' + value.replace("\\", "\\\\") + '"' for key, value in values.items()]
        with open(path, "w", encoding="utf-8") as file:
            file.write(f'REGEDIT4\n\n[{LOTKEEPER}]\n"SqlServerInstalled"="TRUE"\n\n[{SETTINGS}]\n' + "\n".join(lines) + "\n")
        return path
    folder = os.path.join(machine.folder, "KVLSQLDbMgr")
    os.makedirs(folder)
    with open(os.open(os.path.join(folder, "settings.ini"), os.O_CREAT | os.O_WRONLY, 0o600), "w") as file:
        file.write("[Settings]\n" + "".join(f"{key}={value}\n" for key, value in values.items()))
    with open(machine.registry_files[0], "a", encoding="utf-8") as file:
        file.write(f'[{LOTKEEPER}]\n"SqlServerInstalled"="TRUE"\n')
    return None


def install(machine, server):
    """Installs the sample database with an unattended run, and makes the batches of some days."""
    machine.run(*machine.install_arguments(server, "/installdb", "/installsp"), timeout=600)
    if "Batch" not in server.column("SELECT name FROM master.dbo.sysdatabases"):
        sys.exit("demo: the database was not installed; see " + machine.log_folder)
    for statement in USE_OF_VERSION_1:
        server.ask(statement, "Batch")


def open_under_wine(machine, more, displays):
    """Opens the console in a Wine prefix of its own, whose registry with the passwords is deleted with the folder. Returns the
    program's exit code when the window is closed. `more` is a registry file."""
    environment = machine.wine_environment() | displays | {"WINEPREFIX": os.path.join(FOLDER, "wine")}
    command = machine.with_registry(shlex.join([RUNNER, machine.program]), more)
    try:
        return subprocess.run(["sh", "-c", command], env=environment, cwd=machine.install, check=False).returncode
    finally:
        for end in ("-k", "-w"):  # otherwise Wine's own processes stay for an hour
            subprocess.run(["wineserver", end], env=environment, check=False, timeout=60)


def open_console(machine, more):
    """Opens the console and returns the program's exit code when the window is closed."""
    displays = {name: os.environ[name] for name in DISPLAYS if name in os.environ}
    if machine.wine:
        return open_under_wine(machine, more, displays)
    return subprocess.run([machine.program], env=machine.environment | displays, cwd=machine.install, check=False).returncode


def stop_as_by_ctrl_c():
    """Makes a closed terminal and a request to end work like Ctrl+C, so that the folder, which holds passwords, is deleted."""
    for number in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.default_int_handler)


def main():
    stop_as_by_ctrl_c()
    servers_bin, program_bin = (os.path.abspath(argument) for argument in sys.argv[1:3])
    wine = "--windows" in sys.argv[3:]
    shutil.rmtree(FOLDER, ignore_errors=True)
    try:
        # The servers run on Linux, so the Linux program installs the databases in either case.
        nodes = [Machine(servers_bin, os.path.join(FOLDER, letter)) for letter in "AB"]
        console = Machine(program_bin, os.path.join(FOLDER, "console"), wine=wine, screen=wine)
        server_program = os.path.join(servers_bin, "devsqlserver")
        with DevServer(server_program, os.path.join(FOLDER, "server A"), drives=console.drives()) as a, \
                DevServer(server_program, os.path.join(FOLDER, "server B"), drives=console.drives()) as b:
            for node, server in zip(nodes, (a, b)):
                print(f"   {server.name}: the sample database is installed, login {USER}", flush=True)
                install(node, server)
            more = remember(console, settings(console, (a, b), console.scripts, [node.data for node in nodes]))
            print(WHAT_TO_TRY, flush=True)
            code = open_console(console, more)
        how = "the window is closed"
    except KeyboardInterrupt:
        how, code = "interrupted", INTERRUPTED
    finally:
        shutil.rmtree(FOLDER, ignore_errors=True)
    with contextlib.suppress(OSError):  # the terminal may be closed
        print(f"demo: {how}, the servers are stopped and their files deleted.", flush=True)
    sys.exit(code)


if __name__ == "__main__":
    main()

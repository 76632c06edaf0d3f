# Runs a test program with two development servers, on Linux or under Wine.
#
#   with_servers.py DEVSQLSERVER PROGRAM [--wine] [ARGUMENT …]
#
# Exits with the program's exit code. The program gets these environment variables:
#   KV_SERVER_A, KV_SERVER_B   the servers' names as in a connection string
#   KV_USER, KV_PASSWORD       the login of both
#   KV_SILENT                  the name of a server that accepts connections and never answers
#   KV_FOLDER                  a new folder that the program and both servers can reach, in the form of the program's system
#   ODBCSYSINI                 a folder that registers the ODBC driver "SQL Server"
import os
import shutil
import socket
import subprocess
import sys

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(TOP, "tests", "e2e"))

from test_machine import PASSWORD, USER, DevServer, freetds_driver, fresh_folder  # noqa: E402


def main(server_program, program, *arguments):
    wine = "--wine" in arguments
    arguments = [argument for argument in arguments if argument != "--wine"]
    folder = fresh_folder()
    try:
        with open(os.path.join(folder, "odbcinst.ini"), "w") as file:
            file.write(f"[SQL Server]\nDriver = {freetds_driver()}\n")
        drives = ("Z=/",) if wine else ()
        with DevServer(server_program, os.path.join(folder, "a"), drives) as a, \
                DevServer(server_program, os.path.join(folder, "b"), drives) as b, \
                socket.create_server(("127.0.0.1", 0)) as silent:
            environment = dict(os.environ, ODBCSYSINI=folder, KV_SERVER_A=a.name, KV_SERVER_B=b.name, KV_USER=USER,
                               KV_PASSWORD=PASSWORD, KV_SILENT=f"127.0.0.1,{silent.getsockname()[1]}",
                               KV_FOLDER="Z:" + folder.replace("/", "\\") if wine else folder)
            environment["LC_ALL"] = "C.UTF-8"  # the locale whose forms of numbers and dates the tests expect
            command = [program, *arguments]
            if wine:
                environment.pop("DISPLAY", None)
                command.insert(0, os.path.join(TOP, "tests", "run-under-wine"))
            return subprocess.run(command, env=environment, stdin=subprocess.DEVNULL).returncode
    finally:
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

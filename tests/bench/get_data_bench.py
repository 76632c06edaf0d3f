"""A whole table through the console's manager, beside other clients of the same server in the same run: pyodbc and
pymssql with fetchall, bsqldb to /dev/null, and a bare loop over the same ODBC driver with bound buffers. Prints rows
per second, peak memory, the ratios, and how the time grows with the rows.

usage: get_data_bench.py DEVSQLSERVER GET_DATA_BENCH [REPEATS]
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import time

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(TOP / "tests" / "e2e"))
from test_machine import PASSWORD, USER, DevServer  # noqa: E402

DATABASE = "Reading"
SIZES = (10_000, 100_000, 1_000_000)
COLUMNS = ("id int, code int, name varchar(20), note varchar(200), stamp datetime, amount decimal(12, 2), price float, "
           "flag varchar(10)")

FETCH_ALL = {
    "pyodbc": 'import pyodbc; connection = pyodbc.connect(f"Driver={{SQL Server}};Server={host},{port};Uid={user};'
              'Pwd={password};Database={database}", autocommit=True)',
    "pymssql": "import pymssql; connection = pymssql.connect(server=host, port=port, user=user, password=password, "
               "database=database, autocommit=True)",
}
FETCH_ALL_ROWS = """
import resource, sys, time
host, port, user, password, database, table = sys.argv[1:]
begin = time.perf_counter()
%s
cursor = connection.cursor()
cursor.execute("SELECT * FROM " + table)
rows = cursor.fetchall()
print(len(rows), time.perf_counter() - begin, resource.getrusage(resource.RUSAGE_SELF).ru_maxrss)
"""


def fill(server):
    rows = ",".join(
        f"({i}, {i * 7919 % 100000}, 'name {i}', 'note of lot {i}: {'x' * (i % 120)}', '2006-{i % 12 + 1:02}-"
        f"{i % 28 + 1:02} {i % 24:02}:{i % 60:02}:00', {i * 13 % 99999}.{i % 100:02}, {i * 0.37!r}, "
        + ("NULL" if i % 3 else f"'f{i % 10}'") + ")" for i in range(1, 1001))
    with server.connect() as connection, connection.cursor() as cursor:
        cursor.execute(f"CREATE DATABASE {DATABASE}")
    with server.connect(DATABASE) as connection, connection.cursor() as cursor:
        for size in SIZES:
            cursor.execute(f"CREATE TABLE Rows{size} ({COLUMNS}) INSERT Rows{size} VALUES {rows}")
            count = 1000
            while count < size:
                more = min(count, size - count)
                cursor.execute(f"INSERT Rows{size} SELECT TOP {more} id + {count}, code, name, note, stamp, amount, "
                               f"price, flag FROM Rows{size}")
                count += more


class Readers:
    """The clients that are compared. Each reads a table once and returns the seconds and the peak memory in kilobytes. Some
    keep the rows and some do not."""

    def __init__(self, server, program):
        self.server, self.program = server, program
        self.environment = dict(os.environ, ODBCSYSINI=str(TOP / "src" / "odbc" / "odbc_config"))
        self.held = {}

    def ask(self, command, size):
        output = subprocess.run(command, env=self.environment, capture_output=True, text=True, check=True).stdout.split()
        if int(output[0]) != size:
            sys.exit(f"{command[0]} read {output[0]} rows of {size}")
        return output

    def own(self, how, size):
        output = self.ask([self.program, how, self.server.name, USER, PASSWORD, DATABASE, f"Rows{size}"], size)
        if how == "manager":
            self.held[size] = [float(part) for part in output[3:]]
        return float(output[1]), int(output[2])

    def python(self, how, size):
        output = self.ask(["/usr/bin/python3", "-c", FETCH_ALL_ROWS % FETCH_ALL[how], "127.0.0.1", str(self.server.port),
                           USER, PASSWORD, DATABASE, f"Rows{size}"], size)
        return float(output[1]), int(output[2])

    def bsqldb(self, size):
        begin = time.perf_counter()
        with open(os.devnull, "wb") as nowhere:
            process = subprocess.Popen(["bsqldb", "-S", f"127.0.0.1:{self.server.port}", "-U", USER, "-P", PASSWORD, "-D",
                                        DATABASE], stdin=subprocess.PIPE, stdout=nowhere, stderr=nowhere)
            process.stdin.write(f"SELECT * FROM Rows{size}\n".encode())
            process.stdin.close()
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            sys.exit("bsqldb failed")
        return time.perf_counter() - begin, usage.ru_maxrss


def main(server_program, program, repeats="3"):
    with tempfile.TemporaryDirectory(prefix="kv bench ") as folder, DevServer(server_program, folder) as server:
        fill(server)
        readers = Readers(server, program)
        names = {
            "GetData": lambda size: readers.own("manager", size),
            "bare ODBC loop": lambda size: readers.own("bare", size),
            "pyodbc fetchall": lambda size: readers.python("pyodbc", size),
            "pymssql fetchall": lambda size: readers.python("pymssql", size),
            "bsqldb >/dev/null": readers.bsqldb,
        }
        size = SIZES[-1]
        best = dict.fromkeys(names, (float("inf"), 0))
        # By turns, so that a busy time of the machine affects all of them. The two that are compared most closely run
        # more often than the others.
        for turn in range(3 * int(repeats)):
            for name, read in names.items():
                if turn % 3 == 0 or name in ("GetData", "bare ODBC loop"):
                    best[name] = min(best[name], read(size))
        print(f"reading {size:,} rows of 8 columns, the best of {repeats}:")
        for name, (seconds, kilobytes) in best.items():
            ratio = best["GetData"][0] / seconds
            print(f"  {name:18} {seconds:7.2f} s {size / seconds:12,.0f} rows/s {kilobytes / 1024:6.0f} MB at its peak; "
                  f"GetData takes {ratio:.2f} of that")
        print("  wanted: below 1.00 of each client, at most 1.20 of the bare loop, which keeps nothing")
        text, table, reading = readers.held[size]
        print(f"  the array takes {table / 1e6:.0f} MB for {text / 1e6:.0f} MB of text: {table / text:.2f} (wanted: at most "
              f"2); reading every cell of it as a string takes {reading:.2f} s")
        times = {rows: min(readers.own("manager", rows)[0] for _ in range(3)) for rows in SIZES}
        print("growth: " + ", ".join(f"{rows:,} rows {seconds:.3f} s ({seconds / rows * 1e6:.2f} us a row)"
                                     for rows, seconds in times.items()))


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])

"""The development server, each time beside a peer that does the same in the same run: a million rows read, ten
thousand inserted, a hundred clients at once. Prints the times and their ratios.

usage: devserver_bench.py DEVSQLSERVER [REPEATS]
"""

import os
import pathlib
import shutil
import sqlite3
import subprocess
import sys
import threading
import time

import pymssql

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "devserver" / "tests" / "clients"))
from dev_server import PASSWORD, USER, DevServer  # noqa: E402

ROWS = 1_000_000
INSERTS = 10_000
CLIENTS = 100
REQUESTS = 10

TABLE = (
    "CREATE TABLE dbo.t (id int NOT NULL PRIMARY KEY, batch int NOT NULL, name varchar(40) NOT NULL, note nvarchar(60), "
    "amount decimal(12, 3), weight float, stamp datetime, state smallint)"
)
# Inserts a row for each combination of six digits: a million rows.
FILL = """SET NOCOUNT ON
CREATE TABLE #n (n int NOT NULL)
INSERT #n SELECT 0 UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3 UNION ALL SELECT 4 UNION ALL SELECT 5
    UNION ALL SELECT 6 UNION ALL SELECT 7 UNION ALL SELECT 8 UNION ALL SELECT 9
INSERT dbo.t SELECT a.n + 10 * b.n + 100 * c.n + 1000 * d.n + 10000 * e.n + 100000 * f.n, c.n,
    'Batch of line ' + convert(varchar(10), b.n), N'A note for the batch', 12345.678 + a.n, 0.5 * b.n,
    '2017-03-04 05:06:07', d.n
FROM #n a, #n b, #n c, #n d, #n e, #n f"""


def seconds(action):
    begin = time.perf_counter()
    action()
    return time.perf_counter() - begin


def connect(server, **more):
    return pymssql.connect(server="127.0.0.1", port=str(server.port), user=USER, password=PASSWORD, **more)


def tool(name):
    path = shutil.which(name)
    if path is None:
        sys.exit(f"{name} is not installed")
    return path


class Bench:
    def __init__(self, server):
        self.server = server
        with connect(server, autocommit=True) as connection:
            cursor = connection.cursor()
            cursor.execute("CREATE DATABASE Bench")
            cursor.execute("USE Bench")
            cursor.execute(TABLE)
            print(f"filling a table of {ROWS} rows: {seconds(lambda: cursor.execute(FILL)):.1f} s")
        self.file = server.folder / "root" / "Bench.mdf"

    def run_bsqldb(self):
        subprocess.run(
            [tool("bsqldb"), "-q", "-D", "Bench", "-S", f"127.0.0.1:{self.server.port}", "-U", USER, "-P", PASSWORD],
            input=b"SELECT * FROM dbo.t", stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True,
            env={**os.environ, "TDSVER": "7.4"},
        )

    def run_sqlite3(self):
        subprocess.run([tool("sqlite3"), "-cmd", ".timeout 60000", str(self.file), "SELECT * FROM t"], stdout=subprocess.DEVNULL, check=True)

    def insert_here(self):
        with connect(self.server, autocommit=True) as connection:
            cursor = connection.cursor()
            cursor.execute("CREATE TABLE #i (id int NOT NULL PRIMARY KEY, name varchar(40) NOT NULL)")
            cursor.execute("BEGIN TRAN")
            for i in range(INSERTS):
                cursor.execute(f"INSERT #i VALUES ({i}, 'Batch {i}')")
            cursor.execute("COMMIT")
            cursor.execute("SELECT count(*) FROM #i")
            if cursor.fetchone() != (INSERTS,):
                sys.exit("rows are missing")

    def insert_into_sqlite(self):
        """Runs the same statements, each one compiled, in this process and without a network."""
        file = self.server.folder / "peer.db"
        connection = sqlite3.connect(file, isolation_level=None, cached_statements=0)
        connection.execute("CREATE TABLE i (id INTEGER PRIMARY KEY, name TEXT NOT NULL)")
        connection.execute("BEGIN")
        for i in range(INSERTS):
            connection.execute(f"INSERT INTO i VALUES ({i}, 'Batch {i}')")
        connection.execute("COMMIT")
        connection.close()
        file.unlink()

    def work(self, connections):
        """Sends CLIENTS * REQUESTS requests, divided among these connections, which work at the same time."""
        share = CLIENTS * REQUESTS // len(connections)
        failures = []

        def ask(connection):
            try:
                cursor = connection.cursor()
                for i in range(share):
                    cursor.execute(f"SELECT TOP 20 * FROM dbo.t WHERE id >= {i * 37}")
                    if len(cursor.fetchall()) != 20:
                        failures.append("rows are missing")
            except pymssql.Error as error:
                failures.append(str(error))

        threads = [threading.Thread(target=ask, args=(c,)) for c in connections]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        if failures:
            sys.exit(f"a client failed: {failures[0]}")

    def time_clients(self, count):
        connections = [connect(self.server, database="Bench", autocommit=True) for _ in range(count)]
        taken = seconds(lambda: self.work(connections))
        for connection in connections:
            connection.close()
        return taken


def compare(what, repeats, mine, peer, wanted):
    """Measures both by turns, so that other work of the machine affects both, and prints the best time of each."""
    pairs = [(mine(), peer()) for _ in range(repeats)]
    best, other = (min(column) for column in zip(*pairs))
    print(f"{what}: {best:.3f} s, peer {other:.3f} s, ratio {best / other:.2f}{wanted}")


def main():
    server = DevServer(sys.argv[1])
    repeats = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    try:
        bench = Bench(server)
        compare(
            f"{ROWS} rows of 8 columns read by bsqldb, against the sqlite3 shell on the same file", repeats,
            lambda: seconds(bench.run_bsqldb), lambda: seconds(bench.run_sqlite3), " (wanted: 4 or less)",
        )
        compare(
            f"{INSERTS} single-row inserts in one transaction, against SQLite in the client's process", repeats,
            lambda: seconds(bench.insert_here), lambda: seconds(bench.insert_into_sqlite), "",
        )
        compare(
            f"{CLIENTS * REQUESTS} requests from {CLIENTS} clients at once, against one client", repeats,
            lambda: bench.time_clients(CLIENTS), lambda: bench.time_clients(1), "",
        )
    finally:
        server.stop()


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main()

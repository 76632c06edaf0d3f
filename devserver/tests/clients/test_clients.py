"""Clients that are not ours talk to devsqlserver: tsql, bsqldb, pymssql, ODBC through FreeTDS.

usage: test_clients.py DEVSQLSERVER [unittest's arguments]. A client that is missing is a failure.
"""

import datetime
import decimal
import os
import re
import shutil
import socket
import subprocess
import sys
import threading
import time
import unittest
import uuid

import pymssql

import odbc
from dev_server import LONGEST, PASSWORD, USER, DevServer, becomes_true

PROGRAM = ""
SERVER = None
TDS_VERSIONS = ("7.1", "7.2", "7.3", "7.4")


def setUpModule():
    global SERVER
    SERVER = DevServer(PROGRAM)


def tearDownModule():
    code = SERVER.stop()
    if code != 0:
        raise AssertionError(f"the server ended with {code}")


def connect(version="7.3", **more):
    """A pymssql connection. pymssql names no version above 7.3; FreeTDS takes 7.4 from the environment."""
    arguments = {"server": "127.0.0.1", "port": str(SERVER.port), "user": USER, "password": PASSWORD, "autocommit": True}
    # db-lib has one timeout for the whole process: a connection that sets none would get the one set last.
    arguments["timeout"] = 60
    if version == "7.4":
        os.environ["TDSVER"] = version
    else:
        os.environ.pop("TDSVER", None)
        arguments["tds_version"] = version
    arguments.update(more)
    return pymssql.connect(**arguments)


def connect_odbc(version):
    return odbc.Connection(
        f"DRIVER={{FreeTDS}};SERVER=127.0.0.1;PORT={SERVER.port};UID={USER};PWD={PASSWORD};TDS_Version={version}"
    )


def has_rows(cursor, table):
    """True if the table exists and has rows. A batch inserts into it to show that it is running."""
    cursor.execute(f"IF OBJECT_ID('{table}') IS NULL SELECT 0 ELSE EXEC('SELECT COUNT(*) FROM {table}')")
    return cursor.fetchall() != [(0,)]


def run_tool(arguments, text, version, timeout=LONGEST):
    program = shutil.which(arguments[0])
    if program is None:
        raise AssertionError(f"{arguments[0]} is not installed")
    return subprocess.run(
        [program, *arguments[1:]], input=text, capture_output=True, text=True, timeout=timeout,
        env={**os.environ, "TDSVER": version, "LC_ALL": "C.UTF-8"},
    )


def run_tsql(text, version="7.4", password=PASSWORD, database="master"):
    return run_tool(
        ["tsql", "-H", "127.0.0.1", "-p", str(SERVER.port), "-U", USER, "-P", password, "-D", database, "-o", "fhq"],
        text, version,
    )


def run_bsqldb(text, version="7.4"):
    return run_tool(["bsqldb", "-S", f"127.0.0.1:{SERVER.port}", "-U", USER, "-P", PASSWORD], text, version)


class Tsql(unittest.TestCase):
    def test_logs_in_with_every_version(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                done = run_tsql("SELECT 6 * 7\ngo\nexit\n", version)
                self.assertIn("42", done.stdout.split(), done.stderr)

    def test_is_told_of_a_wrong_password(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                done = run_tsql("", version, password="wrong")
                self.assertNotEqual(done.returncode, 0)
                self.assertIn("Msg 18456 (severity 14", done.stderr)
                self.assertIn(f"Login failed for user '{USER}'.", done.stderr)

    def test_is_told_of_a_database_that_is_not_there(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                done = run_tsql("", version, database="nowhere")
                self.assertNotEqual(done.returncode, 0)
                self.assertIn("Msg 4060 (severity 11", done.stderr)
                self.assertIn('"nowhere"', done.stderr)

    def test_a_version_that_is_too_old_is_refused_by_number(self):
        done = run_tsql("", "7.0")
        self.assertIn("Msg 17832", done.stderr)
        self.assertIn("TDS 7.1", done.stderr)

    def test_sees_the_number_and_line_of_an_error(self):
        done = run_tsql("SELECT 1\n\nSELECT * FROM nowhere\ngo\nexit\n")
        self.assertRegex(done.stderr, r"Msg 208 \(severity 16, state 1\) from \S+ Line 3:")


class Bsqldb(unittest.TestCase):
    def test_reads_several_results(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                done = run_bsqldb("SELECT 1 AS first\nSELECT 'b' AS second\n", version)
                self.assertEqual(done.returncode, 0, done.stderr)
                words = done.stdout.split()
                self.assertEqual([w for w in words if w in ("1", "b")], ["1", "b"])

    def test_sees_printed_messages_and_raised_errors_in_order(self):
        done = run_bsqldb("PRINT 'one'\nRAISERROR('two', 0, 1)\nRAISERROR('three', 16, 1)\n")
        positions = [done.stderr.find(text) for text in ("one", "two", "three")]
        self.assertNotIn(-1, positions, done.stderr)
        self.assertEqual(positions, sorted(positions))
        self.assertIn("50000", done.stderr)
        self.assertNotEqual(done.returncode, 0)

    def test_takes_text_in_double_quotes_as_the_older_library_does(self):
        done = run_bsqldb('SELECT "a text"\n')
        self.assertIn("a text", done.stdout, done.stderr)

    def test_reads_many_rows(self):
        done = run_bsqldb(
            "SET NOCOUNT ON\nCREATE TABLE #n (n int)\nINSERT INTO #n VALUES (1)\nDECLARE @i int\nSET @i = 0\n"
            "WHILE @i < 15 BEGIN INSERT INTO #n SELECT n FROM #n SET @i = @i + 1 END\n"
            "SELECT n, 'text of some length' AS t FROM #n\n"
        )
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stdout.count("text of some length"), 32768)


LONG = "x" * 20000
D = decimal.Decimal

# type, [(T-SQL expression, what the client must see)]
TYPES = [
    ("bit", [("0", False), ("1", True)]),
    ("tinyint", [("0", 0), ("255", 255)]),
    ("smallint", [("-32768", -32768), ("32767", 32767)]),
    ("int", [("-2147483648", -2147483648), ("2147483647", 2147483647)]),
    ("bigint", [("-9223372036854775808", -9223372036854775808), ("9223372036854775807", 9223372036854775807)]),
    ("decimal(38,0)", [("9" * 38, D("9" * 38)), ("-" + "9" * 38, D("-" + "9" * 38))]),
    ("decimal(38,38)", [("0." + "9" * 38, D("0." + "9" * 38))]),
    ("numeric(9,2)", [("-1234567.89", D("-1234567.89")), ("0", D("0.00"))]),
    ("money", [("-922337203685477.5808", D("-922337203685477.5808")), ("922337203685477.5807", D("922337203685477.5807"))]),
    ("smallmoney", [("-214748.3648", D("-214748.3648")), ("214748.3647", D("214748.3647"))]),
    ("real", [("1.5", 1.5), ("-0.25", -0.25)]),
    ("float", [("1.7976931348623157E308", 1.7976931348623157e308), ("-2.5", -2.5)]),
    ("datetime", [("'17530101'", datetime.datetime(1753, 1, 1)), ("'99991231 23:59:59'", datetime.datetime(9999, 12, 31, 23, 59, 59))]),
    ("smalldatetime", [("'19000101'", datetime.datetime(1900, 1, 1)), ("'20790606 23:59'", datetime.datetime(2079, 6, 6, 23, 59))]),
    ("char(5)", [("''", "     "), ("'abcde'", "abcde")]),
    ("varchar(8000)", [("''", ""), ("N'h\u00e9llo \u20ac'", "h\u00e9llo \u20ac"), (f"'{'y' * 8000}'", "y" * 8000)]),
    ("nchar(3)", [("N'\u0416'", "\u0416  ")]),
    ("nvarchar(4000)", [("N''", ""), ("N'\u0416\u20ac'", "\u0416\u20ac"), (f"N'{'z' * 4000}'", "z" * 4000)]),
    ("text", [("''", ""), (f"'{LONG}'", LONG)]),
    ("ntext", [("N''", ""), (f"N'{LONG}\u0416'", LONG + "\u0416")]),
    ("varchar(max)", [("''", ""), (f"'{LONG}'", LONG)]),
    ("nvarchar(max)", [("N''", ""), (f"N'{LONG}\u0416'", LONG + "\u0416")]),
    ("binary(4)", [("0x01", b"\x01\0\0\0"), ("0xFFFFFFFF", b"\xff" * 4)]),
    ("varbinary(8000)", [("0x", b""), ("0x00FF", b"\0\xff")]),
    ("varbinary(max)", [("0x", b""), ("0x" + "AB" * 9000, b"\xab" * 9000)]),
    ("image", [("0x", b""), ("0x" + "CD" * 9000, b"\xcd" * 9000)]),
    ("uniqueidentifier", [("'00112233-4455-6677-8899-AABBCCDDEEFF'", uuid.UUID("00112233-4455-6677-8899-AABBCCDDEEFF"))]),
]


def columns_and_values():
    """One column for each value, so that one row holds all."""
    columns, expressions, expected = [], [], []
    for declared, values in TYPES:
        for expression, value in values:
            columns.append(f"c{len(columns)} {declared} NULL")
            expressions.append(expression)
            expected.append(value)
    return columns, expressions, expected


def without_empty_marks(value):
    """db-lib can't tell an empty text or binary from NULL, and pymssql shows both as None."""
    return None if value in ("", b"") else value


class Pymssql(unittest.TestCase):
    def test_every_type_comes_back_from_a_table(self):
        columns, expressions, expected = columns_and_values()
        for version in TDS_VERSIONS:
            with self.subTest(version):
                with connect(version) as connection, connection.cursor() as cursor:
                    cursor.execute(f"CREATE TABLE #t ({', '.join(columns)})")
                    cursor.execute(f"INSERT INTO #t VALUES ({', '.join(expressions)})")
                    cursor.execute(f"INSERT INTO #t VALUES ({', '.join(['NULL'] * len(columns))})")
                    cursor.execute("SELECT * FROM #t")
                    full, nulls = cursor.fetchall()
                for column, got, wanted in zip(columns, full, expected):
                    self.assertEqual(without_empty_marks(got), without_empty_marks(wanted), f"{version}: {column}")
                self.assertEqual(nulls, (None,) * len(columns))

    def test_a_timestamp_is_eight_bytes_that_grow(self):
        with connect() as connection, connection.cursor() as cursor:
            cursor.execute("CREATE TABLE stamps (a int, stamp timestamp)")
            cursor.execute("INSERT INTO stamps (a) VALUES (1)")
            cursor.execute("INSERT INTO stamps (a) VALUES (2)")
            cursor.execute("SELECT stamp FROM stamps ORDER BY a")
            first, second = [row[0] for row in cursor.fetchall()]
            cursor.execute("DROP TABLE stamps")
        self.assertEqual(len(first), 8)
        self.assertLess(first, second)

    def test_is_told_of_a_wrong_password(self):
        for version in TDS_VERSIONS:
            with self.subTest(version), self.assertRaises(pymssql.OperationalError) as caught:
                connect(version, password="wrong")
            self.assertEqual(caught.exception.args[0][0], 18456)

    def test_several_results_and_row_counts(self):
        with connect() as connection, connection.cursor() as cursor:
            cursor.execute("SELECT 1 UNION ALL SELECT 2; SELECT 'x'")
            self.assertEqual(cursor.fetchall(), [(1,), (2,)])
            self.assertTrue(cursor.nextset())
            self.assertEqual(cursor.fetchall(), [("x",)])
            self.assertFalse(cursor.nextset())
            cursor.execute("CREATE TABLE #t (a int)")
            cursor.execute("INSERT INTO #t SELECT 1 UNION ALL SELECT 2")
            self.assertEqual(cursor.rowcount, 2)

    def test_a_procedure_returns_its_output_parameters(self):
        for version in TDS_VERSIONS:
            with self.subTest(version), connect(version) as connection, connection.cursor() as cursor:
                cursor.execute("IF OBJECT_ID('sums') IS NOT NULL DROP PROCEDURE sums")
                cursor.execute(
                    "CREATE PROCEDURE sums @a int, @b varchar(20), @sum int OUTPUT, @text varchar(50) OUTPUT AS "
                    "SET @sum = @a + 1 SET @text = @b + @text RETURN 7"
                )
                got = cursor.callproc("sums", (5, "x", pymssql.output(int), pymssql.output(str, "y")))
                self.assertEqual(tuple(got), (5, "x", 6, "xy"))

    def test_a_procedure_returns_its_rows(self):
        for version in TDS_VERSIONS:
            with self.subTest(version), connect(version) as connection, connection.cursor() as cursor:
                cursor.execute("IF OBJECT_ID('echo') IS NOT NULL DROP PROCEDURE echo")
                cursor.execute("CREATE PROCEDURE echo @a int, @b varchar(20) AS SELECT @a AS a, @b AS b SELECT 1")
                cursor.callproc("echo", (5, "x"))
                cursor.nextset()  # after a call pymssql is positioned before the first result
                self.assertEqual(cursor.fetchall(), [(5, "x")])
                self.assertTrue(cursor.nextset())
                self.assertEqual(cursor.fetchall(), [(1,)])

    def test_an_error_leaves_the_connection_usable(self):
        with connect() as connection, connection.cursor() as cursor:
            with self.assertRaises(pymssql.Error) as caught:
                cursor.execute("SELECT 1 / 0")
                cursor.fetchall()
            self.assertEqual(caught.exception.args[0], 8134)
            cursor.execute("SELECT 2")
            self.assertEqual(cursor.fetchall(), [(2,)])

    def test_two_clients_work_at_once(self):
        with connect() as waiting, connect() as other, other.cursor() as cursor:
            cursor.execute("CREATE TABLE WorksAtOnce (a int)")
            # Ends when the other client has written, and only then.
            thread = threading.Thread(target=lambda: waiting.cursor().execute(
                "INSERT WorksAtOnce VALUES (1) "
                "WHILE NOT EXISTS (SELECT * FROM WorksAtOnce WHERE a = 2) WAITFOR DELAY '00:00:00.050'"))
            thread.start()
            self.assertTrue(becomes_true(lambda: has_rows(cursor, "WorksAtOnce")))
            cursor.execute("INSERT WorksAtOnce VALUES (2)")
            thread.join(LONGEST)
            self.assertFalse(thread.is_alive())

    def test_a_timeout_ends_the_statement_and_frees_the_server(self):
        with self.assertRaises(pymssql.Error):
            connect(timeout=1).cursor().execute("WAITFOR DELAY '00:02:00'")
        with connect() as connection, connection.cursor() as cursor:
            cursor.execute("SELECT 1")
            self.assertEqual(cursor.fetchall(), [(1,)])

    def test_a_statement_that_is_thrown_out_fails_and_the_connection_ends(self):
        with connect() as connection, connection.cursor() as cursor:
            cursor.execute("CREATE DATABASE ThrownOut")
            cursor.execute("CREATE TABLE ToThrowOut (a int)")
            caught = []

            def wait(victim):
                with victim.cursor() as waiting:
                    try:
                        waiting.execute("INSERT master..ToThrowOut VALUES (1) WAITFOR DELAY '00:05:00' SELECT 'done'")
                        caught.append(waiting.fetchall())
                    except pymssql.Error as error:
                        caught.append(error.args[0])
                    with self.assertRaises(pymssql.Error):
                        waiting.execute("SELECT 1")

            for end in ("ALTER DATABASE ThrownOut SET SINGLE_USER WITH ROLLBACK IMMEDIATE", "KILL %d"):
                victim = connect(database="ThrownOut", timeout=300)
                cursor.execute("DELETE ToThrowOut")
                with victim.cursor() as asking:
                    asking.execute("SELECT @@SPID")
                    number = asking.fetchone()[0]
                thread = threading.Thread(target=wait, args=(victim,))
                thread.start()
                self.assertTrue(becomes_true(lambda: has_rows(cursor, "ToThrowOut")))
                cursor.execute(end.replace("%d", str(number)))
                thread.join(LONGEST)
                self.assertFalse(thread.is_alive(), end)
                self.assertEqual(caught.pop(), 596, end)
                victim.close()
                cursor.execute("ALTER DATABASE ThrownOut SET MULTI_USER")
            cursor.execute("DROP DATABASE ThrownOut")

    def test_forty_clients_at_once(self):
        failures = []

        def work(number):
            try:
                with connect() as connection, connection.cursor() as cursor:
                    for _ in range(5):
                        cursor.execute(f"SELECT {number}")
                        if cursor.fetchall() != [(number,)]:
                            failures.append(number)
            except pymssql.Error as error:
                failures.append(error)

        threads = [threading.Thread(target=work, args=(n,)) for n in range(40)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(failures, [])


class Odbc(unittest.TestCase):
    def test_is_told_of_a_wrong_password(self):
        with self.assertRaises(odbc.OdbcError) as caught:
            odbc.Connection(f"DRIVER={{FreeTDS}};SERVER=127.0.0.1;PORT={SERVER.port};UID={USER};PWD=wrong;TDS_Version=7.4")
        self.assertIn(18456, [native for _, native, _ in caught.exception.records])

    def test_transactions_of_the_driver_commit_and_roll_back(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                connection = connect_odbc(version)
                connection.execute("CREATE TABLE #t (a int)")
                connection.set_autocommit(False)
                connection.execute("INSERT INTO #t VALUES (1)")
                connection.end_transaction(commit=True)
                connection.execute("INSERT INTO #t VALUES (2)")
                connection.end_transaction(commit=False)
                self.assertEqual(connection.execute("SELECT a FROM #t"), [("1",)])
                connection.end_transaction(commit=True)
                connection.set_autocommit(True)
                self.assertEqual(connection.execute("SELECT @@TRANCOUNT"), [("0",)])
                connection.close()

    def test_a_transaction_that_a_batch_ends_is_followed_by_another(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                connection = connect_odbc(version)
                connection.set_autocommit(False)
                connection.execute("CREATE TABLE #t (a int)")
                connection.end_transaction(commit=True)
                connection.execute("ROLLBACK")
                if version == "7.1":  # asks @@TRANCOUNT first
                    connection.end_transaction(commit=True)
                else:
                    with self.assertRaises(odbc.OdbcError) as caught:
                        connection.end_transaction(commit=True)
                    self.assertEqual(caught.exception.records[0][1], 3902)
                connection.execute("INSERT INTO #t VALUES (1)")
                connection.end_transaction(commit=False)
                self.assertEqual(connection.execute("SELECT a FROM #t"), [])
                connection.end_transaction(commit=True)
                connection.close()

    def test_a_prepared_statement_takes_its_parameter(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                connection = connect_odbc(version)
                self.assertEqual(connection.execute("SELECT ? + 1", parameter=41), [("42",)])
                connection.close()

    def test_a_query_timeout_is_an_attention_and_the_connection_stays(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                connection = connect_odbc(version)
                with self.assertRaises(odbc.OdbcError) as caught:
                    # The driver waits no longer than this for the attention's acknowledgement either.
                    connection.execute("WAITFOR DELAY '00:02:00'", timeout=5)
                self.assertEqual(caught.exception.records[0][0], "HYT00")
                self.assertEqual(connection.execute("SELECT 1"), [("1",)])
                connection.close()


class Browser(unittest.TestCase):
    def test_tells_the_port_of_its_instance_to_who_asks(self):
        server = DevServer(PROGRAM, "--name", "NODE1", "--instance", "KV_BATCH", "--browser-port", "0")
        try:
            port = int(re.fullmatch(r".* UDP 127\.0\.0\.1:(\d+)\n", server.process.stdout.readline())[1])
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as client:
                client.settimeout(LONGEST)
                client.sendto(b"\x04KV_BATCH\0", ("127.0.0.1", port))
                answer = client.recv(4096)
            self.assertIn(f"ServerName;NODE1;InstanceName;KV_BATCH;".encode(), answer)
            self.assertIn(f";tcp;{server.port};;".encode(), answer)
        finally:
            self.assertEqual(server.stop(), 0)

    def test_clients_find_the_instance_by_its_name(self):
        # Clients ask at this port only, and only one program on a machine can have it: another run of this test may.
        for _ in range(120):
            try:
                server = DevServer(PROGRAM, "--name", "localhost", "--instance", "KV_BATCH", "--browser")
                break
            except AssertionError:
                time.sleep(0.5)
        else:
            self.fail("UDP port 1434 is taken by another program")
        try:
            done = run_tool(
                ["tsql", "-S", "localhost\\KV_BATCH", "-U", USER, "-P", PASSWORD, "-o", "fhq"],
                "SELECT @@SERVERNAME\ngo\nexit\n", "7.4",
            )
            self.assertIn("localhost\\KV_BATCH", done.stdout, done.stderr)
            with pymssql.connect(server="localhost\\kv_batch", user=USER, password=PASSWORD) as connection:
                cursor = connection.cursor()
                cursor.execute("SELECT SERVERPROPERTY('InstanceName')")
                self.assertEqual(cursor.fetchone(), ("KV_BATCH",))
        finally:
            self.assertEqual(server.stop(), 0)


class Program(unittest.TestCase):
    def run_program(self, *arguments):
        return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, timeout=LONGEST)

    def test_help_says_what_it_is_not(self):
        done = self.run_program("--help")
        self.assertEqual(done.returncode, 0)
        self.assertIn("not SQL Server", done.stdout)
        self.assertTrue(self.run_program("--version").stdout.startswith("devsqlserver "))

    def test_wrong_usage_ends_with_2(self):
        for arguments in ((), ("--port", "x"), ("--nonsense", "1")):
            done = self.run_program(*arguments)
            self.assertEqual(done.returncode, 2, arguments)
            self.assertIn("devsqlserver: ", done.stderr)
            self.assertEqual(done.stdout, "")

    def test_a_file_of_logins_that_is_wrong_is_named_with_its_line(self):
        file = SERVER.folder / "wrong"
        file.write_text("sa:x\nno login\n")
        file.chmod(0o600)
        done = self.run_program("--root", str(SERVER.folder / "r"), "--port", "0", "--logins", str(file))
        self.assertEqual(done.returncode, 2)
        self.assertIn(f"{file}, line 2", done.stderr)

    def test_a_file_of_logins_that_others_may_read_is_refused(self):
        file = SERVER.folder / "open"
        file.write_text("sa:x\n")
        file.chmod(0o640)
        done = self.run_program("--root", str(SERVER.folder / "r"), "--port", "0", "--logins", str(file))
        self.assertEqual(done.returncode, 2)
        self.assertIn(f"{file} holds passwords", done.stderr)

    def test_a_port_that_is_taken_is_an_error(self):
        done = self.run_program(
            "--root", str(SERVER.folder / "second"), "--port", str(SERVER.port), "--logins", str(SERVER.logins)
        )
        self.assertEqual(done.returncode, 1)
        self.assertIn(f"127.0.0.1:{SERVER.port}", done.stderr)

    def test_listens_on_loopback_alone(self):
        with open("/proc/net/tcp", encoding="ascii") as table:
            listeners = [line.split()[1] for line in table if line.split()[3] == "0A"]
        self.assertIn(f"0100007F:{SERVER.port:04X}", listeners)
        self.assertNotIn(f"00000000:{SERVER.port:04X}", listeners)

    def test_ends_cleanly_with_clients_connected_and_a_statement_running(self):
        server = DevServer(PROGRAM)
        resting = pymssql.connect(server="127.0.0.1", port=str(server.port), user=USER, password=PASSWORD)
        running = subprocess.Popen(
            ["bsqldb", "-S", f"127.0.0.1:{server.port}", "-U", USER, "-P", PASSWORD], stdin=subprocess.PIPE,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, text=True,
        )
        running.stdin.write("CREATE TABLE Running (a int) INSERT Running VALUES (1) WAITFOR DELAY '01:00:00'\n")
        running.stdin.close()
        cursor = resting.cursor()
        self.assertTrue(becomes_true(lambda: has_rows(cursor, "Running")))
        self.assertEqual(server.stop(), 0)
        running.wait(timeout=LONGEST)
        with self.assertRaises(pymssql.Error):
            cursor.execute("SELECT 1")

    def test_bears_a_client_that_dies_and_one_that_talks_nonsense(self):
        client = subprocess.Popen(
            ["bsqldb", "-S", f"127.0.0.1:{SERVER.port}", "-U", USER, "-P", PASSWORD], stdin=subprocess.PIPE,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, text=True,
        )
        client.stdin.write("CREATE TABLE Dying (a int) INSERT Dying VALUES (1) WAITFOR DELAY '00:01:00'\n")
        client.stdin.close()
        with connect() as connection, connection.cursor() as cursor:
            self.assertTrue(becomes_true(lambda: has_rows(cursor, "Dying")))
        client.kill()
        client.wait()
        with socket.create_connection(("127.0.0.1", SERVER.port), timeout=LONGEST) as stranger:
            stranger.sendall(b"GET / HTTP/1.1\r\nHost: localhost\r\n\r\n")
            stranger.recv(4096)
        with connect() as connection, connection.cursor() as cursor:
            cursor.execute("SELECT 1")
            self.assertEqual(cursor.fetchall(), [(1,)])


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    PROGRAM = sys.argv.pop(1)
    unittest.main()

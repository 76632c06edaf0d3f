"""Bulk copy by clients that are not ours: freebcp, pymssql (db-lib) and python-tds, each with its own way of writing rows.

usage: test_bulk_copy.py DEVSQLSERVER [unittest's arguments]. A client that is missing is a failure.
"""

import decimal
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

import pymssql
import pytds

from dev_server import LONGEST, PASSWORD, USER, DevServer, becomes_true

PROGRAM = ""
SERVER = None
TDS_VERSIONS = ("7.1", "7.2", "7.3", "7.4")
PYTDS_VERSIONS = {"7.1": 0x71000001, "7.2": 0x72090002, "7.3": 0x730B0003, "7.4": 0x74000004}

# A column of each kind of type that a client describes in its own way.
COLUMNS = (
    "id int not null primary key, a bigint, b bit, c decimal(12, 3), d money, e float, f datetime, g char(4), "
    "h varchar(20), i nvarchar(20), j uniqueidentifier, k varbinary(10), l text, m ntext, n image, o varchar(max)"
)
ROWS = """
INSERT source VALUES (1, 9000000000, 1, -12.345, 7.5, 0.25, '20170304 05:06:07.890', 'ab', 'caf\u00e9', N'\u0416 x',
    '00112233-4455-6677-8899-AABBCCDDEEFF', 0x00FF, 'long', N'\u20ac long', 0x0102, REPLICATE('y', 3000))
INSERT source (id) VALUES (2)
"""


def setUpModule():
    global SERVER
    SERVER = DevServer(PROGRAM)
    with connect_pytds() as connection, connection.cursor() as cursor:
        cursor.execute(f"CREATE TABLE source ({COLUMNS})")
        cursor.execute(ROWS)


def tearDownModule():
    code = SERVER.stop()
    if code != 0:
        raise AssertionError(f"the server ended with {code}")


def connect_pytds(version="7.4"):
    return pytds.connect("127.0.0.1", port=SERVER.port, user=USER, password=PASSWORD, database="master",
                         tds_version=PYTDS_VERSIONS[version], autocommit=True, login_timeout=LONGEST)


def query(sql):
    with connect_pytds() as connection, connection.cursor() as cursor:
        cursor.execute(sql)
        return cursor.fetchall() if cursor.description else None


def fresh_table(name, columns=COLUMNS):
    query(f"IF OBJECT_ID('{name}') IS NOT NULL DROP TABLE {name}")
    query(f"CREATE TABLE {name} ({columns})")


class Freebcp(unittest.TestCase):
    def run_freebcp(self, version, *arguments):
        program = shutil.which("freebcp")
        self.assertIsNotNone(program, "freebcp is not installed")
        return subprocess.run(
            [program, *arguments, "-S", f"127.0.0.1:{SERVER.port}", "-U", USER, "-P", PASSWORD], capture_output=True,
            text=True, timeout=LONGEST, env={**os.environ, "TDSVER": version, "LC_ALL": "C.UTF-8"},
        )

    def file(self, name):
        return str(pathlib.Path(SERVER.folder) / name)

    def test_copies_a_table_out_and_in(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                fresh_table("target")
                data = self.file("copied")
                out = self.run_freebcp(version, "master.dbo.source", "out", data, "-c")
                self.assertIn("2 rows copied", out.stdout, out.stderr)
                done = self.run_freebcp(version, "master.dbo.target", "in", data, "-c")
                self.assertIn("2 rows copied", done.stdout, done.stderr)
                columns = ("id, a, b, c, d, e, f, g, h, i, j, k, CAST(l AS varchar(20)), CAST(m AS nvarchar(20)), "
                           "CAST(n AS varbinary(10)), o")
                self.assertEqual(query(f"SELECT {columns} FROM target ORDER BY id"),
                                 query(f"SELECT {columns} FROM source ORDER BY id"))

    def test_copies_more_than_a_message_may_have(self):
        fresh_table("wide", "a int, b varchar(2000)")
        data = self.file("wide")
        rows = 40000
        with open(data, "w") as file:
            for i in range(rows):
                file.write(f"{i}\t{'x' * 1900}\n")
        done = self.run_freebcp("7.4", "master.dbo.wide", "in", data, "-c")
        self.assertIn(f"{rows} rows copied", done.stdout, done.stderr)
        self.assertEqual(query("SELECT COUNT(*), SUM(CAST(LEN(b) AS bigint)), MAX(a) FROM wide"),
                         [(rows, rows * 1900, rows - 1)])

    def test_is_told_of_a_row_that_the_table_does_not_take(self):
        fresh_table("strict", "a int not null primary key")
        data = self.file("strict")
        pathlib.Path(data).write_text("1\n2\n1\n")
        done = self.run_freebcp("7.4", "master.dbo.strict", "in", data, "-c")
        self.assertIn("Msg 2627", done.stderr + done.stdout)
        self.assertEqual(query("SELECT COUNT(*) FROM strict"), [(0,)])


class Pymssql(unittest.TestCase):
    def test_copies_rows(self):
        for version in ("7.1", "7.2", "7.3"):
            with self.subTest(version):
                fresh_table("target", "id int, a bigint, b varchar(20), c decimal(12, 3)")
                connection = pymssql.connect(server="127.0.0.1", port=str(SERVER.port), user=USER, password=PASSWORD,
                                             database="master", tds_version=version, autocommit=True)
                connection.bulk_copy("target", [(1, 2, "x", decimal.Decimal("1.500")), (2, None, None, None)])
                connection.close()
                self.assertEqual(query("SELECT * FROM target ORDER BY id"),
                                 [(1, 2, "x", decimal.Decimal("1.500")), (2, None, None, None)])


class Pytds(unittest.TestCase):
    def test_copies_rows(self):
        for version in TDS_VERSIONS:
            with self.subTest(version), connect_pytds(version) as connection, connection.cursor() as cursor:
                fresh_table("target", "id int identity, a bigint, b nvarchar(20) default ('none'), "
                                      "c int check (c < 9)")
                columns = [pytds.Column("a", type=pytds.tds_types.BigIntType()),
                           pytds.Column("b", type=pytds.tds_types.NVarCharType(20)),
                           pytds.Column("c", type=pytds.tds_types.IntType())]
                cursor.copy_to(data=[(1, "\u0416", 2), (2, None, None)], table_or_view="target", columns=columns)
                cursor.copy_to(data=[(3, None, 4)], table_or_view="target", columns=columns, keep_nulls=True,
                               tablock=True)
                self.assertEqual(query("SELECT * FROM target ORDER BY id"),
                                 [(1, 1, "\u0416", 2), (2, 2, "none", None), (3, 3, None, 4)])
                with self.assertRaises(pytds.Error) as caught:
                    cursor.copy_to(data=[(4, "x", 99)], table_or_view="target", columns=columns,
                                   check_constraints=True)
                self.assertEqual(caught.exception.number, 547)
                cursor.execute("SELECT COUNT(*) FROM target")
                self.assertEqual(cursor.fetchall(), [(3,)])

    def test_a_load_that_is_thrown_out_ends_at_once(self):
        """The server does not wait for the rows that the client has not written yet."""
        fresh_table("target", "id int")
        gone = []

        def rows(number):
            for i in range(5000):
                yield (i,)
            query(f"KILL {number}")
            count = f"SELECT COUNT(*) FROM sysprocesses WHERE spid = {number}"
            gone.append(becomes_true(lambda: query(count) == [(0,)]))
            for i in range(5000):
                yield (i,)

        connection = connect_pytds()
        cursor = connection.cursor()
        cursor.execute("SELECT @@SPID")
        number = cursor.fetchall()[0][0]
        with self.assertRaises((pytds.Error, OSError)):
            cursor.copy_to(data=rows(number), table_or_view="target",
                           columns=[pytds.Column("id", type=pytds.tds_types.IntType())])
        self.assertEqual(gone, [True])
        self.assertEqual(query("SELECT COUNT(*) FROM target"), [(0,)])


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    PROGRAM = sys.argv.pop(1)
    unittest.main()

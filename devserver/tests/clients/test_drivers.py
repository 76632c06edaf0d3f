"""Drivers of others talk to devsqlserver: python-tds, which speaks the protocol itself, and pyodbc over FreeTDS, with
the catalogue calls of ODBC.

usage: test_drivers.py DEVSQLSERVER [unittest's arguments]. A driver that is missing is a failure.
"""

import datetime
import decimal
import sys
import threading
import unittest
import uuid

import pyodbc
import pytds

from dev_server import LONGEST, PASSWORD, USER, DevServer, becomes_true

PROGRAM = ""
SERVER = None
D = decimal.Decimal
TDS_VERSIONS = {"7.1": 0x71000001, "7.2": 0x72090002, "7.3": 0x730B0003, "7.4": 0x74000004}


def setUpModule():
    global SERVER
    SERVER = DevServer(PROGRAM)


def tearDownModule():
    code = SERVER.stop()
    if code != 0:
        raise AssertionError(f"the server ended with {code}")


def connect_pytds(version="7.4", **more):
    return pytds.connect(
        "127.0.0.1", port=SERVER.port, user=USER, password=PASSWORD, database=more.pop("database", "master"),
        tds_version=TDS_VERSIONS[version], autocommit=True, login_timeout=LONGEST, **more,
    )


def connect_pyodbc(version="7.4", **more):
    return pyodbc.connect(
        f"DRIVER={{FreeTDS}};SERVER=127.0.0.1;PORT={SERVER.port};UID={USER};PWD={PASSWORD};TDS_Version={version};"
        "ClientCharset=UTF-8",
        autocommit=True, **more,
    )


# Values that a program binds, and the values that must be returned for them.
VALUES = [
    None, True, 42, -(2**40), 2.5, D("-1234567.8901"), D("9" * 30), "", "h\u00e9llo \u20ac \u0416", "x" * 5000,
    b"\0\xff", b"y" * 9000, datetime.datetime(2017, 3, 4, 5, 6, 7, 890000),
    uuid.UUID("00112233-4455-6677-8899-AABBCCDDEEFF"),
]


class Pytds(unittest.TestCase):
    def test_values_come_back_as_they_were_bound(self):
        for version in TDS_VERSIONS:
            with self.subTest(version), connect_pytds(version) as connection, connection.cursor() as cursor:
                for value in VALUES:
                    bound = pytds.Binary(value) if isinstance(value, bytes) else value
                    cursor.execute("SELECT %s", (bound,))
                    self.assertEqual(cursor.fetchone()[0], value, repr(value)[:60])

    def test_dates_and_times_of_their_own_come_to_the_millisecond(self):
        for version in ("7.3", "7.4"):
            with self.subTest(version), connect_pytds(version) as connection, connection.cursor() as cursor:
                cursor.execute("SELECT DATEDIFF(day, '20170301', %s)", (datetime.date(2017, 3, 4),))
                self.assertEqual(cursor.fetchone(), (3,))
                cursor.execute("SELECT CONVERT(varchar(12), %s, 114)", (datetime.time(5, 6, 7),))
                self.assertTrue(cursor.fetchone()[0].startswith("05:06:07"))

    def test_a_procedure_gives_rows_output_and_status(self):
        for version in TDS_VERSIONS:
            with self.subTest(version), connect_pytds(version) as connection, connection.cursor() as cursor:
                cursor.execute("IF OBJECT_ID('p') IS NOT NULL DROP PROCEDURE p")
                cursor.execute("CREATE PROCEDURE p @b int OUTPUT, @a int AS SELECT @a SET @b = @a * 2 RETURN 7")
                cursor.callproc("p", (pytds.output(param_type="int"), 21))
                self.assertEqual(cursor.fetchall(), [(21,)])
                while cursor.nextset():
                    pass
                self.assertEqual(cursor.get_proc_outputs(), [42])
                self.assertEqual(cursor.get_proc_return_status(), 7)
                cursor.execute("IF OBJECT_ID('q') IS NOT NULL DROP PROCEDURE q")
                cursor.execute("CREATE PROCEDURE q @a int, @b varchar(20) OUTPUT AS SET @b = @b + 'y'")
                self.assertEqual(cursor.callproc("q", (1, pytds.output("x")))[1], "xy")

    def test_errors_have_number_state_line_and_procedure(self):
        with connect_pytds() as connection, connection.cursor() as cursor:
            cursor.execute("IF OBJECT_ID('fails') IS NOT NULL DROP PROCEDURE fails")
            cursor.execute("CREATE PROCEDURE fails AS\nPRINT 'x'\nRAISERROR('told', 16, 3)")
            with self.assertRaises(pytds.Error) as caught:
                cursor.execute("EXEC fails")
            error = caught.exception
            self.assertEqual((error.number, error.severity, error.state, error.line), (50000, 16, 3, 3))
            self.assertEqual(error.procname, "fails")

    def test_a_type_that_the_server_has_not_is_refused_by_name(self):
        with connect_pytds() as connection, connection.cursor() as cursor:
            rows = pytds.TableValuedParam(
                type_name="dbo.Rows", columns=(pytds.Column(type=pytds.tds_types.IntType()),), rows=[(1,)]
            )
            with self.assertRaises(pytds.Error) as caught:
                cursor.execute("SELECT * FROM %s", (rows,))
            self.assertEqual(caught.exception.number, 40510)
            self.assertIn("a table type", str(caught.exception))

    def test_is_told_of_a_wrong_password(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                with self.assertRaises(pytds.Error) as caught:
                    pytds.connect(
                        "127.0.0.1", port=SERVER.port, user=USER, password="wrong", tds_version=TDS_VERSIONS[version]
                    )
                self.assertIn("Login failed for user", str(caught.exception))

    def test_transactions(self):
        for version in TDS_VERSIONS:
            with self.subTest(version), connect_pytds(version) as connection:
                with connection.cursor() as cursor:
                    cursor.execute("CREATE TABLE #t (a int)")
                connection.autocommit = False
                with connection.cursor() as cursor:
                    cursor.execute("INSERT #t VALUES (1)")
                    connection.commit()
                    cursor.execute("INSERT #t VALUES (2)")
                    connection.rollback()
                    cursor.execute("SELECT a FROM #t")
                    self.assertEqual(cursor.fetchall(), [(1,)])
                    connection.rollback()


class Pyodbc(unittest.TestCase):
    def test_values_come_back_as_they_were_bound(self):
        for version in TDS_VERSIONS:
            with self.subTest(version):
                connection = connect_pyodbc(version)
                cursor = connection.cursor()
                for value in VALUES:
                    got = cursor.execute("SELECT ? AS v", value).fetchone().v
                    # Here a uniqueidentifier has no type of its own, so it is sent as text.
                    wanted = str(value).upper() if isinstance(value, uuid.UUID) else value
                    self.assertEqual(str(got).upper() if isinstance(value, uuid.UUID) else got, wanted, repr(value)[:60])
                connection.close()

    def test_many_rows_are_inserted_by_one_prepared_statement(self):
        connection = connect_pyodbc()
        cursor = connection.cursor()
        cursor.execute("CREATE TABLE #t (a int, b varchar(20))")
        cursor.executemany("INSERT #t VALUES (?, ?)", [(i, f"row {i}") for i in range(200)])
        self.assertEqual(cursor.execute("SELECT count(*) FROM #t").fetchval(), 200)
        connection.close()

    def test_errors_have_sqlstate_and_number(self):
        connection = connect_pyodbc()
        for statement, state, number in (
            ("SELECT * FROM nowhere", "42S02", 208), ("SELEC", "42000", 2812), ("SELECT nothing FROM sysobjects", "42S22", 207),
            ("SELECT 1 / 0", "22012", 8134),
        ):
            with self.subTest(statement), self.assertRaises(pyodbc.Error) as caught:
                connection.cursor().execute(statement).fetchall()
            self.assertEqual(caught.exception.args[0], state)
            self.assertIn(f"({number})", caught.exception.args[1])
        connection.close()

    def test_a_statement_that_is_thrown_out_fails_and_the_connection_ends(self):
        for version in TDS_VERSIONS:
            victim, other = connect_pyodbc(version), connect_pyodbc(version)
            number = victim.execute("SELECT @@SPID").fetchval()
            other.execute("IF OBJECT_ID('ToThrowOut') IS NOT NULL DROP TABLE ToThrowOut CREATE TABLE ToThrowOut (a int)")
            caught = []

            def wait():
                try:
                    statement = "SET NOCOUNT ON INSERT ToThrowOut VALUES (1) WAITFOR DELAY '00:05:00' SELECT 'done'"
                    caught.append(victim.execute(statement).fetchall())
                except pyodbc.Error as error:
                    caught.append(error.args[1])

            thread = threading.Thread(target=wait)
            thread.start()
            count = "SELECT COUNT(*) FROM ToThrowOut"
            self.assertTrue(becomes_true(lambda: other.execute(count).fetchval() == 1), version)
            other.execute(f"KILL {number}")
            thread.join(LONGEST)
            self.assertFalse(thread.is_alive(), version)
            self.assertIn("(596)", caught[0], version)
            with self.assertRaises(pyodbc.Error):
                victim.execute("SELECT 1")
            other.close()

    def test_several_results_and_their_counts(self):
        connection = connect_pyodbc()
        cursor = connection.cursor()
        cursor.execute("SELECT 1 UNION SELECT 2; CREATE TABLE #t (a int); INSERT #t VALUES (5); SELECT a FROM #t")
        results = [cursor.fetchall()]
        while cursor.nextset():
            results.append(cursor.fetchall() if cursor.description else cursor.rowcount)
        # CREATE TABLE has no count of rows; a driver reports -1 for it or skips it.
        shown = [[tuple(row) for row in r] if isinstance(r, list) else r for r in results if r != -1]
        self.assertEqual(shown, [[(1,), (2,)], 1, [(5,)]])
        connection.close()


class Catalogue(unittest.TestCase):
    """The catalogue calls of ODBC, in every version of the protocol."""

    @classmethod
    def setUpClass(cls):
        connection = connect_pyodbc()
        for statement in (
            "CREATE DATABASE Shown",
            "USE Shown",
            "CREATE TABLE parent (id int NOT NULL CONSTRAINT pk_parent PRIMARY KEY, name nvarchar(40) NULL, "
            "amount decimal(10, 2) NULL)",
            "CREATE TABLE child (id int IDENTITY NOT NULL PRIMARY KEY, parent int NOT NULL CONSTRAINT fk_child "
            "REFERENCES parent (id), stamp timestamp)",
            "CREATE UNIQUE INDEX by_name ON parent (name)",
            "CREATE VIEW seen AS SELECT name FROM parent",
            "CREATE PROCEDURE works @a int, @b varchar(20) = 'x', @c datetime OUTPUT AS RETURN 1",
        ):
            connection.cursor().execute(statement)
        connection.close()

    def each(self):
        """A cursor of each version, in the database of the test."""
        for version in TDS_VERSIONS:
            cursor = connect_pyodbc(version).cursor()
            cursor.execute("USE Shown")
            yield cursor
            cursor.connection.close()

    def test_tables(self):
        for cursor in self.each():
            rows = cursor.tables(schema="dbo").fetchall()
            self.assertEqual(
                [(r.table_cat, r.table_schem, r.table_name, r.table_type) for r in rows],
                [("Shown", "dbo", "child", "TABLE"), ("Shown", "dbo", "parent", "TABLE"), ("Shown", "dbo", "seen", "VIEW")],
            )
            self.assertEqual([r.table_name for r in cursor.tables(table="par%", tableType="TABLE")], ["parent"])

    def test_catalogs_and_types_of_tables(self):
        for cursor in self.each():
            self.assertIn("Shown", [r.table_cat for r in cursor.tables(catalog="%", schema="", table="")])

    def test_columns(self):
        for cursor in self.each():
            rows = cursor.columns(table="parent").fetchall()
            self.assertEqual(
                [(r.column_name, r.type_name, r.column_size, r.decimal_digits, r.nullable) for r in rows],
                [("id", "int", 10, 0, 0), ("name", "nvarchar", 40, None, 1), ("amount", "decimal", 10, 2, 1)],
            )
            self.assertEqual([r.type_name for r in cursor.columns(table="child", column="id")], ["int identity"])

    def test_keys(self):
        for cursor in self.each():
            self.assertEqual([(r.column_name, r.key_seq, r.pk_name) for r in cursor.primaryKeys("parent")], [("id", 1, "pk_parent")])
            rows = cursor.foreignKeys(foreignTable="child").fetchall()
            self.assertEqual(
                [(r.pktable_name, r.pkcolumn_name, r.fkcolumn_name, r.fk_name) for r in rows], [("parent", "id", "parent", "fk_child")]
            )
            self.assertEqual([r.fktable_name for r in cursor.foreignKeys(table="parent")], ["child"])

    def test_indexes(self):
        for cursor in self.each():
            names = [(r.index_name, r.column_name, r.non_unique) for r in cursor.statistics("parent") if r.index_name]
            self.assertEqual(sorted(names), [("by_name", "name", 0), ("pk_parent", "id", 0)])

    def test_columns_that_identify_a_row_and_that_change_by_themselves(self):
        for cursor in self.each():
            self.assertEqual([r.column_name for r in cursor.rowIdColumns("parent")], ["id"])
            self.assertEqual([r.column_name for r in cursor.rowVerColumns("child")], ["stamp"])

    def test_procedures_and_their_parameters(self):
        for cursor in self.each():
            self.assertEqual([r.procedure_name for r in cursor.procedures(schema="dbo")], ["works;1"])
            rows = cursor.procedureColumns("works").fetchall()
            self.assertEqual(
                [(r.column_name, r.column_type, r.type_name) for r in rows],
                [("@RETURN_VALUE", 5, "int"), ("@a", 1, "int"), ("@b", 1, "varchar"), ("@c", 2, "datetime")],
            )

    def test_types(self):
        for cursor in self.each():
            names = [r.type_name for r in cursor.getTypeInfo(pyodbc.SQL_VARCHAR)]
            self.assertIn("varchar", names)
            every = {r.type_name for r in cursor.getTypeInfo()}
            self.assertLessEqual({"int", "nvarchar", "datetime", "uniqueidentifier", "money", "bit"}, every)


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    PROGRAM = sys.argv.pop(1)
    unittest.main()

"""What ODBC's catalogue functions and diagnostics give through FreeTDS: pyodbc asks, a development server answers.

usage: test_catalogue.py DEVSQLSERVER [unittest's arguments]. A client that is missing is a failure.
"""

import datetime
import decimal
import pathlib
import re
import subprocess
import sys
import unittest

import pyodbc

import odbc
from dev_server import LONGEST, PASSWORD, USER, DevServer

PROGRAM = ""
SERVER = None
SCRIPTS = pathlib.Path(__file__).parent.parent / "scripts"

SCHEMA = """
CREATE TABLE parent (id int NOT NULL CONSTRAINT pk_parent PRIMARY KEY, code varchar(5) NOT NULL, stamp timestamp,
    amount decimal(9,2) NULL DEFAULT (1.5), born datetime NULL, day date NULL, CONSTRAINT uq_parent UNIQUE (code))
CREATE TABLE child (parent_id int NOT NULL, line int IDENTITY NOT NULL, note nvarchar(max) NULL,
    CONSTRAINT pk_child PRIMARY KEY (parent_id, line),
    CONSTRAINT fk_child FOREIGN KEY (parent_id) REFERENCES parent (id) ON DELETE CASCADE)
CREATE INDEX ix_note ON child (line DESC)
"""


def setUpModule():
    global SERVER
    SERVER = DevServer(PROGRAM)
    connection = connect("master")
    connection.execute("CREATE DATABASE shop")
    connection.close()
    connection = connect()
    connection.execute(SCHEMA)
    connection.execute("CREATE VIEW view_of_child AS SELECT parent_id FROM child")
    connection.execute("CREATE PROCEDURE add_child @parent int, @note nvarchar(20) = NULL, @line int OUTPUT AS RETURN 0")
    connection.execute("INSERT parent (id, code) VALUES (1, 'a')")
    connection.close()


def tearDownModule():
    code = SERVER.stop()
    if code != 0:
        raise AssertionError(f"the server ended with {code}")


def connect(database="shop", password=PASSWORD, version="7.4"):
    return pyodbc.connect(
        f"DRIVER={{FreeTDS}};SERVER=127.0.0.1;PORT={SERVER.port};UID={USER};PWD={{{password}}};DATABASE={database};"
        f"TDS_Version={version}",
        autocommit=True, timeout=LONGEST,
    )


class Catalogue(unittest.TestCase):
    def setUp(self):
        self.connection = connect()
        self.cursor = self.connection.cursor()

    def tearDown(self):
        self.connection.close()

    def rows(self, answer, *columns):
        return [tuple(getattr(row, column) for column in columns) for row in answer]

    def test_tables(self):
        self.assertEqual(
            self.rows(self.cursor.tables(), "table_cat", "table_schem", "table_name", "table_type"),
            [("shop", "dbo", "child", "TABLE"), ("shop", "dbo", "parent", "TABLE"), ("shop", "dbo", "view_of_child", "VIEW")],
        )
        self.assertEqual(self.rows(self.cursor.tables(table="chi%"), "table_name"), [("child",)])
        self.assertEqual(self.rows(self.cursor.tables(tableType="VIEW"), "table_name"), [("view_of_child",)])

    def test_columns(self):
        self.assertEqual(
            self.rows(self.cursor.columns(table="parent"), "column_name", "type_name", "column_size", "nullable",
                      "column_def", "ordinal_position"),
            [("id", "int", 10, 0, None, 1), ("code", "varchar", 5, 0, None, 2), ("stamp", "timestamp", 8, 0, None, 3),
             ("amount", "decimal", 9, 1, "(1.5)", 4), ("born", "datetime", 23, 1, None, 5), ("day", "date", 10, 1, None, 6)],
        )
        self.assertEqual(self.rows(self.cursor.columns(table="child", column="li%"), "column_name", "type_name"),
                         [("line", "int identity")])

    def test_keys(self):
        self.assertEqual(self.rows(self.cursor.primaryKeys("child"), "column_name", "key_seq", "pk_name"),
                         [("parent_id", 1, "pk_child"), ("line", 2, "pk_child")])
        expected = [("parent", "id", "child", "parent_id", 1, 1, 0, "fk_child", "pk_parent")]
        names = ("pktable_name", "pkcolumn_name", "fktable_name", "fkcolumn_name", "key_seq", "update_rule",
                 "delete_rule", "fk_name", "pk_name")
        self.assertEqual(self.rows(self.cursor.foreignKeys(foreignTable="child"), *names), expected)
        self.assertEqual(self.rows(self.cursor.foreignKeys(table="parent"), *names), expected)
        self.assertEqual(self.rows(self.cursor.foreignKeys(table="child"), *names), [])

    def test_statistics(self):
        self.assertEqual(
            self.rows(self.cursor.statistics("parent"), "index_name", "non_unique", "ordinal_position", "column_name",
                      "cardinality"),
            [(None, None, None, None, 1), ("pk_parent", 0, 1, "id", None), ("uq_parent", 0, 1, "code", None)],
        )
        self.assertEqual(self.rows(self.cursor.statistics("child", unique=True), "index_name", "column_name"),
                         [(None, None), ("pk_child", "parent_id"), ("pk_child", "line")])

    def test_columns_that_identify_a_row(self):
        self.assertEqual(self.rows(self.cursor.rowIdColumns("child"), "column_name", "type_name"),
                         [("parent_id", "int"), ("line", "int identity")])
        self.assertEqual(self.rows(self.cursor.rowVerColumns("parent"), "column_name", "type_name"), [("stamp", "timestamp")])

    def test_procedures(self):
        self.assertEqual(self.rows(self.cursor.procedures(procedure="add%"), "procedure_name", "procedure_schem"),
                         [("add_child;1", "dbo")])
        self.assertEqual(
            self.rows(self.cursor.procedureColumns(procedure="add_child"), "column_name", "column_type", "type_name"),
            [("@RETURN_VALUE", 5, "int"), ("@parent", 1, "int"), ("@note", 1, "nvarchar"), ("@line", 2, "int")],
        )

    def test_types(self):
        types = {row.type_name: row for row in self.cursor.getTypeInfo()}
        for name in ("bit", "int", "bigint", "decimal", "money", "float", "datetime", "date", "varchar", "nvarchar",
                     "varbinary", "image", "uniqueidentifier", "timestamp"):
            self.assertIn(name, types)
        self.assertEqual([row.type_name for row in self.cursor.getTypeInfo(pyodbc.SQL_INTEGER)], ["int"])

    def test_parameters_of_time(self):
        # FreeTDS sends whole seconds only for a parameter that it has no description of.
        moment = datetime.datetime(2020, 2, 29, 10, 11, 12)
        row = self.cursor.execute("SELECT ?, ?, ?", moment, moment.date(), decimal.Decimal("1.50")).fetchone()
        self.assertEqual([row[0], row[2]], [moment, decimal.Decimal("1.50")])
        self.assertEqual(str(row[1])[:10], "2020-02-29")
        self.cursor.execute("INSERT parent (id, code, born, day) VALUES (7, 'p', ?, ?)", moment, moment.date())
        row = self.cursor.execute("SELECT born, day FROM parent WHERE id = 7").fetchone()
        self.assertEqual(tuple(row), (moment, moment.date()))
        self.cursor.execute("DELETE parent WHERE id = 7")


# Statement, error number and the SQLSTATE that a client of ODBC gets for it.
MISTAKES = (
    ("SELECT * FROM parent WHERE", 102, "42000"),
    ("SELECT 'abc", 105, "42000"),
    ("SELECT @nosuch", 137, "42000"),
    ("SELECT FROM parent", 156, "42000"),
    ("SELECT nosuch FROM parent", 207, "42S22"),
    ("SELECT * FROM nosuch", 208, "42S02"),
    ("INSERT parent VALUES (1)", 213, "21S01"),
    ("SELECT CONVERT(int, 'abc')", 245, "22018"),
    ("INSERT parent (id, code) VALUES (NULL, 'x')", 515, "23000"),
    ("INSERT child (parent_id) VALUES (99)", 547, "23000"),
    ("USE nosuch", 911, "08004"),
    ("CREATE DATABASE shop", 1801, "42000"),
    ("BEGIN TRANSACTION CREATE UNIQUE INDEX ux ON parent (born) INSERT parent (id, code) VALUES (2, 'b') "
     "INSERT parent (id, code) VALUES (3, 'c')", 2601, "23000"),
    ("INSERT parent (id, code) VALUES (1, 'x')", 2627, "23000"),
    ("CREATE TABLE parent (a int)", 2714, "42S01"),
    ("EXEC nosuch", 2812, "42000"),
    ("DROP TABLE nosuch", 3701, "42S02"),
    ("SELECT CONVERT(decimal(5,2), 'abc')", 8114, "42000"),
    ("SELECT 1 / 0", 8134, "22012"),
    ("INSERT parent (id, code) VALUES (4, 'too long')", 8152, "22001"),
    ("EXEC sp_helptext nosuch", 15009, "42000"),
)


def number_of(error):
    return int(re.search(r"\((\d+)\) \(", error.args[1])[1])


class Mistakes(unittest.TestCase):
    def test_have_number_and_state(self):
        for statement, number, state in MISTAKES:
            with self.subTest(statement):
                connection = connect()
                with self.assertRaises(pyodbc.Error) as raised:
                    cursor = connection.execute(statement)
                    while cursor.nextset():
                        pass
                self.assertEqual((number_of(raised.exception), raised.exception.args[0]), (number, state))
                connection.close()

    def test_of_the_login_have_number_and_state(self):
        # FreeTDS has no state of its own for 18456, for which SQL Server's driver gives 28000.
        for database, password, number in (("master", "wrong", 18456), ("nosuch", PASSWORD, 4060)):
            with self.subTest(number), self.assertRaises(odbc.OdbcError) as raised:
                odbc.Connection(
                    f"DRIVER={{FreeTDS}};SERVER=127.0.0.1;PORT={SERVER.port};UID={USER};PWD={password};"
                    f"DATABASE={database};TDS_Version=7.4"
                )
            self.assertIn(("42000", number), [record[:2] for record in raised.exception.records])


class Scripts(unittest.TestCase):
    def test_run_through_bsqldb(self):
        """bsqldb ends at the first error."""
        text = (SCRIPTS / "order_entry.sql").read_text(encoding="utf-8")
        done = subprocess.run(
            ["bsqldb", "-S", f"127.0.0.1:{SERVER.port}", "-U", USER, "-P", PASSWORD], input=text,
            capture_output=True, text=True, timeout=LONGEST,
        )
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("Gardenware is ready", done.stderr)
        connection = connect("Gardenware")
        self.assertEqual(connection.execute('SELECT COUNT(*) FROM "Order Lines"').fetchone()[0], 6)
        self.assertEqual(len(connection.execute("SELECT Picture FROM Kinds WHERE KindID = 1").fetchone()[0]), 10740)
        connection.close()


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()

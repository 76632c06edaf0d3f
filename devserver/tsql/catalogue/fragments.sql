-- Expressions and tables that several views of the catalogue use.
--
-- The views are in the .sql files beside this one. CREATE VIEW gives the columns with the types that clients see; the
-- query after it is SQLite's SQL and gives its columns these names. GO ends each view. DEFINE gives a name to a text that
-- replaces the name in every query. The server itself replaces these names:
--
--   {db}        the alias of the database in SQLite
--   {name}      the name of the database, as a literal
--   {type_rows} the server's types as rows of VALUES
--   {sessions}  the connected clients: id, login, host, program, database, own, isolation
--   {messages}  the server's messages: error, severity, description

-- The server's types. SQLite does not store them.
DEFINE {types} AS
(SELECT column1 AS type, column2 AS type_name, column3 AS xtype, column4 AS usertype, column5 AS tds,
    column6 AS bytes, column7 AS digits, column8 AS odbc, column9 AS prefix, column10 AS suffix,
    column11 AS parameters, column12 AS position
FROM {type_rows})
GO

-- Of a row c of devsql_columns, joined with t of {types}: the bytes that the column takes.
DEFINE {column_bytes} AS
CASE WHEN c.length = -1 THEN -1
    WHEN t.type_name IN ('nchar', 'nvarchar') THEN c.length * 2
    WHEN t.type_name IN ('char', 'varchar', 'binary', 'varbinary') THEN c.length
    WHEN t.type_name IN ('decimal', 'numeric') THEN
        CASE WHEN c.precision <= 9 THEN 5 WHEN c.precision <= 19 THEN 9 WHEN c.precision <= 28 THEN 13 ELSE 17 END
    WHEN t.type_name IN ('text', 'ntext', 'image') THEN 16
    ELSE t.bytes END
GO

-- Of the same row: the number of digits or characters.
DEFINE {column_digits} AS
CASE WHEN t.type_name IN ('nchar', 'nvarchar', 'char', 'varchar', 'binary', 'varbinary') THEN c.length
    WHEN t.type_name IN ('decimal', 'numeric') THEN c.precision
    WHEN t.digits = 0 THEN NULL
    ELSE t.digits END
GO

-- Of the same row: the number of digits after the decimal point.
DEFINE {column_scale} AS
CASE WHEN t.type_name IN ('decimal', 'numeric') THEN c.scale
    WHEN t.type_name IN ('money', 'smallmoney') THEN 4
    WHEN t.type_name = 'datetime' THEN 3
    WHEN t.type_name IN ('int', 'bigint', 'smallint', 'tinyint', 'smalldatetime') THEN 0
    ELSE NULL END
GO

-- The number of a user type in systypes and sys.types, for a row c of devsql_columns whose column has one.
DEFINE {own_type_number} AS
(SELECT 256 + u.rowid FROM {db}.devsql_types u WHERE u.schema || '.' || u.name = c.user_type)
GO

-- The number of a column's type in sys.types: that of its user type, otherwise that of its system type.
DEFINE {user_type_id} AS
CASE coalesce(c.user_type, '') WHEN '' THEN t.xtype WHEN 'sysname' THEN 256 ELSE {own_type_number} END
GO

-- The same in systypes.usertype.
DEFINE {usertype} AS
CASE coalesce(c.user_type, '') WHEN '' THEN t.usertype WHEN 'sysname' THEN 18 ELSE {own_type_number} END
GO

-- The number of the schema of an object o.
DEFINE {schema_id} AS
CASE WHEN o.schema = 'dbo' THEN 1
    ELSE (SELECT s.rowid + 10 FROM {db}.devsql_schemas s WHERE s.name = o.schema) END
GO

-- The column of a constraint o on a single column; 0 for any other constraint.
DEFINE {constraint_column} AS
coalesce(CASE o.type
    WHEN 'C' THEN tsql_check_column({name}, o.id)
    WHEN 'D' THEN (SELECT d.id FROM {db}.devsql_columns d WHERE d.object = o.parent AND d.default_id = o.id) END, 0)
GO

-- Kinds of types, of a row t of {types}.
DEFINE {is_integer} AS
t.type_name IN ('tinyint', 'smallint', 'int', 'bigint')
GO

DEFINE {is_decimal} AS
t.type_name IN ('decimal', 'numeric')
GO

DEFINE {is_number} AS
t.type_name IN ('bit', 'tinyint', 'smallint', 'int', 'bigint', 'decimal', 'numeric', 'money', 'smallmoney', 'real', 'float')
GO

DEFINE {is_date} AS
t.type_name IN ('datetime', 'smalldatetime', 'date')
GO

DEFINE {is_text} AS
t.type_name IN ('char', 'varchar', 'nchar', 'nvarchar', 'text', 'ntext')
GO

-- The number of ODBC 2 for the type of a row c of devsql_columns.
DEFINE {odbc_type} AS
CASE WHEN c.length <> -1 THEN t.odbc WHEN t.type_name = 'nvarchar' THEN -10 WHEN t.type_name = 'varchar' THEN -1 ELSE -4 END
GO

-- The precision of the same row, as ODBC describes it.
DEFINE {odbc_precision} AS
CASE WHEN t.type_name IN ('uniqueidentifier', 'timestamp') THEN t.bytes
    WHEN t.type_name = 'ntext' OR (c.length = -1 AND t.type_name = 'nvarchar') THEN 1073741823
    WHEN t.type_name IN ('text', 'image') OR c.length = -1 THEN 2147483647
    WHEN {is_decimal} THEN c.precision
    WHEN t.digits = 0 THEN c.length
    ELSE t.digits END
GO

-- Of a table o: the trigger that was made last for INSERT; 0 without one.
DEFINE {insert_trigger} AS
coalesce((SELECT max(r.id) FROM {db}.devsql_objects r WHERE r.parent = o.id AND r.type = 'TR'
    AND tsql_trigger_events({name}, r.id) & 1), 0)
GO

-- Of a table o: the trigger that was made last for UPDATE; 0 without one.
DEFINE {update_trigger} AS
coalesce((SELECT max(r.id) FROM {db}.devsql_objects r WHERE r.parent = o.id AND r.type = 'TR'
    AND tsql_trigger_events({name}, r.id) & 2), 0)
GO

-- Of a table o: the trigger that was made last for DELETE; 0 without one.
DEFINE {delete_trigger} AS
coalesce((SELECT max(r.id) FROM {db}.devsql_objects r WHERE r.parent = o.id AND r.type = 'TR'
    AND tsql_trigger_events({name}, r.id) & 4), 0)
GO

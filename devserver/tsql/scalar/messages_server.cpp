// Message texts with numbers from 3000 on: transactions, databases, procedures of the system, logins. Data
// only.
#include "devserver/tsql/scalar/message_table.h"

namespace devsql {

namespace {

constexpr MessageTemplate kMessages[] = {
    {3609, 16, "The transaction ended in the trigger. The batch has been aborted."},
    {3621, 10, "The statement has been terminated."},
    {3623, 16, "An invalid floating point operation occurred."},
    {3701, 11, "Cannot %1 the %2 '%3', because it does not exist or you do not have permission."},
    {3702, 16, "Cannot drop database \"%1\" because it is currently in use."},
    {3703, 16, "Cannot detach the %1 '%2' because it is currently in use."},
    {3705, 16, "Cannot use DROP %1 with '%2' because '%2' is a %3. Use %4."},
    {3708, 16, "Cannot %1 the %2 '%3' because it is a system %4."},
    {3723, 16,
     "An explicit DROP INDEX is not allowed on index '%1'. It is being used for %2 constraint enforcement."},
    {3725, 16, "The constraint '%1' is being referenced by table '%2', foreign key constraint '%3'."},
    {3726, 16, "Could not drop object '%1' because it is referenced by a FOREIGN KEY constraint."},
    {3728, 16, "'%1' is not a constraint."},
    {3729, 16, "Cannot %1 '%2' because it is being referenced by object '%3'."},
    {3732, 16,
     "Cannot drop type '%1' because it is being referenced by object '%2'. There may be other objects that "
     "reference this type."},
    {3902, 16, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    {3903, 16, "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    {3930, 16,
     "The current transaction cannot be committed and cannot support operations that write to the log file. "
     "Roll back the transaction."},
    {4002, 16,
     "The incoming tabular data stream (TDS) protocol stream is incorrect. The stream ended unexpectedly."},
    {4060, 11, "Cannot open database \"%1\" requested by the login. The login failed."},
    {4064, 11, "Cannot open user default database. Login failed."},
    {4104, 16, "The multi-part identifier \"%1\" could not be bound."},
    {4121, 16,
     "Cannot find either column \"%1\" or the user-defined function or aggregate \"%2\", or the name is "
     "ambiguous."},
    {4127, 16,
     "At least one of the arguments to COALESCE must be an expression that is not the NULL constant."},
    {4145, 15,
     "An expression of non-boolean type specified in a context where a condition is expected, near '%1'."},
    {4147, 15,
     "The query uses non-ANSI outer join operators (\"*=\" or \"=*\"). To run this query without "
     "modification, please set the compatibility level for current database to 80, using the SET "
     "COMPATIBILITY_LEVEL option of ALTER DATABASE. It is strongly recommended to rewrite the query using "
     "ANSI outer join operators (LEFT OUTER JOIN, RIGHT OUTER JOIN). In the future versions of SQL Server, "
     "non-ANSI join operators will not be supported even in backward-compatibility modes."},
    {4151, 16,
     "The type of the first argument to NULLIF cannot be the NULL constant because the type of the first "
     "argument has to be known."},
    {4405, 16,
     "View or function '%1' is not updatable because the modification affects multiple base tables."},
    {4502, 16, "View or function '%1' has more column names specified than columns defined."},
    {4506, 16,
     "Column names in each view or function must be unique. Column name '%1' in view or function '%2' is "
     "specified more than once."},
    {4511, 16, "Create View or Function failed because no column name was specified for column %1."},
    {4701, 16, "Cannot find the object \"%1\" because it does not exist or you do not have permissions."},
    {4712, 16, "Cannot truncate table '%1' because it is being referenced by a FOREIGN KEY constraint."},
    {4901, 16,
     "ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT definition "
     "specified, or the column being added is an identity or timestamp column, or alternatively if none of "
     "the previous conditions are satisfied the table must be empty to allow addition of this column. Column "
     "'%1' cannot be added to non-empty table '%2' because it does not satisfy these conditions."},
    {4902, 16, "Cannot find the object \"%1\" because it does not exist or you do not have permissions."},
    {4917, 16, "Constraint '%1' does not exist."},
    {4922, 16, "%1 %2 failed because one or more objects access this column."},
    {4923, 16,
     "ALTER TABLE DROP COLUMN failed because '%1' is the only data column in table '%2'. A table must have "
     "at least one data column."},
    {4924, 16, "%1 failed because column '%2' does not exist in table '%3'."},
    {4928, 16, "Cannot alter column '%1' because it is '%2'."},
    {5011, 14,
     "User does not have permission to alter database '%1', the database does not exist, or the database is "
     "not in a state that allows access checks."},
    {5018, 10,
     "The file \"%1\" has been modified in the system catalog. The new path will be used the next time the "
     "database is started."},
    {5021, 10, "The %1 name '%2' has been set."},
    {5030, 16, "The database could not be exclusively locked to perform the operation."},
    {5035, 16,
     "Filegroup '%1' already exists in this database. Specify a different name or remove the conflicting "
     "filegroup if it is empty."},
    {5041, 16, "MODIFY FILE failed. File '%1' does not exist."},
    {5058, 16, "Option '%1' cannot be set in database '%2'."},
    {5070, 16, "Database state cannot be changed while other users are using the database '%1'"},
    {5104, 16, "File '%1' already used."},
    {5120, 16, "Unable to open the physical file \"%1\". Operating system error %2: \"%3\"."},
    {5123, 16,
     "CREATE FILE encountered operating system error %1 while attempting to open or create the physical file "
     "'%2'."},
    {5133, 16, "Directory lookup for the file \"%1\" failed with the operating system error %2."},
    {5170, 16,
     "Cannot create file '%1' because it already exists. Change the file path or the file name, and retry "
     "the operation."},
    {5701, 10, "Changed database context to '%1'."},
    {5703, 10, "Changed language setting to %1."},
    {6104, 16, "Cannot use KILL to kill your own process."},
    {6106, 16, "Process ID %1 is not an active process ID."},
    {6401, 16, "Cannot roll back %1. No transaction or savepoint of that name was found."},
    {7119, 16, "Attempting to grow LOB beyond maximum allowed size of %1 bytes."},
    {7202, 11,
     "Could not find server '%1' in sys.servers. Verify that the correct server name was specified. If "
     "necessary, execute the stored procedure sp_addlinkedserver to add the server to sys.servers."},
    {7303, 16,
     "Cannot initialize the data source object of OLE DB provider \"%1\" for linked server \"%2\"."},
    {7314, 16,
     "The OLE DB provider \"%1\" for linked server \"%2\" does not contain the table \"%3\". The table "
     "either does not exist or the current user does not have permissions on that table."},
    {7399, 16, "The OLE DB provider \"%1\" for linked server \"%2\" reported an error. %3"},
    {7411, 16, "Server '%1' is not configured for %2."},
    {7412, 10, "OLE DB provider \"%1\" for linked server \"%2\" returned message \"%3\"."},
    {8009, 16,
     "The incoming tabular data stream (TDS) remote procedure call (RPC) protocol stream is incorrect. "
     "Parameter %1 (\"%2\"): Data type 0x%3 is unknown."},
    {8016, 16,
     "The incoming tabular data stream (TDS) remote procedure call (RPC) protocol stream is incorrect. "
     "Parameter %1 (\"%2\"): Data type 0x%3 has an invalid data length or metadata length."},
    {8101, 16,
     "An explicit value for the identity column in table '%1' can only be specified when a column list is "
     "used and IDENTITY_INSERT is ON."},
    {8102, 16, "Cannot update identity column '%1'."},
    {8106, 16, "Table '%1' does not have the identity property. Cannot perform SET operation."},
    {8107, 16, "IDENTITY_INSERT is already ON for table '%1'. Cannot perform SET operation for table '%2'."},
    {8110, 16, "Cannot add multiple PRIMARY KEY constraints to table '%1'."},
    {8111, 16, "Cannot define PRIMARY KEY constraint on nullable column in table '%1'."},
    {8112, 16, "Cannot add more than one clustered index for constraints on table '%1'."},
    {8114, 16, "Error converting data type %1 to %2."},
    {8115, 16, "Arithmetic overflow error converting %1 to data type %2."},
    {8116, 16, "Argument data type %1 is invalid for argument %2 of %3 function."},
    {8117, 16, "Operand data type %1 is invalid for %2 operator."},
    {8118, 16,
     "Column '%1.%2' is invalid in the select list because it is not contained in an aggregate function and "
     "there is no GROUP BY clause."},
    {8120, 16,
     "Column '%1.%2' is invalid in the select list because it is not contained in either an aggregate "
     "function or the GROUP BY clause."},
    {8121, 16,
     "Column '%1.%2' is invalid in the HAVING clause because it is not contained in either an aggregate "
     "function or the GROUP BY clause."},
    {8127, 16,
     "Column \"%1.%2\" is invalid in the ORDER BY clause because it is not contained in either an aggregate "
     "function or the GROUP BY clause."},
    {8133, 16,
     "At least one of the result expressions in a CASE specification must be an expression other than the "
     "NULL constant."},
    {8134, 16, "Divide by zero error encountered."},
    {8143, 16, "Parameter '%1' was supplied multiple times."},
    {8144, 16, "Procedure or function %1 has too many arguments specified."},
    {8145, 16, "%1 is not a parameter for procedure %2."},
    {8146, 16, "Procedure %1 has no parameters and arguments were supplied."},
    {8147, 16, "Could not create IDENTITY attribute on nullable column '%1', table '%2'."},
    {8152, 16, "String or binary data would be truncated."},
    {8153, 10, "Warning: Null value is eliminated by an aggregate or other SET operation."},
    {8155, 15, "No column name was specified for column %1 of '%2'."},
    {8156, 15, "The column '%1' was specified multiple times for '%2'."},
    {8158, 15, "'%1' has more columns than were specified in the column list."},
    {8159, 15, "'%1' has fewer columns than were specified in the column list."},
    {8162, 16,
     "The formal parameter \"%1\" was not declared as an OUTPUT parameter, but the actual parameter passed "
     "in requested output."},
    {8169, 16, "Conversion failed when converting from a character string to uniqueidentifier."},
    {8170, 16, "Insufficient result space to convert uniqueidentifier value to char."},
    {8179, 16, "Could not find prepared statement with handle %1."},
    {9810, 16, "The datepart %1 is not supported by date function %2 for data type %3."},
    {14262, 16, "The specified %1 ('%2') does not exist."},
    {14274, 16,
     "Cannot add, update, or delete a job (or its steps or schedules) that originated from an MSX server."},
    {15001, 16, "Object '%1' does not exist or is not a valid object for this operation."},
    {15002, 16, "The procedure '%1' cannot be executed within a transaction."},
    {15003, 16, "Only members of the %1 role can execute this stored procedure."},
    {15004, 16, "Name cannot be NULL."},
    {15006, 16, "'%1' is not a valid name because it contains invalid characters."},
    {15007, 16, "'%1' is not a valid login or you do not have permission."},
    {15008, 16, "User '%1' does not exist in the current database."},
    {15009, 16, "The object '%1' does not exist in database '%2' or is invalid for this operation."},
    {15010, 16,
     "The database '%1' does not exist. Supply a valid database name. To see available databases, use "
     "sys.databases."},
    {15011, 16, "Database option '%1' does not exist. Specify a valid database option."},
    {15014, 16, "The role '%1' does not exist in the current database."},
    {15015, 16, "The server '%1' does not exist. Use sp_helpserver to show available servers."},
    {15021, 16, "Invalid value given for parameter %1. Specify a valid parameter value."},
    {15023, 16, "User, group, or role '%1' already exists in the current database."},
    {15025, 16, "The server principal '%1' already exists."},
    {15028, 16, "The server '%1' already exists."},
    {15032, 16, "The database '%1' already exists. Specify a unique database name."},
    {15036, 16, "The data type '%1' does not exist or you do not have permission."},
    {15063, 16, "The login already has an account under a different user name."},
    {15081, 16, "Membership of the public role cannot be changed."},
    {15118, 16,
     "Password validation failed. The password does not meet the operating system policy requirements "
     "because it is not complex enough."},
    {15123, 16, "The configuration option '%1' does not exist, or it may be an advanced option."},
    {15129, 16, "'%1' is not a valid value for configuration option '%2'."},
    {15138, 16, "The database principal owns a %1 in the database, and cannot be dropped."},
    {15144, 16, "The role has members. It must be empty before it can be dropped."},
    {15151, 16, "Cannot %1 the %2 '%3', because it does not exist or you do not have permission."},
    {15165, 16, "Could not find object '%1' or you do not have permission."},
    {15174, 16,
     "Login '%1' owns one or more database(s). Change the owner of the database(s) before dropping the "
     "login."},
    {15190, 16, "There are still remote logins or linked logins for the server '%1'."},
    {15197, 16, "There is no text for object '%1'."},
    {15218, 16, "Object '%1' is not a table."},
    {15223, 11, "Error: The input parameter '%1' is not allowed to be null."},
    {15225, 11,
     "No item by the name of '%1' could be found in the current database '%2', given that @itemtype was "
     "input as '%3'."},
    {15227, 16, "The database '%1' cannot be renamed."},
    {15242, 16, "Database option '%1' is not unique."},
    {15243, 16, "The option '%1' cannot be changed for the master database."},
    {15247, 16, "User does not have permission to perform this action."},
    {15248, 11, "Either the parameter @objname is ambiguous or the claimed @objtype (%1) is wrong."},
    {15249, 11, "Error: Explicit @objtype '%1' is unrecognized."},
    {15250, 16,
     "The database name component of the object qualifier must be the name of the current database."},
    {15251, 16, "Invalid '%1' specified. It must be %2."},
    {15253, 11, "Syntax error parsing SQL identifier '%1'."},
    {15324, 16, "The option %1 cannot be changed for the '%2' database."},
    {15335, 11,
     "Error: The new name '%1' is already in use as a %2 name and would cause a duplicate that is not "
     "permitted."},
    {15336, 16, "Object '%1' cannot be renamed because the object participates in enforced dependencies."},
    {15401, 11, "Windows NT user or group '%1' not found. Check the name again."},
    {15404, 16, "Could not obtain information about Windows NT group/user '%1', error code %2."},
    {15405, 11, "Cannot use the special principal '%1'."},
    {15410, 11, "User or role '%1' does not exist in this database."},
    {15457, 10, "Configuration option '%1' changed from %2 to %3. Run the RECONFIGURE statement to install."},
    {15477, 10, "Caution: Changing any part of an object name could break scripts and stored procedures."},
    {16901, 16, "%1: This feature has not been implemented yet."},
    {16902, 16, "%1: The value of the parameter %2 is invalid."},
    {16905, 16, "The cursor is already open."},
    {16911, 16, "%1: The fetch type %2 cannot be used with forward only cursors."},
    {16915, 16, "A cursor with the name '%1' already exists."},
    {16916, 16, "A cursor with the name '%1' does not exist."},
    {16917, 16, "Cursor is not open."},
    {16922, 16, "Cursor Fetch: Implicit conversion from data type %1 to %2 is not allowed."},
    {16924, 16,
     "Cursorfetch: The number of variables declared in the INTO list must match that of selected columns."},
    {16929, 16, "The cursor is READ ONLY."},
    {16930, 16, "The requested row is not in the fetch buffer."},
    {16931, 16, "There are no rows in the current fetch buffer."},
    {16942, 16, "Could not generate asynchronous keyset. The cursor has been deallocated."},
    {16945, 16, "The cursor was not declared."},
    {16948, 16,
     "The variable '%1' is not a cursor variable, but it is used in a place where a cursor variable is "
     "expected."},
    {16950, 10, "The variable '%1' does not currently have a cursor allocated to it."},
    {16957, 16, "FOR UPDATE cannot be specified on a READ ONLY cursor."},
    {17809, 20,
     "Could not connect because the maximum number of '%1' user connections has already been reached. The "
     "system administrator can use sp_configure to increase the maximum value."},
    {17830, 20, "A network error occurred while establishing a connection; the connection has been closed."},
    {17832, 20,
     "The login packet used to open the connection is structurally invalid; the connection has been closed. "
     "Please contact the vendor of the client library."},
    {17836, 20,
     "Length specified in network packet payload did not match number of bytes read; the connection has been "
     "closed. Please contact the vendor of the client library."},
    {18452, 14,
     "Login failed. The login is from an untrusted domain and cannot be used with Windows authentication."},
    {18456, 14, "Login failed for user '%1'."},
    {18488, 14, "Login failed for user '%1'. Reason: The password of the account must be changed."},
    {50000, 16, "%1"},
};

} // namespace

std::span<const MessageTemplate> ServerMessages() {
    return kMessages;
}

} // namespace devsql

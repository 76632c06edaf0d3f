// Message texts with numbers below 3000: syntax, names, types and definitions. Data only.
#include "devserver/tsql/scalar/message_table.h"

namespace devsql {

namespace {

constexpr MessageTemplate kMessages[] = {
    {101, 15, "Query not allowed in Waitfor."},
    {102, 15, "Incorrect syntax near '%1'."},
    {103, 15, "The %1 that starts with '%2' is too long. Maximum length is %3."},
    {104, 15,
     "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or EXCEPT "
     "operator."},
    {105, 15, "Unclosed quotation mark after the character string '%1'."},
    {106, 16, "Too many table names in the query. The maximum allowable is %1."},
    {107, 15, "The column prefix '%1' does not match with a table name or alias name used in the query."},
    {108, 15, "The ORDER BY position number %1 is out of range of the number of items in the select list."},
    {109, 15,
     "There are more columns in the INSERT statement than values specified in the VALUES clause. The number "
     "of values in the VALUES clause must match the number of columns specified in the INSERT statement."},
    {110, 15,
     "There are fewer columns in the INSERT statement than values specified in the VALUES clause. The number "
     "of values in the VALUES clause must match the number of columns specified in the INSERT statement."},
    {111, 15, "'%1' must be the first statement in a query batch."},
    {112, 15, "Variables are not allowed in the %1 statement."},
    {113, 15, "Missing end comment mark '*/'."},
    {116, 16,
     "Only one expression can be specified in the select list when the subquery is not introduced with "
     "EXISTS."},
    {117, 15, "The %1 name '%2' contains more than the maximum number of prefixes. The maximum is %3."},
    {119, 15,
     "Must pass parameter number %1 and subsequent parameters as '@name = value'. After the form '@name = "
     "value' has been used, all subsequent parameters must be passed in the form '@name = value'."},
    {120, 15,
     "The select list for the INSERT statement contains fewer items than the insert list. The number of "
     "SELECT values must match the number of INSERT columns."},
    {121, 15,
     "The select list for the INSERT statement contains more items than the insert list. The number of "
     "SELECT values must match the number of INSERT columns."},
    {124, 15, "CREATE PROCEDURE contains no statements."},
    {125, 15, "Case expressions may only be nested to level %1."},
    {127, 15, "A TOP N or FETCH rowcount value may not be negative."},
    {128, 15,
     "The name \"%1\" is not permitted in this context. Valid expressions are constants, constant "
     "expressions, and (in some contexts) variables. Column names are not permitted."},
    {130, 16, "Cannot perform an aggregate function on an expression containing an aggregate or a subquery."},
    {131, 15, "The size (%1) given to the %2 '%3' exceeds the maximum allowed for any data type (%4)."},
    {132, 15,
     "The label '%1' has already been declared. Label names must be unique within a query batch or stored "
     "procedure."},
    {133, 15, "A GOTO statement references the label '%1' but the label has not been declared."},
    {134, 15,
     "The variable name '%1' has already been declared. Variable names must be unique within a query batch "
     "or stored procedure."},
    {135, 15, "Cannot use a BREAK statement outside the scope of a WHILE statement."},
    {136, 15, "Cannot use a CONTINUE statement outside the scope of a WHILE statement."},
    {137, 15, "Must declare the scalar variable \"%1\"."},
    {139, 15, "Cannot assign a default value to a local variable."},
    {141, 15,
     "A SELECT statement that assigns a value to a variable must not be combined with data-retrieval "
     "operations."},
    {142, 15, "Incorrect syntax for definition of the '%1' constraint."},
    {144, 15,
     "Cannot use an aggregate or a subquery in an expression used for the group by list of a GROUP BY "
     "clause."},
    {145, 15, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified."},
    {147, 15,
     "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a HAVING "
     "clause or a select list, and the column being aggregated is an outer reference."},
    {148, 15, "Incorrect time syntax in time string '%1' used with WAITFOR."},
    {149, 15, "Time value '%1' used with WAITFOR is not a valid value. Check date/time syntax."},
    {151, 15, "'%1' is an invalid money value."},
    {153, 15, "Invalid usage of the option %1 in the %2 statement."},
    {154, 15, "%1 is not allowed in %2."},
    {155, 15, "'%1' is not a recognized %2 option."},
    {156, 15, "Incorrect syntax near the keyword '%1'."},
    {157, 15, "An aggregate may not appear in the set list of an UPDATE statement."},
    {164, 15, "Each GROUP BY expression must contain at least one column that is not an outer reference."},
    {165, 16, "Privilege %1 may not be granted or revoked."},
    {166, 15, "'%1' does not allow specifying the database name as a prefix to the object name."},
    {168, 15, "The floating point value '%1' is out of the range of computer representation (%2 bytes)."},
    {169, 15,
     "A column has been specified more than once in the order by list. Columns in the order by list must be "
     "unique."},
    {173, 15, "The definition for column '%1' must include a data type."},
    {174, 15, "The %1 function requires %2 argument(s)."},
    {178, 15, "A RETURN statement with a return value cannot be used in this context."},
    {179, 15, "Cannot use the OUTPUT option when passing a constant to a stored procedure."},
    {180, 15, "There are too many parameters in this %1 statement. The maximum number is %2."},
    {181, 15, "Cannot use the OUTPUT option in a DECLARE, CREATE AGGREGATE or CREATE FUNCTION statement."},
    {183, 15, "The scale (%1) for column '%2' must be within the range %3 to %4."},
    {188, 15,
     "Cannot specify a log file in a CREATE DATABASE statement without also specifying at least one data "
     "file."},
    {189, 15, "The %1 function requires %2 to %3 arguments."},
    {191, 15,
     "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller "
     "queries."},
    {192, 15, "The scale must be less than or equal to the precision."},
    {193, 15,
     "The object or column name starting with '%1' is too long. The maximum length is %2 characters."},
    {195, 15, "'%1' is not a recognized %2."},
    {196, 15,
     "SELECT INTO must be the first query in a statement containing a UNION, INTERSECT or EXCEPT operator."},
    {197, 15, "EXECUTE cannot be used as a source when inserting into a table variable."},
    {199, 15, "An INSERT statement cannot contain a SELECT statement that assigns values to a variable."},
    {201, 16, "Procedure or function '%1' expects parameter '%2', which was not supplied."},
    {203, 16, "The name '%1' is not a valid identifier."},
    {205, 16,
     "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number of "
     "expressions in their target lists."},
    {206, 16, "Operand type clash: %1 is incompatible with %2"},
    {207, 16, "Invalid column name '%1'."},
    {208, 16, "Invalid object name '%1'."},
    {209, 16, "Ambiguous column name '%1'."},
    {210, 16, "Conversion failed when converting datetime from binary/varbinary string."},
    {213, 16, "Column name or number of supplied values does not match table definition."},
    {214, 16, "Procedure expects parameter '%1' of type '%2'."},
    {215, 16,
     "Parameters supplied for object '%1' which is not a function. If the parameters are intended as a table "
     "hint, a WITH keyword is required."},
    {217, 16, "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit %1)."},
    {218, 16,
     "Could not find the type '%1'. Either it does not exist or you do not have the necessary permission."},
    {219, 16, "The type '%1' already exists, or you do not have permission to create it."},
    {220, 16, "Arithmetic overflow error for data type %1, value = %2."},
    {222, 16, "The base type \"%1\" is not a valid base type for the alias data type."},
    {226, 16, "%1 statement not allowed within multi-statement transaction."},
    {229, 14, "The %1 permission was denied on the object '%2', database '%3', schema '%4'."},
    {230, 14,
     "The %1 permission was denied on the column '%2' of the object '%3', database '%4', schema '%5'."},
    {232, 16, "Arithmetic overflow error for type %1, value = %2."},
    {233, 16, "The column '%1' in table '%2' cannot be null."},
    {234, 16, "There is insufficient result space to convert a money value to %1."},
    {235, 16, "Cannot convert a char value to money. The char value has incorrect syntax."},
    {236, 16, "The conversion from char data type to money resulted in a money overflow error."},
    {239, 16, "Duplicate common table expression name '%1' was specified."},
    {240, 16,
     "Types don't match between the anchor and the recursive part in column \"%1\" of recursive query "
     "\"%2\"."},
    {241, 16, "Conversion failed when converting date and/or time from character string."},
    {242, 16, "The conversion of a %1 data type to a %2 data type resulted in an out-of-range value."},
    {243, 16, "Type %1 is not a defined system type."},
    {244, 16, "The conversion of the %1 value '%2' overflowed an %3 column. Use a larger integer column."},
    {245, 16, "Conversion failed when converting the %1 value '%2' to data type %3."},
    {248, 16, "The conversion of the %1 value '%2' overflowed an int column."},
    {256, 16,
     "The data type %1 is invalid for the %2 function. Allowed types are: char/varchar, nchar/nvarchar, and "
     "binary/varbinary."},
    {257, 16,
     "Implicit conversion from data type %1 to %2 is not allowed. Use the CONVERT function to run this "
     "query."},
    {259, 16, "Ad hoc updates to system catalogs are not allowed."},
    {260, 16,
     "Disallowed implicit conversion from data type %1 to data type %2, table '%3', column '%4'. Use the "
     "CONVERT function to run this query."},
    {261, 16, "'%1' is not a recognized function."},
    {262, 14, "%1 permission denied in database '%2'."},
    {263, 16, "Must specify table to select from."},
    {264, 16,
     "The column name '%1' is specified more than once in the SET clause or column list of an INSERT. A "
     "column cannot be assigned more than one value in the same clause. Modify the clause to make sure that "
     "a column is updated only once. If this statement updates or inserts columns into a view, column "
     "aliasing can conceal the duplication in your code."},
    {266, 16,
     "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. "
     "Previous count = %1, current count = %2."},
    {267, 16, "Object '%1' cannot be found."},
    {268, 16,
     "Cannot run SELECT INTO in this database. The database owner must run sp_dboption to enable this "
     "option."},
    {270, 16, "Object '%1' cannot be modified."},
    {271, 16,
     "The column \"%1\" cannot be modified because it is either a computed column or is the result of a "
     "UNION operator."},
    {272, 16, "Cannot update a timestamp column."},
    {273, 16,
     "Cannot insert an explicit value into a timestamp column. Use INSERT with a column list to exclude the "
     "timestamp column, or insert a DEFAULT into the timestamp column."},
    {278, 16, "The text, ntext, and image data types cannot be used in a GROUP BY clause."},
    {279, 16, "The text, ntext, and image data types are invalid in this subquery or aggregate expression."},
    {281, 16, "%1 is not a valid style number when converting from %2 to a character string."},
    {289, 16, "Cannot construct data type %1, some of the arguments have values which are not valid."},
    {291, 16, "CAST or CONVERT: invalid attributes specified for type '%1'"},
    {292, 16, "There is insufficient result space to convert a smallmoney value to %1."},
    {293, 16, "Cannot convert char value to smallmoney. The char value has incorrect syntax."},
    {294, 16,
     "The conversion from char data type to smallmoney data type resulted in a smallmoney overflow error."},
    {295, 16, "Conversion failed when converting character string to smalldatetime data type."},
    {296, 16,
     "The conversion of char data type to smalldatetime data type resulted in an out-of-range smalldatetime "
     "value."},
    {297, 16, "The user does not have permission to perform this action."},
    {298, 16,
     "The conversion from datetime data type to smalldatetime data type resulted in a smalldatetime overflow "
     "error."},
    {306, 16,
     "The text, ntext, and image data types cannot be compared or sorted, except when using IS NULL or LIKE "
     "operator."},
    {313, 16, "An insufficient number of arguments were supplied for the procedure or function %1."},
    {319, 15,
     "Incorrect syntax near the keyword 'with'. If this statement is a common table expression, an "
     "xmlnamespaces clause or a change tracking context clause, the previous statement must be terminated "
     "with a semicolon."},
    {336, 15,
     "Incorrect syntax near '%1'. If this is intended to be a common table expression, you need to "
     "explicitly terminate the previous statement with a semi-colon."},
    {343, 15, "Unknown object type '%1' used in a CREATE, DROP, or ALTER statement."},
    {402, 16, "The data types %1 and %2 are incompatible in the %3 operator."},
    {403, 16, "Invalid operator for data type. Operator equals %1, type equals %2."},
    {408, 16, "A constant expression was encountered in the ORDER BY list, position %1."},
    {409, 16, "The %1 operation cannot take a %2 data type as an argument."},
    {421, 16, "The %1 data type cannot be selected as DISTINCT because it is not comparable."},
    {422, 16, "Common table expression defined but not used."},
    {443, 16, "Invalid use of a side-effecting operator '%1' within a function."},
    {444, 16, "Select statements included within a function cannot return data to a client."},
    {448, 16, "Invalid collation '%1'."},
    {455, 16, "The last statement included within a function must be a return statement."},
    {465, 16, "Recursive references are not allowed in subqueries."},
    {505, 16,
     "The current user account was invoked with SETUSER or SP_SETAPPROLE. Changing databases is not "
     "allowed."},
    {506, 16, "The invalid escape character \"%1\" was specified in a %2 predicate."},
    {507, 16, "Invalid argument for SET ROWCOUNT. Must be a non-null non-negative integer."},
    {512, 16,
     "Subquery returned more than 1 value. This is not permitted when the subquery follows =, !=, <, <= , >, "
     ">= or when the subquery is used as an expression."},
    {515, 16,
     "Cannot insert the value NULL into column '%1', table '%2'; column does not allow nulls. %3 fails."},
    {517, 16, "Adding a value to a '%1' column caused an overflow."},
    {529, 16, "Explicit conversion from data type %1 to %2 is not allowed."},
    {530, 16,
     "The statement terminated. The maximum recursion %1 has been exhausted before statement completion."},
    {535, 16,
     "The %1 function resulted in an overflow. The number of dateparts separating two date/time instances is "
     "too large. Try to use %1 with a less precise datepart."},
    {536, 16, "Invalid length parameter passed to the %1 function."},
    {537, 16, "Invalid length parameter passed to the LEFT or SUBSTRING function."},
    {544, 16,
     "Cannot insert explicit value for identity column in table '%1' when IDENTITY_INSERT is set to OFF."},
    {545, 16,
     "Explicit value must be specified for identity column in table '%1' either when IDENTITY_INSERT is set "
     "to ON or when a replication user is inserting into a NOT FOR REPLICATION identity column."},
    {547, 16,
     "The %1 statement conflicted with the %2 constraint \"%3\". The conflict occurred in database \"%4\", "
     "table \"%5\"%6."},
    {550, 16,
     "The attempted insert or update failed because the target view either specifies WITH CHECK OPTION or "
     "spans a view that specifies WITH CHECK OPTION and one or more rows resulting from the operation did "
     "not qualify under the CHECK OPTION constraint."},
    {574, 16, "%1 statement cannot be used inside a user transaction."},
    {911, 16, "Database '%1' does not exist. Make sure that the name is entered correctly."},
    {916, 14,
     "The server principal \"%1\" is not able to access the database \"%2\" under the current security "
     "context."},
    {921, 14, "Database '%1' has not been recovered yet. Wait and try again."},
    {924, 14, "Database '%1' is already open and can only have one user at a time."},
    {927, 14, "Database '%1' cannot be opened. It is in the middle of a restore."},
    {942, 14, "Database '%1' cannot be opened because it is offline."},
    {945, 14,
     "Database '%1' cannot be opened due to inaccessible files or insufficient memory or disk space. See the "
     "SQL Server errorlog for details."},
    {952, 16, "Database '%1' is in transition. Try the statement later."},
    {1001, 15, "Line %1: Length or precision specification %2 is invalid."},
    {1002, 15, "Line %1: Specified scale %2 is invalid."},
    {1003, 15, "Line %1: %2 clause allowed only for %3."},
    {1007, 15, "The %1 '%2' is out of the range for numeric representation (maximum precision 38)."},
    {1011, 16, "The correlation name '%1' is specified multiple times in a FROM clause."},
    {1012, 16, "The correlation name '%1' has the same exposed name as table '%2'."},
    {1013, 16,
     "The objects \"%1\" and \"%2\" in the FROM clause have the same exposed names. Use correlation names to "
     "distinguish them."},
    {1014, 15, "A TOP or FETCH clause contains an invalid value."},
    {1015, 15,
     "An aggregate cannot appear in an ON clause unless it is in a subquery contained in a HAVING clause or "
     "select list, and the column being aggregated is an outer reference."},
    {1016, 15, "Outer join operators cannot be specified in a query containing joined tables."},
    {1023, 15, "Invalid parameter %1 specified for %2."},
    {1031, 15, "Percent values must be between 0 and 100."},
    {1033, 15,
     "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, and common "
     "table expressions, unless TOP, OFFSET or FOR XML is also specified."},
    {1038, 15,
     "An object or column name is missing or empty. For SELECT INTO statements, verify each column has a "
     "name. For other statements, look for empty alias names. Aliases defined as \"\" or [] are not allowed. "
     "Change the alias to a valid name."},
    {1046, 15, "Subqueries are not allowed in this context. Only scalar expressions are allowed."},
    {1049, 15, "Mixing old and new syntax to specify cursor options is not allowed."},
    {1050, 15, "This syntax is only allowed for parameterized queries."},
    {1054, 15, "Syntax '%1' is not allowed in schema-bound objects."},
    {1060, 15,
     "The number of rows provided for a TOP or FETCH clauses row count parameter must be an integer."},
    {1065, 15,
     "The NOLOCK and READUNCOMMITTED lock hints are not allowed for target tables of INSERT, UPDATE, DELETE "
     "or MERGE statements."},
    {1067, 15, "The SET SHOWPLAN statements must be the only statements in the batch."},
    {1087, 15, "Must declare the table variable \"%1\"."},
    {1204, 19,
     "The instance of the SQL Server Database Engine cannot obtain a LOCK resource at this time. Rerun your "
     "statement when there are fewer active users. Ask the database administrator to check the lock and "
     "memory configuration for this instance, or to check for long-running transactions."},
    {1205, 13,
     "Transaction (Process ID %1) was deadlocked on %2 resources with another process and has been chosen as "
     "the deadlock victim. Rerun the transaction."},
    {1222, 16, "Lock request time out period exceeded."},
    {1505, 16,
     "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name "
     "'%1' and the index name '%2'. The duplicate key value is %3."},
    {1701, 16,
     "Creating or altering table '%1' failed because the minimum row size would be %2, including %3 bytes of "
     "internal overhead. This exceeds the maximum allowable table row size of %4 bytes."},
    {1702, 16, "CREATE TABLE failed because column '%1' in table '%2' exceeds the maximum of %3 columns."},
    {1711, 16,
     "Cannot define PRIMARY KEY constraint on column '%1' in table '%2'. The computed column has to be "
     "persisted and not nullable."},
    {1750, 10, "Could not create constraint or index. See previous errors."},
    {1752, 16, "Column '%1' in table '%2' is invalid for creating a default constraint."},
    {1753, 16,
     "Column '%1.%2' is not the same length or scale as referencing column '%3.%4' in foreign key '%5'. "
     "Columns participating in a foreign key relationship must be defined with the same length and scale."},
    {1754, 16, "Defaults cannot be created on columns with an IDENTITY attribute. Table '%1', column '%2'."},
    {1755, 16, "Defaults cannot be created on columns of data type timestamp. Table '%1', column '%2'."},
    {1756, 10,
     "Skipping FOREIGN KEY constraint '%1' definition for temporary table. FOREIGN KEY constraints are not "
     "enforced on local or global temporary tables."},
    {1763, 16, "Cross-database foreign key references are not supported. Foreign key '%1'."},
    {1766, 16, "Foreign key references to temporary tables are not supported. Foreign key '%1'."},
    {1767, 16, "Foreign key '%1' references invalid table '%2'."},
    {1768, 16, "Foreign key '%1' references object '%2' which is not a user table."},
    {1769, 16, "Foreign key '%1' references invalid column '%2' in referencing table '%3'."},
    {1770, 16, "Foreign key '%1' references invalid column '%2' in referenced table '%3'."},
    {1773, 16,
     "Foreign key '%1' has implicit reference to object '%2' which does not have a primary key defined on "
     "it."},
    {1774, 16,
     "The number of columns in the referencing column list for foreign key '%1' does not match those of the "
     "primary key in the referenced table '%2'."},
    {1776, 16,
     "There are no primary or candidate keys in the referenced table '%1' that match the referencing column "
     "list in the foreign key '%2'."},
    {1778, 16, "Column '%1.%2' is not the same data type as referencing column '%3.%4' in foreign key '%5'."},
    {1779, 16, "Table '%1' already has a primary key defined on it."},
    {1781, 16, "Column already has a DEFAULT bound to it."},
    {1785, 16,
     "Introducing FOREIGN KEY constraint '%1' on table '%2' may cause cycles or multiple cascade paths. "
     "Specify ON DELETE NO ACTION or ON UPDATE NO ACTION, or modify other FOREIGN KEY constraints."},
    {1801, 16, "Database '%1' already exists. Choose a different database name."},
    {1802, 16, "CREATE DATABASE failed. Some file names listed could not be created. Check related errors."},
    {1803, 17,
     "The CREATE DATABASE statement failed. The primary file must be at least %1 MB to accommodate a copy of "
     "the model database."},
    {1807, 17, "Could not obtain exclusive lock on database '%1'. Retry the operation later."},
    {1813, 16, "Could not open new database '%1'. CREATE DATABASE is aborted."},
    {1823, 16, "A database snapshot cannot be created because it failed to start."},
    {1826, 16, "User-defined filegroups are not allowed on \"%1\"."},
    {1828, 16, "The logical file name \"%1\" is already in use. Choose a different name."},
    {1829, 16, "The FOR ATTACH option requires that at least the primary file be specified."},
    {1830, 16, "The files '%1' and '%2' are both primary files. A database can only have one primary file."},
    {1832, 20, "Cannot attach the file '%1' as database '%2'.%3"},
    {1834, 16, "The file '%1' cannot be overwritten. It is being used by database '%2'."},
    {1835, 16,
     "Unable to create/attach any new database because the number of existing databases has reached the "
     "maximum number allowed: %1."},
    {1902, 16,
     "Cannot create more than one clustered index on %1 '%2'. Drop the existing clustered index '%3' before "
     "creating another."},
    {1904, 16,
     "The %1 '%2' on table '%3' has %4 columns in the key list. The maximum limit for %1 key column list is "
     "%5."},
    {1909, 16, "Cannot use duplicate column names in %1. Column name '%2' listed more than once."},
    {1911, 16, "Column name '%1' does not exist in the target table or view."},
    {1913, 16,
     "The operation failed because an index or statistics with name '%1' already exists on %2 '%3'."},
    {1914, 16, "Index cannot be created on object '%1' because the object is not a user table or view."},
    {1919, 16, "Column '%1' in table '%2' is of a type that is invalid for use as a key column in an index."},
    {1921, 16, "Invalid %1 '%2' specified."},
    {2007, 10,
     "The module '%1' depends on the missing object '%2'. The module will still be created; however, it "
     "cannot run successfully until the object exists."},
    {2501, 16, "Cannot find a table or object with the name \"%1\". Check the system catalog."},
    {2520, 16,
     "Could not find database '%1'. The database either does not exist, or was dropped before a statement "
     "tried to use it. Verify if the database exists by querying the sys.databases catalog view."},
    {2528, 10,
     "DBCC execution completed. If DBCC printed error messages, contact your system administrator."},
    {2560, 16, "Parameter %1 is incorrect for this DBCC statement."},
    {2601, 14,
     "Cannot insert duplicate key row in object '%1' with unique index '%2'. The duplicate key value is %3."},
    {2627, 14,
     "Violation of %1 constraint '%2'. Cannot insert duplicate key in object '%3'. The duplicate key value "
     "is %4."},
    {2702, 16, "Database '%1' does not exist."},
    {2705, 16,
     "Column names in each table must be unique. Column name '%1' in table '%2' is specified more than "
     "once."},
    {2706, 11, "Table '%1' does not exist."},
    {2714, 16, "There is already an object named '%1' in the database."},
    {2715, 16, "Column, parameter, or variable #%1: Cannot find data type %2."},
    {2716, 16, "Column, parameter, or variable #%1: Cannot specify a column width on data type %2."},
    {2717, 15, "The size (%1) given to the %2 '%3' exceeds the maximum allowed (%4)."},
    {2724, 10, "Parameter or variable '%1' has an invalid data type."},
    {2727, 11, "Cannot find index '%1'."},
    {2731, 16, "Column '%1' has invalid width: %2."},
    {2732, 16, "Error number %1 is invalid. The number must be from %2 through %3 and it cannot be 50000."},
    {2733, 16, "The %1 data type is invalid for return values."},
    {2738, 16,
     "A table can only have one timestamp column. Because table '%1' already has one, the column '%2' cannot "
     "be added."},
    {2739, 16, "The text, ntext, and image data types are invalid for local variables."},
    {2740, 16,
     "SET LANGUAGE failed because '%1' is not an official language name or a language alias on this SQL "
     "Server."},
    {2741, 16, "SET DATEFORMAT date order '%1' is invalid."},
    {2742, 16, "SET DATEFIRST %1 is out of range."},
    {2744, 16,
     "Multiple identity columns specified for table '%1'. Only one identity column per table is allowed."},
    {2745, 10,
     "Process ID %1 has raised user error %2, severity %3. SQL Server is terminating this process."},
    {2747, 16, "Too many substitution parameters for RAISERROR. Cannot exceed %1 substitution parameters."},
    {2748, 16, "Cannot specify %1 data type (parameter %2) as a substitution parameter."},
    {2749, 16,
     "Identity column '%1' must be of data type int, bigint, smallint, tinyint, or decimal or numeric with a "
     "scale of 0, unencrypted, and constrained to be nonnullable."},
    {2750, 16,
     "Column or parameter #%1: Specified column precision %2 is greater than the maximum precision of %3."},
    {2751, 16,
     "Column or parameter #%1: Specified column scale %2 is greater than the specified precision of %3."},
    {2752, 16, "Identity column '%1' contains invalid SEED."},
    {2753, 16, "Identity column '%1' contains invalid INCREMENT."},
    {2754, 16,
     "Error severity levels greater than %1 can only be specified by members of the sysadmin role, using the "
     "WITH LOG option."},
    {2756, 16, "Invalid value %1 for state. State value must not be less than %2."},
    {2759, 16, "CREATE SCHEMA failed due to previous errors."},
    {2760, 16,
     "The specified schema name \"%1\" either does not exist or you do not have permission to use it."},
    {2770, 16, "The SELECT INTO statement cannot have same source and destination tables."},
    {2778, 16, "Only System Administrator can specify %1 option for %2 command."},
    {2786, 16,
     "The data type of substitution parameter %1 does not match the expected type of the format "
     "specification."},
    {2787, 16, "Invalid format specification: '%1'."},
    {2812, 16, "Could not find stored procedure '%1'."},
};

} // namespace

std::span<const MessageTemplate> LanguageMessages() {
    return kMessages;
}

} // namespace devsql

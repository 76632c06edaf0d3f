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
    {127, 15, "A TOP N or FETCH rowcount value may not be negative."},
    {128, 15,
     "The name \"%1\" is not permitted in this context. Valid expressions are constants, constant "
     "expressions, and (in some contexts) variables. Column names are not permitted."},
    {130, 16, "Cannot perform an aggregate function on an expression containing an aggregate or a subquery."},
    {131, 15, "The size (%1) given to the %2 '%3' exceeds the maximum allowed for any data type (%4)."},
    {133, 15, "A GOTO statement references the label '%1' but the label has not been declared."},
    {134, 15,
     "The variable name '%1' has already been declared. Variable names must be unique within a query batch "
     "or stored procedure."},
    {135, 15, "Cannot use a BREAK statement outside the scope of a WHILE statement."},
    {136, 15, "Cannot use a CONTINUE statement outside the scope of a WHILE statement."},
    {137, 15, "Must declare the scalar variable \"%1\"."},
    {141, 15,
     "A SELECT statement that assigns a value to a variable must not be combined with data-retrieval "
     "operations."},
    {145, 15, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified."},
    {147, 15,
     "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a HAVING "
     "clause or a select list, and the column being aggregated is an outer reference."},
    {148, 15, "Incorrect time syntax in time string '%1' used with WAITFOR."},
    {151, 15, "'%1' is an invalid money value."},
    {155, 15, "'%1' is not a recognized %2 option."},
    {156, 15, "Incorrect syntax near the keyword '%1'."},
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
    {180, 15, "There are too many parameters in this %1 statement. The maximum number is %2."},
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
    {201, 16, "Procedure or function '%1' expects parameter '%2', which was not supplied."},
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
    {217, 16, "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit %1)."},
    {218, 16,
     "Could not find the type '%1'. Either it does not exist or you do not have the necessary permission."},
    {219, 16, "The type '%1' already exists, or you do not have permission to create it."},
    {220, 16, "Arithmetic overflow error for data type %1, value = %2."},
    {226, 16, "%1 statement not allowed within multi-statement transaction."},
    {232, 16, "Arithmetic overflow error for type %1, value = %2."},
    {234, 16, "There is insufficient result space to convert a money value to %1."},
    {235, 16, "Cannot convert a char value to money. The char value has incorrect syntax."},
    {239, 16, "Duplicate common table expression name '%1' was specified."},
    {241, 16, "Conversion failed when converting date and/or time from character string."},
    {242, 16, "The conversion of a %1 data type to a %2 data type resulted in an out-of-range value."},
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
    {263, 16, "Must specify table to select from."},
    {264, 16,
     "The column name '%1' is specified more than once in the SET clause or column list of an INSERT. A "
     "column cannot be assigned more than one value in the same clause. Modify the clause to make sure that "
     "a column is updated only once. If this statement updates or inserts columns into a view, column "
     "aliasing can conceal the duplication in your code."},
    {266, 16,
     "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. "
     "Previous count = %1, current count = %2."},
    {271, 16,
     "The column \"%1\" cannot be modified because it is either a computed column or is the result of a "
     "UNION operator."},
    {272, 16, "Cannot update a timestamp column."},
    {273, 16,
     "Cannot insert an explicit value into a timestamp column. Use INSERT with a column list to exclude the "
     "timestamp column, or insert a DEFAULT into the timestamp column."},
    {281, 16, "%1 is not a valid style number when converting from %2 to a character string."},
    {289, 16, "Cannot construct data type %1, some of the arguments have values which are not valid."},
    {292, 16, "There is insufficient result space to convert a smallmoney value to %1."},
    {293, 16, "Cannot convert char value to smallmoney. The char value has incorrect syntax."},
    {295, 16, "Conversion failed when converting character string to smalldatetime data type."},
    {296, 16,
     "The conversion of char data type to smalldatetime data type resulted in an out-of-range smalldatetime "
     "value."},
    {306, 16,
     "The text, ntext, and image data types cannot be compared or sorted, except when using IS NULL or LIKE "
     "operator."},
    {313, 16, "An insufficient number of arguments were supplied for the procedure or function %1."},
    {336, 15,
     "Incorrect syntax near '%1'. If this is intended to be a common table expression, you need to "
     "explicitly terminate the previous statement with a semi-colon."},
    {343, 15, "Unknown object type '%1' used in a CREATE, DROP, or ALTER statement."},
    {402, 16, "The data types %1 and %2 are incompatible in the %3 operator."},
    {421, 16, "The %1 data type cannot be selected as DISTINCT because it is not comparable."},
    {443, 16, "Invalid use of a side-effecting operator '%1' within a function."},
    {444, 16, "Select statements included within a function cannot return data to a client."},
    {455, 16, "The last statement included within a function must be a return statement."},
    {506, 16, "The invalid escape character \"%1\" was specified in a %2 predicate."},
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
    {911, 16, "Database '%1' does not exist. Make sure that the name is entered correctly."},
    {924, 14, "Database '%1' is already open and can only have one user at a time."},
    {942, 14, "Database '%1' cannot be opened because it is offline."},
    {952, 16, "Database '%1' is in transition. Try the statement later."},
    {1001, 15, "Line %1: Length or precision specification %2 is invalid."},
    {1007, 15, "The %1 '%2' is out of the range for numeric representation (maximum precision 38)."},
    {1011, 16, "The correlation name '%1' is specified multiple times in a FROM clause."},
    {1013, 16,
     "The objects \"%1\" and \"%2\" in the FROM clause have the same exposed names. Use correlation names to "
     "distinguish them."},
    {1023, 15, "Invalid parameter %1 specified for %2."},
    {1033, 15,
     "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, and common "
     "table expressions, unless TOP, OFFSET or FOR XML is also specified."},
    {1038, 15,
     "An object or column name is missing or empty. For SELECT INTO statements, verify each column has a "
     "name. For other statements, look for empty alias names. Aliases defined as \"\" or [] are not allowed. "
     "Change the alias to a valid name."},
    {1046, 15, "Subqueries are not allowed in this context. Only scalar expressions are allowed."},
    {1060, 15,
     "The number of rows provided for a TOP or FETCH clauses row count parameter must be an integer."},
    {1087, 15, "Must declare the table variable \"%1\"."},
    {1205, 13,
     "Transaction (Process ID %1) was deadlocked on %2 resources with another process and has been chosen as "
     "the deadlock victim. Rerun the transaction."},
    {1222, 16, "Lock request time out period exceeded."},
    {1505, 16,
     "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name "
     "'%1' and the index name '%2'. The duplicate key value is %3."},
    {1702, 16, "CREATE TABLE failed because column '%1' in table '%2' exceeds the maximum of %3 columns."},
    {1752, 16, "Column '%1' in table '%2' is invalid for creating a default constraint."},
    {1753, 16,
     "Column '%1.%2' is not the same length or scale as referencing column '%3.%4' in foreign key '%5'. "
     "Columns participating in a foreign key relationship must be defined with the same length and scale."},
    {1754, 16, "Defaults cannot be created on columns with an IDENTITY attribute. Table '%1', column '%2'."},
    {1755, 16, "Defaults cannot be created on columns of data type timestamp. Table '%1', column '%2'."},
    {1767, 16, "Foreign key '%1' references invalid table '%2'."},
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
    {1801, 16, "Database '%1' already exists. Choose a different database name."},
    {1802, 16, "CREATE DATABASE failed. Some file names listed could not be created. Check related errors."},
    {1813, 16, "Could not open new database '%1'. CREATE DATABASE is aborted."},
    {1828, 16, "The logical file name \"%1\" is already in use. Choose a different name."},
    {1829, 16, "The FOR ATTACH option requires that at least the primary file be specified."},
    {1902, 16,
     "Cannot create more than one clustered index on %1 '%2'. Drop the existing clustered index '%3' before "
     "creating another."},
    {1911, 16, "Column name '%1' does not exist in the target table or view."},
    {1913, 16,
     "The operation failed because an index or statistics with name '%1' already exists on %2 '%3'."},
    {1919, 16, "Column '%1' in table '%2' is of a type that is invalid for use as a key column in an index."},
    {2501, 16, "Cannot find a table or object with the name \"%1\". Check the system catalog."},
    {2528, 10,
     "DBCC execution completed. If DBCC printed error messages, contact your system administrator."},
    {2601, 14,
     "Cannot insert duplicate key row in object '%1' with unique index '%2'. The duplicate key value is %3."},
    {2627, 14,
     "Violation of %1 constraint '%2'. Cannot insert duplicate key in object '%3'. The duplicate key value "
     "is %4."},
    {2705, 16,
     "Column names in each table must be unique. Column name '%1' in table '%2' is specified more than "
     "once."},
    {2714, 16, "There is already an object named '%1' in the database."},
    {2715, 16, "Column, parameter, or variable #%1: Cannot find data type %2."},
    {2716, 16, "Column, parameter, or variable #%1: Cannot specify a column width on data type %2."},
    {2717, 15, "The size (%1) given to the %2 '%3' exceeds the maximum allowed (%4)."},
    {2732, 16, "Error number %1 is invalid. The number must be from %2 through %3 and it cannot be 50000."},
    {2738, 16,
     "A table can only have one timestamp column. Because table '%1' already has one, the column '%2' cannot "
     "be added."},
    {2739, 16, "The text, ntext, and image data types are invalid for local variables."},
    {2741, 16, "SET DATEFORMAT date order '%1' is invalid."},
    {2742, 16, "SET DATEFIRST %1 is out of range."},
    {2744, 16,
     "Multiple identity columns specified for table '%1'. Only one identity column per table is allowed."},
    {2747, 16, "Too many substitution parameters for RAISERROR. Cannot exceed %1 substitution parameters."},
    {2748, 16, "Cannot specify %1 data type (parameter %2) as a substitution parameter."},
    {2749, 16,
     "Identity column '%1' must be of data type int, bigint, smallint, tinyint, or decimal or numeric with a "
     "scale of 0, unencrypted, and constrained to be nonnullable."},
    {2750, 16,
     "Column or parameter #%1: Specified column precision %2 is greater than the maximum precision of %3."},
    {2754, 16,
     "Error severity levels greater than %1 can only be specified by members of the sysadmin role, using the "
     "WITH LOG option."},
    {2760, 16,
     "The specified schema name \"%1\" either does not exist or you do not have permission to use it."},
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

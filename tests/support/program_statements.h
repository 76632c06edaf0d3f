// SQL statements that the program sends and that several suites expect. They are written here a second time,
// so that a change in the program is found.
#pragma once

#include <string>

namespace support {

/// Asks whether replication is installed: its jobs.
inline constexpr char kJobQuery[] =
    "select [job_id] from msdb.dbo.sysjobs where category_id = (select category_id From "
    "msdb.dbo.syscategories Where (category_class = 1) AND ([name] = 'REPL-Distribution'))";
/// Asks for the version of a batch database.
inline constexpr char kVersionQuery[] =
    "SELECT Value FROM LKConfig WHERE ParameterName like N'DatabaseVersion'";
/// Asks for the tables and views of a database.
inline constexpr char kTableQuery[] = "SELECT DISTINCT TABLE_NAME FROM INFORMATION_SCHEMA.COLUMNS";

/// Asks for the identity columns of a table.
inline std::string IdentityQuery(const std::string& table) {
    return "SELECT COLUMN_NAME AS [Column] FROM INFORMATION_SCHEMA.COLUMNS WHERE TABLE_NAME = '" + table +
           "' AND COLUMNPROPERTY(OBJECT_ID('" + table + "'), COLUMN_NAME, 'IsIdentity')=1";
}

} // namespace support

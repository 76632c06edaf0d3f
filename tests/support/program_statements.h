// Statements of the program that several suites expect, written independently of the program's own.
#pragma once

#include <string>

namespace support {

inline constexpr char kJobQuery[] =
    "select [job_id] from msdb.dbo.sysjobs where category_id = (select category_id From "
    "msdb.dbo.syscategories Where (category_class = 1) AND ([name] = 'REPL-Distribution'))";
inline constexpr char kVersionQuery[] =
    "SELECT Value FROM LKConfig WHERE ParameterName like N'DatabaseVersion'";
inline constexpr char kTableQuery[] = "SELECT DISTINCT TABLE_NAME FROM INFORMATION_SCHEMA.COLUMNS";

/// Asks for the identity columns of a table.
inline std::string IdentityQuery(const std::string& table) {
    return "SELECT COLUMN_NAME AS [Column] FROM INFORMATION_SCHEMA.COLUMNS WHERE TABLE_NAME = '" + table +
           "' AND COLUMNPROPERTY(OBJECT_ID('" + table + "'), COLUMN_NAME, 'IsIdentity')=1";
}

} // namespace support

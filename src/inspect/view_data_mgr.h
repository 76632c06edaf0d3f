// CViewDataMgr: what a database holds, as plain arrays of strings: its tables and their data, its stored
// procedures, their texts, parameters and results. Knows no window.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ado/command.h"
#include "inspect/text_table.h"
#include "managers/database_manager.h"

namespace kv {

/// Free-standing parameters from index 1; element 0 is no object. The upper bound is their number.
using ParameterArray = std::vector<std::unique_ptr<ado::Parameter>>;

/// Every operation opens a connection of its own straight into the database and gives true if it ran to its
/// end. A failure is one line of the log and what the server reported in the object's errors; an array then
/// keeps what had been written. Names go into the statements as they are.
///
/// Arrays with one index: element 0 is empty, the upper bound is the number of elements behind it. A table of
/// texts: row 0 has the fields' names, column 0 is unused, the database's NULL is "(Null)".
class CViewDataMgr : public DatabaseManager {
  public:
    CViewDataMgr() : DatabaseManager("CViewDataMgr") {}

    /// Tables and views. A database without any is a failure.
    bool GetTables(const std::string& strDbName, std::vector<std::string>& arrTables);
    /// A whole table or view, and the names of its identity columns.
    bool GetData(const std::string& strDbName, const std::string& strTable,
                 std::vector<std::string>& arrTableIdentifiers, TextTable& arrTableData);

    /// Names as the catalogue has them, up to the first ";". None is no failure.
    bool GetStoredProcedures(const std::string& strDbName, std::vector<std::string>& arrStoredProcedures);
    /// The source text; the empty string on failure.
    std::string GetStoredProcedure(const std::string& strDbName, const std::string& strStoredProcedure);
    bool GetStoredProcedureParameters(const std::string& strDbName, const std::string& strStoredProcedure,
                                      ParameterArray& arrParameters);
    /// Runs the procedure with the values of the parameters, matched by name, and gives its first result.
    /// Afterwards arrParameters has the values that went in and, where a parameter gives something back, what
    /// came out. False for a procedure without a result, which has run all the same.
    bool ExecuteStoredProcedure(const std::string& strDbName, const std::string& strStoredProcedure,
                                ParameterArray& arrParameters, TextTable& arrData);
};

} // namespace kv

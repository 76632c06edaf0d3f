// CViewDataMgr: reads a database's tables and their data, and its stored procedures with their texts,
// parameters and results, into plain arrays of strings. Knows no window.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ado/command.h"
#include "inspect/text_table.h"
#include "managers/database_manager.h"

namespace kv {

/// A procedure's parameters, from element 1 on; element 0 is null. They belong to no command.
using ParameterArray = std::vector<std::unique_ptr<ado::Parameter>>;

/// Every operation opens its own connection to the database and returns true if it ran to its end. A failure
/// is logged as one line, the server's errors are kept in the object, and an array keeps what was already
/// written. Names are put into the statements without quoting.
///
/// Element 0 of an array is empty; the results follow from element 1 on. In a TextTable row 0 has the names
/// of the fields, column 0 is unused, and NULL is "(Null)".
class CViewDataMgr : public DatabaseManager {
  public:
    CViewDataMgr() : DatabaseManager("CViewDataMgr") {}

    /// Lists tables and views. Fails if the database has neither.
    bool GetTables(const std::string& strDbName, std::vector<std::string>& arrTables);
    /// Reads a whole table or view, and the names of its identity columns.
    bool GetData(const std::string& strDbName, const std::string& strTable,
                 std::vector<std::string>& arrTableIdentifiers, TextTable& arrTableData);

    /// Lists the names, each cut before its first ";". A database without procedures is not a failure.
    bool GetStoredProcedures(const std::string& strDbName, std::vector<std::string>& arrStoredProcedures);
    /// Returns the source text; empty on failure.
    std::string GetStoredProcedure(const std::string& strDbName, const std::string& strStoredProcedure);
    bool GetStoredProcedureParameters(const std::string& strDbName, const std::string& strStoredProcedure,
                                      ParameterArray& arrParameters);
    /// Runs the procedure with the values of the parameters, matched by name, and reads its first result.
    /// Afterwards output parameters in arrParameters have their output values, the others are unchanged.
    /// Returns false for a procedure without a result, although it has run.
    bool ExecuteStoredProcedure(const std::string& strDbName, const std::string& strStoredProcedure,
                                ParameterArray& arrParameters, TextTable& arrData);
};

} // namespace kv

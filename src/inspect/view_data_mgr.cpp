// CViewDataMgr's operations on tables.
#include "inspect/view_data_mgr.h"

namespace kv {
namespace {

/// Seconds allowed for connecting and for each statement.
constexpr std::int32_t kTableTimeoutSeconds = 60;

std::string IdentityQuery(const std::string& strTable) {
    return "SELECT COLUMN_NAME AS [Column] FROM INFORMATION_SCHEMA.COLUMNS WHERE TABLE_NAME = '" + strTable +
           "' AND COLUMNPROPERTY(OBJECT_ID('" + strTable + "'), COLUMN_NAME, 'IsIdentity')=1";
}

/// Appends field 0 of every record. The element is added first, so a value that cannot be read leaves it
/// empty.
void AppendFirstField(std::vector<std::string>& texts, ado::Recordset& rows) {
    for (; !rows.Eof(); rows.MoveNext()) {
        texts.emplace_back();
        texts.back() = rows.Fields().Item(0).Value().ToString();
    }
}

} // namespace

bool CViewDataMgr::GetTables(const std::string& strDbName, std::vector<std::string>& arrTables) {
    return RunOperation(ErrorSource("GetTables", strDbName), [&](Operation& operation) {
        arrTables.assign(1, {});
        operation.OpenStandard(strDbName, kTableTimeoutSeconds);
        const auto rows = operation.Execute("SELECT DISTINCT TABLE_NAME FROM INFORMATION_SCHEMA.COLUMNS");
        if (!rows) {
            operation.Fail("Table information could not be retrieved from the SQL Server!");
        }
        if (rows->Eof() && rows->Bof()) {
            operation.Fail("No tables could be retrieved from '" + strDbName + "' in the SQL Server!");
        }
        AppendFirstField(arrTables, *rows);
    });
}

bool CViewDataMgr::GetData(const std::string& strDbName, const std::string& strTable,
                           std::vector<std::string>& arrTableIdentifiers, TextTable& arrTableData) {
    return RunOperation(ErrorSource("GetData", strDbName, strTable), [&](Operation& operation) {
        operation.OpenStandard(strDbName, kTableTimeoutSeconds);
        auto rows = operation.Execute(IdentityQuery(strTable));
        arrTableIdentifiers.assign(1, {});
        if (rows && !(rows->Eof() && rows->Bof())) {
            rows->MoveFirst();
            AppendFirstField(arrTableIdentifiers, *rows);
        }
        rows = operation.Execute("SELECT * FROM " + strTable);
        if (!rows) {
            operation.Fail("Data could not be retrieved from the SQL Server!");
        }
        FillTable(arrTableData, *rows);
    });
}

} // namespace kv

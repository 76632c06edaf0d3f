// Asks a server for its databases and their files.
#include "admin/database_catalogue.h"

#include "text/text.h"

namespace kv {
namespace {

std::string TrimmedText(const ado::Recordset& rows, std::int32_t column) {
    return std::string(text::Trim(rows.Fields().Item(column).Value().ToString()));
}

} // namespace

bool CatalogueManager::ListDatabases(const char* statement, std::vector<std::string>& arrDatabase) {
    arrDatabase.assign(1, {});
    return RunOperation("::GetDatabases", [&](Operation& operation) {
        operation.OpenStandard("master");
        const auto rows = operation.Execute(statement);
        if (!rows) {
            operation.Fail("Database information could not be found!");
        }
        if (rows->Eof() && rows->Bof()) {
            operation.Fail("No information about available databases could be found!");
        }
        while (!rows->Eof()) {
            // The element is added first: if the name cannot be read, an empty element stays at the end.
            arrDatabase.emplace_back();
            arrDatabase.back() = rows->Fields().Item(0).Value().ToString();
            rows->MoveNext();
        }
    });
}

bool CatalogueManager::ReadDatabaseInfo(const std::string& strDbName, const DatabaseFiles& files) {
    return RunOperation(ErrorSource("GetDatabaseInfo", strDbName), [&](Operation& operation) {
        operation.OpenStandard("master");
        const auto rows = operation.Execute("use [" + strDbName + "] exec sp_helpfile");
        if (!rows) {
            operation.Fail("The database '" + strDbName + "' could not be found!");
        }
        if (rows->Eof() && rows->Bof()) {
            operation.Fail("No information about the database '" + strDbName + "' could be found!");
        }
        files.data_file_name = TrimmedText(*rows, 0);
        files.data_file_path = TrimmedText(*rows, 2);
        rows->MoveNext();
        files.log_file_name = TrimmedText(*rows, 0);
        files.log_file_path = TrimmedText(*rows, 2);
    });
}

} // namespace kv

// The statements that remove, rename and upgrade a database. Their texts and their
// order are part of the product and must not change.
#include "admin/upgrade_db_mgr.h"

#include "admin/server_path.h"
#include "base/int16.h"
#include "platform/files.h"

namespace kv {
namespace {

constexpr char kVersionQuery[] = "SELECT Value FROM LKConfig WHERE ParameterName like N'DatabaseVersion'";
/// The version of a database that has no entry for its version.
constexpr std::int16_t kFirstVersion = 1;

/// Returns the text as a Unicode literal of T-SQL. Quotes in it are not doubled.
std::string Unicode(const std::string& text) {
    return "N'" + text + "'";
}

/// Reads the version from the first row; without a row `version` is unchanged.
void ReadVersion(Operation& operation, Int16& version) {
    const auto rows = operation.Execute(kVersionQuery);
    if (rows && !(rows->Eof() && rows->Bof())) {
        version = Int16(rows->Fields().Item(0).Value().ToInt16());
    }
}

std::string Digits(Int16 number) {
    return std::to_string(number.Value());
}

} // namespace

bool CUpgradeDbMgr::GetDatabases(std::vector<std::string>& arrDatabase) {
    return ListDatabases("exec sp_helpdb", arrDatabase);
}

bool CUpgradeDbMgr::GetDatabaseInfo(const std::string& strDbName, std::string& strDataFileName,
                                    std::string& strDataFilePath, std::string& strLogFileName,
                                    std::string& strLogFilePath) {
    return ReadDatabaseInfo(strDbName, {strDataFileName, strDataFilePath, strLogFileName, strLogFilePath});
}

bool CUpgradeDbMgr::RemoveDatabase(const std::string& strDbName) {
    return RunOperation(ErrorSource("RemoveDatabase", strDbName), [&](Operation& operation) {
        operation.OpenStandard("master");
        const std::string guard =
            "IF EXISTS (SELECT name FROM master.dbo.sysdatabases WHERE name = N'" + strDbName + "') ";
        operation.Execute(guard + "ALTER DATABASE [" + strDbName +
                          "] SET SINGLE_USER WITH ROLLBACK IMMEDIATE");
        operation.Execute(guard + "ALTER DATABASE [" + strDbName + "] SET MULTI_USER");
        operation.Execute(guard + "DROP DATABASE [" + strDbName + "]");
    });
}

bool CUpgradeDbMgr::RenameDatabase(const std::string& strDbName, const std::string& strNewDbName) {
    return RunOperation(ErrorSource("RenameDatabase", strDbName, strNewDbName), [&](Operation& operation) {
        std::string data_name;
        std::string data_path;
        std::string log_name;
        std::string log_path;
        if (!GetDatabaseInfo(strDbName, data_name, data_path, log_name, log_path)) {
            operation.Fail("Database information could not be found for '" + strDbName + "'!");
        }
        if (HasLostCharacter(data_path) || HasLostCharacter(log_path)) {
            operation.Fail("The path of a file of '" + strDbName +
                           "' has characters that the code page lacks!");
        }
        operation.OpenStandard("master");
        const std::string new_data_path =
            ServerPath(Selected().sql_data_path, strNewDbName + "_data.mdf", data_path);
        const std::string new_log_path =
            ServerPath(Selected().sql_data_path, strNewDbName + "_log.ldf", log_path);

        operation.Execute("use master");
        operation.Execute("ALTER DATABASE [" + strDbName + "] SET SINGLE_USER WITH ROLLBACK IMMEDIATE");
        operation.Execute("ALTER DATABASE [" + strDbName + "] SET MULTI_USER");
        // No brackets from here on: a name that needs them fails here, before anything has been changed.
        operation.Execute("ALTER DATABASE " + strDbName + " MODIFY NAME = " + strNewDbName);
        operation.Execute("ALTER DATABASE " + strNewDbName + " MODIFY FILE (NAME=" + data_name +
                          ", NEWNAME=" + strNewDbName + "_data)");
        operation.Execute("ALTER DATABASE " + strNewDbName + " MODIFY FILE (NAME=" + log_name +
                          ", NEWNAME=" + strNewDbName + "_log)");
        operation.Execute("sp_detach_db " + Unicode(strNewDbName) + ", N'true'");
        platform::CopyFileOver(data_path, new_data_path);
        platform::CopyFileOver(log_path, new_log_path);
        platform::DeleteFileAt(data_path);
        platform::DeleteFileAt(log_path);
        operation.Execute("sp_attach_db " + Unicode(strNewDbName) + ", " + Unicode(new_data_path) + ", " +
                          Unicode(new_log_path));
    });
}

bool CUpgradeDbMgr::UpgradeDatabase(const std::string& strDbName, const std::string& strSourceDBName) {
    return RunOperation(
        ErrorSource("UpgradeDatabase", strDbName, strSourceDBName), [&](Operation& operation) {
            Int16 source_version(kFirstVersion);
            Int16 version(kFirstVersion);
            operation.Create();
            operation.SetTimeouts(kTimeoutSeconds);
            operation.SetDatabase(strSourceDBName);
            operation.Open();
            ReadVersion(operation, source_version);
            operation.Close();
            operation.SetDatabase(strDbName);
            operation.Open();
            ReadVersion(operation, version);

            if (version == Int16(kFirstVersion)) {
                operation.Fail("A destination databases with version 1 can not be upgraded!");
            }
            if (version == source_version) {
                operation.Fail("The source and destination databases have the same version: " +
                               Digits(version));
            }
            if (version < source_version) {
                operation.Fail(
                    "The destination database version is older than the source have the same version. "
                    "Dest. ver.: " +
                    Digits(version) + " Soucrce. ver.: " + Digits(source_version));
            }
            operation.Execute("spUninstallReplication");
            operation.Execute("spUpgradeDatabase " + Digits(source_version) + ", " + Digits(version) + ", " +
                              Unicode(strSourceDBName) + ", " + Unicode(strDbName) + ", " +
                              Unicode(Selected().user) + ", " + Unicode(Selected().password));
        });
}

} // namespace kv

// The statements of a synchronisation and their order.
#include "admin/synchronize_db_mgr.h"

#include <array>

#include "admin/sql_replication_mgr.h"

namespace kv {

bool CSynchronizeDbMgr::GetDatabases(std::vector<std::string>& arrDatabase) {
    return ListDatabases("use [master] exec sp_helpdb", arrDatabase);
}

bool CSynchronizeDbMgr::GetDatabaseInfo(const std::string& strDbName, std::string& strDataFileName,
                                        std::string& strDataFilePath, std::string& strLogFileName,
                                        std::string& strLogFilePath) {
    return ReadDatabaseInfo(strDbName, {strDataFileName, strDataFilePath, strLogFileName, strLogFilePath});
}

std::string CSynchronizeDbMgr::SynchronizeStatement(const std::string& strSourceDb,
                                                    const std::string& strDestDb) const {
    const ServerSettings& source = Selected();
    const ServerSettings& other = Other();
    // The source server's login is passed twice: as the first arguments, and in the pairs after the
    // databases.
    const std::array<const std::string*, 10> arguments = {
        &source.user, &source.password, &other.server, &source.server,  &strDestDb,
        &strSourceDb, &other.user,      &source.user,  &other.password, &source.password};
    std::string statement = "spStdSynchronize N'";
    const char* between = "";
    for (const std::string* argument : arguments) {
        statement += between + *argument;
        between = "', N'";
    }
    return statement + "'";
}

bool CSynchronizeDbMgr::Synchronize(const std::string& strSourceDb, const std::string& strDestDb) {
    return RunOperation(ErrorSource("Synchronize", strSourceDb, strDestDb), [&](Operation& operation) {
        operation.OpenStandard(strSourceDb);
        const bool replicates = ServerHasReplicationJob(operation);
        if (replicates) {
            operation.Execute(kUninstallReplication);
        }
        operation.Execute(SynchronizeStatement(strSourceDb, strDestDb));
        if (replicates) {
            operation.Execute(kInstallReplication);
        }
    });
}

} // namespace kv

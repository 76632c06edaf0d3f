// The statements about replication.
#include "admin/sql_replication_mgr.h"

namespace kv {

bool ServerHasReplicationJob(Operation& operation) {
    const auto rows = operation.Execute(
        "select [job_id] from msdb.dbo.sysjobs where category_id = (select category_id From "
        "msdb.dbo.syscategories Where (category_class = 1) AND ([name] = 'REPL-Distribution'))");
    if (!rows) {
        operation.Fail("Replication information could not be retrieved from the SQL Server!");
    }
    return !(rows->Eof() && rows->Bof());
}

bool CSQLReplicationMgr::IsReplicationInstalled(const std::string& strDbName,
                                                bool& blnReplicationIsInstalled) {
    blnReplicationIsInstalled = false;
    bool has_job = false;
    const bool answered =
        RunOperation(ErrorSource("IsReplicationInstalled", strDbName), [&](Operation& operation) {
            operation.OpenStandard(strDbName);
            has_job = ServerHasReplicationJob(operation);
        });
    blnReplicationIsInstalled = answered && has_job;
    return answered;
}

bool CSQLReplicationMgr::InstallReplication(const std::string& strDbName) {
    return RunOperation(ErrorSource("InstallReplication", strDbName), [&](Operation& operation) {
        operation.OpenStandard(strDbName);
        operation.Execute(kInstallReplication);
    });
}

bool CSQLReplicationMgr::UninstallReplication(const std::string& strDbName) {
    return RunOperation(ErrorSource("UninstallReplication", strDbName), [&](Operation& operation) {
        operation.OpenStandard(strDbName);
        operation.Execute(kUninstallReplication);
    });
}

} // namespace kv

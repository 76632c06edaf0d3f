#include "admin/sql_replication_mgr.h"

#include "admin/replication_job.h"

namespace kv {

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

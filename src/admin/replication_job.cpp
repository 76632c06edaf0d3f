#include "admin/replication_job.h"

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

} // namespace kv

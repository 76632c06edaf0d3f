// The procedures of replication: they keep publications and their subscribers, and make and remove the jobs
// that a real server's agents would run. No row is replicated.
#pragma once

#include <span>

#include "devserver/tsql/run/system_call.h"

namespace devsql {

/// Distributor, publishers, subscribers.
std::span<const SystemProcedure> DistributorProcedures();
/// Publications, articles, subscriptions.
std::span<const SystemProcedure> PublicationProcedures();

// ---- shared by the two
/// Makes an agent's job in msdb. No agent runs it.
void AddAgentJob(SystemCall& call, const std::string& name, const std::string& category);
/// Does nothing if there is no such job.
void DropAgentJob(SystemCall& call, const std::string& name);
/// Removes all publications of a database, with their subscriptions and jobs.
void UnpublishDatabase(SystemCall& call, const std::string& database);
/// The name of the log reader's job, which serves the whole database.
std::string LogReaderJob(SystemCall& call, const std::string& database);

} // namespace devsql

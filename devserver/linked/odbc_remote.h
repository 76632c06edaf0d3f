// Reaches other servers through ODBC and its driver "SQL Server". Knows nothing of the T-SQL that uses them.
#pragma once

#include "devserver/linked/remote.h"

namespace devsql {

/// Connects to the other server. Throws RemoteFailure. It is the RemoteConnector of the program.
std::unique_ptr<RemoteConnection> ConnectByOdbc(const RemoteSource& source);

} // namespace devsql

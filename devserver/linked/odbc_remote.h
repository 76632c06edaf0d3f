// Other servers by ODBC and the driver "SQL Server". Knows nothing of the language.
#pragma once

#include "devserver/linked/remote.h"

namespace devsql {

/// Connects to the other server. Throws RemoteFailure.
std::unique_ptr<RemoteConnection> ConnectByOdbc(const RemoteSource& source);

} // namespace devsql

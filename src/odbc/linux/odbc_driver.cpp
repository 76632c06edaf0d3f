// Prepares FreeTDS, the driver on Linux.
#include "odbc/odbc_driver.h"

#include <cstdlib>

namespace odbc {

void PrepareDriver() {
    // Without a given version of the protocol FreeTDS 1.3 tries one version after the other. With a server
    // that accepts the connection and does not answer, it hangs for ever at the last version, whatever the
    // login time-out is. With a given version the time-out works.
    constexpr int kKeepUsersSetting = 0;
    ::setenv("TDSVER", "7.4", kKeepUsersSetting);
}

} // namespace odbc

#include "odbc/odbc_driver.h"

#include <cstdlib>

namespace platform::odbc {

void PrepareDriver() {
    // Left to find the protocol's version by trial, FreeTDS 1.3 tries one after the other where a server
    // takes the connection but does not answer, and hangs for good in the last one, whatever the login
    // time-out is. With one version the time-out holds. What the user has set stands.
    constexpr int kKeep = 0;
    ::setenv("TDSVER", "7.4", kKeep);
}

} // namespace platform::odbc

#include "odbc/odbc_driver.h"

#include <cstdlib>

namespace odbc {

void PrepareDriver() {
    // Without a given version of the protocol FreeTDS 1.3 tries one after the other. With a server that
    // accepts the connection and does not answer, it hangs for ever in the last one, whatever the login
    // time-out is. With a given version the time-out works. A version that the user has set is kept.
    constexpr int kKeep = 0;
    ::setenv("TDSVER", "7.4", kKeep);
}

} // namespace odbc

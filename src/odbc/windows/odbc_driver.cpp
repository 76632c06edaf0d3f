// The driver on Windows needs no preparation.
#include "odbc/odbc_driver.h"

namespace odbc {

void PrepareDriver() {} // the system's own driver needs no preparation

} // namespace odbc

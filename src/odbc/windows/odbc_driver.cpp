#include "odbc/odbc_driver.h"

namespace platform::odbc {

void PrepareDriver() {} // the system's own driver needs no preparation

} // namespace platform::odbc

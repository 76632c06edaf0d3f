// Prepares the system's driver for its first use.
#pragma once

namespace platform::odbc {

/// To be called before the first connection; may be called again.
void PrepareDriver();

} // namespace platform::odbc

// Prepares the system's driver for its first use.
#pragma once

namespace odbc {

/// To be called before the first connection; may be called again.
void PrepareDriver();

} // namespace odbc

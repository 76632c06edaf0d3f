// Prepares the driver of this system for its first use.
#pragma once

namespace odbc {

/// Must be called before the first connection is made; further calls change nothing.
void PrepareDriver();

} // namespace odbc

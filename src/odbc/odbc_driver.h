// What the system's driver needs before it is used for the first time.
#pragma once

namespace platform::odbc {

/// To be called before the first connection; may be called again.
void PrepareDriver();

} // namespace platform::odbc

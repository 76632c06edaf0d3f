// All system procedures that are written in C++.
#pragma once

#include <string_view>

#include "devserver/tsql/run/system_call.h"

namespace devsql {

/// Null for an unknown name.
const SystemProcedure* FindSystemProcedure(std::string_view name);

} // namespace devsql

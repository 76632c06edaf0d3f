// The system procedures that are written in C++: those on databases, objects, principals and dynamic SQL.
#pragma once

#include <span>

#include "devserver/tsql/run/system_call.h"

namespace devsql {

std::span<const SystemProcedure> SystemProcedures();

} // namespace devsql

// The procedures that manage linked servers: sp_addlinkedserver, sp_addlinkedsrvlogin, sp_serveroption, ...
#pragma once

#include <span>

#include "devserver/tsql/run/system_call.h"

namespace devsql {

std::span<const SystemProcedure> LinkedProcedures();

} // namespace devsql

// The procedures that tell of databases, objects and types: sp_helpdb, sp_help, sp_tables, sp_columns, ...
#pragma once

#include <span>

#include "devserver/tsql/system_procedures.h"

namespace devsql {

std::span<const SystemProcedure> CatalogueProcedures();

} // namespace devsql

// The procedures that tell of databases, objects and types: sp_helpdb, sp_help, sp_tables, sp_columns, ...
#pragma once

#include <span>

#include "devserver/tsql/run/system_call.h"

namespace devsql {

/// Those that drivers call.
std::span<const SystemProcedure> CatalogueProcedures();
/// Those that people call.
std::span<const SystemProcedure> HelpProcedures();
/// Those on keys and indexes.
std::span<const SystemProcedure> KeyProcedures();
/// Extended properties.
std::span<const SystemProcedure> PropertyProcedures();

} // namespace devsql

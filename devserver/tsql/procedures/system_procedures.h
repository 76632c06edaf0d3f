// The system procedures that are written in C++: a table for each topic.
#pragma once

#include <span>

#include "devserver/tsql/run/system_call.h"

namespace devsql {

/// Databases, objects, principals and dynamic SQL.
std::span<const SystemProcedure> SystemProcedures();
/// The files of databases, and procedures that are refused by name.
std::span<const SystemProcedure> HelpProcedures();
/// Extended properties.
std::span<const SystemProcedure> PropertyProcedures();
/// Linked servers.
std::span<const SystemProcedure> LinkedProcedures();

} // namespace devsql

// The messages of linked servers and of replication. Knows nothing of who raises them.
#pragma once

#include <span>

#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

std::span<const MessageTemplate> LinkedMessages();

} // namespace devsql

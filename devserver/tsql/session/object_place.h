// Where the name of an object leads.
#pragma once

#include <string>

#include "devserver/tsql/parse/ast_query.h"

namespace devsql {

class SessionCore;

struct ObjectPlace {
    std::string database;
    std::string schema; ///< "dbo" where none is given
    std::string name;
};

/// A name of four parts means this server where the first is its own name. Raises 7202 for an unknown server,
/// 117 for a linked one.
ObjectPlace PlaceOf(SessionCore& session, const ast::Name& name);

} // namespace devsql

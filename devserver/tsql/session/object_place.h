// Finds the database and the schema in which a name looks for its object.
#pragma once

#include <string>

#include "devserver/tsql/parse/ast_query.h"

namespace devsql {

class SessionCore;

struct ObjectPlace {
    std::string database;
    std::string schema; ///< "dbo" if the name has no schema
    std::string name;
};

/// Parts that the name leaves out are filled in: the database is the current one. The first of four parts
/// must be this server's own name. Raises 7202 for an unknown server, 117 for a linked one.
ObjectPlace PlaceOf(SessionCore& session, const ast::Name& name);

} // namespace devsql

// The catalogue as clients ask for it: sysobjects, sys.tables, INFORMATION_SCHEMA and so on, as queries over
// the tables that storage keeps.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "devserver/engine/value.h"

namespace devsql {

class SessionCore;

struct SystemColumn {
    std::string name;
    Type type;
};

struct SystemView {
    std::string_view schema; ///< "sys", "INFORMATION_SCHEMA"; empty: found under any owner, as sysobjects is
    std::string_view name;
    std::vector<SystemColumn> columns;
    std::string text; ///< SQLite's SQL with the names that fragments.sql lists
};

/// `schema` is empty if the statement names no schema. Returns null for an unknown name.
const SystemView* FindSystemView(std::string_view schema, std::string_view name);
/// The view of that database, as a query for the session's connection.
std::string SystemViewText(const SystemView& view, SessionCore& session, const std::string& database);

} // namespace devsql

// The views in which clients read the catalogue: sysobjects, sys.tables, INFORMATION_SCHEMA and so on. Each
// is a query over the tables of storage.
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
    /// "sys", "INFORMATION_SCHEMA"; empty for a view that is found without a schema, in dbo and in sys.
    std::string_view schema;
    std::string_view name;
    std::vector<SystemColumn> columns;
    std::string text; ///< SQLite's SQL with the names that fragments.sql lists
};

/// `schema` is empty if the statement names no schema. Returns null for an unknown name. The view lives until
/// the program ends.
const SystemView* FindSystemView(std::string_view schema, std::string_view name);
/// The view of that database, as a query for the session's connection.
std::string SystemViewText(const SystemView& view, SessionCore& session, const std::string& database);

} // namespace devsql

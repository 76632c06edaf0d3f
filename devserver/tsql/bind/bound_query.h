// Queries and their sources after binding: what a FROM clause offers, and a query in SQLite's SQL.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "devserver/engine/engine.h"
#include "devserver/storage/catalogue.h"
#include "devserver/tsql/bind/bound.h"
#include "devserver/tsql/linked/remote_tables.h"

namespace devsql {

/// A column that a FROM clause offers.
struct ScopeColumn {
    std::string name;
    Type type;
    bool nullable = true;
    bool identity = false;
    std::string sql; ///< in SQLite's SQL: t3."BatchId"; empty: see RequireReadable
};

/// A table, view or query in a FROM clause.
struct ScopeSource {
    std::string exposed; ///< its alias, or the table's name
    ast::Name name;      ///< as written; empty for a derived table
    std::string sql_alias;
    std::vector<ScopeColumn> columns;
    TablePtr table; ///< of a stored table
};

/// A reference to a column of the source, in the query of that depth.
BoundPtr MakeColumn(const ScopeColumn& column, const ScopeSource& source, int depth);
/// Adds the columns of a query, whose names in SQLite's SQL are c1, c2, …; `names` may replace their names.
void AddColumns(ScopeSource& source, const std::vector<Column>& columns,
                const std::vector<std::string>& names);

struct Scope {
    std::vector<ScopeSource> sources;
    const Scope* outer = nullptr;
    int depth = 0;
};

/// A query in SQLite's SQL: its result's columns are called c1, c2, …
struct BoundQuery {
    std::string sql;
    std::vector<Column> columns;
    std::vector<bool> untyped_nulls = {}; ///< which columns are NULL alone, which takes any type in a UNION
};

/// The tables that WITH names, of this query and of the queries around it.
struct CommonTables {
    const CommonTables* outer = nullptr;
    struct Entry {
        std::string name;
        std::string sql; ///< of a recursive one: its name in SQLite
        std::vector<Column> columns;
        bool recursive = false;
    };
    std::vector<Entry> entries;
};

/// SELECT @variable = value.
struct AssignmentItem {
    std::string variable;
    BoundPtr value; ///< over the slots of the row
};

/// The table that UPDATE, DELETE or INSERT writes to.
struct Target {
    TablePtr table;
    Catalogue* catalogue = nullptr;                ///< null for temporary tables
    std::shared_ptr<RemoteTable> remote = nullptr; ///< of a linked server's table; `table` is then its copy
};

/// Raises `error` (4506, 8156) for the first name that two columns have.
void RequireDifferentNames(const std::vector<Column>& columns, std::int32_t error, std::string_view of);

} // namespace devsql

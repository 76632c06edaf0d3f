// Queries and their sources after binding: the columns of a FROM clause, and a query in SQLite's SQL.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "devserver/engine/engine.h"
#include "devserver/storage/catalogue.h"
#include "devserver/tsql/bind/bound.h"
#include "devserver/tsql/linked/remote_tables.h"

namespace devsql {

/// A column of a source, which the expressions of the query may name.
struct ScopeColumn {
    std::string name;
    Type type;
    bool nullable = true;
    bool identity = false;
    std::string sql; ///< in SQLite's SQL: t3."BatchId"; empty if it may not be read (RequireReadable)
};

/// A table, view or query in a FROM clause.
struct ScopeSource {
    std::string exposed;   ///< its alias, or the table's name
    ast::Name name;        ///< as written; empty for a derived table
    std::string sql_alias; ///< its name in SQLite's SQL
    std::vector<ScopeColumn> columns;
    TablePtr table; ///< null for a view, a query and a WITH table
};

/// A reference to a column of the source, in the query of that depth.
BoundPtr MakeColumn(const ScopeColumn& column, const ScopeSource& source, int depth);
/// Adds the columns of a query, whose names in SQLite's SQL are c1, c2, …; `names` may replace their names.
void AddColumns(ScopeSource& source, const std::vector<Column>& columns,
                const std::vector<std::string>& names);

/// The sources whose columns the expressions of a query may name, and those of the queries around it.
struct Scope {
    std::vector<ScopeSource> sources;
    const Scope* outer = nullptr; ///< of the query around this one; null for the outermost query
    int depth = 0;                ///< how many queries are around this one
};

/// A query in SQLite's SQL: its result's columns are called c1, c2, …
struct BoundQuery {
    std::string sql;
    std::vector<Column> columns;
    /// True for the columns that are the literal NULL, which takes any type in a UNION. May be shorter than
    /// `columns`.
    std::vector<bool> untyped_nulls = {};
};

/// The tables that WITH names, of this query and of the queries around it.
struct CommonTables {
    const CommonTables* outer = nullptr;
    struct Entry {
        std::string name;
        std::string sql; ///< its query; its name in SQLite's SQL if `recursive`
        std::vector<Column> columns;
        bool recursive = false; ///< the table as its own recursive member names it
    };
    std::vector<Entry> entries;
};

/// SELECT @variable = value.
struct AssignmentItem {
    std::string variable;
    BoundPtr value; ///< its slots are the columns that the query selects
};

/// The table that UPDATE, DELETE or INSERT writes to.
struct Target {
    TablePtr table;
    Catalogue* catalogue = nullptr;                ///< null for temporary tables and those of linked servers
    std::shared_ptr<RemoteTable> remote = nullptr; ///< of a linked server's table; `table` is then its copy
};

/// Raises `error` (4506, 8156) for the first name that two columns have.
void RequireDifferentNames(const std::vector<Column>& columns, std::int32_t error, std::string_view of);

} // namespace devsql

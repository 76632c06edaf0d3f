// The state of binding one statement, which the parts of the binder share.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "devserver/tsql/bind/bound_query.h"

namespace devsql {

class Binder;
class Emission;
class SessionCore;

struct Binding {
    /// A new name for a source in SQLite's SQL: t1, t2, …
    std::string NextAlias() { return "t" + std::to_string(++aliases); }

    /// The constructs that the clause which is being bound may contain.
    struct Clause {
        bool aggregates = false;
        bool windows = false;          ///< window functions (OVER)
        bool inside_aggregate = false; ///< an aggregate's argument is being bound
    };
    Clause clause;
    CommonTables root;                ///< the WITH of UPDATE and DELETE; a query keeps its own (QueryBinder)
    CommonTables* common = &root;     ///< the innermost WITH, in which names are looked up first; never null
    std::int64_t max_recursion = 100; ///< of the query whose WITH is being bound
    bool outermost = false;           ///< the next SELECT to be bound delivers the statement's rows
    std::string view_database;        ///< of the view being bound; empty: the frame's
    int view_depth = 0;               ///< how many views are being bound, one inside the other
    int aliases = 0;                  ///< how many names NextAlias has returned
    std::vector<std::shared_ptr<RemoteTable>> remote_tables; ///< each fetched once in a statement
};

/// A part of the binder. The parts need each other, as queries hold expressions and expressions hold queries,
/// and find each other through the binder.
class BinderPart {
  protected:
    explicit BinderPart(Binder& binder);

    Binder& binder_;
    Binding& binding_;
    SessionCore& session_;
    Emission& emission_;
};

} // namespace devsql

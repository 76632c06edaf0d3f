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
    std::string NextAlias() { return "t" + std::to_string(++aliases); }

    /// What the clause that is being bound may contain.
    struct Clause {
        bool aggregates = false;
        bool windows = false;
        bool inside_aggregate = false;
    };
    Clause clause;
    CommonTables root;
    CommonTables* common = &root;
    std::int64_t max_recursion = 100; ///< of the query whose WITH is being bound
    bool outermost = false;           ///< the next SELECT is the one whose rows are delivered
    std::string view_database;        ///< of the view being bound; empty: the frame's
    int view_depth = 0;
    int aliases = 0;
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

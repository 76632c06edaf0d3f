// The functions that a session gives to SQLite. The most important one is tsql(n, …): it computes expression
// n, which T-SQL and SQLite compute differently, with the values that SQLite hands over.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "devserver/storage/sqlite.h"

namespace devsql {

class SessionCore;

/// An expression that SQLite calls back for.
struct Operation {
    std::function<Value(std::span<const Value>)> compute;
    Type type;
    std::vector<Type> slots; ///< the types of the values that `compute` takes
};

class SqliteFunctions {
  public:
    explicit SqliteFunctions(SessionCore& session);

    /// Keeps the operation until Remove, and returns the number n by which SQL calls it: tsql(n, …).
    std::int64_t Add(Operation operation);
    void Remove(std::int64_t number) { operations_.erase(number); }
    /// The name in SQLite's SQL of SUM or AVG over that type; the aggregate is made when it is first asked
    /// for.
    std::string SumFunction(const Type& type, bool average);

  private:
    void AddChecks();
    void AddCatalogueFunctions();
    void Run(const FunctionCall& call);

    SessionCore& session_;
    std::unordered_map<std::int64_t, Operation> operations_;
    std::int64_t next_ = 1;
    std::set<std::string> sums_;
};

} // namespace devsql

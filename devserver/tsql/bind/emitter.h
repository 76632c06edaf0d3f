// Turns bound expressions into SQLite's SQL. Comparisons, logic and CASE, which SQLite computes as T-SQL
// does, become SQLite's own operators. Arithmetic, conversions and functions become a call of the function
// "tsql", which computes an expression by its number from the values that it is given.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "devserver/storage/sqlite.h"
#include "devserver/tsql/bind/bound.h"

namespace devsql {

class SessionCore;

/// The parameters and operations of one SQLite statement. Must live as long as the statement runs.
class Emission {
  public:
    explicit Emission(SessionCore& session);
    ~Emission();
    Emission(const Emission&) = delete;
    Emission& operator=(const Emission&) = delete;

    /// The SQL of a value.
    std::string Emit(const BoundPtr& expression);
    /// The SQL of a value that sorts, groups and compares as T-SQL does: text with its collation.
    std::string EmitCollated(const BoundPtr& expression);
    /// The SQL of a condition.
    std::string EmitCondition(const BoundPtr& condition);
    /// The SQL of a parameter that has this value: ?3.
    std::string Parameter(const Value& value, const Type& type);
    /// Gives the parameters of a statement, prepared from the emitted SQL, their values.
    void BindAll(SqliteStatement& statement) const;
    SessionCore& session() { return session_; }

  private:
    /// The call of "tsql" that computes the expression; a parameter if the expression is constant.
    std::string EmitOperation(const BoundPtr& expression);
    /// An item of a long list, in which constants are literals and not parameters.
    std::string EmitListed(const BoundPtr& expression);
    std::string EmitCase(const Bound& expression);
    std::string EmitJunction(const Bound& condition, std::string_view word);
    /// True if SQLite computes the expression's root as T-SQL does.
    bool IsNative(const Bound& expression) const;
    BoundPtr Extract(const BoundPtr& expression, std::vector<BoundPtr>& leaves) const;

    SessionCore& session_;
    std::vector<std::pair<Value, Type>> parameters_;
    std::unordered_multimap<std::size_t, std::size_t> places_; ///< in `parameters_`, by the hash of the value
    std::vector<std::int64_t> operations_; ///< their numbers in SqliteFunctions, which the destructor removes
};

} // namespace devsql

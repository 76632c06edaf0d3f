// The batch and the procedures that are running, one inside the other, with their variables and cursors.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/engine/engine.h"
#include "devserver/storage/catalogue.h"

namespace devsql {

namespace ast {
struct Query;
}
class TemporaryTables;
struct TriggerRun;

struct Variable {
    Type type;
    Value value;
};

/// A result set kept in memory: the rows of a cursor or of INSERT … EXEC.
struct RowSet {
    std::vector<Column> columns;
    std::vector<std::vector<Value>> rows;
};

struct Cursor {
    std::shared_ptr<const ast::Query> query;
    bool open = false;
    bool scroll = false;
    RowSet rows;
    /// The row numbers in `table`, for WHERE CURRENT OF; empty unless the rows are those of one table.
    std::vector<std::int64_t> row_ids;
    TablePtr table;             ///< null unless the rows are those of one table
    std::int64_t position = -1; ///< of the row fetched last; -1 before the first
};

/// A running batch or procedure.
struct Frame {
    std::map<std::string, Variable, std::less<>> variables; ///< by upper-case name with "@"
    /// Table variables, by upper-case name with "@"; in a trigger also INSERTED and DELETED.
    std::map<std::string, TablePtr, std::less<>> tables;
    std::map<std::string, std::shared_ptr<Cursor>, std::less<>> cursors;
    std::string procedure; ///< the name of the procedure, function or trigger; empty for a batch
    std::int64_t procedure_id = 0;
    std::string database;            ///< in which its names are looked up; empty: the session's
    std::int64_t scope_identity = 0; ///< SCOPE_IDENTITY(), if `has_scope_identity`
    bool has_scope_identity = false;
    const TriggerRun* trigger = nullptr; ///< of a trigger; null for anything else
    Frame* caller = nullptr;             ///< set by CallStack::Push
};

/// The frames that are open. It does not own them: a frame lives in the function that pushes and pops it.
class CallStack {
  public:
    explicit CallStack(TemporaryTables& temporaries) : temporaries_(temporaries) {}

    Frame& frame() { return *frame_; }
    const Frame& frame() const { return *frame_; }
    /// Raises 217 when too many calls are open.
    void Push(Frame& frame);
    /// Closes the innermost call and drops the tables that it has made.
    void Pop();
    int nesting() const { return nesting_; }

    /// Raises 137 for an undeclared variable.
    Variable& FindVariable(std::string_view name);
    /// Null for an unknown name.
    TablePtr FindTableVariable(std::string_view name) const;
    /// The table variables of all running calls, and the INSERTED and DELETED of triggers.
    std::vector<TablePtr> TableVariables() const;

    /// Null for an unknown name.
    std::shared_ptr<Cursor> FindCursor(const std::string& name);
    /// The cursors that every call of the session sees.
    std::map<std::string, std::shared_ptr<Cursor>, std::less<>>& global_cursors() { return global_cursors_; }
    /// Closes all cursors, as the end of a transaction does under CURSOR_CLOSE_ON_COMMIT.
    void CloseCursors();

  private:
    TemporaryTables& temporaries_;
    Frame base_; ///< below all calls; the innermost one between requests
    Frame* frame_ = &base_;
    int nesting_ = 0;
    std::map<std::string, std::shared_ptr<Cursor>, std::less<>> global_cursors_;
};

} // namespace devsql

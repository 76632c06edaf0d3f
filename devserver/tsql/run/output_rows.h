// The OUTPUT clauses of INSERT, UPDATE and DELETE: computes their items for every changed row, and sends or
// stores the results. Knows nothing of how rows are changed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/parse/ast.h"
#include "devserver/tsql/rows/row_writer.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

class OutputRows {
  public:
    /// The bits of `rows`: whether the statement inserts rows, deletes rows, or does both.
    static constexpr unsigned kInserted = 1;
    static constexpr unsigned kDeleted = 2;

    /// Raises the errors of binding: 4104, 207, 10705, ..., and 334 if rows would go to the client although
    /// the table has triggers. `clauses` must outlive this object.
    OutputRows(SessionCore& session, const std::vector<ast::OutputClause>& clauses, const Target& target,
               unsigned rows);
    OutputRows(const OutputRows&) = delete;
    OutputRows& operator=(const OutputRows&) = delete;

    /// The observer for the row writer; valid as long as this object.
    RowWriter::Observer Observer();
    /// Stores the rows of OUTPUT … INTO. Called inside the statement's own Transactions::Write.
    void Store();
    /// Ends the statement: with the rows that go to the client, or with the count alone.
    void End(Command command, std::int64_t count);

  private:
    struct Item {
        BoundPtr value;
        /// For each slot of `value`: the row (kInserted or kDeleted) and the column's position.
        std::vector<std::pair<unsigned, std::size_t>> places;
    };
    struct Bound {
        const ast::OutputClause* clause;
        std::vector<Item> items;
        RowSet rows;
    };

    Scope RowScope(const TableDef& table, unsigned rows) const;
    void AddItem(Bound& bound, const BoundPtr& value, std::string name);
    void Take(const RowValues* before, const RowValues* after);

    SessionCore& session_;
    std::vector<Bound> clauses_;
};

} // namespace devsql

// INSERT BULK: checks the statement, converts the client's rows and writes them.
#include "devserver/tsql/run/bulk_insert.h"

#include <algorithm>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/rows/row_writer.h"
#include "devserver/tsql/scalar/conversion.h"

namespace devsql {
namespace {

Target TargetOf(SessionCore& session, const ast::InsertBulkStatement& bulk) {
    Emission emission(session);
    return Binder(session, emission).BindTarget(bulk.table);
}

/// The positions of the columns for which the rows have values. An identity column among them takes these
/// values.
std::vector<std::size_t> Positions(const ast::InsertBulkStatement& bulk, const TableDef& table) {
    std::vector<std::size_t> positions;
    for (const std::string& name : bulk.columns) {
        const ColumnDef* column = table.Find(name);
        if (column == nullptr) {
            RaiseError(207, {name});
        }
        if (!column->computed.empty()) {
            RaiseError(271, {column->name});
        }
        const std::size_t position = table.IndexOf(column->id);
        if (std::find(positions.begin(), positions.end(), position) != positions.end()) {
            RaiseError(264, {column->name});
        }
        positions.push_back(position);
    }
    return positions;
}

/// Converts a row of the client for the row writer. A value is empty if the column gets its default or a
/// value that the server makes.
std::vector<std::optional<Value>> GivenRow(const ast::InsertBulkStatement& bulk, const TableDef& table,
                                           const std::vector<std::size_t>& positions,
                                           const std::vector<Type>& types, const std::vector<Value>& row) {
    std::vector<std::optional<Value>> given(table.columns.size());
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const ColumnDef& column = table.columns[positions[i]];
        if (column.type.id == TypeId::Timestamp) {
            continue; // Filled in by the server.
        }
        if (!IsNull(row[i])) {
            given[positions[i]] = Assign(row[i], types[i], column.type);
        } else if (bulk.keep_nulls && !column.identity) {
            given[positions[i]].emplace();
        }
    }
    return given;
}

} // namespace

void BeginBulkInsert(SessionCore& session, const ast::InsertBulkStatement& bulk) {
    const Target target = TargetOf(session, bulk);
    if (target.remote) {
        RaiseError(40517, {"INSERT BULK into a linked server's table"});
    }
    Positions(bulk, *target.table);
    session.status().bulk = std::make_shared<const ast::InsertBulkStatement>(bulk);
}

void RunBulkInsert(SessionCore& session, const ast::InsertBulkStatement& bulk, BulkRows& rows) {
    const Target target = TargetOf(session, bulk);
    const TableDef& table = *target.table;
    const std::vector<std::size_t> positions = Positions(bulk, table);
    std::int64_t count = 0;
    session.transactions().Write(table.alias, [&] {
        RowWriter writer(session, target, "INSERT");
        if (!bulk.check_constraints) {
            writer.IgnoreConstraints();
        }
        if (!bulk.fire_triggers) {
            writer.IgnoreTriggers();
        }
        std::vector<Value> row;
        for (BulkRows::Step step = rows.Next(row); step != BulkRows::Step::End; step = rows.Next(row)) {
            session.CheckCancelled();
            if (step == BulkRows::Step::Gone) {
                throw Cancelled{};
            }
            if (step == BulkRows::Step::Waiting) {
                continue;
            }
            if (row.size() != positions.size()) {
                RaiseError(213);
            }
            writer.Insert(GivenRow(bulk, table, positions, rows.Types(), row));
            ++count;
        }
        writer.Finish();
        writer.FireTriggers();
    });
    session.status().row_count = count;
    session.results().Done(Command::Insert, count);
}

} // namespace devsql

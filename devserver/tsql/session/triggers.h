// The rows that a statement has written to a table, for the table's triggers, and the triggers that are
// running. Knows nothing of how they are run.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "devserver/storage/catalogue.h"
#include "devserver/tsql/parse/ast_definitions.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

/// The rows of one table that a statement, or a cascade of it, has written.
struct Firing {
    TablePtr table;
    std::string database;
    ast::TriggerEvent event = ast::kOnInsert;
    std::set<int> columns; ///< by id, those that an UPDATE assigns to
    std::vector<std::vector<Value>> deleted;
    std::vector<std::vector<Value>> inserted; ///< of an UPDATE: in the order of `deleted`
};

/// A trigger that runs.
struct TriggerRun {
    const Firing& firing;
    std::int64_t id = 0;
    std::int64_t ended_transactions = 0; ///< of the session, when the trigger began
};

inline constexpr std::uint8_t kAnyEvent = ast::kOnInsert | ast::kOnUpdate | ast::kOnDelete;

/// The events of a trigger; 0 for any other object.
std::uint8_t EventsOfTrigger(SessionCore& session, Catalogue& catalogue, const ObjectDef& object);
/// True where an enabled trigger of the table fires on one of the events. `catalogue` is the table's, null
/// for a table without one.
bool HasTrigger(SessionCore& session, Catalogue* catalogue, const TableDef& table, std::uint8_t events);
/// The innermost trigger among the running calls; null outside triggers.
const TriggerRun* InnermostTrigger(const SessionCore& session);

/// Adds the rows that were written to a table to those that the statement has written to it before. A cascade
/// reaches the same table once for each row that it starts from, but the table's triggers fire once.
void AddFiring(std::vector<Firing>& firings, Firing firing);
/// True if the running trigger would fire itself and the database does not allow it (RECURSIVE_TRIGGERS).
bool IsOwnFiring(SessionCore& session, const Firing& firing, std::int64_t trigger);

/// UPDATE (of a column), COLUMNS_UPDATED, TRIGGER_NESTLEVEL.
std::span<const SessionFunction> TriggerFunctions();

} // namespace devsql

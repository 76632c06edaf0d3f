// INSERT BULK: the statement, and the rows that the client sends after it.
#pragma once

#include "devserver/tsql/parse/ast.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

/// Checks the statement and keeps it for the rows. Raises 208, 207, 264, 271.
void BeginBulkInsert(SessionCore& session, const ast::InsertBulkStatement& bulk);
/// Writes the rows, all or none. NOT NULL and unique keys are enforced; CHECK constraints and foreign keys
/// only if the statement asks for it. Throws Cancelled if the client cancels the load.
void RunBulkInsert(SessionCore& session, const ast::InsertBulkStatement& bulk, BulkRows& rows);

} // namespace devsql

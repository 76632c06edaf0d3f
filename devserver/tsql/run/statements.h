// Runs the statements that read and write rows.
#pragma once

#include "devserver/tsql/parse/ast.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

/// The value of an expression outside a query; it may hold subqueries. Sets `type`, unless it is null.
Value ComputeExpression(SessionCore& session, const ast::Expr& expr, Type* type = nullptr);
/// True if the condition is true; false if it is false or unknown.
bool TestExpression(SessionCore& session, const ast::Expr& condition);
/// SET @v = …, and every other assignment to a variable.
void AssignTo(SessionCore& session, std::string_view variable, const Value& value, const Type& type);

/// SELECT: to the client, into variables or into a new table.
void RunSelect(SessionCore& session, const ast::Query& query);
/// Runs a query and returns all its rows.
RowSet FetchAll(SessionCore& session, const ast::Query& query);
/// Fills a cursor, with the row numbers of its table where WHERE CURRENT OF can use them.
void OpenRows(SessionCore& session, Cursor& cursor);
/// Runs the EXEC of an INSERT and returns its rows. It is the interpreter's, which this file does not know.
using RunNested = std::function<RowSet(const ast::Statement&)>;
void RunInsert(SessionCore& session, const ast::InsertStatement& insert, const RunNested& execute);
/// Inserts the rows of another statement (OUTPUT … INTO). They are not counted.
void InsertRows(SessionCore& session, const ast::Name& table, const std::vector<std::string>& columns,
                const RowSet& source);
void RunUpdate(SessionCore& session, const ast::UpdateStatement& update);
void RunDelete(SessionCore& session, const ast::DeleteStatement& statement);
void RunTruncate(SessionCore& session, const ast::TruncateStatement& truncate);
/// DBCC CHECKIDENT. Raises 2501, 7997.
void RunCheckIdentity(SessionCore& session, const ast::CheckIdentityStatement& check);

} // namespace devsql

// Builds the tree of a batch. Names are not resolved. Errors that need no catalogue are found here: syntax,
// undeclared variables, options that don't exist.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "devserver/tsql/parse/ast.h"

namespace devsql {

struct ParseOptions {
    bool quoted_identifier = true; ///< "x" is an identifier, not a string
    /// Names (with "@") that are declared before the text begins: the parameters of sp_executesql.
    std::vector<std::string> variables;
};

/// The statements of a text that is run as one. Owns the tree.
struct Batch {
    ast::StatementList statements;
};

// All of them throw LocatedError: 102 and 156 (syntax), 105, 113, 103 (tokens), 137 and 134 (variables), 111
// (CREATE of a module not first), 191 (nested too deeply), 40510 and 40517 (what this server doesn't
// support), and others that need no catalogue.

Batch ParseBatch(std::string_view sql, const ParseOptions& options = {});
/// The text of one CREATE or ALTER statement of a view, procedure, function or trigger.
ast::CreateModuleStatement ParseModule(std::string_view sql, bool quoted_identifier);
/// The expression of a default, a check or a computed column.
ast::ExprPtr ParseExpression(std::string_view text, bool quoted_identifier = true);
/// A name inside an argument: N'dbo.[My Table]'. Empty if the text is no name.
ast::Name ParseName(std::string_view text);
/// A type inside an argument: 'decimal(10, 2)'.
ast::TypeSpec ParseTypeSpec(std::string_view text);
/// "@a int, @b nvarchar(20) OUTPUT": the parameters of sp_executesql.
std::vector<ast::Parameter> ParseParameters(std::string_view text);
/// True for the reserved words of the language, in any case.
bool IsReservedWord(std::string_view word);

} // namespace devsql

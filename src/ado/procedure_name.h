// Splits the name of a stored procedure into its parts, to find it in the server's catalogue. Internal to the
// layer.
#pragma once

#include <string>
#include <string_view>

namespace ado {

/// The parts of a name, without brackets or quotes.
struct ProcedureName {
    std::string database; ///< empty: the current database
    std::string owner;    ///< empty: the server chooses among the owners
    std::string name;
    std::string number = "1"; ///< distinguishes procedures that share the name
};

/// Reads "database.owner.name;number". All parts but the name are optional; names may be plain, in brackets
/// or in double quotes.
ProcedureName ParseProcedureName(std::string_view text);

/// Returns a pattern that finds the name in the catalogue (Statement::ProcedureColumns). It may also match
/// other names: each character that a driver may take for a wildcard, an escape or a quotation mark is
/// replaced by "_", which matches any character.
std::string CataloguePattern(std::string_view name);

/// Returns the name in brackets, for use inside a string literal of T-SQL: both "]" and "'" are doubled.
std::string InBrackets(std::string_view name);

} // namespace ado

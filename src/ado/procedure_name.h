// Splits the name of a stored procedure into its parts, to find it in the server's catalogue. Internal to the
// layer.
#pragma once

#include <string>
#include <string_view>

namespace ado {

struct ProcedureName {
    std::string database; ///< empty: the current one
    std::string owner;    ///< empty: the one that the server finds
    std::string name;
    std::string number = "1"; ///< of the procedure among those that share the name
};

/// Reads "database.owner.name;number". All parts but the name are optional; names may be plain, in brackets
/// or in double quotes.
ProcedureName ParseProcedureName(std::string_view text);

/// A pattern for the catalogue that matches the name, and perhaps others: a character that some driver takes
/// for a wildcard or an escape is replaced by "_", which matches any character.
std::string CataloguePattern(std::string_view name);

/// The name in brackets, to be used inside a string literal: apostrophes are doubled as well.
std::string InBrackets(std::string_view name);

} // namespace ado

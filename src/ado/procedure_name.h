// The name of a stored procedure as a caller writes it, taken apart for the server's catalogue. Inner header
// of the layer.
#pragma once

#include <string>
#include <string_view>

namespace ado {

struct ProcedureName {
    std::string database; ///< empty: the current one
    std::string owner;    ///< empty: whichever the server finds
    std::string name;
    std::string number = "1"; ///< of the procedure among those that share the name
};

/// Understands "database.owner.name;number", each part but the name optional, names plain, in brackets or in
/// double quotes.
ProcedureName ParseProcedureName(std::string_view text);

/// A pattern for the catalogue that finds the name, and perhaps others: what is a wildcard or an escape
/// there, to one driver or the other, stands for any character.
std::string CataloguePattern(std::string_view name);

/// True for the same name, by the characters of the code page without regard to case.
bool SameName(std::string_view one, std::string_view other);

/// The name in brackets, for a place within a text between apostrophes.
std::string InBrackets(std::string_view name);

} // namespace ado

// Joins split arguments to one command line, which the program's parser reads. Needed on Linux, where a
// program gets split arguments.
#pragma once

#include <string>
#include <vector>

namespace kv {

/// Joins the arguments with blanks. An argument that is "/" or "-" and the name of a known argument, in any
/// letter case, is left as it is. Every other argument is a value: it is put in double quotes if it is empty,
/// contains a blank or begins with "/" or "-". In the value of a path argument each "/" becomes "\", because
/// the parser would find "/user" in "/home/user".
///
/// The limits of the parser remain: a value cannot begin or end with a blank or a double quote, a quoted
/// value cannot contain a double quote, and a value that contains "/user" hides the argument "/user".
std::string JoinArguments(const std::vector<std::string>& arguments);

} // namespace kv

// The program's command line in the one form that its parser reads, on systems that hand over split arguments
// too.
#pragma once

#include <string>
#include <vector>

namespace kv {

/// Puts the line together again. An argument that is exactly one of the program's words, "/" or "-" in front,
/// in any letter case, is that word. Every other one is a value: it goes between double quotes if it is
/// empty, holds a blank or begins with "/" or "-", and in the value of a path argument each "/" becomes "\",
/// since the parser would find
/// "/user" in "/home/user".
///
/// The parser's own limits stay: a value cannot begin or end with a blank or a double quote, one between
/// quotes cannot hold a double quote, and one that holds a word of the program hides that word's own place.
std::string JoinArguments(const std::vector<std::string>& arguments);

} // namespace kv

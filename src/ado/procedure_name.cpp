// Reads and writes names of procedures.
#include "ado/procedure_name.h"

#include <algorithm>
#include <vector>

namespace ado {
namespace {

/// Returns the character that closes a name enclosed by `opening`; NUL if `opening` does not begin an
/// enclosed name.
char ClosingOf(char opening) {
    return opening == '[' ? ']' : opening == '"' ? '"' : '\0';
}

/// Takes an enclosed name from the front of `text`; a doubled closing character in it is one character.
std::string TakeEnclosed(std::string_view& text, char closing) {
    std::string name;
    std::size_t at = 1;
    for (; at < text.size(); ++at) {
        if (text[at] == closing) {
            if (at + 1 >= text.size() || text[at + 1] != closing) {
                break;
            }
            ++at;
        }
        name += text[at];
    }
    text.remove_prefix(std::min(at + 1, text.size()));
    return name;
}

std::string TakePlain(std::string_view& text) {
    const std::string name(text.substr(0, text.find_first_of(".;")));
    text.remove_prefix(name.size());
    return name;
}

} // namespace

ProcedureName ParseProcedureName(std::string_view text) {
    std::vector<std::string> parts;
    for (;;) {
        const char closing = text.empty() ? '\0' : ClosingOf(text.front());
        parts.push_back(closing != '\0' ? TakeEnclosed(text, closing) : TakePlain(text));
        if (!text.starts_with('.')) {
            break;
        }
        text.remove_prefix(1);
    }
    ProcedureName result;
    if (text.starts_with(';') && text.size() > 1) {
        result.number = text.substr(1);
    }
    result.name = parts.back();
    if (parts.size() > 1) {
        result.owner = parts[parts.size() - 2];
    }
    if (parts.size() > 2) {
        result.database = parts[parts.size() - 3];
    }
    return result;
}

std::string CataloguePattern(std::string_view name) {
    constexpr std::string_view kSpecial = "%[]\\^'";
    std::string pattern(name);
    std::ranges::replace_if(
        pattern, [&](char c) { return kSpecial.find(c) != std::string_view::npos; }, '_');
    return pattern;
}

std::string InBrackets(std::string_view name) {
    std::string text = "[";
    for (const char c : name) {
        text.append(c == ']' || c == '\'' ? 2 : 1, c);
    }
    return text + "]";
}

} // namespace ado

// String functions that look for something: positions, replacements, parts of names.
#include <algorithm>
#include <vector>

#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/like.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

namespace {

/// In one case, so that equal units are equal letters.
std::u16string Folded(const std::string& text) {
    std::u16string units = ToUtf16(text);
    for (char16_t& unit : units) {
        unit = static_cast<char16_t>(ToLower(static_cast<char32_t>(unit)));
    }
    return units;
}

Value CharIndex(Values values, Types types) {
    const std::u16string what = Folded(TextOf(values[0], types[0]));
    const std::u16string text = Folded(TextOf(values[1], types[1]));
    const std::int64_t start = values.size() > 2 ? IntOf(values[2], types[2]) : 1;
    const auto from = static_cast<std::size_t>(std::max<std::int64_t>(start, 1) - 1);
    if (what.empty()) {
        return std::int64_t{0};
    }
    const std::size_t found = text.find(what, from);
    return found == std::u16string::npos ? std::int64_t{0} : static_cast<std::int64_t>(found) + 1;
}

Value PatIndexOf(Values values, Types types) {
    return PatIndex(TextOf(values[0], types[0]), TextOf(values[1], types[1]));
}

Type ReplaceType(Types types) {
    Type type = WideTextTypeOf(types[0]);
    for (const Type& other : types.subspan(1)) {
        type = CommonType(type, WideTextTypeOf(other));
    }
    return type;
}

Value Replace(Values values, Types types) {
    const std::string text = TextOf(values[0], types[0]);
    const std::u16string units = ToUtf16(text);
    const std::u16string folded = Folded(text);
    const std::u16string what = Folded(TextOf(values[1], types[1]));
    const std::u16string with = ToUtf16(TextOf(values[2], types[2]));
    if (what.empty()) {
        return text;
    }
    std::size_t count = 0;
    for (std::size_t at = 0; (at = folded.find(what, at)) != std::u16string::npos; at += what.size()) {
        ++count;
    }
    RequireRoom(units.size() - count * what.size() + count * with.size());
    std::u16string result;
    std::size_t at = 0;
    for (std::size_t found = 0; (found = folded.find(what, at)) != std::u16string::npos;
         at = found + what.size()) {
        result.append(units, at, found - at).append(with);
    }
    return FitText(FromUtf16(result + units.substr(at)), ReplaceType(types));
}

struct Quotes {
    char mark;
    char open;
    char close;
};

constexpr Quotes kQuotes[] = {{'[', '[', ']'}, {']', '[', ']'}, {'\'', '\'', '\''}, {'"', '"', '"'},
                              {'(', '(', ')'}, {')', '(', ')'}, {'<', '<', '>'},    {'>', '<', '>'},
                              {'{', '{', '}'}, {'}', '{', '}'}, {'`', '`', '`'}};

Value QuoteName(Values values, Types types) {
    const std::string name = TextOf(values[0], types[0]);
    const std::string mark = values.size() > 1 ? TextOf(values[1], types[1]) : "[";
    constexpr std::size_t most = 128;
    const auto* found = std::find_if(std::begin(kQuotes), std::end(kQuotes), [&mark](const Quotes& q) {
        return mark.substr(0, 1) == std::string(1, q.mark);
    });
    if (TextLength(name) > most || found == std::end(kQuotes)) {
        return {};
    }
    std::string quoted(1, found->open);
    for (const char c : name) {
        quoted.append(c == found->close ? 2 : 1, c);
    }
    return quoted + found->close;
}

constexpr ScalarFunction kFunctions[] = {
    {"CHARINDEX", 2, 3, Always<TypeId::Int>, NullIfAnyNull<CharIndex>, true},
    {"PATINDEX", 2, 2, Always<TypeId::Int>, NullIfAnyNull<PatIndexOf>, true},
    {"REPLACE", 3, 3, ReplaceType, NullIfAnyNull<Replace>},
    {"QUOTENAME", 1, 2, Always<TypeId::NVarChar, 258>, NullIfAnyNull<QuoteName>},
};

} // namespace

std::span<const ScalarFunction> StringSearchFunctions() {
    return kFunctions;
}

} // namespace devsql

// Functions on single characters.
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

namespace {

Value Char(Values values, Types types) {
    const std::int64_t code = IntOf(values[0], types[0]);
    if (code < 0 || code > 255) {
        return {};
    }
    return FromCodePage1252(std::string(1, static_cast<char>(code)));
}

Value Ascii(Values values, Types types) {
    const std::string bytes = ToCodePage1252(TextOf(values[0], types[0]));
    return bytes.empty() ? Value{} : Value(std::int64_t{static_cast<unsigned char>(bytes.front())});
}

Value NChar(Values values, Types types) {
    const std::int64_t code = IntOf(values[0], types[0]);
    if (code < 0 || code > 0xFFFF) {
        return {};
    }
    std::string text;
    AppendUtf8(text, static_cast<char32_t>(code));
    return text;
}

Value Unicode(Values values, Types types) {
    const std::u16string units = ToUtf16(TextOf(values[0], types[0]));
    return units.empty() ? Value{} : Value(std::int64_t{units.front()});
}

constexpr ScalarFunction kFunctions[] = {
    {"CHAR", 1, 1, Always<TypeId::Char, 1>, NullIfAnyNull<Char>},
    {"ASCII", 1, 1, Always<TypeId::Int>, NullIfAnyNull<Ascii>},
    {"NCHAR", 1, 1, Always<TypeId::NChar, 1>, NullIfAnyNull<NChar>},
    {"UNICODE", 1, 1, Always<TypeId::Int>, NullIfAnyNull<Unicode>},
};

} // namespace

std::span<const ScalarFunction> CharacterFunctions() {
    return kFunctions;
}

} // namespace devsql

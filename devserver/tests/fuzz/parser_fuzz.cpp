// Fuzzes the parser. The first byte of the input chooses one of the parser's functions, the rest is the text.
// Only SqlError may be thrown.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/sql_error.h"

namespace {

using namespace devsql;

void Quoted(std::string_view text) {
    ParseBatch(text, {true, {"@p"}});
}

void Unquoted(std::string_view text) {
    ParseBatch(text, {false, {}});
}

void Module(std::string_view text) {
    ParseModule(text, true);
}

void Expression(std::string_view text) {
    ParseExpression(text);
}

void Small(std::string_view text) {
    ParseName(text);
    try {
        ParseTypeSpec(text);
    } catch (const SqlError&) {
        // The same text is then parsed as parameters.
    }
    ParseParameters(text);
}

constexpr std::array kTargets{Quoted, Unquoted, Module, Expression, Small};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes + 1), size - 1);
    try {
        kTargets[bytes[0] % kTargets.size()](text);
    } catch (const SqlError&) {
        return 0;
    }
    return 0;
}

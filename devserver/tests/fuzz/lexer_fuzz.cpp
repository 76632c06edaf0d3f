// Fuzzes the lexer. The input is the text. Only SqlError may be thrown, and the tokens' positions must lie in
// the text and in order.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "devserver/tsql/parse/lexer.h"
#include "devserver/tsql/scalar/sql_error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    try {
        std::size_t last = 0;
        for (const devsql::Token& token : devsql::Tokenize(text)) {
            if (token.begin < last || token.end < token.begin || token.end > size || token.line < 1) {
                std::abort();
            }
            last = token.end;
        }
    } catch (const devsql::SqlError&) {
        return 0;
    }
    return 0;
}

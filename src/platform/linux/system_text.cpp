// The system's text is UTF-8, whatever the locale says: it is what names of files are written in.
#include "platform/system_text.h"

#include "text/code_page.h"
#include "text/utf8.h"

namespace platform {

std::string FromSystemText(std::string_view text) {
    const auto characters = FromUtf8(text);
    if (!characters) {
        return std::string(text);
    }
    std::string narrow = Narrow(*characters);
    return Widen(narrow) == *characters ? narrow : std::string(text);
}

std::string ToSystemText(std::string_view text) {
    return FromUtf8(text) ? std::string(text) : ToUtf8(Widen(text));
}

} // namespace platform

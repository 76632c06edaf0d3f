// The system's text is UTF-8, whatever the locale says, since names of files are in UTF-8.
#include "platform/system_text.h"

#include "text/escaped.h"

namespace platform {

std::string FromSystemText(std::string_view text) {
    return text::EscapedFromUtf8(text);
}

std::string ToSystemText(std::string_view text) {
    return text::Utf8FromEscaped(text);
}

} // namespace platform

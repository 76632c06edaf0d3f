// The sources make the system's 8-bit calls, whose text is that of the code page.
#include "platform/system_text.h"

namespace platform {

std::string FromSystemText(std::string_view text) {
    return std::string(text);
}

std::string ToSystemText(std::string_view text) {
    return std::string(text);
}

} // namespace platform

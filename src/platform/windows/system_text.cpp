// The text of the system's 8-bit calls is in the code page already.
#include "platform/system_text.h"

namespace platform {

std::string FromSystemText(std::string_view text) {
    return std::string(text);
}

std::string ToSystemText(std::string_view text) {
    return std::string(text);
}

} // namespace platform

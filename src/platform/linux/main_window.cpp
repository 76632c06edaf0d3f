#include "platform/main_window.h"

#include "platform/terminal.h"

namespace platform {

std::unique_ptr<PlainWindow> ShowPlainWindow(const std::string& title, const std::string& text) {
    WriteToTerminal(title + ": " + text + "\n");
    return nullptr;
}

} // namespace platform

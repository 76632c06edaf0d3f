// Until the native window exists a message box is lines on the terminal.
#include "platform/message_box.h"

#include "platform/message_text.h"

namespace platform {

void ShowMessageBox(const std::string& text, MessageIcon icon, const std::string& title) {
    ShowMessageOnTerminal(text, icon, title);
}

} // namespace platform

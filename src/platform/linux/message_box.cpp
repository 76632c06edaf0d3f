// Shows message boxes by the module for windows, or on the terminal without it.
#include "platform/message_box.h"

#include "platform/linux/desktop.h"
#include "platform/message_text.h"

namespace platform {

void ShowMessageBox(const std::string& text, MessageIcon icon, const std::string& title) {
    if (Desktop* desktop = OpenDesktop()) {
        desktop->ShowMessageBox(text, icon, title);
        return;
    }
    ShowMessageOnTerminal(text, icon, title);
}

} // namespace platform

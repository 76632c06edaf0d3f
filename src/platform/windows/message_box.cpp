// Shows message boxes of Windows, or lines on the terminal without a desktop.
#include "platform/message_box.h"

#include "platform/message_text.h"
#include "platform/windows/desktop.h"

namespace platform {

void ShowMessageBox(const std::string& text, MessageIcon icon, const std::string& title) {
    if (!DesktopIsVisible()) {
        ShowMessageOnTerminal(text, icon, title);
        return;
    }
    UINT flags = MB_OK;
    switch (icon) {
    case MessageIcon::None:
        break;
    case MessageIcon::Exclamation:
        flags |= MB_ICONEXCLAMATION;
        break;
    case MessageIcon::Critical:
        flags |= MB_ICONERROR;
        break;
    }
    // The owner is the active window; the box has no owner if the program shows no window.
    ::MessageBoxA(::GetActiveWindow(), text.c_str(), title.c_str(), flags | MB_TASKMODAL);
}

} // namespace platform

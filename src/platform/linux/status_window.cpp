// Makes the status window by the module for windows, or on the terminal without it.
#include "platform/status_window.h"

#include "platform/linux/desktop.h"

namespace platform {

std::unique_ptr<StatusWindow> MakeStatusWindow(const StatusWindowLayout& layout) {
    if (Desktop* desktop = OpenDesktop()) {
        return desktop->MakeStatusWindow(layout);
    }
    return MakeTerminalStatus(layout.caption);
}

} // namespace platform

// Until the native window exists a run tells its progress on the terminal.
#include "platform/status_window.h"

namespace platform {

std::unique_ptr<StatusWindow> MakeStatusWindow(const StatusWindowLayout& layout) {
    return MakeTerminalStatus(layout.caption);
}

} // namespace platform

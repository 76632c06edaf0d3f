// Until the native window exists a run tells its progress on the terminal.
#include "platform/status_window.h"

namespace platform {

std::unique_ptr<StatusWindow> CreateStatusWindow(const StatusWindowLayout& layout) {
    return CreateTerminalStatus(layout.caption);
}

} // namespace platform

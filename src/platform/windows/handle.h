// Owns a handle of the system that is closed by CloseHandle. An empty owner is null, so this type is not for
// handles whose invalid value is INVALID_HANDLE_VALUE.
#pragma once

#include <memory>

#include "platform/windows/lean_windows.h"

namespace platform {

struct CloseSystemHandle {
    void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};
using OwnedHandle = std::unique_ptr<void, CloseSystemHandle>;

} // namespace platform

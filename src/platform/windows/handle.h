// The owner of a handle of the system's that CloseHandle closes.
#pragma once

#include <memory>

#include "platform/windows/lean_windows.h"

namespace platform {

struct CloseSystemHandle {
    void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};
using OwnedHandle = std::unique_ptr<void, CloseSystemHandle>;

} // namespace platform

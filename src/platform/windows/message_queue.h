// How a message from the queue reaches its window, wherever it was taken from the queue.
#pragma once

#include "platform/windows/lean_windows.h"

namespace platform {

/// Sees every message before its window does; true says that it has dealt with it.
using MessageFilter = bool (*)(MSG& message);

/// One at most; null takes it off.
void SetMessageFilter(MessageFilter filter);

void Deliver(MSG& message);

} // namespace platform

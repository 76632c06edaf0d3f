// Delivers messages from the queue to their windows, for every loop that takes messages from the queue.
#pragma once

#include "platform/windows/lean_windows.h"

namespace platform {

/// Called with every message before its window gets it. Returns true if it has handled the message.
using MessageFilter = bool (*)(MSG& message);

/// Sets the one filter; null removes it.
void SetMessageFilter(MessageFilter filter);

void Deliver(MSG& message);

} // namespace platform

// Delivers messages to their windows. Every loop that takes messages from the queue uses it.
#pragma once

#include "platform/windows/lean_windows.h"

namespace platform {

/// A function that is called with every message before its window gets it. Returns true if the window must
/// not get the message.
using MessageFilter = bool (*)(MSG& message);

/// Sets the one filter; null removes it.
void SetMessageFilter(MessageFilter filter);

/// Gives the message to the filter and then, unless that returns true, to its window.
void Deliver(MSG& message);

} // namespace platform

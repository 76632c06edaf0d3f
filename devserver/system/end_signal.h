// How an operator or a service manager asks the program to end: SIGTERM and SIGINT, or the console's events.
// Knows nothing of what ends.
#pragma once

namespace devsql::system {

/// From here on these signals do not end the program. Called once, before any thread begins, so that all
/// threads leave the signal to the thread that waits for it.
void TakeEndSignals();
/// Returns when the program is asked to end.
void WaitForEndSignal();
/// Called when everything is closed. Windows ends the process as soon as the handler for a closed console
/// returns, so the handler waits for this call.
void TellEnded();

} // namespace devsql::system

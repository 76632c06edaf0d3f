// Waits until an operator or a service manager asks the program to end: by SIGTERM or SIGINT, on Windows by
// the console's events. Knows nothing of the program.
#pragma once

namespace devsql::system {

/// After this call the signals do not end the program by themselves. Must be called once, before any thread
/// begins, because a thread inherits the blocked signals of the thread that starts it.
void TakeEndSignals();
/// Returns when the program is asked to end.
void WaitForEndSignal();
/// Called when everything is closed. Windows ends the process as soon as the handler for a closed console
/// returns, so the handler waits for this call.
void TellEnded();

} // namespace devsql::system

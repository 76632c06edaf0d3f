// How an operator or a service manager asks the program to end: SIGTERM and SIGINT, or the console's events.
// Knows nothing of what ends.
#pragma once

namespace devsql::system {

/// From here on the program is not ended but asked to. Called once, before any thread begins, so that every
/// thread leaves the signal to the one that waits.
void TakeEndSignals();
/// Comes back when the program is asked to end.
void WaitForEndSignal();
/// All is closed. Windows ends the process as soon as the event of a closed console was taken, so the taking
/// waits for this.
void TellEnded();

} // namespace devsql::system

// Waits for the console's events: Ctrl-C, Ctrl-Break, its closing, the end of the Windows session.
#include "devserver/system/end_signal.h"

#include <windows.h>

namespace devsql::system {

namespace {

/// Milliseconds that the handler waits for the program's end. The system itself ends the program five seconds
/// after its console was closed.
constexpr DWORD kEndTime = 10000;

/// The event that a request to end sets. Its handle is never closed, because the system calls the handler in
/// a thread of its own, at any time.
HANDLE Asked() {
    static const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    return event;
}

/// The event that TellEnded sets.
HANDLE Ended() {
    static const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    return event;
}

BOOL WINAPI OnConsoleEvent(DWORD) {
    SetEvent(Asked());
    // After the console was closed, the process ends when this returns, even if other threads still run.
    WaitForSingleObject(Ended(), kEndTime);
    return TRUE;
}

} // namespace

void TakeEndSignals() {
    Asked();
    Ended();
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

void WaitForEndSignal() {
    WaitForSingleObject(Asked(), INFINITE);
}

void TellEnded() {
    SetEvent(Ended());
}

} // namespace devsql::system

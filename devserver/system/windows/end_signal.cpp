// The console's events: Ctrl-C, Ctrl-Break, its closing, the end of the Windows session.
#include "devserver/system/end_signal.h"

#include <windows.h>

namespace devsql::system {

namespace {

/// The system gives a program five seconds after its console was closed.
constexpr DWORD kEndTime = 10000;

/// A handle of an event for the life of the process: the handler runs in a thread of the system and may come
/// at any time.
HANDLE Asked() {
    static const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    return event;
}

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

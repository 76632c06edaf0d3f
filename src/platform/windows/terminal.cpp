// The terminal on Windows: the console of this program or of the program that started it.
#include "platform/terminal.h"

#include "platform/windows/lean_windows.h"

namespace platform {
namespace {

/// Returns the handle of a standard channel, or null. A program of the window subsystem has no console of its
/// own, but it can attach to that of the program that started it.
HANDLE Channel(DWORD which) {
    HANDLE handle = ::GetStdHandle(which);
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) {
        ::AttachConsole(ATTACH_PARENT_PROCESS);
        handle = ::GetStdHandle(which);
    }
    return handle == INVALID_HANDLE_VALUE ? nullptr : handle;
}

bool IsConsole(HANDLE handle) {
    DWORD mode = 0;
    return handle != nullptr && ::GetConsoleMode(handle, &mode) != 0;
}

} // namespace

void WriteToTerminal(const std::string& text) {
    if (const HANDLE channel = Channel(STD_ERROR_HANDLE)) {
        DWORD written = 0;
        ::WriteFile(channel, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    }
}

bool TerminalIsInteractive() {
    return IsConsole(Channel(STD_INPUT_HANDLE)) && IsConsole(Channel(STD_ERROR_HANDLE));
}

void WaitForEnter() {
    const HANDLE channel = Channel(STD_INPUT_HANDLE);
    char c = '\0';
    DWORD count = 0;
    while (::ReadFile(channel, &c, 1, &count, nullptr) != 0 && count == 1 && c != '\n') {
    }
}

bool InputIsTerminal() {
    return IsConsole(::GetStdHandle(STD_INPUT_HANDLE));
}

bool SetEcho(bool on) {
    const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (::GetConsoleMode(input, &mode) == 0) {
        return false;
    }
    constexpr DWORD kEcho = ENABLE_ECHO_INPUT;
    ::SetConsoleMode(input, on ? mode | kEcho : mode & ~kEcho);
    return (mode & kEcho) != 0;
}

} // namespace platform

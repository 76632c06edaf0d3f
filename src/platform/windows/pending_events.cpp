#include "platform/pending_events.h"

#include "platform/windows/lean_windows.h"

namespace platform {
namespace {
std::int16_t current_pointer = kDefaultPointer;
} // namespace

void RunPendingEvents() {
    MSG message{};
    while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        if (message.message == WM_QUIT) {
            // Whoever runs the loop of a window must still see it.
            ::PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        ::TranslateMessage(&message);
        ::DispatchMessageA(&message);
    }
}

std::int16_t MousePointer() {
    return current_pointer;
}

void SetMousePointer(std::int16_t pointer) {
    current_pointer = pointer;
    ::SetCursor(::LoadCursorA(nullptr, pointer == kHourglassPointer ? IDC_WAIT : IDC_ARROW));
}

} // namespace platform

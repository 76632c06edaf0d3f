// Takes messages from the thread's queue, passes them to the filter and the windows, and sets the pointer.
#include "platform/pending_events.h"

#include "platform/windows/message_queue.h"

namespace platform {
namespace {
std::int16_t current_pointer = kDefaultPointer;
MessageFilter current_filter = nullptr;
} // namespace

void SetMessageFilter(MessageFilter filter) {
    current_filter = filter;
}

void Deliver(MSG& message) {
    if (current_filter != nullptr && current_filter(message)) {
        return;
    }
    ::TranslateMessage(&message);
    ::DispatchMessageA(&message);
}

void RunPendingEvents() {
    MSG message{};
    while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        if (message.message == WM_QUIT) {
            // The loop of the window must still receive it.
            ::PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        Deliver(message);
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

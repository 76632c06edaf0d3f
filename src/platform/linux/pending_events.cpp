// Passes events and the mouse pointer on to the module for windows. Before the first window is opened there
// is no queue, and the pointer is only remembered.
#include "platform/pending_events.h"

#include "platform/linux/desktop.h"

namespace platform {
namespace {
std::int16_t current_pointer = kDefaultPointer;
} // namespace

void RunPendingEvents() {
    if (Desktop* desktop = OpenedDesktop()) {
        desktop->RunPendingEvents();
    }
}

std::int16_t MousePointer() {
    return current_pointer;
}

void SetMousePointer(std::int16_t pointer) {
    current_pointer = pointer;
    if (Desktop* desktop = OpenedDesktop()) {
        desktop->SetMousePointer(pointer);
    }
}

} // namespace platform

// Until the native window exists there is no queue, and the pointer is only remembered.
#include "platform/pending_events.h"

namespace platform {
namespace {
std::int16_t current_pointer = kDefaultPointer;
} // namespace

void RunPendingEvents() {}

std::int16_t MousePointer() {
    return current_pointer;
}

void SetMousePointer(std::int16_t pointer) {
    current_pointer = pointer;
}

} // namespace platform

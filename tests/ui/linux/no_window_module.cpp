// Takes the place of platform/linux/desktop.cpp in a program that knows no module of windows.
// window_bench.cpp compares a start without a window with it.
#include "platform/linux/desktop.h"

namespace platform {

Desktop* OpenDesktop() {
    return nullptr;
}

Desktop* OpenedDesktop() {
    return nullptr;
}

void* FindInModule(const char* /*name*/) {
    return nullptr;
}

} // namespace platform

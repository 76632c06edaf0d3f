// Implements platform/linux/desktop.h for a program that has no Qt module. window_bench.cpp compares the real
// program's start with that of this one.
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

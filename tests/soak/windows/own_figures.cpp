#include "soak/own_figures.h"

#include "platform/windows/lean_windows.h"

#include <psapi.h>

namespace soak {

std::vector<std::pair<std::string, std::uint64_t>> OwnFigures() {
    const HANDLE process = ::GetCurrentProcess();
    PROCESS_MEMORY_COUNTERS memory{};
    ::GetProcessMemoryInfo(process, &memory, sizeof memory);
    DWORD handles = 0;
    ::GetProcessHandleCount(process, &handles);
    return {{"memory in KB", memory.WorkingSetSize / 1024},
            {"handles", handles},
            {"GDI objects", ::GetGuiResources(process, GR_GDIOBJECTS)},
            {"windows and menus", ::GetGuiResources(process, GR_USEROBJECTS)}};
}

} // namespace soak

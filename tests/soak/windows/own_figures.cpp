// Counts handles, GDI objects and windows. Wine's functions for these numbers return no counts, so this tries
// each possible handle.
#include "soak/own_figures.h"

#include "platform/windows/lean_windows.h"

#include <psapi.h>

namespace soak {
namespace {

constexpr UINT_PTR kHandleStep = 4;
constexpr UINT_PTR kLastHandle = 0x4000;
constexpr UINT_PTR kGdiObjects = 0x10000;

std::uint64_t Handles() {
    std::uint64_t found = 0;
    for (UINT_PTR handle = kHandleStep; handle < kLastHandle; handle += kHandleStep) {
        DWORD flags = 0;
        found += ::GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0 ? 1 : 0;
    }
    return found;
}

std::uint64_t GdiObjects() {
    std::uint64_t found = 0;
    for (UINT_PTR place = 1; place < kGdiObjects; ++place) {
        found += ::GetObjectType(reinterpret_cast<HGDIOBJ>(place)) != 0 ? 1 : 0;
    }
    return found;
}

BOOL CALLBACK CountOne(HWND /*window*/, LPARAM count) {
    ++*reinterpret_cast<std::uint64_t*>(count);
    return TRUE;
}

BOOL CALLBACK CountWithChildren(HWND window, LPARAM count) {
    CountOne(window, count);
    ::EnumChildWindows(window, CountOne, count);
    return TRUE;
}

std::uint64_t Windows() {
    std::uint64_t found = 0;
    ::EnumThreadWindows(::GetCurrentThreadId(), CountWithChildren, reinterpret_cast<LPARAM>(&found));
    return found;
}

} // namespace

std::vector<std::pair<std::string, std::uint64_t>> OwnFigures() {
    PROCESS_MEMORY_COUNTERS memory{};
    ::GetProcessMemoryInfo(::GetCurrentProcess(), &memory, sizeof memory);
    return {{"memory in KB", memory.WorkingSetSize / 1024},
            {"handles", Handles()},
            {"GDI objects", GdiObjects()},
            {"windows", Windows()}};
}

} // namespace soak

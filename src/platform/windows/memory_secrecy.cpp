// Keeps the heap out of the error reports of Windows.
#include "platform/memory_secrecy.h"

#include "platform/windows/lean_windows.h"

// Declared as in <werapi.h>, which mingw-w64 cannot compile.
extern "C" HRESULT WINAPI WerSetFlags(DWORD flags);

namespace platform {

void KeepMemoryOutOfCrashes() {
    constexpr DWORD kNoHeap = 1; // WER_FAULT_REPORTING_FLAG_NOHEAP
    ::WerSetFlags(kNoHeap);
}

} // namespace platform

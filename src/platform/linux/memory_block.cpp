#include "platform/memory_block.h"

#include <new>

#include <sys/mman.h>

namespace platform {
namespace {

constexpr auto kLargePage = static_cast<std::align_val_t>(kLargePageBytes);

} // namespace

MemoryBlock AllocateBlock(std::size_t bytes) {
    if (bytes < kLargePageBytes) {
        return {std::make_unique_for_overwrite<char[]>(bytes).release(),
                [](char* memory) { std::default_delete<char[]>()(memory); }};
    }
    MemoryBlock block(static_cast<char*>(::operator new[](bytes, kLargePage)),
                      [](char* memory) { ::operator delete[](memory, kLargePage); });
    // The result is ignored: a system without large pages uses small ones.
    ::madvise(block.get(), bytes, MADV_HUGEPAGE);
    return block;
}

} // namespace platform

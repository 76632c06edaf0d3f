#include "platform/memory_block.h"

namespace platform {

// Large pages need a right that users do not have.
MemoryBlock AllocateBlock(std::size_t bytes) {
    return {std::make_unique_for_overwrite<char[]>(bytes).release(),
            [](char* memory) { std::default_delete<char[]>()(memory); }};
}

} // namespace platform

#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "platform/memory_block.h"

namespace platform {
namespace {

/// The flags of the mapping that contains the address, two letters each, as the kernel reports them.
std::string MappingFlags(const void* address) {
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    std::ifstream maps("/proc/self/smaps");
    bool inside = false;
    for (std::string line; std::getline(maps, line);) {
        std::istringstream words(line);
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char dash = 0;
        if (words >> std::hex >> begin >> dash >> end && dash == '-') {
            inside = begin <= wanted && wanted < end;
        } else if (inside && line.starts_with("VmFlags:")) {
            return line + ' ';
        }
    }
    return {};
}

TEST(MemoryBlock, OfTheSizeOfALargePageIsInLargePages) {
    const MemoryBlock block = AllocateBlock(2 * kLargePageBytes);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.get()) % kLargePageBytes, 0U);
    EXPECT_NE(MappingFlags(block.get()).find(" hg "), std::string::npos) << MappingFlags(block.get());
    std::memset(block.get(), 'x', 2 * kLargePageBytes);
    EXPECT_EQ(block[2 * kLargePageBytes - 1], 'x');
}

TEST(MemoryBlock, MayBeSmall) {
    const MemoryBlock block = AllocateBlock(1);
    block[0] = 'x';
    EXPECT_EQ(block[0], 'x');
}

} // namespace
} // namespace platform

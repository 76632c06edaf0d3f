// Memory for large data that is written once and kept. Where the system has large pages it comes in them: the
// system takes one step for each page that is touched first, and with small pages these steps are a good part
// of the time that reading a large table takes.
#pragma once

#include <cstddef>
#include <memory>

namespace platform {

/// Blocks of this size, or of a multiple, can be in large pages.
inline constexpr std::size_t kLargePageBytes = std::size_t{2} * 1024 * 1024;

/// Frees itself.
using MemoryBlock = std::unique_ptr<char[], void (*)(char*)>;

/// The bytes are not initialised. Throws std::bad_alloc.
MemoryBlock AllocateBlock(std::size_t bytes);

} // namespace platform

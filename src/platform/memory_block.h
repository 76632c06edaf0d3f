// Allocates memory for large data that is written once and kept, in large pages if the system has them. The
// first access to each page is a step of the system; with small pages these steps take a good part of the
// time of reading a large table.
#pragma once

#include <cstddef>
#include <memory>

namespace platform {

/// The size of a large page. A block of this size, or of a multiple, can be in large pages.
inline constexpr std::size_t kLargePageBytes = std::size_t{2} * 1024 * 1024;

/// Owns the bytes, and frees them in the way in which they were allocated.
using MemoryBlock = std::unique_ptr<char[], void (*)(char*)>;

/// Returns a block of that many bytes, which are not initialised. Throws std::bad_alloc.
MemoryBlock AllocateBlock(std::size_t bytes);

} // namespace platform

// The memory and the handles that this process uses at the moment. A long run checks that they do not grow.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace soak {

/// Names and figures, in the same order each time: "memory in KB", and one for each kind of handle of the
/// system.
std::vector<std::pair<std::string, std::uint64_t>> OwnFigures();

} // namespace soak

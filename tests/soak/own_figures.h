// What this process holds of its system at the moment, for a run that watches that nothing grows.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace soak {

/// Names and figures, in the same order each time: "memory in KB" and the kinds of handles that the system
/// has.
std::vector<std::pair<std::string, std::uint64_t>> OwnFigures();

} // namespace soak

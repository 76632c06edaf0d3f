// The part of the system databases that is T-SQL: msdb's package store and job tables, master's procedures
// that tell of objects.
#pragma once

#include <span>
#include <string_view>

namespace devsql {

/// Rises when the batches change; a server whose files are of an older one runs them again.
inline constexpr int kBootstrapVersion = 5;
std::span<const std::string_view> BootstrapBatches();
/// Those of bootstrap_help.cpp.
std::span<const std::string_view> HelpBatches();

} // namespace devsql

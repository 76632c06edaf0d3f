// The texts of the catalogue's views.
#pragma once

#include <span>
#include <string_view>

namespace devsql {

struct SystemViewSource {
    std::string_view schema;
    std::string_view name;
    std::string_view columns; ///< "name type, …"
    std::string_view text;    ///< SQLite's SQL; its columns are named as `columns` has them
};

std::span<const SystemViewSource> SystemViewSources();
/// Those of other servers and of replication.
std::span<const SystemViewSource> ServerViewSources();
/// Those of sessions, and others that clients look at.
std::span<const SystemViewSource> ClientViewSources();

} // namespace devsql

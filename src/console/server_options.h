// The option pairs for Server A and Server B, one on each tab but General.
#pragma once

#include <array>

#include "console/main_form_design.h"

namespace kv {

/// The name of each tab's pair; element 0 of a pair stands for Server A, element 1 for Server B.
inline constexpr std::array<const char*, kMainTabs> kServerOptions = {
    nullptr,
    "optScriptCurrentServer",
    "optSynchronizeSourceServer",
    "optUpgradeCurrentServer",
    "optSQLReplCurrentServer",
    "optViewDataCurrentServer",
    "optStoredProcCurrentServer",
};

} // namespace kv

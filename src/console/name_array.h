// The arrays of names that the managers return: element 0 is empty, the names follow from element 1 on.
#pragma once

#include <string>
#include <vector>

#include "base/int16.h"

namespace kv {

/// Calls `found` with each name until it returns true. Returns false if it never did. The counter is a signed
/// 16-bit integer: an array with more than 32,767 names raises run_time::kOverflow before the first name; an
/// array with exactly 32,767 raises it after the last.
template <class Found>
bool AnyName(const std::vector<std::string>& names, const Found& found) {
    const Int16 last(static_cast<std::int64_t>(names.size()) - 1);
    for (Int16 i(1); i <= last; ++i) {
        if (found(names[static_cast<std::size_t>(i.Value())])) {
            return true;
        }
    }
    return false;
}

/// Calls `take` with every name. Raises the same overflows as AnyName.
template <class Take>
void ForEachName(const std::vector<std::string>& names, const Take& take) {
    AnyName(names, [&take](const std::string& name) {
        take(name);
        return false;
    });
}

} // namespace kv

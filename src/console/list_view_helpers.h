// modListView: two helpers for list views.
#pragma once

#include <cstdint>

#include "ui/list_view.h"

namespace kv {

/// Adds the bits of `lngStyle` to the extended style. Without `blnSet` it turns them over, so that clearing a
/// style that is not set sets it. True if the style was not zero before.
bool SetExtendedStyle(ui::ListView& objListView, std::int32_t lngStyle, bool blnSet);

/// Makes each column as wide as its header and its cells need.
void AutoSizeColumns(ui::ListView& objListView);

} // namespace kv

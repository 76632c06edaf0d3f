#include "console/list_view_helpers.h"

#include "base/int16.h"

namespace kv {

bool SetExtendedStyle(ui::ListView& objListView, std::int32_t lngStyle, bool blnSet) {
    const std::int32_t previous = objListView.ExtendedStyle();
    objListView.ExtendedStyle(blnSet ? previous | lngStyle : previous ^ lngStyle);
    return previous != 0;
}

void AutoSizeColumns(ui::ListView& objListView) {
    const Int16 count(objListView.ColumnCount());
    for (Int16 column; column < count; ++column) {
        objListView.AutoSizeColumn(column.Value());
    }
}

} // namespace kv

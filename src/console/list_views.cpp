// Fills list views, with the 16-bit counters that list_views.h describes.
#include "console/list_views.h"

#include "platform/pending_events.h"

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

void EmptyResultList(ui::ListView& list) {
    list.ClearRows();
    list.ClearColumns();
    list.Refresh();
    list.Enabled(false);
    platform::RunPendingEvents();
}

void FillResultList(
    ui::ListView& list, const TextTable& table,
    const std::function<ui::ListView::Column(Int16 number, const std::string& name)>& column) {
    const Int16 last_column(table.ColumnUpperBound());
    for (Int16 i(1); i <= last_column; ++i) {
        const ui::ListView::Column header = column(i, table(i.Value(), 0));
        list.AddColumn(header.key, header.text);
    }
    if (table.RowUpperBound() >= 1) {
        const Int16 last_row(table.RowUpperBound());
        // The loop increments the counter after the last row too: it overflows if that row's number was
        // 32,767.
        for (Int16 r(1); r <= last_row; ++r) {
            const int row = list.AddRow("row_" + std::to_string(r.Value()), table(1, r.Value()));
            for (Int16 i(2); i <= last_column; ++i) {
                list.SetCell(row, i.Value() - 1, table(i.Value(), r.Value()));
            }
        }
    }
    AutoSizeColumns(list);
}

} // namespace kv

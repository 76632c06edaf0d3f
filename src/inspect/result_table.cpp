#include "inspect/result_table.h"

#include "base/int16.h"

namespace kv {

void FillTable(TextTable& table, ado::Recordset& rows) {
    const ado::Fields fields = rows.Fields();
    table.ReDim(fields.Count());
    const Int16 last(table.ColumnUpperBound()); // the counter of the columns has 16 bits
    for (Int16 i(1); i <= last; ++i) {
        table.SetName(i.Value(), fields.Item(i.Value() - 1).Name());
    }
    if (rows.Eof() && rows.Bof()) {
        return;
    }
    // Record by record they would be held twice while the table grows.
    table.SetRows(rows.GetRows());
}

} // namespace kv

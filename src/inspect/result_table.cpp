#include "inspect/result_table.h"

#include "startup/int16.h"

namespace kv {
namespace {

constexpr char kNullText[] = "(Null)";

void AppendRecord(TextTable& table, const ado::Recordset& rows) {
    const ado::Fields fields = rows.Fields();
    for (std::int32_t i = 0; i < table.ColumnUpperBound(); ++i) {
        const ado::Variant& value = fields.Item(i).Value();
        table.Append(value.IsNull() ? kNullText : value.ToString());
    }
}

} // namespace

void FillTable(TextTable& table, ado::Recordset& rows) {
    const ado::Fields fields = rows.Fields();
    table.ReDim(fields.Count());
    const Int16 last(table.ColumnUpperBound()); // the counter of the columns has 16 bits
    for (Int16 i(1); i <= last; ++i) {
        table.Append(fields.Item(i.Value() - 1).Name());
    }
    if (rows.Eof() && rows.Bof()) {
        return;
    }
    rows.MoveFirst();
    for (; !rows.Eof(); rows.MoveNext()) {
        table.GrowRow();
        AppendRecord(table, rows);
    }
}

} // namespace kv

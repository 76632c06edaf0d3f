#include "inspect/text_table.h"

#include <utility>

#include "base/failure.h"
#include "base/int16.h"

namespace kv {
namespace {

constexpr char kNullText[] = "(Null)";

} // namespace

void TextTable::ReDim(std::int32_t last_column) {
    names_.assign(static_cast<std::size_t>(last_column) + 1, {});
    rows_ = {};
}

void TextTable::SetName(std::int32_t column, const std::string& name) {
    CheckBounds(column, 0);
    names_[static_cast<std::size_t>(column)] = name;
}

void TextTable::SetRows(ado::RowStore rows) {
    CheckBounds(0, 0);
    rows_ = std::move(rows);
}

std::int32_t TextTable::ColumnUpperBound() const {
    if (names_.empty()) {
        RaiseRunTimeFailure(run_time::kSubscriptOutOfRange);
    }
    return static_cast<std::int32_t>(names_.size()) - 1;
}

std::int32_t TextTable::RowUpperBound() const {
    CheckBounds(0, 0);
    return static_cast<std::int32_t>(rows_.RowCount());
}

std::string TextTable::operator()(std::int32_t column, std::int32_t row) const {
    CheckBounds(column, row);
    if (row == 0) {
        return names_[static_cast<std::size_t>(column)];
    }
    if (column == 0) {
        return {};
    }
    const ado::Variant value =
        rows_.Value(static_cast<std::size_t>(row) - 1, static_cast<std::size_t>(column) - 1);
    return value.IsNull() ? kNullText : value.ToString();
}

void TextTable::CheckBounds(std::int32_t column, std::int32_t row) const {
    const bool inside = column >= 0 && column <= ColumnUpperBound() && row >= 0 &&
                        row <= static_cast<std::int32_t>(rows_.RowCount());
    if (!inside) {
        RaiseRunTimeFailure(run_time::kSubscriptOutOfRange);
    }
}

void FillTable(TextTable& table, ado::Recordset& rows) {
    const ado::Fields fields = rows.Fields();
    table.ReDim(fields.Count());
    const Int16 last(table.ColumnUpperBound()); // columns are counted with 16 bits
    for (Int16 i(1); i <= last; ++i) {
        table.SetName(i.Value(), fields.Item(i.Value() - 1).Name());
    }
    if (rows.Eof() && rows.Bof()) {
        return;
    }
    // All rows at once: added one by one they would be in memory twice while the table grows.
    table.SetRows(rows.GetRows());
}

} // namespace kv

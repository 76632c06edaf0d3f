// The columns, rows and keys of a list view.
#include "ui/list_view.h"

namespace ui {

void ListView::AddColumn(const std::string& key, const std::string& text) {
    for (const Column& column : columns_) {
        if (!key.empty() && column.key == key) {
            throw Refusal("the list view has a column '" + key + "' already");
        }
    }
    columns_.push_back({key, text});
    auto_sized_.push_back(false);
    Notify(Property::Columns);
}

void ListView::ClearColumns() {
    columns_.clear();
    auto_sized_.clear();
    Notify(Property::Columns);
}

const std::string& ListView::Cell(int row, int column) const {
    static const std::string empty;
    const auto& cells = RowAt(row).cells;
    const auto place = static_cast<std::size_t>(column);
    return place < cells.size() ? cells[place] : empty;
}

int ListView::AddRow(const std::string& key, const std::string& text) {
    if (!key.empty() && !row_keys_.insert(key).second) {
        throw Refusal("the list view has a row '" + key + "' already");
    }
    rows_.push_back({key, {}});
    auto& cells = rows_.back().cells;
    cells.reserve(columns_.size());
    cells.push_back(text);
    Notify(Property::Rows);
    return RowCount() - 1;
}

void ListView::SetCell(int row, int column, const std::string& text) {
    auto& cells = rows_.at(static_cast<std::size_t>(row)).cells;
    const auto place = static_cast<std::size_t>(column);
    if (place >= cells.size()) {
        cells.resize(place + 1);
    }
    cells[place] = text;
    Notify(Property::Cells);
}

void ListView::ClearRows() {
    rows_.clear();
    row_keys_.clear();
    Notify(Property::Rows);
}

void ListView::AutoSizeColumn(int column) {
    if (column < 0 || column >= ColumnCount()) {
        throw Refusal("the list view has no column " + std::to_string(column));
    }
    auto_sized_[static_cast<std::size_t>(column)] = true;
    Notify(Property::ColumnSizes);
}

void ListView::ExtendedStyle(std::int32_t value) {
    extended_style_ = value;
    Notify(Property::ExtendedStyle);
}

} // namespace ui

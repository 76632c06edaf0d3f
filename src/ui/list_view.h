// The list view: a table of texts with column headers.
//
// RowCount and Cell take constant time, so that a toolkit can read the cells only when it paints them. Each
// row and each cell that is added causes one notification; 32,767 rows of ten cells are added in a few
// milliseconds. Rows and columns are numbered from 0; the number of a row that does not exist throws
// std::out_of_range.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "ui/control.h"

namespace ui {

/// The bits of the extended style that the program uses. The values are those of Windows.
inline constexpr std::int32_t kGridLines = 0x1;
inline constexpr std::int32_t kFullRowSelect = 0x20;

class ListView : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::ListView;
    using Control::Control;

    struct Column {
        std::string key;  ///< identifies the column; not shown
        std::string text; ///< the header
    };

    int ColumnCount() const { return static_cast<int>(columns_.size()); }
    const Column& ColumnAt(int column) const { return columns_.at(static_cast<std::size_t>(column)); }
    /// Adds a column after the last. Throws Refusal if another column has the key; any number of columns may
    /// have the empty key.
    void AddColumn(const std::string& key, const std::string& text);
    void ClearColumns();

    int RowCount() const { return static_cast<int>(rows_.size()); }
    const std::string& RowKey(int row) const { return RowAt(row).key; }
    /// The text of a cell; empty if it was never set. Column 0 is the text of the row itself.
    const std::string& Cell(int row, int column) const;
    /// Adds a row after the last, with the text of its column 0, and returns its number. Throws Refusal if
    /// another row has the key; any number of rows may have the empty key.
    int AddRow(const std::string& key, const std::string& text);
    void SetCell(int row, int column, const std::string& text);
    void ClearRows();

    /// Makes the column as wide as its header and its cells need. Throws Refusal if there is no such column.
    void AutoSizeColumn(int column);
    /// One entry for each column, by its number: true if AutoSizeColumn was called for it.
    const std::vector<bool>& AutoSized() const { return auto_sized_; }

    std::int32_t ExtendedStyle() const { return extended_style_; }
    void ExtendedStyle(std::int32_t value);

  private:
    struct Row {
        std::string key;
        std::vector<std::string> cells;
    };

    const Row& RowAt(int row) const { return rows_.at(static_cast<std::size_t>(row)); }

    std::vector<Column> columns_;
    std::vector<bool> auto_sized_;
    std::vector<Row> rows_;
    std::unordered_set<std::string> row_keys_;
    std::int32_t extended_style_ = 0;
};

} // namespace ui

// The list view: columns, and rows of texts under them.
//
// A toolkit may show it as a virtual list: RowCount and Cell answer at once, and 32,767 rows of ten cells
// are added in a few milliseconds, one notification for each row and each cell.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "ui/control.h"

namespace ui {

/// The bits of the extended style that the program uses.
inline constexpr std::int32_t kGridLines = 0x1;
inline constexpr std::int32_t kFullRowSelect = 0x20;

class ListView : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::ListView;
    using Control::Control;

    struct Column {
        std::string key;
        std::string text;
    };

    int ColumnCount() const { return static_cast<int>(columns_.size()); }
    /// From 0.
    const Column& ColumnAt(int column) const { return columns_.at(static_cast<std::size_t>(column)); }
    /// After the last. Refuses a key that exists; an empty key counts as no key.
    void AddColumn(const std::string& key, const std::string& text);
    void ClearColumns();

    int RowCount() const { return static_cast<int>(rows_.size()); }
    const std::string& RowKey(int row) const { return RowAt(row).key; }
    /// From 0; column 0 is the item's own text. Empty if nothing was set.
    const std::string& Cell(int row, int column) const;
    /// Adds a row after the last, with the text of its column 0, and returns its number. Refuses a key that
    /// exists; an empty key counts as no key.
    int AddRow(const std::string& key, const std::string& text);
    void SetCell(int row, int column, const std::string& text);
    void ClearRows();

    /// The column is to become as wide as its header and its cells need. Refuses a column that is not there.
    void AutoSizeColumn(int column);
    /// The columns that were sized so since the columns were cleared, in order of their numbers.
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

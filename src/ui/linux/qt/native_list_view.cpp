// Gives Qt the cells of a ListView, and sizes its columns.
#include "ui/linux/qt/native_list_view.h"

#include <algorithm>
#include <array>

#include <QHeaderView>

#include "ui/linux/qt/text.h"

namespace ui {
namespace {

constexpr int kNewColumnWidth = 96; // pixels: an inch at the design's scale
constexpr int kRowMargins = 4;      // pixels above and below the text of a row, together

using CharacterWidths = std::array<int, 256>;

/// The widths of the font's characters, in 64ths of a pixel. A text is as wide as its characters together, or
/// narrower if the font has kerning. Adding them measures a table of 327,660 cells in a hundredth of the time
/// that it takes to ask the font for each text.
CharacterWidths WidthsOf(const QFont& font) {
    const QFontMetricsF metrics(font);
    CharacterWidths widths{};
    for (std::size_t code = 0; code < widths.size(); ++code) {
        const char character = static_cast<char>(code);
        widths[code] = qCeil(64 * metrics.horizontalAdvance(ToQt(std::string_view(&character, 1))));
    }
    return widths;
}

int WidthOf(const std::string& text, const CharacterWidths& widths) {
    int width = 0;
    for (const char character : text) {
        width += widths[static_cast<unsigned char>(character)];
    }
    return width / 64 + 1;
}

int WidestCell(const ListView& list, int column, const CharacterWidths& widths) {
    int widest = 0;
    for (int row = 0; row < list.RowCount(); ++row) {
        widest = std::max(widest, WidthOf(list.Cell(row, column), widths));
    }
    return widest;
}

} // namespace

void ListViewModel::TakeOver() {
    beginResetModel();
    rows_ = list_.RowCount();
    columns_ = list_.ColumnCount();
    endResetModel();
}

QVariant ListViewModel::data(const QModelIndex& index, int role) const {
    // The list may have been emptied after its rows were announced to the native control.
    if (role != Qt::DisplayRole || index.row() >= list_.RowCount()) {
        return {};
    }
    return ToQt(list_.Cell(index.row(), index.column()));
}

QVariant ListViewModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section >= list_.ColumnCount()) {
        return {};
    }
    if (role == Qt::TextAlignmentRole) {
        return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    }
    return role == Qt::DisplayRole ? ToQt(list_.ColumnAt(section).text) : QVariant();
}

/// Without full row selection only the first column, the item, can be selected.
Qt::ItemFlags ListViewModel::flags(const QModelIndex& index) const {
    const bool whole_row = (list_.ExtendedStyle() & kFullRowSelect) != 0;
    return index.column() == 0 || whole_row ? Qt::ItemIsEnabled | Qt::ItemIsSelectable
                                            : Qt::ItemFlags(Qt::ItemIsEnabled);
}

NativeListView::NativeListView(const ListView& list, QWidget* parent)
    : QTableView(parent), list_(list), model_(list) {
    setModel(&model_);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
    ShowExtendedStyle();
}

void NativeListView::ShowExtendedStyle() {
    setShowGrid((list_.ExtendedStyle() & kGridLines) != 0);
    setSelectionBehavior((list_.ExtendedStyle() & kFullRowSelect) != 0 ? QAbstractItemView::SelectRows
                                                                       : QAbstractItemView::SelectItems);
}

void NativeListView::ShowTable(bool columns) {
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowMargins);
    model_.TakeOver();
    for (int column = 0; columns && column < list_.ColumnCount(); ++column) {
        setColumnWidth(column, kNewColumnWidth);
    }
}

void NativeListView::SizeColumns() {
    const CharacterWidths cell_widths = WidthsOf(font());
    const CharacterWidths header_widths = WidthsOf(horizontalHeader()->font());
    const int cell_margins = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1) + 1;
    const int header_margins = 2 * style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, this) + 4;
    const std::vector<bool>& sized = list_.AutoSized();
    for (int column = 0; column < list_.ColumnCount(); ++column) {
        if (!sized.at(static_cast<std::size_t>(column))) {
            continue;
        }
        const int wanted = std::max(WidestCell(list_, column, cell_widths) + cell_margins,
                                    WidthOf(list_.ColumnAt(column).text, header_widths) + header_margins);
        setColumnWidth(column, std::min(wanted, viewport()->width()));
    }
}

} // namespace ui

// The native list view. It holds no rows and asks the ListView for the cells that it paints, so a table is
// shown at once however many rows it has.
#pragma once

#include <QAbstractTableModel>
#include <QTableView>

#include "ui/list_view.h"

namespace ui {

/// The rows and columns of a ListView as Qt's views read them. Its counts change only in TakeOver, which
/// announces the change: a native control must not see a count that was not announced to it.
class ListViewModel final : public QAbstractTableModel {
  public:
    explicit ListViewModel(const ListView& list) : list_(list) {}

    /// Takes over the counts of the ListView and has the native control read everything again.
    void TakeOver();

    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : columns_; }
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  private:
    const ListView& list_;
    int rows_ = 0;
    int columns_ = 0;
};

class NativeListView final : public QTableView {
  public:
    /// `list` must outlive it.
    NativeListView(const ListView& list, QWidget* parent);

    void ShowExtendedStyle();
    /// Shows the list's present rows and columns. If `columns` is true, every column gets the width of a new
    /// one.
    void ShowTable(bool columns);
    /// Makes each column of ListView::AutoSized as wide as its header and its cells need, but no wider than
    /// the window.
    void SizeColumns();

  private:
    const ListView& list_;
    ListViewModel model_;
};

} // namespace ui

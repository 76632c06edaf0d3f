// The native list view. It holds no rows and asks the ListView for the cells that it paints, so a table is
// shown at once however many rows it has.
#pragma once

#include <QAbstractTableModel>
#include <QTableView>

#include "ui/list_view.h"

namespace ui {

/// Qt's view of the rows. Its row count changes only when it announces the change to the native control,
/// which would otherwise ask for rows that were never announced.
class ListViewModel final : public QAbstractTableModel {
  public:
    explicit ListViewModel(const ListView& list) : list_(list) {}

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
    NativeListView(const ListView& list, QWidget* parent);

    void ShowExtendedStyle();
    /// The rows as they are now; with `columns` also the columns, each of the width of a new one.
    void ShowTable(bool columns);
    /// Makes the columns that the list says are sized so as wide as their headers and their cells need.
    void SizeColumns();

  private:
    const ListView& list_;
    ListViewModel model_;
};

} // namespace ui

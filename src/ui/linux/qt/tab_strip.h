// The native tab bar and the area below it for the pages. The pages are not its children: NativeForm places
// them. A disabled tab is grey and cannot be chosen.
#pragma once

#include <vector>

#include <QTabBar>
#include <QWidget>

#include "ui/controls.h"

namespace ui {

class TabStrip final : public QWidget {
  public:
    /// `parent` owns it.
    TabStrip(const TabControl& tabs, QWidget* parent);

    QTabBar& Bar() { return *bar_; }
    /// Enables or disables a tab, counted from 0. Also reports the change to assistive technology, which Qt
    /// does not do.
    void EnableTab(int index, bool enabled);
    /// Chooses the next enabled tab in `direction` (1 or -1), as the operator does. With `around` the search
    /// goes on at the other end. Does nothing if there is no such tab.
    void ChooseNext(int direction, bool around);
    /// Chooses the first enabled tab from `index` on in `direction`. Does nothing if there is no such tab.
    void ChooseFrom(int index, int direction);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QTabBar* bar_;
};

} // namespace ui

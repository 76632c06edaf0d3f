// The native tab bar and the area below it for the pages. The pages are not its children: the form places
// them. A disabled tab is grey and cannot be chosen.
#pragma once

#include <vector>

#include <QTabBar>
#include <QWidget>

#include "ui/controls.h"

namespace ui {

class TabStrip final : public QWidget {
  public:
    TabStrip(const TabControl& tabs, QWidget* parent);

    QTabBar& Bar() { return *bar_; }
    /// Also reports the change to assistive technology, which Qt does not.
    void EnableTab(int index, bool enabled);
    /// Chooses the next tab in that direction (1 or -1) that can be chosen, as the operator does; `around`
    /// goes on at the other end. Does nothing if there is no such tab.
    void ChooseNext(int direction, bool around);
    /// The first tab from `index` on, in that direction, that can be chosen.
    void ChooseFrom(int index, int direction);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QTabBar* bar_;
};

} // namespace ui

// Chooses and paints the tabs.
#include "ui/linux/qt/tab_strip.h"

#include <QAccessible>
#include <QStyleOptionTabWidgetFrame>
#include <QStylePainter>

#include "ui/linux/qt/native_control.h"
#include "ui/linux/qt/text.h"

namespace ui {

TabStrip::TabStrip(const TabControl& tabs, QWidget* parent) : QWidget(parent), bar_(new QTabBar(this)) {
    for (int tab = 0; tab < tabs.Tabs(); ++tab) {
        bar_->addTab(ToQt(tabs.TabCaption(tab)));
    }
    bar_->setObjectName(IdentifierOf(tabs));
    bar_->setDrawBase(false);
    bar_->setUsesScrollButtons(false);
    bar_->setExpanding(false);
    bar_->setFocusPolicy(Qt::TabFocus);
}

void TabStrip::EnableTab(int index, bool enabled) {
    if (bar_->isTabEnabled(index) == enabled) {
        return;
    }
    bar_->setTabEnabled(index, enabled);
    if (QAccessible::isActive()) {
        QAccessible::State changed;
        changed.disabled = true;
        QAccessibleStateChangeEvent event(bar_, changed);
        event.setChild(index);
        QAccessible::updateAccessibility(&event);
    }
}

void TabStrip::ChooseNext(int direction, bool around) {
    for (int step = 1; step < bar_->count(); ++step) {
        int index = bar_->currentIndex() + step * direction;
        if (around) {
            index = (index + bar_->count()) % bar_->count();
        }
        if (bar_->isTabEnabled(index)) { // false for an index outside the bar
            bar_->setCurrentIndex(index);
            return;
        }
    }
}

void TabStrip::ChooseFrom(int index, int direction) {
    while (index >= 0 && index < bar_->count() && !bar_->isTabEnabled(index)) {
        index += direction;
    }
    if (bar_->isTabEnabled(index)) {
        bar_->setCurrentIndex(index);
    }
}

void TabStrip::paintEvent(QPaintEvent* /*event*/) {
    QStyleOptionTabWidgetFrame sheet;
    sheet.initFrom(this);
    sheet.lineWidth = 1;
    sheet.tabBarSize = bar_->size();
    sheet.tabBarRect = bar_->geometry();
    sheet.selectedTabRect = bar_->tabRect(bar_->currentIndex());
    const int overlap = style()->pixelMetric(QStyle::PM_TabBarBaseOverlap, nullptr, bar_);
    sheet.rect = rect().adjusted(0, bar_->height() - overlap, 0, 0);
    QStylePainter(this).drawPrimitive(QStyle::PE_FrameTabWidget, sheet);
}

void TabStrip::resizeEvent(QResizeEvent* /*event*/) {
    bar_->setGeometry(0, 0, std::min(width(), bar_->sizeHint().width()), bar_->sizeHint().height());
}

} // namespace ui

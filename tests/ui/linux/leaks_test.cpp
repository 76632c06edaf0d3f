// Tests that no native controls are left when their page or form is closed. A leak checker does not find such
// controls, because they still have an owner.
#include <QApplication>
#include <QWidget>

#include "ui/on_screen.h"

namespace {

class ShownFormOfQt : public OnScreen {
  protected:
    static qsizetype Widgets() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return QApplication::allWidgets().size();
    }
    static qsizetype Objects(screen::Part window) {
        return static_cast<QWidget*>(window)->findChildren<QObject*>().size();
    }
    void SwitchTabs(int times) {
        for (int time = 0; time < times; ++time) {
            ShowTab(time % kv::kMainTabs);
        }
        ShowTab(0);
    }
};

TEST_F(ShownFormOfQt, HasNoMoreControlsAfterTwoHundredTabSwitches) {
    SwitchTabs(2 * kv::kMainTabs); // so that all pages are made
    const qsizetype widgets = Widgets();
    const qsizetype objects = Objects(top_);
    ASSERT_GT(widgets, 100);
    ASSERT_GT(objects, 100);
    SwitchTabs(200);
    EXPECT_EQ(Widgets(), widgets);
    EXPECT_EQ(Objects(top_), objects);
}

TEST_F(ShownFormOfQt, DestroysItsNativeControlsWhenItIsDestroyed) {
    const auto show_once = [] {
        ui::Form form(kv::ProceduresFormDesign());
        const auto window = ui::MakeWindow(form);
        window->Show();
        platform::RunPendingEvents();
    };
    show_once();
    const qsizetype widgets = Widgets();
    show_once();
    show_once();
    EXPECT_EQ(Widgets(), widgets);
}

/// The longest table that the program's counters allow is shown at once, because the view only asks for the
/// cells that it paints.
TEST_F(ShownFormOfQt, HasNoObjectsForTheRowsOfAList) {
    ShowTab(kv::kViewDataTab);
    const qsizetype objects = Objects(Native("lvwViewData"));
    auto& list = Get<ui::ListView>("lvwViewData");
    for (int column = 0; column < 10; ++column) {
        list.AddColumn("Column" + std::to_string(column), "Column" + std::to_string(column));
    }
    for (int row = 0; row < 32766; ++row) {
        const int added = list.AddRow("row_" + std::to_string(row + 1), "value " + std::to_string(row));
        for (int column = 1; column < 10; ++column) {
            list.SetCell(added, column, "value " + std::to_string(row * 10 + column));
        }
    }
    const auto begin = ui::InputClock::now();
    for (int column = 0; column < 10; ++column) {
        list.AutoSizeColumn(column);
    }
    list.Refresh();
    RecordProperty(
        "shown_in_ms",
        static_cast<int>(
            std::chrono::duration_cast<std::chrono::milliseconds>(ui::InputClock::now() - begin).count()));
    EXPECT_EQ(screen::RowCount(Native("lvwViewData")), 32766);
    EXPECT_EQ(Objects(Native("lvwViewData")), objects);
}

} // namespace

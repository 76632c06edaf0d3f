// Tests that the native window shows the state of its form.
#include <algorithm>
#include <tuple>
#include <utility>

#include "ui/on_screen.h"

namespace {

using ui::Kind;

class ShownForm : public OnScreen {};

TEST_F(ShownForm, HasTheSystemsOwnControlForEachOfItsControls) {
    ShowAllTabs();
    for (const auto& control : form_.Controls()) {
        const screen::Part native = Native(*control);
        ASSERT_NE(native, nullptr) << Name(*control);
        EXPECT_TRUE(screen::IsOfKind(native, control->Kind())) << Name(*control);
    }
}

TEST_F(ShownForm, MakesTheControlsOfAPageWhenItIsFirstShown) {
    const auto on_page = [](const ui::Control& control, int page) {
        const ui::Control* part = &control;
        while (part->Parent() != nullptr && part->Parent()->Kind() != Kind::TabControl) {
            part = part->Parent();
        }
        return part->Parent() != nullptr && part->Index() == page;
    };
    for (int tab = 0; tab < kv::kMainTabs; ++tab) {
        for (const auto& control : form_.Controls()) {
            if (tab > 0 && on_page(*control, tab)) {
                EXPECT_EQ(Native(*control), nullptr) << Name(*control);
            }
        }
        ShowTab(tab);
        for (const auto& control : form_.Controls()) {
            if (on_page(*control, tab)) {
                EXPECT_NE(Native(*control), nullptr) << Name(*control);
            }
        }
    }
}

/// Here the model is changed before the page has native controls.
TEST_F(ShownForm, FillsAPageWithTheEarlierChangesOfTheModel) {
    auto& rename = Get<ui::TextBox>("edtRenameNewDatabase");
    rename.Text("Batch2");
    rename.SelStart(2);
    rename.SelLength(3);
    auto& databases = Get<ui::ComboBox>("cboRenameDatabase");
    databases.AddItem("master");
    databases.AddItem("Batch");
    databases.Text("Batch");
    Get<ui::ComboBox>("cboUpgradeDatabaseDest").Text("NewBatch");
    Get<ui::OptionButton>("optUpgradeCurrentServer", 1).Value(true);
    Get<ui::OptionButton>("optUpgradeCurrentServer", 1).Caption("SRVB");
    Get<ui::CommandButton>("cmdRemove").Enabled(false);
    Settle();
    ASSERT_EQ(Native("edtRenameNewDatabase"), nullptr);
    Get<ui::TabControl>("tabMain").Tab(kv::kUpgradeTab);
    form_.SetFocus(Get<ui::ComboBox>("cboUpgradeDatabaseDest"));
    Settle();
    EXPECT_EQ(screen::Text(Native("edtRenameNewDatabase")), "Batch2");
    EXPECT_EQ(screen::Selection(Native("edtRenameNewDatabase")), std::pair(2, 5));
    EXPECT_EQ(FocusName(), "cboUpgradeDatabaseDest");
    EXPECT_EQ(screen::ItemCount(Native("cboRenameDatabase")), 2);
    EXPECT_EQ(screen::ChosenItem(Native("cboRenameDatabase")), 1);
    EXPECT_EQ(screen::Text(Native("cboUpgradeDatabaseDest")), "NewBatch");
    EXPECT_TRUE(screen::IsTicked(Native("optUpgradeCurrentServer", 1)));
    EXPECT_FALSE(screen::IsTicked(Native("optUpgradeCurrentServer", 0)));
    EXPECT_EQ(screen::Text(Native("optUpgradeCurrentServer", 1)), "SRVB");
    EXPECT_FALSE(screen::IsEnabled(Native("cmdRemove")));
    EXPECT_TRUE(screen::IsEnabled(Native("cmdRename")));
    ShowTab(kv::kStoredProcTab);
    EXPECT_TRUE(screen::IsReadOnly(Native("edtStoredProcedure")));
}

TEST_F(ShownForm, FiresNothingWhenAPageIsMade) {
    int events = 0;
    for (const auto& control : form_.Controls()) {
        if (control->Kind() == Kind::TextBox) {
            static_cast<ui::TextBox&>(*control).Text("text");
            static_cast<ui::TextBox&>(*control).on_change = [&events] { ++events; };
        }
        if (control->Kind() == Kind::ComboBox) {
            auto& box = static_cast<ui::ComboBox&>(*control);
            box.AddItem("item");
            box.Text("item");
            box.on_change = box.on_click = [&events] { ++events; };
        }
    }
    ShowAllTabs();
    EXPECT_EQ(events, 0);
}

TEST_F(ShownForm, GivesNoFocusToAPageThatIsHiddenAgain) {
    Get<ui::TabControl>("tabMain").Tab(kv::kUpgradeTab);
    form_.SetFocus(Get<ui::TextBox>("edtRenameNewDatabase"));
    Get<ui::TabControl>("tabMain").Tab(kv::kGeneralTab);
    Settle();
    EXPECT_EQ(Native("edtRenameNewDatabase"), nullptr) << "it was never seen";
    ASSERT_NE(FocusName(), "");
    EXPECT_TRUE(screen::IsShown(Native(*screen::Focused(form_))));
}

TEST_F(ShownForm, ShowsTheChangesThatTheProgramMakes) {
    ShowAllTabs();
    Get<ui::Label>("lblStatus").Caption("Step 1");
    Get<ui::TextBox>("edtServerName", 1).Text("SRVB\\KV_BATCH");
    Get<ui::CheckBox>("chkStandardSynchronize").Value(1);
    Get<ui::OptionButton>("optScriptCurrentServer", 1).Value(true);
    Get<ui::OptionButton>("optScriptCurrentServer", 1).Caption("N/A");
    auto& databases = Get<ui::ComboBox>("cboRenameDatabase");
    databases.AddItem("master");
    databases.AddItem("Batch");
    databases.Text("Batch");
    Get<ui::ComboBox>("cboUpgradeDatabaseDest").Text("NewBatch");
    Get<ui::ListBox>("lstViewDataTables").AddItem("LKConfig");
    Get<ui::ProgressBar>("prbStatus").Max(14);
    Get<ui::ProgressBar>("prbStatus").Value(5);
    Get<ui::CommandButton>("cmdRename").Enabled(false);
    form_.Caption("Another title");
    Settle();
    EXPECT_EQ(screen::Text(Native("lblStatus")), "Step 1");
    EXPECT_EQ(screen::Text(Native("edtServerName", 1)), "SRVB\\KV_BATCH");
    EXPECT_TRUE(screen::IsTicked(Native("chkStandardSynchronize")));
    EXPECT_TRUE(screen::IsTicked(Native("optScriptCurrentServer", 1)));
    EXPECT_FALSE(screen::IsTicked(Native("optScriptCurrentServer", 0)));
    EXPECT_EQ(screen::Text(Native("optScriptCurrentServer", 1)), "N/A");
    EXPECT_EQ(screen::ItemCount(Native("cboRenameDatabase")), 2);
    EXPECT_EQ(screen::ChosenItem(Native("cboRenameDatabase")), 1);
    EXPECT_EQ(screen::Text(Native("cboUpgradeDatabaseDest")), "NewBatch");
    EXPECT_EQ(screen::ItemCount(Native("lstViewDataTables")), 1);
    EXPECT_EQ(screen::BarMax(Native("prbStatus")), 14);
    EXPECT_EQ(screen::BarValue(Native("prbStatus")), 5);
    EXPECT_FALSE(screen::IsEnabled(Native("cmdRename")));
    EXPECT_EQ(screen::Text(top_), "Another title");
}

TEST_F(ShownForm, ShowsARefreshedControlAtOnce) {
    auto& status = Get<ui::Label>("lblStatus");
    status.Caption("Step 2");
    status.Refresh();
    EXPECT_EQ(screen::Text(Native("lblStatus")), "Step 2"); // no event has run between
}

TEST_F(ShownForm, KeepsTheSelectionOfATextThatTheProgramSelects) {
    auto& path = Get<ui::TextBox>("edtSQLDataPath", 0);
    path.Text("C:\\MSSQL");
    path.SelStart(0);
    path.SelLength(path.Text().size());
    form_.SetFocus(path);
    Settle();
    EXPECT_EQ(screen::Selection(Native("edtSQLDataPath", 0)), std::pair(0, 8));
    EXPECT_EQ(FocusName(), "edtSQLDataPath0");
}

TEST_F(ShownForm, ShowsASelectedItemWhosePlaceInTheListHasChanged) {
    ShowTab(kv::kUpgradeTab);
    auto& box = Get<ui::ComboBox>("cboRemoveDatabase");
    box.AddItem("Batch");
    box.Text("Batch");
    Settle();
    box.Clear();
    for (const char* name : {"Alpha", "Batch", "Gamma"}) {
        box.AddItem(name);
    }
    box.Text("Batch");
    Settle();
    screen::Part native = Native("cboRemoveDatabase");
    EXPECT_EQ(screen::ChosenItem(native), 1);
    EXPECT_EQ(screen::ItemCount(native), 3);
    EXPECT_EQ(screen::Text(native), "Batch");
}

TEST_F(ShownForm, ShowsTheMinimumAndMaximumOfTheBar) {
    auto& bar = Get<ui::ProgressBar>("prbStatus");
    bar.Min(3);
    bar.Max(14);
    bar.Value(5);
    Settle();
    EXPECT_EQ(screen::BarMin(Native("prbStatus")), 3);
    EXPECT_EQ(screen::BarMax(Native("prbStatus")), 14);
    EXPECT_EQ(screen::BarValue(Native("prbStatus")), 5);
}

TEST_F(ShownForm, ShowsOnlyThePageOfTheActiveTab) {
    for (int tab = 0; tab < kv::kMainTabs; ++tab) {
        Get<ui::TabControl>("tabMain").Tab(tab);
        Settle();
        for (int page = 0; page < kv::kMainTabs; ++page) {
            EXPECT_EQ(screen::IsShown(Native("fraMainTab", page)), page == tab) << tab << " " << page;
        }
        EXPECT_EQ(screen::ShownTab(Native("tabMain")), tab);
    }
}

/// Runs for each form at each of screen::Sizes.
class ShownAtSize : public OnScreen,
                    public ::testing::WithParamInterface<std::tuple<int, const ui::FormDesign*>> {
  protected:
    ShownAtSize() : OnScreen(*std::get<1>(GetParam())) {}
    /// Makes some of the pages before the size changes and some after it.
    void ResizeAmongTabs() {
        if (form_.Find("tabMain") != nullptr) {
            ShowTab(kv::kScriptTab);
            ShowTab(kv::kViewDataTab);
        }
        SetSize(std::get<0>(GetParam()));
        ShowAllTabs();
    }
    static bool IsPage(const ui::Control& control) {
        return control.Parent() != nullptr && control.Parent()->Kind() == Kind::TabControl;
    }
    bool IsTabs(const ui::Control& control) const { return control.Kind() == Kind::TabControl; }
};

TEST_P(ShownAtSize, CutsOffNoCaption) {
    ResizeAmongTabs();
    for (const auto& control : form_.Controls()) {
        const bool has_caption = control->Kind() == Kind::Label || control->Kind() == Kind::CheckBox ||
                                 control->Kind() == Kind::OptionButton ||
                                 control->Kind() == Kind::CommandButton;
        if (!has_caption || control->Design().caption[0] == '\0') {
            continue;
        }
        screen::Part native = Native(*control);
        ASSERT_NE(native, nullptr) << Name(*control);
        EXPECT_LE(screen::WidthOfText(native, control->Design().caption),
                  screen::RoomForCaption(native, control->Kind()))
            << Name(*control);
    }
}

TEST_P(ShownAtSize, KeepsEveryControlWithinItsParentAndApartFromOthers) {
    ResizeAmongTabs();
    for (const auto& control : form_.Controls()) {
        if (IsPage(*control) || IsTabs(*control)) {
            continue; // all pages have the same place
        }
        screen::Part native = Native(*control);
        ASSERT_NE(native, nullptr) << Name(*control);
        screen::Part parent = screen::ParentOf(native);
        const screen::Box place = screen::PlaceIn(native, parent);
        EXPECT_TRUE(screen::Room(parent).Holds(place)) << Name(*control) << " reaches out of its parent";
        for (const auto& other : form_.Controls()) {
            if (other->Id() <= control->Id() || other->Parent() != control->Parent() || IsPage(*other)) {
                continue;
            }
            EXPECT_FALSE(place.Meets(screen::PlaceIn(Native(*other), parent)))
                << Name(*control) << " and " << Name(*other);
        }
    }
}

TEST_P(ShownAtSize, ShowsEveryTabBesideItsPage) {
    ResizeAmongTabs();
    if (form_.Find("tabMain") == nullptr) {
        return; // the dialog has no tabs
    }
    screen::Part tabs = Native("tabMain");
    for (int tab = 0; tab < kv::kMainTabs; ++tab) {
        const screen::Box place = screen::TabPlace(tabs, tab);
        EXPECT_LE(place.right, screen::PlaceIn(Native("fraMainTab", 0), tabs).right) << tab;
        EXPECT_LE(place.bottom, screen::PlaceIn(Native("fraMainTab", tab), tabs).top) << tab;
        EXPECT_GE(place.Width(), screen::WidthOfText(tabs, Get<ui::TabControl>("tabMain").TabCaption(tab)))
            << tab;
    }
}

/// The window's frame counts too.
TEST_F(ShownForm, FitsTheScreenAtEverySize) {
    const screen::Box area = screen::WorkArea();
    for (const int size : screen::Sizes()) {
        SetSize(size);
        const auto fits = [&] { return area.Holds(screen::FrameOf(top_)); };
        EXPECT_TRUE(screen::WaitFor(fits)) // the window manager may have to move it
            << size << ": " << screen::FrameOf(top_).Width() << " x " << screen::FrameOf(top_).Height();
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ShownAtSize,
                         ::testing::Combine(::testing::ValuesIn(screen::Sizes()),
                                            ::testing::Values(&kv::MainFormDesign(),
                                                              &kv::ProceduresFormDesign())));

// --- the list view

class ShownList : public OnScreen {
  protected:
    void SetUp() override {
        OnScreen::SetUp();
        ShowTab(kv::kViewDataTab);
        native_ = Native("lvwViewData");
    }

    void Fill(int rows) {
        ui::ListView& list = Get<ui::ListView>("lvwViewData");
        list.AddColumn("ID", "ID *");
        list.AddColumn("Name", "Name");
        for (int row = 0; row < rows; ++row) {
            list.SetCell(list.AddRow("row_" + std::to_string(row + 1), std::to_string(row + 1)), 1, "short");
        }
    }

    screen::Part native_ = nullptr;
};

TEST_F(ShownList, ShowsTheRowsAndColumnsOfTheModel) {
    Fill(32766);
    Settle();
    EXPECT_EQ(screen::RowCount(native_), 32766);
    EXPECT_EQ(screen::Cell(native_, 0, 0), "1");
    EXPECT_EQ(screen::Cell(native_, 32765, 0), "32766");
    EXPECT_EQ(screen::Cell(native_, 7, 1), "short");
    EXPECT_EQ(screen::ColumnCount(native_), 2);
}

TEST_F(ShownList, MakesAColumnAsWideAsItsWidestCellInAnyRow) {
    Fill(2000);
    const std::string wide = "a text that is wider than all others";
    ui::ListView& list = Get<ui::ListView>("lvwViewData");
    list.SetCell(1500, 1, wide);
    list.AutoSizeColumn(0);
    list.AutoSizeColumn(1);
    Settle();
    EXPECT_GT(screen::ColumnWidth(native_, 1), screen::WidthOfText(native_, wide));
    EXPECT_GE(screen::ColumnWidth(native_, 0), screen::WidthOfText(native_, "ID *") + 8);
    EXPECT_EQ(screen::RowCount(native_), 2000);
}

TEST_F(ShownList, MakesAColumnOfLongCellsAsWideAsItsViewAndNoWider) {
    Fill(3);
    ui::ListView& list = Get<ui::ListView>("lvwViewData");
    Settle();
    for (const std::size_t length : {260U, 4680U, 5000U, 40000U}) {
        list.SetCell(1, 1, std::string(length, 'x'));
        list.AutoSizeColumn(1);
        Settle();
        EXPECT_EQ(screen::ColumnWidth(native_, 1), screen::ViewWidth(native_)) << length;
        EXPECT_EQ(screen::Cell(native_, 1, 1), std::string(std::min(length, screen::LongestCell()), 'x'));
    }
    list.SetCell(1, 1, "short");
    list.AddColumn("Long", std::string(300, 'h'));
    list.AutoSizeColumn(1);
    list.AutoSizeColumn(2);
    Settle();
    EXPECT_LT(screen::ColumnWidth(native_, 1), screen::ViewWidth(native_) / 2);
    EXPECT_EQ(screen::ColumnWidth(native_, 2), screen::ViewWidth(native_)) << "a long header";
}

TEST_F(ShownList, IsDisabledWithItsModel) {
    EXPECT_TRUE(screen::IsEnabled(native_));
    Get<ui::ListView>("lvwViewData").Enabled(false);
    Settle();
    EXPECT_FALSE(screen::IsEnabled(native_));
    Get<ui::ListView>("lvwViewData").Enabled(true);
    Settle();
    EXPECT_TRUE(screen::IsEnabled(native_));
}

TEST_F(ShownList, IsEmptiedWithItsModel) {
    Fill(10);
    Settle();
    Get<ui::ListView>("lvwViewData").ClearRows();
    Get<ui::ListView>("lvwViewData").ClearColumns();
    Settle();
    EXPECT_EQ(screen::RowCount(native_), 0);
    EXPECT_EQ(screen::ColumnCount(native_), 0);
}

TEST_F(ShownList, TakesTheExtendedStyleOfTheModel) {
    Get<ui::ListView>("lvwViewData").ExtendedStyle(ui::kFullRowSelect | ui::kGridLines);
    Settle();
    EXPECT_TRUE(screen::HasGridAndFullRows(native_));
}

} // namespace

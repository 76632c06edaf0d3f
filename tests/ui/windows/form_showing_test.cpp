// What the native window shows of its form.
#include <map>

#include "ui/windows/on_screen.h"

namespace {

using ui::Kind;

class ShownForm : public OnScreen {};

const std::map<Kind, std::string>& NativeClasses() {
    static const std::map<Kind, std::string> classes = {
        {Kind::Frame, "Button"},
        {Kind::PictureBox, "Static"},
        {Kind::Label, "Static"},
        {Kind::TextBox, "Edit"},
        {Kind::CommandButton, "Button"},
        {Kind::CheckBox, "Button"},
        {Kind::OptionButton, "Button"},
        {Kind::ComboBox, "ComboBox"},
        {Kind::ListBox, "ListBox"},
        {Kind::ListView, "SysListView32"},
        {Kind::ProgressBar, "msctls_progress32"},
        {Kind::TabControl, "SysTabControl32"},
    };
    return classes;
}

TEST_F(ShownForm, HasTheSystemsOwnControlForEachOfItsControls) {
    ShowAllTabs();
    for (const auto& control : form_.Controls()) {
        const HWND native = Native(*control);
        ASSERT_NE(native, nullptr) << Name(*control);
        EXPECT_EQ(hands::ClassOf(native), NativeClasses().at(control->Kind())) << Name(*control);
    }
}

TEST_F(ShownForm, MakesTheControlsOfAPageWhenItIsShownFirst) {
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

/// All of it is done to the model while the page is not there.
TEST_F(ShownForm, FillsAPageWithWhatTheModelGotBefore) {
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
    EXPECT_EQ(hands::Text(Native("edtRenameNewDatabase")), "Batch2");
    EXPECT_EQ(::SendMessageA(Native("edtRenameNewDatabase"), EM_GETSEL, 0, 0), MAKELONG(2, 5));
    EXPECT_EQ(FocusName(), "cboUpgradeDatabaseDest");
    EXPECT_EQ(::SendMessageA(Native("cboRenameDatabase"), CB_GETCOUNT, 0, 0), 2);
    EXPECT_EQ(::SendMessageA(Native("cboRenameDatabase"), CB_GETCURSEL, 0, 0), 1);
    EXPECT_EQ(hands::Text(Native("cboUpgradeDatabaseDest")), "NewBatch");
    EXPECT_EQ(::SendMessageA(Native("optUpgradeCurrentServer", 1), BM_GETCHECK, 0, 0), BST_CHECKED);
    EXPECT_EQ(::SendMessageA(Native("optUpgradeCurrentServer", 0), BM_GETCHECK, 0, 0), BST_UNCHECKED);
    EXPECT_EQ(hands::Text(Native("optUpgradeCurrentServer", 1)), "SRVB");
    EXPECT_FALSE(::IsWindowEnabled(Native("cmdRemove")));
    EXPECT_TRUE(::IsWindowEnabled(Native("cmdRename")));
    ShowTab(kv::kStoredProcTab);
    EXPECT_NE(::GetWindowLongPtrA(Native("edtStoredProcedure"), GWL_STYLE) & ES_READONLY, 0);
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

TEST_F(ShownForm, GivesNoFocusToAPageThatHasGoneAgain) {
    Get<ui::TabControl>("tabMain").Tab(kv::kUpgradeTab);
    form_.SetFocus(Get<ui::TextBox>("edtRenameNewDatabase"));
    Get<ui::TabControl>("tabMain").Tab(kv::kGeneralTab);
    Settle();
    EXPECT_EQ(Native("edtRenameNewDatabase"), nullptr) << "it was never seen";
    EXPECT_NE(::GetFocus(), nullptr);
    EXPECT_TRUE(::IsWindowVisible(::GetFocus()));
}

TEST_F(ShownForm, ShowsWhatTheProgramChanges) {
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
    EXPECT_EQ(hands::Text(Native("lblStatus")), "Step 1");
    EXPECT_EQ(hands::Text(Native("edtServerName", 1)), "SRVB\\KV_BATCH");
    EXPECT_EQ(::SendMessageA(Native("chkStandardSynchronize"), BM_GETCHECK, 0, 0), BST_CHECKED);
    EXPECT_EQ(::SendMessageA(Native("optScriptCurrentServer", 1), BM_GETCHECK, 0, 0), BST_CHECKED);
    EXPECT_EQ(::SendMessageA(Native("optScriptCurrentServer", 0), BM_GETCHECK, 0, 0), BST_UNCHECKED);
    EXPECT_EQ(hands::Text(Native("optScriptCurrentServer", 1)), "N/A");
    EXPECT_EQ(::SendMessageA(Native("cboRenameDatabase"), CB_GETCOUNT, 0, 0), 2);
    EXPECT_EQ(::SendMessageA(Native("cboRenameDatabase"), CB_GETCURSEL, 0, 0), 1);
    EXPECT_EQ(hands::Text(Native("cboUpgradeDatabaseDest")), "NewBatch");
    EXPECT_EQ(::SendMessageA(Native("lstViewDataTables"), LB_GETCOUNT, 0, 0), 1);
    EXPECT_EQ(::SendMessageA(Native("prbStatus"), PBM_GETRANGE, FALSE, 0), 14);
    EXPECT_EQ(::SendMessageA(Native("prbStatus"), PBM_GETPOS, 0, 0), 5);
    EXPECT_FALSE(::IsWindowEnabled(Native("cmdRename")));
    EXPECT_EQ(hands::Text(handle_), "Another title");
}

TEST_F(ShownForm, ShowsAtOnceWhatIsRefreshed) {
    auto& status = Get<ui::Label>("lblStatus");
    status.Caption("Step 2");
    status.Refresh();
    EXPECT_EQ(hands::Text(Native("lblStatus")), "Step 2"); // with no event run between
}

TEST_F(ShownForm, KeepsTheSelectionOfATextThatTheProgramSelects) {
    auto& path = Get<ui::TextBox>("edtSQLDataPath", 0);
    path.Text("C:\\MSSQL");
    path.SelStart(0);
    path.SelLength(path.Text().size());
    form_.SetFocus(path);
    Settle();
    DWORD begin = 99;
    DWORD end = 99;
    ::SendMessageA(Native("edtSQLDataPath", 0), EM_GETSEL, reinterpret_cast<WPARAM>(&begin),
                   reinterpret_cast<LPARAM>(&end));
    EXPECT_EQ(begin, 0U);
    EXPECT_EQ(end, 8U);
    EXPECT_EQ(FocusName(), "edtSQLDataPath0");
}

TEST_F(ShownForm, ShowsThePageOfItsTabAlone) {
    for (int tab = 0; tab < kv::kMainTabs; ++tab) {
        Get<ui::TabControl>("tabMain").Tab(tab);
        Settle();
        for (int page = 0; page < kv::kMainTabs; ++page) {
            EXPECT_EQ(::IsWindowVisible(Native("fraMainTab", page)) != 0, page == tab) << tab << " " << page;
        }
        EXPECT_EQ(::SendMessageA(Native("tabMain"), TCM_GETCURSEL, 0, 0), tab);
    }
}

/// As wide as the window's font draws the text, mnemonics taken out.
int WidthOfText(HWND window, const std::string& text) {
    const HDC paper = ::GetDC(window);
    const HGDIOBJ before =
        ::SelectObject(paper, reinterpret_cast<HGDIOBJ>(::SendMessageA(window, WM_GETFONT, 0, 0)));
    RECT place{};
    ::DrawTextA(paper, text.c_str(), -1, &place, DT_CALCRECT | DT_SINGLELINE);
    ::SelectObject(paper, before);
    ::ReleaseDC(window, paper);
    return place.right;
}

/// What the control needs beside its text: the tick, the button's edge.
int SpaceBesideText(Kind kind, int dpi) {
    switch (kind) {
    case Kind::CheckBox:
    case Kind::OptionButton:
        return ::MulDiv(18, dpi, 96);
    case Kind::CommandButton:
        return ::MulDiv(8, dpi, 96);
    default:
        return 0;
    }
}

class ShownAtScale : public OnScreen,
                     public ::testing::WithParamInterface<std::pair<int, const ui::FormDesign*>> {
  protected:
    ShownAtScale() : OnScreen(*GetParam().second) {}
    int Dpi() const { return GetParam().first; }
    /// Some of the pages are there when the scale changes, and some come after it.
    void ScaleAmongTabs() {
        if (form_.Find("tabMain") != nullptr) {
            ShowTab(kv::kScriptTab);
            ShowTab(kv::kViewDataTab);
        }
        Scale(Dpi());
        ShowAllTabs();
    }
};

TEST_P(ShownAtScale, CutsOffNoCaption) {
    ScaleAmongTabs();
    for (const auto& control : form_.Controls()) {
        const bool has_caption = control->Kind() == Kind::Label || control->Kind() == Kind::CheckBox ||
                                 control->Kind() == Kind::OptionButton ||
                                 control->Kind() == Kind::CommandButton;
        if (!has_caption || (control->Design().traits & ui::kPicture) != 0) {
            continue;
        }
        const HWND native = Native(*control);
        ASSERT_NE(native, nullptr) << Name(*control);
        RECT client{};
        ::GetClientRect(native, &client);
        EXPECT_LE(WidthOfText(native, control->Design().caption) + SpaceBesideText(control->Kind(), Dpi()),
                  client.right)
            << Name(*control);
    }
}

TEST_P(ShownAtScale, KeepsEveryControlWithinItsParentAndClearOfItsNeighbours) {
    ScaleAmongTabs();
    for (const auto& control : form_.Controls()) {
        if (control->Parent() != nullptr && control->Parent()->Kind() == Kind::TabControl) {
            continue; // the pages lie on one another
        }
        const HWND native = Native(*control);
        ASSERT_NE(native, nullptr) << Name(*control);
        const HWND parent = ::GetParent(native);
        RECT room{};
        ::GetClientRect(parent, &room);
        const RECT place = hands::PlaceIn(native, parent);
        RECT common{};
        ::IntersectRect(&common, &room, &place);
        EXPECT_TRUE(::EqualRect(&common, &place)) << Name(*control) << " reaches out of its parent";
        for (const auto& other : form_.Controls()) {
            const bool page = other->Parent() != nullptr && other->Parent()->Kind() == Kind::TabControl;
            if (other->Id() <= control->Id() || other->Parent() != control->Parent() || page) {
                continue;
            }
            const RECT near_by = hands::PlaceIn(Native(*other), parent);
            EXPECT_FALSE(::IntersectRect(&common, &place, &near_by))
                << Name(*control) << " and " << Name(*other);
        }
    }
}

TEST_P(ShownAtScale, HasTheClientAreaOfItsDesign) {
    Scale(Dpi());
    RECT client{};
    ::GetClientRect(handle_, &client);
    EXPECT_EQ(client.right, ::MulDiv(form_.Design().client_width, Dpi(), 1440));
    EXPECT_EQ(client.bottom, ::MulDiv(form_.Design().client_height, Dpi(), 1440));
}

INSTANTIATE_TEST_SUITE_P(Scales, ShownAtScale,
                         ::testing::Values(std::pair{96, &kv::MainFormDesign()},
                                           std::pair{120, &kv::MainFormDesign()},
                                           std::pair{144, &kv::MainFormDesign()},
                                           std::pair{96, &kv::ProceduresFormDesign()},
                                           std::pair{144, &kv::ProceduresFormDesign()}));

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

    std::string CellText(int row, int column) const {
        char text[300] = "";
        LVITEMA item{};
        item.iSubItem = column;
        item.pszText = text;
        item.cchTextMax = sizeof text;
        ::SendMessageA(native_, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
        return text;
    }

    HWND native_ = nullptr;
};

TEST_F(ShownList, ShowsTheRowsAndColumnsOfTheModel) {
    Fill(32766);
    Settle();
    EXPECT_EQ(::SendMessageA(native_, LVM_GETITEMCOUNT, 0, 0), 32766);
    EXPECT_EQ(CellText(0, 0), "1");
    EXPECT_EQ(CellText(32765, 0), "32766");
    EXPECT_EQ(CellText(7, 1), "short");
    const auto header = reinterpret_cast<HWND>(::SendMessageA(native_, LVM_GETHEADER, 0, 0));
    EXPECT_EQ(::SendMessageA(header, HDM_GETITEMCOUNT, 0, 0), 2);
}

TEST_F(ShownList, MakesAColumnAsWideAsItsWidestCellWhereverThatIs) {
    Fill(2000);
    const std::string wide = "a text that is wider than all others";
    ui::ListView& list = Get<ui::ListView>("lvwViewData");
    list.SetCell(1500, 1, wide);
    list.AutoSizeColumn(0);
    list.AutoSizeColumn(1);
    Settle();
    const LRESULT needed =
        ::SendMessageA(native_, LVM_GETSTRINGWIDTHA, 0, reinterpret_cast<LPARAM>(wide.c_str()));
    EXPECT_GT(::SendMessageA(native_, LVM_GETCOLUMNWIDTH, 1, 0), needed);
    EXPECT_GE(::SendMessageA(native_, LVM_GETCOLUMNWIDTH, 0, 0), WidthOfText(native_, "ID *") + 12);
    EXPECT_EQ(::SendMessageA(native_, LVM_GETITEMCOUNT, 0, 0), 2000);
}

TEST_F(ShownList, MakesAColumnOfLongCellsAsWideAsItsViewAndNoWider) {
    RECT view{};
    ::GetClientRect(native_, &view);
    Fill(3);
    ui::ListView& list = Get<ui::ListView>("lvwViewData");
    for (const std::size_t length : {260U, 4680U, 5000U, 40000U}) {
        list.SetCell(1, 1, std::string(length, 'x'));
        list.AutoSizeColumn(1);
        Settle();
        EXPECT_EQ(::SendMessageA(native_, LVM_GETCOLUMNWIDTH, 1, 0), view.right) << length;
        EXPECT_EQ(CellText(1, 1), std::string(259, 'x')) << length;
    }
    list.SetCell(1, 1, "short");
    list.AddColumn("Long", std::string(300, 'h'));
    list.AutoSizeColumn(1);
    list.AutoSizeColumn(2);
    Settle();
    EXPECT_LT(::SendMessageA(native_, LVM_GETCOLUMNWIDTH, 1, 0), view.right / 2);
    EXPECT_EQ(::SendMessageA(native_, LVM_GETCOLUMNWIDTH, 2, 0), view.right) << "a long header";
}

TEST_F(ShownList, IsEmptiedWithItsModel) {
    Fill(10);
    Settle();
    Get<ui::ListView>("lvwViewData").ClearRows();
    Get<ui::ListView>("lvwViewData").ClearColumns();
    Settle();
    EXPECT_EQ(::SendMessageA(native_, LVM_GETITEMCOUNT, 0, 0), 0);
    const auto header = reinterpret_cast<HWND>(::SendMessageA(native_, LVM_GETHEADER, 0, 0));
    EXPECT_EQ(::SendMessageA(header, HDM_GETITEMCOUNT, 0, 0), 0);
}

TEST_F(ShownList, TakesTheExtendedStyleOfTheModel) {
    Get<ui::ListView>("lvwViewData").ExtendedStyle(ui::kFullRowSelect | ui::kGridLines);
    Settle();
    const LRESULT style = ::SendMessageA(native_, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0);
    EXPECT_EQ(style & (LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES), LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES);
}

// --- handles

/// The process's GDI objects. Wine does not count them, and takes the number of a handle's place for the
/// handle.
int GdiObjects() {
    const DWORD counted = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
    if (counted != 0) {
        return static_cast<int>(counted);
    }
    int found = 0;
    for (UINT_PTR place = 1; place < 0x10000; ++place) {
        found += ::GetObjectType(reinterpret_cast<HGDIOBJ>(place)) != 0 ? 1 : 0;
    }
    return found;
}

BOOL CALLBACK CountOne(HWND /*window*/, LPARAM count) {
    ++*reinterpret_cast<int*>(count);
    return TRUE;
}

BOOL CALLBACK CountWithChildren(HWND window, LPARAM count) {
    ::EnumChildWindows(window, CountOne, count);
    return CountOne(window, count);
}

/// The process's user objects: windows of this thread at any depth, menus, icons and pointers. Wine does not
/// count them, and takes the lower half of a handle for the handle.
int UserObjects() {
    const DWORD counted = ::GetGuiResources(::GetCurrentProcess(), GR_USEROBJECTS);
    if (counted != 0) {
        return static_cast<int>(counted);
    }
    int found = 0;
    ::EnumThreadWindows(::GetCurrentThreadId(), CountWithChildren, reinterpret_cast<LPARAM>(&found));
    for (UINT_PTR place = 0x20; place < 0x4000; place += 2) {
        found += ::IsMenu(reinterpret_cast<HMENU>(place)) != 0 ? 1 : 0;
        ICONINFO icon{};
        if (::GetIconInfo(reinterpret_cast<HICON>(place), &icon) != 0) {
            ++found;
            ::DeleteObject(icon.hbmMask);
            ::DeleteObject(icon.hbmColor);
        }
    }
    return found;
}

/// The process's handles of the kernel's. Wine does not count them either.
int KernelHandles() {
    DWORD counted = 0;
    ::GetProcessHandleCount(::GetCurrentProcess(), &counted);
    if (counted != 0) {
        return static_cast<int>(counted);
    }
    int found = 0;
    for (UINT_PTR handle = 4; handle < 0x4000; handle += 4) {
        DWORD flags = 0;
        found += ::GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0 ? 1 : 0;
    }
    return found;
}

TEST_F(ShownForm, LeavesNoHandleBehindInTwoHundredTabSwitches) {
    const auto switch_tabs = [this](int times) {
        for (int time = 0; time < times; ++time) {
            Get<ui::TabControl>("tabMain").Tab(time % kv::kMainTabs);
            Settle();
        }
        Get<ui::TabControl>("tabMain").Tab(0);
        Settle();
    };
    switch_tabs(2 * kv::kMainTabs); // what is made once is made
    const int objects = GdiObjects();
    const int user_objects = UserObjects();
    const int handles = KernelHandles();
    ASSERT_GT(objects, 10);
    ASSERT_GT(user_objects, 100); // a window for each control
    ASSERT_GT(handles, 5);
    switch_tabs(200);
    EXPECT_EQ(GdiObjects(), objects);
    EXPECT_EQ(UserObjects(), user_objects);
    EXPECT_EQ(KernelHandles(), handles);
}

TEST(ShownForms, LeaveNoObjectBehindWhenTheyGo) {
    ASSERT_TRUE(platform::DesktopIsVisible()) << "this suite needs a screen";
    const auto show_once = [] {
        ui::Form form(kv::MainFormDesign());
        const auto window = ui::MakeWindow(form);
        window->Show();
        platform::RunPendingEvents();
    };
    show_once();
    show_once();
    const int objects = GdiObjects();
    show_once();
    show_once();
    EXPECT_EQ(GdiObjects(), objects);
}

} // namespace

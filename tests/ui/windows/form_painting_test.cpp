// What the toolkit of Windows paints itself (the tab strip), and the system's marks and tool tips.
// ../form_looks_test.cpp has what both toolkits show.
#include <algorithm>
#include <vector>

#include "ui/on_screen.h"
#include "ui/windows/ui_automation.h"

#include <commctrl.h>

namespace {

HWND Handle(screen::Part part) {
    return static_cast<HWND>(part);
}

/// What the screen shows of a part of a window's client area.
class Picture {
  public:
    Picture(HWND window, const RECT& part) : width_(part.right - part.left) {
        ::UpdateWindow(window);
        const HDC paper = ::GetDC(window);
        for (LONG y = part.top; y < part.bottom; ++y) {
            for (LONG x = part.left; x < part.right; ++x) {
                pixels_.push_back(::GetPixel(paper, x, y));
            }
        }
        ::ReleaseDC(window, paper);
    }
    explicit Picture(HWND window) : Picture(window, ClientOf(window)) {}

    static RECT ClientOf(HWND window) {
        RECT client{};
        ::GetClientRect(window, &client);
        return client;
    }
    int Darkest() const {
        int darkest = 255;
        for (const COLORREF pixel : pixels_) {
            darkest = std::min(darkest, (GetRValue(pixel) + GetGValue(pixel) + GetBValue(pixel)) / 3);
        }
        return darkest;
    }
    /// Where the two differ, as places in a part of the same size.
    std::vector<POINT> Differences(const Picture& other) const {
        std::vector<POINT> places;
        for (std::size_t i = 0; i < pixels_.size(); ++i) {
            if (pixels_[i] != other.pixels_.at(i)) {
                const auto index = static_cast<LONG>(i);
                places.push_back({index % width_, index / width_});
            }
        }
        return places;
    }

  private:
    LONG width_;
    std::vector<COLORREF> pixels_;
};

COLORREF PixelAt(HWND window, LONG x, LONG y) {
    ::UpdateWindow(window);
    const HDC paper = ::GetDC(window);
    const COLORREF colour = ::GetPixel(paper, x, y);
    ::ReleaseDC(window, paper);
    return colour;
}

class PaintedForm : public OnScreen {
  protected:
    HWND Window(const char* name, int index = ui::kNoIndex) { return Handle(Native(name, index)); }
    RECT TabPlace(int tab) {
        const screen::Box place = screen::TabPlace(Native("tabMain"), tab);
        return {place.left, place.top, place.right, place.bottom};
    }
};

TEST_F(PaintedForm, TheSelectedTabAndWhatIsRoundAPageHaveThePagesColour) {
    const HWND tabs = Window("tabMain");
    const COLORREF face = ::GetSysColor(COLOR_BTNFACE);
    const RECT client = Picture::ClientOf(tabs);
    for (const int tab : {0, 3}) {
        ShowTab(tab);
        const RECT place = TabPlace(tab);
        EXPECT_EQ(PixelAt(tabs, place.left + 1, place.top + 1), face);
        EXPECT_EQ(PixelAt(tabs, place.left + 1, place.bottom), face) << "no line below the selected tab";
        for (const LONG inside : {1, 2, 3, 4}) {
            EXPECT_EQ(PixelAt(tabs, inside, client.bottom / 2), face);
            EXPECT_EQ(PixelAt(tabs, client.right - 1 - inside, client.bottom / 2), face);
            EXPECT_EQ(PixelAt(tabs, client.right / 2, client.bottom - 1 - inside), face);
        }
        EXPECT_EQ(PixelAt(tabs, 0, client.bottom / 2), ::GetSysColor(COLOR_BTNSHADOW)) << "its edge";
    }
}

TEST_F(PaintedForm, TheFocusOfATabIsOneRectangleAndLeavesNothing) {
    const HWND tabs = Window("tabMain");
    ::SendMessageA(Handle(top_), WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
    form_.SetFocus(Get<ui::TextBox>("edtScriptFolder"));
    Settle();
    RECT strip = Picture::ClientOf(tabs);
    strip.bottom = TabPlace(0).bottom + 4;
    const Picture before(tabs, strip);
    form_.SetFocus(Get<ui::TabControl>("tabMain"));
    Settle();
    ASSERT_EQ(FocusName(), "tabMain");
    const std::vector<POINT> changed = Picture(tabs, strip).Differences(before);
    ASSERT_GT(changed.size(), 20U);
    RECT box{9999, 9999, 0, 0};
    for (const POINT& place : changed) {
        box = {std::min(box.left, place.x), std::min(box.top, place.y), std::max(box.right, place.x),
               std::max(box.bottom, place.y)};
    }
    for (const POINT& place : changed) {
        const bool on_edge =
            place.x == box.left || place.x == box.right || place.y == box.top || place.y == box.bottom;
        EXPECT_TRUE(on_edge) << place.x << "," << place.y;
    }
    form_.SetFocus(Get<ui::TextBox>("edtScriptFolder"));
    Settle();
    EXPECT_TRUE(Picture(tabs, strip).Differences(before).empty());
}

TEST_F(PaintedForm, ADisabledCheckBoxWithoutACaptionIsPalerThanAnEnabledOne) {
    ShowTab(kv::kScriptTab);
    const HWND native = Window("chkCreateInstallScriptFile");
    auto& box = Get<ui::CheckBox>("chkCreateInstallScriptFile");
    const int enabled = Picture(native).Darkest();
    box.Enabled(false);
    Settle();
    EXPECT_GT(Picture(native).Darkest(), enabled + 30);
    const Picture once(native);
    ::InvalidateRect(native, nullptr, FALSE);
    EXPECT_TRUE(Picture(native).Differences(once).empty()) << "the same however often it is painted";
    box.Enabled(true);
    Settle();
    EXPECT_EQ(Picture(native).Darkest(), enabled);
}

TEST_F(PaintedForm, ARefreshedLabelHasNothingLeftToPaint) {
    ShowTab(kv::kReplicationTab);
    auto& status = Get<ui::Label>("lblSQLServerReplicationStatus");
    status.ForeColor(ui::kRed);
    status.Refresh();
    EXPECT_FALSE(::GetUpdateRect(Window("lblSQLServerReplicationStatus"), nullptr, FALSE));
}

// --- marks of texts

bool NothingMarked(HWND combo_box) {
    DWORD begin = 1;
    DWORD end = 0;
    ::SendMessageA(combo_box, CB_GETEDITSEL, reinterpret_cast<WPARAM>(&begin),
                   reinterpret_cast<LPARAM>(&end));
    return begin == end;
}

TEST_F(PaintedForm, TheTextOfABoxWithoutTheFocusIsNotMarked) {
    ShowTab(kv::kUpgradeTab);
    auto& box = Get<ui::ComboBox>("cboUpgradeDatabaseDest");
    const HWND native = Window("cboUpgradeDatabaseDest");
    box.AddItem("Batch");
    box.AddItem("Batch2");
    box.ListIndex(0);
    Settle();
    ::SendMessageA(native, CB_SETEDITSEL, 0, MAKELPARAM(0, -1)); // as Windows does it, and Wine does not
    ASSERT_FALSE(NothingMarked(native));
    box.ListIndex(0);
    Settle();
    EXPECT_TRUE(NothingMarked(native)) << "chosen by the program";
    form_.SetFocus(box);
    Settle();
    ASSERT_EQ(FocusName(), "cboUpgradeDatabaseDest");
    box.ListIndex(1);
    Settle();
    EXPECT_FALSE(NothingMarked(native)) << "with the focus";
    form_.SetFocus(Get<ui::CommandButton>("cmdUpgrade"));
    Settle();
    ASSERT_EQ(FocusName(), "cmdUpgrade");
    EXPECT_TRUE(NothingMarked(native)) << "when the focus has gone";
    EXPECT_EQ(screen::Text(native), "Batch2");
}

// --- tool tips

BOOL CALLBACK TakeToolTips(HWND window, LPARAM found) {
    if (ui_automation::ClassOf(window) == TOOLTIPS_CLASSA) {
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }
    return TRUE;
}

TEST_F(PaintedForm, AToolTipIsAsWideAsTheScaleAllows) {
    HWND tips = nullptr;
    ::EnumThreadWindows(::GetCurrentThreadId(), TakeToolTips, reinterpret_cast<LPARAM>(&tips));
    ASSERT_NE(tips, nullptr);
    EXPECT_EQ(::SendMessageA(tips, TTM_GETMAXTIPWIDTH, 0, 0), 480);
    SetSize(144);
    EXPECT_EQ(::SendMessageA(tips, TTM_GETMAXTIPWIDTH, 0, 0), 720);
}

// --- the window

class WindowAtScale : public OnScreen,
                      public ::testing::WithParamInterface<std::pair<int, const ui::FormDesign*>> {
  protected:
    WindowAtScale() : OnScreen(*GetParam().second) {}
};

TEST_P(WindowAtScale, HasTheClientAreaOfItsDesign) {
    const int dpi = GetParam().first;
    SetSize(dpi);
    RECT client{};
    ::GetClientRect(Handle(top_), &client);
    EXPECT_EQ(client.right, ::MulDiv(form_.Design().client_width, dpi, 1440));
    EXPECT_EQ(client.bottom, ::MulDiv(form_.Design().client_height, dpi, 1440));
}

INSTANTIATE_TEST_SUITE_P(Scales, WindowAtScale,
                         ::testing::Values(std::pair{96, &kv::MainFormDesign()},
                                           std::pair{120, &kv::MainFormDesign()},
                                           std::pair{144, &kv::MainFormDesign()},
                                           std::pair{96, &kv::ProceduresFormDesign()},
                                           std::pair{144, &kv::ProceduresFormDesign()}));

} // namespace

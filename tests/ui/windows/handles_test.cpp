// Handles that a form keeps or leaves: ../linux/leaks_test.cpp is the same for Qt's objects.
#include "platform/windows/lean_windows.h"
#include "ui/on_screen.h"

namespace {

/// The process's GDI objects. Wine does not count them, but accepts the number of a place in the table of
/// handles as a handle.
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
/// count them, but accepts the lower half of a handle.
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

/// The process's kernel handles. Wine does not count them either.
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

class HandlesOfAForm : public OnScreen {};

TEST_F(HandlesOfAForm, AreAsManyAfterTwoHundredTabSwitches) {
    const auto switch_tabs = [this](int times) {
        for (int time = 0; time < times; ++time) {
            Get<ui::TabControl>("tabMain").Tab(time % kv::kMainTabs);
            Settle();
        }
        Get<ui::TabControl>("tabMain").Tab(0);
        Settle();
    };
    switch_tabs(2 * kv::kMainTabs); // pages are made when they are shown first
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

TEST(HandlesOfForms, AreGoneWithTheForm) {
    ASSERT_TRUE(screen::IsThere()) << "this suite needs a screen";
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

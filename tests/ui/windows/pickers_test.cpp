// How the system's dialogs for a folder and a file are asked for on Windows. ../pickers_test.cpp answers
// them.
#include "ui/windows/pickers.h"

#include <string>

#include <gtest/gtest.h>

#include "ui/windows/answer.h"
#include "ui/windows/ui_automation.h"

#include <shlobj.h>

namespace {

/// What the program asks the system for: a dialog does not show all of it.
struct AskedFolder {
    HWND owner = nullptr;
    std::string title;
    std::string start;
    UINT flags = 0;
    bool has_callback = false;
} asked;

ITEMIDLIST* WINAPI TakeAndBrowse(BROWSEINFOA* info) {
    asked = {info->hwndOwner, info->lpszTitle,
             info->lParam == 0 ? "(none)" : reinterpret_cast<const char*>(info->lParam), info->ulFlags,
             info->lpfn != nullptr};
    using Function = ITEMIDLIST*(WINAPI*)(BROWSEINFOA*);
    const HMODULE shell = ::GetModuleHandleA("shell32.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(shell, "SHBrowseForFolderA")))(
        info);
}

} // namespace

/// Replaces the system's own entry: the linker takes the first.
extern "C" {
void* __imp_SHBrowseForFolderA = reinterpret_cast<void*>(&TakeAndBrowse);
}

namespace {

/// A window that can own a dialog.
class Owner {
  public:
    Owner()
        : window_(::CreateWindowExA(0, "STATIC", "owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 100,
                                    nullptr, nullptr, nullptr, nullptr)) {}
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner() { ::DestroyWindow(window_); }
    HWND Window() const { return window_; }

  private:
    HWND window_;
};

/// Windows' own identifiers of the file dialog's parts.
constexpr int kFilterBox = 0x470;
constexpr int kReadOnlyBox = 0x410;

TEST(FolderPicker, AsksForFoldersOfTheFileSystemAboveItsOwner) {
    const Owner owner;
    {
        const Answer cancel([](HWND dialog) { Answer::Press(dialog, IDCANCEL); });
        ui::BrowseForFolder(owner.Window(), "Browse for SQL Data path", "C:\\windows");
    }
    EXPECT_EQ(asked.owner, owner.Window());
    EXPECT_EQ(asked.title, "Browse for SQL Data path");
    EXPECT_EQ(asked.start, "C:\\windows");
    EXPECT_EQ(asked.flags, 3U) << "folders of the file system alone, and none below a domain";
    EXPECT_TRUE(asked.has_callback);
    {
        const Answer cancel([](HWND dialog) { Answer::Press(dialog, IDCANCEL); });
        ui::BrowseForFolder(owner.Window(), "Browse for SQL Data path", "");
    }
    EXPECT_EQ(asked.start, "(none)") << "the tree opens at its top";
}

TEST(FilePicker, HasItsOwnerTitleAndFilterAndNoBoxForReadOnly) {
    const Owner owner;
    HWND above = nullptr;
    std::string title;
    std::string filter;
    bool read_only = true;
    {
        const Answer look([&](HWND dialog) {
            above = ::GetWindow(dialog, GW_OWNER);
            title = ui_automation::Text(dialog);
            filter = ui_automation::Text(ui_automation::Child(dialog, kFilterBox));
            const HWND box = ui_automation::Child(dialog, kReadOnlyBox);
            read_only = box != nullptr && ::IsWindowVisible(box) != 0;
            Answer::Press(dialog, IDCANCEL);
        });
        ui::BrowseForFile("Browse for script file", "Script Files (*.sql)|*.sql", owner.Window(), "");
    }
    EXPECT_EQ(above, owner.Window());
    EXPECT_EQ(title, "Browse for script file");
    EXPECT_EQ(filter, "Script Files (*.sql)");
    EXPECT_FALSE(read_only);
}

} // namespace

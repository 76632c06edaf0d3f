// The system's dialogs for a folder and a file, answered from a second thread as a person would.
#include "ui/windows/pickers.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "ui/windows/answer.h"
#include "ui/windows/screen_input.h"

#include <shlobj.h>

namespace {

/// What the program asks the system for, taken on its way: a dialog does not show all of it.
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

/// Stands before the system's own entry: the linker takes the first.
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
            title = hands::Text(dialog);
            filter = hands::Text(hands::Child(dialog, kFilterBox));
            const HWND box = hands::Child(dialog, kReadOnlyBox);
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

/// A dialog of this process that stands above another one; null if there is none.
HWND BoxAbove(HWND dialog) {
    HWND box = nullptr;
    while ((box = ::FindWindowExA(nullptr, box, "#32770", nullptr)) != nullptr) {
        if (box != dialog && ::GetWindow(box, GW_OWNER) == dialog && ::IsWindowVisible(box) != 0) {
            return box;
        }
    }
    return nullptr;
}

TEST(FilePicker, TakesNoFileThatIsNotThere) {
    bool refused = false;
    std::optional<std::string> chosen;
    {
        const Answer type([&refused](HWND dialog) {
            hands::Activate(dialog);
            hands::WaitFor([dialog] { return hands::ClassOf(hands::FocusIn(dialog)) == "Edit"; });
            hands::Type("kv no such file.sql");
            hands::Press(VK_RETURN);
            hands::WaitFor(
                [dialog, &refused] {
                    const HWND box = BoxAbove(dialog);
                    refused = box != nullptr;
                    if (refused) {
                        Answer::Press(box, IDOK);
                    }
                    return refused || ::IsWindow(dialog) == 0;
                },
                std::chrono::seconds(20));
            hands::WaitFor([dialog] { return BoxAbove(dialog) == nullptr; });
            Answer::Press(dialog, IDCANCEL);
        });
        chosen = ui::BrowseForFile("Browse for script file", "Script Files (*.sql)|*.sql", nullptr, "C:\\");
    }
    EXPECT_TRUE(refused);
    EXPECT_EQ(chosen, std::nullopt);
}

TEST(FolderPicker, GivesNothingWhenItIsCancelled) {
    const Answer cancel([](HWND dialog) { Answer::Press(dialog, IDCANCEL); });
    EXPECT_EQ(ui::BrowseForFolder(nullptr, "Browse for script folder", "C:\\windows"), std::nullopt);
}

TEST(FolderPicker, OpensAtTheStartFolderAndGivesIt) {
    const Answer take([](HWND dialog) { Answer::Press(dialog, IDOK); });
    const auto chosen = ui::BrowseForFolder(nullptr, "Browse for script folder", "C:\\windows\\system32");
    ASSERT_TRUE(chosen.has_value());
    EXPECT_EQ(::lstrcmpiA(chosen->c_str(), "C:\\windows\\system32"), 0) << *chosen;
}

TEST(FilePicker, GivesNothingWhenItIsCancelled) {
    const Answer cancel([](HWND dialog) { Answer::Press(dialog, IDCANCEL); });
    EXPECT_EQ(ui::BrowseForFile("Browse for script file", "Script Files (*.sql)|*.sql", nullptr, ""),
              std::nullopt);
}

/// Picks the file of that name in the folder that the dialog opens at.
std::optional<std::string> PickTyped(const std::string& name, const std::string& start_folder) {
    const Answer type([&name](HWND dialog) {
        EXPECT_TRUE(hands::Activate(dialog)) << "the dialog is in front";
        EXPECT_TRUE(hands::WaitFor([dialog] { return hands::ClassOf(hands::FocusIn(dialog)) == "Edit"; }))
            << "the focus is in the name";
        hands::Type(name);
        hands::Press(VK_RETURN);
        // A name that is not found brings up a box: both go, so that a failure has an end.
        if (hands::WaitFor([dialog] { return ::IsWindow(dialog) == 0 || BoxAbove(dialog) != nullptr; },
                           std::chrono::seconds(20)) &&
            ::IsWindow(dialog) == 0) {
            return;
        }
        Answer::Press(BoxAbove(dialog), IDOK);
        hands::WaitFor([dialog] { return BoxAbove(dialog) == nullptr; });
        Answer::Press(dialog, IDCANCEL);
    });
    return ui::BrowseForFile("Browse for script file", "Script Files (*.sql)|*.sql", nullptr, start_folder);
}

TEST(FilePicker, GivesTheFileThatIsTypedInTheStartFolder) {
    // In no folder of its own: the shell would not let go of it before this program ends.
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "kv pick a file.sql";
    std::ofstream(file) << "SELECT 1";
    // One after the other: the system remembers where the last file was.
    const auto first = PickTyped("win.ini", "C:\\windows");
    const auto second = PickTyped(file.filename().string(), file.parent_path().string());
    std::filesystem::remove(file);
    ASSERT_TRUE(first.has_value());
    EXPECT_EQ(::lstrcmpiA(first->c_str(), "C:\\windows\\win.ini"), 0) << *first;
    ASSERT_TRUE(second.has_value());
    EXPECT_EQ(::lstrcmpiA(second->c_str(), file.string().c_str()), 0) << *second;
}

} // namespace

// Walks through the console by clicks and keys alone, as an operator who installs a database does: fetches
// the local settings, picks the folders, creates and installs all scripts and packages, lists the packages.
// It prints what it saw; what stands on the server is asked by console_walk_test.py, which runs it on a
// screen.
//
//   console_walk PROGRAM SERVER DATA_FOLDER SCRIPT_FOLDER [PICTURE_FOLDER]
#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>

#include "console/main_form_design.h"
#include "ui/form.h"
#include "ui/windows/other_process_controls.h"
#include "ui/windows/screen_input.h"

#include <commctrl.h>

namespace {

constexpr std::chrono::seconds kLongest{120};
constexpr int kTreeId = 0x3741; // of the tree in the system's dialog

/// The windows on the screen with their texts.
void TellScreen() {
    const auto tell = [](HWND window, LPARAM depth) -> BOOL {
        if (::IsWindowVisible(window) != 0) {
            std::printf("%*s%s \"%s\"%s\n", static_cast<int>(depth), "", hands::ClassOf(window).c_str(),
                        hands::Caption(window).c_str(), ::IsWindowEnabled(window) != 0 ? "" : " (disabled)");
        }
        return TRUE;
    };
    for (HWND top = ::GetTopWindow(nullptr); top != nullptr; top = ::GetWindow(top, GW_HWNDNEXT)) {
        tell(top, 0);
        if (::IsWindowVisible(top) != 0) {
            ::EnumChildWindows(top, tell, 2);
        }
    }
}

void Require(bool condition, const std::string& what) {
    if (!condition) {
        TellScreen();
        throw std::runtime_error(what);
    }
    std::printf("%s\n", what.c_str());
}

class Walk {
  public:
    Walk(const std::string& program, std::string pictures) : pictures_(std::move(pictures)) {
        STARTUPINFOA start{};
        start.cb = sizeof start;
        std::string line = "\"" + program + "\"";
        Require(::CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                                 &process_) != 0,
                "the program starts");
        Require(hands::WaitFor([this] {
                    window_ = ::FindWindowA("KVForm", nullptr);
                    return window_ != nullptr && ::IsWindowVisible(window_) != 0;
                }) &&
                    hands::Activate(window_),
                "the window stands there: " + hands::Text(window_));
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() {
        ::TerminateProcess(process_.hProcess, 1); // after a failure alone: else it has ended
        ::CloseHandle(process_.hProcess);
        ::CloseHandle(process_.hThread);
    }

    void FetchSettings(const std::string& server, const std::string& data_folder) {
        far_controls::ClickButton(Native("cmdGetLocalSettings"));
        Require(Becomes("edtServerName", 0, server), "the local settings name the server");
        // The box of the data path gets the focus with its text selected: typing is enough.
        const HWND box = Native("edtSQLDataPath", 0);
        Require(hands::WaitFor([this, box] { return hands::FocusIn(window_) == box; }),
                "its data path has the focus");
        hands::Type(data_folder);
        Require(Becomes("edtSQLDataPath", 0, data_folder), "the data folder is typed");
    }

    void PickScriptFolder(const std::string& folder) {
        const HWND box = Native("edtScriptFolder");
        GiveFocus(box, "the script folder has the focus");
        hands::Type(folder);
        Require(Becomes("edtScriptFolder", ui::kNoIndex, folder), "the script folder is typed");
        far_controls::ClickButton(Native("cmdBrowseForScriptFolder"));
        const HWND dialog = Box("the tree of folders opens");
        const HWND tree = hands::Child(dialog, kTreeId);
        const std::string name = folder.substr(folder.rfind('\\') + 1);
        Require(hands::WaitFor([this, tree, &name] {
                    return far_controls::SelectedInTree(process_.hProcess, tree) == name;
                }),
                "it opens at the folder " + name);
        far_controls::ClickButton(::GetDlgItem(dialog, IDOK));
        Require(hands::WaitFor([dialog] { return ::IsWindow(dialog) == 0; }), "the folder is picked");
        const bool same = Becomes("edtScriptFolder", ui::kNoIndex, folder);
        Require(same, "it is the one that the tree opened at: " + hands::Text(box));
    }

    void InstallAll() {
        Require(hands::Activate(window_), "the window is in front");
        hands::Press(VK_TAB, {VK_CONTROL});
        Require(hands::WaitFor([this] {
                    const HWND page = Look("fraMainTab", kv::kScriptTab);
                    return page != nullptr && ::IsWindowVisible(page) != 0 && ::IsWindowEnabled(page) != 0;
                }),
                "the Script tab opens");
        for (const char* box :
             {"chkCreateInstallBatchDatabase", "chkCreateInstallBatchStoredProcedures",
              "chkCreateInstallBatchDefaultData", "chkStandardSynchronize", "chkUpgradeDatabaseV1ToV2",
              "chkBatchOverviewExport", "chkBatchOverviewRecalcExport", "chkBatchSummaryExport",
              "chkBatchSummaryRecalcExport"}) {
            Tick(Native(box), box);
        }
        Tick(Native("optCreateInstallScriptFiles", 1), "Create and Install");
        const HWND status = Native("lblStatus");
        far_controls::ClickButton(Native("cmdCreateInstall"));
        Require(hands::WaitFor([status] { return hands::Caption(status) == "Installation completed..."; },
                               kLongest),
                "the status line says Installation completed...");
        TakePicture("console-script");
        Require(
            hands::WaitFor([this] { return ::IsWindowEnabled(Native("cmdCreateInstall")) != 0; }, kLongest),
            "the button can be pressed again");
        Require(Becomes("lblStatus", ui::kNoIndex, ""), "the status line is empty");
    }

    void ListPackages() {
        far_controls::ClickButton(Native("cmdGetInstalledPackages"));
        const HWND box = Box("a box lists the packages");
        constexpr int kTextId = 0xFFFF;
        std::printf("%s\n", hands::Text(hands::Child(box, kTextId)).c_str());
        Require(hands::Activate(box), "the box is in front");
        hands::Press(VK_RETURN);
        Require(hands::WaitFor([box] { return ::IsWindow(box) == 0; }), "the box is answered");
    }

    /// At the end, since another password is typed for the picture: nobody has it.
    void ShowGeneralTab() {
        if (pictures_.empty()) {
            return;
        }
        Require(hands::Activate(window_), "the window is in front");
        hands::Press(VK_TAB, {VK_CONTROL, VK_SHIFT});
        const HWND box = Native("edtPassword", 0);
        Require(hands::WaitFor([box] { return ::IsWindowVisible(box) != 0; }), "the General tab opens");
        GiveFocus(box, "the password has the focus");
        hands::Press(VK_HOME);
        hands::Press(VK_END, {VK_SHIFT});
        const std::string made_up = "lot-Keeper_2024";
        hands::Type(made_up);
        Require(Becomes("edtPassword", 0, made_up), "the box shows the password that is typed");
        ::SetCursorPos(0, 0); // where it brings up no tool tip
        TakePicture("console-general");
    }

    void Close() {
        far_controls::ClickButton(Native("cmdClose"));
        Require(::WaitForSingleObject(process_.hProcess, 60000) == WAIT_OBJECT_0, "the program ends");
    }

  private:
    /// Null as long as the form has not made it: a page's controls are made when its tab is first shown.
    HWND Look(const char* name, int index) const {
        return hands::Child(window_, tree_.Find(name, index)->Id());
    }
    HWND Native(const char* name, int index = ui::kNoIndex) const {
        const HWND native = Look(name, index);
        if (native == nullptr) {
            throw std::runtime_error(std::string("was not shown yet: ") + name);
        }
        return native;
    }
    bool Becomes(const char* name, int index, const std::string& text) const {
        return hands::WaitFor([&] { return hands::Text(Native(name, index)) == text; });
    }
    void TakePicture(const std::string& name) const {
        constexpr DWORD kPainted = 500;
        if (!pictures_.empty()) {
            ::Sleep(kPainted);
            Require(hands::TakePicture(window_, pictures_ + "\\" + name + ".bmp"), "taken: " + name);
        }
    }
    /// A click goes past now and then, and a second one does no harm here.
    void GiveFocus(HWND box, const std::string& what) const {
        constexpr std::chrono::seconds kMoment{3};
        constexpr int kClicks = 20;
        bool has_focus = false;
        for (int click = 0; click < kClicks && !has_focus; ++click) {
            far_controls::Click(box);
            has_focus = hands::WaitFor([&] { return hands::FocusIn(window_) == box; }, kMoment);
        }
        Require(has_focus, what);
    }
    static void Tick(HWND box, const std::string& name) {
        far_controls::ClickButton(box);
        Require(hands::WaitFor([box] { return ::SendMessageA(box, BM_GETCHECK, 0, 0) == BST_CHECKED; }),
                "ticked: " + name);
    }
    static HWND Box(const std::string& what) {
        HWND box = nullptr;
        Require(hands::WaitFor([&box] {
                    box = ::FindWindowA("#32770", nullptr);
                    return box != nullptr && ::IsWindowVisible(box) != 0;
                }),
                what);
        return box;
    }

    std::string pictures_; ///< the folder; "" if none are wanted
    ui::Form tree_{kv::MainFormDesign()};
    PROCESS_INFORMATION process_{};
    HWND window_ = nullptr;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 5 && argc != 6) {
        std::puts("usage: console_walk PROGRAM SERVER DATA_FOLDER SCRIPT_FOLDER [PICTURE_FOLDER]");
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IONBF, 0); // what was seen is told, whatever comes of the rest
    try {
        Walk walk(argv[1], argc == 6 ? argv[5] : "");
        walk.FetchSettings(argv[2], argv[3]);
        walk.PickScriptFolder(argv[4]);
        walk.InstallAll();
        walk.ListPackages();
        walk.ShowGeneralTab();
        walk.Close();
    } catch (const std::exception& error) {
        std::printf("NOT SO: %s\n", error.what());
        return 1;
    }
    return 0;
}

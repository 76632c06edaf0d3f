// Drives the real executable on a screen with mouse and keyboard input. Finds its controls by the identifiers
// of the control tree and reads their texts.
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "console/form_designs.h"
#include "ui/form.h"
#include "ui/windows/remote_controls.h"
#include "ui/windows/ui_automation.h"

#include <commctrl.h>

namespace {

/// Without a folder in the registry the log is in the root of the current drive. That is this drive, because
/// an ordinary user of the machine may not write to the root of the one that the tests are on.
constexpr char kDrive[] = "C:\\";
constexpr char kLog[] = "C:\\KVLSQLDbMgr.log";
constexpr char kSettings[] = "Software\\VB and VBA Program Settings\\KVLSQLDbMgr";

/// A running KVLSQLDbMgr.exe, from the folder of this test.
class Program {
  public:
    Program() {
        std::string path(MAX_PATH, '\0');
        path.resize(::GetModuleFileNameA(nullptr, path.data(), MAX_PATH));
        path = path.substr(0, path.rfind('\\')) + "\\KVLSQLDbMgr.exe";
        STARTUPINFOA start{};
        start.cb = sizeof start;
        ::CreateProcessA(path.c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr, kDrive, &start,
                         &process_);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        ::TerminateProcess(process_.hProcess, 1); // it still runs only after a failed test
        ::WaitForSingleObject(process_.hProcess, 10000);
        ::CloseHandle(process_.hProcess);
        ::CloseHandle(process_.hThread);
    }

    /// Waits for its end.
    bool Ends() const { return ::WaitForSingleObject(process_.hProcess, 60000) == WAIT_OBJECT_0; }

    /// Waits for its window and activates it; null if there is none.
    HWND Window() const {
        HWND window = nullptr;
        ui_automation::WaitFor([this, &window] {
            window = ::FindWindowA("KVForm", nullptr);
            DWORD owner = 0;
            ::GetWindowThreadProcessId(window, &owner);
            return window != nullptr && owner == process_.dwProcessId && ::IsWindowVisible(window) != 0;
        });
        return ui_automation::Activate(window) ? window : nullptr;
    }

  private:
    PROCESS_INFORMATION process_{};
};

class Console : public ::testing::Test {
  protected:
    void SetUp() override {
        ::RegDeleteTreeA(HKEY_CURRENT_USER, kSettings);
        Start();
    }
    void TearDown() override {
        program_.reset();
        ::DeleteFileA(kLog);
        ::RegDeleteTreeA(HKEY_CURRENT_USER, kSettings);
    }

    void Start() {
        program_.reset();
        program_ = std::make_unique<Program>();
        window_ = program_->Window();
        ASSERT_NE(window_, nullptr);
    }

    HWND Native(const char* name, int index = ui::kNoIndex) const {
        return ui_automation::Child(window_, tree_.Find(name, index)->Id());
    }
    void Fill(const char* name, int index, const std::string& text) {
        const HWND box = Native(name, index);
        constexpr std::chrono::seconds kMoment{5};
        bool focused = false;
        // A window that was just shown may miss a click.
        for (int click = 0; click < 10 && !focused; ++click) {
            remote_controls::Click(box);
            focused = ui_automation::WaitFor([this, box] { return ui_automation::FocusIn(window_) == box; },
                                             kMoment);
        }
        ASSERT_TRUE(focused) << name;
        ui_automation::Type(text);
        EXPECT_TRUE(ui_automation::WaitFor([&] { return ui_automation::Text(box) == text; }))
            << name << ": " << ui_automation::Text(box);
    }
    int Tab() const { return static_cast<int>(::SendMessageA(Native("tabMain"), TCM_GETCURSEL, 0, 0)); }
    /// Waits for the page: its window is created when it is first shown.
    bool PageIsShown(int page) const {
        return ui_automation::WaitFor([&] {
            const HWND frame = Native("fraMainTab", page);
            return ::IsWindowVisible(frame) != 0 && ::IsWindowEnabled(frame) != 0;
        });
    }
    void Close() {
        remote_controls::ClickButton(Native("cmdClose"));
        EXPECT_TRUE(program_->Ends());
    }

    ui::Form tree_{kv::MainFormDesign()};
    std::unique_ptr<Program> program_;
    HWND window_ = nullptr;
};

TEST_F(Console, ShowsItsVersionInItsTitleAndEndsByItsButton) {
    EXPECT_EQ(ui_automation::Text(window_), "Halvane Vindrel SQL Database Manager [Version 6.G4 Build 31]");
    EXPECT_EQ(ui_automation::Text(Native("lblStatus")), "");
    EXPECT_TRUE(PageIsShown(kv::kGeneralTab));
    Close();
}

TEST_F(Console, OpensOnlyTheTabsThatItsFieldsAllow) {
    ui_automation::Press(VK_TAB, {VK_CONTROL}); // no other tab can be used, so this one stays open
    Fill("edtServerName", 0, "SRVA");
    EXPECT_EQ(Tab(), kv::kGeneralTab);
    Fill("edtUserID", 0, "sa");
    Fill("edtPassword", 0, "secret");
    Fill("edtSQLDataPath", 0, "C:\\MSSQL\\Data");
    EXPECT_TRUE(ui_automation::WaitFor(
        [this] { return ui_automation::Text(Native("edtSQLUNCReplDataPath", 0)) == "C$\\MSSQL\\ReplData"; }));
    ui_automation::Press(VK_TAB, {VK_CONTROL});
    EXPECT_TRUE(PageIsShown(kv::kScriptTab));
    EXPECT_TRUE(ui_automation::WaitFor(
        [this] { return ui_automation::Text(Native("optScriptCurrentServer", 0)) == "SRVA"; }));
    EXPECT_EQ(ui_automation::Text(Native("optScriptCurrentServer", 1)), "N/A");
    EXPECT_FALSE(::IsWindowEnabled(Native("optScriptCurrentServer", 1)));
    Close();
}

TEST_F(Console, RemembersTypedTexts) {
    Fill("edtServerName", 1, "SRVB");
    Fill("edtScriptFolder", ui::kNoIndex, "C:\\scripts");
    Close();
    Start();
    EXPECT_EQ(ui_automation::Text(Native("edtServerName", 1)), "SRVB");
    EXPECT_EQ(ui_automation::Text(Native("edtScriptFolder")), "C:\\scripts");
    ui_automation::Press(VK_F4, {VK_MENU});
    EXPECT_TRUE(program_->Ends());
}

TEST_F(Console, RefusesARunWithNothingTicked) {
    Fill("edtServerName", 0, "SRVA");
    Fill("edtUserID", 0, "sa");
    Fill("edtPassword", 0, "secret");
    Fill("edtSQLDataPath", 0, "C:\\Data");
    ui_automation::Press(VK_TAB, {VK_CONTROL});
    ASSERT_TRUE(PageIsShown(kv::kScriptTab));
    EXPECT_FALSE(::IsWindowEnabled(Native("chkCreateInstallScriptFile"))); // no file is named
    ui_automation::Press('R', {VK_MENU});
    HWND box = nullptr;
    EXPECT_TRUE(ui_automation::WaitFor([&] {
        box = ::FindWindowA("#32770", "KVLSQLDbMgr");
        return box != nullptr && ::IsWindowVisible(box) != 0;
    }));
    EXPECT_EQ(ui_automation::Text(ui_automation::Child(box, 0xFFFF)), "No scripts or DTS packages selected!");
    EXPECT_TRUE(ui_automation::Activate(box));
    ui_automation::Press(VK_RETURN);
    EXPECT_TRUE(ui_automation::WaitFor([&] { return ::IsWindow(box) == 0; }));
    EXPECT_EQ(ui_automation::Text(Native("lblStatus")), "Initializing..."); // kept until the next command
    EXPECT_TRUE(::IsWindowEnabled(Native("cmdCreateInstall")));
    Close();
}

} // namespace

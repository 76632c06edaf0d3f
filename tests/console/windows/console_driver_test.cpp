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
        EXPECT_TRUE(::CreateProcessA(path.c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr, kDrive,
                                     &start, &process_));
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        ::TerminateProcess(process_.hProcess, 1); // it still runs only after a failed test
        ::WaitForSingleObject(process_.hProcess, kLongest);
        ::CloseHandle(process_.hProcess);
        ::CloseHandle(process_.hThread);
    }

    bool HasEnded() const { return ::WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0; }
    /// Waits for its end.
    bool Ends() const { return ::WaitForSingleObject(process_.hProcess, kLongest) == WAIT_OBJECT_0; }

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
    static constexpr DWORD kLongest = 60000; ///< milliseconds
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
        remote_controls::Fill(Native(name, index), text);
    }
    int Tab() const { return static_cast<int>(::SendMessageA(Native("tabMain"), TCM_GETCURSEL, 0, 0)); }
    /// Waits for the page: its window is created when it is first shown.
    bool PageIsShown(int page) const {
        return ui_automation::WaitFor([&] {
            const HWND frame = Native("fraMainTab", page);
            return ::IsWindowVisible(frame) != 0 && ::IsWindowEnabled(frame) != 0;
        });
    }
    /// Once too often, Ctrl+Tab leads on to the other tabs and round to this one.
    void OpenNextTab(int tab) const {
        const auto opens = [this, tab] { return Tab() == tab; };
        ASSERT_TRUE(remote_controls::PressUntil(window_, opens, VK_TAB, {VK_CONTROL}));
        ASSERT_TRUE(PageIsShown(tab));
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
    remote_controls::Press(window_, VK_TAB, {VK_CONTROL}); // no other tab can be used: this one stays open
    Fill("edtServerName", 0, "SRVA");
    EXPECT_EQ(Tab(), kv::kGeneralTab);
    Fill("edtUserID", 0, "sa");
    Fill("edtPassword", 0, "secret");
    Fill("edtSQLDataPath", 0, "C:\\MSSQL\\Data");
    EXPECT_TRUE(ui_automation::WaitFor(
        [this] { return ui_automation::Text(Native("edtSQLUNCReplDataPath", 0)) == "C$\\MSSQL\\ReplData"; }));
    OpenNextTab(kv::kScriptTab);
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
    EXPECT_TRUE(
        remote_controls::PressUntil(window_, [this] { return program_->HasEnded(); }, VK_F4, {VK_MENU}));
}

TEST_F(Console, RefusesARunWithNothingTicked) {
    Fill("edtServerName", 0, "SRVA");
    Fill("edtUserID", 0, "sa");
    Fill("edtPassword", 0, "secret");
    Fill("edtSQLDataPath", 0, "C:\\Data");
    OpenNextTab(kv::kScriptTab);
    EXPECT_FALSE(::IsWindowEnabled(Native("chkCreateInstallScriptFile"))); // no file is named
    HWND box = nullptr;
    const auto refused = [&box] {
        box = ::FindWindowA("#32770", "KVLSQLDbMgr");
        return box != nullptr && ::IsWindowVisible(box) != 0;
    };
    ASSERT_TRUE(remote_controls::PressUntil(window_, refused, 'R', {VK_MENU}));
    EXPECT_EQ(ui_automation::Text(ui_automation::Child(box, 0xFFFF)), "No scripts or DTS packages selected!");
    EXPECT_TRUE(remote_controls::PressUntil(
        box, [box] { return ::IsWindow(box) == 0; }, VK_RETURN));
    // The button can be used again when the command has ended.
    EXPECT_TRUE(
        ui_automation::WaitFor([this] { return ::IsWindowEnabled(Native("cmdCreateInstall")) != 0; }));
    EXPECT_EQ(ui_automation::Text(Native("lblStatus")), "Initializing..."); // kept until the next command
    Close();
}

} // namespace

// The system's dialogs for a folder and a file, answered from a second thread as a person would.
#include "ui/windows/pickers.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "ui/windows/screen_input.h"

namespace {

/// Waits for a dialog of this process and lets `answer` do the rest.
class Answer {
  public:
    explicit Answer(std::function<void(HWND)> answer)
        : thread_([answer = std::move(answer)] { Run(answer); }) {}
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;
    ~Answer() { thread_.join(); }

  private:
    static void Run(const std::function<void(HWND)>& answer) {
        for (int time = 0; time < 6000; ++time) {
            const HWND dialog = ::FindWindowA("#32770", nullptr);
            DWORD process = 0;
            ::GetWindowThreadProcessId(dialog, &process);
            if (dialog != nullptr && process == ::GetCurrentProcessId() && ::IsWindowVisible(dialog) != 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(200)); // it fills its tree
                answer(dialog);
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    std::thread thread_;
};

void Press(HWND dialog, int button) {
    ::PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
}

TEST(FolderPicker, GivesNothingWhenItIsCancelled) {
    const Answer cancel([](HWND dialog) { Press(dialog, IDCANCEL); });
    EXPECT_EQ(ui::BrowseForFolder(nullptr, "Browse for script folder", "C:\\windows"), std::nullopt);
}

TEST(FolderPicker, OpensAtTheStartFolderAndGivesIt) {
    const Answer take([](HWND dialog) { Press(dialog, IDOK); });
    const auto chosen = ui::BrowseForFolder(nullptr, "Browse for script folder", "C:\\windows\\system32");
    ASSERT_TRUE(chosen.has_value());
    EXPECT_EQ(::lstrcmpiA(chosen->c_str(), "C:\\windows\\system32"), 0) << *chosen;
}

TEST(FilePicker, GivesNothingWhenItIsCancelled) {
    const Answer cancel([](HWND dialog) { Press(dialog, IDCANCEL); });
    EXPECT_EQ(ui::BrowseForFile("Browse for script file", "Script Files (*.sql)|*.sql", nullptr, ""),
              std::nullopt);
}

TEST(FilePicker, GivesTheFileThatIsTypedInTheStartFolder) {
    // In no folder of its own: the shell would not let go of it before this program ends.
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "kv pick a file.sql";
    std::ofstream(file) << "SELECT 1";
    bool typed = false;
    std::optional<std::string> chosen;
    {
        const Answer type([&](HWND dialog) {
            typed = hands::Activate(dialog) &&
                    hands::WaitFor([dialog] { return hands::ClassOf(hands::FocusIn(dialog)) == "Edit"; });
            hands::Type(file.filename().string());
            hands::Press(VK_RETURN);
        });
        chosen = ui::BrowseForFile("Browse for script file", "Script Files (*.sql)|*.sql", nullptr,
                                   file.parent_path().string());
    }
    std::filesystem::remove(file);
    EXPECT_TRUE(typed) << "the dialog was in front, with the focus in the name";
    ASSERT_TRUE(chosen.has_value());
    EXPECT_EQ(::lstrcmpiA(chosen->c_str(), file.string().c_str()), 0) << *chosen;
}

} // namespace

// Tests the system's dialogs for a folder and a file, answered by mouse and keyboard input.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "support/temp_folder.h"
#include "ui/dialog_answers.h"
#include "ui/on_screen.h"

namespace {

using screen::Key;

class Pickers : public OnScreen {
  protected:
    using Chosen = std::optional<std::string>;
    using Act = DialogAnswers::Act;

    Chosen PickFolder(const std::string& start_folder, const Act& act) {
        constexpr char kTitle[] = "Browse for script folder";
        const screen::Meanwhile answering(DialogAnswers({Checked(kTitle, act)}));
        return ui::PickFolder(form_, kTitle, start_folder);
    }
    Chosen PickFile(const std::string& start_folder, std::vector<Act> acts) {
        constexpr char kTitle[] = "Browse for script file";
        acts.front() = Checked(kTitle, acts.front());
        const screen::Meanwhile answering(DialogAnswers(std::move(acts)));
        return ui::PickFile(form_, kTitle, "Script Files (*.sql)|*.sql", start_folder);
    }
    static std::string Start(const support::TempFolder& folder) {
        ReadOnce(folder.Path());
        return folder.Path().string();
    }
    static bool Cancel(screen::Part /*dialog*/) {
        screen::Press(Key::Escape);
        return true;
    }
    static bool Accept(screen::Part /*dialog*/) {
        screen::Press(Key::Enter);
        return true;
    }
    /// Types into the field for the name, which has the focus when the dialog opens.
    static Act TypeName(const std::string& name) {
        return [name](screen::Part /*dialog*/) {
            screen::Type(name);
            return Accept(nullptr);
        };
    }
    static void ExpectSamePath(const Chosen& chosen, const std::filesystem::path& path) {
        ASSERT_TRUE(chosen.has_value());
        EXPECT_TRUE(std::filesystem::equivalent(*chosen, path)) << *chosen << " and not " << path;
    }

    bool asked_ = false; ///< the last dialog had the title that it was given

  private:
    /// Reads a folder and those above it. Wine's dialog finds the start folder in its tree by comparing the
    /// times of each folder on the way, the time of the last access too, to two seconds. Linux sets that time
    /// when a changed folder is read for the first time; the dialog itself would be that reader.
    static void ReadOnce(const std::filesystem::path& folder) {
        std::this_thread::sleep_for(
            std::chrono::milliseconds(50)); // the access is to be later than the change
        for (std::filesystem::path read = folder; read != read.parent_path(); read = read.parent_path()) {
            std::error_code unreadable;
            const std::filesystem::directory_iterator entries(read, unreadable);
        }
    }

    /// The act, which first checks the dialog's title.
    Act Checked(const char* title, const Act& act) {
        return [this, title, act](screen::Part dialog) {
            asked_ = screen::Says(dialog, title);
            return act(dialog);
        };
    }
};

TEST_F(Pickers, ReturnNoFolderWhenTheyAreCancelled) {
    const support::TempFolder folder;
    EXPECT_EQ(PickFolder(Start(folder), Cancel), std::nullopt);
    EXPECT_TRUE(asked_);
}

TEST_F(Pickers, ReturnNoFileWhenTheyAreCancelled) {
    EXPECT_EQ(PickFile("", {Cancel}), std::nullopt);
    EXPECT_TRUE(asked_);
}

TEST_F(Pickers, OpenAtTheStartFolderAndReturnIt) {
    const support::TempFolder folder;
    const auto accept = [&folder](screen::Part dialog) {
        return screen::HasChosen(dialog, folder.Path().filename().string()) && Accept(dialog);
    };
    ExpectSamePath(PickFolder(Start(folder), accept), folder.Path());
}

/// Chooses a file twice, in different folders, because the system remembers the last folder.
TEST_F(Pickers, ReturnTheFileWhoseNameIsTyped) {
    for (const char* name : {"kv pick a file.sql", "kv another file.sql"}) {
        const support::TempFolder folder;
        const std::filesystem::path file = folder.Path() / name;
        std::ofstream(file) << "SELECT 1";
        ExpectSamePath(PickFile(Start(folder), {TypeName(name)}), file);
    }
}

TEST_F(Pickers, AcceptNoFileThatDoesNotExist) {
    const support::TempFolder folder;
    bool refused = false;
    const auto see_box = [&refused](screen::Part box) {
        refused = true;
        return Accept(box);
    };
    const auto chosen = PickFile(Start(folder), {TypeName("kv no such file.sql"), see_box, Cancel});
    EXPECT_TRUE(refused);
    EXPECT_EQ(chosen, std::nullopt);
}

} // namespace

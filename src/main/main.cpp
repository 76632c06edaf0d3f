// The entry of the program: the one place that knows both faces.
#include <memory>
#include <string>

#include "base/failure.h"
#include "console/main_form.h"
#include "main/command_line.h"
#include "main/main_routine.h"
#include "platform/command_line.h"
#include "platform/files.h"
#include "platform/memory_secrecy.h"
#include "platform/message_box.h"
#include "platform/terminal.h"
#include "ui/toolkit.h"
#include "unattended/automatic_install.h"
#include "unattended/automatic_upgrade.h"

namespace {

class ProgramFaces : public kv::Faces {
  public:
    void DoAutomaticUpgrade(const std::string& strScriptFolder) override {
        kv::DoAutomaticUpgrade(strScriptFolder);
    }

    void DoAutomaticInstall(const std::string& ScriptFolder, const std::string& Server,
                            const std::string& User, const std::string& Password,
                            const std::string& SQLDataPath, bool InstallDb, bool InstallSp,
                            bool InstallDts) override {
        kv::DoAutomaticInstall(ScriptFolder, Server, User, Password, SQLDataPath, InstallDb, InstallSp,
                               InstallDts);
    }

    void ShowMainWindow() override {
        console_ = std::make_unique<kv::frmMain>();
        window_ = ui::MakeWindow(console_->Form());
        if (!window_) {
            platform::WriteToTerminal(platform::ExecutableName() +
                                      ": The console cannot show its window here. The unattended runs need "
                                      "none: /help tells their arguments.\n");
            return;
        }
        console_->Load();
        window_->Show();
    }

    void ShowHelp(const std::string& text) override {
        platform::ShowMessageBox(text, platform::MessageIcon::None, platform::ExecutableName());
    }

    /// Returns when the window is closed; at once if there is none.
    void RunUntilClosed() {
        if (window_) {
            window_->RunUntilClosed();
        }
    }

  private:
    std::unique_ptr<kv::frmMain> console_;
    std::unique_ptr<ui::Window> window_; // goes first: it mirrors the form
};

/// The run time's texts do not say which file it is about. Mostly it is the log, and there is no other place
/// that could tell.
std::string FileInFlight() {
    try {
        throw;
    } catch (const platform::FileError& error) {
        return "\r\n\r\n" + error.Path();
    } catch (...) {
        return {};
    }
}

/// What ends the program when a failure finds no handler: the run time's fatal error box.
void ShowFatalError() {
    const kv::Failure failure = kv::TranslateInFlight();
    platform::ShowMessageBox("Run-time error '" + std::to_string(failure.Number()) + "':\r\n\r\n" +
                                 failure.Description() + FileInFlight(),
                             platform::MessageIcon::Critical, platform::ExecutableName());
}

/// As it was typed or, where the system hands over split arguments, put together again.
std::string CommandLine(int argc, const char* const* argv) {
    const auto typed = platform::RawCommandLine();
    return typed ? *typed : kv::JoinArguments(platform::ProgramArguments(argc, argv));
}

} // namespace

// There is no exit code: whatever the outcome, the process ends the same way.
int main(int argc, char** argv) {
    platform::KeepMemoryOutOfCrashes();
    try {
        ProgramFaces faces;
        kv::Main(CommandLine(argc, argv), faces);
        faces.RunUntilClosed();
    } catch (...) {
        ShowFatalError();
    }
    return 0;
}

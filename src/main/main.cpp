// The entry of the program: the one place that knows both the console and the unattended runs.
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
#include "unattended/automatic_runs.h"

namespace {

/// The interactive console: the main window and the toolkit's window that shows it.
class Console {
  public:
    /// Shows the main window and returns. Without a display it writes to the terminal instead.
    void Show() {
        form_ = std::make_unique<kv::frmMain>();
        window_ = ui::MakeWindow(form_->Form());
        if (!window_) {
            platform::WriteToTerminal(platform::ExecutableName() +
                                      ": The console cannot show its window here. The unattended runs need "
                                      "no window: /help lists their arguments.\n");
            return;
        }
        form_->Load();
        window_->Show();
    }

    /// Returns when the window is closed; at once if there is none.
    void RunUntilClosed() {
        if (window_) {
            window_->RunUntilClosed();
        }
    }

  private:
    std::unique_ptr<kv::frmMain> form_;
    std::unique_ptr<ui::Window> window_; // destroyed before the form, which it mirrors
};

void RunConsole(bool show_help) {
    Console console;
    console.Show();
    if (show_help) {
        platform::ShowMessageBox(kv::HelpText(), platform::MessageIcon::None, platform::ExecutableName());
    }
    console.RunUntilClosed();
}

void Run(const kv::MainDecision& decision) {
    switch (decision.action) {
    case kv::MainAction::Upgrade:
        kv::DoAutomaticUpgrade(decision.script_folder);
        return;
    case kv::MainAction::Install:
        kv::DoAutomaticInstall(decision.script_folder, decision.server, decision.user, decision.password,
                               decision.sql_data_path, decision.install_db, decision.install_sp,
                               decision.install_dts);
        return;
    case kv::MainAction::ShowWindow:
        RunConsole(decision.show_help);
        return;
    }
}

/// The path of the file that the current exception is about, as further lines of the box: the run time's
/// texts do not name it. Mostly it is the log, so the box is the only place that can name it.
std::string FileInFlight() {
    try {
        throw;
    } catch (const platform::FileError& error) {
        return "\r\n\r\n" + error.Path();
    } catch (...) {
        return {};
    }
}

/// Shows the run time's fatal error box for a failure that no handler caught.
void ShowFatalError() {
    const kv::Failure failure = kv::TranslateInFlight();
    platform::ShowMessageBox("Run-time error '" + std::to_string(failure.Number()) + "':\r\n\r\n" +
                                 failure.Description() + FileInFlight(),
                             platform::MessageIcon::Critical, platform::ExecutableName());
}

/// The command line as it was typed or, if the system passes split arguments, put together again.
std::string CommandLine(int argc, const char* const* argv) {
    const auto typed = platform::RawCommandLine();
    return typed ? *typed : kv::JoinArguments(platform::ProgramArguments(argc, argv));
}

} // namespace

// The exit code is always 0, whatever the outcome.
int main(int argc, char** argv) {
    platform::KeepMemoryOutOfCrashes();
    try {
        Run(kv::DecideAction(CommandLine(argc, argv)));
    } catch (...) {
        ShowFatalError();
    }
    return 0;
}

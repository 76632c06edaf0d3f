// The program's main function. It is the one place that knows both the console and the unattended runs.
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

    /// Returns when the window is closed, or at once if there is no window.
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

/// Must be called inside a catch block. If the exception is a file error, returns the file's path as further
/// lines for the box, since the run time's texts do not name the file. Mostly it is the log, so only the box
/// can name it.
std::string PathOfFileError() {
    try {
        throw;
    } catch (const platform::FileError& error) {
        return "\r\n\r\n" + error.Path();
    } catch (...) {
        return {};
    }
}

/// Must be called inside a catch block. Shows the exception, which no handler has caught, in a message box.
void ShowFatalError() {
    const kv::Failure failure = kv::TranslateInFlight();
    platform::ShowMessageBox("Run-time error '" + std::to_string(failure.Number()) + "':\r\n\r\n" +
                                 failure.Description() + PathOfFileError(),
                             platform::MessageIcon::Critical, platform::ExecutableName());
}

/// Returns the command line as it was typed or, on Linux, joined from the split arguments.
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

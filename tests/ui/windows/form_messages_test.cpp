// Messages that another thread sends to a form's window: GetMessage gives them to the window and does not
// return. And the window styles of the dialog.
#include <atomic>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <thread>

#include "ui/on_screen.h"
#include "ui/windows/native_form.h"
#include "ui/windows/ui_automation.h"

namespace {

HWND Handle(screen::Part part) {
    return static_cast<HWND>(part);
}

/// Sends a message from a second thread once the window's loop is idle, and wakes a loop that has not ended
/// by itself, so that a failure has an end.
class Sender {
  public:
    Sender(HWND top, UINT message)
        : thread_([this, top, message] {
              for (int time = 0; time < 10; ++time) {
                  ::SendMessageA(top, WM_NULL, 0, 0); // answered only by the message loop
                  std::this_thread::sleep_for(std::chrono::milliseconds(10));
              }
              ::SendMessageA(top, message, 0, 0);
              for (int time = 0; time < 3000 && !ended_; ++time) {
                  std::this_thread::sleep_for(std::chrono::milliseconds(10));
              }
              woken_ = !ended_;
              ::PostMessageA(top, WM_CLOSE, 0, 0);
          }) {}
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;
    ~Sender() = default;

    bool LoopEndedByItself() {
        ended_ = true;
        thread_.join();
        return !woken_;
    }

  private:
    std::atomic<bool> ended_ = false;
    bool woken_ = false;
    std::jthread thread_;
};

class SentMessages : public OnScreen {};

TEST_F(SentMessages, EndsItsLoopWhenItIsClosedByAMessageThatIsSent) {
    Sender sender(Handle(top_), WM_CLOSE);
    window_->RunUntilClosed();
    EXPECT_TRUE(sender.LoopEndedByItself());
    EXPECT_TRUE(form_.Unloaded());
}

TEST_F(SentMessages, EndsItsLoopByWhatAHandlerThrowsOnAMessageThatIsSent) {
    form_.on_unload = [] { throw std::runtime_error("out of a handler"); };
    Sender sender(Handle(top_), WM_CLOSE);
    EXPECT_THROW(window_->RunUntilClosed(), std::runtime_error);
    EXPECT_TRUE(sender.LoopEndedByItself());
}

TEST_F(SentMessages, EndsADialogThatIsClosedByAMessageThatIsSent) {
    ui::Form dialog(kv::ProceduresFormDesign());
    std::optional<Sender> sender;
    dialog.Get<ui::CommandButton>("cmdExecute").on_click = [&] {
        sender.emplace(ui::NativeForm::HandleOf(dialog), WM_CLOSE);
    };
    Get<ui::CommandButton>("cmdClose").on_click = [&] {
        ui::ShowModally(dialog, form_);
        EXPECT_TRUE(sender->LoopEndedByItself());
        form_.Unload();
    };
    dialog.SetFocus(dialog.Get<ui::CommandButton>("cmdExecute"));
    screen::Click(Native("cmdClose"));
    const std::jthread pressing([&dialog] {
        HWND window = nullptr;
        ui_automation::WaitFor([&] {
            window = ::FindWindowA("KVForm", "Stored Procedures");
            return window != nullptr && ::IsWindowVisible(window) != 0;
        });
        ::PostMessageA(ui_automation::Child(window, dialog.Get<ui::CommandButton>("cmdExecute").Id()),
                       BM_CLICK, 0, 0);
    });
    window_->RunUntilClosed();
    EXPECT_TRUE(dialog.Unloaded());
    EXPECT_TRUE(screen::IsEnabled(top_));
}

TEST_F(SentMessages, DoNotReachTheOwnerOfADialogWhichHasNoOtherSize) {
    ui::Form dialog(kv::ProceduresFormDesign());
    bool owner_enabled = true;
    LONG_PTR style = 0;
    Get<ui::CommandButton>("cmdClose").on_click = [&] { ui::ShowModally(dialog, form_); };
    const screen::Meanwhile looking(WithEnd(dialog, [&] {
        const HWND window = ui::NativeForm::HandleOf(dialog);
        if (window == nullptr || ::IsWindowVisible(window) == 0) {
            return false;
        }
        owner_enabled = screen::IsEnabled(top_);
        style = ::GetWindowLongPtrA(window, GWL_STYLE);
        dialog.Unload();
        return true;
    }));
    screen::Click(Native("cmdClose"));
    EXPECT_TRUE(screen::WaitFor([&] { return dialog.Unloaded(); }));
    EXPECT_FALSE(owner_enabled);
    EXPECT_TRUE(screen::IsEnabled(top_));
    EXPECT_EQ(style & (WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX),
              WS_CAPTION | WS_SYSMENU);
}

} // namespace

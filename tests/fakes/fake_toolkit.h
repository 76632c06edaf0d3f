// A fake of ui/toolkit.h, linked instead of a real toolkit. Its windows do nothing; a test presses the form's
// buttons with ui/operator.h.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "ui/toolkit.h"

namespace fakes {

/// Needs a FakeScreen and adds these lines to its `calls`: "wait MILLISECONDS", "folder [START] TITLE",
/// "file [START] TITLE FILTER", "make FORM", "show FORM", "run FORM", "modal FORM over FORM".
class FakeToolkit {
  public:
    FakeToolkit();
    FakeToolkit(const FakeToolkit&) = delete;
    FakeToolkit& operator=(const FakeToolkit&) = delete;
    ~FakeToolkit();
    /// The instance that the functions use. Ends the test program if there is no instance.
    static FakeToolkit& Current();

    /// The result of the folder and file dialogs; nothing if the operator cancels.
    std::optional<std::string> picked;
    /// If true, the folder and file dialogs fail.
    bool pickers_fail = false;
    /// If false, no window can be made.
    bool has_windows = true;
    /// Called while a dialog is shown, to act as the operator.
    std::function<void(ui::Form&)> on_modal;
    /// Called by each wait, before it ends.
    std::function<void()> on_wait;
};

} // namespace fakes

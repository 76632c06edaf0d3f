// A fake toolkit, whose calls are recorded among those of FakeScreen. Its windows do nothing; a test presses
// the form's buttons with ui/operator.h.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "ui/toolkit.h"

namespace fakes {

/// Needs a FakeScreen, whose `calls` it adds to: "wait MILLISECONDS", "folder [START] TITLE",
/// "file [START] TITLE FILTER", "make FORM", "show FORM", "run FORM", "modal FORM over FORM".
class FakeToolkit {
  public:
    FakeToolkit();
    FakeToolkit(const FakeToolkit&) = delete;
    FakeToolkit& operator=(const FakeToolkit&) = delete;
    ~FakeToolkit();
    static FakeToolkit& Current();

    /// The results of the pickers; nothing if the operator cancels.
    std::optional<std::string> picked;
    /// The next pickers fail instead.
    bool pickers_fail = false;
    /// False: no window can be made.
    bool has_windows = true;
    /// Called while a dialog is shown; acts as the operator.
    std::function<void(ui::Form&)> on_modal;
    /// Called by each wait, before it ends.
    std::function<void()> on_wait;
};

} // namespace fakes

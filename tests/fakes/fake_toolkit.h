// The toolkit without a screen, recorded between the calls of FakeScreen. A window of it does nothing; a test
// presses the form's buttons by ui/operator.h.
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

    /// What the pickers give; none is a cancelled one.
    std::optional<std::string> picked;
    /// The next pickers fail instead.
    bool pickers_fail = false;
    /// False: no window can be made.
    bool has_windows = true;
    /// What the operator does in a dialog while it is shown.
    std::function<void(ui::Form&)> on_modal;
    /// Called by each wait, before it ends.
    std::function<void()> on_wait;
};

} // namespace fakes

// All that the program knows of the toolkit that shows its forms. The build chooses the implementation:
// ui/windows/ or ui/linux/; a test links tests/fakes/fake_toolkit.cpp.
//
// Message boxes, pending events and the mouse pointer are needed without any form as well: they are in
// platform/message_box.h and platform/pending_events.h.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "ui/form.h"

namespace ui {

/// The native window of one form. The form must outlive it.
class Window {
  public:
    virtual ~Window() = default;
    /// Non-modally.
    virtual void Show() = 0;
    /// Runs the window's events until the form is unloaded. Throws the exception of a handler of the form.
    virtual void RunUntilClosed() = 0;
};

/// Makes the window of a loaded form without showing it. Null where no window can be shown.
std::unique_ptr<Window> MakeWindow(Form& form);

/// Shows the form above its owner, which takes no input meanwhile, and returns when the form is unloaded.
/// Throws the exception of a handler of the form. Where no window can be shown it returns at once.
void ShowModally(Form& form, Form& owner);

/// Blocks; no event runs meanwhile.
void Wait(std::chrono::milliseconds time);

/// The system's tree of folders, opened at `start_folder`, at the top if that is empty. Returns nothing
/// if it was cancelled or the choice is not in the file system.
std::optional<std::string> PickFolder(const Form& owner, const std::string& title,
                                      const std::string& start_folder);

/// The system's dialog for one existing file, without the box "read-only". `filter` holds a name and a
/// pattern with "|" between; the first of them is selected. An empty `start_folder` leaves the choice to the
/// system. Returns nothing if it was cancelled.
std::optional<std::string> PickFile(const Form& owner, const std::string& title, const std::string& filter,
                                    const std::string& start_folder);

} // namespace ui

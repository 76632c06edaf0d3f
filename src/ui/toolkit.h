// What a form needs of its toolkit, and nothing else of it is known. The build chooses what stands behind
// this header: ui/windows/ or ui/linux/; a test links tests/fakes/fake_toolkit.cpp.
//
// Message boxes, pending events and the mouse pointer are wanted without any form as well: they stand in
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
    /// Runs the window's events until the form is unloaded. Throws what a handler of the form has thrown.
    virtual void RunUntilClosed() = 0;
};

/// Makes the window of a loaded form without showing it. Null where no window can be shown.
std::unique_ptr<Window> MakeWindow(Form& form);

/// Shows the form above its owner, which takes no input meanwhile, and returns when the form is unloaded.
/// Throws what a handler of the form has thrown. Where no window can be shown it returns at once.
void ShowModally(Form& form, Form& owner);

/// Blocks; no event runs meanwhile.
void Wait(std::chrono::milliseconds time);

/// The system's tree of folders, opened at `start_folder`, at the top if that is empty. None if it was
/// cancelled or what was chosen is no place in the file system.
std::optional<std::string> PickFolder(const Form& owner, const std::string& title,
                                      const std::string& start_folder);

/// The system's dialog for one existing file, without the box "read-only". `filter` holds a name and a
/// pattern with "|" between; the first of them is selected. An empty `start_folder` leaves the choice to the
/// system. None if it was cancelled.
std::optional<std::string> PickFile(const Form& owner, const std::string& title, const std::string& filter,
                                    const std::string& start_folder);

} // namespace ui

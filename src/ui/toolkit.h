// The functions by which the program shows forms in windows. The build chooses the implementation:
// ui/windows/ (Win32) or ui/linux/ (Qt); a test links tests/fakes/fake_toolkit.cpp.
//
// Message boxes, pending events and the mouse pointer are also needed without a form: they are in
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
    /// Shows the window and returns at once.
    virtual void Show() = 0;
    /// Runs events until the form is unloaded. If a handler of the form throws, its exception comes from
    /// here.
    virtual void RunUntilClosed() = 0;
};

/// Makes the window of a form without showing it. Returns null if no window can be shown.
std::unique_ptr<Window> MakeWindow(Form& form);

/// Shows the form as a dialog above `owner`, which accepts no input meanwhile, and returns when the form is
/// unloaded. If a handler of the form throws, its exception comes from here. Returns at once if no window can
/// be shown.
void ShowModally(Form& form, Form& owner);

/// Sleeps; no event runs meanwhile.
void Wait(std::chrono::milliseconds time);

/// Lets the operator choose a folder in the system's dialog, which opens at `start_folder`; an empty
/// `start_folder` leaves the place to the system. Returns nothing if the dialog is cancelled or the choice is
/// not in the file system.
std::optional<std::string> PickFolder(const Form& owner, const std::string& title,
                                      const std::string& start_folder);

/// Lets the operator choose one existing file in the system's dialog, without the box "read-only", and
/// returns its full path. `filter` holds pairs of a name and a pattern, all separated by "|"
/// ("Script Files (*.sql)|*.sql"); the first pair is selected. An empty `start_folder` leaves the place to
/// the system. Returns nothing if the dialog is cancelled.
std::optional<std::string> PickFile(const Form& owner, const std::string& title, const std::string& filter,
                                    const std::string& start_folder);

} // namespace ui

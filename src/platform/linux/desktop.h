// The module of windows: a shared library beside the program, loaded when a window is first wanted, so that a
// run without windows neither needs its libraries nor pays for them. Nothing here knows which toolkit it is.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/message_box.h"
#include "platform/status_window.h"

namespace platform {

/// What the module does for the services of this folder.
class Desktop {
  public:
    virtual void ShowMessageBox(const std::string& text, MessageIcon icon, const std::string& title) = 0;
    virtual std::unique_ptr<StatusWindow> MakeStatusWindow(const StatusWindowLayout& layout) = 0;
    virtual void RunPendingEvents() = 0;
    virtual void SetMousePointer(std::int16_t pointer) = 0;

  protected:
    ~Desktop() = default;
};

/// The name of the module's function that opens the desktop: null where no display answers.
inline constexpr char kOpenDesktopFunction[] = "KvOpenDesktop";
using OpenDesktopFunction = Desktop* (*)();

/// The desktop, for as long as the program runs. The first call loads the module. Null without a display, and
/// without the module; that it is missing is said once, on the terminal.
Desktop* OpenDesktop();
/// Null as long as OpenDesktop has not given one.
Desktop* OpenedDesktop();
/// A function of the module by its name; null without a desktop.
void* FindInModule(const char* name);

} // namespace platform

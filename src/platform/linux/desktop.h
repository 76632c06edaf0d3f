// Loads the module for windows: a shared library beside the program, which is loaded when the first window is
// needed. So a run without windows does not need the libraries of the toolkit. Knows nothing of the toolkit.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/message_box.h"
#include "platform/status_window.h"

namespace platform {

/// The functions of the module that the services of this folder use. The module owns the object.
class Desktop {
  public:
    virtual void ShowMessageBox(const std::string& text, MessageIcon icon, const std::string& title) = 0;
    virtual std::unique_ptr<StatusWindow> MakeStatusWindow(const StatusWindowLayout& layout) = 0;
    virtual void RunPendingEvents() = 0;
    virtual void SetMousePointer(std::int16_t pointer) = 0;

  protected:
    ~Desktop() = default;
};

/// The name of the module's function that connects to the display. The function returns null if no display
/// answers.
inline constexpr char kOpenDesktopFunction[] = "KvOpenDesktop";
using OpenDesktopFunction = Desktop* (*)();

/// Returns the desktop, which stays open as long as the program runs. The first call loads the module.
/// Returns null if there is no display or no module; a missing module is reported once, on the terminal.
Desktop* OpenDesktop();
/// Returns the desktop if OpenDesktop has opened it, otherwise null. Never loads the module.
Desktop* OpenedDesktop();
/// Returns the address of the module's function `name`; null if there is no desktop or no such function.
void* FindInModule(const char* name);

} // namespace platform

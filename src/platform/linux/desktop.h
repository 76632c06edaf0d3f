// The module for windows: a shared library beside the program, which is loaded when the first window is
// needed. A run without windows does not need its libraries. Nothing here depends on the toolkit.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/message_box.h"
#include "platform/status_window.h"

namespace platform {

/// The functions of the module that the services of this folder use.
class Desktop {
  public:
    virtual void ShowMessageBox(const std::string& text, MessageIcon icon, const std::string& title) = 0;
    virtual std::unique_ptr<StatusWindow> MakeStatusWindow(const StatusWindowLayout& layout) = 0;
    virtual void RunPendingEvents() = 0;
    virtual void SetMousePointer(std::int16_t pointer) = 0;

  protected:
    ~Desktop() = default;
};

/// The name of the module's function that opens the desktop. The function returns null if no display answers.
inline constexpr char kOpenDesktopFunction[] = "KvOpenDesktop";
using OpenDesktopFunction = Desktop* (*)();

/// The desktop, which stays open as long as the program runs. The first call loads the module. Null if there
/// is no display or no module; a missing module is reported once, on the terminal.
Desktop* OpenDesktop();
/// The desktop that OpenDesktop has returned; null before that.
Desktop* OpenedDesktop();
/// A function of the module by its name; null if there is no desktop.
void* FindInModule(const char* name);

} // namespace platform

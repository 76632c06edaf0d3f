// Implements ui/toolkit.h on Linux: passes every call on to the Qt module, which is loaded when the first
// window is made. Without a display each function returns what toolkit.h says for "no window can be shown".
#include "ui/toolkit.h"

#include <thread>

#include "platform/linux/desktop.h"
#include "ui/linux/window_toolkit.h"

namespace ui {
namespace {

/// Returns null until a desktop has been opened.
WindowToolkit* Toolkit() {
    if (platform::OpenedDesktop() == nullptr) {
        return nullptr;
    }
    static const auto open =
        reinterpret_cast<WindowToolkitFunction>(platform::FindInModule(kWindowToolkitFunction));
    return open();
}

} // namespace

std::unique_ptr<Window> MakeWindow(Form& form) {
    platform::OpenDesktop();
    WindowToolkit* toolkit = Toolkit();
    return toolkit == nullptr ? nullptr : toolkit->MakeWindow(form);
}

void ShowModally(Form& form, Form& owner) {
    if (WindowToolkit* toolkit = Toolkit()) {
        toolkit->ShowModally(form, owner);
    }
}

void Wait(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
}

std::optional<std::string> PickFolder(const Form& owner, const std::string& title,
                                      const std::string& start_folder) {
    WindowToolkit* toolkit = Toolkit();
    return toolkit == nullptr ? std::nullopt : toolkit->PickFolder(owner, title, start_folder);
}

std::optional<std::string> PickFile(const Form& owner, const std::string& title, const std::string& filter,
                                    const std::string& start_folder) {
    WindowToolkit* toolkit = Toolkit();
    return toolkit == nullptr ? std::nullopt : toolkit->PickFile(owner, title, filter, start_folder);
}

} // namespace ui

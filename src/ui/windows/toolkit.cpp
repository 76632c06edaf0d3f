// Implements ui/toolkit.h on Windows, with Win32 and the common controls.
#include "ui/toolkit.h"

#include "platform/windows/desktop.h"
#include "ui/windows/native_form.h"
#include "ui/windows/pickers.h"

namespace ui {

std::unique_ptr<Window> MakeWindow(Form& form) {
    if (!platform::DesktopIsVisible()) {
        return nullptr;
    }
    return std::make_unique<NativeForm>(form, nullptr);
}

void ShowModally(Form& form, Form& owner) {
    const HWND below = NativeForm::HandleOf(owner);
    if (below == nullptr) {
        return;
    }
    NativeForm dialog(form, below);
    ::EnableWindow(below, FALSE);
    dialog.Show();
    try {
        dialog.RunUntilClosed();
    } catch (...) {
        ::EnableWindow(below, TRUE);
        throw;
    }
}

void Wait(std::chrono::milliseconds time) {
    ::Sleep(static_cast<DWORD>(time.count()));
}

std::optional<std::string> PickFolder(const Form& owner, const std::string& title,
                                      const std::string& start_folder) {
    return BrowseForFolder(NativeForm::HandleOf(owner), title, start_folder);
}

std::optional<std::string> PickFile(const Form& owner, const std::string& title, const std::string& filter,
                                    const std::string& start_folder) {
    return BrowseForFile(title, filter, NativeForm::HandleOf(owner), start_folder);
}

} // namespace ui

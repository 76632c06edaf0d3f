// The two functions that the Qt module (libkvconsole.so) exports: one opens the desktop, the other returns
// the toolkit.
#include <memory>
#include <optional>

#include "ui/linux/qt/display.h"
#include "ui/linux/qt/native_form.h"
#include "ui/linux/qt/pickers.h"
#include "ui/linux/qt/qt_desktop.h"
#include "ui/linux/window_toolkit.h"

namespace ui {
namespace {

class QtToolkit final : public WindowToolkit {
  public:
    virtual ~QtToolkit() = default;

    std::unique_ptr<Window> MakeWindow(Form& form) override {
        return std::make_unique<NativeForm>(form, nullptr);
    }

    void ShowModally(Form& form, Form& owner) override {
        QWidget* below = NativeForm::WindowOf(owner);
        if (below == nullptr) {
            return;
        }
        NativeForm dialog(form, below);
        dialog.Show();
        dialog.RunUntilClosed();
    }

    std::optional<std::string> PickFolder(const Form& owner, const std::string& title,
                                          const std::string& start_folder) override {
        return BrowseForFolder(NativeForm::WindowOf(owner), title, start_folder);
    }

    std::optional<std::string> PickFile(const Form& owner, const std::string& title,
                                        const std::string& filter, const std::string& start_folder) override {
        return BrowseForFile(NativeForm::WindowOf(owner), title, filter, start_folder);
    }
};

/// It is never destroyed: at the program's exit, Qt's statics that were made later are destroyed earlier, and
/// it still uses them.
QtDesktop* desktop = nullptr;

} // namespace
} // namespace ui

extern "C" __attribute__((visibility("default"))) platform::Desktop* KvOpenDesktop() {
    if (ui::desktop == nullptr) {
        const std::string qt_platform = ui::PlatformOfDisplay();
        if (qt_platform.empty()) {
            return nullptr;
        }
        ui::desktop = std::make_unique<ui::QtDesktop>(qt_platform).release();
    }
    return ui::desktop;
}

extern "C" __attribute__((visibility("default"))) ui::WindowToolkit* KvWindowToolkit() {
    static ui::QtToolkit toolkit;
    return &toolkit;
}

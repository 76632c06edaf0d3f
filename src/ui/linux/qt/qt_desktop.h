// Implements with Qt the services of platform/ that need windows: message boxes, the status window, pending
// events and the mouse pointer.
#pragma once

#include <memory>

#include <QApplication>

#include "platform/linux/desktop.h"

namespace ui {

class QtDesktop final : public platform::Desktop {
  public:
    /// Opens the display with this Qt plugin, which must exist (see display.h). Qt ends the program if it
    /// cannot.
    explicit QtDesktop(const std::string& qt_platform);
    QtDesktop(const QtDesktop&) = delete;
    QtDesktop& operator=(const QtDesktop&) = delete;
    virtual ~QtDesktop() = default;

    void ShowMessageBox(const std::string& text, platform::MessageIcon icon,
                        const std::string& title) override;
    std::unique_ptr<platform::StatusWindow>
    MakeStatusWindow(const platform::StatusWindowLayout& layout) override;
    void RunPendingEvents() override;
    void SetMousePointer(std::int16_t pointer) override;

  private:
    std::unique_ptr<QApplication> application_;
};

} // namespace ui

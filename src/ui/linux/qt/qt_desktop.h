// The services of platform/ that need windows: message boxes, the status window, pending events, the pointer.
#pragma once

#include <memory>

#include <QApplication>

#include "platform/linux/desktop.h"

namespace ui {

class QtDesktop final : public platform::Desktop {
  public:
    /// Opens the display by that plugin, which must be there.
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

// frmStatus: the progress window of the unattended runs.
#pragma once

#include <memory>
#include <string>

#include "base/int16.h"
#include "platform/status_window.h"

namespace kv {

/// The window: a label and a progress bar. The destructor closes it.
class frmStatus {
  public:
    /// Makes the window without showing it.
    frmStatus();

    /// Shows the window and returns; the window is not modal.
    void Show();

    /// Sets the ends of the bar and its position.
    void InitProgressBar(float sngMin, float sngMax, float sngValue);
    /// Moves the bar by `intStep`, which may be negative. The bar stops at either end. The misspelt name is
    /// part of the product and must not change.
    void StepProgessBar(Int16 intStep);
    /// Shows the text in the label at once and runs pending events.
    void StatusText(const std::string& strText);

  private:
    void UpdateBar();

    std::unique_ptr<platform::StatusWindow> window_;
    float min_ = 0;
    float max_ = 100;
    float value_ = 0;
};

} // namespace kv

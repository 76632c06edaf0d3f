// frmStatus: the progress window of the unattended runs.
#pragma once

#include <memory>
#include <string>

#include "base/int16.h"
#include "platform/status_window.h"

namespace kv {

class frmStatus {
  public:
    /// Loads the window without showing it.
    frmStatus();

    /// Non-modal.
    void Show();

    /// Sets the bar's Min, then its Max, then its Value.
    void InitProgressBar(float sngMin, float sngMax, float sngValue);
    /// Moves the bar; it stops at either end and never fails. The misspelt name is the product's.
    void StepProgessBar(Int16 intStep);
    /// Shows the text at once and runs pending events.
    void StatusText(const std::string& strText);

  private:
    void UpdateBar();

    std::unique_ptr<platform::StatusWindow> window_;
    float min_ = 0;
    float max_ = 100;
    float value_ = 0;
};

} // namespace kv

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
    /// Moves the bar; it stops at either end and never fails on an overrun. The spelling is the member's
    /// name.
    void StepProgessBar(Int16 intStep);
    /// The text is on the screen when this returns, and pending events have run once.
    void StatusText(const std::string& strText);

    float Min() const { return min_; }
    float Max() const { return max_; }
    float Value() const { return value_; }
    const std::string& Text() const { return text_; }

  private:
    void UpdateBar();

    std::unique_ptr<platform::StatusWindow> window_;
    float min_ = 0;
    float max_ = 100;
    float value_ = 0;
    std::string text_;
};

} // namespace kv

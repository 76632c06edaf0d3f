// Keeps the position of the progress bar and passes it on to the window.
#include "status/status_form.h"

#include "platform/pending_events.h"

namespace kv {
namespace {

/// Returns the window's layout; all numbers are in twips.
const platform::StatusWindowLayout& Layout() {
    static const platform::StatusWindowLayout layout{
        "Installing / Upgrading Lotkeeper database", 5565, 870, {120, 120, 5295, 255}, {60, 420, 5415, 375}};
    return layout;
}

} // namespace

frmStatus::frmStatus() : window_(platform::MakeStatusWindow(Layout())) {
    UpdateBar();
}

void frmStatus::Show() {
    window_->Show();
}

void frmStatus::InitProgressBar(float sngMin, float sngMax, float sngValue) {
    min_ = sngMin;
    max_ = sngMax;
    value_ = sngValue;
    UpdateBar();
}

void frmStatus::StepProgessBar(Int16 intStep) {
    const auto step = static_cast<float>(intStep.Value());
    const float target = value_ + step;
    if (step > 0 && target > max_) {
        value_ = max_;
    } else if (step < 0 && target < min_) {
        value_ = min_;
    } else {
        value_ = target;
    }
    UpdateBar();
}

void frmStatus::StatusText(const std::string& strText) {
    window_->SetLabel(strText);
    platform::RunPendingEvents();
}

void frmStatus::UpdateBar() {
    window_->SetBar(min_, max_, value_);
}

} // namespace kv

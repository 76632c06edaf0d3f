// frmMain: the status line, which is a progress bar and a text.
#include "console/main_form.h"
#include "platform/pending_events.h"

namespace kv {

void frmMain::InitStatus(Int16 intMax, const std::string& strText) {
    prbStatus_.Min(0);
    prbStatus_.Max(intMax < Int16(0) ? 1 : static_cast<float>(intMax.Value()));
    prbStatus_.Value(0);
    ShowStatusText(strText);
}

void frmMain::StepStatus(const std::string& strText) {
    if (prbStatus_.Max() > prbStatus_.Value()) {
        prbStatus_.Value(prbStatus_.Value() + 1);
    }
    ShowStatusText(strText);
}

void frmMain::ResetStatus(const std::string& strText) {
    prbStatus_.Min(0);
    prbStatus_.Value(0);
    prbStatus_.Max(1);
    ShowStatusText(strText);
}

void frmMain::ShowStatusText(const std::string& strText) {
    lblStatus_.Caption(strText);
    lblStatus_.Refresh();
    platform::RunPendingEvents();
}

} // namespace kv

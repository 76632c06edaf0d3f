// The General tab: script folder, domain and the two servers with which every tab works. These values are
// stored only in the tab's text boxes.
#pragma once

#include <cstdint>
#include <string>

#include "ui/form.h"

namespace kv {

class frmMain;

class GeneralTab {
  public:
    /// Sets the handlers of the tab's controls. `main` must outlive the tab; the same holds for the other
    /// tabs.
    explicit GeneralTab(frmMain& main);

  private:
    void cmdGetLocalSettings_Click();
    void cmdGetRemoteSettings_Click();
    void edtSQLDataPath_Change(int Index);

    ui::TextBox& Box(const char* name, int index = ui::kNoIndex) const;
    /// Gives the box of the data path the focus and selects its text, so that the operator can type the path.
    /// The registry does not hold it.
    void SelectDataPath(int index) const;

    frmMain& main_;
};

} // namespace kv

// The General tab: script folder, domain and the two servers with which every tab works. Its text boxes are
// the only store of these values.
#pragma once

#include <cstdint>
#include <string>

#include "ui/form.h"

namespace kv {

class frmMain;

class GeneralTab {
  public:
    explicit GeneralTab(frmMain& main);

  private:
    void cmdGetLocalSettings_Click();
    void cmdGetRemoteSettings_Click();
    void edtSQLDataPath_Change(int Index);

    ui::TextBox& Box(const char* name, int index = ui::kNoIndex) const;
    /// Selects the data path's text, so that the operator can type the path, which the registry does not
    /// hold.
    void SelectDataPath(int index) const;

    frmMain& main_;
};

} // namespace kv

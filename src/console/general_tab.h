// The General tab: what the whole console works with. Its text boxes are the only store of these values.
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
    /// Ready for the operator to type the path that the registry does not hold.
    void SelectDataPath(int index) const;

    frmMain& main_;
};

/// The share part of a server's replication path, as its data path gives it.
std::string DeriveReplicationPath(const std::string& data_path);

} // namespace kv

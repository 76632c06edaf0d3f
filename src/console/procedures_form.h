// frmStoredProcedures: the dialog that takes the parameters of one stored procedure, runs it and shows its
// first result.
#pragma once

#include <cstdint>
#include <string>

#include "inspect/view_data_mgr.h"
#include "ui/form.h"

namespace kv {

class frmStoredProcedures {
  public:
    frmStoredProcedures();
    frmStoredProcedures(const frmStoredProcedures&) = delete;
    frmStoredProcedures& operator=(const frmStoredProcedures&) = delete;

    /// Takes the filled manager, which must outlive the dialog, and reads the procedure's parameters.
    void Init(CViewDataMgr& objViewDataMgr, const std::string& strDatabase,
              const std::string& strStoredProcedure);

    ui::Form& Form() { return form_; }

  private:
    void loadParameters();
    void ListParameters();
    void lstParameters_Click();
    void SaveParameter();
    void LoadParameter();
    void cmdExecute_Click();
    /// Returns false if the handler must return at once: painting stays locked and the list disabled.
    bool Execute();
    /// The number of the parameter that the value box shows, 0 if it shows none. The box keeps it in its Tag.
    int ParameterInBox() const;
    int LastParameter() const { return static_cast<int>(arrParameters_.size()) - 1; }
    ado::Parameter& ParameterAt(int index);

    ui::Form form_;
    ui::ListBox& lstParameters_;
    ui::TextBox& edtDataType_;
    ui::TextBox& edtDirection_;
    ui::TextBox& edtValue_;
    ui::ListView& lvwViewData_;

    CViewDataMgr* objViewDataMgr_ = nullptr;
    std::string strDatabase_;
    std::string strStoredProcedure_;
    ParameterArray arrParameters_;
};

/// The names that the operator sees; "Unknown" for any other number.
std::string GetDataTypeName(std::int32_t lngType);
std::string GetDirectionName(std::int32_t lngDirection);

} // namespace kv

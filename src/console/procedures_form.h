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

    /// Must be called before the form is shown. Keeps a pointer to the manager, whose settings must be filled
    /// and which must outlive the dialog, and reads the procedure's parameters. A failure is logged, and the
    /// server's errors are shown.
    void Init(CViewDataMgr& objViewDataMgr, const std::string& strDatabase,
              const std::string& strStoredProcedure);

    ui::Form& Form() { return form_; }

  private:
    /// Handler of cmdReload: lists the parameters again.
    void loadParameters();
    void ListParameters();
    void lstParameters_Click();
    /// Stores the text of the value box in the parameter that the box shows.
    void SaveParameter();
    /// Shows the selected parameter.
    void LoadParameter();
    void cmdExecute_Click();
    /// Returns false if the procedure returned no columns. Then the handler must return without its last
    /// steps: painting stays locked and the list disabled.
    bool Execute();
    /// The number of the parameter that the value box shows, from 1; 0 if it shows none. The box's Tag stores
    /// it.
    int ParameterInBox() const;
    int LastParameter() const { return static_cast<int>(arrParameters_.size()) - 1; }
    /// Raises a run-time failure if the number is out of range or element 0 is asked for.
    ado::Parameter& ParameterAt(int index);

    ui::Form form_;
    ui::ListBox& lstParameters_;
    ui::TextBox& edtDataType_;
    ui::TextBox& edtDirection_;
    ui::TextBox& edtValue_;
    ui::ListView& lvwViewData_;

    CViewDataMgr* objViewDataMgr_ = nullptr; ///< not owned
    std::string strDatabase_;
    std::string strStoredProcedure_;
    ParameterArray arrParameters_; ///< the parameters from element 1 on
};

/// The names that the dialog shows for ADO's numbers of data types and of parameter directions; "Unknown" for
/// a number that ADO does not have.
std::string GetDataTypeName(std::int32_t lngType);
std::string GetDirectionName(std::int32_t lngDirection);

} // namespace kv

// The handlers of the dialog that runs a stored procedure.
#include "console/procedures_form.h"

#include "base/error_log.h"
#include "base/failure.h"
#include "console/form_designs.h"
#include "console/list_views.h"
#include "console/wait_cursor.h"

namespace kv {
namespace {

/// True for a parameter whose value the operator enters; the others are only shown.
bool IsInput(const ado::Parameter& parameter) {
    return parameter.Direction() == ado::adParamInput || parameter.Direction() == ado::adParamInputOutput;
}

} // namespace

frmStoredProcedures::frmStoredProcedures()
    : form_(ProceduresFormDesign()),
      lstParameters_(form_.Get<ui::ListBox>("lstParameters")),
      edtDataType_(form_.Get<ui::TextBox>("edtDataType")),
      edtDirection_(form_.Get<ui::TextBox>("edtDirection")),
      edtValue_(form_.Get<ui::TextBox>("edtValue")),
      lvwViewData_(form_.Get<ui::ListView>("lvwViewData")),
      arrParameters_(1) {
    lstParameters_.on_click = [this] { lstParameters_Click(); };
    form_.Get<ui::CommandButton>("cmdReload").on_click = [this] { loadParameters(); };
    form_.Get<ui::CommandButton>("cmdExecute").on_click = [this] { cmdExecute_Click(); };
    form_.Get<ui::CommandButton>("cmdClose").on_click = [this] { form_.Unload(); };
}

void frmStoredProcedures::Init(CViewDataMgr& objViewDataMgr, const std::string& strDatabase,
                               const std::string& strStoredProcedure) {
    objViewDataMgr_ = &objViewDataMgr;
    strDatabase_ = strDatabase;
    strStoredProcedure_ = strStoredProcedure;
    loadParameters();
}

void frmStoredProcedures::loadParameters() {
    const CWaitCursor wait;
    WithFailureHandler([this] { ListParameters(); },
                       [](const Failure&) { WriteErrorLog("frmStoredProcedures::loadParameters"); });
    objViewDataMgr_->ShowDbError();
}

void frmStoredProcedures::ListParameters() {
    form_.Caption("Run " + strStoredProcedure_ + " in [" + strDatabase_ + "]");
    lvwViewData_.ClearRows(); // the columns of an earlier result stay
    lstParameters_.Clear();
    lstParameters_.Enabled(false);
    edtDataType_.Text("");
    edtDirection_.Text("");
    edtValue_.Text("");
    edtValue_.Tag("0");
    if (!objViewDataMgr_->GetStoredProcedureParameters(strDatabase_, strStoredProcedure_, arrParameters_)) {
        return;
    }
    const Int16 last(LastParameter());
    for (Int16 i(1); i <= last; ++i) {
        lstParameters_.AddItem(ParameterAt(i.Value()).Name());
        lstParameters_.ItemData(lstParameters_.ListCount() - 1, i.Value());
    }
    if (lstParameters_.ListCount() > 0) {
        lstParameters_.ListIndex(0);
    }
    lstParameters_.Enabled(true);
}

int frmStoredProcedures::ParameterInBox() const {
    return std::stoi(edtValue_.Tag());
}

ado::Parameter& frmStoredProcedures::ParameterAt(int index) {
    if (index < 0 || index > LastParameter()) {
        RaiseRunTimeFailure(run_time::kSubscriptOutOfRange);
    }
    const auto& parameter = arrParameters_[static_cast<std::size_t>(index)];
    if (!parameter) {
        RaiseRunTimeFailure(run_time::kObjectVariableNotSet);
    }
    return *parameter;
}

void frmStoredProcedures::lstParameters_Click() {
    WithFailureHandler(
        [this] { SaveParameter(); },
        [](const Failure&) { WriteErrorLog("frmStoredProcedures::lstParameters_Click - Save parameter"); });
    WithFailureHandler(
        [this] { LoadParameter(); },
        [](const Failure&) { WriteErrorLog("frmStoredProcedures::lstParameters_Click - Load parameter"); });
}

void frmStoredProcedures::SaveParameter() {
    const int in_box = ParameterInBox();
    if (in_box <= 0 || in_box > LastParameter()) {
        return;
    }
    ado::Parameter& parameter = ParameterAt(in_box);
    if (IsInput(parameter)) {
        // An empty box means that no value was given, which is neither an empty text nor NULL.
        parameter.Value(edtValue_.Text().empty() ? ado::Variant() : ado::Variant(edtValue_.Text()));
    }
}

void frmStoredProcedures::LoadParameter() {
    const int index = lstParameters_.ItemData(lstParameters_.ListIndex());
    const ado::Parameter& parameter = ParameterAt(index);
    if (IsInput(parameter)) {
        edtValue_.BackColor(ui::kWindowBackground);
        edtValue_.Locked(false);
    } else {
        edtValue_.Locked(true);
        edtValue_.BackColor(ui::kButtonFaceBackground);
    }
    edtDataType_.Text(GetDataTypeName(parameter.Type()));
    edtDirection_.Text(GetDirectionName(parameter.Direction()));
    // A NULL value raises a failure here. The box and its Tag then still belong to the previous parameter.
    edtValue_.Text(parameter.Value().ToString());
    edtValue_.Tag(std::to_string(index));
}

void frmStoredProcedures::cmdExecute_Click() {
    const CWaitCursor wait;
    bool returned_early = false;
    WithFailureHandler([&] { returned_early = !Execute(); },
                       [](const Failure&) { WriteErrorLog("frmStoredProcedures::cmdExecute_Click"); });
    if (returned_early) {
        return;
    }
    form_.UnlockPainting();
    objViewDataMgr_->ShowDbError();
}

bool frmStoredProcedures::Execute() {
    form_.LockPainting();
    // This differs from a click in the list: only the last parameter is saved here, whatever its direction,
    // and an empty box gives an empty text.
    if (const int in_box = ParameterInBox(); in_box > 0 && in_box >= LastParameter()) {
        ParameterAt(in_box).Value(edtValue_.Text());
    }
    EmptyResultList(lvwViewData_);
    TextTable arrData;
    if (!objViewDataMgr_->ExecuteStoredProcedure(strDatabase_, strStoredProcedure_, arrParameters_,
                                                 arrData)) {
        return true;
    }
    if (arrData.ColumnUpperBound() == 0) {
        return false;
    }
    // Columns may have equal or empty names; the number makes their keys different.
    FillResultList(lvwViewData_, arrData, [](Int16 number, const std::string& name) {
        return ui::ListView::Column{std::to_string(number.Value()) + "_" + name, name};
    });
    lvwViewData_.Enabled(true);
    return true;
}

} // namespace kv

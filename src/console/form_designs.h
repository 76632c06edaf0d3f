// The tables of the controls of frmMain and frmStoredProcedures: names, kinds, captions, tool tips and
// positions. A form's window and its model are both made from its table.
#pragma once

#include <array>

#include "ui/design.h"

namespace kv {

inline constexpr int kMainTabs = 7;

/// The numbers of the tabs and of their pages.
enum MainTab : int {
    kGeneralTab = 0,
    kScriptTab = 1,
    kSynchronizeTab = 2,
    kUpgradeTab = 3,
    kReplicationTab = 4,
    kViewDataTab = 5,
    kStoredProcTab = 6,
};

/// By MainTab: the name of the tab's two option buttons, which choose Server A (index 0) or Server B (index
/// 1). The General tab has none.
inline constexpr std::array<const char*, kMainTabs> kServerOptions = {
    nullptr,
    "optScriptCurrentServer",
    "optSynchronizeSourceServer",
    "optUpgradeCurrentServer",
    "optSQLReplCurrentServer",
    "optViewDataCurrentServer",
    "optStoredProcCurrentServer",
};

/// The design of frmMain, the console's main window. Both designs are constants.
const ui::FormDesign& MainFormDesign();

/// The design of frmStoredProcedures, the dialog that runs a stored procedure.
const ui::FormDesign& ProceduresFormDesign();

} // namespace kv

// The tree of frmMain's controls, the one place of their names, kinds, captions, tool tips and places. The
// window and the model are both made from it; what the controls do stands in the files of the tabs.
#pragma once

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

const ui::FormDesign& MainFormDesign();

} // namespace kv

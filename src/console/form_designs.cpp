// The rows of the two forms.
#include "console/form_designs.h"

#include <array>

namespace kv {
namespace {

using ui::ControlDesign;
using ui::Kind;
using ui::Pixels;

// The parents of a control that lies on the form itself, and of a page.
constexpr ui::ControlName kForm{};
constexpr ui::ControlName kTabs{"tabMain"};
/// A text that the operator can read and not change.
constexpr std::uint32_t kShownText = ui::kReadOnly | ui::kButtonFace;
constexpr ui::Place kPage = Pixels(9, 29, 608, 424);

constexpr std::array kTabCaptions = {"General",     "Script",    "Synchronize", "Upgrade",
                                     "Replication", "View Data", "Stored Proc."};
static_assert(kTabCaptions.size() == kMainTabs);

// Kind, name and index, caption, tool tip, parent, position, traits. The misspelt texts are the product's,
// and so is the tool tip of Server B's data path, which names Server A's token. One row is one line.
// clang-format off
constexpr std::array kMainControls = std::to_array<ControlDesign>({
    {Kind::TabControl, {"tabMain"}, "", "", kForm, Pixels(8, 8, 626, 462)},
    {Kind::Frame, {"fraMainTab", 0}, "General Settings", "", kTabs, kPage},
    {Kind::Label, {"Label1"}, "Script folder &path:", "", {"fraMainTab", 0}, Pixels(12, 26, 112, 15)},
    {Kind::TextBox, {"edtScriptFolder"}, "", "", {"fraMainTab", 0}, Pixels(126, 22, 436, 23)},
    {Kind::CommandButton, {"cmdBrowseForScriptFolder"}, "...", "", {"fraMainTab", 0}, Pixels(568, 22, 28, 23)},
    {Kind::Label, {"lblDomainName", 2}, "Domain name:", "", {"fraMainTab", 0}, Pixels(12, 56, 112, 15)},
    {Kind::TextBox, {"edtDomainName"}, "", "", {"fraMainTab", 0}, Pixels(126, 52, 220, 23)},
    {Kind::Frame, {"fraServer", 0}, "Server A", "", {"fraMainTab", 0}, Pixels(12, 86, 288, 326)},
    {Kind::Label, {"lblServerName", 0}, "&Server name:", "", {"fraServer", 0}, Pixels(12, 22, 264, 15)},
    {Kind::TextBox, {"edtServerName", 0}, "", "Replaces ###SERVERA###, ###servera### and ###SERVER###", {"fraServer", 0}, Pixels(12, 39, 264, 23)},
    {Kind::Label, {"lblUserID", 0}, "&UserID:", "", {"fraServer", 0}, Pixels(12, 72, 264, 15)},
    {Kind::TextBox, {"edtUserID", 0}, "", "Replaces ###USERIDA### and ###USERID###", {"fraServer", 0}, Pixels(12, 89, 264, 23)},
    {Kind::Label, {"lblPassword", 0}, "&Password:", "", {"fraServer", 0}, Pixels(12, 122, 264, 15)},
    {Kind::TextBox, {"edtPassword", 0}, "", "Replaces ###PASSWORDA### and ###PASSWORD###", {"fraServer", 0}, Pixels(12, 139, 264, 23), ui::kSecret},
    {Kind::Label, {"lblSQLDataPath", 0}, "SQL &Data path:", "", {"fraServer", 0}, Pixels(12, 172, 264, 15)},
    {Kind::TextBox, {"edtSQLDataPath", 0}, "", "Replaces ###DATAPATHA### and ###DATAPATH###", {"fraServer", 0}, Pixels(12, 189, 230, 23)},
    {Kind::CommandButton, {"cmdBrowseForSQLDataPath", 0}, "...", "", {"fraServer", 0}, Pixels(248, 189, 28, 23)},
    {Kind::Label, {"lblSQLUNCReplDataPath", 0}, "SQL UNC &Replication Data path:", "", {"fraServer", 0}, Pixels(12, 222, 264, 15)},
    {Kind::TextBox, {"edtSQLUNCReplDataPath", 0}, "", "Replaces ###UNCREPLDATAPATHA### and ###UNCREPLDATAPATH###", {"fraServer", 0}, Pixels(12, 239, 264, 23), kShownText},
    {Kind::CommandButton, {"cmdGetLocalSettings"}, "Get Local Settings", "", {"fraServer", 0}, Pixels(132, 284, 144, 25)},
    {Kind::Frame, {"fraServer", 1}, "Server B", "", {"fraMainTab", 0}, Pixels(308, 86, 288, 326)},
    {Kind::Label, {"lblServerName", 1}, "&Server name:", "", {"fraServer", 1}, Pixels(12, 22, 264, 15)},
    {Kind::TextBox, {"edtServerName", 1}, "", "Replaces ###SERVERB###, ###serverb### (and ###SERVER###)", {"fraServer", 1}, Pixels(12, 39, 264, 23)},
    {Kind::Label, {"lblUserID", 1}, "&UserID:", "", {"fraServer", 1}, Pixels(12, 72, 264, 15)},
    {Kind::TextBox, {"edtUserID", 1}, "", "Replaces ###USERIDB### (and ###USERID###)", {"fraServer", 1}, Pixels(12, 89, 264, 23)},
    {Kind::Label, {"lblPassword", 1}, "&Password:", "", {"fraServer", 1}, Pixels(12, 122, 264, 15)},
    {Kind::TextBox, {"edtPassword", 1}, "", "Replaces ###PASSWORDB### (and ###PASSWORD###)", {"fraServer", 1}, Pixels(12, 139, 264, 23), ui::kSecret},
    {Kind::Label, {"lblSQLDataPath", 1}, "SQL &Data path:", "", {"fraServer", 1}, Pixels(12, 172, 264, 15)},
    {Kind::TextBox, {"edtSQLDataPath", 1}, "", "Replaces ###DATAPATHA### (and ###DATAPATH###)", {"fraServer", 1}, Pixels(12, 189, 230, 23)},
    {Kind::CommandButton, {"cmdBrowseForSQLDataPath", 1}, "...", "", {"fraServer", 1}, Pixels(248, 189, 28, 23)},
    {Kind::Label, {"lblSQLUNCReplDataPath", 1}, "SQL UNC &Replication Data path:", "", {"fraServer", 1}, Pixels(12, 222, 264, 15)},
    {Kind::TextBox, {"edtSQLUNCReplDataPath", 1}, "", "Replaces ###UNCREPLDATAPATHB### (and ###UNCREPLDATAPATH###)", {"fraServer", 1}, Pixels(12, 239, 264, 23), kShownText},
    {Kind::CommandButton, {"cmdGetRemoteSettings"}, "Get Remote Settings", "", {"fraServer", 1}, Pixels(132, 284, 144, 25)},
    {Kind::Frame, {"fraMainTab", 1}, "Script && Package Management", "", kTabs, kPage},
    {Kind::Label, {"lblScriptCurrentServer"}, "Server:", "", {"fraMainTab", 1}, Pixels(12, 26, 110, 15)},
    {Kind::OptionButton, {"optScriptCurrentServer", 0}, "Server A", "", {"fraMainTab", 1}, Pixels(128, 24, 210, 19), ui::kSelected | ui::kData},
    {Kind::OptionButton, {"optScriptCurrentServer", 1}, "Server B", "", {"fraMainTab", 1}, Pixels(346, 24, 210, 19), ui::kData},
    {Kind::Frame, {"fraScripts"}, "Available Scripts", "", {"fraMainTab", 1}, Pixels(12, 52, 584, 156)},
    {Kind::CheckBox, {"chkCreateInstallBatchDatabase"}, "Create Batch Database", "", {"fraScripts"}, Pixels(12, 22, 270, 19)},
    {Kind::CheckBox, {"chkCreateInstallBatchStoredProcedures"}, "Create Batch Stored Procedures", "", {"fraScripts"}, Pixels(12, 45, 270, 19)},
    {Kind::CheckBox, {"chkCreateInstallBatchDefaultData"}, "Create Batch Default Data", "", {"fraScripts"}, Pixels(12, 68, 270, 19)},
    {Kind::CheckBox, {"chkCreateInstallSQLServerReplication"}, "Create Replication Stored Procedures", "", {"fraScripts"}, Pixels(12, 91, 270, 19)},
    {Kind::CheckBox, {"chkCreateInstallScriptFile"}, "", "", {"fraScripts"}, Pixels(12, 120, 18, 19)},
    {Kind::TextBox, {"edtCreateInstallScriptFile"}, "", "", {"fraScripts"}, Pixels(34, 118, 504, 23)},
    {Kind::CommandButton, {"cmdBrowseForScriptFile"}, "...", "", {"fraScripts"}, Pixels(544, 118, 28, 23)},
    {Kind::OptionButton, {"optCreateInstallScriptFiles", 0}, "Create script files", "", {"fraScripts"}, Pixels(300, 22, 272, 19), ui::kSelected},
    {Kind::OptionButton, {"optCreateInstallScriptFiles", 1}, "Create and Install script files", "", {"fraScripts"}, Pixels(300, 45, 272, 19)},
    {Kind::Frame, {"fraDTSPackages"}, "Install DTS Packages (enabled for SQL Server 2005)", "", {"fraMainTab", 1}, Pixels(12, 216, 584, 136)},
    {Kind::CheckBox, {"chkStandardSynchronize"}, "Standard Synchronize", "Select to install Standard Synchronization DTS package", {"fraDTSPackages"}, Pixels(12, 22, 272, 19)},
    {Kind::CheckBox, {"chkUpgradeDatabaseV1ToV2"}, "Upgrade Database v1 to v2", "Select to install Updagrade Database v1 to v2 DTS package", {"fraDTSPackages"}, Pixels(12, 45, 272, 19)},
    {Kind::CheckBox, {"chkBatchOverviewExport"}, "Batch Overview Export", "Select to install Batch Overview Export DTS package", {"fraDTSPackages"}, Pixels(12, 68, 272, 19)},
    {Kind::CheckBox, {"chkBatchOverviewRecalcExport"}, "Batch Overview Recalculation Export", "Select to install Batch Overview Recalculation Export DTS package", {"fraDTSPackages"}, Pixels(300, 22, 272, 19)},
    {Kind::CheckBox, {"chkBatchSummaryExport"}, "Batch Summary Export", "Select to install Batch Summary Export DTS package", {"fraDTSPackages"}, Pixels(300, 45, 272, 19)},
    {Kind::CheckBox, {"chkBatchSummaryRecalcExport"}, "Batch Summary Recalculation Export", "Select to install Batch Summary Recalculation Export DTS package", {"fraDTSPackages"}, Pixels(300, 68, 272, 19)},
    {Kind::CommandButton, {"cmdGetInstalledPackages"}, "&Packages...", "", {"fraDTSPackages"}, Pixels(476, 98, 96, 25)},
    {Kind::CommandButton, {"cmdCreateInstall"}, "&Run", "", {"fraMainTab", 1}, Pixels(500, 370, 96, 25)},
    {Kind::Frame, {"fraMainTab", 2}, "Database Syncronization Management", "", kTabs, kPage},
    {Kind::Label, {"lblSynchronizeSourceServer"}, "Synchronize Source Server:", "", {"fraMainTab", 2}, Pixels(12, 26, 166, 15)},
    {Kind::OptionButton, {"optSynchronizeSourceServer", 0}, "Server A", "", {"fraMainTab", 2}, Pixels(182, 24, 200, 19), ui::kSelected | ui::kData},
    {Kind::OptionButton, {"optSynchronizeSourceServer", 1}, "Server B", "", {"fraMainTab", 2}, Pixels(390, 24, 200, 19), ui::kData},
    {Kind::Label, {"lblSynchronizeSourceDatabase"}, "Source Database:", "", {"fraMainTab", 2}, Pixels(12, 62, 166, 15)},
    {Kind::ComboBox, {"cboSynchronizeSourceDatabase"}, "", "", {"fraMainTab", 2}, Pixels(182, 58, 414, 23), ui::kDropDownList},
    {Kind::Label, {"lblSynchronizeDestDatabase"}, "Destination Database:", "", {"fraMainTab", 2}, Pixels(12, 94, 166, 15)},
    {Kind::ComboBox, {"cboSynchronizeDestDatabase"}, "", "", {"fraMainTab", 2}, Pixels(182, 90, 414, 23), ui::kDropDownList},
    {Kind::CommandButton, {"cmdSynchronize"}, "Synchronize", "", {"fraMainTab", 2}, Pixels(500, 126, 96, 25)},
    {Kind::Frame, {"fraMainTab", 3}, "SQL Server Database Management", "", kTabs, kPage},
    {Kind::Label, {"lblUpgradeCurrentServer"}, "Current Server:", "", {"fraMainTab", 3}, Pixels(12, 26, 110, 15)},
    {Kind::OptionButton, {"optUpgradeCurrentServer", 0}, "Server A", "", {"fraMainTab", 3}, Pixels(128, 24, 210, 19), ui::kSelected | ui::kData},
    {Kind::OptionButton, {"optUpgradeCurrentServer", 1}, "Server B", "", {"fraMainTab", 3}, Pixels(346, 24, 210, 19), ui::kData},
    {Kind::Frame, {"fraRename"}, "Rename database", "", {"fraMainTab", 3}, Pixels(12, 52, 584, 118)},
    {Kind::Label, {"lblRenameDatabase"}, "Database:", "", {"fraRename"}, Pixels(12, 26, 140, 15)},
    {Kind::ComboBox, {"cboRenameDatabase"}, "", "", {"fraRename"}, Pixels(158, 22, 414, 23), ui::kDropDownList},
    {Kind::Label, {"lblRenameNewDatabase"}, "New Database:", "", {"fraRename"}, Pixels(12, 56, 140, 15)},
    {Kind::TextBox, {"edtRenameNewDatabase"}, "", "SQL Server instance name", {"fraRename"}, Pixels(158, 52, 414, 23)},
    {Kind::CommandButton, {"cmdRename"}, "Rename", "", {"fraRename"}, Pixels(476, 82, 96, 25)},
    {Kind::Frame, {"fraUpgrade"}, "Upgrade Database", "", {"fraMainTab", 3}, Pixels(12, 178, 584, 118)},
    {Kind::Label, {"lblUpgradeDatabaseSource"}, "Source Database:", "", {"fraUpgrade"}, Pixels(12, 26, 140, 15)},
    {Kind::ComboBox, {"cboUpgradeDatabaseSource"}, "", "", {"fraUpgrade"}, Pixels(158, 22, 414, 23), ui::kDropDownList},
    {Kind::Label, {"lblUpgradeDatabaseDest"}, "Destination Database:", "", {"fraUpgrade"}, Pixels(12, 56, 140, 15)},
    {Kind::ComboBox, {"cboUpgradeDatabaseDest"}, "", "", {"fraUpgrade"}, Pixels(158, 52, 414, 23)},
    {Kind::CommandButton, {"cmdUpgrade"}, "Upgrade", "", {"fraUpgrade"}, Pixels(476, 82, 96, 25)},
    {Kind::Frame, {"fraRemove"}, "Remove database", "", {"fraMainTab", 3}, Pixels(12, 304, 584, 90)},
    {Kind::Label, {"lblRemoveDatabase"}, "Database:", "", {"fraRemove"}, Pixels(12, 26, 140, 15)},
    {Kind::ComboBox, {"cboRemoveDatabase"}, "", "", {"fraRemove"}, Pixels(158, 22, 414, 23), ui::kDropDownList},
    {Kind::CommandButton, {"cmdRemove"}, "Remove", "", {"fraRemove"}, Pixels(476, 54, 96, 25)},
    {Kind::Frame, {"fraMainTab", 4}, "SQL Server Replication Management", "", kTabs, kPage},
    {Kind::Label, {"lblSQLReplCurrentServer"}, "Current Server:", "", {"fraMainTab", 4}, Pixels(12, 26, 110, 15)},
    {Kind::OptionButton, {"optSQLReplCurrentServer", 0}, "Server A", "", {"fraMainTab", 4}, Pixels(128, 24, 210, 19), ui::kSelected | ui::kData},
    {Kind::OptionButton, {"optSQLReplCurrentServer", 1}, "Server B", "", {"fraMainTab", 4}, Pixels(346, 24, 210, 19), ui::kData},
    {Kind::CheckBox, {"chkUseSQLServerReplication"}, "Use Transactional SQL Server Replication", "", {"fraMainTab", 4}, Pixels(12, 56, 584, 19)},
    {Kind::Label, {"lblSQLReplicationDatabase"}, "Database:", "", {"fraMainTab", 4}, Pixels(12, 92, 110, 15)},
    {Kind::ComboBox, {"cboSQLReplicationDatabase"}, "", "", {"fraMainTab", 4}, Pixels(128, 88, 468, 23)},
    {Kind::CommandButton, {"cmdInstallReplication"}, "Install", "", {"fraMainTab", 4}, Pixels(396, 122, 96, 25)},
    {Kind::CommandButton, {"cmdUninstallReplication"}, "Uninstall", "", {"fraMainTab", 4}, Pixels(500, 122, 96, 25)},
    {Kind::Label, {"lblSQLServerReplicationStatus"}, "", "", {"fraMainTab", 4}, Pixels(12, 164, 584, 64), ui::kData},
    {Kind::Frame, {"fraMainTab", 5}, "View Data", "", kTabs, kPage},
    {Kind::Label, {"lblViewDataCurrentServer"}, "Current Server:", "", {"fraMainTab", 5}, Pixels(12, 26, 110, 15)},
    {Kind::OptionButton, {"optViewDataCurrentServer", 0}, "Server A", "", {"fraMainTab", 5}, Pixels(128, 24, 210, 19), ui::kSelected | ui::kData},
    {Kind::OptionButton, {"optViewDataCurrentServer", 1}, "Server B", "", {"fraMainTab", 5}, Pixels(346, 24, 210, 19), ui::kData},
    {Kind::ComboBox, {"cboViewDataDatabase"}, "", "", {"fraMainTab", 5}, Pixels(12, 52, 190, 23), ui::kDropDownList},
    {Kind::ListBox, {"lstViewDataTables"}, "", "", {"fraMainTab", 5}, Pixels(12, 82, 190, 328)},
    {Kind::PictureBox, {"picListViewFrame"}, "", "", {"fraMainTab", 5}, Pixels(210, 52, 386, 358)},
    {Kind::ListView, {"lvwViewData"}, "", "", {"picListViewFrame"}, Pixels(0, 0, 386, 358)},
    {Kind::Frame, {"fraMainTab", 6}, "Stored Procedures", "", kTabs, kPage},
    {Kind::Label, {"lblStoredProcCurrentServer"}, "Current Server:", "", {"fraMainTab", 6}, Pixels(12, 26, 148, 15)},
    {Kind::OptionButton, {"optStoredProcCurrentServer", 0}, "Server A", "", {"fraMainTab", 6}, Pixels(166, 24, 207, 19), ui::kSelected | ui::kData},
    {Kind::OptionButton, {"optStoredProcCurrentServer", 1}, "Server B", "", {"fraMainTab", 6}, Pixels(381, 24, 207, 19), ui::kData},
    {Kind::Label, {"lblDatabase"}, "Select Database:", "", {"fraMainTab", 6}, Pixels(12, 58, 148, 15)},
    {Kind::ComboBox, {"cboStoredProcDatabase"}, "", "", {"fraMainTab", 6}, Pixels(166, 54, 430, 23), ui::kDropDownList},
    {Kind::Label, {"lblStoredProcedure"}, "Select Stored Procedure:", "", {"fraMainTab", 6}, Pixels(12, 88, 148, 15)},
    {Kind::ComboBox, {"cboStoredProcedure"}, "", "", {"fraMainTab", 6}, Pixels(166, 84, 396, 23), ui::kDropDownList},
    {Kind::CommandButton, {"cmdExecute"}, "", "Execute stored procedure...", {"fraMainTab", 6}, Pixels(568, 83, 28, 25), ui::kPicture},
    {Kind::TextBox, {"edtStoredProcedure"}, "", "", {"fraMainTab", 6}, Pixels(12, 116, 584, 294), ui::kReadOnly | ui::kMultiLine},
    {Kind::ProgressBar, {"prbStatus"}, "", "", kForm, Pixels(8, 483, 160, 19)},
    {Kind::Label, {"lblStatus"}, "", "", kForm, Pixels(176, 485, 354, 15), ui::kData},
    {Kind::CommandButton, {"cmdClose"}, "&Close", "", kForm, Pixels(538, 480, 96, 25)},
});

constexpr std::array kProceduresControls = std::to_array<ControlDesign>({
    {Kind::Label, {"lblParameters"}, "&Parameters:", "", kForm, Pixels(12, 12, 220, 15)},
    {Kind::ListBox, {"lstParameters"}, "", "", kForm, Pixels(12, 30, 220, 130)},
    {Kind::Label, {"lblDataType"}, "Data type:", "", kForm, Pixels(244, 12, 344, 15)},
    {Kind::TextBox, {"edtDataType"}, "", "", kForm, Pixels(244, 30, 344, 23), kShownText},
    {Kind::Label, {"lblDirection"}, "Direction:", "", kForm, Pixels(244, 64, 344, 15)},
    {Kind::TextBox, {"edtDirection"}, "", "", kForm, Pixels(244, 82, 344, 23), kShownText},
    {Kind::Label, {"lblValue"}, "&Value:", "", kForm, Pixels(244, 116, 344, 15)},
    {Kind::TextBox, {"edtValue"}, "", "", kForm, Pixels(244, 134, 344, 23)},
    {Kind::PictureBox, {"picListViewFrame"}, "", "", kForm, Pixels(12, 172, 576, 220)},
    {Kind::ListView, {"lvwViewData"}, "", "", {"picListViewFrame"}, Pixels(0, 0, 576, 220)},
    {Kind::CommandButton, {"cmdReload"}, "&Reload", "", kForm, Pixels(12, 404, 96, 25)},
    {Kind::CommandButton, {"cmdExecute"}, "&Execute", "", kForm, Pixels(116, 404, 96, 25)},
    {Kind::CommandButton, {"cmdClose"}, "&Close", "", kForm, Pixels(492, 404, 96, 25), ui::kCancel},
});
// clang-format on

constexpr ui::FormDesign kMainDesign{"frmMain",
                                     "Halvane Vindrel SQL Database Manager",
                                     642 * ui::kTwipsPerPixel,
                                     512 * ui::kTwipsPerPixel,
                                     kMainControls,
                                     kTabCaptions};

constexpr ui::FormDesign kProceduresDesign{"frmStoredProcedures",    "Stored Procedures",
                                           600 * ui::kTwipsPerPixel, 441 * ui::kTwipsPerPixel,
                                           kProceduresControls,      {}};

} // namespace

const ui::FormDesign& MainFormDesign() {
    return kMainDesign;
}

const ui::FormDesign& ProceduresFormDesign() {
    return kProceduresDesign;
}

} // namespace kv

// The controls of the main window's pages. This table is written independently of the program's own
// (src/console/form_designs.cpp), and a test compares the two.
#pragma once

namespace console_tests {

struct PageRow {
    int tab;
    const char* caption;
    const char* frame_caption;
};

// clang-format off
inline constexpr PageRow kPageRows[] = {
    {0, "General", "General Settings"},
    {1, "Script", "Script && Package Management"},
    {2, "Synchronize", "Database Syncronization Management"},
    {3, "Upgrade", "SQL Server Database Management"},
    {4, "Replication", "SQL Server Replication Management"},
    {5, "View Data", "View Data"},
    {6, "Stored Proc.", "Stored Procedures"},
};

struct ControlRow {
    int tab;
    const char* name;
    int index; ///< -1: not in a control array
    const char* kind;
    const char* caption;
    const char* tool_tip;
    const char* inside;  ///< the parent; empty if it is the page
    const char* remarks; ///< its traits in words, such as "read-only"
};

inline constexpr ControlRow kControlRows[] = {
    {0, "edtDomainName", -1, "text box", "", "", "", ""},
    {0, "fraServer", 1, "frame", "Server B", "", "", ""},
    {0, "cmdGetRemoteSettings", -1, "command button", "Get Remote Settings", "", "fraServer(1)", ""},
    {0, "edtUserID", 1, "text box", "", "Replaces ###USERIDB### (and ###USERID###)", "fraServer(1)", ""},
    {0, "edtPassword", 1, "text box", "", "Replaces ###PASSWORDB### (and ###PASSWORD###)", "fraServer(1)", ""},
    {0, "edtServerName", 1, "text box", "", "Replaces ###SERVERB###, ###serverb### (and ###SERVER###)", "fraServer(1)", ""},
    {0, "cmdBrowseForSQLDataPath", 1, "command button", "...", "", "fraServer(1)", ""},
    {0, "edtSQLDataPath", 1, "text box", "", "Replaces ###DATAPATHA### (and ###DATAPATH###)", "fraServer(1)", ""},
    {0, "edtSQLUNCReplDataPath", 1, "text box", "", "Replaces ###UNCREPLDATAPATHB### (and ###UNCREPLDATAPATH###)", "fraServer(1)", "read-only"},
    {0, "lblUserID", 1, "label", "&UserID:", "", "fraServer(1)", ""},
    {0, "lblPassword", 1, "label", "&Password:", "", "fraServer(1)", ""},
    {0, "lblServerName", 1, "label", "&Server name:", "", "fraServer(1)", ""},
    {0, "lblSQLDataPath", 1, "label", "SQL &Data path:", "", "fraServer(1)", ""},
    {0, "lblSQLUNCReplDataPath", 1, "label", "SQL UNC &Replication Data path:", "", "fraServer(1)", ""},
    {0, "fraServer", 0, "frame", "Server A", "", "", ""},
    {0, "cmdGetLocalSettings", -1, "command button", "Get Local Settings", "", "fraServer(0)", ""},
    {0, "edtSQLUNCReplDataPath", 0, "text box", "", "Replaces ###UNCREPLDATAPATHA### and ###UNCREPLDATAPATH###", "fraServer(0)", "read-only"},
    {0, "edtSQLDataPath", 0, "text box", "", "Replaces ###DATAPATHA### and ###DATAPATH###", "fraServer(0)", ""},
    {0, "cmdBrowseForSQLDataPath", 0, "command button", "...", "", "fraServer(0)", ""},
    {0, "edtServerName", 0, "text box", "", "Replaces ###SERVERA###, ###servera### and ###SERVER###", "fraServer(0)", ""},
    {0, "edtPassword", 0, "text box", "", "Replaces ###PASSWORDA### and ###PASSWORD###", "fraServer(0)", ""},
    {0, "edtUserID", 0, "text box", "", "Replaces ###USERIDA### and ###USERID###", "fraServer(0)", ""},
    {0, "lblSQLUNCReplDataPath", 0, "label", "SQL UNC &Replication Data path:", "", "fraServer(0)", ""},
    {0, "lblSQLDataPath", 0, "label", "SQL &Data path:", "", "fraServer(0)", ""},
    {0, "lblServerName", 0, "label", "&Server name:", "", "fraServer(0)", ""},
    {0, "lblPassword", 0, "label", "&Password:", "", "fraServer(0)", ""},
    {0, "lblUserID", 0, "label", "&UserID:", "", "fraServer(0)", ""},
    {0, "cmdBrowseForScriptFolder", -1, "command button", "...", "", "", ""},
    {0, "edtScriptFolder", -1, "text box", "", "", "", ""},
    {0, "lblDomainName", 2, "label", "Domain name:", "", "", ""},
    {0, "Label1", -1, "label", "Script folder &path:", "", "", ""},
    {1, "fraDTSPackages", -1, "frame", "Install DTS Packages (enabled for SQL Server 2005)", "", "", ""},
    {1, "cmdGetInstalledPackages", -1, "command button", "&Packages...", "", "fraDTSPackages", ""},
    {1, "chkStandardSynchronize", -1, "check box", "Standard Synchronize", "Select to install Standard Synchronization DTS package", "fraDTSPackages", ""},
    {1, "chkUpgradeDatabaseV1ToV2", -1, "check box", "Upgrade Database v1 to v2", "Select to install Updagrade Database v1 to v2 DTS package", "fraDTSPackages", ""},
    {1, "chkBatchOverviewExport", -1, "check box", "Batch Overview Export", "Select to install Batch Overview Export DTS package", "fraDTSPackages", ""},
    {1, "chkBatchOverviewRecalcExport", -1, "check box", "Batch Overview Recalculation Export", "Select to install Batch Overview Recalculation Export DTS package", "fraDTSPackages", ""},
    {1, "chkBatchSummaryExport", -1, "check box", "Batch Summary Export", "Select to install Batch Summary Export DTS package", "fraDTSPackages", ""},
    {1, "chkBatchSummaryRecalcExport", -1, "check box", "Batch Summary Recalculation Export", "Select to install Batch Summary Recalculation Export DTS package", "fraDTSPackages", ""},
    {1, "optScriptCurrentServer", 1, "option button", "Server B", "", "", ""},
    {1, "optScriptCurrentServer", 0, "option button", "Server A", "", "", "selected at start"},
    {1, "fraScripts", -1, "frame", "Available Scripts", "", "", ""},
    {1, "cmdBrowseForScriptFile", -1, "command button", "...", "", "fraScripts", ""},
    {1, "edtCreateInstallScriptFile", -1, "text box", "", "", "fraScripts", ""},
    {1, "chkCreateInstallScriptFile", -1, "check box", "", "", "fraScripts", ""},
    {1, "chkCreateInstallBatchDefaultData", -1, "check box", "Create Batch Default Data", "", "fraScripts", ""},
    {1, "chkCreateInstallBatchStoredProcedures", -1, "check box", "Create Batch Stored Procedures", "", "fraScripts", ""},
    {1, "chkCreateInstallBatchDatabase", -1, "check box", "Create Batch Database", "", "fraScripts", ""},
    {1, "chkCreateInstallSQLServerReplication", -1, "check box", "Create Replication Stored Procedures", "", "fraScripts", ""},
    {1, "optCreateInstallScriptFiles", 0, "option button", "Create script files", "", "fraScripts", "selected at start"},
    {1, "optCreateInstallScriptFiles", 1, "option button", "Create and Install script files", "", "fraScripts", ""},
    {1, "cmdCreateInstall", -1, "command button", "&Run", "", "", ""},
    {1, "lblScriptCurrentServer", -1, "label", "Server:", "", "", ""},
    {2, "cmdSynchronize", -1, "command button", "Synchronize", "", "", ""},
    {2, "cboSynchronizeDestDatabase", -1, "combo box", "", "", "", "drop-down list"},
    {2, "cboSynchronizeSourceDatabase", -1, "combo box", "", "", "", "drop-down list"},
    {2, "optSynchronizeSourceServer", 0, "option button", "Server A", "", "", "selected at start"},
    {2, "optSynchronizeSourceServer", 1, "option button", "Server B", "", "", ""},
    {2, "lblSynchronizeDestDatabase", -1, "label", "Destination Database:", "", "", ""},
    {2, "lblSynchronizeSourceDatabase", -1, "label", "Source Database:", "", "", ""},
    {2, "lblSynchronizeSourceServer", -1, "label", "Synchronize Source Server:", "", "", ""},
    {3, "optUpgradeCurrentServer", 0, "option button", "Server A", "", "", "selected at start"},
    {3, "optUpgradeCurrentServer", 1, "option button", "Server B", "", "", ""},
    {3, "fraRename", -1, "frame", "Rename database", "", "", ""},
    {3, "edtRenameNewDatabase", -1, "text box", "", "SQL Server instance name", "fraRename", ""},
    {3, "cmdRename", -1, "command button", "Rename", "", "fraRename", ""},
    {3, "cboRenameDatabase", -1, "combo box", "", "", "fraRename", "drop-down list"},
    {3, "lblRenameNewDatabase", -1, "label", "New Database:", "", "fraRename", ""},
    {3, "lblRenameDatabase", -1, "label", "Database:", "", "fraRename", ""},
    {3, "fraUpgrade", -1, "frame", "Upgrade Database", "", "", ""},
    {3, "cmdUpgrade", -1, "command button", "Upgrade", "", "fraUpgrade", ""},
    {3, "cboUpgradeDatabaseDest", -1, "combo box", "", "", "fraUpgrade", "drop-down with free text"},
    {3, "cboUpgradeDatabaseSource", -1, "combo box", "", "", "fraUpgrade", "drop-down list"},
    {3, "lblUpgradeDatabaseDest", -1, "label", "Destination Database:", "", "fraUpgrade", ""},
    {3, "lblUpgradeDatabaseSource", -1, "label", "Source Database:", "", "fraUpgrade", ""},
    {3, "fraRemove", -1, "frame", "Remove database", "", "", ""},
    {3, "cmdRemove", -1, "command button", "Remove", "", "fraRemove", ""},
    {3, "cboRemoveDatabase", -1, "combo box", "", "", "fraRemove", "drop-down list"},
    {3, "lblRemoveDatabase", -1, "label", "Database:", "", "fraRemove", ""},
    {3, "lblUpgradeCurrentServer", -1, "label", "Current Server:", "", "", ""},
    {4, "optSQLReplCurrentServer", 0, "option button", "Server A", "", "", "selected at start"},
    {4, "optSQLReplCurrentServer", 1, "option button", "Server B", "", "", ""},
    {4, "chkUseSQLServerReplication", -1, "check box", "Use Transactional SQL Server Replication", "", "", ""},
    {4, "cboSQLReplicationDatabase", -1, "combo box", "", "", "", "drop-down with free text"},
    {4, "cmdInstallReplication", -1, "command button", "Install", "", "", ""},
    {4, "cmdUninstallReplication", -1, "command button", "Uninstall", "", "", ""},
    {4, "lblSQLReplCurrentServer", -1, "label", "Current Server:", "", "", ""},
    {4, "lblSQLReplicationDatabase", -1, "label", "Database:", "", "", ""},
    {4, "lblSQLServerReplicationStatus", -1, "label", "", "", "", ""},
    {5, "lvwViewData", -1, "list view", "", "", "", ""},
    {5, "picListViewFrame", -1, "picture box", "", "", "", ""},
    {5, "lstViewDataTables", -1, "list box", "", "", "", ""},
    {5, "cboViewDataDatabase", -1, "combo box", "", "", "", "drop-down list"},
    {5, "optViewDataCurrentServer", 1, "option button", "Server B", "", "", ""},
    {5, "optViewDataCurrentServer", 0, "option button", "Server A", "", "", "selected at start"},
    {5, "lblViewDataCurrentServer", -1, "label", "Current Server:", "", "", ""},
    {6, "cmdExecute", -1, "command button", "", "Execute stored procedure...", "", "shows a small picture instead of a caption"},
    {6, "optStoredProcCurrentServer", 0, "option button", "Server A", "", "", "selected at start"},
    {6, "optStoredProcCurrentServer", 1, "option button", "Server B", "", "", ""},
    {6, "cboStoredProcDatabase", -1, "combo box", "", "", "", "drop-down list"},
    {6, "edtStoredProcedure", -1, "text box", "", "", "", "read-only; multi-line, both scroll bars"},
    {6, "cboStoredProcedure", -1, "combo box", "", "", "", "drop-down list"},
    {6, "lblStoredProcCurrentServer", -1, "label", "Current Server:", "", "", ""},
    {6, "lblDatabase", -1, "label", "Select Database:", "", "", ""},
    {6, "lblStoredProcedure", -1, "label", "Select Stored Procedure:", "", "", ""},
};
// clang-format on

} // namespace console_tests

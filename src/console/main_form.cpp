// frmMain: loading, saving and the tabs.
#include "console/main_form.h"

#include "base/error_log.h"
#include "base/failure.h"
#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "console/list_views.h"
#include "console/wait_cursor.h"
#include "platform/version_record.h"
#include "registry/registry.h"
#include "registry/user_settings.h"

namespace kv {
namespace {

namespace location = registry_locations;

constexpr char kApplication[] = "KVLSQLDbMgr";
constexpr char kSection[] = "Settings";

// The entries that are remembered from run to run, in the order of loading and saving. The load does other
// work between the three groups. A key is the control's name and its index: renaming a control loses its
// entry.

constexpr std::array kGeneralEntries = std::to_array<ui::ControlName>({
    {"edtScriptFolder"},
    {"edtDomainName"},
    {"edtServerName", 0},
    {"edtUserID", 0},
    {"edtPassword", 0},
    {"edtSQLDataPath", 0},
    {"edtSQLUNCReplDataPath", 0}, // after the data path, whose Change event overwrites it
    {"edtServerName", 1},
    {"edtUserID", 1},
    {"edtPassword", 1},
    {"edtSQLDataPath", 1},
    {"edtSQLUNCReplDataPath", 1},
    {"edtCreateInstallScriptFile"},
});

constexpr std::array kDatabaseEntries = std::to_array<ui::ControlName>({
    {"cboRenameDatabase"},
    {"edtRenameNewDatabase"},
    {"cboUpgradeDatabaseDest"},
    {"cboUpgradeDatabaseSource"},
    {"cboRemoveDatabase"},
    {"cboViewDataDatabase"},
});

constexpr std::array kProcedureEntries = std::to_array<ui::ControlName>({
    {"cboStoredProcDatabase"},
    {"cboStoredProcedure"},
});

std::string KeyOf(const ui::Control& control) {
    const auto index = control.Index();
    return control.Name() + (index ? std::to_string(*index) : std::string());
}

} // namespace

frmMain::frmMain()
    : form_(MainFormDesign()),
      tabMain_(form_.Get<ui::TabControl>("tabMain")),
      prbStatus_(form_.Get<ui::ProgressBar>("prbStatus")),
      lblStatus_(form_.Get<ui::Label>("lblStatus")),
      general_(*this),
      script_(*this),
      synchronize_(*this),
      upgrade_(*this),
      replication_(*this),
      view_data_(*this),
      stored_proc_(*this) {
    tabMain_.on_click = [this] { tabMain_Click(); };
    form_.Get<ui::CommandButton>("cmdClose").on_click = [this] { form_.Unload(); };
    form_.on_unload = [this] { Unload(); };
}

frmMain::~frmMain() = default;

void frmMain::Load() {
    const CWaitCursor wait;
    form_.Caption(form_.Caption() + " [" + platform::VersionComments() + "]");
    loading_ = true;
    LookForDomain();
    LoadSettings(kGeneralEntries);
    script_.UpdateScriptFileBox();
    LoadSettings(kDatabaseEntries);
    auto& lvwViewData = form_.Get<ui::ListView>("lvwViewData");
    SetExtendedStyle(lvwViewData, ui::kFullRowSelect, true);
    SetExtendedStyle(lvwViewData, ui::kGridLines, true);
    LoadSettings(kProcedureEntries);
    tabMain_.Tab(kGeneralTab);
    loading_ = false;
    UpdateServerAvailability();
    DisableDTSOptions();
    UpdateTabStatus();
}

void frmMain::LookForDomain() {
    const registry::OpenedKey key =
        registry::OpenKey(location::kHkeyLocalMachine, location::kInstallationKey, registry::kKeyQueryValue);
    if (key.error != registry::error::kSuccess) {
        form_.Get<ui::TextBox>("edtDomainName").Enabled(false);
        return;
    }
    registry::CloseKey(key.key);
    // The value is not used. The read stays because a failed one is logged.
    GetLocalSetting(location::kHkeyLocalMachine, location::kInstallationKey, location::kSqlDomainValue,
                    location::kNoDefault);
}

void frmMain::Unload() {
    const CWaitCursor wait;
    SaveSettings(kGeneralEntries);
    SaveSettings(kDatabaseEntries);
    SaveSettings(kProcedureEntries);
}

void frmMain::LoadSettings(std::span<const ui::ControlName> entries) {
    for (const ui::ControlName& entry : entries) {
        LoadControlSetting(*form_.Find(entry.name, entry.index));
    }
}

void frmMain::SaveSettings(std::span<const ui::ControlName> entries) {
    for (const ui::ControlName& entry : entries) {
        SaveControlSetting(*form_.Find(entry.name, entry.index));
    }
}

void frmMain::LoadControlSetting(ui::Control& control) {
    const std::string text = registry::ReadUserSetting(kApplication, kSection, KeyOf(control), "");
    try {
        if (control.Kind() == ui::Kind::TextBox) {
            static_cast<ui::TextBox&>(control).Text(text);
        } else {
            static_cast<ui::ComboBox&>(control).Text(text);
        }
    } catch (const ui::Refusal&) {
        // A drop-down list has no items yet and refuses every text: its remembered entry has no effect.
    }
}

void frmMain::SaveControlSetting(const ui::Control& control) {
    const std::string& text = control.Kind() == ui::Kind::TextBox
                                  ? static_cast<const ui::TextBox&>(control).Text()
                                  : static_cast<const ui::ComboBox&>(control).Text();
    registry::WriteUserSetting(kApplication, kSection, KeyOf(control), text);
}

void frmMain::tabMain_Click() {
    const CWaitCursor wait;
    WithFailureHandler(
        [&] {
            UpdateServerOptions(tabMain_.Tab());
            UpdateTabStatus();
            platform::RunPendingEvents();
            RefreshTab(tabMain_.Tab());
        },
        [](const Failure&) { WriteErrorLog("frmMain::tabMain_Click"); });
}

ServerFields frmMain::FieldsOf(int index) const {
    const auto text = [&](const char* name) { return form_.Get<ui::TextBox>(name, index).Text(); };
    return {text("edtServerName"), text("edtUserID"), text("edtPassword"), text("edtSQLDataPath"),
            text("edtSQLUNCReplDataPath")};
}

void frmMain::FillSettings(ServerPairSettings& settings, bool blnUseServerA) const {
    const ServerFields a = FieldsOf(0);
    const ServerFields b = FieldsOf(1);
    settings.UseServerA(blnUseServerA);
    settings.ServerA(a.name);
    settings.ServerB(b.name);
    settings.UserA(a.user);
    settings.UserB(b.user);
    settings.PasswordA(a.password);
    settings.PasswordB(b.password);
    settings.SQLDataPathA(a.data_path);
    settings.SQLDataPathB(b.data_path);
    settings.SQLUNCReplDataPathA(a.replication_path);
    settings.SQLUNCReplDataPathB(b.replication_path);
}

bool frmMain::ServerASelected(int tab) const {
    return form_.Get<ui::OptionButton>(kServerOptions.at(static_cast<std::size_t>(tab)), 0).Value();
}

void frmMain::RefreshTab(int tab) {
    if (tab == kReplicationTab) {
        replication_.ShowReplicationSetting();
    }
    if (tab != kGeneralTab && tab != kScriptTab) {
        UpdateDatabaseLists(tab, ServerASelected(tab));
    }
    if (tab == kReplicationTab) {
        replication_.UpdatedReplicationStatus();
    }
}

void frmMain::RefillOnServerChoice(int intTab) {
    for (const int server : {0, 1}) {
        form_.Get<ui::OptionButton>(kServerOptions.at(static_cast<std::size_t>(intTab)), server).on_click =
            [this, intTab] {
                const CWaitCursor wait;
                UpdateDatabaseLists(intTab, ServerASelected(intTab));
            };
    }
}

void frmMain::GiveButtonBack(ui::CommandButton& button) {
    button.Enabled(true);
    form_.SetFocus(button);
}

} // namespace kv

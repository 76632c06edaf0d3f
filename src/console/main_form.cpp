#include "console/main_form.h"

#include "base/error_log.h"
#include "base/failure.h"
#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "console/list_view_helpers.h"
#include "console/server_options.h"
#include "console/wait_cursor.h"
#include "platform/version_record.h"
#include "registry/registry.h"
#include "registry/user_settings.h"

namespace kv {
namespace {

namespace location = registry_locations;

constexpr char kApplication[] = "KVLSQLDbMgr";
constexpr char kSection[] = "Settings";

/// What is remembered, in the order of loading and saving. A key is the control's name and its index:
/// renaming a control loses what was remembered for it.
constexpr std::array kRemembered = std::to_array<ui::ControlName>({
    {"edtScriptFolder"},          {"edtDomainName"},
    {"edtServerName", 0},         {"edtUserID", 0},
    {"edtPassword", 0},           {"edtSQLDataPath", 0},
    {"edtSQLUNCReplDataPath", 0}, // behind the data path, whose Change derives another one
    {"edtServerName", 1},         {"edtUserID", 1},
    {"edtPassword", 1},           {"edtSQLDataPath", 1},
    {"edtSQLUNCReplDataPath", 1}, {"edtCreateInstallScriptFile"},
    {"cboRenameDatabase"},        {"edtRenameNewDatabase"},
    {"cboUpgradeDatabaseDest"},   {"cboUpgradeDatabaseSource"},
    {"cboRemoveDatabase"},        {"cboViewDataDatabase"},
    {"cboStoredProcDatabase"},    {"cboStoredProcedure"},
});

// Where the load does other things in between.
constexpr std::size_t kBehindScriptFile = 13;
constexpr std::size_t kBehindViewData = 19;

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
    LoadSettings(0, kBehindScriptFile);
    script_.UpdateScriptFileBox();
    LoadSettings(kBehindScriptFile, kBehindViewData);
    auto& lvwViewData = form_.Get<ui::ListView>("lvwViewData");
    SetExtendedStyle(lvwViewData, ui::kFullRowSelect, true);
    SetExtendedStyle(lvwViewData, ui::kGridLines, true);
    LoadSettings(kBehindViewData, kRemembered.size());
    tabMain_.Tab(kGeneralTab);
    loading_ = false;
    UpdateServerAvailability();
    DisableDTSOptions();
    UpdateTabStatus();
}

void frmMain::LookForDomain() {
    const platform::OpenedKey key =
        platform::OpenKey(location::kHkeyLocalMachine, location::kInstallationKey, platform::kKeyQueryValue);
    if (key.error != platform::registry_error::kSuccess) {
        form_.Get<ui::TextBox>("edtDomainName").Enabled(false);
        return;
    }
    platform::CloseKey(key.key);
    // Read, and not used any further: what the log tells of a failed read is all that comes of it.
    GetLocalSetting(location::kHkeyLocalMachine, location::kInstallationKey, location::kSqlDomainValue,
                    location::kNoDefault);
}

void frmMain::Unload() {
    const CWaitCursor wait;
    for (const ui::ControlName& name : kRemembered) {
        SaveControlSetting(*form_.Find(name.name, name.index));
    }
}

void frmMain::LoadSettings(std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
        LoadControlSetting(*form_.Find(kRemembered[i].name, kRemembered[i].index));
    }
}

void frmMain::LoadControlSetting(ui::Control& control) {
    const std::string text = platform::ReadUserSetting(kApplication, kSection, KeyOf(control), "");
    try {
        if (control.Kind() == ui::Kind::TextBox) {
            static_cast<ui::TextBox&>(control).Text(text);
        } else {
            static_cast<ui::ComboBox&>(control).Text(text);
        }
    } catch (const ui::Refusal&) {
        // A drop-down list has no items yet and takes no text: its entry is remembered in vain.
    }
}

void frmMain::SaveControlSetting(const ui::Control& control) {
    const std::string& text = control.Kind() == ui::Kind::TextBox
                                  ? static_cast<const ui::TextBox&>(control).Text()
                                  : static_cast<const ui::ComboBox&>(control).Text();
    platform::WriteUserSetting(kApplication, kSection, KeyOf(control), text);
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

bool frmMain::ServerASelected(int tab) const {
    return form_.Get<ui::OptionButton>(kServerOptions.at(static_cast<std::size_t>(tab)), 0).Value();
}

void frmMain::RefreshTab(int tab) {
    if (tab == kReplicationTab) {
        replication_.ShowSwitch();
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

} // namespace kv

// frmMain: enables the tabs, servers and packages that can be used, according to the fields of the General
// tab and the registry.
#include "ado/variant.h"
#include "base/error_log.h"
#include "base/failure.h"
#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "console/main_form.h"
#include "text/text.h"

namespace kv {
namespace {

namespace location = registry_locations;

// The Tag of a server's option button: whether the server can be used on the tab.
constexpr char kTrue[] = "True";
constexpr char kFalse[] = "False";

/// The first major version of SQL Server without DTS.
constexpr std::int16_t kFirstVersionWithoutDts = 12;

constexpr std::array kPackageControls = {
    "chkStandardSynchronize",   "chkBatchOverviewExport",       "chkBatchSummaryExport",
    "chkUpgradeDatabaseV1ToV2", "chkBatchOverviewRecalcExport", "chkBatchSummaryRecalcExport",
    "cmdGetInstalledPackages",
};

bool SqlServerInstalled() {
    return text::UpperCase(GetLocalSetting(location::kHkeyLocalMachine, location::kCustomFunctionsKey,
                                           location::kSqlServerInstalledValue, location::kNoDefault)) ==
           "TRUE";
}

} // namespace

void frmMain::UpdateTabStatus() {
    if (loading_) {
        return;
    }
    WithFailureHandler(
        [&] {
            // The controls of a hidden page must not take the focus.
            for (int page = 0; page < kMainTabs; ++page) {
                form_.Get<ui::Frame>("fraMainTab", page).Enabled(tabMain_.Tab() == page);
            }
        },
        [](const Failure&) { WriteErrorLog("frmMain::UpdateTabStatus"); });
}

void frmMain::UpdateServerAvailability() {
    if (loading_) {
        return;
    }
    const Availability availability = WorkOutAvailability({FieldsOf(0), FieldsOf(1)}, SqlServerInstalled);
    for (int tab = kScriptTab; tab < kMainTabs; ++tab) {
        const TabAvailability& row = availability.tabs.at(static_cast<std::size_t>(tab));
        tabMain_.TabEnabled(tab, row.enabled);
        for (int server = 0; server < 2; ++server) {
            const bool usable = row.servers.at(static_cast<std::size_t>(server));
            form_.Get<ui::OptionButton>(kServerOptions.at(static_cast<std::size_t>(tab)), server)
                .Tag(usable ? kTrue : kFalse);
        }
    }
    auto& box = form_.Get<ui::CheckBox>("chkCreateInstallSQLServerReplication");
    box.Enabled(availability.replication_scripts_enabled);
    if (availability.replication_scripts_cleared) {
        box.Value(0);
    }
}

void frmMain::UpdateServerOptions(int intTab) {
    if (loading_ || intTab < kScriptTab || intTab >= kMainTabs) {
        return;
    }
    const char* name = kServerOptions.at(static_cast<std::size_t>(intTab));
    auto& server_a = form_.Get<ui::OptionButton>(name, 0);
    auto& server_b = form_.Get<ui::OptionButton>(name, 1);
    const bool a = server_a.Tag() == kTrue;
    const bool b = server_b.Tag() == kTrue;
    if (!a && !b) {
        server_a.Value(false);
        server_b.Value(false);
    } else if (!a) {
        server_b.Value(true);
    } else if (!b) {
        server_a.Value(true);
    }
    SetServerOption(server_a, form_.Get<ui::TextBox>("edtServerName", 0).Text());
    SetServerOption(server_b, form_.Get<ui::TextBox>("edtServerName", 1).Text());
}

void frmMain::SetServerOption(ui::OptionButton& option, const std::string& strCaption) {
    const bool usable = option.Tag() == kTrue;
    option.Enabled(usable);
    option.Caption(usable ? strCaption : "N/A");
}

void frmMain::DisableDTSOptions() {
    const std::string version = GetLocalSetting(location::kHkeyLocalMachine, location::kCurrentVersionKey,
                                                location::kCurrentVersionValue, location::kNoDefault);
    if (version.empty()) {
        return;
    }
    const auto dot = version.find('.');
    if (dot == std::string::npos) {
        RaiseRunTimeFailure(run_time::kInvalidProcedureCall);
    }
    const bool has_dts = ado::Variant(version.substr(0, dot)).ToInt16() < kFirstVersionWithoutDts;
    for (const char* name : kPackageControls) {
        form_.Find(name)->Enabled(has_dts);
    }
}

} // namespace kv

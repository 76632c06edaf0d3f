// The handlers of the General tab.
#include "console/general_tab.h"

#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "console/dialogs.h"
#include "console/main_form.h"

namespace kv {
namespace {

namespace location = registry_locations;

struct LoginField {
    const char* box;   ///< the text box
    const char* value; ///< the registry value from which the button "Get ... Settings" fills it
};

constexpr std::array kLoginFields = {
    LoginField{"edtServerName", location::kServerNameValue},
    LoginField{"edtUserID", location::kUserIdValue},
    LoginField{"edtPassword", location::kPasswordValue},
};

/// Derives a server's replication path from its data path: "C:\SQL\Data" becomes "C$\SQL\ReplData". Only the
/// first ":" and the part after the last "\" change.
std::string DeriveReplicationPath(const std::string& data_path) {
    std::string path = data_path;
    if (const auto colon = path.find(':'); colon != std::string::npos) {
        path[colon] = '$';
    }
    if (const auto backslash = path.rfind('\\'); backslash != std::string::npos) {
        path.replace(backslash + 1, std::string::npos, "ReplData");
    }
    return path;
}

} // namespace

GeneralTab::GeneralTab(frmMain& main) : main_(main) {
    ui::Form& form = main.Form();
    form.Get<ui::CommandButton>("cmdGetLocalSettings").on_click = [this] { cmdGetLocalSettings_Click(); };
    form.Get<ui::CommandButton>("cmdGetRemoteSettings").on_click = [this] { cmdGetRemoteSettings_Click(); };
    const auto browse = [&form](ui::TextBox& box, const char* title) {
        return [&form, &box, title] { box.Text(BrowseForFolder(form, title, box.Text())); };
    };
    form.Get<ui::CommandButton>("cmdBrowseForScriptFolder").on_click =
        browse(Box("edtScriptFolder"), "Browse for script folder");
    for (const int index : {0, 1}) {
        form.Get<ui::CommandButton>("cmdBrowseForSQLDataPath", index).on_click =
            browse(Box("edtSQLDataPath", index), "Browse for SQL Data path");
        for (const LoginField& field : kLoginFields) {
            Box(field.box, index).on_change = [this] { main_.UpdateServerAvailability(); };
        }
        Box("edtSQLDataPath", index).on_change = [this, index] { edtSQLDataPath_Change(index); };
    }
}

ui::TextBox& GeneralTab::Box(const char* name, int index) const {
    return main_.Form().Get<ui::TextBox>(name, index);
}

void GeneralTab::cmdGetLocalSettings_Click() {
    for (const LoginField& field : kLoginFields) {
        Box(field.box, 0)
            .Text(GetLocalSetting(location::kHkeyLocalMachine, location::kLoginKey, field.value,
                                  location::kNoDefault));
    }
    SelectDataPath(0);
}

void GeneralTab::cmdGetRemoteSettings_Click() {
    const std::string node = GetLocalSetting(location::kHkeyCurrentUser, location::kRedundancyKey,
                                             location::kBackupNodeValue, location::kNoDefault);
    if (node.empty()) {
        ShowExclamation("Lotkeeper redundancy must be configured!");
        return;
    }
    for (const LoginField& field : kLoginFields) {
        Box(field.box, 1)
            .Text(GetRemoteSetting(node, location::kHkeyLocalMachine, location::kLoginKey, field.value,
                                   location::kNoDefault));
    }
    SelectDataPath(1);
}

void GeneralTab::SelectDataPath(int index) const {
    ui::TextBox& box = Box("edtSQLDataPath", index);
    box.SelStart(0);
    box.SelLength(box.Text().size());
    main_.Form().SetFocus(box);
}

void GeneralTab::edtSQLDataPath_Change(int Index) {
    Box("edtSQLUNCReplDataPath", Index).Text(DeriveReplicationPath(Box("edtSQLDataPath", Index).Text()));
    main_.UpdateServerAvailability();
}

} // namespace kv

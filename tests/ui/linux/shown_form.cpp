// Shows one of the console's forms until it is closed, for the tests that read it as assistive technology
// does (accessible_tree.py). Writes a line for each control on the terminal: tab (-1 outside the tabs), kind,
// identifier, caption, tool tip, separated by tabs. Later it writes a line for each text that is entered into
// the domain's name, the database of the Replication tab or the dialog's value, and for each click on "Create
// and Install script files".
//
//   shown_form main|grey|dialog
//
// "grey" is the main form with the Upgrade tab disabled until "Standard Synchronize" on the Script tab is
// clicked. "dialog" is the dialog above the main form.
#include <cstdio>
#include <string>

#include "console/form_designs.h"
#include "ui/toolkit.h"

namespace {

constexpr int kOutsideTabs = -1;

int TabOf(const ui::Control& control) {
    for (const ui::Control* part = &control; part->Parent() != nullptr; part = part->Parent()) {
        if (part->Parent()->Kind() == ui::Kind::TabControl) {
            return part->Index().value();
        }
    }
    return kOutsideTabs;
}

std::string KindOf(const ui::Control& control) {
    static constexpr const char* kKinds[] = {
        "form",          "frame",     "picture box", "label",     "text box",     "button",     "check box",
        "option button", "combo box", "list box",    "list view", "progress bar", "tab control"};
    const bool secret = (control.Design().traits & ui::kSecret) != 0;
    return secret ? "password" : kKinds[static_cast<int>(control.Kind())];
}

void Describe(const ui::Form& form) {
    for (const auto& control : form.Controls()) {
        std::printf("%d\t%s\t%s\t%s\t%s\n", TabOf(*control), KindOf(*control).c_str(), control->Name(),
                    control->Design().caption, control->Design().tool_tip);
    }
    std::fflush(stdout);
}

template <typename Box>
void ReportText(ui::Form& form, const char* name) {
    auto& box = form.Get<Box>(name);
    box.on_change = [&box, name] {
        std::printf("%s %s\n", name, box.Text().c_str());
        std::fflush(stdout);
    };
}

void ReportClick(ui::OptionButton& button) {
    button.on_click = [&button] {
        std::printf("%s clicked\n", button.Name());
        std::fflush(stdout);
    };
}

void CloseByButton(ui::Form& form) {
    form.Get<ui::CommandButton>("cmdClose").on_click = [&form] { form.Unload(); };
}

/// Sets the state that the tests expect.
void Fill(ui::Form& form) {
    form.Get<ui::TextBox>("edtUserID", 0).Text("a user");
    form.Get<ui::TextBox>("edtPassword", 0).Text("Geheim1");
    form.Get<ui::CheckBox>("chkStandardSynchronize").Value(1);
    form.Get<ui::CommandButton>("cmdRename").Enabled(false);
}

void DisableUpgradeTab(ui::Form& form) {
    auto& tabs = form.Get<ui::TabControl>("tabMain");
    tabs.TabEnabled(kv::kUpgradeTab, false);
    form.Get<ui::CheckBox>("chkStandardSynchronize").on_click = [&tabs] {
        tabs.TabEnabled(kv::kUpgradeTab, true);
    };
}

/// Shows the dialog until it is closed.
void ShowDialog(ui::Form& owner) {
    ui::Form dialog(kv::ProceduresFormDesign());
    ReportText<ui::TextBox>(dialog, "edtValue");
    CloseByButton(dialog);
    Describe(dialog);
    ui::ShowModally(dialog, owner);
}

} // namespace

int main(int argc, char** argv) {
    const std::string which = argc > 1 ? argv[1] : "main";
    ui::Form form(kv::MainFormDesign());
    const auto window = ui::MakeWindow(form);
    if (!window) {
        std::fputs("there is no screen\n", stderr);
        return 1;
    }
    Fill(form);
    if (which == "grey") {
        DisableUpgradeTab(form);
    }
    ReportText<ui::TextBox>(form, "edtDomainName");
    ReportText<ui::ComboBox>(form, "cboSQLReplicationDatabase");
    ReportClick(form.Get<ui::OptionButton>("optCreateInstallScriptFiles", 1));
    CloseByButton(form);
    window->Show();
    if (which == "dialog") {
        ShowDialog(form);
    } else {
        Describe(form);
    }
    window->RunUntilClosed();
    return 0;
}

// Shows one of the console's forms until it is closed, for accessible_form_test.py. Writes a line for each
// control on the terminal: tab (-1 outside the tabs), kind, identifier, caption, tool tip, separated by tabs.
//
//   shown_form main|dialog
#include <cstdio>
#include <string>

#include "console/main_form_design.h"
#include "console/procedures_form_design.h"
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

/// States that the test looks for.
void Fill(ui::Form& form) {
    if (form.Find("tabMain") == nullptr) {
        return;
    }
    form.Get<ui::TextBox>("edtUserID", 0).Text("a user");
    form.Get<ui::TextBox>("edtPassword", 0).Text("Geheim1");
    form.Get<ui::CheckBox>("chkStandardSynchronize").Value(1);
    form.Get<ui::CommandButton>("cmdRename").Enabled(false);
}

} // namespace

int main(int argc, char** argv) {
    const bool dialog = argc > 1 && std::string(argv[1]) == "dialog";
    ui::Form form(dialog ? kv::ProceduresFormDesign() : kv::MainFormDesign());
    const auto window = ui::MakeWindow(form);
    if (!window) {
        std::fputs("there is no screen\n", stderr);
        return 1;
    }
    Fill(form);
    window->Show();
    Describe(form);
    window->RunUntilClosed();
    return 0;
}

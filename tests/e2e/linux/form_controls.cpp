// Prints the controls of the console's forms in the order of their design, one on each line: form, name and
// index, kind, name and index of the parent control, caption. console_operator.py uses the list to find
// controls in the accessibility tree.
#include <cstdio>
#include <string>

#include "console/form_designs.h"

namespace {

const char* NameOf(ui::Kind kind) {
    switch (kind) {
    case ui::Kind::Form:
        return "form";
    case ui::Kind::Frame:
        return "frame";
    case ui::Kind::PictureBox:
        return "picture box";
    case ui::Kind::Label:
        return "label";
    case ui::Kind::TextBox:
        return "text box";
    case ui::Kind::CommandButton:
        return "command button";
    case ui::Kind::CheckBox:
        return "check box";
    case ui::Kind::OptionButton:
        return "option button";
    case ui::Kind::ComboBox:
        return "combo box";
    case ui::Kind::ListBox:
        return "list box";
    case ui::Kind::ListView:
        return "list view";
    case ui::Kind::ProgressBar:
        return "progress bar";
    case ui::Kind::TabControl:
        return "tab control";
    }
    return "";
}

std::string Identifier(const ui::ControlName& name) {
    return name.index == ui::kNoIndex ? name.name : std::string(name.name) + "." + std::to_string(name.index);
}

} // namespace

int main() {
    for (const ui::FormDesign* design : {&kv::MainFormDesign(), &kv::ProceduresFormDesign()}) {
        for (const ui::ControlDesign& control : design->controls) {
            std::printf("%s\t%s\t%s\t%s\t%s\n", design->name, Identifier(control.name).c_str(),
                        NameOf(control.kind), Identifier(control.parent).c_str(), control.caption);
        }
    }
    return 0;
}

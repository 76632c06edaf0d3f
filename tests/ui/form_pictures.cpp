// Writes pictures of the console's forms, of each tab at every size, for a developer to look at after a
// position or a text was changed. The scripts take-pictures run it.
//
//   form_pictures FOLDER [SIZE …]     SIZE is one of screen::Sizes, or 0 for that of the desktop; all sizes
//   if not given
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "console/form_designs.h"
#include "ui/screen.h"
#include "ui/toolkit.h"

namespace {

constexpr int kDesktop = 0;

void Fill(ui::ListView& list) {
    list.ExtendedStyle(ui::kGridLines | ui::kFullRowSelect);
    for (int column = 0; column < 5; ++column) {
        const std::string name = "Column" + std::to_string(column) + (column == 0 ? " *" : "");
        list.AddColumn(name, name);
    }
    for (int row = 0; row < 100; ++row) {
        list.AddRow("row_" + std::to_string(row), std::to_string(row));
        list.SetCell(row, 1, "a rather long text of row " + std::to_string(row));
        list.SetCell(row, 2, "(Null)");
    }
    for (int column = 0; column < 5; ++column) {
        list.AutoSizeColumn(column);
    }
}

void Fill(ui::ListBox& list) {
    for (int item = 1; item < 40; ++item) {
        list.AddItem("Table number " + std::to_string(item));
    }
    list.ListIndex(2);
}

/// Gives the control a text that may not fit: with descenders and umlauts, with an "&" in captions that are
/// data, and one that is too long for its place.
void Fill(ui::Control& control) {
    const bool is_data = (control.Design().traits & ui::kData) != 0;
    switch (control.Kind()) {
    case ui::Kind::TextBox:
        static_cast<ui::TextBox&>(control).Text("Text of " + std::string(control.Name()) +
                                                " gjpqy \xC4\xD6\xDC\xDF");
        break;
    case ui::Kind::ComboBox:
        static_cast<ui::ComboBox&>(control).AddItem("Batch");
        static_cast<ui::ComboBox&>(control).Text("Batch");
        break;
    case ui::Kind::Label:
        if (is_data) {
            static_cast<ui::Label&>(control).Caption("A status of 'R&D' gjpqy");
        }
        break;
    case ui::Kind::OptionButton:
        if (is_data && control.Index() == 1) {
            static_cast<ui::OptionButton&>(control).Caption("LONGNAMED-COMPUTER-17\\R&D_BATCH_INSTANCE");
        }
        break;
    case ui::Kind::CheckBox:
        control.Enabled(control.Design().caption[0] != '\0');
        break;
    case ui::Kind::ListBox:
        Fill(static_cast<ui::ListBox&>(control));
        break;
    case ui::Kind::ListView:
        Fill(static_cast<ui::ListView&>(control));
        break;
    default:
        break;
    }
}

bool Take(screen::Part window, const std::string& path) {
    int turns = 0;
    screen::WaitFor([&turns] { return ++turns > 150; }); // until the screen has drawn it
    return screen::TakePicture(window, path);
}

bool TakeAll(const ui::FormDesign& design, int size, const std::string& folder) {
    ui::Form form(design);
    const auto window = ui::MakeWindow(form);
    if (!window) {
        std::fputs("there is no screen\n", stderr);
        return false;
    }
    screen::Part top = screen::WindowOf(form);
    for (const auto& control : form.Controls()) {
        Fill(*control);
    }
    if (size != kDesktop) {
        screen::SetSize(top, size);
    }
    window->Show();
    screen::Activate(top);
    const std::string begin = folder + "/" + design.name + "-" + std::to_string(size) + "-";
    auto* tabs = static_cast<ui::TabControl*>(form.Find("tabMain"));
    if (tabs == nullptr) {
        return Take(top, begin + "0");
    }
    bool taken = true;
    for (int tab = 0; tab < tabs->Tabs(); ++tab) {
        tabs->TabEnabled(4, tab == 4); // so that most pictures show a disabled tab
        tabs->Tab(tab);
        taken = Take(top, begin + std::to_string(tab)) && taken;
    }
    return taken;
}

} // namespace

int main(int argc, char** argv) {
    const std::string folder = argc > 1 ? argv[1] : ".";
    std::vector<int> sizes;
    for (int argument = 2; argument < argc; ++argument) {
        sizes.push_back(std::atoi(argv[argument]));
    }
    bool taken = true;
    for (const int size : sizes.empty() ? screen::Sizes() : sizes) {
        for (const ui::FormDesign* design : {&kv::MainFormDesign(), &kv::ProceduresFormDesign()}) {
            taken = TakeAll(*design, size, folder) && taken;
        }
    }
    return taken ? 0 : 1;
}

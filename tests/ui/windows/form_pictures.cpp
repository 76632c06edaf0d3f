// Shows the console's forms, each tab, at several scales, and writes what the screen shows of them as
// bitmaps: for eyes, after a change of a place or a text. tests/ui/windows/take-pictures runs it.
//
//   form_pictures FOLDER [system]     with "system" at the scale of the desktop, and told of no other
#include <cstdio>
#include <string>
#include <vector>

#include "console/main_form_design.h"
#include "console/procedures_form_design.h"
#include "platform/windows/lean_windows.h"
#include "ui/toolkit.h"
#include "ui/windows/dialog_font.h"
#include "ui/windows/native_form.h"
#include "ui/windows/screen_input.h"

namespace {

constexpr UINT kDpiChanged = 0x02E0; // WM_DPICHANGED

void Scale(HWND window, int dpi) {
    RECT place{20, 40, 0, 0};
    ::SendMessageA(window, kDpiChanged, static_cast<WPARAM>(MAKELONG(dpi, dpi)),
                   reinterpret_cast<LPARAM>(&place));
}

bool Take(HWND window, const std::string& path) {
    ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_ERASE);
    int turns = 0;
    hands::WaitFor([&turns] { return ++turns > 150; }); // until the screen itself has drawn it
    return hands::TakePicture(window, path);
}

void Fill(ui::Form& form) {
    for (const auto& control : form.Controls()) {
        if (control->Kind() == ui::Kind::TextBox) {
            auto& box = static_cast<ui::TextBox&>(*control);
            box.Text("Text of " + std::string(control->Name()) + " gjpqy \xC4\xD6\xDC\xDF");
        } else if (control->Kind() == ui::Kind::ComboBox) {
            auto& box = static_cast<ui::ComboBox&>(*control);
            box.AddItem("Batch");
            box.Text("Batch");
        } else if (control->Kind() == ui::Kind::ListBox) {
            auto& list = static_cast<ui::ListBox&>(*control);
            for (int item = 1; item < 40; ++item) {
                list.AddItem("Table number " + std::to_string(item));
            }
            list.ListIndex(2);
        } else if (control->Kind() == ui::Kind::Label && (control->Design().traits & ui::kData) != 0) {
            static_cast<ui::Label&>(*control).Caption("A status of 'R&D' gjpqy");
        } else if (control->Kind() == ui::Kind::OptionButton && control->Index() == 1 &&
                   (control->Design().traits & ui::kData) != 0) {
            static_cast<ui::OptionButton&>(*control).Caption("LONGNAMED-COMPUTER-17\\R&D_BATCH_INSTANCE");
        } else if (control->Kind() == ui::Kind::CheckBox && control->Design().caption[0] == '\0') {
            control->Enabled(false);
        } else if (control->Kind() == ui::Kind::ListView) {
            auto& list = static_cast<ui::ListView&>(*control);
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
    }
}

/// At the scale of the desktop if `dpi` is that.
bool TakeAll(const ui::FormDesign& design, int dpi, const std::string& folder) {
    ui::Form form(design);
    const auto window = ui::MakeWindow(form);
    if (!window) {
        std::fputs("there is no screen\n", stderr);
        return false;
    }
    const HWND handle = ui::NativeForm::HandleOf(form);
    Fill(form);
    if (dpi != ui::SystemDpi()) {
        Scale(handle, dpi);
    }
    window->Show();
    hands::Activate(handle);
    bool taken = true;
    const std::string begin = folder + "\\" + design.name + "-" + std::to_string(dpi) + "-";
    ui::Control* tabs = form.Find("tabMain");
    if (tabs == nullptr) {
        return Take(handle, begin + "0.bmp");
    }
    for (int tab = 0; tab < static_cast<ui::TabControl*>(tabs)->Tabs(); ++tab) {
        static_cast<ui::TabControl*>(tabs)->TabEnabled(4, tab == 4);
        static_cast<ui::TabControl*>(tabs)->Tab(tab);
        taken = Take(handle, begin + std::to_string(tab) + ".bmp") && taken;
    }
    return taken;
}

} // namespace

int main(int argc, char** argv) {
    const std::string folder = argc > 1 ? argv[1] : ".";
    bool taken = true;
    std::vector<int> scales = {96, 120, 144};
    if (argc > 2 && std::string(argv[2]) == "system") {
        scales = {ui::SystemDpi()};
    }
    for (const int dpi : scales) {
        for (const ui::FormDesign* design : {&kv::MainFormDesign(), &kv::ProceduresFormDesign()}) {
            taken = TakeAll(*design, dpi, folder) && taken;
        }
    }
    return taken ? 0 : 1;
}

// Measures three things, each compared with a simpler program in the same run:
//  - the start of the console until its window is painted, with an empty window of Qt and with one that has a
//    line of text, for which Qt reads the fonts;
//  - filling a list with 32,766 rows of ten columns and sizing its columns, with a table of Qt;
//  - /help without a display, with the same program without the code that loads the Qt module.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <QTableWidget>

#include "console/form_designs.h"
#include "platform/files.h"
#include "platform/pending_events.h"
#include "support/temp_folder.h"
#include "ui/linux/measured_start.h"
#include "ui/toolkit.h"

namespace {

constexpr int kRows = 32766;
constexpr int kColumns = 10;
// How often each thing is measured.
constexpr int kFills = 5;
constexpr int kStarts = 15;
constexpr int kHelps = 60;

double Milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// Prints the fastest and the median times and their ratios. The fastest are printed because other work of
/// the machine can only make a run slower.
void Print(const char* what, std::vector<double> ours, const char* peer, std::vector<double> theirs) {
    std::sort(ours.begin(), ours.end());
    std::sort(theirs.begin(), theirs.end());
    const double median = ours[ours.size() / 2];
    const double their_median = theirs[theirs.size() / 2];
    std::printf("%s: fastest %.1f ms, median %.1f; %s: %.1f and %.1f; ratio %.2f and %.2f\n", what,
                ours.front(), median, peer, theirs.front(), their_median, ours.front() / theirs.front(),
                median / their_median);
}

std::string Beside(const std::string& program) {
    return platform::ExecutableFolder() + "/" + program;
}

void MeasureWindow() {
    screen::MeasuredStart measured;
    std::vector<double> ours;
    std::vector<double> empty;
    std::vector<double> text;
    for (int time = 0; time < kStarts; ++time) {
        ours.push_back(measured.UntilPainted(Beside("KVLSQLDbMgr")));
        empty.push_back(measured.UntilPainted(Beside("bare_window")));
        text.push_back(measured.UntilPainted(Beside("bare_window"), "a line of text"));
    }
    constexpr char kWhat[] = "start until the window is painted";
    Print(kWhat, ours, "an empty window of Qt", empty);
    Print(kWhat, ours, "a window of Qt with a line of text", text);
}

std::string CellText(int row, int column) {
    return "value " + std::to_string(row * kColumns + column);
}

void FillByModel(ui::ListView& list) {
    list.ClearRows();
    list.ClearColumns();
    for (int column = 0; column < kColumns; ++column) {
        list.AddColumn("Column" + std::to_string(column), "Column" + std::to_string(column));
    }
    for (int row = 0; row < kRows; ++row) {
        list.AddRow("row_" + std::to_string(row + 1), CellText(row, 0));
        for (int column = 1; column < kColumns; ++column) {
            list.SetCell(row, column, CellText(row, column));
        }
    }
    for (int column = 0; column < kColumns; ++column) {
        list.AutoSizeColumn(column);
    }
    list.Refresh();
    platform::RunPendingEvents();
}

void FillBare(QTableWidget& table) {
    table.clear();
    table.setRowCount(kRows);
    table.setColumnCount(kColumns);
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            auto item = std::make_unique<QTableWidgetItem>(QString::fromStdString(CellText(row, column)));
            table.setItem(row, column, item.release()); // the table owns it
        }
    }
    table.resizeColumnsToContents();
    table.repaint();
    platform::RunPendingEvents();
}

void MeasureList() {
    ui::Form form(kv::MainFormDesign());
    const auto window = ui::MakeWindow(form);
    if (!window) {
        throw std::runtime_error("there is no screen");
    }
    form.Get<ui::TabControl>("tabMain").Tab(kv::kViewDataTab);
    window->Show();
    QTableWidget bare;
    bare.resize(400, 380);
    bare.show();
    platform::RunPendingEvents();
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int time = 0; time < kFills; ++time) {
        ours.push_back(Milliseconds([&] { FillByModel(form.Get<ui::ListView>("lvwViewData")); }));
        theirs.push_back(Milliseconds([&] { FillBare(bare); }));
    }
    Print("32,766 rows of ten columns", ours, "a table of Qt", theirs);
}

/// Measures /help without a display: then it writes to the terminal.
void MeasureHelp() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        ::unsetenv(name);
    }
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int time = 0; time < kHelps; ++time) {
        ours.push_back(screen::UntilEnd(Beside("KVLSQLDbMgr"), "/help"));
        theirs.push_back(screen::UntilEnd(Beside("program_without_windows"), "/help"));
    }
    Print("/help", ours, "a build without windows", theirs);
}

} // namespace

int main() {
    try {
        const support::TempFolder settings; // instead of the settings of the user who runs this
        ::setenv("XDG_CONFIG_HOME", settings.Path().c_str(), 1);
        MeasureWindow(); // before this program has windows of its own
        MeasureList();
        MeasureHelp();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "window_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}

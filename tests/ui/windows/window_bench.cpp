// Two measurements under Wine, each compared with a simpler program in the same run: a list of 32,766 rows of
// ten columns, with the sizing of columns, against a list view that is filled by a loop; and the start of the
// program until its window is shown, against an empty window of a program that uses user32 alone, and against
// an empty window of this program, which has the toolkit's libraries.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "console/form_designs.h"
#include "ui/toolkit.h"
#include "ui/windows/bare_window.h"
#include "ui/windows/native_form.h"
#include "ui/windows/ui_automation.h"

#include <commctrl.h>

namespace {

constexpr int kRows = 32766;
constexpr int kColumns = 10;
constexpr char kEmptyClass[] = "KVEmptyWindow";
constexpr int kFills = 5;
constexpr int kStarts = 15;

double Milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// With the fastest: other work of the machine can only make a run slower.
void Print(const char* what, std::vector<double> ours, const char* peer, std::vector<double> theirs) {
    std::sort(ours.begin(), ours.end());
    std::sort(theirs.begin(), theirs.end());
    const double median = ours[ours.size() / 2];
    const double their_median = theirs[theirs.size() / 2];
    std::printf("%s: fastest %.0f ms, median %.0f; %s: %.0f and %.0f; ratio %.2f and %.2f\n", what,
                ours.front(), median, peer, theirs.front(), their_median, ours.front() / theirs.front(),
                median / their_median);
}

std::string CellText(int row, int column) {
    return "value " + std::to_string(row * kColumns + column);
}

void FillByModel(ui::ListView& list, HWND window) {
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
    ::UpdateWindow(window);
}

HWND MakeBareList() {
    const HWND frame = ::CreateWindowExA(0, "STATIC", "bare", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 640,
                                         480, nullptr, nullptr, nullptr, nullptr);
    return ::CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, 600, 400, frame,
                             nullptr, nullptr, nullptr);
}

void FillBare(HWND list) {
    ::SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    ::SendMessageA(list, LVM_DELETEALLITEMS, 0, 0);
    while (::SendMessageA(list, LVM_DELETECOLUMN, 0, 0) != 0) {
    }
    for (int index = 0; index < kColumns; ++index) {
        std::string text = "Column" + std::to_string(index);
        LVCOLUMNA column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.cx = 96;
        column.pszText = text.data();
        ::SendMessageA(list, LVM_INSERTCOLUMNA, static_cast<WPARAM>(index),
                       reinterpret_cast<LPARAM>(&column));
    }
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            std::string text = CellText(row, column);
            LVITEMA item{};
            item.mask = LVIF_TEXT;
            item.iItem = row;
            item.iSubItem = column;
            item.pszText = text.data();
            ::SendMessageA(list, column == 0 ? LVM_INSERTITEMA : LVM_SETITEMA, 0,
                           reinterpret_cast<LPARAM>(&item));
        }
    }
    for (int column = 0; column < kColumns; ++column) {
        ::SendMessageA(list, LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), LVSCW_AUTOSIZE_USEHEADER);
    }
    ::SendMessageA(list, WM_SETREDRAW, TRUE, 0);
    ::UpdateWindow(list);
}

void MeasureList() {
    ui::Form form(kv::MainFormDesign());
    const auto window = ui::MakeWindow(form);
    form.Get<ui::TabControl>("tabMain").Tab(kv::kViewDataTab);
    window->Show();
    auto& list = form.Get<ui::ListView>("lvwViewData");
    const HWND native = ui_automation::Child(ui::NativeForm::HandleOf(form), list.Id());
    const HWND bare = MakeBareList();
    ui_automation::WaitFor([] { return true; });
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int time = 0; time < kFills; ++time) {
        ours.push_back(Milliseconds([&] { FillByModel(list, native); }));
        theirs.push_back(Milliseconds([&] { FillBare(bare); }));
    }
    ::DestroyWindow(::GetParent(bare));
    Print("32,766 rows of ten columns", ours, "a bare loop", theirs);
}

std::string OwnPath() {
    std::string path(MAX_PATH, '\0');
    path.resize(::GetModuleFileNameA(nullptr, path.data(), MAX_PATH));
    return path;
}

/// A program that has been started, and is ended with this.
class Started {
  public:
    explicit Started(std::string command) {
        STARTUPINFOA start{};
        start.cb = sizeof start;
        if (::CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                             &process_) == 0) {
            throw std::runtime_error("cannot be started: " + command);
        }
    }
    Started(const Started&) = delete;
    Started& operator=(const Started&) = delete;
    ~Started() {
        ::TerminateProcess(process_.hProcess, 0);
        ::WaitForSingleObject(process_.hProcess, kEnd);
        ::CloseHandle(process_.hProcess);
        ::CloseHandle(process_.hThread);
    }

  private:
    static constexpr DWORD kEnd = 10000;
    PROCESS_INFORMATION process_{};
};

/// From the start of a program until it shows a window of that class. Throws if no such window comes:
/// the screen may show something else, such as a message about a missing library.
double StartOf(const std::string& command, const char* window_class) {
    constexpr std::chrono::seconds kLongest{20};
    std::optional<Started> started;
    bool shown = false;
    const double time = Milliseconds([&] {
        started.emplace(command);
        shown = ui_automation::WaitFor(
            [window_class] {
                const HWND window = ::FindWindowA(window_class, nullptr);
                return window != nullptr && ::IsWindowVisible(window) != 0;
            },
            kLongest);
    });
    if (!shown) {
        throw std::runtime_error("shows no window of the class " + std::string(window_class) + ": " +
                                 command);
    }
    return time;
}

void MeasureStart() {
    const std::string own = OwnPath();
    const std::string folder = own.substr(0, own.rfind('\\') + 1);
    std::vector<double> ours;
    std::vector<double> bare;
    std::vector<double> libraries;
    for (int time = 0; time < kStarts; ++time) {
        ours.push_back(StartOf("\"" + folder + "KVLSQLDbMgr.exe\"", "KVForm"));
        bare.push_back(StartOf("\"" + folder + "bare_window.exe\"", "KVBareWindow"));
        libraries.push_back(StartOf("\"" + own + "\" bare", kEmptyClass));
    }
    constexpr char kWhat[] = "start until the window stands";
    Print(kWhat, ours, "an empty window of user32 alone", bare);
    Print(kWhat, ours, "an empty window with the toolkit's libraries", libraries);
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::string(argv[1]) == "bare") {
        return ShowBareWindow(kEmptyClass);
    }
    try {
        MeasureList();
        MeasureStart();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "window_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}

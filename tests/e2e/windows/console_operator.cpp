// Operates the console under Wine: reads orders, one on each line, carries them out by mouse and keyboard,
// and answers each with one line: "= " and what the screen shows, or "! " and an error.
// linux/console_operator.py accepts the same orders on Linux. The tests (console_automation.py) give the
// orders and check the answers.
//
//   console_operator PROGRAM
#include <algorithm>
#include <cstdio>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "console/form_designs.h"
#include "ui/form.h"
#include "ui/windows/remote_controls.h"
#include "ui/windows/ui_automation.h"

#include <commctrl.h>

namespace {

using Words = std::vector<std::string>;

constexpr char kFormClass[] = "KVForm";
constexpr char kBoxClass[] = "#32770";
constexpr char kDropDownClass[] = "ComboLBox";
constexpr int kBoxTextId = 0xFFFF;
constexpr std::chrono::seconds kLongest{60};
constexpr std::chrono::seconds kMoment{5};

void Require(bool condition, const std::string& what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

Words Split(const std::string& line, char separator) {
    Words words;
    for (std::size_t begin = 0; begin <= line.size();) {
        const std::size_t end = std::min(line.find(separator, begin), line.size());
        words.push_back(line.substr(begin, end - begin));
        begin = end + 1;
    }
    return words;
}

/// The texts in one line: separated by tabs, special characters as escapes.
std::string Joined(const Words& texts) {
    static const std::map<char, std::string> escapes = {
        {'\n', "\\n"}, {'\r', "\\r"}, {'\t', "\\t"}, {'\\', "\\\\"}};
    std::string line;
    for (const std::string& text : texts) {
        line += line.empty() && &text == texts.data() ? "" : "\t";
        for (const char character : text) {
            const auto escape = escapes.find(character);
            line += escape == escapes.end() ? std::string(1, character) : escape->second;
        }
    }
    return line;
}

class Program {
  public:
    explicit Program(const std::string& path) {
        STARTUPINFOA start{};
        start.cb = sizeof start;
        std::string line = "\"" + path + "\"";
        Require(::CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                                 &process_) != 0,
                "the program does not start: " + path);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        ::TerminateProcess(process_.hProcess, 1); // it is still running only after a failure
        Ends();
        ::CloseHandle(process_.hProcess);
        ::CloseHandle(process_.hThread);
    }

    HANDLE Process() const { return process_.hProcess; }
    bool Ends() const {
        const std::chrono::milliseconds longest = kLongest;
        return ::WaitForSingleObject(process_.hProcess, static_cast<DWORD>(longest.count())) == WAIT_OBJECT_0;
    }
    /// Its topmost visible and enabled window of this class, or null.
    HWND Find(const char* window_class) const {
        Search search{window_class, process_.dwProcessId, nullptr};
        ::EnumWindows(TakeIfWanted, reinterpret_cast<LPARAM>(&search));
        return search.found;
    }
    HWND Await(const char* window_class, const std::string& what) const {
        HWND window = nullptr;
        Require(ui_automation::WaitFor(
                    [&] {
                        window = Find(window_class);
                        return window != nullptr;
                    },
                    kLongest),
                what + " does not appear");
        return window;
    }

  private:
    struct Search {
        const char* window_class;
        DWORD process;
        HWND found;
    };
    static BOOL CALLBACK TakeIfWanted(HWND window, LPARAM wanted) {
        auto& search = *reinterpret_cast<Search*>(wanted);
        DWORD owner = 0;
        ::GetWindowThreadProcessId(window, &owner);
        if (owner == search.process && ::IsWindowVisible(window) != 0 && ::IsWindowEnabled(window) != 0 &&
            ui_automation::ClassOf(window) == search.window_class) {
            search.found = window;
            return FALSE;
        }
        return TRUE;
    }
    PROCESS_INFORMATION process_{};
};

class Operator {
  public:
    explicit Operator(const std::string& path) : program_(path) { TakeForm({"main"}); }

    std::string Do(const std::string& line) {
        static const std::map<std::string, std::string (Operator::*)(const Words&)> orders = {
            {"form", &Operator::TakeForm},    {"tab", &Operator::Tab},         {"click", &Operator::Click},
            {"fill", &Operator::Fill},        {"choose", &Operator::Choose},   {"text", &Operator::Text},
            {"enabled", &Operator::Enabled},  {"checked", &Operator::Checked}, {"items", &Operator::Items},
            {"headers", &Operator::Headers},  {"rows", &Operator::Rows},       {"row", &Operator::Row},
            {"focus", &Operator::HasFocus},   {"box", &Operator::Box},         {"answer", &Operator::Answer},
            {"picture", &Operator::Picture},  {"caption", &Operator::Caption}, {"close", &Operator::Close},
            {"twice", &Operator::ClickTwice}, {"press", &Operator::Press},     {"type", &Operator::Type},
            {"folder", &Operator::Folder},    {"picker", &Operator::Picker},   {"pick", &Operator::Pick},
            {"end", &Operator::End},          {"shown", &Operator::Shown},     {"await", &Operator::Await}};
        Words words = Split(line, '\t');
        const auto order = orders.find(words.front());
        Require(order != orders.end(), "no such order: " + line);
        words.erase(words.begin());
        return (this->*order->second)(words);
    }

  private:
    /// Null if the control does not exist yet: a page's controls are created when its tab is first shown.
    HWND Look(const std::string& name) const {
        const std::size_t dot = name.find('.');
        const int index = dot == std::string::npos ? ui::kNoIndex : std::stoi(name.substr(dot + 1));
        const ui::Control* control = tree_->Find(name.substr(0, dot), index);
        Require(control != nullptr, "no such control: " + name);
        return ui_automation::Child(window_, control->Id());
    }
    HWND Native(const std::string& name) const {
        const HWND native = Look(name);
        Require(native != nullptr, "has not been shown yet: " + name);
        return native;
    }

    /// Waits until the form, "main" or "dialog", is in front; the next orders apply to it.
    std::string TakeForm(const Words& words) {
        tree_ = words.at(0) == "dialog" ? &dialog_ : &main_;
        const bool wants_dialog = tree_ == &dialog_;
        Require(ui_automation::WaitFor(
                    [&] {
                        // Do not send messages here, and not often: when its text was read every
                        // millisecond, the dialog stayed hidden in three of three runs.
                        ::Sleep(50);
                        window_ = program_.Find(kFormClass);
                        return window_ != nullptr &&
                               (ui_automation::Caption(window_).rfind("Run ", 0) == 0) == wants_dialog;
                    },
                    kLongest) &&
                    ui_automation::Activate(window_),
                "the form does not come to the front: " + words.at(0) + ", in front is \"" +
                    ui_automation::Caption(::GetForegroundWindow()) + "\"");
        return ui_automation::Caption(window_);
    }
    std::string Caption(const Words& /*none*/) { return ui_automation::Text(window_); }

    std::string Tab(const Words& words) {
        const int tab = std::stoi(words.at(0));
        const HWND tabs = Native("tabMain");
        const RECT place = remote_controls::TabPlace(program_.Process(), tabs, tab);
        const auto click = [&] {
            remote_controls::ClickAt(tabs, (place.left + place.right) / 2, (place.top + place.bottom) / 2);
        };
        const auto open = [&] {
            return ::SendMessageA(tabs, TCM_GETCURSEL, 0, 0) == tab &&
                   Shown({"fraMainTab." + words.at(0)}) == "yes";
        };
        RequireAfter(click, open, "the tab does not open: " + words.at(0));
        Settle(tabs);
        return "";
    }

    /// Clicks until the condition holds. Only for a click that may be done twice.
    static void RequireAfter(const std::function<void()>& click, const std::function<bool()>& condition,
                             const std::string& what) {
        const auto end = std::chrono::steady_clock::now() + kLongest;
        do {
            Require(std::chrono::steady_clock::now() < end, what);
            click();
        } while (!ui_automation::WaitFor(condition, kMoment));
    }

    /// Waits until the program has filled the lists of a new tab: until then it answers no message.
    static void Settle(HWND window) {
        constexpr int kAnswers = 4;
        for (int answer = 0; answer < kAnswers; ++answer) {
            ::Sleep(30);
            ::SendMessageA(window, WM_NULL, 0, 0);
        }
    }

    /// A button and the milliseconds between two clicks. Answers with the milliseconds that it took.
    std::string ClickTwice(const Words& words) {
        const std::chrono::milliseconds between(std::stoi(words.at(1)));
        return std::to_string(remote_controls::ClickTwice(Native(words.at(0)), between).count());
    }
    std::string Click(const Words& words) {
        const HWND native = Native(words.at(0));
        Require(ui_automation::WaitFor([native] { return ::IsWindowEnabled(native) != 0; }, kLongest),
                "cannot be used: " + words.at(0));
        remote_controls::ClickButton(native);
        return "";
    }

    std::string Fill(const Words& words) {
        remote_controls::Fill(Native(words.at(0)), words.at(1));
        return "";
    }

    /// Repeats the choice until it succeeds: the list closes if the program fills it again meanwhile.
    std::string Choose(const Words& words) {
        const HWND native = Native(words.at(0));
        const auto end = std::chrono::steady_clock::now() + kLongest;
        while (!TryToChoose(native, words.at(1))) {
            Require(std::chrono::steady_clock::now() < end,
                    words.at(1) + " cannot be chosen in " + words.at(0));
        }
        return "";
    }
    bool TryToChoose(HWND native, const std::string& text) const {
        const bool is_combo = ui_automation::ClassOf(native) == "ComboBox";
        const UINT find = is_combo ? UINT{CB_FINDSTRINGEXACT} : UINT{LB_FINDSTRINGEXACT};
        LRESULT item = -1;
        if (!ui_automation::WaitFor(
                [&] {
                    item = ::SendMessageA(native, find, static_cast<WPARAM>(-1),
                                          reinterpret_cast<LPARAM>(text.c_str()));
                    return item >= 0 && ::IsWindowEnabled(native) != 0;
                },
                kMoment)) {
            return false;
        }
        HWND list = native;
        if (is_combo) {
            list = OpenList(native);
        }
        if (list == nullptr || !ClickItem(list, item)) {
            return false;
        }
        const UINT ask = is_combo ? UINT{CB_GETCURSEL} : UINT{LB_GETCURSEL};
        return ui_automation::WaitFor(
            [&] {
                return ::SendMessageA(native, ask, 0, 0) == item &&
                       (!is_combo || (::IsWindowVisible(list) == 0 && ui_automation::Text(native) == text));
            },
            kMoment);
    }
    /// Null if it does not open.
    HWND OpenList(HWND combo) const {
        HWND list = program_.Find(kDropDownClass);
        if (list == nullptr) {
            RECT client{};
            ::GetClientRect(combo, &client);
            remote_controls::ClickAt(combo, client.right - 8, client.bottom / 2);
            ui_automation::WaitFor(
                [&] {
                    list = program_.Find(kDropDownClass);
                    return list != nullptr;
                },
                kMoment);
        }
        return list;
    }
    /// False if the item is not visible.
    static bool ClickItem(HWND list, LRESULT item) {
        RECT place{};
        RECT client{};
        ::GetClientRect(list, &client);
        ::SendMessageA(list, LB_GETITEMRECT, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&place));
        if (place.top < 0 || place.bottom > client.bottom || place.bottom <= place.top) {
            return false;
        }
        remote_controls::ClickAt(list, (place.left + place.right) / 2, (place.top + place.bottom) / 2);
        return true;
    }

    std::string Text(const Words& words) { return Joined({ui_automation::Text(Native(words.at(0)))}); }
    std::string Shown(const Words& words) {
        const HWND native = Look(words.at(0));
        return native != nullptr && ::IsWindowVisible(native) != 0 ? "yes" : "no";
    }
    /// Waits for the caption of a label that a running command changes.
    std::string Await(const Words& words) {
        const HWND label = Native(words.at(0));
        Require(
            ui_automation::WaitFor([&] { return ui_automation::Caption(label) == words.at(1); }, kLongest),
            "does not become " + words.at(1) + ": " + words.at(0));
        return "";
    }
    std::string Enabled(const Words& words) {
        return ::IsWindowEnabled(Native(words.at(0))) != 0 ? "yes" : "no";
    }
    std::string Checked(const Words& words) {
        return ::SendMessageA(Native(words.at(0)), BM_GETCHECK, 0, 0) == BST_CHECKED ? "yes" : "no";
    }
    std::string HasFocus(const Words& words) {
        return ui_automation::FocusIn(window_) == Native(words.at(0)) ? "yes" : "no";
    }

    std::string Items(const Words& words) {
        const HWND native = Native(words.at(0));
        const bool is_combo = ui_automation::ClassOf(native) == "ComboBox";
        const LRESULT count = ::SendMessageA(native, is_combo ? UINT{CB_GETCOUNT} : UINT{LB_GETCOUNT}, 0, 0);
        Words texts;
        for (LRESULT i = 0; i < count; ++i) {
            // For a list of another process, Wine returns 16-bit text even if 8-bit text is requested.
            wchar_t text[260] = L"";
            ::SendMessageW(native, is_combo ? UINT{CB_GETLBTEXT} : UINT{LB_GETTEXT}, static_cast<WPARAM>(i),
                           reinterpret_cast<LPARAM>(text));
            char plain[260] = "";
            ::WideCharToMultiByte(1252, 0, text, -1, plain, sizeof plain, nullptr, nullptr);
            texts.emplace_back(plain);
        }
        return Joined(texts);
    }

    std::string Headers(const Words& words) {
        return Joined(remote_controls::Headers(program_.Process(), Native(words.at(0))));
    }
    std::string Rows(const Words& words) {
        return std::to_string(::SendMessageA(Native(words.at(0)), LVM_GETITEMCOUNT, 0, 0));
    }
    std::string Row(const Words& words) {
        const HWND list = Native(words.at(0));
        const auto columns = static_cast<int>(remote_controls::Headers(program_.Process(), list).size());
        return Joined(remote_controls::Row(program_.Process(), list, std::stoi(words.at(1)), columns));
    }

    /// Waits for a message box; answers with its title and its text.
    std::string Box(const Words& /*none*/) {
        const HWND box = program_.Await(kBoxClass, "a message box");
        return Joined({ui_automation::Text(box), ui_automation::Text(ui_automation::Child(box, kBoxTextId))});
    }
    std::string Answer(const Words& /*none*/) {
        const HWND box = program_.Await(kBoxClass, "a message box");
        Require(remote_controls::PressUntil(
                    box, [box] { return ::IsWindow(box) == 0; }, VK_RETURN),
                "the message box does not close");
        return "";
    }

    /// Takes a picture of the message box if there is one, else of the form.
    std::string Picture(const Words& words) {
        ::SetCursorPos(0, 0); // there the pointer shows no tool tip
        Require(ui_automation::TakePicture(Front(), words.at(0)), "no picture can be taken");
        return "";
    }

    /// The dialog or message box if there is one, else the form.
    HWND Front() const {
        const HWND box = program_.Find(kBoxClass);
        return box != nullptr ? box : window_;
    }
    /// Presses keys together, for example "Control+Shift+Tab".
    std::string Press(const Words& words) {
        static const std::map<std::string, WORD> keys = {
            {"End", VK_END},       {"Alt", VK_MENU}, {"Control", VK_CONTROL}, {"Shift", VK_SHIFT},
            {"Escape", VK_ESCAPE}, {"F4", VK_F4},    {"Tab", VK_TAB}};
        Words names = Split(words.at(0), '+');
        const WORD key = keys.at(names.back());
        names.pop_back();
        std::vector<WORD> held;
        for (const std::string& name : names) {
            held.push_back(keys.at(name));
        }
        remote_controls::Press(Front(), key, held);
        return "";
    }
    /// Types into the control that has the focus.
    std::string Type(const Words& words) {
        remote_controls::Type(Front(), words.at(0));
        return "";
    }

    /// The folder that the folder dialog shows.
    std::string Folder(const Words& /*none*/) {
        constexpr int kTreeId = 0x3741;
        const HWND tree = ui_automation::Child(program_.Await(kBoxClass, "the dialog for a folder"), kTreeId);
        return remote_controls::SelectedInTree(program_.Process(), tree);
    }
    /// Waits for a dialog for a folder or a file.
    std::string Picker(const Words& /*none*/) {
        Require(ui_automation::Activate(program_.Await(kBoxClass, "a dialog for a folder or a file")),
                "the dialog does not come to the front");
        return "";
    }
    /// Accepts the choice in a dialog for a folder or a file.
    std::string Pick(const Words& /*none*/) {
        const HWND dialog = program_.Await(kBoxClass, "a dialog to choose in");
        remote_controls::ClickButton(::GetDlgItem(dialog, IDOK));
        Require(ui_automation::WaitFor([dialog] { return ::IsWindow(dialog) == 0; }, kLongest),
                "the dialog does not close");
        return "";
    }

    std::string Close(const Words& words) {
        remote_controls::ClickButton(Native("cmdClose"));
        return End(words);
    }
    std::string End(const Words& /*none*/) {
        Require(program_.Ends(), "the program does not end");
        return "";
    }

    Program program_;
    ui::Form main_{kv::MainFormDesign()};
    ui::Form dialog_{kv::ProceduresFormDesign()};
    const ui::Form* tree_ = nullptr;
    HWND window_ = nullptr;
};

void Answer(const std::function<std::string()>& order) {
    std::string line;
    try {
        line = "= " + order();
    } catch (const std::exception& error) {
        line = std::string("! ") + error.what();
    }
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::puts("usage: console_operator PROGRAM");
        return 2;
    }
    std::unique_ptr<Operator> worker;
    Answer([&] {
        worker = std::make_unique<Operator>(argv[1]);
        return std::string();
    });
    for (std::string line; worker && std::getline(std::cin, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        Answer([&] { return worker->Do(line); });
    }
    return 0;
}

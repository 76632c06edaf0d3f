// Implements platform/message_box.h, status_window.h and pending_events.h.
#include "fakes/fake_screen.h"

#include <cstdio>
#include <cstdlib>

#include "platform/message_box.h"
#include "platform/pending_events.h"
#include "platform/status_window.h"

namespace fakes {
namespace {
FakeScreen* current = nullptr;
} // namespace

FakeScreen::FakeScreen() {
    current = this;
}

FakeScreen::~FakeScreen() {
    current = nullptr;
}

FakeScreen& FakeScreen::Current() {
    if (current == nullptr) {
        std::fputs("a service of the screen was called, and the test has no FakeScreen\n", stderr);
        std::abort();
    }
    return *current;
}

int FakeScreen::Count(const std::string& beginning) const {
    return static_cast<int>(After(beginning).size());
}

std::vector<std::string> FakeScreen::After(const std::string& beginning) const {
    std::vector<std::string> found;
    for (const std::string& call : calls) {
        if (call.compare(0, beginning.size(), beginning) == 0) {
            found.push_back(call.substr(beginning.size()));
        }
    }
    return found;
}

} // namespace fakes

namespace platform {
namespace {

void Record(const std::string& call) {
    fakes::FakeScreen::Current().calls.push_back(call);
}

std::string Number(float value) {
    return std::to_string(static_cast<int>(value));
}

class RecordedStatusWindow : public StatusWindow {
  public:
    explicit RecordedStatusWindow(const StatusWindowLayout& layout) {
        Record("window made " + layout.caption);
        fakes::FakeScreen::Current().status_layout = layout;
    }
    RecordedStatusWindow(const RecordedStatusWindow&) = delete;
    RecordedStatusWindow& operator=(const RecordedStatusWindow&) = delete;
    ~RecordedStatusWindow() override { Record("window gone"); }
    void SetBar(float min, float max, float value) override {
        Record("bar " + Number(min) + " " + Number(max) + " " + Number(value));
    }
    void SetLabel(const std::string& text) override { Record("label " + text); }
    void Show() override { Record("show"); }
};

} // namespace

std::unique_ptr<StatusWindow> MakeStatusWindow(const StatusWindowLayout& layout) {
    return std::make_unique<RecordedStatusWindow>(layout);
}

void ShowMessageBox(const std::string& text, MessageIcon icon, const std::string& title) {
    const char* name = icon == MessageIcon::None          ? "none"
                       : icon == MessageIcon::Exclamation ? "exclamation"
                                                          : "critical";
    Record(std::string("box [") + name + "] " + title + ": " + text);
    if (fakes::FakeScreen::Current().on_box) {
        fakes::FakeScreen::Current().on_box();
    }
}

void RunPendingEvents() {
    Record("events");
}

std::int16_t MousePointer() {
    return fakes::FakeScreen::Current().pointer;
}

void SetMousePointer(std::int16_t pointer) {
    fakes::FakeScreen::Current().pointer = pointer;
    Record("pointer " + std::to_string(pointer));
}

} // namespace platform

// Implements ui/toolkit.h.
#include "fakes/fake_toolkit.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "fakes/fake_screen.h"

namespace fakes {
namespace {
FakeToolkit* current = nullptr;
} // namespace

FakeToolkit::FakeToolkit() {
    current = this;
}

FakeToolkit::~FakeToolkit() {
    current = nullptr;
}

FakeToolkit& FakeToolkit::Current() {
    if (current == nullptr) {
        std::fputs("the toolkit was called, and the test has no FakeToolkit\n", stderr);
        std::abort();
    }
    return *current;
}

} // namespace fakes

namespace ui {
namespace {

using fakes::FakeToolkit;

void Record(const std::string& call) {
    fakes::FakeScreen::Current().calls.push_back(call);
}

class RecordedWindow : public Window {
  public:
    explicit RecordedWindow(const Form& form) : name_(form.Design().name) { Record("make " + name_); }
    void Show() override { Record("show " + name_); }
    void RunUntilClosed() override { Record("run " + name_); }

  private:
    std::string name_;
};

std::optional<std::string> Pick(const std::string& call) {
    Record(call);
    if (FakeToolkit::Current().pickers_fail) {
        throw std::runtime_error("the picker failed");
    }
    return FakeToolkit::Current().picked;
}

} // namespace

std::unique_ptr<Window> MakeWindow(Form& form) {
    return FakeToolkit::Current().has_windows ? std::make_unique<RecordedWindow>(form) : nullptr;
}

void ShowModally(Form& form, Form& owner) {
    Record(std::string("modal ") + form.Design().name + " over " + owner.Design().name);
    if (FakeToolkit::Current().on_modal) {
        FakeToolkit::Current().on_modal(form);
    }
}

void Wait(std::chrono::milliseconds time) {
    Record("wait " + std::to_string(time.count()));
    if (FakeToolkit::Current().on_wait) {
        FakeToolkit::Current().on_wait();
    }
}

std::optional<std::string> PickFolder(const Form& /*owner*/, const std::string& title,
                                      const std::string& start_folder) {
    return Pick("folder [" + start_folder + "] " + title);
}

std::optional<std::string> PickFile(const Form& /*owner*/, const std::string& title,
                                    const std::string& filter, const std::string& start_folder) {
    return Pick("file [" + start_folder + "] " + title + " " + filter);
}

} // namespace ui

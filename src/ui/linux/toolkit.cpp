// This system has no toolkit yet: no window can be shown, which is what every function here answers.
#include "ui/toolkit.h"

#include <thread>

namespace ui {

std::unique_ptr<Window> MakeWindow(Form& /*form*/) {
    return nullptr;
}

void ShowModally(Form& /*form*/, Form& /*owner*/) {}

void Wait(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
}

std::optional<std::string> PickFolder(const Form& /*owner*/, const std::string& /*title*/,
                                      const std::string& /*start_folder*/) {
    return std::nullopt;
}

std::optional<std::string> PickFile(const Form& /*owner*/, const std::string& /*title*/,
                                    const std::string& /*filter*/, const std::string& /*start_folder*/) {
    return std::nullopt;
}

} // namespace ui

// The console's refusals: a box with the exclamation icon, one OK button and the default title.
#pragma once

#include <string>

#include "platform/files.h"
#include "platform/message_box.h"

namespace kv {

inline void ShowExclamation(const std::string& text) {
    platform::ShowMessageBox(text, platform::MessageIcon::Exclamation, platform::ExecutableName());
}

} // namespace kv

// The pickers swallow failures: the field then keeps its value or becomes empty.
#include "console/dialogs.h"

#include "base/failure.h"
#include "platform/files.h"
#include "platform/message_box.h"
#include "ui/toolkit.h"

namespace kv {

void ShowExclamation(const std::string& text) {
    platform::ShowMessageBox(text, platform::MessageIcon::Exclamation, platform::ExecutableName());
}

std::string BrowseForFolder(const ui::Form& owner, const std::string& strTitle,
                            const std::string& strStartFolder) {
    std::string result = strStartFolder;
    WithFailureHandler([&] { result = ui::PickFolder(owner, strTitle, strStartFolder).value_or(result); },
                       [](const Failure&) {});
    return result;
}

std::string BrowseForFile(const std::string& strTitle, const std::string& strFilter, const ui::Form& owner,
                          const std::string& strStartFolder) {
    std::string result;
    WithFailureHandler(
        [&] { result = ui::PickFile(owner, strTitle, strFilter, strStartFolder).value_or(""); },
        [](const Failure&) {});
    return result;
}

} // namespace kv

#include "console/folder_browser.h"

#include "base/failure.h"
#include "ui/toolkit.h"

namespace kv {

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

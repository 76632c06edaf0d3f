// modFolderBrowser: the folder and file pickers, with what a cancelled one gives.
#pragma once

#include <string>

#include "ui/form.h"

namespace kv {

/// The chosen folder; `strStartFolder` if the dialog is cancelled or fails, or if what is chosen is no place
/// in the file system.
std::string BrowseForFolder(const ui::Form& owner, const std::string& strTitle,
                            const std::string& strStartFolder);

/// The full path of the chosen file; empty if the dialog is cancelled or fails.
std::string BrowseForFile(const std::string& strTitle, const std::string& strFilter, const ui::Form& owner,
                          const std::string& strStartFolder);

} // namespace kv

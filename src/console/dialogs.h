// The small dialogs that the tabs show: a refusal, and the folder and file pickers of modFolderBrowser.
#pragma once

#include <string>

#include "ui/form.h"

namespace kv {

/// Refuses a command: a box with the exclamation icon, one OK button and the default title.
void ShowExclamation(const std::string& text);

/// Returns the chosen folder, or `strStartFolder` if the dialog is cancelled, fails, or returns something
/// that is not a place in the file system.
std::string BrowseForFolder(const ui::Form& owner, const std::string& strTitle,
                            const std::string& strStartFolder);

/// Returns the full path of the chosen file; empty if the dialog is cancelled or fails.
std::string BrowseForFile(const std::string& strTitle, const std::string& strFilter, const ui::Form& owner,
                          const std::string& strStartFolder);

} // namespace kv

// The small dialogs that the tabs show: a message box that refuses a command, and the folder and file
// pickers.
#pragma once

#include <string>

#include "ui/form.h"

namespace kv {

/// Shows why a command is refused: a box with the exclamation icon, one OK button and the executable's name
/// as its title. Returns when the operator closes it.
void ShowExclamation(const std::string& text);

/// Returns the chosen folder, or `strStartFolder` if the dialog is cancelled, fails, or returns something
/// that is not a place in the file system.
std::string BrowseForFolder(const ui::Form& owner, const std::string& strTitle,
                            const std::string& strStartFolder);

/// Returns the full path of the chosen file; empty if the dialog is cancelled or fails. `strFilter` is that
/// of ui::PickFile.
std::string BrowseForFile(const std::string& strTitle, const std::string& strFilter, const ui::Form& owner,
                          const std::string& strStartFolder);

} // namespace kv

// The system's dialogs for choosing a folder and a file.
#pragma once

#include <optional>
#include <string>

#include "platform/windows/lean_windows.h"

namespace ui {

/// Returns the chosen folder, or nothing if the dialog is cancelled or the choice is not in the file system.
/// The dialog's tree opens at `start_folder`, or at its top if `start_folder` is empty.
std::optional<std::string> BrowseForFolder(HWND owner, const std::string& title,
                                           const std::string& start_folder);

/// Returns the whole path of an existing file, or nothing if the dialog is cancelled. `filter` holds pairs of
/// a text and a pattern, all separated by "|": "Script Files (*.sql)|*.sql". The system's dialog may change
/// the process's current folder.
std::optional<std::string> BrowseForFile(const std::string& title, const std::string& filter, HWND owner,
                                         const std::string& start_folder);

} // namespace ui

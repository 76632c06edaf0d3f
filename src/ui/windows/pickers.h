// The system's dialogs for choosing a folder and a file.
#pragma once

#include <optional>
#include <string>

#include "platform/windows/lean_windows.h"

namespace ui {

/// The chosen folder; nothing if the dialog is cancelled or the choice is not in the file system. The tree
/// opens at `start_folder`, at its top if that is empty.
std::optional<std::string> BrowseForFolder(HWND owner, const std::string& title,
                                           const std::string& start_folder);

/// The whole path of an existing file; nothing if the dialog is cancelled. `filter` holds pairs of
/// a text and a pattern, all separated by "|". This call may change the current folder, as the system's
/// dialog does.
std::optional<std::string> BrowseForFile(const std::string& title, const std::string& filter, HWND owner,
                                         const std::string& start_folder);

} // namespace ui

// The system's dialogs for choosing a folder and a file.
#pragma once

#include <string>

#include "platform/windows/lean_windows.h"

namespace ui {

/// The chosen folder; `start_folder`, where the tree opens, if the dialog is cancelled or the choice is no file
/// system path. An empty `start_folder` opens the tree at its top.
std::string BrowseForFolder(HWND owner, const std::string& title, const std::string& start_folder);

/// The whole path of the chosen file, which exists; empty if the dialog is cancelled. `filter` holds pairs of a
/// text and a pattern, all separated by "|". This call may change the current folder, as the system's dialog does.
std::string BrowseForFile(const std::string& title, const std::string& filter, HWND owner,
                          const std::string& start_folder);

} // namespace ui

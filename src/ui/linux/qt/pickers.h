// The desktop's dialogs for choosing a folder and a file.
#pragma once

#include <optional>
#include <string>

#include <QWidget>

namespace ui {

/// Returns the chosen folder, or nothing if the dialog is cancelled. The dialog opens at `start_folder`, or
/// at the current folder if `start_folder` is empty.
std::optional<std::string> BrowseForFolder(QWidget* owner, const std::string& title,
                                           const std::string& start_folder);

/// Returns the whole path of an existing file, or nothing if the dialog is cancelled. `filter` holds pairs of
/// a text and a pattern, all separated by "|": "Script Files (*.sql)|*.sql".
std::optional<std::string> BrowseForFile(QWidget* owner, const std::string& title, const std::string& filter,
                                         const std::string& start_folder);

} // namespace ui

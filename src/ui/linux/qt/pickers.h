// The desktop's dialogs for choosing a folder and a file.
#pragma once

#include <optional>
#include <string>

#include <QWidget>

namespace ui {

/// The chosen folder; nothing if the dialog is cancelled. The dialog opens at `start_folder`, at the current
/// folder if that is empty.
std::optional<std::string> BrowseForFolder(QWidget* owner, const std::string& title,
                                           const std::string& start_folder);

/// The whole path of an existing file; nothing if the dialog is cancelled. `filter` holds pairs of
/// a text and a pattern, all separated by "|".
std::optional<std::string> BrowseForFile(QWidget* owner, const std::string& title, const std::string& filter,
                                         const std::string& start_folder);

} // namespace ui

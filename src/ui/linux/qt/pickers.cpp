// Opens Qt's dialogs and converts the program's paths and filters for them.
#include "ui/linux/qt/pickers.h"

#include <QFileDialog>

#include "platform/system_text.h"
#include "ui/linux/qt/text.h"

namespace ui {
namespace {

/// The program's paths may have "/" or "\", and escapes (text/escaped.h) for characters that its code page
/// lacks.
QString PathToQt(const std::string& path) {
    return QString::fromUtf8(platform::ToSystemText(path)).replace('\\', '/');
}

std::optional<std::string> PathFromQt(const QString& path) {
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return platform::FromSystemText(path.toStdString());
}

/// "Script Files (*.sql)|*.sql" becomes "Script Files (*.sql)": Qt reads the pattern from the parentheses in
/// the name. A name without the pattern gets it.
QString FilterToQt(const std::string& filter) {
    const QStringList parts = ToQt(filter).split('|');
    QStringList filters;
    for (qsizetype part = 0; part + 1 < parts.size(); part += 2) {
        const QString pattern = "(" + QString(parts[part + 1]).replace(';', ' ') + ")";
        filters << (parts[part].endsWith(pattern) ? parts[part] : parts[part] + " " + pattern);
    }
    return filters.join(";;");
}

} // namespace

std::optional<std::string> BrowseForFolder(QWidget* owner, const std::string& title,
                                           const std::string& start_folder) {
    return PathFromQt(QFileDialog::getExistingDirectory(owner, ToQt(title), PathToQt(start_folder)));
}

std::optional<std::string> BrowseForFile(QWidget* owner, const std::string& title, const std::string& filter,
                                         const std::string& start_folder) {
    return PathFromQt(
        QFileDialog::getOpenFileName(owner, ToQt(title), PathToQt(start_folder), FilterToQt(filter)));
}

} // namespace ui

// Converts between the program's text (code page 1252) and Qt's.
#pragma once

#include <string>
#include <string_view>

#include <QString>

#include "text/code_page.h"

namespace ui {

inline QString ToQt(std::string_view text) {
    return QString::fromStdU16String(text::Widen(text));
}

/// A caption as it is painted: "&&" becomes "&", and a single "&", which marks a mnemonic, is left out.
inline QString WithoutMnemonic(std::string_view caption) {
    QString text = ToQt(caption);
    text.replace("&&", QChar(1)).remove('&').replace(QChar(1), '&');
    return text;
}

/// A character that the code page lacks becomes "?", as in a text box on Windows.
inline std::string FromQt(const QString& text) {
    return text::Narrow(text.toStdU16String());
}

} // namespace ui

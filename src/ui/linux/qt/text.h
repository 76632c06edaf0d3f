// The program's 8-bit text to and from Qt's.
#pragma once

#include <string>
#include <string_view>

#include <QString>

#include "text/code_page.h"

namespace ui {

inline QString ToQt(std::string_view text) {
    return QString::fromStdU16String(platform::Widen(text));
}

/// A character that the code page lacks becomes "?", as in a text box of Windows.
inline std::string FromQt(const QString& text) {
    return platform::Narrow(text.toStdU16String());
}

} // namespace ui

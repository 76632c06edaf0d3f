// What the files of this screen share: the widget that a part of a window is.
#pragma once

#include <stdexcept>
#include <string>

#include <QString>
#include <QWidget>

#include "ui/screen.h"

namespace screen {

/// Fails for a part that is not there, or that As finds to be of another kind.
inline QWidget& Of(Part part) {
    if (part == nullptr) {
        throw std::runtime_error("there is no such native control");
    }
    return *static_cast<QWidget*>(part);
}

template <class T>
T& As(Part part) {
    auto* widget = qobject_cast<T*>(&Of(part));
    if (widget == nullptr) {
        throw std::runtime_error(Of(part).objectName().toStdString() + " is no " +
                                 T::staticMetaObject.className());
    }
    return *widget;
}

inline std::string Latin(const QString& text) {
    return text.toLatin1().toStdString();
}

} // namespace screen

// Functions for the files that implement ui/screen.h with Qt: they turn a Part into its widget.
#pragma once

#include <stdexcept>
#include <string>

#include <QString>
#include <QWidget>

#include "ui/screen.h"

namespace screen {

/// The widget of a part. Throws std::runtime_error if the part is null.
inline QWidget& Of(Part part) {
    if (part == nullptr) {
        throw std::runtime_error("there is no such native control");
    }
    return *static_cast<QWidget*>(part);
}

/// The widget of a part as a T. Throws std::runtime_error if it is not a T.
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

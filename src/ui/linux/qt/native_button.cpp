// Fits the caption of an option button into its place.
#include "ui/linux/qt/native_button.h"

#include <QStyle>
#include <QStyleOptionButton>

namespace ui {

void NativeDataOption::SetCaption(const QString& caption) {
    if (caption_ != caption) {
        caption_ = caption;
        setAccessibleName(caption); // the whole caption, with "&" not doubled
        Fit();
    }
}

void NativeDataOption::Fit() {
    QStyleOptionButton option;
    initStyleOption(&option);
    const int room = style()->subElementRect(QStyle::SE_RadioButtonContents, &option, this).width();
    const QString shown = fontMetrics().elidedText(caption_, Qt::ElideMiddle, room);
    setText(QString(shown).replace("&", "&&"));
    setToolTip(shown == caption_ ? QString() : caption_);
}

void NativeDataOption::resizeEvent(QResizeEvent* event) {
    QRadioButton::resizeEvent(event);
    Fit();
}

void NativeDataOption::changeEvent(QEvent* event) {
    QRadioButton::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        Fit();
    }
}

} // namespace ui

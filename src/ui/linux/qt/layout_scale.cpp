// Compares the sizes that the desktop's font and style need with those of a form's design.
#include "ui/linux/qt/layout_scale.h"

#include <algorithm>

#include <QApplication>
#include <QComboBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOption>
#include <QTabBar>

#include "ui/linux/qt/text.h"

namespace ui {
namespace {

/// The free space left and right of a push button's caption, together, in pixels.
constexpr int kButtonMargins = 12;

/// A control's upper left corner on the form, in twips; (0, 0) for null.
QPoint CornerOf(const Control* control) {
    QPoint corner;
    for (; control != nullptr; control = control->Parent()) {
        corner += QPoint(control->Design().place.left, control->Design().place.top);
    }
    return corner;
}

/// Measures sample controls: the sizes, in pixels, that the desktop's style needs whatever a control
/// contains.
class Samples {
  public:
    explicit Samples(const QFont& font) : metrics_(font) {
        QLineEdit line;
        QComboBox list;
        QPushButton button("X");
        QRadioButton option("X");
        QGroupBox frame("X");
        for (QWidget* sample :
             {static_cast<QWidget*>(&line), static_cast<QWidget*>(&list), static_cast<QWidget*>(&button),
              static_cast<QWidget*>(&option), static_cast<QWidget*>(&frame)}) {
            sample->setFont(font);
        }
        line_ = line.minimumSizeHint().height();
        list_ = list.minimumSizeHint().height();
        button_ = metrics_.height() + 4; // a style's own margins are generous
        option_ =
            QSize(option.sizeHint().width() - metrics_.horizontalAdvance("X"), option.sizeHint().height());
        indicator_ = option.style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, &option);
        QStyleOptionGroupBox box;
        box.initFrom(&frame);
        box.text = "X";
        box.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
        box.rect = QRect(0, 0, 200, 200);
        title_ = frame.style()
                     ->subControlRect(QStyle::CC_GroupBox, &box, QStyle::SC_GroupBoxContents, &frame)
                     .top();
    }

    /// The size that the control needs to show its caption or a line of text; 0 for a direction in which it
    /// needs none.
    QSize Of(const Control& control) const {
        const int text = metrics_.horizontalAdvance(WithoutMnemonic(control.Design().caption));
        switch (control.Kind()) {
        case Kind::Label:
            return {text, metrics_.height()};
        case Kind::CommandButton:
            return {text == 0 ? 0 : text + kButtonMargins, button_};
        case Kind::CheckBox:
        case Kind::OptionButton:
            return {text + (text == 0 ? indicator_ : option_.width()), option_.height()};
        case Kind::TextBox:
            return {0, line_};
        case Kind::ComboBox:
            return {0, list_};
        default:
            return {0, 0};
        }
    }

    /// How far below a frame's upper edge its controls may begin.
    int Title() const { return title_; }

  private:
    QFontMetrics metrics_;
    int line_ = 0;
    int list_ = 0;
    int button_ = 0;
    QSize option_;
    int indicator_ = 0;
    int title_ = 0;
};

/// The upper edge of the highest control in a frame, in twips; 0 for an empty one.
int HighestChild(const Form& form, const Control& frame) {
    int top = 0;
    for (const auto& control : form.Controls()) {
        if (control->Parent() == &frame) {
            const int own = control->Design().place.top;
            top = top == 0 ? own : std::min(top, own);
        }
    }
    return top;
}

QSize SizeOfTabs(const TabControl& tabs, const QFont& font) {
    QTabBar bar;
    bar.setFont(font);
    for (int tab = 0; tab < tabs.Tabs(); ++tab) {
        bar.addTab(ToQt(tabs.TabCaption(tab)));
    }
    return bar.sizeHint();
}

/// The upper edge of a tab control's pages, in twips.
int TopOfPages(const Form& form, const Control& tabs) {
    for (const auto& control : form.Controls()) {
        if (control->Parent() == &tabs) {
            return control->Design().place.top;
        }
    }
    return tabs.Design().place.height;
}

/// The scale at which `twips` become at least `pixels`.
double Ratio(int pixels, int twips) {
    return twips == 0 ? 1 : static_cast<double>(pixels) * kTwipsPerPixel / twips;
}

} // namespace

LayoutScale::LayoutScale(const Form& form, const QFont& font) {
    const Samples samples(font);
    for (const auto& control : form.Controls()) {
        Need(*control, samples.Of(*control));
        if (control->Kind() == Kind::Frame) {
            down_ = std::max(down_, Ratio(samples.Title(), HighestChild(form, *control)));
        }
        if (control->Kind() == Kind::TabControl) {
            const QSize bar = SizeOfTabs(static_cast<const TabControl&>(*control), font);
            across_ = std::max(across_, Ratio(bar.width(), control->Design().place.width));
            down_ = std::max(down_, Ratio(bar.height() + 1, TopOfPages(form, *control)));
        }
    }
}

void LayoutScale::Need(const Control& control, QSize size) {
    across_ = std::max(across_, Ratio(size.width() + 1, control.Design().place.width));
    down_ = std::max(down_, Ratio(size.height(), control.Design().place.height));
}

int LayoutScale::X(int twips) const {
    return qRound(twips * across_ / kTwipsPerPixel);
}

int LayoutScale::Y(int twips) const {
    return qRound(twips * down_ / kTwipsPerPixel);
}

QRect LayoutScale::PlaceIn(const Control& control, const Control* parent) const {
    const QPoint origin = CornerOf(parent);
    const QPoint corner = CornerOf(&control);
    const Place& place = control.Design().place;
    const QPoint from(X(corner.x()) - X(origin.x()), Y(corner.y()) - Y(origin.y()));
    const QPoint to(X(corner.x() + place.width) - X(origin.x()),
                    Y(corner.y() + place.height) - Y(origin.y()));
    return {from, QSize(to.x() - from.x(), to.y() - from.y())};
}

QSize LayoutScale::ClientSize(const FormDesign& design) const {
    return {X(design.client_width), Y(design.client_height)};
}

} // namespace ui

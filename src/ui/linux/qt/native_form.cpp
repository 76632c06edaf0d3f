// Makes the window of a form and its native controls, and places and names them.
#include "ui/linux/qt/native_form.h"

#include <algorithm>
#include <string_view>

#include <QApplication>
#include <QLabel>
#include <QScreen>

#include "ui/linux/qt/text.h"
#include "ui/operator.h"

namespace ui {
namespace {

constexpr Qt::WindowFlags kMainFlags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                       Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                                       Qt::WindowCloseButtonHint;
constexpr Qt::WindowFlags kDialogFlags = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                         Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;

/// The page of a tab control that a control is or lies on; null for a control outside the tabs.
const Control* PageOf(const Control& control) {
    for (const Control* part = &control; part->Parent() != nullptr; part = part->Parent()) {
        if (part->Parent()->Kind() == Kind::TabControl) {
            return part;
        }
    }
    return nullptr;
}

/// The caption of the frame that a control lies on, else the title of the form.
QString CaptionAround(const Control& control) {
    for (const Control* part = control.Parent(); part != nullptr; part = part->Parent()) {
        if (part->Design().caption[0] != '\0') {
            return WithoutMnemonic(part->Design().caption);
        }
    }
    return ToQt(control.Owner().Design().caption);
}

bool TakesText(Kind kind) {
    return kind == Kind::TextBox || kind == Kind::ComboBox || kind == Kind::ListBox;
}

/// True for a button that opens a folder or file dialog.
bool Browses(const Control& control) {
    return control.Kind() == Kind::CommandButton && std::string_view(control.Design().caption) == "...";
}

/// Returns "Browse: ", the label of the box and the caption of the frame around both. The frame's caption is
/// needed because both servers have a box with the same label.
QString NameOfBrowseButton(const Control& button, QString box) {
    const QString around = CaptionAround(button);
    return "Browse: " + (box.isEmpty() ? around : box.remove(':') + ", " + around);
}

} // namespace

NativeForm::NativeForm(Form& form, QWidget* owner)
    : form_(form),
      window_(std::make_unique<QWidget>(owner, owner == nullptr ? kMainFlags : kDialogFlags)),
      scale_(form, window_->font()) {
    MakeFrame(owner);
    All().push_back(this);
    MakeControls();
    CentreOn(owner);
    form_.Attach(this);
    qApp->installEventFilter(this);
}

NativeForm::~NativeForm() {
    qApp->removeEventFilter(this);
    form_.Attach(nullptr);
    showing_ = true; // signals of controls that are being destroyed are not reported
    std::erase(All(), this);
    window_.reset();
}

std::vector<NativeForm*>& NativeForm::All() {
    static std::vector<NativeForm*> all;
    return all;
}

QWidget* NativeForm::WindowOf(const Form& form) {
    for (const NativeForm* native : All()) {
        if (&native->form_ == &form) {
            return native->window_.get();
        }
    }
    return nullptr;
}

void NativeForm::MakeFrame(QWidget* owner) {
    window_->setObjectName(form_.Design().name);
    window_->setWindowTitle(ToQt(form_.Caption()));
    window_->setFixedSize(scale_.ClientSize(form_.Design()));
    if (owner != nullptr) {
        window_->setWindowModality(Qt::WindowModal);
    }
}

/// Makes all native controls except those on the pages of a tab control.
void NativeForm::MakeControls() {
    showing_ = true;
    natives_.reserve(form_.Controls().size());
    for (const auto& control : form_.Controls()) {
        NativeControl native;
        native.control = control.get();
        native.stale = ~Bit(Property::Selection);
        natives_.push_back(native);
    }
    for (NativeControl& native : natives_) {
        if (native.control->Kind() == Kind::TabControl) {
            MakeTabs(native);
        } else if (PageOf(*native.control) == nullptr) {
            Make(native);
        }
    }
    OrderTabKey();
    NameBoxes();
    showing_ = false;
}

/// Makes the page that is to be shown and the controls on it, unless they exist. A window spends most of its
/// start on making controls, so a page is made only when it is first shown.
void NativeForm::MakePage() {
    if (tabs_ == nullptr) {
        return;
    }
    NativeControl& tabs = natives_[static_cast<std::size_t>(tabs_index_)];
    const int shown = static_cast<const TabControl*>(tabs.control)->Tab();
    bool made = false;
    for (NativeControl& native : natives_) {
        const Control* page = PageOf(*native.control);
        if (native.widget == nullptr && page != nullptr && page->Index() == shown) {
            Make(native);
            made = true;
        }
    }
    if (made) {
        tabs.stale |= Bit(Property::Tab);
        OrderTabKey();
        NameBoxes();
    }
}

void NativeForm::Make(NativeControl& native) {
    const Control& control = *native.control;
    const bool is_page = control.Parent() != nullptr && control.Parent()->Kind() == Kind::TabControl;
    native.widget = MakeNativeControl(control, ParentOf(control));
    Settle(native);
    Listen(native);
    // A page stays hidden until everything on it is up to date.
    native.widget->setVisible(!is_page);
}

void NativeForm::MakeTabs(NativeControl& native) {
    const auto& control = static_cast<const TabControl&>(*native.control);
    tabs_index_ = static_cast<int>(&native - natives_.data());
    tabs_ = new TabStrip(control, ParentOf(control));
    tabs_->setGeometry(scale_.PlaceIn(control, control.Parent()));
    tabs_->lower();
    native.widget = &tabs_->Bar();
    Listen(native);
}

/// The native parent of a page of the tab control is the form's window.
QWidget* NativeForm::ParentOf(const Control& control) const {
    const Control* parent = control.Parent();
    if (parent == nullptr || parent->Kind() == Kind::TabControl) {
        return window_.get();
    }
    return natives_.at(static_cast<std::size_t>(parent->Id() - form_.Controls().front()->Id())).widget;
}

void NativeForm::Settle(const NativeControl& native) {
    const Control& control = *native.control;
    const bool on_form = ParentOf(control) == window_.get();
    native.widget->setGeometry(scale_.PlaceIn(control, on_form ? nullptr : control.Parent()));
}

/// Gives the Tab key the order of the design.
void NativeForm::OrderTabKey() {
    QWidget* before = nullptr;
    for (const NativeControl& native : natives_) {
        if (native.widget == nullptr || native.widget->focusPolicy() == Qt::NoFocus) {
            continue;
        }
        if (before != nullptr) {
            QWidget::setTabOrder(before, native.widget);
        }
        before = native.widget;
    }
}

/// Gives each control its name for screen readers. A label names the box after it, and the button that opens
/// a dialog for that box. A control with neither label nor caption is named after its tool tip, or if it has
/// none, after the caption of its frame.
void NativeForm::NameBoxes() {
    const Control* label = nullptr;
    QString box; // the label's text of the last box
    for (NativeControl& native : natives_) {
        if (native.widget == nullptr) {
            continue;
        }
        const Control& control = *native.control;
        if (control.Kind() == Kind::Label) {
            label = &control;
            continue;
        }
        const bool labelled =
            label != nullptr && label->Parent() == control.Parent() && TakesText(control.Kind());
        if (labelled) {
            static_cast<QLabel*>(NativeOf(*label).widget)->setBuddy(native.widget);
            box = WithoutMnemonic(label->Design().caption);
            native.widget->setAccessibleName(box); // Qt names a line of text by its label, but not a list
        } else if (TakesText(control.Kind())) {
            box.clear();
        } else if (Browses(control)) {
            native.widget->setAccessibleName(NameOfBrowseButton(control, box));
        }
        label = nullptr;
        const bool captioned = control.Design().caption[0] != '\0';
        if (!labelled && !captioned && native.widget->accessibleName().isEmpty()) {
            const QString tip = ToQt(control.Design().tool_tip);
            native.widget->setAccessibleName(tip.isEmpty() ? CaptionAround(control) : tip);
        }
    }
}

/// Places everything again after the font or style has changed.
void NativeForm::LayOut() {
    scale_ = LayoutScale(form_, window_->font());
    window_->setFixedSize(scale_.ClientSize(form_.Design()));
    for (const NativeControl& native : natives_) {
        if (native.widget != nullptr && native.control->Kind() != Kind::TabControl) {
            Settle(native);
        }
    }
    if (tabs_ != nullptr) {
        const Control& control = *natives_[static_cast<std::size_t>(tabs_index_)].control;
        tabs_->setGeometry(scale_.PlaceIn(control, control.Parent()));
    }
    MoveWithin(window_->screen()->availableGeometry(), window_->pos()); // it may have grown
}

/// Centres the window on its owner, or on the screen if it has none, wholly on the screen if it fits.
void NativeForm::CentreOn(const QWidget* owner) {
    const QRect work = (owner == nullptr ? window_.get() : owner)->screen()->availableGeometry();
    const QRect middle = owner == nullptr ? work : owner->frameGeometry();
    QRect own = window_->rect();
    own.moveCenter(middle.center());
    MoveWithin(work, own.topLeft());
}

/// The size of the window's frame is known only after the window has been shown.
void NativeForm::MoveWithin(const QRect& work, QPoint corner) {
    const QSize frame = window_->frameGeometry().size();
    const int left = std::min(corner.x(), work.x() + work.width() - frame.width());
    const int top = std::min(corner.y(), work.y() + work.height() - frame.height());
    window_->move(std::max(work.left(), left), std::max(work.top(), top));
}

} // namespace ui

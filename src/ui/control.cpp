// What all controls have: their name, whether they are enabled, and the notification of the form's mirror.
#include "ui/control.h"

#include "ui/form.h"

namespace ui {

Control::Control(Form& form, const ControlDesign& design, int id, Control* parent)
    : form_(form), design_(design), id_(id), parent_(parent) {}

std::optional<int> Control::Index() const {
    return design_.name.index == kNoIndex ? std::nullopt : std::optional<int>(design_.name.index);
}

void Control::Enabled(bool value) {
    if (enabled_ != value) {
        enabled_ = value;
        if (value) {
            enabled_since_ = InputClock::now();
        }
        Notify(Property::Enabled);
    }
}

void Control::Notify(Property property) const {
    form_.Notify(*this, property);
}

void Control::Fire(const Handler& handler) {
    if (handler) {
        handler();
    }
}

} // namespace ui

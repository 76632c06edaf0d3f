// The properties of the controls. A setter notifies the mirror; it fires only the events that controls.h
// names.
#include "ui/controls.h"

#include <algorithm>

#include "ui/form.h"

namespace ui {

Label::Label(Form& form, const ControlDesign& design, int id, Control* parent)
    : Control(form, design, id, parent), caption_(design.caption) {}

void Label::Caption(const std::string& value) {
    if (caption_ != value) {
        caption_ = value;
        Notify(Property::Caption);
    }
}

void Label::ForeColor(Colour value) {
    if (fore_color_ != value) {
        fore_color_ = value;
        Notify(Property::ForeColor);
    }
}

TextBox::TextBox(Form& form, const ControlDesign& design, int id, Control* parent)
    : Control(form, design, id, parent),
      locked_(Has(kReadOnly)),
      back_color_(Has(kButtonFace) ? kButtonFaceBackground : kWindowBackground) {}

void TextBox::Text(const std::string& value) {
    TakeEdit(value, 0);
}

void TextBox::TakeEdit(std::string text, std::size_t sel_start) {
    sel_start_ = std::min(sel_start, text.size());
    sel_length_ = 0;
    if (text_ == text) {
        return;
    }
    text_ = std::move(text);
    Notify(Property::Text);
    Fire(on_change);
}

void TextBox::Locked(bool value) {
    if (locked_ != value) {
        locked_ = value;
        Notify(Property::Locked);
    }
}

void TextBox::BackColor(Colour value) {
    if (back_color_ != value) {
        back_color_ = value;
        Notify(Property::BackColor);
    }
}

void TextBox::SelStart(std::size_t value) {
    TakeSelection(value, 0);
    Notify(Property::Selection);
}

void TextBox::SelLength(std::size_t value) {
    TakeSelection(sel_start_, value);
    Notify(Property::Selection);
}

void TextBox::TakeSelection(std::size_t start, std::size_t length) {
    sel_start_ = std::min(start, text_.size());
    sel_length_ = std::min(length, text_.size() - sel_start_);
}

void CommandButton::TakeClick() {
    struct Run {
        explicit Run(CommandButton& button) : button_(button) { button_.running_ = true; }
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;
        ~Run() { // also when the handler throws
            button_.running_ = false;
            button_.ended_at_ = InputClock::now();
        }
        CommandButton& button_;
    };
    const Run run(*this);
    Fire(on_click);
}

void CheckBox::Value(int value) {
    if (value_ != value) {
        value_ = value;
        Notify(Property::Value);
    }
}

void CheckBox::TakeClick() {
    Value(value_ == 0 ? 1 : 0);
    Fire(on_click);
}

OptionButton::OptionButton(Form& form, const ControlDesign& design, int id, Control* parent)
    : Control(form, design, id, parent), caption_(design.caption), value_(Has(kSelected)) {}

void OptionButton::Caption(const std::string& value) {
    if (caption_ != value) {
        caption_ = value;
        Notify(Property::Caption);
    }
}

void OptionButton::Value(bool value) {
    if (value_ == value) {
        return;
    }
    value_ = value;
    Notify(Property::Value);
    if (!value) {
        return;
    }
    for (const auto& other : Owner().Controls()) {
        if (other->Kind() == kKind && other->Parent() == Parent() && other.get() != this) {
            static_cast<OptionButton&>(*other).Value(false);
        }
    }
}

void OptionButton::TakeClick() {
    Value(true);
    Fire(on_click);
}

void ProgressBar::Min(float value) {
    min_ = value;
    Notify(Property::Value);
}

void ProgressBar::Max(float value) {
    max_ = value;
    Notify(Property::Value);
}

void ProgressBar::Value(float value) {
    value_ = value;
    Notify(Property::Value);
}

TabControl::TabControl(Form& form, const ControlDesign& design, int id, Control* parent)
    : Control(form, design, id, parent), enabled_tabs_(form.Design().tabs.size(), true) {}

const char* TabControl::TabCaption(int tab) const {
    return Owner().Design().tabs[static_cast<std::size_t>(tab)];
}

void TabControl::Tab(int value) {
    if (value < 0 || value >= Tabs()) {
        throw Refusal("there is no tab " + std::to_string(value));
    }
    if (tab_ != value) {
        tab_ = value;
        Notify(Property::Tab);
    }
}

void TabControl::TabEnabled(int tab, bool value) {
    if (TabEnabled(tab) != value) {
        enabled_tabs_[static_cast<std::size_t>(tab)] = value;
        Notify(Property::TabEnabled);
    }
}

void TabControl::TakeChoice(int tab) {
    Tab(tab);
    Fire(on_click);
}

} // namespace ui

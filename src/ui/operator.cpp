// The operator's acts: each checks that its control can be used, then changes the control and fires its
// events.
#include "ui/operator.h"

namespace ui {

bool IsShown(const Control& control) {
    if (control.Owner().Unloaded()) {
        return false;
    }
    for (const Control* child = &control; child->Parent() != nullptr; child = child->Parent()) {
        // A child of a tab control lies on the tab whose number is the child's index.
        if (child->Parent()->Kind() == Kind::TabControl &&
            static_cast<const TabControl*>(child->Parent())->Tab() != child->Index()) {
            return false;
        }
    }
    return true;
}

bool CanBeUsed(const Control& control) {
    for (const Control* part = &control; part != nullptr; part = part->Parent()) {
        if (!part->Enabled()) {
            return false;
        }
    }
    return IsShown(control);
}

bool Accepts(const Control& control, InputClock::time_point arrived) {
    if (!CanBeUsed(control)) {
        return false;
    }
    for (const Control* part = &control; part != nullptr; part = part->Parent()) {
        if (arrived < part->EnabledSince()) {
            return false;
        }
    }
    if (control.Kind() != Kind::CommandButton) {
        return true;
    }
    const auto& button = static_cast<const CommandButton&>(control);
    return !button.Running() && arrived >= button.EndedAt() + kReactionTime;
}

bool AcceptsPress(Control& control, InputClock::time_point arrived, std::chrono::milliseconds double_click) {
    if (control.Kind() == Kind::CommandButton) {
        const auto before = static_cast<CommandButton&>(control).TakePress(arrived);
        if (before != InputClock::time_point{} && arrived < before + double_click) {
            return false;
        }
    }
    return Accepts(control, arrived);
}

bool Type(TextBox& box, std::string_view text) {
    for (const char character : text) {
        // Checked for each character, since a handler of Change may disable or lock the box.
        if (!CanBeUsed(box) || box.Locked()) {
            return false;
        }
        std::string typed = box.Text();
        const std::size_t start = box.SelStart();
        typed.replace(start, box.SelLength(), 1, character);
        box.TakeEdit(std::move(typed), start + 1);
    }
    return CanBeUsed(box) && !box.Locked();
}

bool Type(ComboBox& box, std::string_view text) {
    for (const char character : text) {
        if (!Edit(box, box.Text() + character)) {
            return false;
        }
    }
    return true;
}

bool SelectAll(TextBox& box) {
    if (!CanBeUsed(box)) {
        return false;
    }
    box.TakeSelection(0, box.Text().size());
    return true;
}

bool Edit(TextBox& box, const std::string& text) {
    if (!CanBeUsed(box) || box.Locked()) {
        return false;
    }
    box.TakeEdit(text, text.size());
    return true;
}

bool Edit(ComboBox& box, const std::string& text) {
    if (!CanBeUsed(box) || box.IsDropDownList()) {
        return false;
    }
    box.TakeEdit(text);
    return true;
}

bool Choose(ComboBox& box, int index) {
    if (!CanBeUsed(box) || index < 0 || index >= box.ListCount()) {
        return false;
    }
    box.ListIndex(index);
    return true;
}

bool Choose(ListBox& box, int index) {
    if (!CanBeUsed(box) || index < 0 || index >= box.ListCount()) {
        return false;
    }
    box.ListIndex(index);
    return true;
}

bool Choose(TabControl& tabs, int tab) {
    if (!CanBeUsed(tabs) || tab < 0 || tab >= tabs.Tabs() || !tabs.TabEnabled(tab)) {
        return false;
    }
    tabs.TakeChoice(tab);
    return true;
}

bool Click(CommandButton& button, std::optional<InputClock::time_point> arrived) {
    if (!CanBeUsed(button) || button.Running() || (arrived && !Accepts(button, *arrived))) {
        return false;
    }
    FocusMoved(button.Owner(), &button);
    button.TakeClick();
    return true;
}

bool Click(CheckBox& box) {
    if (!CanBeUsed(box)) {
        return false;
    }
    FocusMoved(box.Owner(), &box);
    box.TakeClick();
    return true;
}

bool Click(OptionButton& button) {
    if (!CanBeUsed(button)) {
        return false;
    }
    FocusMoved(button.Owner(), &button);
    button.TakeClick();
    return true;
}

void FocusMoved(Form& form, Control* control) {
    form.TakeFocus(control);
}

void Close(Form& form) {
    form.Unload();
}

} // namespace ui

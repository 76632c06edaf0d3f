// A small form with every kind of control, and a mirror (ui/control.h) that records its notifications.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "ui/form.h"

namespace ui_tests {

class Recorder final : public ui::Mirror {
  public:
    void Changed(const ui::Control& control, ui::Property property) override {
        seen.emplace_back(&control, property);
    }
    int Count(const ui::Control& control, ui::Property property) const {
        int count = 0;
        for (const auto& [whose, what] : seen) {
            count += whose == &control && what == property ? 1 : 0;
        }
        return count;
    }

    std::vector<std::pair<const ui::Control*, ui::Property>> seen;
};

inline const ui::FormDesign& SmallDesign() {
    using ui::Kind;
    static constexpr std::array kTabs = {"First", "Second", "Third"};
    static constexpr auto kControls = std::to_array<ui::ControlDesign>({
        {Kind::TabControl, {"tabs"}, "", "", {}, {}},
        {Kind::Frame, {"page", 0}, "Page", "", {"tabs"}, {}},
        {Kind::TextBox, {"text"}, "", "", {"page", 0}, {}},
        {Kind::TextBox, {"locked"}, "", "", {"page", 0}, {}, ui::kReadOnly},
        {Kind::ComboBox, {"list"}, "", "", {"page", 0}, {}, ui::kDropDownList},
        {Kind::ComboBox, {"free"}, "", "", {"page", 0}, {}},
        {Kind::ListBox, {"box"}, "", "", {"page", 0}, {}},
        {Kind::CheckBox, {"check"}, "&Check", "", {"page", 0}, {}},
        {Kind::OptionButton, {"option", 0}, "A", "", {"page", 0}, {}, ui::kSelected},
        {Kind::OptionButton, {"option", 1}, "B", "", {"page", 0}, {}},
        {Kind::Frame, {"inner"}, "Inner", "", {"page", 0}, {}},
        {Kind::OptionButton, {"other", 0}, "C", "", {"inner"}, {}, ui::kSelected},
        {Kind::OptionButton, {"other", 1}, "D", "", {"inner"}, {}},
        {Kind::CommandButton, {"button"}, "Do", "A tip", {"inner"}, {}},
        {Kind::Frame, {"page", 1}, "Page", "", {"tabs"}, {}},
        {Kind::CommandButton, {"far"}, "Far", "", {"page", 1}, {}},
        {Kind::Frame, {"page", 2}, "Page", "", {"tabs"}, {}},
        {Kind::PictureBox, {"picture"}, "", "", {}, {}},
        {Kind::ListView, {"view"}, "", "", {"picture"}, {}},
        {Kind::Label, {"label"}, "Text", "", {}, {}},
        {Kind::ProgressBar, {"bar"}, "", "", {}, {}},
    });
    static constexpr ui::FormDesign kDesign{"small", "Small", 100, 100, kControls, kTabs};
    return kDesign;
}

} // namespace ui_tests

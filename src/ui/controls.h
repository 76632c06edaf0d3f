// The kinds of controls except lists (lists.h, list_view.h). The program uses their members. The members
// Take... are for operator.h only: they make the changes that the operator asks for.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ui/control.h"

namespace ui {

class Frame : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::Frame;
    using Control::Control;
    const char* Caption() const { return Design().caption; }
};

class PictureBox : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::PictureBox;
    using Control::Control;
};

class Label : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::Label;
    Label(Form& form, const ControlDesign& design, int id, Control* parent);

    const std::string& Caption() const { return caption_; }
    void Caption(const std::string& value);
    Colour ForeColor() const { return fore_color_; }
    void ForeColor(Colour value);

  private:
    std::string caption_;
    Colour fore_color_ = kButtonText;
};

class TextBox : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::TextBox;
    TextBox(Form& form, const ControlDesign& design, int id, Control* parent);

    const std::string& Text() const { return text_; }
    /// A different text fires Change. The selection goes to the beginning.
    void Text(const std::string& value);

    /// The operator cannot change the text.
    bool Locked() const { return locked_; }
    void Locked(bool value);
    Colour BackColor() const { return back_color_; }
    void BackColor(Colour value);

    /// The start and the length of the selected text, in characters. They are reduced if the text is shorter.
    /// Setting the start makes the length 0.
    std::size_t SelStart() const { return sel_start_; }
    void SelStart(std::size_t value);
    std::size_t SelLength() const { return sel_length_; }
    void SelLength(std::size_t value);

    Handler on_change;

    /// Takes over the text and the position of the caret. A different text fires Change.
    void TakeEdit(std::string text, std::size_t sel_start);
    void TakeSelection(std::size_t start, std::size_t length);

  private:
    std::string text_;
    bool locked_;
    Colour back_color_;
    std::size_t sel_start_ = 0;
    std::size_t sel_length_ = 0;
};

class CommandButton : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::CommandButton;
    using Control::Control;
    const char* Caption() const { return Design().caption; }

    Handler on_click;

    /// True while on_click runs.
    bool Running() const { return running_; }
    /// When on_click last returned or threw; the clock's epoch before that.
    InputClock::time_point EndedAt() const { return ended_at_; }

    /// Fires Click.
    void TakeClick();
    /// Stores the time of a press of the mouse's button. Returns that of the press before it; the clock's
    /// epoch if there was none.
    InputClock::time_point TakePress(InputClock::time_point at) { return std::exchange(pressed_at_, at); }

  private:
    bool running_ = false;
    InputClock::time_point ended_at_{};
    InputClock::time_point pressed_at_{};
};

class CheckBox : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::CheckBox;
    using Control::Control;
    const char* Caption() const { return Design().caption; }

    /// 1 is ticked, 0 is clear. Setting it fires nothing.
    int Value() const { return value_; }
    void Value(int value);

    Handler on_click;

    /// Ticks or clears the box, then fires Click.
    void TakeClick();

  private:
    int value_ = 0;
};

/// A radio button. The option buttons with the same parent are a group, of which at most one is selected.
class OptionButton : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::OptionButton;
    OptionButton(Form& form, const ControlDesign& design, int id, Control* parent);

    const std::string& Caption() const { return caption_; }
    void Caption(const std::string& value);
    /// True if the button is selected. Selecting it clears the others of its group. Setting it fires nothing.
    bool Value() const { return value_; }
    void Value(bool value);

    Handler on_click;

    /// Selects the button, then fires Click.
    void TakeClick();

  private:
    std::string caption_;
    bool value_;
};

/// Values outside Min to Max are stored as they are.
class ProgressBar : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::ProgressBar;
    using Control::Control;

    float Min() const { return min_; }
    void Min(float value);
    float Max() const { return max_; }
    void Max(float value);
    float Value() const { return value_; }
    void Value(float value);

  private:
    float min_ = 0;
    float max_ = 100;
    float value_ = 0;
};

class TabControl : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::TabControl;
    TabControl(Form& form, const ControlDesign& design, int id, Control* parent);

    /// The number of tabs. A tab is given by its number, from 0.
    int Tabs() const { return static_cast<int>(enabled_tabs_.size()); }
    const char* TabCaption(int tab) const;
    /// The active tab. The program may activate a disabled one; setting it fires nothing. Throws Refusal if
    /// there is no such tab.
    int Tab() const { return tab_; }
    void Tab(int value);
    bool TabEnabled(int tab) const { return enabled_tabs_.at(static_cast<std::size_t>(tab)); }
    void TabEnabled(int tab, bool value);

    Handler on_click;

    /// Activates the tab, then fires Click.
    void TakeChoice(int tab);

  private:
    int tab_ = 0;
    std::vector<bool> enabled_tabs_;
};

} // namespace ui

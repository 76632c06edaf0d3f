// The base of all controls, and the interface through which a toolkit is notified of changes (Mirror).
// Controls work without a toolkit.
#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/design.h"

namespace ui {

class Control;
class Form;

/// The property that has changed. The mirror asks the control for the new state.
enum class Property : std::uint8_t {
    Enabled,       ///< of the control alone; CanBeUsed in operator.h also looks at its parents
    Caption,       ///< of a form: its title
    Text,          ///< TextBox, ComboBox
    Selection,     ///< TextBox: SelStart, SelLength
    Locked,        ///< TextBox
    ForeColor,     ///< Label
    BackColor,     ///< TextBox
    Value,         ///< CheckBox, OptionButton; ProgressBar: its value or a bound
    Items,         ///< ComboBox, ListBox: any change of the list
    ListIndex,     ///< ComboBox, ListBox
    Tab,           ///< TabControl: the active one
    TabEnabled,    ///< TabControl: any of them
    Columns,       ///< ListView: any change of the column headers
    Rows,          ///< ListView: rows were added or removed
    Cells,         ///< ListView: texts of existing rows
    ColumnSizes,   ///< ListView: AutoSizeColumn was called; see ListView::AutoSized
    ExtendedStyle, ///< ListView
    Refresh,       ///< to be painted at once
    Focus,         ///< Form: the focus goes to Form::Focused()
    Painting,      ///< Form: painting was locked or unlocked
    Unloaded,      ///< Form: the window is to close
};

/// A toolkit's side of one form. Called for every change, also for those that the operator made, which the
/// native control shows already: compare, and leave it alone where it agrees. Called often while lists are
/// filled, so it must be cheap: note the change, and update the window on Refresh, on Painting or when the
/// event queue runs next. Must not throw.
class Mirror {
  public:
    virtual void Changed(const Control& control, Property property) = 0;

  protected:
    ~Mirror() = default;
};

/// Thrown for a value that a control does not accept: a text or an index outside its list, a key twice.
class Refusal : public std::exception {
  public:
    explicit Refusal(std::string text) : text_(std::move(text)) {}
    const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::string text_;
};

using Handler = std::function<void()>;

/// Colours as the program writes them: red in the lowest byte, or with the topmost bit set an index of the
/// system's colours.
using Colour = std::uint32_t;
inline constexpr Colour kWindowBackground = 0x80000005;
inline constexpr Colour kButtonFaceBackground = 0x8000000F;
inline constexpr Colour kButtonText = 0x80000012;
inline constexpr Colour kRed = 255;

/// The clock by which the arrival of input is compared with changes of controls.
using InputClock = std::chrono::steady_clock;

/// The base of the controls; made by a Form out of its design and owned by it.
class Control {
  public:
    Control(Form& form, const ControlDesign& design, int id, Control* parent);
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    const ControlDesign& Design() const { return design_; }
    ui::Kind Kind() const { return design_.kind; }
    const char* Name() const { return design_.name.name; }
    /// Nothing for a control outside an array.
    std::optional<int> Index() const;
    /// 1000 and the row of the design, from 0: the native control's identifier.
    int Id() const { return id_; }
    Form& Owner() { return form_; }
    const Form& Owner() const { return form_; }
    /// Null for a control that lies on the form itself.
    Control* Parent() { return parent_; }
    const Control* Parent() const { return parent_; }

    bool Enabled() const { return enabled_; }
    void Enabled(bool value);
    /// When it was enabled last; the clock's beginning if it was never disabled.
    InputClock::time_point EnabledSince() const { return enabled_since_; }

    /// For the program's own use; no toolkit shows it.
    const std::string& Tag() const { return tag_; }
    void Tag(std::string value) { tag_ = std::move(value); }

    /// Asks the toolkit to paint the control at once.
    void Refresh() const { Notify(Property::Refresh); }

  protected:
    void Notify(Property property) const;
    bool Has(Trait trait) const { return (design_.traits & trait) != 0; }
    static void Fire(const Handler& handler);

  private:
    Form& form_;
    const ControlDesign& design_;
    int id_;
    Control* parent_;
    bool enabled_ = true;
    InputClock::time_point enabled_since_{};
    std::string tag_;
};

} // namespace ui

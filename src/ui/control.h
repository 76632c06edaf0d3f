// The base of all controls, and Mirror, the interface through which a toolkit is notified of changes. A
// control is an object with the properties of a button, text box and so on; it works without a window. A
// toolkit (Win32 or Qt) shows controls in native windows.
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
    Enabled,       ///< the control's own; CanBeUsed in operator.h also looks at its parents
    Caption,       ///< of a form: its title
    Text,          ///< TextBox, ComboBox
    Selection,     ///< TextBox: SelStart, SelLength
    Locked,        ///< TextBox
    ForeColor,     ///< Label
    BackColor,     ///< TextBox
    Value,         ///< CheckBox, OptionButton; ProgressBar: its value, minimum or maximum
    Items,         ///< ComboBox, ListBox: any change of the list
    ListIndex,     ///< ComboBox, ListBox
    Tab,           ///< TabControl: which tab is active
    TabEnabled,    ///< TabControl: a tab was enabled or disabled
    Columns,       ///< ListView: any change of the column headers
    Rows,          ///< ListView: rows were added or removed
    Cells,         ///< ListView: texts of existing rows
    ColumnSizes,   ///< ListView: AutoSizeColumn was called; see ListView::AutoSized
    ExtendedStyle, ///< ListView
    Refresh,       ///< the control is to be painted at once
    Focus,         ///< Form: the focus goes to Form::Focused()
    Painting,      ///< Form: painting was locked or unlocked
    Unloaded,      ///< Form: the window is to close
};

/// A toolkit implements this for each form that it shows, and attaches it with Form::Attach.
class Mirror {
  public:
    /// Called after every change. It is also called for a change that the operator made: then the native
    /// control shows the new state already, so compare before setting anything. It is called often while
    /// lists are filled, so it must be cheap: note the change, and update the window on Refresh, on Painting
    /// or when the event queue runs next. Must not throw.
    virtual void Changed(const Control& control, Property property) = 0;

  protected:
    ~Mirror() = default;
};

/// Thrown for a value that a control does not accept: a text or an index that is not in its list, or a key
/// that is in use already. The state does not change.
class Refusal : public std::exception {
  public:
    explicit Refusal(std::string text) : text_(std::move(text)) {}
    const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::string text_;
};

/// Called when an event fires. An empty handler is not called.
using Handler = std::function<void()>;

/// A colour: red in the lowest byte, then green, then blue. If the topmost bit is set, the rest is the index
/// of a colour of the system, as GetSysColor on Windows takes it.
using Colour = std::uint32_t;
inline constexpr Colour kWindowBackground = 0x80000005;
inline constexpr Colour kButtonFaceBackground = 0x8000000F;
inline constexpr Colour kButtonText = 0x80000012;
inline constexpr Colour kRed = 255;

/// The clock by which the arrival of input is compared with changes of controls.
using InputClock = std::chrono::steady_clock;

/// The base of the controls. A Form makes its controls from its design and owns them.
class Control {
  public:
    /// Keeps references to `form`, `design` and `parent`. `parent` is null for a control that lies on the
    /// form itself.
    Control(Form& form, const ControlDesign& design, int id, Control* parent);
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    const ControlDesign& Design() const { return design_; }
    ui::Kind Kind() const { return design_.kind; }
    const char* Name() const { return design_.name.name; }
    /// The index in a control array, which is a group of controls with the same name; nothing for a control
    /// outside an array.
    std::optional<int> Index() const;
    /// The native control's identifier: 1000 plus the number of the control's row in the design, from 0.
    int Id() const { return id_; }
    Form& Owner() { return form_; }
    const Form& Owner() const { return form_; }
    /// The control that it lies on; null for a control that lies on the form itself.
    Control* Parent() { return parent_; }
    const Control* Parent() const { return parent_; }

    bool Enabled() const { return enabled_; }
    void Enabled(bool value);
    /// When it was last enabled; the clock's epoch if it was never disabled.
    InputClock::time_point EnabledSince() const { return enabled_since_; }

    /// A text for the program's own use; no toolkit shows it.
    const std::string& Tag() const { return tag_; }
    void Tag(std::string value) { tag_ = std::move(value); }

    /// Asks the toolkit to paint the control at once.
    void Refresh() const { Notify(Property::Refresh); }

  protected:
    void Notify(Property property) const;
    bool Has(Trait trait) const { return (design_.traits & trait) != 0; }
    /// Calls the handler if there is one. What the handler throws goes to the caller.
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

// A form: the controls of its design, its title, its focus, and whether its painting is locked.
//
// How a toolkit attaches:
//  1. MakeWindow (toolkit.h) gets a form, which may still be loading. It walks Form::Controls(), which are
//     in the order of the Tab key and parents before children, makes one native control for each by its Kind,
//     at Design().place, with the identifier Id(), and fills it from the control's present state. A child of
//     the tab control belongs to the tab of its index and is seen while TabControl::Tab() is that; it and
//     its children need not be made before.
//  2. It attaches its Mirror with Form::Attach and updates the native controls on each Changed.
//  3. It reports the operator's acts by the functions of operator.h: Edit for a changed text, Choose for a
//     list item or a tab, Click for buttons, FocusMoved, Close for the frame's own button. These fire the
//     handlers. A handler may throw: a toolkit carries the exception past its native callbacks (a
//     std::exception_ptr) and throws it again from RunUntilClosed or ShowModally.
//  4. Property::Unloaded is the end of the window. The form and its controls live on: a handler that let
//     pending events run may still be using them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ui/control.h"
#include "ui/controls.h"
#include "ui/list_view.h"
#include "ui/lists.h"

namespace ui {

class Form {
  public:
    /// `design` must outlive the form.
    explicit Form(const FormDesign& design);
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;
    ~Form();

    const FormDesign& Design() const { return design_; }
    const std::vector<std::unique_ptr<Control>>& Controls() const { return controls_; }
    /// Null if there is no such control.
    Control* Find(const std::string& name, int index = kNoIndex) const;
    /// The control of this name and type. Throws Refusal if the design has no such control.
    template <class T>
    T& Get(const char* name, int index = kNoIndex) const {
        Control* control = Find(name, index);
        if (control == nullptr || control->Kind() != T::kKind) {
            RefuseName(name, index);
        }
        return static_cast<T&>(*control);
    }

    /// The window's title.
    const std::string& Caption() const { return caption_; }
    void Caption(const std::string& value);

    /// The program gives the focus; a control that cannot be used does not take it, and nothing happens.
    void SetFocus(Control& control);
    /// Null while no control has it.
    Control* Focused() const { return focused_; }

    /// Stops the painting of the window until UnlockPainting, however often it is called.
    void LockPainting();
    void UnlockPainting();
    bool PaintingLocked() const { return painting_locks_ != 0; }
    /// How often painting was locked since it was last unlocked.
    int PaintingLocks() const { return painting_locks_; }

    /// Fires on_unload once and closes the window. A second call does nothing.
    void Unload();
    bool Unloaded() const { return unloaded_; }
    Handler on_unload;

    /// One mirror at most; null detaches it. It must be detached before it is destroyed.
    void Attach(Mirror* mirror) { mirror_ = mirror; }
    /// For the controls. A form's own changes come with Root() as the control.
    void Notify(const Control& control, Property property) const;
    /// Stands for the form itself in Mirror::Changed; its Kind is Form.
    const Control& Root() const { return *root_; }
    /// For operator.h: where the operator has moved the focus.
    void TakeFocus(Control* control) { focused_ = control; }

  private:
    [[noreturn]] static void RefuseName(const char* name, int index);

    const FormDesign& design_;
    ControlDesign root_design_;
    std::unique_ptr<Control> root_;
    std::vector<std::unique_ptr<Control>> controls_;
    std::string caption_;
    Control* focused_ = nullptr;
    int painting_locks_ = 0;
    bool unloaded_ = false;
    Mirror* mirror_ = nullptr;
};

} // namespace ui

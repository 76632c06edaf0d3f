// A form is the model of a window: the controls of its design, its title, its focus, and whether its painting
// is locked.
//
// How a toolkit shows a form:
//  1. MakeWindow (toolkit.h) gets a form, which may still be loading. It makes one native control for each of
//     Form::Controls(), which come in the order of the Tab key and parents before children. The native
//     control has the control's Kind, place (Design().place), identifier (Id()) and present state. A child of
//     the tab control is a page: it is visible while TabControl::Tab() equals its index. A page and the
//     controls on it may be made when the page is first shown.
//  2. The toolkit attaches its Mirror with Form::Attach and updates the native controls after each Changed.
//  3. It reports the operator's acts by the functions of operator.h: Edit for a changed text, Choose for a
//     list item or a tab, Click for buttons, FocusMoved, Close for the window's close button. These fire the
//     handlers. A handler may throw: the toolkit keeps the exception (std::exception_ptr) while it returns
//     from native callbacks, and throws it again from RunUntilClosed or ShowModally.
//  4. After Property::Unloaded the toolkit closes the window. The form and its controls still exist, because
//     a handler that ran pending events may still be using them.
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
    /// Returns null if there is no such control.
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

    /// Gives the control the focus. Does nothing if the control cannot be used (CanBeUsed in operator.h).
    void SetFocus(Control& control);
    /// The control with the focus; null if there is none.
    Control* Focused() const { return focused_; }

    /// Stops the painting of the window. One call of UnlockPainting starts it again, however often it was
    /// locked.
    void LockPainting();
    void UnlockPainting();
    bool PaintingLocked() const { return painting_locks_ != 0; }
    /// How often painting was locked since it was last unlocked.
    int PaintingLocks() const { return painting_locks_; }

    /// Fires on_unload once and closes the window. A second call does nothing.
    void Unload();
    bool Unloaded() const { return unloaded_; }
    Handler on_unload;

    /// Sets the one mirror, which the form does not own; null detaches it. It must be detached before it is
    /// destroyed.
    void Attach(Mirror* mirror) { mirror_ = mirror; }
    /// Called by the controls to notify the mirror. For a change of the form itself `control` is Root().
    void Notify(const Control& control, Property property) const;
    /// Stands for the form itself in Mirror::Changed; its Kind is Form.
    const Control& Root() const { return *root_; }
    /// For operator.h: the operator has moved the focus to this control; null if to none.
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
    Mirror* mirror_ = nullptr; ///< not owned
};

} // namespace ui

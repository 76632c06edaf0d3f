// The window of a form: makes the native controls, shows the state of the form in them, and reports the
// operator's acts to the form through operator.h. It makes no decisions.
#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "ui/toolkit.h"
#include "ui/windows/dialog_font.h"
#include "ui/windows/native_control.h"
#include "ui/windows/tab_strip.h"

#include <commctrl.h>

namespace ui {

class NativeForm final : public Window, private Mirror {
  public:
    /// With an owner it is a dialog above the owner; null makes a main window. The window is hidden until
    /// Show. The form must outlive it.
    NativeForm(Form& form, HWND owner);
    NativeForm(const NativeForm&) = delete;
    NativeForm& operator=(const NativeForm&) = delete;
    ~NativeForm() override;

    void Show() override;
    void RunUntilClosed() override;

    /// The window of a form; null if the form has no window.
    static HWND HandleOf(const Form& form);

  private:
    void Changed(const Control& control, Property property) override;

    // native_form.cpp: making and placing
    static HWND MakeFrame(const Form& form, HWND owner);
    void MakeControls();
    void MakePage();
    void Make(NativeControl& native);
    void MakeTabs(NativeControl& native);
    HWND ParentOf(const Control& control) const;
    bool BeginsGroup(std::size_t index) const;
    void MakeToolTips();
    void AddToolTip(const NativeControl& native);
    void ScaleToolTips() const;
    void LayOut(int dpi);
    void Settle(const NativeControl& native);
    void FitClient();
    RECT PlaceOf(const Control& control) const;
    void CentreOn(HWND owner);

    // native_form_events.cpp: updating and listening
    static NativeForm* OfWindow(HWND window);
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
    static bool Filter(MSG& message);
    bool DropsInput(const MSG& message);
    NativeControl* FindUnder(POINT place);
    LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);
    bool FilterKey(const MSG& message);
    void WakeLoop() const;
    /// Shows everything that has changed since it was last called, and gives the focus that the form wants.
    void BringAllInLine();
    void BringTabsInLine(NativeControl& native);
    void TakeFormChange(Property property);
    /// Notes that a native control may not show a property, and posts a message that leads to BringAllInLine.
    void Stale(std::size_t index, Property property);
    void GiveFocus(HWND control) const;
    void GiveFocusToSomeone() const;
    void TrackFocus();
    NativeControl* Find(HWND window);
    NativeControl* FindById(int id);
    void TakeCommand(int id, WORD code);
    void Report(NativeControl& native, WORD code);
    LRESULT TakeNotice(const NMHDR& notice);
    void GiveToolTip(const NativeControl& native, NMTTDISPINFOA& wanted) const;
    LRESULT ColourControl(UINT message, WPARAM wparam, LPARAM lparam);
    void PressCancel();
    void TakeDpi(int dpi, const RECT& place);

    /// All that exist, the oldest first. Not owned.
    static std::vector<NativeForm*>& All();

    Form& form_;
    HWND window_;
    int dpi_; ///< pixels per inch that the controls are placed for
    DialogFont font_;
    HWND tool_tips_ = nullptr; ///< made when the window is shown
    std::vector<NativeControl> natives_;
    std::unique_ptr<TabStrip> tabs_;
    int tabs_index_ = -1;  ///< the tab control's place among the controls
    bool told_ = false;    ///< a message that updates the window is in the queue
    bool showing_ = false; ///< this class is changing native controls; their notifications are not reported
    bool focus_wanted_ = false; ///< the form has moved the focus, and the window has not yet
    /// When the input arrived that is being delivered to any of the forms; nothing if none is.
    static std::optional<InputClock::time_point> arrived_;
    std::exception_ptr thrown_; ///< thrown by a handler of the form, for RunUntilClosed
};

} // namespace ui

// The window of a form: makes the native controls, shows the state of the form in them, and reports the
// operator's acts to the form through operator.h. It makes no decisions.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <vector>

#include <QAbstractButton>
#include <QEventLoop>
#include <QKeyEvent>
#include <QWidget>

#include "ui/linux/qt/arrival.h"
#include "ui/linux/qt/layout_scale.h"
#include "ui/linux/qt/native_control.h"
#include "ui/linux/qt/tab_strip.h"
#include "ui/toolkit.h"

namespace ui {

class NativeForm final : public Window, private Mirror, private QObject {
  public:
    /// With an owner it is a dialog above the owner; null makes a main window. The window is hidden until
    /// Show. The form must outlive it.
    NativeForm(Form& form, QWidget* owner);
    NativeForm(const NativeForm&) = delete;
    NativeForm& operator=(const NativeForm&) = delete;
    ~NativeForm() override;

    void Show() override;
    void RunUntilClosed() override;

    /// The window of a form; null if the form has no window.
    static QWidget* WindowOf(const Form& form);

  private:
    void Changed(const Control& control, Property property) override;

    // native_form.cpp: making and placing
    void MakeFrame(QWidget* owner);
    void MakeControls();
    void MakePage();
    void Make(NativeControl& native);
    void MakeTabs(NativeControl& native);
    QWidget* ParentOf(const Control& control) const;
    void OrderTabKey();
    void NameBoxes();
    void LayOut();
    void Settle(const NativeControl& native);
    void CentreOn(const QWidget* owner);
    /// Moves the window's upper left corner to `corner`, or nearer, so that the window lies wholly within
    /// `work`, a part of the screen, if it fits.
    void MoveWithin(const QRect& work, QPoint corner);

    // native_form_acts.cpp: the operator's acts on native controls
    void Listen(NativeControl& native);
    void ListenToText(NativeControl& native);
    void ListenToButton(NativeControl& native);
    void ListenToToggle(NativeControl& native);
    void ListenToComboBox(NativeControl& native);
    void ListenToEnteredText(NativeControl& native);
    void ListenToListBox(NativeControl& native);
    void ListenToTabs(NativeControl& native);
    void ReportClick(NativeControl& native);
    /// Runs `act`, which reports the operator's act to the form. Does nothing while this class itself changes
    /// native controls. An exception is kept for RunUntilClosed: it must not pass through Qt's functions.
    void Report(const std::function<void()>& act);

    // native_form_events.cpp: updating and listening
    bool eventFilter(QObject* object, QEvent* event) override;
    bool event(QEvent* event) override;
    bool FilterWindow(QEvent& event);
    bool RefusesMouse(QWidget& widget, const QInputEvent& press);
    bool RefusesKey(QWidget& widget, const QKeyEvent& key);
    bool TakeKey(QWidget& widget, const QKeyEvent& key);
    /// Posts an event that leads to BringAllInLine, unless one is in the queue.
    void AskToBringInLine();
    /// Shows everything that has changed since it was last called, and gives the focus that the form wants.
    void BringAllInLine();
    void BringTabsInLine(NativeControl& native);
    void ShowPage(const NativeControl& page, bool shown);
    void TakeFormChange(Property property);
    void LockPainting();
    /// Notes that a native control may not show a property, and calls AskToBringInLine.
    void Stale(NativeControl& native, Property property);
    void GiveFocus();
    void TrackFocus();
    NativeControl* Find(const QObject* object);
    NativeControl& NativeOf(const Control& control);

    // native_form_keys.cpp: the keys of a dialog. With `asked` a function only says whether it uses the key.
    bool FilterKey(QWidget& widget, const QKeyEvent& key, bool asked);
    bool TakeTabKey(const QKeyEvent& key, bool asked);
    bool TakeMnemonic(const QKeyEvent& key, bool asked);
    NativeControl* NextWithMnemonic(QChar letter, int& found);
    NativeControl* Bearer(NativeControl& label);
    static void Press(QAbstractButton& button);
    void PressCancel();

    /// All that exist, the oldest first.
    static std::vector<NativeForm*>& All();

    Form& form_;
    std::unique_ptr<QWidget> window_;
    LayoutScale scale_;
    std::vector<NativeControl> natives_;
    ArrivalClock clock_;
    /// When the last press of a key or of the mouse's button arrived that was passed on to its control.
    InputClock::time_point last_press_{};
    TabStrip* tabs_ = nullptr;
    int tabs_index_ = -1;        ///< the tab control's place among the controls
    bool told_ = false;          ///< an event that updates the window is in the queue
    bool showing_ = false;       ///< this class is changing native controls; their signals are not reported
    bool focus_wanted_ = false;  ///< the form has moved the focus, and the window has not yet
    QEventLoop* loop_ = nullptr; ///< the loop that RunUntilClosed runs; null outside it
    std::exception_ptr thrown_;  ///< thrown by a handler of the form, for RunUntilClosed
};

} // namespace ui

// A form in its native window, in front, for tests that look at it and steer it.
#pragma once

#include <map>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "console/main_form_design.h"
#include "console/procedures_form_design.h"
#include "platform/pending_events.h"
#include "platform/windows/desktop.h"
#include "ui/toolkit.h"
#include "ui/windows/native_form.h"
#include "ui/windows/screen_input.h"

#include <commctrl.h>

class OnScreen : public ::testing::Test {
  protected:
    explicit OnScreen(const ui::FormDesign& design = kv::MainFormDesign()) : form_(design) {}

    void SetUp() override {
        ASSERT_TRUE(platform::DesktopIsVisible()) << "this suite needs a screen";
        window_ = ui::MakeWindow(form_);
        handle_ = ui::NativeForm::HandleOf(form_);
        window_->Show();
        ASSERT_TRUE(hands::Activate(handle_));
        Settle();
    }

    template <class T>
    T& Get(const char* name, int index = ui::kNoIndex) {
        return form_.Get<T>(name, index);
    }
    HWND Native(const char* name, int index = ui::kNoIndex) { return Native(*form_.Find(name, index)); }
    HWND Native(const ui::Control& control) {
        HWND& native = natives_[control.Id()];
        if (native == nullptr) {
            native = hands::Child(handle_, control.Id());
        }
        return native;
    }
    /// Lets what has been posted run.
    static void Settle() {
        platform::RunPendingEvents();
        platform::RunPendingEvents();
    }
    /// A page's native controls are made when it is shown first.
    void ShowTab(int tab) {
        Get<ui::TabControl>("tabMain").Tab(tab);
        Settle();
    }
    /// Every page, and the first one again; nothing on a form without tabs.
    void ShowAllTabs() {
        auto* tabs = static_cast<ui::TabControl*>(form_.Find("tabMain"));
        for (int tab = 0; tabs != nullptr && tab <= tabs->Tabs(); ++tab) {
            ShowTab(tab % tabs->Tabs());
        }
    }
    /// The name of the control that has the focus, with its index; "" if none of the form's has.
    std::string FocusName() const {
        HWND focus = ::GetFocus();
        if (hands::ClassOf(::GetParent(focus)) == "ComboBox") {
            focus = ::GetParent(focus); // its text field has an identifier that is another's on the form
        }
        for (const auto& control : form_.Controls()) {
            if (focus != nullptr && control->Id() == ::GetDlgCtrlID(focus)) {
                return Name(*control);
            }
        }
        return "";
    }
    static std::string Name(const ui::Control& control) {
        return control.Name() + (control.Index() ? std::to_string(*control.Index()) : std::string());
    }
    void Scale(int dpi) {
        constexpr UINT kDpiChanged = 0x02E0; // WM_DPICHANGED
        RECT place{20, 40, 0, 0};
        ::SendMessageA(handle_, kDpiChanged, static_cast<WPARAM>(MAKELONG(dpi, dpi)),
                       reinterpret_cast<LPARAM>(&place));
        Settle();
    }

    ui::Form form_;
    std::unique_ptr<ui::Window> window_;
    HWND handle_ = nullptr;

  private:
    std::map<int, HWND> natives_;
};

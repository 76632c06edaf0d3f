// The fixture of the tests that need a screen: shows a form in its native window and brings the window to the
// front.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "console/form_designs.h"
#include "platform/pending_events.h"
#include "ui/screen.h"
#include "ui/toolkit.h"

class OnScreen : public ::testing::Test {
  protected:
    explicit OnScreen(const ui::FormDesign& design = kv::MainFormDesign()) : form_(design) {}

    void SetUp() override {
        ASSERT_TRUE(screen::IsThere()) << "this suite needs a screen";
        window_ = ui::MakeWindow(form_);
        top_ = screen::WindowOf(form_);
        window_->Show();
        ASSERT_TRUE(screen::Activate(top_));
        Settle();
    }

    void TearDown() override {
        if (resized_) {
            screen::SetSize(top_, screen::Sizes().front());
        }
    }

    template <class T>
    T& Get(const char* name, int index = ui::kNoIndex) {
        return form_.Get<T>(name, index);
    }
    screen::Part Native(const char* name, int index = ui::kNoIndex) {
        return Native(*form_.Find(name, index));
    }
    /// The native control of a control; null until it is made.
    screen::Part Native(const ui::Control& control) {
        screen::Part& native = natives_[control.Id()]; // the search is slow, and a native control stays
        if (native == nullptr) {
            native = screen::Find(form_, control);
        }
        return native;
    }
    /// Runs pending events, and those that they post.
    static void Settle() {
        platform::RunPendingEvents();
        platform::RunPendingEvents();
    }
    /// Activates a tab. The native controls of a page are made when it is first shown.
    void ShowTab(int tab) {
        Get<ui::TabControl>("tabMain").Tab(tab);
        Settle();
    }
    /// Shows every page, so that all native controls are made, then the first page. Does nothing on a form
    /// without tabs.
    void ShowAllTabs() {
        auto* tabs = static_cast<ui::TabControl*>(form_.Find("tabMain"));
        for (int tab = 0; tabs != nullptr && tab <= tabs->Tabs(); ++tab) {
            ShowTab(tab % tabs->Tabs());
        }
    }
    /// Lays the window out at one of screen::Sizes. The test's end restores the usual size.
    void SetSize(int size) {
        resized_ = true;
        screen::SetSize(top_, size);
        Settle();
    }
    /// The step for a screen::Meanwhile: calls `step` until it returns true. If the form is not closed after
    /// a minute, the test fails and the form is unloaded, so that the test ends.
    static std::function<bool()> WithEnd(ui::Form& form, std::function<bool()> step) {
        const auto end = ui::InputClock::now() + std::chrono::minutes(1);
        return [&form, step = std::move(step), end, done = false]() mutable {
            done = done || step();
            if (ui::InputClock::now() < end) {
                return false;
            }
            ADD_FAILURE() << "the form is still there after a minute";
            form.Unload();
            return true;
        };
    }
    /// Runs the window's events until the form is unloaded, at most a minute.
    void RunUntilClosed() {
        const screen::Meanwhile end(WithEnd(form_, [] { return true; }));
        window_->RunUntilClosed();
    }
    /// The name of the control that has the focus, with its index; "" if no control of the form has it.
    std::string FocusName() const {
        const ui::Control* focus = screen::Focused(form_);
        return focus == nullptr ? "" : Name(*focus);
    }
    static std::string Name(const ui::Control& control) {
        return control.Name() + (control.Index() ? std::to_string(*control.Index()) : std::string());
    }
    /// Waits until the window has handled all input that was sent.
    static void ExpectInputArrives() {
        EXPECT_TRUE(screen::InputArrived());
        Settle();
    }

    ui::Form form_;
    std::unique_ptr<ui::Window> window_;
    screen::Part top_ = nullptr;

  private:
    std::map<int, screen::Part> natives_;
    bool resized_ = false;
};

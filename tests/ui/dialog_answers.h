// Answers the system's dialogs that a modal call opens, one after another, while the call runs.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ui/screen.h"

/// The step of a screen::Meanwhile. Each act answers one dialog by mouse or keyboard input, in the order in
/// which the dialogs come to the front. An act returns true when it has answered, or false to be called
/// again. It must not wait, because a dialog gets its input only while its own loop runs. If the dialog is
/// still in front 15 seconds after its act, the act's input is taken for lost, and the act is repeated. A
/// dialog that is still in front after a minute, or for which no act is left, is a failure and is dismissed,
/// so that the test ends.
class DialogAnswers {
  public:
    using Act = std::function<bool(screen::Part dialog)>;

    explicit DialogAnswers(std::vector<Act> acts) : acts_(std::move(acts)) {}

    /// Always returns false, because another dialog may follow.
    bool operator()() {
        screen::Part front = screen::DialogInFront();
        const auto now = std::chrono::steady_clock::now();
        if (front != front_) {
            front_ = front;
            since_ = now;
            answered_ = false;
        }
        if (answered_ && now - acted_ > kAgain) {
            answered_ = false;
            --next_;
        }
        if (front == nullptr || now - since_ < kToComeUp) {
            return false;
        }
        if (!answered_ && next_ < acts_.size() && screen::Activate(front) && acts_[next_](front)) {
            answered_ = true;
            acted_ = std::chrono::steady_clock::now();
            ++next_;
        } else if (now - since_ > kLongest) {
            ADD_FAILURE() << "a dialog has not gone by its answer, or there is none for it";
            screen::Dismiss(front);
            since_ = now;
        }
        return false;
    }

  private:
    static constexpr std::chrono::milliseconds kToComeUp{200}; ///< after this time a dialog's list is filled
    static constexpr std::chrono::seconds kAgain{15};          ///< after this time an act is repeated
    static constexpr std::chrono::seconds kLongest{60};        ///< how long a dialog may stay in front

    std::vector<Act> acts_;
    std::size_t next_ = 0;
    screen::Part front_ = nullptr;
    std::chrono::steady_clock::time_point since_;
    std::chrono::steady_clock::time_point acted_; ///< when the dialog in front was answered last
    bool answered_ = false;
};

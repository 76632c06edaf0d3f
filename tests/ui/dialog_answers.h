// Answers the dialogs that a modal call brings up, one after another, while the call runs.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ui/screen.h"

/// For screen::Meanwhile. Each act answers the dialog that comes to the front next, by input. It returns
/// false to be called again, and may not wait: a dialog gets its input only when its own loop runs. A dialog
/// that is still in front long after its act, or that no act is left for, is dismissed, so that a test that
/// fails ends.
class DialogAnswers {
  public:
    using Act = std::function<bool(screen::Part dialog)>;

    explicit DialogAnswers(std::vector<Act> acts) : acts_(std::move(acts)) {}

    /// Returns false: the next dialog may be on its way.
    bool operator()() {
        screen::Part front = screen::DialogInFront();
        const auto now = std::chrono::steady_clock::now();
        if (front != front_) {
            front_ = front;
            since_ = now;
            answered_ = false;
        }
        if (front == nullptr || now - since_ < kToComeUp) {
            return false;
        }
        if (!answered_ && next_ < acts_.size() && screen::Activate(front) && acts_[next_](front)) {
            answered_ = true;
            ++next_;
        } else if (now - since_ > kLongest) {
            ADD_FAILURE() << "a dialog has not gone by its answer, or there is none for it";
            screen::Dismiss(front);
            since_ = now;
        }
        return false;
    }

  private:
    static constexpr std::chrono::milliseconds kToComeUp{200}; ///< its list is filled
    static constexpr std::chrono::seconds kLongest{30};

    std::vector<Act> acts_;
    std::size_t next_ = 0;
    screen::Part front_ = nullptr;
    std::chrono::steady_clock::time_point since_;
    bool answered_ = false;
};

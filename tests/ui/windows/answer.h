// Answers a dialog of the system that a call of this thread brings up, as a person would: from a second
// thread.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

#include "platform/windows/lean_windows.h"

/// Waits for a dialog of this process and lets `answer` do the rest. A dialog that nobody answers is a test
/// that does not end: `answer` must press a button.
class Answer {
  public:
    explicit Answer(std::function<void(HWND)> answer)
        : thread_([answer = std::move(answer)] { Run(answer); }) {}
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;
    ~Answer() { thread_.join(); }

    static void Press(HWND dialog, int button) {
        ::PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
    }

  private:
    static void Run(const std::function<void(HWND)>& answer) {
        for (int time = 0; time < 6000; ++time) {
            const HWND dialog = ::FindWindowA("#32770", nullptr);
            DWORD process = 0;
            ::GetWindowThreadProcessId(dialog, &process);
            if (dialog != nullptr && process == ::GetCurrentProcessId() && ::IsWindowVisible(dialog) != 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(200)); // it fills its tree
                answer(dialog);
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    std::thread thread_;
};

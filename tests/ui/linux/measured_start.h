// Measures how long a program takes from its start until its window is shown, or until its end. It needs an X
// screen with a window manager and without other windows.
#pragma once

#include <string>

namespace screen {

class MeasuredStart {
  public:
    MeasuredStart();
    MeasuredStart(const MeasuredStart&) = delete;
    MeasuredStart& operator=(const MeasuredStart&) = delete;
    ~MeasuredStart();

    /// Starts the program and returns the milliseconds until its window is on the screen and the window's
    /// middle is painted. Then kills the program. Throws std::runtime_error if it shows no window within 20
    /// seconds.
    double UntilPainted(const std::string& program, const std::string& argument = "");

  private:
    /// The X window of the only program on the screen; 0 if there is none.
    unsigned long Window();
    bool MiddleIsPainted(unsigned long window);
    void WaitUntilEmpty();

    void* display_; ///< Xlib's Display; its header is not included here: it has macros with names of Qt
};

/// Starts a program and returns the milliseconds until its end. Throws std::runtime_error if it does not end
/// within 20 seconds or its exit code is not 0.
double UntilEnd(const std::string& program, const std::string& argument);

} // namespace screen

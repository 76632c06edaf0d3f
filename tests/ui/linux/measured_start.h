// How long a program takes from its start to its window, or to its end. Needs an X screen with a window
// manager and no window on it.
#pragma once

#include <string>

namespace screen {

class MeasuredStart {
  public:
    MeasuredStart();
    MeasuredStart(const MeasuredStart&) = delete;
    MeasuredStart& operator=(const MeasuredStart&) = delete;
    ~MeasuredStart();

    /// Milliseconds until the program's window is on the screen and its middle is painted. The program is
    /// ended then. Throws if no window comes.
    double UntilPainted(const std::string& program, const std::string& argument = "");

  private:
    /// The one window of a program on the screen; 0 if there is none.
    unsigned long Window();
    bool MiddleIsPainted(unsigned long window);
    void WaitUntilEmpty();

    void* display_; ///< of Xlib, whose header has macros with names that Qt uses
};

/// Milliseconds from the start of a program to its end. Throws unless its exit code is 0.
double UntilEnd(const std::string& program, const std::string& argument);

} // namespace screen

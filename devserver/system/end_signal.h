// How an operator or a service manager asks the program to end: SIGTERM and SIGINT, or the console's events.
// Knows nothing of what ends.
#pragma once

namespace devsql::system {

/// One in a program, made before any thread, so that every thread leaves the signal to the one that waits. On
/// Windows the system ends the process as soon as the event of a closed console was taken: the destructor is
/// what it waits for.
class EndSignal {
  public:
    EndSignal();
    ~EndSignal();
    EndSignal(const EndSignal&) = delete;
    EndSignal& operator=(const EndSignal&) = delete;

    /// Comes back when the program is asked to end.
    void Wait() const;
};

} // namespace devsql::system

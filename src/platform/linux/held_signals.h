// Signals with which the system ends a program whose write cannot be done. As long as this lives such a write
// fails with an error instead. Programs that are started keep the system's way.
#pragma once

#include <csignal>

namespace platform {

/// Holds back SIGPIPE (nobody reads the pipe any more) and SIGXFSZ (the file is as long as the user's limit
/// allows).
class HeldSignals {
  public:
    HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals();

  private:
    sigset_t fresh_{}; ///< those that were not waiting before
    sigset_t mask_before_{};
};

} // namespace platform

// Blocks the signals by which the system ends a program that cannot write, so that the write fails with an
// error instead. Started programs are not affected.
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
    sigset_t fresh_{}; ///< signals that were not pending before
    sigset_t mask_before_{};
};

} // namespace platform

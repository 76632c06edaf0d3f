// Blocks the signals by which the system ends a program whose write fails, so that the write returns an error
// instead. Programs that this program starts are not affected.
#pragma once

#include <csignal>

namespace platform {

/// Blocks SIGPIPE (nobody reads the pipe any more) and SIGXFSZ (the file is as long as the user's limit
/// allows) in this thread. The destructor drops the signals that came meanwhile and unblocks them.
class HeldSignals {
  public:
    HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals();

  private:
    sigset_t to_drop_{}; ///< those of the two that were not pending before
    sigset_t mask_before_{};
};

} // namespace platform

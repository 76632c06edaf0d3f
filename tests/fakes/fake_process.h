// A fake of the service that starts programs (platform/process.h), linked instead of the system's: calls are
// recorded and nothing is started.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "platform/process.h"

namespace fakes {

class FakeProcesses {
  public:
    FakeProcesses();
    FakeProcesses(const FakeProcesses&) = delete;
    FakeProcesses& operator=(const FakeProcesses&) = delete;
    ~FakeProcesses();
    /// The instance that the service uses. Ends the test program if there is no instance.
    static FakeProcesses& Current();

    /// Called for every program; returns true if it starts. If it is empty, every program starts.
    std::function<bool(const platform::ShellExecuteInfo&)> on_start;
    /// True if the handle of a started program is returned.
    bool gives_handle = true;

    std::vector<platform::ShellExecuteInfo> started;
    std::vector<std::uint32_t> waits; ///< the limit of each wait for a program, in milliseconds
    int open_handles = 0;             ///< returned and not closed
};

} // namespace fakes

// The service that starts programs, linked in place of the system's: calls are recorded and nothing is
// started.
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
    static FakeProcesses& Current();

    /// Called for every program; returns true if it starts. Without it every program starts.
    std::function<bool(const platform::ShellExecuteInfo&)> on_start;
    /// True if the handle of a started program is returned.
    bool gives_handle = true;

    std::vector<platform::ShellExecuteInfo> started;
    std::vector<std::uint32_t> waits; ///< milliseconds
    int open_handles = 0;
};

} // namespace fakes

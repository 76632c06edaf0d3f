// Starting programs, recorded and not done, for tests that link this in the place of the system's.
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

    /// What every started program does; true: it starts. Without it every program starts.
    std::function<bool(const platform::ShellExecuteInfo&)> on_start;
    /// Whether a started program's handle comes back.
    bool gives_handle = true;

    std::vector<platform::ShellExecuteInfo> started;
    std::vector<std::uint32_t> waits; ///< milliseconds
    int open_handles = 0;
};

} // namespace fakes

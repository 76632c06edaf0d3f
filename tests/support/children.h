// Runs cases side by side, each in a process of its own: for tests that wait more than they work, and for
// code that has one state for the process. Linux only.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace support {

struct Case {
    std::string name;
    /// Runs in the child; its failed expectations are the test's. What it starts ends with it.
    std::function<void()> run;
};

/// Runs all cases, `at_once` at a time. A case that fails, dies or takes more than a minute is one failure of
/// the running test, with the child's output. The calling process must have one thread.
void RunInChildren(const std::vector<Case>& cases, std::size_t at_once);

} // namespace support

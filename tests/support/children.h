// Runs cases in parallel, each in its own process: for tests that wait more than they compute, and for code
// with global state. Linux only.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace support {

struct Case {
    std::string name;
    /// Runs in the child. Its failed expectations are failures of the test. Processes that it starts end with
    /// it.
    std::function<void()> run;
};

/// Runs all cases, `at_once` at a time. A case that fails, dies or takes more than a minute is one failure of
/// the running test, with the child's output. The calling process must have one thread.
void RunInChildren(const std::vector<Case>& cases, std::size_t at_once);

} // namespace support

// Runs the cases of a test in parallel, each in its own child process. This is for cases that wait more than
// they compute, and for code with global state. Linux only.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace support {

struct Case {
    std::string name;
    /// Runs in the child process. Expectations that fail in it are failures of the test. Processes that it
    /// starts are killed when it ends.
    std::function<void()> run;
};

/// Runs all cases, `at_once` at a time, and returns when all have ended. A case that fails, crashes or takes
/// more than five minutes adds one failure to the running test, with the child's output. The calling process
/// must have only one thread, because it is forked.
void RunInChildren(const std::vector<Case>& cases, std::size_t at_once);

} // namespace support

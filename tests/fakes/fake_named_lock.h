// The computer's named locks in memory, for tests that link this in the place of the system's.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace fakes {

class FakeNamedLocks {
  public:
    FakeNamedLocks();
    FakeNamedLocks(const FakeNamedLocks&) = delete;
    FakeNamedLocks& operator=(const FakeNamedLocks&) = delete;
    ~FakeNamedLocks();
    /// The one that the service works on. Fails the test's program if there is none.
    static FakeNamedLocks& Current();

    /// Locks that another process has, by a part of their names.
    std::set<std::string> held_elsewhere;
    /// Every name that was asked for, in order.
    std::vector<std::string> asked;
    /// Those that the program has.
    std::multiset<std::string> held;
};

} // namespace fakes

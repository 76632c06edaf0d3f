// The computer's named locks in memory, linked in place of the system's.
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
    /// The instance that the service uses. Ends the test program if there is no instance.
    static FakeNamedLocks& Current();

    /// Locks that another process has, by a part of their names.
    std::set<std::string> held_elsewhere;
    /// Every name that was asked for, in order.
    std::vector<std::string> asked;
    /// The locks that the program has.
    std::multiset<std::string> held;
};

} // namespace fakes

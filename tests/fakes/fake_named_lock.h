// The computer's named locks (platform/named_lock.h) in memory, linked instead of the system's.
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

    /// A lock whose name contains one of these texts is held by another process.
    std::set<std::string> held_elsewhere;
    /// The name of every lock that the program tried to take, in order.
    std::vector<std::string> asked;
    /// The locks that the program holds.
    std::multiset<std::string> held;
};

} // namespace fakes

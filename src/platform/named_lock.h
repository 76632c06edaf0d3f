// A lock with a name, which one process of the computer can have at a time.
#pragma once

#include <memory>
#include <string>

namespace platform {

/// Holds the lock as long as it lives. The system releases it when the process ends, in whatever way.
/// Programs that the process has started do not inherit it.
class NamedLock {
  public:
    virtual ~NamedLock() = default;
};

/// Returns null if another process, of any user, has the lock with this name; does not wait. `name` may have
/// any length and contain any character. Throws std::system_error if the system cannot make a lock.
std::unique_ptr<NamedLock> TryLock(const std::string& name);

} // namespace platform

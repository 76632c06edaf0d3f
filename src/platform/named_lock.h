// A lock with a name. Only one process of the computer can have it at a time.
#pragma once

#include <memory>
#include <string>

namespace platform {

/// Owns the lock: its destructor releases it. The system releases it when the process ends, in whatever way.
/// Programs that the process has started do not inherit it.
class NamedLock {
  public:
    virtual ~NamedLock() = default;
};

/// Takes the lock with this name. Does not wait: returns null if another process, of any user, has it. `name`
/// may have any length and contain any character. Throws std::system_error if the system cannot make a lock.
std::unique_ptr<NamedLock> TryLock(const std::string& name);

} // namespace platform

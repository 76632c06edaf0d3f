// A lock by name that one process of the computer can have at a time.
#pragma once

#include <memory>
#include <string>

namespace platform {

/// Has the lock as long as it lives. The system takes it back when the process ends, however it ends;
/// programs that the process has started do not have it.
class NamedLock {
  public:
    virtual ~NamedLock() = default;
};

/// Null if another process, of whatever user, has the lock of this name; does not wait. `name` may be of any
/// length and hold any character. Throws std::system_error if the system has no such locks to give.
std::unique_ptr<NamedLock> TryLock(const std::string& name);

} // namespace platform

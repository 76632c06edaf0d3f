// A lock is a mutex in the name space of all sessions. It is created and never waited for: its existence is
// the lock, and the system deletes it when the last process that has it open ends.
#include "platform/named_lock.h"

#include <functional>
#include <system_error>
#include <utility>

#include "platform/windows/handle.h"

namespace platform {
namespace {

class MutexLock : public NamedLock {
  public:
    explicit MutexLock(OwnedHandle mutex) : mutex_(std::move(mutex)) {}

  private:
    OwnedHandle mutex_;
};

/// Returns the mutex's name. It may have at most MAX_PATH characters and no backslash after its name space,
/// so of a long name the beginning and a hash of the whole are used, and each backslash becomes "/".
std::string SystemName(std::string name) {
    constexpr std::size_t kMost = 200;
    if (name.size() > kMost) {
        name = name.substr(0, kMost) + std::to_string(std::hash<std::string>{}(name));
    }
    for (char& c : name) {
        c = c == '\\' ? '/' : c;
    }
    return "Global\\" + name;
}

} // namespace

std::unique_ptr<NamedLock> TryLock(const std::string& name) {
    OwnedHandle mutex(::CreateMutexA(nullptr, FALSE, SystemName(name).c_str()));
    const DWORD error = ::GetLastError();
    if (mutex == nullptr) {
        if (error == ERROR_ACCESS_DENIED) {
            return nullptr; // another user's process has it
        }
        throw std::system_error(static_cast<int>(error), std::system_category(), "a lock could not be made");
    }
    return error == ERROR_ALREADY_EXISTS ? nullptr : std::make_unique<MutexLock>(std::move(mutex));
}

} // namespace platform

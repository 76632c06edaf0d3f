// A lock is a mutex in the name space of all sessions. It is only made and never waited for: its being there
// is the lock, and the system takes it away with the last process that has it open.
#include "platform/named_lock.h"

#include <functional>
#include <system_error>

#include "platform/windows/lean_windows.h"

namespace platform {
namespace {

class MutexLock : public NamedLock {
  public:
    explicit MutexLock(HANDLE handle) : handle_(handle) {}
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;
    ~MutexLock() override { ::CloseHandle(handle_); }

  private:
    HANDLE handle_;
};

/// A name holds no backslash after its name space, and no more than MAX_PATH characters: a long one keeps its
/// beginning and a sum of all.
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
    const HANDLE handle = ::CreateMutexA(nullptr, FALSE, SystemName(name).c_str());
    const DWORD error = ::GetLastError();
    if (handle == nullptr) {
        if (error == ERROR_ACCESS_DENIED) {
            return nullptr; // another user's process has it
        }
        throw std::system_error(static_cast<int>(error), std::system_category(), "a lock could not be made");
    }
    auto lock = std::make_unique<MutexLock>(handle);
    return error == ERROR_ALREADY_EXISTS ? nullptr : std::unique_ptr<NamedLock>(std::move(lock));
}

} // namespace platform

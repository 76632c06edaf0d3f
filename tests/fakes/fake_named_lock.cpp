// Implements platform/named_lock.h.
#include "fakes/fake_named_lock.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "platform/named_lock.h"

namespace fakes {
namespace {
FakeNamedLocks* current = nullptr;
} // namespace

FakeNamedLocks::FakeNamedLocks() {
    current = this;
}

FakeNamedLocks::~FakeNamedLocks() {
    current = nullptr;
}

FakeNamedLocks& FakeNamedLocks::Current() {
    if (current == nullptr) {
        std::fputs("a named lock was asked for, and the test has no FakeNamedLocks\n", stderr);
        std::abort();
    }
    return *current;
}

} // namespace fakes

namespace platform {
namespace {

class HeldLock : public NamedLock {
  public:
    explicit HeldLock(std::string name) : name_(std::move(name)) {
        fakes::FakeNamedLocks::Current().held.insert(name_);
    }
    HeldLock(const HeldLock&) = delete;
    HeldLock& operator=(const HeldLock&) = delete;
    ~HeldLock() override {
        auto& held = fakes::FakeNamedLocks::Current().held;
        held.erase(held.find(name_));
    }

  private:
    std::string name_;
};

} // namespace

std::unique_ptr<NamedLock> TryLock(const std::string& name) {
    fakes::FakeNamedLocks& locks = fakes::FakeNamedLocks::Current();
    locks.asked.push_back(name);
    const bool taken =
        std::any_of(locks.held_elsewhere.begin(), locks.held_elsewhere.end(),
                    [&](const std::string& part) { return name.find(part) != std::string::npos; });
    return taken ? nullptr : std::make_unique<HeldLock>(name);
}

} // namespace platform

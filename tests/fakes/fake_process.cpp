// Implements platform/process.h.
#include "fakes/fake_process.h"

#include <cstdio>
#include <cstdlib>

namespace fakes {
namespace {
FakeProcesses* current = nullptr;
} // namespace

FakeProcesses::FakeProcesses() {
    current = this;
}

FakeProcesses::~FakeProcesses() {
    current = nullptr;
}

FakeProcesses& FakeProcesses::Current() {
    if (current == nullptr) {
        std::fputs("a program was started, and the test has no FakeProcesses\n", stderr);
        std::abort();
    }
    return *current;
}

} // namespace fakes

namespace platform {
namespace {

class RecordedProcess : public Process {
  public:
    RecordedProcess() { ++fakes::FakeProcesses::Current().open_handles; }
    RecordedProcess(const RecordedProcess&) = delete;
    RecordedProcess& operator=(const RecordedProcess&) = delete;
    ~RecordedProcess() override { --fakes::FakeProcesses::Current().open_handles; }
    void Wait(std::uint32_t milliseconds) override {
        fakes::FakeProcesses::Current().waits.push_back(milliseconds);
    }
};

} // namespace

bool ShellExecuteProgram(const ShellExecuteInfo& info, std::unique_ptr<Process>& process) {
    auto& fake = fakes::FakeProcesses::Current();
    fake.started.push_back(info);
    process.reset();
    if (fake.on_start && !fake.on_start(info)) {
        return false;
    }
    if (fake.gives_handle) {
        process = std::make_unique<RecordedProcess>();
    }
    return true;
}

} // namespace platform

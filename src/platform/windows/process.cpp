// Starts programs by ShellExecuteEx.
#include "platform/process.h"

#include <utility>

#include "platform/windows/handle.h"

#include <shellapi.h>

namespace platform {
namespace {

class WindowsProcess : public Process {
  public:
    explicit WindowsProcess(OwnedHandle process) : process_(std::move(process)) {}

    void Wait(std::uint32_t milliseconds) override { ::WaitForSingleObject(process_.get(), milliseconds); }

  private:
    OwnedHandle process_;
};

} // namespace

bool ShellExecuteProgram(const ShellExecuteInfo& info, std::unique_ptr<Process>& process) {
    process.reset();
    SHELLEXECUTEINFOA record{};
    static_assert(sizeof(void*) != 4 || sizeof record == 60, "the x86 record has 60 bytes");
    record.cbSize = sizeof record;
    record.fMask = info.mask;
    record.lpVerb = info.verb.c_str();
    record.lpFile = info.file.c_str();
    record.lpParameters = info.parameters.c_str();
    record.lpDirectory = info.directory.empty() ? nullptr : info.directory.c_str();
    record.nShow = info.show;
    if (::ShellExecuteExA(&record) == 0) {
        return false;
    }
    if (record.hProcess != nullptr) {
        process = std::make_unique<WindowsProcess>(OwnedHandle(record.hProcess));
    }
    return true;
}

} // namespace platform

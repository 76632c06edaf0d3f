// Starts another program and waits for its end, with the parameters of the Windows call ShellExecuteEx.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace platform {

/// SEE_MASK_NOCLOSEPROCESS: return the process's handle.
inline constexpr std::uint32_t kNoCloseProcess = 0x40;
/// WaitForSingleObject's "no limit".
inline constexpr std::uint32_t kInfiniteWait = 0xFFFFFFFF;

/// The fields of SHELLEXECUTEINFO that the program fills; the others are 0.
struct ShellExecuteInfo {
    std::uint32_t mask = 0;
    std::string verb;
    std::string file;       ///< may be enclosed in double quotes
    std::string parameters; ///< one string, split as the started program splits it
    std::string directory;  ///< empty: the current one
    std::int32_t show = 0;  ///< 0 hides the started program's window
};

/// A started process. Releasing it does not end the process.
class Process {
  public:
    virtual ~Process() = default;
    /// Returns when the process has ended or the time is over.
    virtual void Wait(std::uint32_t milliseconds) = 0;
};

/// Starts the program. False if it could not be started. `process` receives the handle if the mask asks for
/// it and the system gave one, else null.
bool ShellExecuteProgram(const ShellExecuteInfo& info, std::unique_ptr<Process>& process);

} // namespace platform

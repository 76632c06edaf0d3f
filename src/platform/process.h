// Starts another program and waits for its end. The parameters are those of the Windows call ShellExecuteEx.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace platform {

/// A bit of ShellExecuteInfo::mask, the Windows flag SEE_MASK_NOCLOSEPROCESS: the caller wants a Process.
inline constexpr std::uint32_t kNoCloseProcess = 0x40;
/// The time for Process::Wait that means no limit.
inline constexpr std::uint32_t kInfiniteWait = 0xFFFFFFFF;

/// The fields of the Windows record SHELLEXECUTEINFO that the program fills; the others are 0. Linux ignores
/// `verb` and `show`.
struct ShellExecuteInfo {
    std::uint32_t mask = 0; ///< 0 or kNoCloseProcess
    std::string verb;       ///< the action, such as "open"
    std::string file;       ///< may be enclosed in double quotes
    std::string parameters; ///< one string, split as the started program splits it
    std::string directory;  ///< in which the program starts; empty: the current one
    std::int32_t show = 0;  ///< 0 hides the started program's window
};

/// A started process. Destroying this object does not end the process.
class Process {
  public:
    virtual ~Process() = default;
    /// Returns when the process has ended or after `milliseconds`.
    virtual void Wait(std::uint32_t milliseconds) = 0;
};

/// Starts the program and does not wait for it. Returns false if it could not be started. `process` receives
/// the started process if the mask asks for it and the system gives a handle, otherwise null.
bool ShellExecuteProgram(const ShellExecuteInfo& info, std::unique_ptr<Process>& process);

} // namespace platform

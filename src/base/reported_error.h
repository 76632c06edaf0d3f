// The exceptions of the layers below the managers. failure.h converts them to failures without knowing those
// layers.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace kv {

/// The failures of the run time: errors of the program's own operations, such as a missing file or an
/// overflow. Operators see these numbers and texts in message boxes and in the log.
namespace run_time {
inline constexpr std::int32_t kInvalidProcedureCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kSubscriptOutOfRange = 9;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kInternalError = 51;
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kDeviceIoError = 57;
inline constexpr std::int32_t kFileAlreadyExists = 58;
inline constexpr std::int32_t kDiskFull = 61;
inline constexpr std::int32_t kPermissionDenied = 70;
inline constexpr std::int32_t kPathFileAccessError = 75;
inline constexpr std::int32_t kPathNotFound = 76;
inline constexpr std::int32_t kObjectVariableNotSet = 91;
inline constexpr std::int32_t kInvalidUseOfNull = 94;
inline constexpr std::int32_t kCannotCreateObject = 429;

/// Returns the text of one of the numbers above; "Application-defined or object-defined error" for any other
/// number.
const char* Description(std::int32_t number);
} // namespace run_time

/// An error that a server, a driver or a COM object reported.
class ReportedError : public std::exception {
  public:
    ReportedError(std::int32_t number, std::string source, std::string description)
        : number_(number), source_(std::move(source)), description_(std::move(description)) {}

    std::int32_t Number() const { return number_; }
    /// The name of the component that reported the error, such as "ADODB.Command".
    const std::string& Source() const { return source_; }
    const char* what() const noexcept override { return description_.c_str(); }

  private:
    std::int32_t number_;
    std::string source_;
    std::string description_;
};

/// A failure with one of run_time's numbers and the text of that number.
class RunTimeError : public std::exception {
  public:
    explicit RunTimeError(std::int32_t number) : number_(number) {}

    std::int32_t Number() const { return number_; }
    const char* what() const noexcept override { return run_time::Description(number_); }

  private:
    std::int32_t number_;
};

} // namespace kv

// The errors and messages that the last call of a connection has left, as ADO presents them, and the
// exceptions of failed calls. Knows no driver.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/reported_error.h"

namespace ado {

/// One error or message. A message that came with success has the number 265946 if it was raised by a script
/// or procedure, and 0 if it is the server's own.
struct Error {
    std::int32_t Number = 0;
    std::string Description;
    std::string Source;           ///< the component that reported it
    std::int32_t NativeError = 0; ///< the number that the server or the driver gives
    std::string SQLState;         ///< five characters; empty if there is no state
};

/// A connection's collection of errors. Entries with a number other than 0 come first.
class Errors {
  public:
    Errors() = default;
    explicit Errors(std::vector<Error> errors) : errors_(std::move(errors)) {}

    std::int32_t Count() const { return static_cast<std::int32_t>(errors_.size()); }

    /// Returns an entry. The first has the index 0. Throws std::out_of_range for an index outside the
    /// collection.
    const Error& Item(std::int16_t index) const {
        if (index < 0 || index >= Count()) {
            throw std::out_of_range("Item cannot be found in the collection corresponding to the requested "
                                    "name or ordinal.");
        }
        return errors_[static_cast<std::size_t>(index)];
    }

    void Clear() { errors_.clear(); }

  private:
    std::vector<Error> errors_;
};

/// A failed call. Its number is that of the first error that the server or the driver reported, or one of the
/// numbers below.
class CallError : public kv::ReportedError {
  public:
    using ReportedError::ReportedError;
};

/// ADO's numbers for wrong calls, which this layer finds itself. Such failures are not added to a
/// connection's Errors.
inline constexpr std::int32_t kArgumentsInConflict = 3001;
inline constexpr std::int32_t kNoCurrentRecord = 3021;
inline constexpr std::int32_t kFeatureNotAvailable = 3251;
inline constexpr std::int32_t kItemNotFound = 3265;
inline constexpr std::int32_t kObjectClosed = 3704;
inline constexpr std::int32_t kObjectOpen = 3705;
inline constexpr std::int32_t kInvalidConnection = 3709;

/// Throws a CallError with one of these numbers and ADO's text for it. `source` is the class of the object
/// that was called, as in "ADODB.Command". If `detail` is not empty, it is added to the text; it names the
/// refused value.
[[noreturn]] void RaiseOwnError(std::int32_t number, const char* source, const std::string& detail = {});

/// Thrown for a value that cannot be converted. Its number is kOverflow, kTypeMismatch or kInvalidUseOfNull
/// of kv::run_time. It is not a CallError, since no call has failed.
class ConversionError : public kv::RunTimeError {
  public:
    using RunTimeError::RunTimeError;
};

} // namespace ado

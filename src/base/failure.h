// Failures: the exception that a routine raises, the current error that it leaves, and the one way to arm a
// handler. Knows no log, no window and no database.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "base/reported_error.h"

namespace kv {

/// The number of every failure that the program raises for itself, 0x80040001.
inline constexpr std::int32_t kProgramFailure = static_cast<std::int32_t>(0x80040001U);

/// A raised failure. Three fields, as the current error has them.
class Failure : public std::exception {
  public:
    Failure(std::int32_t number, std::string source, std::string description)
        : number_(number), source_(std::move(source)), description_(std::move(description)) {}

    std::int32_t Number() const { return number_; }
    const std::string& Source() const { return source_; }
    const std::string& Description() const { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

  private:
    std::int32_t number_;
    std::string source_;
    std::string description_;
};

/// The state that a raised failure leaves; number 0 means no error. A routine that arms a handler clears it
/// when it arms the handler and again when it returns.
struct ErrorState {
    std::int32_t number = 0;
    std::string source;
    std::string description;
};

/// The current error of the one thread that the program has.
const ErrorState& CurrentError();
void ClearCurrentError();

/// Sets the current error and throws the Failure.
[[noreturn]] void RaiseFailure(std::int32_t number, std::string source, std::string description);
/// Raises one of run_time's numbers with its text, the program's name as the source.
[[noreturn]] void RaiseRunTimeFailure(std::int32_t number);

/// To be called inside a catch (...): returns the exception in flight as a Failure and makes it the current
/// error. The system's errors (a file error, no memory) become the failure of the run time with the same
/// meaning, here and nowhere else.
Failure TranslateInFlight();

/// Runs `body` with a failure handler armed. A failure goes to `handler` (which takes a const Failure&); then
/// the routine goes on at its exit label: this function returns. The current error is cleared when the
/// handler is armed and again on return. A failure inside `handler` goes to the caller.
template <class Body, class Handler>
void WithFailureHandler(Body&& body, Handler&& handler) {
    ClearCurrentError();
    try {
        std::forward<Body>(body)();
    } catch (...) {
        const Failure failure = TranslateInFlight();
        std::forward<Handler>(handler)(failure);
    }
    ClearCurrentError();
}

} // namespace kv

// Failures: the exception that a routine raises, the current error that the exception leaves, and the one way
// to set a failure handler. Knows no log, no window and no database.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "base/reported_error.h"

namespace kv {

/// The number of every failure that the program raises for itself, 0x80040001.
inline constexpr std::int32_t kProgramFailure = static_cast<std::int32_t>(0x80040001U);

/// The program's exception. It has the same three fields as ErrorState.
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

/// The current error: what the last raised failure has left. WithFailureHandler clears it when it starts and
/// when it returns.
struct ErrorState {
    std::int32_t number = 0; ///< of run_time, of the database layer or kProgramFailure; 0 means no error
    std::string source;      ///< the name of the program or the component that failed
    std::string description; ///< the text for people
};

/// Returns the current error. There is one for the whole program, which has one thread.
const ErrorState& CurrentError();
void ClearCurrentError();

/// Sets the current error and throws the Failure.
[[noreturn]] void RaiseFailure(std::int32_t number, std::string source, std::string description);
/// Does the same with one of run_time's numbers and its text; the source is the program's name.
[[noreturn]] void RaiseRunTimeFailure(std::int32_t number);

/// Must be called inside a catch block. Converts the exception that is being handled to a Failure, makes it
/// the current error and returns it. Errors of the system (a file error, no memory) become the run time's
/// failure with the same meaning; this is the only place that does so.
Failure TranslateInFlight();

/// Runs `body`. If it throws anything, calls `handler` with the exception as a const Failure&. Returns
/// normally in both cases, and clears the current error at the start and at the end. A failure inside
/// `handler` goes to the caller.
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

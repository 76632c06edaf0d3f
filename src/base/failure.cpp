// Keeps the current error and converts exceptions to failures: the table of file errors is here.
#include "base/failure.h"

#include <new>
#include <stdexcept>

#include "platform/files.h"

namespace kv {
namespace {

ErrorState current_error;

std::int32_t NumberOf(platform::FileFault fault) {
    switch (fault) {
    case platform::FileFault::NotFound:
        return run_time::kFileNotFound;
    case platform::FileFault::PathNotFound:
        return run_time::kPathNotFound;
    case platform::FileFault::AccessDenied:
        return run_time::kPathFileAccessError;
    case platform::FileFault::InUse:
        return run_time::kPermissionDenied;
    case platform::FileFault::AlreadyExists:
        return run_time::kFileAlreadyExists;
    case platform::FileFault::DiskFull:
        return run_time::kDiskFull;
    case platform::FileFault::Other:
        break;
    }
    return run_time::kDeviceIoError;
}

Failure RunTimeFailure(std::int32_t number) {
    return {number, platform::ExecutableName(), run_time::Description(number)};
}

/// Returns the exception that is being handled as a Failure.
Failure FailureInFlight() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure;
    } catch (const platform::FileError& error) {
        return RunTimeFailure(NumberOf(error.Fault()));
    } catch (const ReportedError& error) {
        return {error.Number(), error.Source(), error.what()};
    } catch (const RunTimeError& error) {
        return RunTimeFailure(error.Number());
    } catch (const std::bad_alloc&) {
        return RunTimeFailure(run_time::kOutOfMemory);
    } catch (const std::exception& error) {
        return {run_time::kInternalError, platform::ExecutableName(), error.what()};
    }
}

} // namespace

const ErrorState& CurrentError() {
    return current_error;
}

void ClearCurrentError() {
    current_error = {};
}

void RaiseFailure(std::int32_t number, std::string source, std::string description) {
    current_error = {number, source, description};
    throw Failure(number, std::move(source), std::move(description));
}

void RaiseRunTimeFailure(std::int32_t number) {
    RaiseFailure(number, platform::ExecutableName(), run_time::Description(number));
}

Failure TranslateInFlight() {
    Failure failure = FailureInFlight();
    current_error = {failure.Number(), failure.Source(), failure.Description()};
    return failure;
}

} // namespace kv

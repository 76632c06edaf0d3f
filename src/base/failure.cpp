#include "base/failure.h"

#include <array>
#include <new>
#include <stdexcept>

#include "ado/errors.h"
#include "packages/packages.h"
#include "platform/files.h"

namespace kv {
namespace {

ErrorState current_error;

struct RunTimeText {
    std::int32_t number;
    const char* description;
};

constexpr std::array kRunTimeTexts = {
    RunTimeText{run_time::kInvalidProcedureCall, "Invalid procedure call or argument"},
    RunTimeText{run_time::kOverflow, "Overflow"},
    RunTimeText{run_time::kOutOfMemory, "Out of memory"},
    RunTimeText{run_time::kSubscriptOutOfRange, "Subscript out of range"},
    RunTimeText{run_time::kTypeMismatch, "Type mismatch"},
    RunTimeText{run_time::kInternalError, "Internal error"},
    RunTimeText{run_time::kFileNotFound, "File not found"},
    RunTimeText{run_time::kDeviceIoError, "Device I/O error"},
    RunTimeText{run_time::kFileAlreadyExists, "File already exists"},
    RunTimeText{run_time::kDiskFull, "Disk full"},
    RunTimeText{run_time::kPermissionDenied, "Permission denied"},
    RunTimeText{run_time::kPathFileAccessError, "Path/File access error"},
    RunTimeText{run_time::kPathNotFound, "Path not found"},
    RunTimeText{run_time::kObjectVariableNotSet, "Object variable or With block variable not set"},
    RunTimeText{run_time::kInvalidUseOfNull, "Invalid use of Null"},
    RunTimeText{run_time::kCannotCreateObject, "ActiveX component can't create object"},
    RunTimeText{run_time::kAutomationError, "Automation error"},
};

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

std::int32_t NumberOf(ado::ConversionFault fault) {
    switch (fault) {
    case ado::ConversionFault::Overflow:
        return run_time::kOverflow;
    case ado::ConversionFault::TypeMismatch:
        return run_time::kTypeMismatch;
    case ado::ConversionFault::InvalidUseOfNull:
        break;
    }
    return run_time::kInvalidUseOfNull;
}

Failure RunTimeFailure(std::int32_t number) {
    return {number, platform::ExecutableName(), run_time::Description(number)};
}

Failure FailureInFlight() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure;
    } catch (const platform::FileError& error) {
        return RunTimeFailure(NumberOf(error.Fault()));
    } catch (const platform::PackageError& error) {
        return {error.Number(), error.Source(), error.what()};
    } catch (const ado::CallError& error) {
        return {error.Number(), error.Source(), error.what()};
    } catch (const ado::ConversionError& error) {
        return RunTimeFailure(NumberOf(error.Fault()));
    } catch (const std::bad_alloc&) {
        return RunTimeFailure(run_time::kOutOfMemory);
    } catch (const std::exception& error) {
        return {run_time::kInternalError, platform::ExecutableName(), error.what()};
    }
}

} // namespace

const char* run_time::Description(std::int32_t number) {
    for (const auto& text : kRunTimeTexts) {
        if (text.number == number) {
            return text.description;
        }
    }
    return "Application-defined or object-defined error";
}

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

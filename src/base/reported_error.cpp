// The table of the run time's texts.
#include "base/reported_error.h"

#include <array>

namespace kv {
namespace {

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
};

} // namespace

const char* run_time::Description(std::int32_t number) {
    for (const auto& text : kRunTimeTexts) {
        if (text.number == number) {
            return text.description;
        }
    }
    return "Application-defined or object-defined error";
}

} // namespace kv

// The texts of file errors.
#include "platform/files.h"

namespace platform {
namespace {

const char* Text(FileFault fault) {
    switch (fault) {
    case FileFault::NotFound:
        return "file not found";
    case FileFault::PathNotFound:
        return "path not found";
    case FileFault::AccessDenied:
        return "access denied";
    case FileFault::InUse:
        return "in use by another program";
    case FileFault::AlreadyExists:
        return "already exists";
    case FileFault::DiskFull:
        return "disk full";
    case FileFault::Other:
        break;
    }
    return "file error";
}

} // namespace

FileError::FileError(FileFault fault, std::string path, std::int64_t system_error)
    : fault_(fault),
      path_(std::move(path)),
      system_error_(system_error),
      text_(path_ + ": " + Text(fault) + " (" + std::to_string(system_error) + ")") {}

} // namespace platform

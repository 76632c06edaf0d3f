// Reads the version record of the running executable (cmake/version.cmake has its texts).
#pragma once

#include <string>

namespace platform {

/// Returns the record's Comments text, which holds the version. Empty if the executable has no version
/// record.
std::string VersionComments();

} // namespace platform

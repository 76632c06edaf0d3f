// The version record of this build.
#pragma once

#include <string>

namespace platform {

/// The record's Comments text. Empty if the executable has no version record.
std::string VersionComments();

} // namespace platform

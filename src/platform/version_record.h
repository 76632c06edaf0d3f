// The version record of this build.
#pragma once

#include <string>

namespace platform {

/// The record's Comments text. Empty where the executable carries no such record.
std::string VersionComments();

} // namespace platform

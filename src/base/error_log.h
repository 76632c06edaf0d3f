// The error log: one text file to which any routine appends one line when its failure handler runs.
#pragma once

#include <string>

#include "base/failure.h"
#include "platform/clock.h"

namespace kv {

/// The line without its line end. It has number and description only if there is a current error, which
/// WriteErrorLog has cleared before it writes its line.
std::string ErrorLogLine(const platform::LocalTime& time, const std::string& strSource,
                         const ErrorState& error);

/// Appends one line that begins with the local date and time, " : Error in " and `strSource`, to the
/// program's log. The log folder is the default value of the log key (registry_locations.h); reading it
/// clears the current error. Makes the folder Data beside the program as a side effect. Failures go to the
/// caller. A nested call, made while the log folder is being read, does nothing.
void WriteErrorLog(const std::string& strSource);

} // namespace kv

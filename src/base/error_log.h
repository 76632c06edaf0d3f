// The error log: one text file. A routine whose failure handler runs appends one line to it.
#pragma once

#include <string>

#include "base/failure.h"
#include "platform/clock.h"

namespace kv {

/// Returns the text of one line of the log, without its line end. `strSource` names the routine that failed.
/// The error's number and description are added only if `error.number` is not 0.
std::string ErrorLogLine(const platform::LocalTime& time, const std::string& strSource,
                         const ErrorState& error);

/// Appends a line to the log, for the failure of the routine `strSource`. The log is the file "<program's
/// name>.log" in the folder that the registry names (registry_locations.h, kLogKey). Reading that folder
/// clears the current error, so the line has no number and no description. Also makes the folder Data beside
/// the program if it is missing. Throws platform::FileError if the folder or the file cannot be written. A
/// nested call, made while the log folder is being read, does nothing.
void WriteErrorLog(const std::string& strSource);

} // namespace kv

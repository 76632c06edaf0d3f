// The error log: one text file to which any routine appends one line when its failure handler runs.
#pragma once

#include <string>

namespace kv {

/// Appends one line that begins with the local date and time, " : Error in " and `strSource`, to the
/// program's log. The log folder is the default value of the log key (registry_locations.h); reading it
/// clears the current error. Makes the folder Data beside the program as a side effect. Failures go to the
/// caller. A call that comes out of reading the log folder itself does nothing.
void WriteErrorLog(const std::string& strSource);

} // namespace kv

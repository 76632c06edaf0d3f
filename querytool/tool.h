// Runs the tool: logs in, runs the batches and returns the exit code. The server, the input and the output
// are passed in, so that tests can replace them.
#pragma once

#include <functional>
#include <string>

#include "querytool/output.h"
#include "querytool/script_reader.h"
#include "querytool/server.h"
#include "querytool/switches.h"

namespace querytool {

/// Exit codes. A script can set others by EXIT(query) and by RAISERROR with the state 127.
inline constexpr int kSuccess = 0;
inline constexpr int kFailed = 1;

/// Runs the tool and returns its exit code. The batches come from the input file of the switches, or from
/// `standard_input` if they name neither a file nor -Q. Throws platform::FileError if the output cannot be
/// written.
int RunTool(const Switches& switches, const std::string& password, Server& server, LineSource& standard_input,
            Output& output);

} // namespace querytool

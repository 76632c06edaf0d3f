// The tool's run: from its switches over the login to the last batch, and the exit code. The server, the
// output and the person at the keyboard are handed in.
#pragma once

#include <functional>
#include <string>

#include "querytool/output.h"
#include "querytool/script_reader.h"
#include "querytool/server.h"
#include "querytool/switches.h"

namespace querytool {

inline constexpr int kSuccess = 0;
inline constexpr int kFailed = 1;

/// Runs what the switches ask for. `standard_input` gives the batches when neither a file nor -Q does.
/// Returns the exit code.
int RunTool(const Switches& switches, const std::string& password, Server& server, LineSource& standard_input,
            Output& output);

} // namespace querytool

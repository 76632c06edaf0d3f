// Runs the tool: from its switches over the login to the last batch and the exit code. The server, the output
// and the keyboard are passed in.
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

/// Runs the tool with the switches. The batches come from `standard_input` if the switches name neither a
/// file nor -Q. Returns the exit code.
int RunTool(const Switches& switches, const std::string& password, Server& server, LineSource& standard_input,
            Output& output);

} // namespace querytool

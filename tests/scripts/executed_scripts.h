// Which scripts the query tool was started with.
#pragma once

#include <string>
#include <vector>

#include "fakes/fake_process.h"

namespace kv {

/// The name of the script in the parameters of a started query tool, without ".sql".
inline std::string ScriptOf(const platform::ShellExecuteInfo& info) {
    const auto end = info.parameters.find(".sql\"");
    const auto begin = info.parameters.rfind('\\', end) + 1;
    return info.parameters.substr(begin, end - begin);
}

/// The names of all executed scripts, in order.
inline std::vector<std::string> ExecutedScripts(const fakes::FakeProcesses& processes) {
    std::vector<std::string> names;
    for (const auto& info : processes.started) {
        names.push_back(ScriptOf(info));
    }
    return names;
}

} // namespace kv

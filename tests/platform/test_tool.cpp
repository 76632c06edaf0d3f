// A program that tests start in place of the query tool: writes its arguments, one a line between brackets,
// to the file after -o. --until FILE first waits until the file exists; --exit N sets the exit code; --silent
// writes nothing.
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "platform/files.h"

namespace {

/// Waits for at most a minute: after that the test that should make the file has ended.
void WaitFor(const std::string& path) {
    constexpr auto kPause = std::chrono::milliseconds(10);
    for (int i = 0; i < 6000 && !platform::FileExists(path); ++i) {
        std::this_thread::sleep_for(kPause);
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    std::string output;
    int code = 0;
    bool silent = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const bool has_next = i + 1 < arguments.size();
        if (arguments[i] == "-o" && has_next) {
            output = arguments[i + 1];
        } else if (arguments[i] == "--until" && has_next) {
            WaitFor(arguments[i + 1]);
        } else if (arguments[i] == "--exit" && has_next) {
            code = std::atoi(arguments[i + 1].c_str());
        } else if (arguments[i] == "--silent") {
            silent = true;
        }
    }
    if (!silent) {
        std::string text;
        for (const std::string& argument : arguments) {
            text += '[' + argument + "]\n";
        }
        platform::WriteWholeFile(output, text);
    }
    return code;
}

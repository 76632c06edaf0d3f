// OSQL.EXE: runs the tool with the real server, files and terminal.
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "platform/command_line.h"
#include "platform/files.h"
#include "platform/memory_secrecy.h"
#include "platform/system_text.h"
#include "platform/terminal.h"
#include "querytool/server.h"
#include "querytool/tool.h"

namespace {

using namespace querytool;

/// Makes the output file before anything else is done, so that it has every error.
std::unique_ptr<Output> OpenOutput(const Switches& switches) {
    if (switches.output_file.empty()) {
        return std::make_unique<StandardOutput>();
    }
    return std::make_unique<FileOutput>(switches.output_file);
}

/// Returns the password if the command line has none: takes it from the environment or asks for it. Returns
/// an empty password if the standard input is not a terminal.
std::string FindPassword() {
    if (const char* const password = std::getenv("OSQLPASSWORD")) {
        return platform::FromSystemText(password);
    }
    return platform::InputIsTerminal() ? platform::FromSystemText(platform::AskPassword("Password: "))
                                       : std::string();
}

int Run(const ParsedLine& line, Output& output) {
    const Switches& switches = line.switches;
    if (line.error) {
        output.Write(*line.error + "\n");
        return kFailed;
    }
    if (!switches.user) {
        output.Write("No login: trusted connections are not supported; use -U and -P.\n");
        return kFailed;
    }
    const std::unique_ptr<Server> server = MakeServer();
    StreamLines standard_input(std::cin);
    const std::string password = switches.password ? *switches.password : FindPassword();
    return RunTool(switches, password, *server, standard_input, output);
}

} // namespace

int main(int argc, char** argv) {
    platform::KeepMemoryOutOfCrashes();
    try {
        const ParsedLine line = ParseSwitches(platform::ProgramArguments(argc, argv));
        if (line.switches.help) {
            std::cout << HelpText();
            return kSuccess;
        }
        const std::unique_ptr<Output> output = OpenOutput(line.switches);
        const int exit_code = Run(line, *output);
        output->Flush();
        return exit_code;
    } catch (const std::exception& error) {
        std::cerr << "OSQL: " << error.what() << "\n";
        return kFailed;
    }
}

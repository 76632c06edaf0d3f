// The main routine's decision: reads the command line once and says what this run of the program does. Knows
// neither the unattended sequences nor the console: main.cpp carries the decision out.
#pragma once

#include <cstdint>
#include <string>

namespace kv {

enum class MainAction : std::uint8_t { Upgrade, Install, ShowWindow };

/// What the command line asks for. Fields that the action does not use are empty.
struct MainDecision {
    MainAction action = MainAction::ShowWindow;
    bool show_help = false; ///< with ShowWindow only
    std::string script_folder;
    std::string server;
    std::string user;
    std::string password;
    std::string sql_data_path;
    bool install_db = false;
    bool install_sp = false;
    bool install_dts = false;
};

/// Reads the line and asks the file system whether the folders that it names exist; changes nothing. If the
/// line is empty, wrong or incomplete, the action is ShowWindow, without a message.
MainDecision DecideAction(const std::string& CommandLine);

/// The help text; lines end in CR LF.
std::string HelpText();

} // namespace kv

// Reads the command line and decides what this run of the program does. Knows neither the unattended runs nor
// the console: main.cpp carries the decision out.
#pragma once

#include <cstdint>
#include <string>

namespace kv {

enum class MainAction : std::uint8_t { Upgrade, Install, ShowWindow };

/// The decision, and the values of the arguments that it needs. Fields that the action does not use are
/// empty.
struct MainDecision {
    MainAction action = MainAction::ShowWindow;
    bool show_help = false; ///< with ShowWindow only
    std::string script_folder;
    std::string server;
    std::string user;
    std::string password;
    std::string sql_data_path;
    bool install_db = false;  ///< the database
    bool install_sp = false;  ///< the stored procedures
    bool install_dts = false; ///< the DTS packages
};

/// Parses the line and checks that the folders which it names exist. Changes nothing. If the line is empty,
/// wrong or incomplete, the action is ShowWindow, without a message.
MainDecision DecideAction(const std::string& CommandLine);

/// Returns the help text. Its lines end in CR LF.
std::string HelpText();

} // namespace kv

// The entry routine: looks at the command line once and goes exactly one way.
// Knows neither the unattended sequences nor the console; they stand behind Faces.
#pragma once

#include <cstdint>
#include <string>

namespace kv {

enum class MainWay : std::uint8_t { Upgrade, Install, Window };

/// What the command line asks for.
struct MainDecision {
    MainWay way = MainWay::Window;
    bool show_help = false; ///< with Window only
    std::string script_folder;
    std::string server;
    std::string user;
    std::string password;
    std::string sql_data_path;
    bool install_db = false;
    bool install_sp = false;
    bool install_dts = false;
};

/// The program's two faces, as Main calls them.
class Faces {
  public:
    virtual ~Faces() = default;
    virtual void DoAutomaticUpgrade(const std::string& strScriptFolder) = 0;
    virtual void DoAutomaticInstall(const std::string& ScriptFolder, const std::string& Server,
                                    const std::string& User, const std::string& Password,
                                    const std::string& SQLDataPath, bool InstallDb, bool InstallSp,
                                    bool InstallDts) = 0;
    /// Makes the main window if there is none yet and shows it, non-modally.
    virtual void ShowMainWindow() = 0;
    /// Shows the text in a plain message box on top of the shown window.
    virtual void ShowHelp(const std::string& text) = 0;
};

/// Reads the line and asks the file system whether the folders on it exist; touches nothing else. A line that
/// is missing, wrong or incomplete means the window, without a word.
MainDecision DecideWay(const std::string& CommandLine);

/// Decides, and goes that way.
void Main(const std::string& CommandLine, Faces& faces);

/// The help text; line ends are CR LF.
std::string HelpText();

} // namespace kv

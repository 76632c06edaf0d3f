// Fuzzes the program's command line. The input is used twice: as one raw line, and as arguments, separated by
// NUL, that are joined to a line. An argument's value must be part of the line, the decision must be
// complete, and nothing may be thrown.
#include "fakes/fake_files.h"
#include "fuzz/input.h"
#include "main/command_argument.h"
#include "main/command_line.h"
#include "main/main_routine.h"

namespace {

void CheckDecision(const kv::MainDecision& decision) {
    if (decision.action == kv::MainAction::ShowWindow) {
        return;
    }
    fuzz::Require(!decision.show_help, "an unattended run shows no help");
    fuzz::Require(!decision.script_folder.empty(), "an unattended run has a script folder");
    if (decision.action == kv::MainAction::Upgrade) {
        return;
    }
    fuzz::Require(!decision.server.empty() && !decision.user.empty(), "an installation has its login");
    fuzz::Require(decision.install_db || decision.install_sp || decision.install_dts,
                  "an installation has something to do");
    fuzz::Require(!decision.install_db || decision.install_sp, "a database is installed with its procedures");
    fuzz::Require(!decision.install_sp || !decision.sql_data_path.empty(), "a database has a data path");
}

void RunLine(const std::string& line) {
    kv::CommandArguments arguments = kv::KnownArguments();
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        kv::ParseCommandArgument(line, i, arguments);
        fuzz::Require(arguments[i].Found || arguments[i].Value.empty(),
                      "an argument that is not found has no value");
        fuzz::Require(line.find(arguments[i].Value) != std::string::npos, "a value is part of the line");
    }
    CheckDecision(kv::DecideAction(line));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fakes::FakeFiles files;
    files.AddFolder("C:\\s");
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    RunLine(std::string(text));
    RunLine(kv::JoinArguments(fuzz::Split(text, '\0')));
    return 0;
}

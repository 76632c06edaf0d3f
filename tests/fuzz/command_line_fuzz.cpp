// libFuzzer's entry into the program's command line: as one raw line, and as arguments (separated by NUL)
// that are put together to a line. No argument may get a value that is not in the line, and nothing may be
// thrown.
#include "fakes/fake_files.h"
#include "fuzz/input.h"
#include "main/command_argument.h"
#include "main/command_line.h"
#include "main/main_routine.h"

namespace {

/// Both faces of the program, which count how often they are shown.
class CountedFaces : public kv::Faces {
  public:
    void DoAutomaticUpgrade(const std::string& folder) override {
        fuzz::Require(!folder.empty(), "an upgrade has a script folder");
        ++unattended;
    }
    void DoAutomaticInstall(const std::string& folder, const std::string& server, const std::string& user,
                            const std::string& /*password*/, const std::string& data_path, bool database,
                            bool procedures, bool packages) override {
        fuzz::Require(!folder.empty() && !server.empty() && !user.empty(), "an installation has its login");
        fuzz::Require(database || procedures || packages, "an installation has something to do");
        fuzz::Require(!database || procedures, "a database comes with its procedures");
        fuzz::Require(!procedures || !data_path.empty(), "a database has a place");
        ++unattended;
    }
    void ShowMainWindow() override { ++windows; }
    void ShowHelp(const std::string& /*text*/) override {
        fuzz::Require(windows == 1, "the help stands above the window");
    }

    int unattended = 0;
    int windows = 0;
};

void RunLine(const std::string& line) {
    kv::CommandArguments arguments = kv::KnownArguments();
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        kv::ParseCommandArgument(line, i, arguments);
        fuzz::Require(arguments[i].Found || arguments[i].Value.empty(), "only what is found has a value");
        fuzz::Require(line.find(arguments[i].Value) != std::string::npos, "a value stands in the line");
    }
    CountedFaces faces;
    kv::Main(line, faces);
    fuzz::Require(faces.unattended + faces.windows == 1, "the program goes exactly one way");
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

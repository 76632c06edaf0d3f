// The entry of the program, with the system behind it in memory: the boxes that it shows by itself.
#include "console/console_fixture.h"
#include "main/main_routine.h"

/// The program's main, under the name that it is built with for this test.
int ProgramMain(int argc, char** argv);

namespace kv {
namespace {

class MainProgram : public ConsoleTest {
  protected:
    void Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "KVLSQLDbMgr");
        std::vector<char*> argv;
        for (std::string& argument : arguments) {
            argv.push_back(argument.data());
        }
        EXPECT_EQ(ProgramMain(static_cast<int>(argv.size()), argv.data()), 0);
    }
    /// The calls of the windows and boxes alone.
    Lines Shown() const {
        Lines shown;
        for (const std::string& call : screen_.calls) {
            if (call != "events" && call.rfind("pointer", 0) != 0) {
                shown.push_back(call);
            }
        }
        return shown;
    }
};

TEST_F(MainProgram, WithoutArgumentsItIsTheConsole) {
    Run({});
    EXPECT_EQ(Shown(), (Lines{"make frmMain", "show frmMain", "run frmMain"}));
    EXPECT_FALSE(remembered_.reads.empty());
}

TEST_F(MainProgram, TheHelpComesUpAboveTheShownWindowWithoutAnIcon) {
    Run({"/help"});
    EXPECT_EQ(Shown(), (Lines{"make frmMain", "show frmMain", "box [none] KVLSQLDbMgr: " + HelpText(),
                              "run frmMain"}));
}

TEST_F(MainProgram, AFailureThatNobodyCatchesEndsItInTheFatalErrorBox) {
    Version("14");
    Run({});
    EXPECT_EQ(Shown(), (Lines{"make frmMain", "box [critical] KVLSQLDbMgr: Run-time error '5':\r\n\r\n"
                                              "Invalid procedure call or argument"}));
    EXPECT_EQ(screen_.pointer, 0);
}

TEST_F(MainProgram, WhereNoWindowCanBeMadeItEndsWithoutABox) {
    toolkit_.has_windows = false;
    Run({});
    EXPECT_EQ(Shown(), Lines{});
}

} // namespace
} // namespace kv

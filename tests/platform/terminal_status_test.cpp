// The progress and the messages of a run without windows, as lines on the terminal.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/message_text.h"
#include "platform/status_window.h"
#include "platform/terminal.h"

namespace {
std::string written;
bool interactive = false;
int enters_awaited = 0;
} // namespace

// A fake terminal, linked in place of the system's.
namespace platform {
void WriteToTerminal(const std::string& text) {
    written += text;
}
bool TerminalIsInteractive() {
    return interactive;
}
void WaitForEnter() {
    ++enters_awaited;
}

namespace {

class Terminal : public ::testing::Test {
  protected:
    Terminal() {
        written.clear();
        interactive = false;
        enters_awaited = 0;
    }
};

TEST_F(Terminal, EveryTextIsALineWithThePositionOfTheBar) {
    {
        const auto status = MakeTerminalStatus("Installing");
        status->SetBar(0, 14, 0);
        status->SetLabel("Initializing...");
        EXPECT_EQ(written, ""); // not shown yet
        status->Show();
        status->SetBar(0, 14, 9);
        status->SetLabel("Working...");
        status->SetBar(0, 14, 14);
    }
    EXPECT_EQ(written, "Installing\n[ 0/14] Initializing...\n[ 9/14] Working...\n[14/14] Ended.\n");
}

TEST_F(Terminal, AMessageIsMarkedByItsIcon) {
    EXPECT_EQ(MessageAsLines("Text\r\nmore", MessageIcon::None, "T"), "T: Text\nmore\n");
    EXPECT_EQ(MessageAsLines("Text", MessageIcon::Exclamation, "T"), "T (!): Text\n");
    EXPECT_EQ(MessageAsLines("Text\r\n", MessageIcon::Critical, "T"), "T (X): Text\n");
}

TEST_F(Terminal, AMessageWaitsOnlyWhereSomeoneCanPressEnter) {
    ShowMessageOnTerminal("Text", MessageIcon::Exclamation, "T");
    EXPECT_EQ(enters_awaited, 0);
    EXPECT_EQ(written, "T (!): Text\n");
    interactive = true;
    ShowMessageOnTerminal("Text", MessageIcon::Exclamation, "T");
    EXPECT_EQ(enters_awaited, 1);
    EXPECT_NE(written.find("Press Enter"), std::string::npos);
}

} // namespace
} // namespace platform

// Tests the functions of list_views.h and the folder and file dialogs of dialogs.h.
#include <gtest/gtest.h>

#include "console/dialogs.h"

#include "console/form_designs.h"
#include "console/list_views.h"
#include "fakes/fake_files.h"
#include "fakes/fake_screen.h"
#include "fakes/fake_toolkit.h"
#include "ui/form.h"

namespace kv {
namespace {

class ConsoleHelpers : public ::testing::Test {
  protected:
    fakes::FakeFiles files_;
    fakes::FakeScreen screen_;
    fakes::FakeToolkit toolkit_;
    ui::Form form_{MainFormDesign()};
    ui::ListView& view_ = form_.Get<ui::ListView>("lvwViewData");
};

TEST_F(ConsoleHelpers, StylesAreAddedAndTheResultSaysIfAStyleWasSetBefore) {
    EXPECT_FALSE(SetExtendedStyle(view_, 0x20, true));
    EXPECT_TRUE(SetExtendedStyle(view_, 1, true));
    EXPECT_EQ(view_.ExtendedStyle(), 0x21);
    SetExtendedStyle(view_, 1, true);
    EXPECT_EQ(view_.ExtendedStyle(), 0x21);
}

TEST_F(ConsoleHelpers, ClearingAStyleThatIsOffTurnsItOn) {
    EXPECT_FALSE(SetExtendedStyle(view_, 1, false));
    EXPECT_EQ(view_.ExtendedStyle(), 1);
    EXPECT_TRUE(SetExtendedStyle(view_, 1, false));
    EXPECT_EQ(view_.ExtendedStyle(), 0);
}

TEST_F(ConsoleHelpers, EveryColumnIsSized) {
    AutoSizeColumns(view_);
    for (const char* name : {"a", "b", "c"}) {
        view_.AddColumn(name, name);
    }
    AutoSizeColumns(view_);
    EXPECT_EQ(view_.AutoSized(), (std::vector<bool>{true, true, true}));
}

TEST_F(ConsoleHelpers, TheChosenFolderIsReturned) {
    toolkit_.picked = "D:\\New";
    EXPECT_EQ(BrowseForFolder(form_, "Title", "C:\\Old"), "D:\\New");
    EXPECT_EQ(screen_.calls, std::vector<std::string>{"folder [C:\\Old] Title"});
}

TEST_F(ConsoleHelpers, ACancelledFolderDialogReturnsTheStartFolder) {
    EXPECT_EQ(BrowseForFolder(form_, "Title", "C:\\Old"), "C:\\Old");
    EXPECT_EQ(BrowseForFolder(form_, "Title", ""), "");
}

TEST_F(ConsoleHelpers, AFolderDialogThatFailsReturnsTheStartFolderAndLogsNothing) {
    toolkit_.pickers_fail = true;
    EXPECT_EQ(BrowseForFolder(form_, "Title", "C:\\Old"), "C:\\Old");
    EXPECT_TRUE(files_.Log().empty());
}

TEST_F(ConsoleHelpers, AFileDialogReturnsTheFileOrNothing) {
    EXPECT_EQ(BrowseForFile("Title", "Filter", form_, "C:\\Old"), "");
    toolkit_.picked = "C:\\Old\\x.sql";
    EXPECT_EQ(BrowseForFile("Title", "Filter", form_, "C:\\Old"), "C:\\Old\\x.sql");
    EXPECT_EQ(screen_.calls.back(), "file [C:\\Old] Title Filter");
    toolkit_.pickers_fail = true;
    EXPECT_EQ(BrowseForFile("Title", "Filter", form_, "C:\\Old"), "");
}

} // namespace
} // namespace kv

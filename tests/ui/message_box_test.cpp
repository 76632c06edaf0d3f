// Tests the system's message boxes: their text, title, icon and button.
#include "platform/message_box.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ui/dialog_answers.h"

namespace {

struct SeenBox {
    std::string text;
    std::string title;
    screen::BoxIcon icon = screen::BoxIcon::Other;
    std::vector<std::string> buttons;
};

SeenBox Show(platform::MessageIcon icon, screen::Key key = screen::Key::Enter) {
    SeenBox seen;
    const screen::Meanwhile answering(DialogAnswers({[&seen, key](screen::Part box) {
        seen = {screen::MessageOf(box), screen::Text(box), screen::IconOf(box), screen::ButtonsOf(box)};
        screen::Press(key);
        return true;
    }}));
    platform::ShowMessageBox("R&D already exist!", icon, "KVLSQLDbMgr");
    return seen;
}

TEST(MessageBoxes, ShowTheirTextUnderTheirTitle) {
    ASSERT_TRUE(screen::IsThere());
    const SeenBox seen = Show(platform::MessageIcon::None);
    EXPECT_EQ(seen.text, "R&D already exist!");
    EXPECT_EQ(seen.title, "KVLSQLDbMgr");
}

TEST(MessageBoxes, HaveTheSystemsIconForTheirKind) {
    ASSERT_TRUE(screen::IsThere());
    EXPECT_EQ(Show(platform::MessageIcon::None).icon, screen::BoxIcon::None);
    EXPECT_EQ(Show(platform::MessageIcon::Exclamation).icon, screen::BoxIcon::Exclamation);
    EXPECT_EQ(Show(platform::MessageIcon::Critical).icon, screen::BoxIcon::Critical);
}

TEST(MessageBoxes, HaveOneButtonWhichEscapePresses) {
    ASSERT_TRUE(screen::IsThere());
    EXPECT_EQ(Show(platform::MessageIcon::Critical, screen::Key::Escape).buttons,
              std::vector<std::string>{"OK"});
}

} // namespace

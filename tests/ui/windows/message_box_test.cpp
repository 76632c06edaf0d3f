// The real message boxes: text, title and icon.
#include "platform/message_box.h"

#include <string>

#include <gtest/gtest.h>

#include "ui/windows/answer.h"
#include "ui/windows/screen_input.h"

namespace {

struct SeenBox {
    std::string text;
    std::string title;
    HICON icon = nullptr;
};

SeenBox Show(platform::MessageIcon icon) {
    SeenBox seen;
    const Answer ok([&seen](HWND box) {
        seen.title = hands::Text(box);
        seen.text = hands::Text(hands::Child(box, 0xFFFF));
        for (HWND part = ::GetWindow(box, GW_CHILD); part != nullptr; part = ::GetWindow(part, GW_HWNDNEXT)) {
            const bool shown = (::GetWindowLongPtrA(part, GWL_STYLE) & WS_VISIBLE) != 0;
            const auto picture = reinterpret_cast<HICON>(::SendMessageA(part, STM_GETICON, 0, 0));
            if (hands::ClassOf(part) == "Static" && shown && picture != nullptr) {
                seen.icon = picture;
            }
        }
        Answer::Press(box, IDOK);
    });
    platform::ShowMessageBox("R&D already exist!", icon, "KVLSQLDbMgr");
    return seen;
}

TEST(MessageBoxes, ShowTheirTextUnderTheirTitle) {
    const SeenBox seen = Show(platform::MessageIcon::None);
    EXPECT_EQ(seen.text, "R&D already exist!");
    EXPECT_EQ(seen.title, "KVLSQLDbMgr");
}

TEST(MessageBoxes, HaveTheSystemsIconOfTheirKind) {
    EXPECT_EQ(Show(platform::MessageIcon::None).icon, nullptr);
    EXPECT_EQ(Show(platform::MessageIcon::Exclamation).icon, ::LoadIconA(nullptr, IDI_EXCLAMATION));
    EXPECT_EQ(Show(platform::MessageIcon::Critical).icon, ::LoadIconA(nullptr, IDI_ERROR));
}

} // namespace

// Message boxes as lines on the terminal.
#include "platform/message_text.h"

#include "platform/terminal.h"

namespace platform {

std::string MessageAsLines(const std::string& text, MessageIcon icon, const std::string& title) {
    std::string lines = title;
    switch (icon) {
    case MessageIcon::None:
        lines += ": ";
        break;
    case MessageIcon::Exclamation:
        lines += " (!): ";
        break;
    case MessageIcon::Critical:
        lines += " (X): ";
        break;
    }
    for (const char c : text) {
        if (c != '\r') {
            lines += c;
        }
    }
    if (lines.back() != '\n') {
        lines += '\n';
    }
    return lines;
}

void ShowMessageOnTerminal(const std::string& text, MessageIcon icon, const std::string& title) {
    WriteToTerminal(MessageAsLines(text, icon, title));
    if (TerminalIsInteractive()) {
        WriteToTerminal("Press Enter to go on.\n");
        WaitForEnter();
    }
}

} // namespace platform

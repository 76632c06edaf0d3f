#include "platform/console_input.h"

#include <termios.h>
#include <unistd.h>

#include <iostream>

namespace platform {
namespace {

/// The terminal shows nothing of what is typed for as long as this lives.
class WithoutEcho {
  public:
    WithoutEcho() : changed_(::tcgetattr(STDIN_FILENO, &before_) == 0) {
        if (changed_) {
            termios silent = before_;
            silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
        }
    }
    WithoutEcho(const WithoutEcho&) = delete;
    WithoutEcho& operator=(const WithoutEcho&) = delete;
    ~WithoutEcho() {
        if (changed_) {
            ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
        }
    }

  private:
    termios before_{};
    bool changed_;
};

} // namespace

bool InputIsTerminal() {
    return ::isatty(STDIN_FILENO) == 1;
}

std::string AskPassword(const std::string& prompt) {
    std::cerr << prompt << std::flush;
    std::string password;
    {
        const WithoutEcho silent;
        std::getline(std::cin, password);
    }
    std::cerr << "\n";
    return password;
}

} // namespace platform

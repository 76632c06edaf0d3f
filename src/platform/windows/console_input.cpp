#include "platform/console_input.h"

#include <iostream>

#include "platform/windows/lean_windows.h"

namespace platform {
namespace {

/// The console shows nothing of what is typed for as long as this lives.
class WithoutEcho {
  public:
    WithoutEcho()
        : input_(::GetStdHandle(STD_INPUT_HANDLE)), changed_(::GetConsoleMode(input_, &before_) != 0) {
        if (changed_) {
            ::SetConsoleMode(input_, before_ & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
        }
    }
    WithoutEcho(const WithoutEcho&) = delete;
    WithoutEcho& operator=(const WithoutEcho&) = delete;
    ~WithoutEcho() {
        if (changed_) {
            ::SetConsoleMode(input_, before_);
        }
    }

  private:
    HANDLE input_;
    DWORD before_ = 0;
    bool changed_;
};

} // namespace

bool InputIsTerminal() {
    DWORD mode = 0;
    return ::GetConsoleMode(::GetStdHandle(STD_INPUT_HANDLE), &mode) != 0;
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

// Asks for a password by means of the terminal's functions; the same on every system.
#include <iostream>

#include "platform/terminal.h"

namespace platform {
namespace {

/// Turns the terminal's echo off until it is destroyed.
class WithoutEcho {
  public:
    WithoutEcho() : before_(SetEcho(false)) {}
    WithoutEcho(const WithoutEcho&) = delete;
    WithoutEcho& operator=(const WithoutEcho&) = delete;
    ~WithoutEcho() { SetEcho(before_); }

  private:
    bool before_;
};

} // namespace

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

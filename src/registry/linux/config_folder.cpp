// Finds the user's configuration folder from the environment.
#include "registry/linux/config_folder.h"

#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

namespace registry {

std::string ConfigFolder() {
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    if (configured != nullptr && configured[0] == '/') {
        return configured;
    }
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] == '\0') {
        const passwd* user = ::getpwuid(::geteuid());
        home = user == nullptr ? nullptr : user->pw_dir;
    }
    return home == nullptr ? std::string{} : std::string(home) + "/.config";
}

} // namespace registry

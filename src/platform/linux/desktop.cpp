// Loads the module for windows and reports on the terminal if it is missing.
#include "platform/linux/desktop.h"

#include <array>
#include <cstdlib>
#include <optional>

#include <dlfcn.h>

#include "platform/files.h"
#include "platform/system_text.h"
#include "platform/terminal.h"

namespace platform {
namespace {

constexpr char kModule[] = "libkvconsole.so";
constexpr char kModulePackage[] = "kvlsqldbmgr-console";
constexpr char kLibraryPackage[] = "libqt6widgets6";

/// One of these is set in every session with a display. The last one can also be set to get windows without a
/// display.
constexpr std::array kDisplayVariables = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};

bool DisplayIsNamed() {
    for (const char* name : kDisplayVariables) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            return true;
        }
    }
    return false;
}

void ReportMissingModule(const std::string& path, const char* reason) {
    const bool there = FileExists(path);
    const std::string why = there ? FromSystemText(reason == nullptr ? "" : reason) : path + " is missing";
    WriteToTerminal(ExecutableName() + ": Windows are not shown: install the package " +
                    (there ? kLibraryPackage : kModulePackage) + " (" + why + ").\n");
}

struct Module {
    void* library = nullptr;
    Desktop* desktop = nullptr;
};

Module Load() {
    Module module;
    if (!DisplayIsNamed()) {
        return module;
    }
    const std::string path = ExecutableFolder() + "/" + kModule;
    // Never unloaded: its libraries start threads and install handlers that outlive every window. RTLD_LAZY:
    // a window uses a small part of the functions of these libraries, and looking up all of them takes
    // milliseconds. A library that is missing or too old is found here all the same.
    module.library = ::dlopen(ToSystemText(path).c_str(), RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE);
    if (module.library == nullptr) {
        ReportMissingModule(path, ::dlerror());
        return module;
    }
    const auto open = reinterpret_cast<OpenDesktopFunction>(::dlsym(module.library, kOpenDesktopFunction));
    module.desktop = open == nullptr ? nullptr : open();
    return module;
}

/// The result of the one attempt to load the module.
std::optional<Module> loaded;

} // namespace

Desktop* OpenDesktop() {
    if (!loaded) {
        loaded = Module(); // a call from the module while it is being loaded finds no desktop
        loaded = Load();
    }
    return loaded->desktop;
}

Desktop* OpenedDesktop() {
    return loaded ? loaded->desktop : nullptr;
}

void* FindInModule(const char* name) {
    return OpenedDesktop() == nullptr ? nullptr : ::dlsym(loaded->library, name);
}

} // namespace platform

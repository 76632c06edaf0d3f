// Tries to reach an X11 or Wayland display without Qt.
#include "ui/linux/qt/display.h"

#include <cstdlib>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QLibraryInfo>

#include <xcb/xcb.h>

namespace ui {
namespace {

/// Returns the value of an environment variable; "" if it is not set.
std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

bool X11Answers() {
    if (Variable("DISPLAY").empty()) {
        return false;
    }
    xcb_connection_t* connection = ::xcb_connect(nullptr, nullptr);
    const bool answers = ::xcb_connection_has_error(connection) == 0;
    ::xcb_disconnect(connection);
    return answers;
}

bool SocketAnswers(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return false;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool answers = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(socket);
    return answers;
}

/// True if a Wayland display answers and Qt's plugin for it is installed. Debian has the plugin in a separate
/// package.
bool WaylandAnswers() {
    const std::string display = Variable("WAYLAND_DISPLAY");
    const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms");
    if (display.empty() || plugins.entryList({"libqwayland*"}, QDir::Files).isEmpty()) {
        return false;
    }
    return SocketAnswers(display.front() == '/' ? display : Variable("XDG_RUNTIME_DIR") + "/" + display);
}

} // namespace

std::string PlatformOfDisplay() {
    const std::string wanted = Variable("QT_QPA_PLATFORM");
    if (!wanted.empty()) {
        const bool x11 = wanted.starts_with("xcb");
        const bool wayland = wanted.starts_with("wayland");
        return (x11 && !X11Answers()) || (wayland && !WaylandAnswers()) ? "" : wanted;
    }
    // A Wayland session usually has an X server too, for programs that only know X11.
    if (Variable("XDG_SESSION_TYPE") != "x11" && WaylandAnswers()) {
        return "wayland";
    }
    return X11Answers() ? "xcb" : WaylandAnswers() ? "wayland" : "";
}

} // namespace ui

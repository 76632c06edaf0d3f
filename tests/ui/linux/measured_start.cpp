// Starts programs and asks the X server for their windows.
#include "ui/linux/measured_start.h"

#include <array>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

extern "C" {
#include <sys/pidfd.h> // glibc 2.36 declares its functions only for C
}

namespace screen {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongest{20};
constexpr std::chrono::microseconds kPause{250};

Display* Of(void* display) {
    return static_cast<Display*>(display);
}

double MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// A program that was started with its output discarded. It is killed when this is destroyed.
class Started {
  public:
    Started(const std::string& program, const std::string& argument) {
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        std::string name = program;
        std::string word = argument;
        std::array<char*, 3> arguments = {name.data(), word.empty() ? nullptr : word.data(), nullptr};
        const int error =
            ::posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments.data(), environ);
        ::posix_spawn_file_actions_destroy(&actions);
        if (error != 0) {
            throw std::runtime_error("cannot be started: " + program);
        }
    }
    Started(const Started&) = delete;
    Started& operator=(const Started&) = delete;
    ~Started() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
        }
    }

    /// Waits for the end of the program; false if it does not end within that time.
    bool EndsWithin(std::chrono::milliseconds time) const {
        const int handle = ::pidfd_open(process_, 0);
        pollfd ended{handle, POLLIN, 0};
        const bool ends = ::poll(&ended, 1, static_cast<int>(time.count())) > 0;
        ::close(handle);
        return ends;
    }

    /// The exit code of a program that has ended; -1 if it was killed.
    int ExitCode() {
        int status = 0;
        ::waitpid(std::exchange(process_, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t process_ = -1;
};

} // namespace

MeasuredStart::MeasuredStart() : display_(::XOpenDisplay(nullptr)) {
    if (display_ == nullptr) {
        throw std::runtime_error("there is no X server");
    }
}

MeasuredStart::~MeasuredStart() {
    ::XCloseDisplay(Of(display_));
}

unsigned long MeasuredStart::Window() {
    const ::Atom list = ::XInternAtom(Of(display_), "_NET_CLIENT_LIST", False);
    ::Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* windows = nullptr;
    ::XGetWindowProperty(Of(display_), DefaultRootWindow(Of(display_)), list, 0, 1, False, XA_WINDOW, &type,
                         &format, &count, &left, &windows);
    const unsigned long window = count == 0 ? 0 : *reinterpret_cast<unsigned long*>(windows);
    ::XFree(windows);
    return window;
}

/// True if the pixel in the middle of the window is not black. Until Qt has painted a window the screen is
/// black there.
bool MeasuredStart::MiddleIsPainted(unsigned long window) {
    ::XWindowAttributes attributes{};
    int x = 0;
    int y = 0;
    ::Window child = 0;
    const ::Window root = DefaultRootWindow(Of(display_));
    ::XGetWindowAttributes(Of(display_), window, &attributes);
    ::XTranslateCoordinates(Of(display_), window, root, attributes.width / 2, attributes.height / 2, &x, &y,
                            &child);
    ::XImage* image = ::XGetImage(Of(display_), root, x, y, 1, 1, AllPlanes, ZPixmap);
    if (image == nullptr) {
        return false;
    }
    const bool painted = (XGetPixel(image, 0, 0) & 0xFFFFFFU) != 0;
    XDestroyImage(image);
    return painted;
}

void MeasuredStart::WaitUntilEmpty() {
    const auto start = Clock::now();
    while (Window() != 0) {
        if (Clock::now() - start > kLongest) {
            throw std::runtime_error("a window stays on the screen");
        }
        std::this_thread::sleep_for(kPause);
    }
}

double MeasuredStart::UntilPainted(const std::string& program, const std::string& argument) {
    WaitUntilEmpty();
    const auto start = Clock::now();
    const Started started(program, argument);
    for (;;) {
        if (const unsigned long window = Window(); window != 0 && MiddleIsPainted(window)) {
            return MillisecondsSince(start);
        }
        if (started.EndsWithin(std::chrono::milliseconds(0)) || Clock::now() - start > kLongest) {
            throw std::runtime_error("shows no window: " + program);
        }
        std::this_thread::sleep_for(kPause);
    }
}

double UntilEnd(const std::string& program, const std::string& argument) {
    const auto start = Clock::now();
    Started started(program, argument);
    if (!started.EndsWithin(kLongest)) {
        throw std::runtime_error("does not end: " + program);
    }
    const double time = MillisecondsSince(start);
    if (const int code = started.ExitCode(); code != 0) {
        throw std::runtime_error("ended with " + std::to_string(code) + ": " + program);
    }
    return time;
}

} // namespace screen

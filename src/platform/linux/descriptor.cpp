// The system's calls on a descriptor, repeated when a signal interrupts them.
#include "platform/linux/descriptor.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

#include "platform/linux/held_signals.h"

namespace platform {

void ThrowSystemFault() {
    throw SystemFault{errno};
}

Descriptor::Descriptor(const std::string& path, int flags, mode_t mode) {
    do {
        descriptor_ = ::open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (descriptor_ < 0 && errno == EINTR);
    if (descriptor_ < 0) {
        ThrowSystemFault();
    }
}

Descriptor::~Descriptor() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

struct stat Descriptor::Status() const {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) {
        ThrowSystemFault();
    }
    return status;
}

std::size_t Descriptor::Read(char* to, std::size_t size) const {
    for (;;) {
        const ssize_t count = ::read(descriptor_, to, size);
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno != EINTR) {
            ThrowSystemFault();
        }
    }
}

std::string Descriptor::ReadAll() const {
    // One byte more than the size, so that the end is seen without enlarging the buffer, which would hold a
    // large file twice.
    std::string content(static_cast<std::size_t>(std::max<off_t>(Status().st_size, 0)) + 1, '\0');
    std::size_t filled = 0;
    for (;;) {
        if (filled == content.size()) {
            content.resize(content.size() * 2);
        }
        const std::size_t count = Read(content.data() + filled, content.size() - filled);
        if (count == 0) {
            content.resize(filled);
            return content;
        }
        filled += count;
    }
}

void Descriptor::Write(std::string_view content) const {
    const HeldSignals held;
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor_, content.data(), content.size());
        if (written >= 0) {
            content.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            ThrowSystemFault();
        }
    }
}

void Descriptor::Close() {
    if (::close(std::exchange(descriptor_, -1)) != 0) {
        ThrowSystemFault();
    }
}

} // namespace platform

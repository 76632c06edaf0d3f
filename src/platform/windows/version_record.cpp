// Reads the version record that the executable carries as a resource.
#include "platform/version_record.h"

#include <cstdint>
#include <vector>

#include "platform/windows/lean_windows.h"

namespace platform {
namespace {

/// Returns the path of the executable. If it does not fit the buffer, no version record is found.
std::string OwnPath() {
    std::string path(32768, '\0');
    const DWORD length = ::GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    path.resize(length);
    return path;
}

} // namespace

std::string VersionComments() {
    const std::string path = OwnPath();
    DWORD unused = 0;
    std::vector<std::uint8_t> record(::GetFileVersionInfoSizeA(path.c_str(), &unused));
    void* text = nullptr;
    UINT length = 0;
    if (record.empty() ||
        ::GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(record.size()), record.data()) == 0 ||
        ::VerQueryValueA(record.data(), "\\StringFileInfo\\040904E4\\Comments", &text, &length) == 0) {
        return "";
    }
    return static_cast<const char*>(text);
}

} // namespace platform

// The registry on Windows, over the system's ANSI calls.
#include "registry/registry.h"

#include "platform/windows/lean_windows.h"

namespace registry {
namespace {

HKEY Native(RegistryHandle key) {
    return reinterpret_cast<HKEY>(key);
}

OpenedKey Opened(LSTATUS error, HKEY key) {
    return {RegistryError(static_cast<std::int32_t>(error)), reinterpret_cast<RegistryHandle>(key)};
}

} // namespace

OpenedKey OpenKey(RegistryHandle root, const std::string& subkey, std::uint32_t access) {
    HKEY key = nullptr;
    const LSTATUS error = ::RegOpenKeyExA(Native(root), subkey.c_str(), 0, access, &key);
    return Opened(error, key);
}

OpenedKey CreateKey(RegistryHandle root, const std::string& subkey, const std::string& key_class,
                    std::uint32_t access) {
    // The first word of the security attributes, their size, is 0. The system reads the other fields all the
    // same, so they are 0 as well: without a descriptor the key inherits its parent's.
    SECURITY_ATTRIBUTES security{};
    std::string class_buffer = key_class; // the call requires a writable buffer
    HKEY key = nullptr;
    const LSTATUS error = ::RegCreateKeyExA(Native(root), subkey.c_str(), 0, class_buffer.data(), 0, access,
                                            &security, &key, nullptr);
    return Opened(error, key);
}

RegistryError QueryValue(RegistryHandle key, const std::string& name, std::string& buffer) {
    auto size = static_cast<DWORD>(buffer.size());
    return static_cast<std::int32_t>(::RegQueryValueExA(Native(key), name.c_str(), nullptr, nullptr,
                                                        reinterpret_cast<BYTE*>(buffer.data()), &size));
}

RegistryError SetValue(RegistryHandle key, const std::string& name, std::uint32_t type,
                       const std::string& data) {
    return static_cast<std::int32_t>(::RegSetValueExA(Native(key), name.c_str(), 0, type,
                                                      reinterpret_cast<const BYTE*>(data.c_str()),
                                                      static_cast<DWORD>(data.size())));
}

std::int32_t CloseKey(RegistryHandle key) {
    return static_cast<std::int32_t>(::RegCloseKey(Native(key)));
}

OpenedKey ConnectRegistry(const std::string& computer, RegistryHandle hive) {
    HKEY root = nullptr;
    const LSTATUS error = ::RegConnectRegistryA(computer.c_str(), Native(hive), &root);
    return Opened(error, root);
}

std::string SystemMessage(const RegistryError& error, std::size_t buffer_size) {
    std::string buffer(buffer_size, ' ');
    const DWORD length =
        ::FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, static_cast<DWORD>(error.number), 0,
                         buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
    buffer.resize(length);
    return buffer;
}

} // namespace registry

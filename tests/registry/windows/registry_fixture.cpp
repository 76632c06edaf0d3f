#include "registry/registry_fixture.h"

#include <array>
#include <stdexcept>

#include "platform/windows/lean_windows.h"

namespace registry_tests {
namespace {

HKEY Native(std::int32_t hive) {
    return reinterpret_cast<HKEY>(static_cast<platform::RegistryHandle>(hive));
}

void Must(LSTATUS error) {
    if (error != ERROR_SUCCESS) {
        throw std::runtime_error("registry error " + std::to_string(error));
    }
}

void Clear(const std::string& key) {
    for (const auto hive : {platform::kHkeyCurrentUser, platform::kHkeyLocalMachine}) {
        // The key's content goes first: the call that takes both is not in every system's library.
        ::RegDeleteTreeA(Native(hive), key.c_str());
        ::RegDeleteKeyA(Native(hive), key.c_str());
    }
}

} // namespace

RegistryRoom::RegistryRoom() {
    Clear(Key());
}

RegistryRoom::~RegistryRoom() {
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    Clear(Key());
}

std::string RegistryRoom::Key() const {
    return "SOFTWARE\\KVLSQLDbMgrTest" + std::to_string(::GetCurrentProcessId());
}

void RegistryRoom::OwnLocalMachine() {
    HKEY machine = nullptr;
    Must(::RegCreateKeyA(HKEY_CURRENT_USER, Key("LocalMachine").c_str(), &machine));
    const LSTATUS error = ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine);
    ::RegCloseKey(machine);
    Must(error);
}

void RegistryRoom::Put(std::int32_t hive, const std::string& key, const std::string& name, std::uint32_t type,
                       const std::string& bytes) {
    HKEY opened = nullptr;
    Must(::RegCreateKeyA(Native(hive), key.c_str(), &opened));
    // The system takes a NUL behind the bytes in; another character there keeps it from doing so.
    const std::string guarded = bytes + "!";
    const LSTATUS error =
        ::RegSetValueExA(opened, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(guarded.data()),
                         static_cast<DWORD>(bytes.size()));
    ::RegCloseKey(opened);
    Must(error);
}

std::string RegistryRoom::ClassOf(std::int32_t hive, const std::string& key) const {
    HKEY opened = nullptr;
    Must(::RegOpenKeyExA(Native(hive), key.c_str(), 0, KEY_QUERY_VALUE, &opened));
    std::array<char, 256> name{};
    auto size = static_cast<DWORD>(name.size());
    const LSTATUS error = ::RegQueryInfoKeyA(opened, name.data(), &size, nullptr, nullptr, nullptr, nullptr,
                                             nullptr, nullptr, nullptr, nullptr, nullptr);
    ::RegCloseKey(opened);
    Must(error);
    return {name.data(), size};
}

} // namespace registry_tests

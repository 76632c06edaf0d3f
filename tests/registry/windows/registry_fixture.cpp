#include "registry/registry_fixture.h"

#include <array>
#include <stdexcept>

#include "platform/windows/lean_windows.h"

namespace registry_tests {
namespace {

HKEY Native(std::int32_t hive) {
    return reinterpret_cast<HKEY>(static_cast<registry::RegistryHandle>(hive));
}

void Must(LSTATUS error) {
    if (error != ERROR_SUCCESS) {
        throw std::runtime_error("registry error " + std::to_string(error));
    }
}

void Clear(const std::string& key) {
    for (const auto hive : {registry::kHkeyCurrentUser, registry::kHkeyLocalMachine}) {
        // The key's content is deleted first: the call that deletes both is not in every version of the
        // system's library.
        ::RegDeleteTreeA(Native(hive), key.c_str());
        ::RegDeleteKeyA(Native(hive), key.c_str());
    }
}

} // namespace

TestRegistry::TestRegistry() {
    Clear(Key());
}

TestRegistry::~TestRegistry() {
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    Clear(Key());
}

std::string TestRegistry::Key() const {
    return "SOFTWARE\\KVLSQLDbMgrTest" + std::to_string(::GetCurrentProcessId());
}

void TestRegistry::OwnLocalMachine() {
    HKEY machine = nullptr;
    Must(::RegCreateKeyA(HKEY_CURRENT_USER, Key("LocalMachine").c_str(), &machine));
    const LSTATUS error = ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine);
    ::RegCloseKey(machine);
    Must(error);
}

void TestRegistry::Put(std::int32_t hive, const std::string& key, const std::string& name, std::uint32_t type,
                       const std::string& bytes) {
    HKEY opened = nullptr;
    Must(::RegCreateKeyA(Native(hive), key.c_str(), &opened));
    // The system stores a NUL that follows the bytes as well; another character there prevents that.
    const std::string guarded = bytes + "!";
    const LSTATUS error =
        ::RegSetValueExA(opened, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(guarded.data()),
                         static_cast<DWORD>(bytes.size()));
    ::RegCloseKey(opened);
    Must(error);
}

std::string TestRegistry::ClassOf(std::int32_t hive, const std::string& key) const {
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

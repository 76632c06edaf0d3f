#include "registry/registry_fixture.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace registry_tests {
namespace {

std::filesystem::path Folder() {
    return std::filesystem::temp_directory_path() / ("kv_registry_test_" + std::to_string(::getpid()));
}

std::filesystem::path File() {
    return Folder() / "registry.reg";
}

std::string HiveName(std::int32_t hive) {
    return hive == registry::kHkeyCurrentUser ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
}

} // namespace

/// REGEDIT4 keeps text in the 8-bit code page.
TestRegistry::TestRegistry() {
    std::filesystem::remove_all(Folder());
    std::filesystem::create_directories(Folder());
    std::ofstream(File()) << "REGEDIT4\r\n";
    ::setenv("KVLSQLDBMGR_REGISTRY", File().c_str(), 1);
}

TestRegistry::~TestRegistry() {
    ::unsetenv("KVLSQLDBMGR_REGISTRY");
    std::filesystem::remove_all(Folder());
}

std::string TestRegistry::Key() const {
    return "SOFTWARE\\KVLSQLDbMgrTest";
}

/// The whole file belongs to the test.
void TestRegistry::OwnLocalMachine() {}

void TestRegistry::Put(std::int32_t hive, const std::string& key, const std::string& name, std::uint32_t type,
                       const std::string& bytes) {
    std::ofstream file(File(), std::ios::app | std::ios::binary);
    file << "\r\n[" << HiveName(hive) << "\\" << key << "]\r\n\"" << name << "\"=hex(" << std::hex << type
         << "):";
    const char* separator = "";
    for (const char byte : bytes) {
        std::array<char, 8> digits{};
        std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned char>(byte));
        file << separator << digits.data();
        separator = ",";
    }
    file << "\r\n";
}

/// The file has a class as a comment above its key.
std::string TestRegistry::ClassOf(std::int32_t hive, const std::string& key) const {
    std::ifstream file(File(), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto section = text.find("\r\n[" + HiveName(hive) + "\\" + key + "]");
    const std::string mark = "; class \"";
    const auto begin = section == std::string::npos ? section : text.rfind(mark, section);
    if (begin == std::string::npos) {
        return "";
    }
    const auto name = begin + mark.size();
    return text.substr(name, section - name - 1);
}

} // namespace registry_tests

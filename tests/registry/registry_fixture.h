// A key of the real registry that belongs to one test and is deleted when the test ends.
#pragma once

#include <cstdint>
#include <string>

#include "registry/registry.h"

namespace registry_tests {

class TestRegistry {
  public:
    TestRegistry();
    TestRegistry(const TestRegistry&) = delete;
    TestRegistry& operator=(const TestRegistry&) = delete;
    ~TestRegistry();

    /// The test's own key, which has the same name in both hives, and a key below it.
    std::string Key() const;
    std::string Key(const std::string& below) const { return Key() + "\\" + below; }

    /// After this call HKEY_LOCAL_MACHINE is an empty hive of the test's own for this process.
    void OwnLocalMachine();

    /// Stores exactly these bytes, without the NUL that the ordinary calls add to a text. Text is in the
    /// 8-bit code page.
    void Put(std::int32_t hive, const std::string& key, const std::string& name, std::uint32_t type,
             const std::string& bytes);
    /// The class that a key was made with.
    std::string ClassOf(std::int32_t hive, const std::string& key) const;
};

} // namespace registry_tests

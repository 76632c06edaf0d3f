// A corner of the real registry that belongs to one test and is gone when it ends.
#pragma once

#include <cstdint>
#include <string>

#include "registry/registry.h"

namespace registry_tests {

class RegistryRoom {
  public:
    RegistryRoom();
    RegistryRoom(const RegistryRoom&) = delete;
    RegistryRoom& operator=(const RegistryRoom&) = delete;
    ~RegistryRoom();

    /// The room's own key, the same in both hives, and a key below it.
    std::string Key() const;
    std::string Key(const std::string& below) const { return Key() + "\\" + below; }

    /// From here on HKEY_LOCAL_MACHINE is an empty one of the room's own, as far as this process sees.
    void OwnLocalMachine();

    /// Stores exactly these bytes, without the NUL that the ordinary calls add to a text. Text is in the
    /// 8-bit code page.
    void Put(std::int32_t hive, const std::string& key, const std::string& name, std::uint32_t type,
             const std::string& bytes);
    /// The class that a key was made with.
    std::string ClassOf(std::int32_t hive, const std::string& key) const;
};

} // namespace registry_tests

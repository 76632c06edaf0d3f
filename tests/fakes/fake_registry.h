// A registry in memory, linked in place of the system's. Fails on demand and counts the keys that stay open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "registry/registry.h"

namespace fakes {

enum class RegistryCall : std::uint8_t { Open, Create, Query, Set, Connect };

/// One for each test. Its constructor and its destructor empty the registry.
class FakeRegistry {
  public:
    FakeRegistry();
    FakeRegistry(const FakeRegistry&) = delete;
    FakeRegistry& operator=(const FakeRegistry&) = delete;
    ~FakeRegistry();

    // The content. The empty name is a key's default value; letter case is ignored, and a run of "\" in a key
    // counts as one.

    void AddKey(std::int32_t hive, const std::string& key);
    /// Stores a text with its NUL, as Windows does. The key is made if it is absent.
    void AddText(std::int32_t hive, const std::string& key, const std::string& name, const std::string& text);
    /// Stores the bytes of a value that is not text.
    void AddBytes(std::int32_t hive, const std::string& key, const std::string& name,
                  const std::string& bytes);
    /// After this call the three functions above fill this computer's registry; the empty name switches back.
    void OnComputer(const std::string& computer);

    bool HasKey(std::int32_t hive, const std::string& key) const;
    bool HasValue(std::int32_t hive, const std::string& key, const std::string& name) const;
    /// The text without its NUL; empty if there is no such value.
    std::string TextOf(std::int32_t hive, const std::string& key, const std::string& name) const;
    /// The class that the key was made with.
    std::string ClassOf(std::int32_t hive, const std::string& key) const;

    /// Every call of this kind fails with `error` until it is 0 again.
    void Fail(RegistryCall call, std::int32_t error);
    /// The system's text for an error, CR LF included; empty for a system without such a text.
    void SetSystemMessage(std::int32_t error, const std::string& text);

    /// The number of keys and remote roots that were opened and not closed.
    std::size_t OpenHandles() const;
    /// One line for each call, as "Open HKLM\SOFTWARE\A 1", "Query name", "Close".
    const std::vector<std::string>& Calls() const;
};

} // namespace fakes

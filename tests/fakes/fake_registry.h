// A registry (registry/registry.h) in memory, linked instead of the system's. It fails on demand and counts
// the keys that stay open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "registry/registry.h"

namespace fakes {

enum class RegistryCall : std::uint8_t { Open, Create, Query, Set, Connect };

/// A test makes one. Its constructor and its destructor empty the registry. `hive` is a root key, such as
/// registry_locations::kHkeyLocalMachine.
class FakeRegistry {
  public:
    FakeRegistry();
    FakeRegistry(const FakeRegistry&) = delete;
    FakeRegistry& operator=(const FakeRegistry&) = delete;
    ~FakeRegistry();

    // The content. The empty name is a key's default value. Letter case is ignored, and several "\" in a row
    // count as one.

    void AddKey(std::int32_t hive, const std::string& key);
    /// Stores a text with a NUL at its end, as Windows does. Makes the key if it does not exist.
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

    /// Every call of this kind fails with the Win32 error `error`; 0 ends that.
    void Fail(RegistryCall call, std::int32_t error);
    /// Sets the system's text for an error, with CR LF at its end; empty means that the system has no text.
    void SetSystemMessage(std::int32_t error, const std::string& text);

    /// The number of keys and remote roots that were opened and not closed.
    std::size_t OpenHandles() const;
    /// One line for each call, as "Open HKLM\SOFTWARE\A 1", "Query name", "Close".
    const std::vector<std::string>& Calls() const;
};

} // namespace fakes

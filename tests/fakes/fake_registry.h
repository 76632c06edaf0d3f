// A registry in memory in the place of the system's, which fails on demand and counts what is left open. Link
// fake_registry.cpp into a test and it stands behind platform/registry.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "registry/registry.h"

namespace fakes {

enum class RegistryCall : std::uint8_t { Open, Create, Query, Set, Connect };

/// One for each test: everything is forgotten when it is made and when it goes.
class FakeRegistry {
  public:
    FakeRegistry();
    FakeRegistry(const FakeRegistry&) = delete;
    FakeRegistry& operator=(const FakeRegistry&) = delete;
    ~FakeRegistry();

    // What it holds. The empty name is a key's default value; names compare without case, and a run of "\" in
    // a key is one.

    void AddKey(std::int32_t hive, const std::string& key);
    /// A text as Windows keeps it, its NUL behind it. The key is made if it is absent.
    void AddText(std::int32_t hive, const std::string& key, const std::string& name, const std::string& text);
    /// A value of no text type: its bytes as they are.
    void AddBytes(std::int32_t hive, const std::string& key, const std::string& name,
                  const std::string& bytes);
    /// From here on, until the empty name, the three above fill this computer instead.
    void OnComputer(const std::string& computer);

    bool HasKey(std::int32_t hive, const std::string& key) const;
    bool HasValue(std::int32_t hive, const std::string& key, const std::string& name) const;
    /// Without its NUL; empty if there is no such value.
    std::string TextOf(std::int32_t hive, const std::string& key, const std::string& name) const;
    /// The class that the key was made with.
    std::string ClassOf(std::int32_t hive, const std::string& key) const;

    /// Every call of this kind fails with `error` until it is 0 again.
    void Fail(RegistryCall call, std::int32_t error);
    /// The system's text for an error, CR LF included; the empty text is a system that has none.
    void SetSystemMessage(std::int32_t error, const std::string& text);

    /// Keys and remote roots that were opened and not closed.
    std::size_t OpenHandles() const;
    /// One line for each call, as "Open HKLM\SOFTWARE\A 1", "Query name", "Close".
    const std::vector<std::string>& Calls() const;
};

} // namespace fakes

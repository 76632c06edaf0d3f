// Reads and writes string values of the registry for the whole program, and logs failures. All text is 8-bit.
// An empty value name means the key's default value. `lngHive` is kHkeyCurrentUser or kHkeyLocalMachine.
#pragma once

#include <cstdint>
#include <string>

#include "registry/registry.h"

namespace kv {

// These three log a failure and do not raise it.

/// Returns the value. Returns `strDefault` if the key exists but the value does not, and an empty text after
/// any failure; a missing key is a failure.
std::string GetLocalSetting(std::int32_t lngHive, const std::string& strSubKey,
                            const std::string& strValueName, const std::string& strDefault);

/// Does the same in the registry of another computer. The connection to it stays open until the program ends.
std::string GetRemoteSetting(const std::string& strComputer, std::int32_t lngHive,
                             const std::string& strSubKey, const std::string& strValueName,
                             const std::string& strDefault);

/// Writes the value, and makes the key if it is missing. Returns false after a failure.
bool SaveLocalSetting(std::int32_t lngHive, const std::string& strSubKey, const std::string& strValueName,
                      const std::string& strValue);

// These two log a failure and raise it again. `lngRoot` is a hive or a root that ConnectRegistry has opened.
// The number of the raised failure is the length of the system's text for the error, not the system's number.

/// Returns the value, or `strDefault` if the key exists but the value does not.
std::string GetStringKey(registry::RegistryHandle lngRoot, const std::string& strSubKey,
                         const std::string& strValueName, const std::string& strDefault);

/// Writes the value, and makes the key if it is missing. Returns true.
bool SetStringKey(registry::RegistryHandle lngRoot, const std::string& strSubKey,
                  const std::string& strValueName, const std::string& strValue);

} // namespace kv

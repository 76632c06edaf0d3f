// modRegistry: reads and writes the registry's string values for the whole program, and logs failures. All
// text is 8-bit. The empty value name means the key's default value.
#pragma once

#include <cstdint>
#include <string>

#include "registry/registry.h"

namespace kv {

// The outer layer logs a failure and does not raise it.

/// The value; `strDefault` if the key is there and the value is not; empty on any failure, a missing key
/// among them.
std::string GetLocalSetting(std::int32_t lngHive, const std::string& strSubKey,
                            const std::string& strValueName, const std::string& strDefault);

/// The same on another computer. The connection to it stays open until the program ends.
std::string GetRemoteSetting(const std::string& strComputer, std::int32_t lngHive,
                             const std::string& strSubKey, const std::string& strValueName,
                             const std::string& strDefault);

/// True if the value is written; the key is made if it is absent.
bool SaveLocalSetting(std::int32_t lngHive, const std::string& strSubKey, const std::string& strValueName,
                      const std::string& strValue);

// The inner layer logs a failure and raises it again. `lngRoot` is a hive or a root that ConnectRegistry has
// opened. The number of a raised failure is the length of the system's text for it, and not the system's
// number.

std::string GetStringKey(registry::RegistryHandle lngRoot, const std::string& strSubKey,
                         const std::string& strValueName, const std::string& strDefault);

bool SetStringKey(registry::RegistryHandle lngRoot, const std::string& strSubKey,
                  const std::string& strValueName, const std::string& strValue);

} // namespace kv

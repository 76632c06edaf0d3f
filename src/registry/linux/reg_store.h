// The .reg files of this computer and of others: where they lie, how one is read, and how a change is saved
// so that neither a full disk nor another process's change costs anything. Errors are the platform's numbers.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "registry/linux/reg_file.h"

namespace platform {

/// The file of this computer: $KVLSQLDBMGR_REGISTRY, else KVLSQLDbMgr/registry.reg in $XDG_CONFIG_HOME or
/// ~/.config. Empty if the user has no home.
std::string LocalRegistryPath();
/// The file of another computer, computers/<name>.reg beside this computer's, compared without case. Nothing
/// if there is none.
std::optional<std::string> RemoteRegistryPath(const std::string& computer);

/// Reads a file into `file`. A missing file is an empty registry.
std::int32_t LoadRegistry(const std::string& path, RegFile& file);

/// Reads the file, changes it and puts the new one in its place, with no other process's change between. The
/// file stays as it is unless the result is 0.
std::int32_t ChangeRegistry(const std::string& path, const std::function<void(RegFile&)>& change);

/// What is wrong with a file, if the last call above failed with this error: the system's text goes on with
/// it. Empty if there is nothing to add.
std::string RegistryTrouble(std::int32_t error);
void ForgetRegistryTrouble();

} // namespace platform

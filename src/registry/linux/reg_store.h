// The .reg files of this computer and of others: where they are, how a file is read, and how a change is
// saved so that neither a full disk nor a change by another process loses anything. Errors are the registry's
// numbers.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "registry/linux/reg_file.h"
#include "registry/registry.h"

namespace registry {

/// The file of this computer: $KVLSQLDBMGR_REGISTRY, else KVLSQLDbMgr/registry.reg in $XDG_CONFIG_HOME or
/// ~/.config. Empty if the user has no home folder.
std::string LocalRegistryPath();
/// The file of another computer, computers/<name>.reg beside this computer's file, letter case ignored.
/// Nothing if there is no such file.
std::optional<std::string> RemoteRegistryPath(const std::string& computer);

/// The content of a file at the time of the call. It is never changed: a change makes a new one.
struct LoadedRegistry {
    RegistryError error;
    std::shared_ptr<const RegFile> file; ///< not null if error is 0; a missing file is an empty registry
    RegistryError missing_key; ///< the error for a key that is not in the file; it reports a missing file
};

/// Reads the file, or returns the result of the last call if the file has not changed since. A file that is
/// missing or cannot be used is reported on the terminal, once.
LoadedRegistry LoadRegistry(const std::string& path);

/// Reads the file, changes it and replaces it in one step, while no other process can change it. The file
/// stays as it is unless the result is 0.
RegistryError ChangeRegistry(const std::string& path, const std::function<void(RegFile&)>& change);

} // namespace registry

// Finds, reads and changes the .reg files of this computer and of others. Neither a full disk nor a change by
// another process at the same time loses anything. Errors are the registry's numbers (registry.h). Paths are
// in the system's encoding.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "registry/linux/reg_file.h"
#include "registry/registry.h"

namespace registry {

/// Returns the path of this computer's file: $KVLSQLDBMGR_REGISTRY if that is set, otherwise
/// KVLSQLDbMgr/registry.reg in $XDG_CONFIG_HOME or ~/.config. Empty if the user has no home folder.
std::string LocalRegistryPath();
/// Returns the path of another computer's file, which is computers/<name>.reg beside this computer's file,
/// letter case ignored. Returns nothing if there is no such file.
std::optional<std::string> RemoteRegistryPath(const std::string& computer);

/// The content of a file at the time of a call. It does not change when the file changes.
struct LoadedRegistry {
    RegistryError error;
    std::shared_ptr<const RegFile> file; ///< not null if error is 0; empty for a missing file
    /// The error to return for a key that is not in the file. Its detail names the file if the file is
    /// missing.
    RegistryError missing_key;
};

/// Reads the file, or returns the result of the last call if the file has not changed since then. A file that
/// is missing or cannot be used is reported on the terminal, once.
LoadedRegistry LoadRegistry(const std::string& path);

/// Reads the file, calls `change` with its content and replaces the file in one step. A lock keeps other
/// processes from changing it meanwhile. Makes the file and its folders if they are missing. After an error
/// the file is as it was.
RegistryError ChangeRegistry(const std::string& path, const std::function<void(RegFile&)>& change);

} // namespace registry

// The .reg files of this computer and of others: where they lie, how one is read, and how a change is saved
// so that neither a full disk nor another process's change costs anything. Errors are the platform's numbers.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "registry/linux/reg_file.h"
#include "registry/registry.h"

namespace platform {

/// The file of this computer: $KVLSQLDBMGR_REGISTRY, else KVLSQLDbMgr/registry.reg in $XDG_CONFIG_HOME or
/// ~/.config. Empty if the user has no home.
std::string LocalRegistryPath();
/// The file of another computer, computers/<name>.reg beside this computer's, compared without case. Nothing
/// if there is none.
std::optional<std::string> RemoteRegistryPath(const std::string& computer);

/// A file as a call finds it. It does not change; a change makes a new one.
struct LoadedRegistry {
    RegistryError error;
    std::shared_ptr<const RegFile> file; ///< not null if error is 0; a missing file is an empty registry
    RegistryError missing_key; ///< the error for a key that is not in it: it says so if there is no file
};

/// Reads the file, or gives what the last call has read, if the file has not changed since. A file that is
/// missing or cannot be used is reported on the terminal, once.
LoadedRegistry LoadRegistry(const std::string& path);

/// Reads the file, changes it and puts the new one in its place, with no other process's change between. The
/// file stays as it is unless the result is 0.
RegistryError ChangeRegistry(const std::string& path, const std::function<void(RegFile&)>& change);

} // namespace platform

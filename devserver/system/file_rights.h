// Checks who may read a file. Knows nothing of its content.
#pragma once

#include <filesystem>

namespace devsql::system {

/// True if anybody but its owner and the administrators of the machine may read or change the file. On Linux
/// the rights of group and others decide. On Windows it is an entry of the access list that allows another
/// account, or a file without an access list (FAT). Throws std::runtime_error if the rights cannot be read.
bool OthersHaveRights(const std::filesystem::path& file);

} // namespace devsql::system

// Who may read a file. Knows nothing of what is in it.
#pragma once

#include <filesystem>

namespace devsql::system {

/// True when anybody but its owner and those who administer the machine may read or change the file. Linux:
/// the rights of group and others. Windows: an entry of the access list that allows another account; a file
/// without an access list (FAT) is everybody's. Throws std::runtime_error when the rights cannot be read.
bool OthersHaveRights(const std::filesystem::path& file);

} // namespace devsql::system

// Reads the rights of group and others.
#include "devserver/system/file_rights.h"

namespace devsql::system {

bool OthersHaveRights(const std::filesystem::path& file) {
    using std::filesystem::perms;
    const perms rights = std::filesystem::status(file).permissions();
    return (rights & (perms::group_all | perms::others_all)) != perms::none;
}

} // namespace devsql::system

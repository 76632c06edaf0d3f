// The record is compiled in: an executable of this system carries no resources.
#include "platform/version_record.h"

namespace platform {

std::string VersionComments() {
    return KV_VERSION_COMMENTS;
}

} // namespace platform

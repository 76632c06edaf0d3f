// The text is compiled in, since executables of this system have no resources.
#include "platform/version_record.h"

namespace platform {

std::string VersionComments() {
    return KV_VERSION_COMMENTS;
}

} // namespace platform

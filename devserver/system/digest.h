// SHA-256 by a library of the system. Knows nothing of what is hashed.
#pragma once

#include <string>
#include <string_view>

namespace devsql::system {

/// The 32 bytes of the digest. Throws std::runtime_error when the library fails.
std::string Sha256(std::string_view bytes);

} // namespace devsql::system

// Digests of bytes: what HASHBYTES offers and what passwords are kept as.
#pragma once

#include <string>
#include <string_view>

namespace devsql {

// Each gives the bytes of the digest.
std::string Md5(std::string text);
std::string Sha1(std::string text);
std::string Sha256(std::string text);

/// In small hexadecimal digits.
std::string HexOf(std::string_view bytes);

} // namespace devsql

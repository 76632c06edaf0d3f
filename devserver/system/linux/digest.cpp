// The digest by OpenSSL's libcrypto.
#include "devserver/system/digest.h"

#include <stdexcept>

#include <openssl/evp.h>

namespace devsql::system {

std::string Sha256(std::string_view bytes) {
    std::string digest(EVP_MAX_MD_SIZE, '\0');
    unsigned size = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), reinterpret_cast<unsigned char*>(digest.data()), &size,
                   EVP_sha256(), nullptr) != 1) {
        throw std::runtime_error("SHA-256 failed");
    }
    digest.resize(size);
    return digest;
}

} // namespace devsql::system

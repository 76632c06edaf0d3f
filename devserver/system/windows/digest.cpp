// The digest by the system's own cryptography.
#include "devserver/system/digest.h"

#include <windows.h>

#include <bcrypt.h>

#include <memory>
#include <stdexcept>

namespace devsql::system {

namespace {

constexpr std::size_t kDigestSize = 32;

void Require(NTSTATUS status) {
    if (!BCRYPT_SUCCESS(status)) {
        throw std::runtime_error("SHA-256 failed");
    }
}

struct CloseAlgorithm {
    void operator()(void* handle) const { BCryptCloseAlgorithmProvider(handle, 0); }
};

struct DestroyHash {
    void operator()(void* handle) const { BCryptDestroyHash(handle); }
};

/// The bytes in the type of BCrypt's parameters, which is not const although the calls only read them.
UCHAR* BytesOf(std::string_view bytes) {
    return reinterpret_cast<UCHAR*>(const_cast<char*>(bytes.data()));
}

} // namespace

std::string Sha256(std::string_view bytes) {
    BCRYPT_ALG_HANDLE algorithm_handle = nullptr;
    Require(BCryptOpenAlgorithmProvider(&algorithm_handle, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
    const std::unique_ptr<void, CloseAlgorithm> algorithm(algorithm_handle);
    BCRYPT_HASH_HANDLE hash_handle = nullptr;
    Require(BCryptCreateHash(algorithm.get(), &hash_handle, nullptr, 0, nullptr, 0, 0));
    const std::unique_ptr<void, DestroyHash> hash(hash_handle);
    Require(BCryptHashData(hash.get(), BytesOf(bytes), static_cast<ULONG>(bytes.size()), 0));
    std::string digest(kDigestSize, '\0');
    Require(BCryptFinishHash(hash.get(), BytesOf(digest), kDigestSize, 0));
    return digest;
}

} // namespace devsql::system

// The registry, at the level of the system's own calls: handles, error numbers, raw bytes. On Linux a .reg
// file takes its place (linux/reg_store.h). Failures are returned as numbers. Text is 8-bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace registry {

/// An open key, or a hive. It is a plain number, not an owner: callers close keys with CloseKey, and the
/// program leaves some open on purpose.
using RegistryHandle = std::intptr_t;

/// The hives as signed 32-bit numbers; as a RegistryHandle they are sign-extended.
inline constexpr std::int32_t kHkeyCurrentUser = -2147483647;
inline constexpr std::int32_t kHkeyLocalMachine = -2147483646;

/// The kinds of access with which a key can be opened; bits, as the system numbers them.
inline constexpr std::uint32_t kKeyQueryValue = 1;
inline constexpr std::uint32_t kKeySetValue = 2;
inline constexpr std::uint32_t kKeyAllAccess = 0xF003F;

/// The one type of value that the program writes.
inline constexpr std::uint32_t kRegSz = 1;

/// The system's error numbers that callers and tests distinguish.
namespace error {
inline constexpr std::int32_t kSuccess = 0;
inline constexpr std::int32_t kFileNotFound = 2;
inline constexpr std::int32_t kAccessDenied = 5;
inline constexpr std::int32_t kInvalidHandle = 6;
inline constexpr std::int32_t kBadNetPath = 53;
inline constexpr std::int32_t kInvalidParameter = 87;
inline constexpr std::int32_t kDiskFull = 112;
inline constexpr std::int32_t kMoreData = 234;
inline constexpr std::int32_t kBadDb = 1009; ///< the store is damaged
inline constexpr std::int32_t kCantOpen = 1011;
inline constexpr std::int32_t kCantRead = 1012;
inline constexpr std::int32_t kCantWrite = 1013;
} // namespace error

/// The outcome of a call: the system's number, and details that are added to the system's text for it.
struct RegistryError {
    // Implicit on purpose: most calls return a number alone.
    RegistryError(std::int32_t number_ = error::kSuccess, std::string detail_ = {})
        : number(number_), detail(std::move(detail_)) {}

    std::int32_t number;
    std::string detail; ///< names the file and the fault in it; empty on Windows

    friend bool operator==(const RegistryError& error, std::int32_t wanted) { return error.number == wanted; }
};

/// The outcome of a call that opens a key.
struct OpenedKey {
    RegistryError error;
    RegistryHandle key = 0; ///< valid only if the error's number is 0; the caller closes it
};

/// Opens the existing key `subkey` below `root`. Fails with kFileNotFound if there is no such key.
OpenedKey OpenKey(RegistryHandle root, const std::string& subkey, std::uint32_t access);

/// Opens the key `subkey` below `root`. If it is missing, makes it with the class `key_class`.
OpenedKey CreateKey(RegistryHandle root, const std::string& subkey, const std::string& key_class,
                    std::uint32_t access);

/// Copies the bytes of a value of any type to the beginning of `buffer`, whose size is its capacity in bytes,
/// and leaves the rest of it as it is. An empty name means the key's default value. Text is in code page
/// 1252, with its NUL; if it is stored without a NUL, a NUL is added if the buffer has space for it. Fails
/// with kFileNotFound if there is no such value, and with kMoreData if it does not fit.
RegistryError QueryValue(RegistryHandle key, const std::string& name, std::string& buffer);

/// Stores the bytes of `data` as the value, without adding a NUL.
RegistryError SetValue(RegistryHandle key, const std::string& name, std::uint32_t type,
                       const std::string& data);

/// Closes the key and returns the system's number. A hive needs no closing; closing it succeeds.
std::int32_t CloseKey(RegistryHandle key);

/// Opens a hive of another computer, whose name may begin with two backslashes. The result is a root for
/// OpenKey.
OpenedKey ConnectRegistry(const std::string& computer, RegistryHandle hive);

/// Returns the system's text for the error, with the error's detail and a CR LF at the end. Empty if the
/// system has no text for the number, or if the text does not fit into `buffer_size` characters.
std::string SystemMessage(const RegistryError& error, std::size_t buffer_size);

} // namespace registry

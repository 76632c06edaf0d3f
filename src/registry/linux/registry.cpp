// The registry on Linux: the handles and calls of Windows, implemented with .reg files.
#include "registry/registry.h"

#include <algorithm>
#include <array>
#include <climits>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include <unistd.h>

#include "registry/linux/reg_store.h"
#include "text/text.h"

namespace registry {
namespace {

using namespace error;

struct Hive {
    RegistryHandle handle;
    std::u16string_view name;
};

constexpr std::array kHives = {Hive{kHkeyCurrentUser, u"HKEY_CURRENT_USER"},
                               Hive{kHkeyLocalMachine, u"HKEY_LOCAL_MACHINE"}};

/// An open key, to which a handle refers.
struct Key {
    std::string file; ///< the path of its .reg file
    RegPath path;
    std::uint32_t access = kKeyAllAccess;
};

std::map<RegistryHandle, Key>& OpenKeys() {
    static std::map<RegistryHandle, Key> keys;
    return keys;
}

/// Gives the key a new handle.
OpenedKey Open(Key key) {
    static RegistryHandle last = 0x100;
    OpenKeys().emplace(++last, std::move(key));
    return {kSuccess, last};
}

/// Returns the text before its first NUL, as far as the calls of Windows read it.
std::string_view UpToNul(const std::string& text) {
    return text.c_str();
}

std::u16string_view HiveOf(RegistryHandle handle) {
    const auto* hive =
        std::find_if(kHives.begin(), kHives.end(), [&](const Hive& h) { return h.handle == handle; });
    return hive == kHives.end() ? std::u16string_view{} : hive->name;
}

/// Returns the key of a handle, which may be a hive; nothing if the handle is invalid.
std::optional<Key> Find(RegistryHandle handle) {
    const std::u16string_view hive = HiveOf(handle);
    if (!hive.empty()) {
        return Key{LocalRegistryPath(), RegPath(hive), kKeyAllAccess};
    }
    const auto found = OpenKeys().find(handle);
    return found == OpenKeys().end() ? std::nullopt : std::optional(found->second);
}

bool IsHive(const RegPath& path) {
    return path.find(u'\\') == RegPath::npos;
}

bool IsThisComputer(std::string_view name) {
    std::array<char, HOST_NAME_MAX + 1> own{};
    return name.empty() ||
           (::gethostname(own.data(), own.size() - 1) == 0 && text::SameIgnoringCase(name, own.data()));
}

struct Message {
    std::int32_t error;
    std::string_view text;
};

constexpr std::array kMessages = {
    Message{kFileNotFound, "The system cannot find the file specified."},
    Message{kAccessDenied, "Access is denied."},
    Message{kInvalidHandle, "The handle is invalid."},
    Message{kBadNetPath, "The network path was not found."},
    Message{kInvalidParameter, "The parameter is incorrect."},
    Message{kDiskFull, "There is not enough space on the disk."},
    Message{kMoreData, "More data is available."},
    Message{kBadDb, "The configuration registry database is corrupt."},
    Message{kCantOpen, "The configuration registry key could not be opened."},
    Message{kCantRead, "The configuration registry key could not be read."},
    Message{kCantWrite, "The configuration registry key could not be written."},
};

/// Shortens the text to `most` characters. The beginning is cut, since the end names the file and the line.
std::string Shortened(std::string text, std::size_t most) {
    constexpr std::string_view kLeftOut = "...";
    if (text.size() > most) {
        text.replace(0, text.size() - most + kLeftOut.size(), kLeftOut);
    }
    return text;
}

} // namespace

OpenedKey OpenKey(RegistryHandle root, const std::string& subkey, std::uint32_t access) {
    const auto parent = Find(root);
    if (!parent) {
        return {kInvalidHandle};
    }
    Key key{parent->file, MakeRegPath(parent->path, UpToNul(subkey)), access};
    const LoadedRegistry registry = LoadRegistry(key.file);
    if (registry.error != kSuccess) {
        return {registry.error};
    }
    if (!IsHive(key.path) && !registry.file->HasKey(key.path)) {
        return {registry.missing_key};
    }
    return Open(std::move(key));
}

OpenedKey CreateKey(RegistryHandle root, const std::string& subkey, const std::string& key_class,
                    std::uint32_t access) {
    const auto parent = Find(root);
    if (!parent) {
        return {kInvalidHandle};
    }
    Key key{parent->file, MakeRegPath(parent->path, UpToNul(subkey)), access};
    const RegistryError error = ChangeRegistry(key.file, [&](RegFile& file) {
        if (!IsHive(key.path)) {
            file.AddKey(key.path, UpToNul(key_class));
        }
    });
    return error == kSuccess ? Open(std::move(key)) : OpenedKey{error};
}

RegistryError QueryValue(RegistryHandle key, const std::string& name, std::string& buffer) {
    const auto open = Find(key);
    if (!open) {
        return kInvalidHandle;
    }
    if ((open->access & kKeyQueryValue) == 0) {
        return kAccessDenied;
    }
    const LoadedRegistry registry = LoadRegistry(open->file);
    if (registry.error != kSuccess) {
        return registry.error;
    }
    const RegValue* value = registry.file->Find(open->path, UpToNul(name));
    if (value == nullptr) {
        return kFileNotFound;
    }
    std::string bytes = value->bytes;
    if (bytes.size() > buffer.size()) {
        return kMoreData;
    }
    constexpr std::uint32_t kLastTextType = 2; // text, and text with variables
    const bool text = value->type >= kRegSz && value->type <= kLastTextType;
    if (text && bytes.size() < buffer.size() && !bytes.ends_with('\0')) {
        bytes += '\0';
    }
    buffer.replace(0, bytes.size(), bytes);
    return kSuccess;
}

RegistryError SetValue(RegistryHandle key, const std::string& name, std::uint32_t type,
                       const std::string& data) {
    const auto open = Find(key);
    if (!open) {
        return kInvalidHandle;
    }
    if ((open->access & kKeySetValue) == 0) {
        return kAccessDenied;
    }
    return ChangeRegistry(open->file,
                          [&](RegFile& file) { file.SetValue(open->path, UpToNul(name), type, data); });
}

std::int32_t CloseKey(RegistryHandle key) {
    if (!HiveOf(key).empty()) {
        return kSuccess;
    }
    return OpenKeys().erase(key) == 1 ? kSuccess : kInvalidHandle;
}

OpenedKey ConnectRegistry(const std::string& computer, RegistryHandle hive) {
    const std::u16string_view hive_name = HiveOf(hive);
    if (hive_name.empty()) {
        return {kInvalidHandle};
    }
    std::string_view name = UpToNul(computer);
    name.remove_prefix(std::min(name.find_first_not_of('\\'), name.size()));
    if (const auto file = RemoteRegistryPath(std::string(name))) {
        return Open({*file, RegPath(hive_name), kKeyAllAccess});
    }
    if (IsThisComputer(name)) {
        return Open({LocalRegistryPath(), RegPath(hive_name), kKeyAllAccess});
    }
    return {kBadNetPath};
}

std::string SystemMessage(const RegistryError& error, std::size_t buffer_size) {
    constexpr std::string_view kLineEnd = "\r\n";
    constexpr std::size_t kFixed = 3; // characters for the line end and the NUL
    const auto* message = std::find_if(kMessages.begin(), kMessages.end(),
                                       [&](const Message& m) { return m.error == error.number; });
    if (message == kMessages.end() || message->text.size() + kFixed > buffer_size) {
        return {};
    }
    std::string text(message->text);
    const std::size_t room = buffer_size - kFixed - text.size();
    constexpr std::size_t kMinDetail = 20; // a shorter detail would be of no use
    if (!error.detail.empty() && room > kMinDetail) {
        text.back() = ':';
        text += ' ';
        text += Shortened(error.detail, room - 1);
    }
    return text.append(kLineEnd);
}

} // namespace registry

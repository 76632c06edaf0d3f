// Implements registry/registry.h on maps in memory.
#include "fakes/fake_registry.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>
#include <utility>

namespace fakes {
namespace {

using registry::RegistryHandle;
using namespace registry::error;

struct Key {
    std::string key_class;
    std::map<std::string, std::string> values; ///< the stored bytes
};

struct World {
    std::map<std::string, Key> keys; ///< by computer, hive and key, all in lower case
    std::string computer;
    std::map<RegistryHandle, std::string> open;
    RegistryHandle last_handle = 0x1000;
    std::map<RegistryCall, std::int32_t> failures;
    std::map<std::int32_t, std::string> messages;
    std::vector<std::string> calls;
};

World& TheWorld() {
    static World world;
    return world;
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string HiveName(RegistryHandle hive) {
    if (hive == registry::kHkeyLocalMachine) {
        return "HKLM";
    }
    return hive == registry::kHkeyCurrentUser ? "HKCU" : "";
}

/// "computer|hkcu\software\name"
std::string Join(const std::string& root, const std::string& key) {
    std::string path = root;
    bool separated = true;
    for (const char c : key) {
        if (c == '\\') {
            separated = true;
            continue;
        }
        if (separated) {
            path += '\\';
            separated = false;
        }
        path += c;
    }
    return Lower(path);
}

std::string Root(const std::string& computer, RegistryHandle hive) {
    return computer.substr(std::min(computer.find_first_not_of('\\'), computer.size())) + "|" +
           HiveName(hive);
}

std::string PathOf(std::int32_t hive, const std::string& key) {
    return Join(Root(TheWorld().computer, hive), key);
}

std::optional<std::string> PathOfHandle(RegistryHandle handle) {
    if (!HiveName(handle).empty()) {
        return Lower(Root("", handle));
    }
    const auto found = TheWorld().open.find(handle);
    return found == TheWorld().open.end() ? std::nullopt : std::optional(found->second);
}

bool IsThere(const std::string& path) {
    const auto& keys = TheWorld().keys;
    const auto below = keys.lower_bound(path);
    return path.find('\\') == std::string::npos || keys.contains(path) ||
           std::any_of(below, keys.end(),
                       [&](const auto& key) { return key.first.starts_with(path + "\\"); });
}

const std::string* FindValue(const std::string& path, const std::string& name) {
    const auto& keys = TheWorld().keys;
    const auto key = keys.find(path);
    if (key == keys.end()) {
        return nullptr;
    }
    const auto value = key->second.values.find(Lower(name));
    return value == key->second.values.end() ? nullptr : &value->second;
}

std::int32_t Failure(RegistryCall call) {
    const auto found = TheWorld().failures.find(call);
    return found == TheWorld().failures.end() ? kSuccess : found->second;
}

void Note(std::string call) {
    TheWorld().calls.push_back(std::move(call));
}

registry::OpenedKey Opened(std::string path) {
    const RegistryHandle handle = ++TheWorld().last_handle;
    TheWorld().open[handle] = std::move(path);
    return {kSuccess, handle};
}

std::string RootText(RegistryHandle root) {
    const std::string hive = HiveName(root);
    return hive.empty() ? "handle" : hive;
}

} // namespace

FakeRegistry::FakeRegistry() {
    TheWorld() = {};
}

FakeRegistry::~FakeRegistry() {
    TheWorld() = {};
}

void FakeRegistry::AddKey(std::int32_t hive, const std::string& key) {
    TheWorld().keys[PathOf(hive, key)];
}

void FakeRegistry::AddText(std::int32_t hive, const std::string& key, const std::string& name,
                           const std::string& text) {
    TheWorld().keys[PathOf(hive, key)].values[Lower(name)] = text + '\0';
}

void FakeRegistry::AddBytes(std::int32_t hive, const std::string& key, const std::string& name,
                            const std::string& bytes) {
    TheWorld().keys[PathOf(hive, key)].values[Lower(name)] = bytes;
}

void FakeRegistry::OnComputer(const std::string& computer) {
    TheWorld().computer = computer;
}

bool FakeRegistry::HasKey(std::int32_t hive, const std::string& key) const {
    return IsThere(PathOf(hive, key));
}

bool FakeRegistry::HasValue(std::int32_t hive, const std::string& key, const std::string& name) const {
    return FindValue(PathOf(hive, key), name) != nullptr;
}

std::string FakeRegistry::TextOf(std::int32_t hive, const std::string& key, const std::string& name) const {
    const std::string* value = FindValue(PathOf(hive, key), name);
    return value == nullptr ? "" : value->substr(0, value->find('\0'));
}

std::string FakeRegistry::ClassOf(std::int32_t hive, const std::string& key) const {
    const auto found = TheWorld().keys.find(PathOf(hive, key));
    return found == TheWorld().keys.end() ? "" : found->second.key_class;
}

void FakeRegistry::Fail(RegistryCall call, std::int32_t error) {
    TheWorld().failures[call] = error;
}

void FakeRegistry::SetSystemMessage(std::int32_t error, const std::string& text) {
    TheWorld().messages[error] = text;
}

std::size_t FakeRegistry::OpenHandles() const {
    return TheWorld().open.size();
}

const std::vector<std::string>& FakeRegistry::Calls() const {
    return TheWorld().calls;
}

} // namespace fakes

namespace registry {

using namespace error;
using fakes::RegistryCall;

OpenedKey OpenKey(RegistryHandle root, const std::string& subkey, std::uint32_t access) {
    fakes::Note("Open " + fakes::RootText(root) + "\\" + subkey + " " + std::to_string(access));
    if (const auto error = fakes::Failure(RegistryCall::Open); error != kSuccess) {
        return {error};
    }
    const auto parent = fakes::PathOfHandle(root);
    if (!parent) {
        return {kInvalidHandle};
    }
    const std::string path = fakes::Join(*parent, subkey);
    return fakes::IsThere(path) ? fakes::Opened(path) : OpenedKey{kFileNotFound};
}

OpenedKey CreateKey(RegistryHandle root, const std::string& subkey, const std::string& key_class,
                    std::uint32_t access) {
    fakes::Note("Create " + fakes::RootText(root) + "\\" + subkey + " " + key_class + " " +
                std::to_string(access));
    if (const auto error = fakes::Failure(RegistryCall::Create); error != kSuccess) {
        return {error};
    }
    const auto parent = fakes::PathOfHandle(root);
    if (!parent) {
        return {kInvalidHandle};
    }
    const std::string path = fakes::Join(*parent, subkey);
    if (!fakes::IsThere(path)) {
        fakes::TheWorld().keys[path].key_class = key_class;
    }
    return fakes::Opened(path);
}

RegistryError QueryValue(RegistryHandle key, const std::string& name, std::string& buffer) {
    fakes::Note("Query " + name);
    if (const auto error = fakes::Failure(RegistryCall::Query); error != kSuccess) {
        return error;
    }
    const auto path = fakes::PathOfHandle(key);
    if (!path) {
        return kInvalidHandle;
    }
    const std::string* value = fakes::FindValue(*path, name);
    if (value == nullptr) {
        return kFileNotFound;
    }
    if (value->size() > buffer.size()) {
        return kMoreData;
    }
    buffer.replace(0, value->size(), *value);
    return kSuccess;
}

RegistryError SetValue(RegistryHandle key, const std::string& name, std::uint32_t type,
                       const std::string& data) {
    fakes::Note("Set " + name + " " + std::to_string(type) + " " + data);
    if (const auto error = fakes::Failure(RegistryCall::Set); error != kSuccess) {
        return error;
    }
    const auto path = fakes::PathOfHandle(key);
    if (!path) {
        return kInvalidHandle;
    }
    fakes::TheWorld().keys[*path].values[fakes::Lower(name)] = type == kRegSz ? data + '\0' : data;
    return kSuccess;
}

std::int32_t CloseKey(RegistryHandle key) {
    fakes::Note("Close");
    return fakes::TheWorld().open.erase(key) == 1 ? kSuccess : kInvalidHandle;
}

OpenedKey ConnectRegistry(const std::string& computer, RegistryHandle hive) {
    fakes::Note("Connect " + computer + " " + fakes::RootText(hive));
    if (const auto error = fakes::Failure(RegistryCall::Connect); error != kSuccess) {
        return {error};
    }
    const std::string root = fakes::Lower(fakes::Root(computer, hive));
    const auto& keys = fakes::TheWorld().keys;
    const bool known =
        std::any_of(keys.begin(), keys.end(), [&](const auto& key) { return key.first.starts_with(root); });
    return known ? fakes::Opened(root) : OpenedKey{kBadNetPath};
}

std::string SystemMessage(const RegistryError& error, std::size_t buffer_size) {
    const auto& messages = fakes::TheWorld().messages;
    const auto found = messages.find(error.number);
    const std::string text =
        found == messages.end() ? "System error " + std::to_string(error.number) + ".\r\n" : found->second;
    return text.size() < buffer_size ? text : std::string{};
}

} // namespace registry

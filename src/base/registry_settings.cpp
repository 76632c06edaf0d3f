// Reads and writes string values of the registry, and logs failures.
#include "base/registry_settings.h"

#include <cstddef>

#include "base/error_log.h"
#include "base/failure.h"

namespace kv {
namespace {

namespace registry_error = registry::error;

constexpr std::size_t kValueBuffer = 400;   // bytes
constexpr std::size_t kMessageBuffer = 200; // characters

/// The raised number is the length of the system's text, not the system's number: the log must show it so. If
/// the system has no text for the error, an invalid call is raised.
[[noreturn]] void RaiseRegistryFailure(const registry::RegistryError& error, const char* source) {
    constexpr std::size_t kLineEnd = 2; // the text's CR LF
    const std::string text = registry::SystemMessage(error, kMessageBuffer);
    if (text.size() < kLineEnd) {
        RaiseRunTimeFailure(run_time::kInvalidProcedureCall);
    }
    RaiseFailure(static_cast<std::int32_t>(text.size()), source, text.substr(0, text.size() - kLineEnd));
}

/// Returns the call as the log names it: "mRegistry::Routine('first', 'second')".
template <class... Arguments>
std::string CallText(const char* routine, const std::string& first, const Arguments&... others) {
    std::string text = std::string("mRegistry::") + routine + "('" + first;
    ((text += "', '", text += others), ...);
    return text + "')";
}

void LogFailure(const std::string& call, const Failure& failure) {
    WriteErrorLog(call + ": " + std::to_string(failure.Number()) + " - " + failure.Description());
}

/// Returns the text before the first NUL. If there is no NUL, the value has filled the buffer or is not text;
/// then the blanks at its end are cut.
std::string TextInBuffer(const std::string& buffer) {
    const auto nul = buffer.find('\0');
    if (nul != std::string::npos) {
        return buffer.substr(0, nul);
    }
    return buffer.substr(0, buffer.find_last_not_of(' ') + 1);
}

} // namespace

std::string GetStringKey(registry::RegistryHandle lngRoot, const std::string& strSubKey,
                         const std::string& strValueName, const std::string& strDefault) {
    constexpr const char* kSource = "mRegistry::GetStringKey";
    std::string result;
    WithFailureHandler(
        [&] {
            const auto opened = registry::OpenKey(lngRoot, strSubKey, registry::kKeyQueryValue);
            if (opened.error != registry_error::kSuccess) {
                RaiseRegistryFailure(opened.error, kSource);
            }
            std::string buffer(kValueBuffer, ' ');
            const registry::RegistryError error = registry::QueryValue(opened.key, strValueName, buffer);
            if (error == registry_error::kSuccess) {
                result = TextInBuffer(buffer);
            } else if (error == registry_error::kFileNotFound) {
                result = strDefault;
            } else {
                RaiseRegistryFailure(error, kSource); // the key stays open
            }
            registry::CloseKey(opened.key);
        },
        [&](const Failure& failure) {
            LogFailure(CallText("GetStringKey", strSubKey, strValueName), failure);
            RaiseFailure(failure.Number(), failure.Source(), failure.Description());
        });
    return result;
}

bool SetStringKey(registry::RegistryHandle lngRoot, const std::string& strSubKey,
                  const std::string& strValueName, const std::string& strValue) {
    constexpr const char* kSource = "mRegistry::SetStringKey";
    bool written = false;
    WithFailureHandler(
        [&] {
            // The class of a new key is the value's name, as in all keys that this program makes.
            const auto created =
                registry::CreateKey(lngRoot, strSubKey, strValueName, registry::kKeyAllAccess);
            if (created.error != registry_error::kSuccess) {
                RaiseRegistryFailure(created.error, kSource);
            }
            const registry::RegistryError error =
                registry::SetValue(created.key, strValueName, registry::kRegSz, strValue);
            if (error != registry_error::kSuccess) {
                RaiseRegistryFailure(error, kSource); // the key stays open
            }
            registry::CloseKey(created.key);
            written = true;
        },
        [&](const Failure& failure) {
            LogFailure(CallText("SetStringKey", strSubKey, strValueName, strValue), failure);
            RaiseFailure(failure.Number(), failure.Source(), failure.Description());
        });
    return written;
}

std::string GetLocalSetting(std::int32_t lngHive, const std::string& strSubKey,
                            const std::string& strValueName, const std::string& strDefault) {
    std::string result;
    WithFailureHandler([&] { result = GetStringKey(lngHive, strSubKey, strValueName, strDefault); },
                       [&](const Failure& failure) {
                           LogFailure(
                               CallText("GetLocalSetting", std::to_string(lngHive), strSubKey, strValueName),
                               failure);
                       });
    return result;
}

bool SaveLocalSetting(std::int32_t lngHive, const std::string& strSubKey, const std::string& strValueName,
                      const std::string& strValue) {
    bool written = false;
    WithFailureHandler([&] { written = SetStringKey(lngHive, strSubKey, strValueName, strValue); },
                       [&](const Failure& failure) {
                           LogFailure(CallText("SaveLocalSetting", std::to_string(lngHive), strSubKey,
                                               strValueName, strValue),
                                      failure);
                       });
    return written;
}

std::string GetRemoteSetting(const std::string& strComputer, std::int32_t lngHive,
                             const std::string& strSubKey, const std::string& strValueName,
                             const std::string& strDefault) {
    std::string result;
    WithFailureHandler(
        [&] {
            // Never closed: each call makes its own connection, which lasts until the program ends.
            const auto root = registry::ConnectRegistry(strComputer, lngHive);
            if (root.error != registry_error::kSuccess) {
                RaiseRegistryFailure(root.error, "mRegistry::GetRemoteSetting");
            }
            result = GetStringKey(root.key, strSubKey, strValueName, strDefault);
        },
        [&](const Failure& failure) {
            LogFailure(
                CallText("GetRemoteSetting", strComputer, std::to_string(lngHive), strSubKey, strValueName),
                failure);
        });
    return result;
}

} // namespace kv

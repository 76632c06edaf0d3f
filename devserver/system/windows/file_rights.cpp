// Reads the file's access list.
#include "devserver/system/file_rights.h"

#include <windows.h>

#include <aclapi.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace devsql::system {

namespace {

constexpr DWORD kReadOrChange = FILE_READ_DATA | FILE_WRITE_DATA | FILE_APPEND_DATA | WRITE_DAC |
                                WRITE_OWNER | GENERIC_READ | GENERIC_WRITE | GENERIC_ALL;

struct LocalDeleter {
    void operator()(void* memory) const { LocalFree(memory); }
};

bool IsWellKnown(PSID account, WELL_KNOWN_SID_TYPE kind) {
    return IsWellKnownSid(account, kind) != FALSE;
}

/// True for an account that may read every file of the machine anyway.
bool Administers(PSID account) {
    return IsWellKnown(account, WinLocalSystemSid) || IsWellKnown(account, WinBuiltinAdministratorsSid) ||
           IsWellKnown(account, WinCreatorOwnerSid);
}

/// The entry at `index` if it allows something to an account; null if it denies, or cannot be read.
const ACCESS_ALLOWED_ACE* Allowing(PACL list, DWORD index) {
    void* entry = nullptr;
    if (GetAce(list, index, &entry) == FALSE) {
        return nullptr;
    }
    const auto* ace = static_cast<const ACCESS_ALLOWED_ACE*>(entry);
    return ace->Header.AceType == ACCESS_ALLOWED_ACE_TYPE ? ace : nullptr;
}

} // namespace

bool OthersHaveRights(const std::filesystem::path& file) {
    PSID owner = nullptr;
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR memory = nullptr;
    std::wstring name = file.wstring();
    const DWORD error = GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT,
                                              OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &owner,
                                              nullptr, &list, nullptr, &memory);
    if (error != ERROR_SUCCESS) {
        throw std::runtime_error("the rights of the file can't be read: " +
                                 std::system_category().message(static_cast<int>(error)));
    }
    const std::unique_ptr<void, LocalDeleter> kept(memory);
    if (list == nullptr) {
        return true;
    }
    for (DWORD i = 0; i < list->AceCount; ++i) {
        const ACCESS_ALLOWED_ACE* const ace = Allowing(list, i);
        if (ace == nullptr || (ace->Mask & kReadOrChange) == 0) {
            continue;
        }
        // The account's SID begins at this member of the entry.
        PSID account = const_cast<DWORD*>(&ace->SidStart);
        if (EqualSid(account, owner) == FALSE && !Administers(account)) {
            return true;
        }
    }
    return false;
}

} // namespace devsql::system

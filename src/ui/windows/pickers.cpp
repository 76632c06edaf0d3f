// Opens the shell's dialogs for folders and files.
#include "ui/windows/pickers.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

#include <commdlg.h>
#include <objbase.h>
#include <shlobj.h>

namespace ui {
namespace {

/// The dialogs use objects of the shell, for which the thread must have entered a COM apartment.
class Apartment {
  public:
    Apartment() : entered_(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() {
        if (entered_) {
            ::CoUninitialize();
        }
    }

  private:
    bool entered_;
};

struct FreeItemList {
    void operator()(ITEMIDLIST* list) const { ::CoTaskMemFree(list); }
};

struct FreeLocal {
    void operator()(char* block) const { ::LocalFree(block); }
};

/// Returns a copy of the text in memory that LocalFree frees; null if there is no memory. The dialog's
/// callback gets its address.
std::unique_ptr<char, FreeLocal> LocalCopy(const std::string& text) {
    std::unique_ptr<char, FreeLocal> copy(static_cast<char*>(::LocalAlloc(LPTR, text.size() + 1)));
    if (copy) {
        std::memcpy(copy.get(), text.c_str(), text.size() + 1);
    }
    return copy;
}

int CALLBACK BrowseCallback(HWND window, UINT message, LPARAM /*lparam*/, LPARAM data) {
    if (message == BFFM_INITIALIZED) {
        ::SendMessageA(window, BFFM_SETSELECTIONA, static_cast<WPARAM>(-1), data);
    }
    return 0;
}

/// The size of the dialog's record. On x86 it is 76 bytes, up to and with the template's name, which every
/// version of the dialog accepts. On x64 it is the whole record.
constexpr std::size_t kUpToTemplateName = offsetof(OPENFILENAMEA, lpTemplateName) + sizeof(LPCSTR);
constexpr DWORD kOpenRecordSize = sizeof(void*) == 4 ? kUpToTemplateName : sizeof(OPENFILENAMEA);
static_assert(sizeof(void*) != 4 || kOpenRecordSize == 76);

using OpenFunction = BOOL(WINAPI*)(OPENFILENAMEA*);

/// Returns GetOpenFileName, or null if its library is missing. The library is loaded only for the first
/// dialog: it loads the system's printing too, which on Wine takes a tenth of the program's start.
OpenFunction FindOpenFunction() {
    const HMODULE dialogs = ::LoadLibraryA("comdlg32.dll"); // never unloaded: it may be needed again
    return reinterpret_cast<OpenFunction>(
        reinterpret_cast<void*>(::GetProcAddress(dialogs, "GetOpenFileNameA")));
}

} // namespace

std::optional<std::string> BrowseForFolder(HWND owner, const std::string& title,
                                           const std::string& start_folder) {
    const Apartment apartment;
    BROWSEINFOA info{};
    info.hwndOwner = owner;
    info.lpszTitle = title.c_str();
    info.ulFlags = BIF_RETURNONLYFSDIRS | BIF_DONTGOBELOWDOMAIN;
    info.lpfn = BrowseCallback;
    std::unique_ptr<char, FreeLocal> start;
    if (!start_folder.empty()) {
        start = LocalCopy(start_folder);
        info.lParam = reinterpret_cast<LPARAM>(start.get());
    }
    const std::unique_ptr<ITEMIDLIST, FreeItemList> chosen(::SHBrowseForFolderA(&info));
    if (!chosen) {
        return std::nullopt;
    }
    std::string path(MAX_PATH, ' ');
    if (::SHGetPathFromIDListA(chosen.get(), path.data()) == 0) {
        return std::nullopt;
    }
    return std::string(path.c_str());
}

std::optional<std::string> BrowseForFile(const std::string& title, const std::string& filter, HWND owner,
                                         const std::string& start_folder) {
    const Apartment apartment;
    std::string pairs = filter;
    std::replace(pairs.begin(), pairs.end(), '|', '\0');
    pairs.push_back('\0'); // the second zero is the one at the end of every std::string
    std::string path(MAX_PATH, '\0');
    OPENFILENAMEA record{};
    record.lStructSize = kOpenRecordSize;
    record.hwndOwner = owner;
    record.lpstrFilter = pairs.c_str();
    record.nFilterIndex = 1;
    record.lpstrFile = path.data();
    record.nMaxFile = MAX_PATH;
    record.lpstrTitle = title.c_str();
    record.lpstrInitialDir = start_folder.empty() ? nullptr : start_folder.c_str();
    record.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY;
    static const OpenFunction open_file_name = FindOpenFunction();
    if (open_file_name == nullptr || open_file_name(&record) == 0) {
        return std::nullopt;
    }
    return std::string(path.c_str());
}

} // namespace ui

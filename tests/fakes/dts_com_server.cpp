// A fake of the COM classes "DTS.Package" and "DTS.Application" for machines without them: an in-process
// server (dts_com_server.dll) that records its calls. On demand it fails, or really stores packages. It is
// controlled by environment variables of the calling process, which are read at each call:
//
//   KV_DTS_RECORD=FILE  appends a line for each object made and destroyed, each GetIDsOfNames and each Invoke
//   KV_DTS_FAIL=RULES   "Member[@n]:code[:description]", several separated by ";". The member (every call of
//                       it, or the n-th alone) fails with the HRESULT: as an exception with the description,
//                       or with the HRESULT alone. "_NewEnum", "Next" and the names of the two classes
//                       (their creation) are members too
//   KV_DTS_STORE=1      packages are read from their files, and stored in, removed from and listed from the
//                       msdb of the server that the caller names, over the ODBC driver "SQL Server"
//   KV_DTS_PACKAGES=N   without KV_DTS_STORE: only the first N of the three packages of the made-up list
//
// Before a run of the Windows executable it is registered once, in the same Wine prefix and by the same user:
//
//   tests/run-under-wine regsvr32 /s build/windows/bin/dts_com_server.dll     (/u to unregister it)
//   KV_DTS_STORE=1 KV_DTS_RECORD=Z:/tmp/calls.txt tests/run-under-wine build/windows/bin/KVLSQLDbMgr.exe …
//
// Registering is refused if other classes have these names. Tests that register it hold the ctest resource
// "dts_classes", so that they do not run at the same time.
#include <algorithm>
#include <array>
#include <filesystem>

#include <olectl.h>

#include "fakes/dts_com_object.h"
#include "packages/package_file.h"
#include "packages/package_store.h"

namespace fakes {
namespace {

using packages::PackageInfo;
using packages::Variant;
using Member = RecordedObject::Member;

bool StoresForReal() {
    return !Setting("KV_DTS_STORE").empty();
}

packages::PackageServer ServerOf(const ReceivedArguments& arguments) {
    return {arguments.Text(0), arguments.Text(1), arguments.Text(2)};
}

class Package final : public RecordedObject {
  public:
    Package()
        : RecordedObject("DTS.Package",
                         {Member{L"RemoveFromSQLServer", kRemove, 7},
                          Member{L"LoadFromStorageFile", kLoad, 2}, Member{L"SaveToSQLServer", kSave, 4}}) {}

  private:
    enum : DISPID { kRemove = 1, kLoad, kSave };

    Variant Run(DISPID id, const ReceivedArguments& arguments) override {
        if (!StoresForReal()) {
            return {};
        }
        if (id == kLoad) {
            file_ = packages::ReadPackageFile(arguments.Text(0));
        } else if (id == kRemove) {
            packages::PackageStore(ServerOf(arguments)).RemoveNewest(arguments.Text(6));
        } else if (file_.content.empty()) {
            throw packages::PackageError(E_UNEXPECTED, "DTS.Package",
                                         "No package is loaded that could be saved");
        } else {
            packages::PackageStore(ServerOf(arguments)).Add(file_);
        }
        return {};
    }

    packages::PackageFile file_;
};

class Info final : public RecordedObject {
  public:
    explicit Info(PackageInfo info)
        : RecordedObject("PackageInfo", {Member{L"Name", kName, 0}, Member{L"Description", kDescription, 0},
                                         Member{L"CreationDate", kDate, 0}}),
          info_(std::move(info)) {}

  private:
    enum : DISPID { kName = 1, kDescription, kDate };

    Variant Run(DISPID id, const ReceivedArguments& /*arguments*/) override {
        return id == kDate ? Date() : Variant::String(id == kName ? info_.name : info_.description);
    }

    Variant Date() const {
        const platform::LocalTime& at = info_.creation_date;
        SYSTEMTIME time{};
        time.wYear = static_cast<WORD>(at.year);
        time.wMonth = static_cast<WORD>(at.month);
        time.wDay = static_cast<WORD>(at.day);
        time.wHour = static_cast<WORD>(at.hour);
        time.wMinute = static_cast<WORD>(at.minute);
        time.wSecond = static_cast<WORD>(at.second);
        Variant date;
        V_VT(date.Receive()) = VT_DATE;
        if (SystemTimeToVariantTime(&time, &V_DATE(date.Receive())) == FALSE) {
            throw packages::PackageError(DISP_E_OVERFLOW, "PackageInfo", "The date can't be told");
        }
        return date;
    }

    PackageInfo info_;
};

class Enumerator final : public IEnumVARIANT, public CountedObject {
  public:
    explicit Enumerator(std::vector<PackageInfo> infos) : infos_(std::move(infos)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IEnumVARIANT)) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IEnumVARIANT*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
    ULONG STDMETHODCALLTYPE Release() override { return ReleaseReference(); }

    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* items, ULONG* fetched) override {
        Record("PackageInfos Next " + std::to_string(count));
        if (const auto failure = TakeFailure("Next")) {
            return failure->code;
        }
        ULONG given = 0;
        for (; given < count && next_ < infos_.size(); ++given, ++next_) {
            V_VT(&items[given]) = VT_DISPATCH;
            V_DISPATCH(&items[given]) = Make<Info>(infos_[next_]);
        }
        if (fetched != nullptr) {
            *fetched = given;
        }
        return given == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG /*count*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** /*copy*/) override { return E_NOTIMPL; }

  private:
    std::vector<PackageInfo> infos_;
    std::size_t next_ = 0;
};

class Infos final : public RecordedObject {
  public:
    explicit Infos(std::vector<PackageInfo> infos)
        : RecordedObject("PackageInfos", {Member{L"_NewEnum", DISPID_NEWENUM, 0}}),
          infos_(std::move(infos)) {}

  private:
    Variant Run(DISPID /*id*/, const ReceivedArguments& /*arguments*/) override {
        Variant enumerator;
        V_VT(enumerator.Receive()) = VT_UNKNOWN;
        V_UNKNOWN(enumerator.Receive()) = Make<Enumerator>(infos_);
        return enumerator;
    }

    std::vector<PackageInfo> infos_;
};

/// The made-up list: it has two versions of one package, an empty description, text outside ASCII, and the
/// smallest and largest parts of a date.
std::vector<PackageInfo> MadeUpPackages() {
    std::vector<PackageInfo> infos = {
        {"StdSynchronize", "Second version", {2004, 2, 29, 23, 59, 58}},
        {"StdSynchronize", "", {1999, 12, 31, 0, 0, 0}},
        {"\xDC"
         "bersicht",
         "Preis \x80 5",
         {2026, 1, 1, 12, 30, 1}},
    };
    if (const std::string count = Setting("KV_DTS_PACKAGES"); !count.empty()) {
        infos.resize(std::min<std::size_t>(infos.size(), std::stoul(count)));
    }
    return infos;
}

class Server final : public RecordedObject {
  public:
    explicit Server(packages::PackageServer server)
        : RecordedObject("PackageSQLServer", {Member{L"EnumPackageInfos", 1, 3}}),
          server_(std::move(server)) {}

  private:
    Variant Run(DISPID /*id*/, const ReceivedArguments& /*arguments*/) override {
        if (!StoresForReal()) {
            return Holding(Make<Infos>(MadeUpPackages()));
        }
        std::vector<PackageInfo> infos;
        packages::PackageStore(server_).List(
            [&infos](const packages::StoredPackage& package) { infos.push_back(package.info); });
        return Holding(Make<Infos>(std::move(infos)));
    }

    packages::PackageServer server_;
};

class Application final : public RecordedObject {
  public:
    Application() : RecordedObject("DTS.Application", {Member{L"GetPackageSQLServer", 1, 4}}) {}

  private:
    Variant Run(DISPID /*id*/, const ReceivedArguments& arguments) override {
        return Holding(Make<Server>(ServerOf(arguments)));
    }
};

IDispatch* MakePackage() {
    return CountedObject::Make<Package>();
}
IDispatch* MakeApplication() {
    return CountedObject::Make<Application>();
}

struct Class {
    const char* program_name;
    const char* id_text;
    CLSID id;
    IDispatch* (*make)();
};
const std::array kClasses = {
    Class{"DTS.Package",
          "{5B7E2D10-63C4-4F0B-9A51-7D0B4C1F2A01}",
          {0x5B7E2D10, 0x63C4, 0x4F0B, {0x9A, 0x51, 0x7D, 0x0B, 0x4C, 0x1F, 0x2A, 0x01}},
          MakePackage},
    Class{"DTS.Application",
          "{5B7E2D10-63C4-4F0B-9A51-7D0B4C1F2A02}",
          {0x5B7E2D10, 0x63C4, 0x4F0B, {0x9A, 0x51, 0x7D, 0x0B, 0x4C, 0x1F, 0x2A, 0x02}},
          MakeApplication},
};

class Factory final : public IClassFactory, public CountedObject {
  public:
    explicit Factory(const Class& made) : class_(made) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IClassFactory)) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
    ULONG STDMETHODCALLTYPE Release() override { return ReleaseReference(); }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        *object = nullptr;
        if (outer != nullptr) {
            return CLASS_E_NOAGGREGATION;
        }
        if (const auto failure = TakeFailure(class_.program_name)) {
            return failure->code;
        }
        const packages::ComPointer<IDispatch> made(class_.make());
        return made->QueryInterface(id, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

  private:
    const Class& class_;
};

std::string ModulePath() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const char*>(&kClasses), &module);
    std::array<char, MAX_PATH> path{};
    const DWORD length = GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size()));
    return {path.data(), length};
}

bool WriteClassText(const std::string& key, const char* name, const std::string& text) {
    return RegSetKeyValueA(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, text.c_str(),
                           static_cast<DWORD>(text.size() + 1)) == ERROR_SUCCESS;
}

/// The text of the class id that is registered for the name; empty if there is none.
std::string RegisteredId(const Class& known) {
    std::array<char, 64> text{};
    auto size = static_cast<DWORD>(text.size());
    const std::string key = std::string(known.program_name) + "\\CLSID";
    const LSTATUS status =
        RegGetValueA(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text.data(), &size);
    return status == ERROR_SUCCESS ? text.data() : "";
}

bool Register(const Class& known) {
    const std::string name_key = known.program_name;
    const std::string server_key = std::string("CLSID\\") + known.id_text + "\\InprocServer32";
    return WriteClassText(server_key, nullptr, ModulePath()) &&
           WriteClassText(server_key, "ThreadingModel", "Apartment") &&
           WriteClassText(name_key + "\\CLSID", nullptr, known.id_text);
}

} // namespace
} // namespace fakes

STDAPI DllGetClassObject(REFCLSID class_id, REFIID id, void** object) {
    *object = nullptr;
    for (const fakes::Class& known : fakes::kClasses) {
        if (IsEqualCLSID(known.id, class_id)) {
            const packages::ComPointer<IClassFactory> factory(
                fakes::CountedObject::Make<fakes::Factory>(known));
            return factory->QueryInterface(id, object);
        }
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
    return fakes::LiveObjects() == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
    for (const fakes::Class& known : fakes::kClasses) {
        const std::string other = fakes::RegisteredId(known);
        if (!other.empty() && other != known.id_text) {
            return SELFREG_E_CLASS; // the real classes are registered and must stay
        }
    }
    const bool done = std::all_of(fakes::kClasses.begin(), fakes::kClasses.end(), fakes::Register);
    return done ? S_OK : SELFREG_E_CLASS;
}

STDAPI DllUnregisterServer() {
    for (const fakes::Class& known : fakes::kClasses) {
        if (fakes::RegisteredId(known) == known.id_text) {
            RegDeleteTreeA(HKEY_CLASSES_ROOT, known.program_name);
            RegDeleteTreeA(HKEY_CLASSES_ROOT, (std::string("CLSID\\") + known.id_text).c_str());
        }
    }
    return S_OK;
}

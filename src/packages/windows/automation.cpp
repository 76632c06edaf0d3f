// Calls by name over IDispatch. The first object initialises COM for the program's one thread; it stays so
// until the process ends.
#include "packages/windows/automation.h"

#include <objbase.h>

#include "packages/packages.h"
#include "text/code_page.h"

namespace packages {
namespace {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

std::string FromWide(std::wstring_view wide) {
    return text::Narrow({reinterpret_cast<const char16_t*>(wide.data()), wide.size()});
}

struct FreeLocal {
    void operator()(wchar_t* text) const { LocalFree(text); }
};

/// Returns the system's text for the number, without its line end.
std::string SystemText(HRESULT result) {
    wchar_t* raw = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&raw), 0, nullptr);
    const std::unique_ptr<wchar_t, FreeLocal> owned(raw);
    std::string text = length == 0 ? "Automation error" : FromWide(std::wstring_view(raw, length));
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

/// Throws the failure that an object reported. The code is in `scode` or, with older objects, in `wCode`.
[[noreturn]] void ThrowException(EXCEPINFO& info, const std::string& call_name) {
    if (info.pfnDeferredFillIn != nullptr) {
        info.pfnDeferredFillIn(&info);
    }
    const Bstr source(info.bstrSource);
    const Bstr description(info.bstrDescription);
    const Bstr help_file(info.bstrHelpFile);
    const std::int32_t number = info.wCode != 0 ? info.wCode : info.scode;
    std::string text = description.Text();
    if (text.empty()) {
        text = call_name + ": " + SystemText(number);
    }
    throw PackageError(number, source.Text(), std::move(text));
}

/// Initialises COM, and uninitialises it in the destructor.
class Apartment {
  public:
    Apartment() : entered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() {
        if (entered_) {
            CoUninitialize();
        }
    }

  private:
    bool entered_;
};

void EnterApartment() {
    static const Apartment apartment;
}

/// Returns the value, converted to another type. Throws PackageError.
Variant Converted(const VARIANT& value, VARTYPE type, const std::string& value_name) {
    Variant converted;
    VARIANT borrowed = value; // the call only reads it, but takes no const pointer
    RequireSuccess(VariantChangeType(converted.Receive(), &borrowed, 0, type), value_name);
    return converted;
}

} // namespace

void RequireSuccess(HRESULT result, const std::string& call_name) {
    if (FAILED(result)) {
        throw PackageError(result, "", call_name + ": " + SystemText(result));
    }
}

Bstr::Bstr(std::string_view text) {
    const std::u16string wide = text::Widen(text);
    value_ = SysAllocStringLen(reinterpret_cast<const wchar_t*>(wide.data()), static_cast<UINT>(wide.size()));
    if (value_ == nullptr) {
        throw std::bad_alloc();
    }
}

Bstr& Bstr::operator=(Bstr&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
}

std::string Bstr::Text() const {
    return FromWide(std::wstring_view(value_, SysStringLen(value_)));
}

Variant& Variant::operator=(Variant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
}

Variant Variant::String(std::string_view text) {
    Variant variant;
    Bstr string(text);
    V_VT(&variant.value_) = VT_BSTR;
    V_BSTR(&variant.value_) = string.Release();
    return variant;
}

Variant Variant::StringReference(Bstr& text) {
    Variant variant;
    V_VT(&variant.value_) = VT_BYREF | VT_BSTR;
    V_BSTRREF(&variant.value_) = text.Reference();
    return variant;
}

Variant Variant::Short(short number) {
    Variant variant;
    V_VT(&variant.value_) = VT_I2;
    V_I2(&variant.value_) = number;
    return variant;
}

Variant Variant::Boolean(bool value) {
    Variant variant;
    V_VT(&variant.value_) = VT_BOOL;
    V_BOOL(&variant.value_) = value ? VARIANT_TRUE : VARIANT_FALSE;
    return variant;
}

Variant Variant::Omitted() {
    Variant variant;
    V_VT(&variant.value_) = VT_ERROR;
    V_ERROR(&variant.value_) = DISP_E_PARAMNOTFOUND;
    return variant;
}

std::string Variant::ToText(const std::string& value_name) const {
    const Variant converted = Converted(value_, VT_BSTR, value_name);
    const BSTR text = V_BSTR(&converted.value_);
    return FromWide(std::wstring_view(text, SysStringLen(text)));
}

platform::LocalTime Variant::ToLocalTime(const std::string& value_name) const {
    const Variant converted = Converted(value_, VT_DATE, value_name);
    SYSTEMTIME time{};
    if (VariantTimeToSystemTime(V_DATE(&converted.value_), &time) == FALSE) {
        RequireSuccess(DISP_E_TYPEMISMATCH, value_name);
    }
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

void* Variant::QueryInterface(REFIID id, const std::string& value_name) const {
    const Variant converted = Converted(value_, VT_UNKNOWN, value_name);
    IUnknown* const object = V_UNKNOWN(&converted.value_);
    if (object == nullptr) {
        RequireSuccess(E_POINTER, value_name);
    }
    void* wanted = nullptr;
    RequireSuccess(object->QueryInterface(id, &wanted), value_name);
    return wanted;
}

AutomationObject AutomationObject::Create(const wchar_t* program_id, std::string name) {
    EnterApartment();
    CLSID id{};
    void* object = nullptr;
    if (FAILED(CLSIDFromProgID(program_id, &id)) ||
        FAILED(CoCreateInstance(id, nullptr, CLSCTX_ALL, IID_IDispatch, &object))) {
        return {};
    }
    return {ComPointer<IDispatch>(static_cast<IDispatch*>(object)), std::move(name)};
}

void AutomationObject::Call(const wchar_t* member, const Arguments& arguments) const {
    Invoke(IdOf(member), member, DISPATCH_METHOD, arguments, nullptr);
}

Variant AutomationObject::CallForValue(const wchar_t* member, const Arguments& arguments) const {
    Variant result;
    // A caller without a type library can't tell a method from a property with arguments, and sets both
    // flags.
    Invoke(IdOf(member), member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments, result.Receive());
    return result;
}

AutomationObject AutomationObject::CallForObject(const wchar_t* member, const Arguments& arguments,
                                                 std::string name) const {
    return {CallForValue(member, arguments).ToInterface<IDispatch>(IID_IDispatch, FullName(member)),
            std::move(name)};
}

Variant AutomationObject::Property(const wchar_t* member) const {
    Variant result;
    Invoke(IdOf(member), member, DISPATCH_PROPERTYGET, {}, result.Receive());
    return result;
}

ComPointer<IEnumVARIANT> AutomationObject::Enumerator() const {
    Variant result;
    Invoke(DISPID_NEWENUM, L"_NewEnum", DISPATCH_METHOD | DISPATCH_PROPERTYGET, {}, result.Receive());
    return result.ToInterface<IEnumVARIANT>(IID_IEnumVARIANT, FullName(L"_NewEnum"));
}

DISPID AutomationObject::IdOf(const wchar_t* member) const {
    Bstr name(FromWide(member));
    BSTR names[] = {name.Get()};
    DISPID id = DISPID_UNKNOWN;
    RequireSuccess(object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id), FullName(member));
    return id;
}

void AutomationObject::Invoke(DISPID id, const wchar_t* member, WORD flags, const Arguments& arguments,
                              VARIANT* result) const {
    std::vector<VARIANT> last_first; // copies that own nothing: `arguments` owns the content
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
        last_first.push_back(argument->Raw());
    }
    DISPPARAMS parameters{};
    parameters.rgvarg = last_first.data();
    parameters.cArgs = static_cast<UINT>(last_first.size());
    EXCEPINFO info{};
    const HRESULT code =
        object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, &info, nullptr);
    if (code == DISP_E_EXCEPTION) {
        ThrowException(info, FullName(member));
    }
    RequireSuccess(code, FullName(member));
}

std::string AutomationObject::FullName(const wchar_t* member) const {
    return name_ + "." + FromWide(member);
}

} // namespace packages

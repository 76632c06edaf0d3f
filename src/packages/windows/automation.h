// Calls members of COM objects by their names (IDispatch). Each kind of value that such a call needs (string,
// variant, reference to an object) is owned by one move-only type. Text is in code page 1252. Knows no class
// and no member of any object.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/windows/lean_windows.h"

#include <oaidl.h>
#include <oleauto.h>

#include "platform/clock.h"

namespace packages {

/// Owns a BSTR, the string type of COM.
class Bstr {
  public:
    /// Makes a string that is not null, not even for an empty text: callees may distinguish the two.
    explicit Bstr(std::string_view text);
    /// Takes ownership of a string that a callee returned; null is an empty text.
    explicit Bstr(BSTR returned) : value_(returned) {}
    Bstr(Bstr&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
    Bstr& operator=(Bstr&& other) noexcept;
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { SysFreeString(value_); }

    BSTR Get() const { return value_; }
    /// Gives up ownership.
    BSTR Release() { return std::exchange(value_, nullptr); }
    /// Returns a pointer for a callee that may replace the string; this object then owns the new string.
    BSTR* Reference() { return &value_; }
    std::string Text() const;

  private:
    BSTR value_ = nullptr;
};

struct ReleaseObject {
    void operator()(IUnknown* object) const { object->Release(); }
};
/// Owns one reference to a COM object.
template <class Interface>
using ComPointer = std::unique_ptr<Interface, ReleaseObject>;

/// Owns a VARIANT and its content. A value that it refers to by VT_BYREF is not owned.
class Variant {
  public:
    Variant() { VariantInit(&value_); }
    Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
    Variant& operator=(Variant&& other) noexcept;
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(&value_); }

    static Variant String(std::string_view text);
    /// Makes a reference (VT_BYREF | VT_BSTR). `text` must outlive the variant.
    static Variant StringReference(Bstr& text);
    static Variant Short(short number);
    static Variant Boolean(bool value);
    /// Makes the value that stands for an optional argument that the caller omits.
    static Variant Omitted();

    const VARIANT& Raw() const { return value_; }
    /// Returns a pointer for a callee that stores its result. The variant must be empty.
    VARIANT* Receive() { return &value_; }

    // These return the value, converted as COM converts a variant that is assigned to a string, a date or an
    // object. If that is impossible, they throw PackageError; `value_name` names the value in its text.

    std::string ToText(const std::string& value_name) const;
    platform::LocalTime ToLocalTime(const std::string& value_name) const;
    template <class Interface>
    ComPointer<Interface> ToInterface(REFIID id, const std::string& value_name) const {
        return ComPointer<Interface>(static_cast<Interface*>(QueryInterface(id, value_name)));
    }

  private:
    void* QueryInterface(REFIID id, const std::string& value_name) const;

    VARIANT value_;
};

using Arguments = std::vector<Variant>;

/// Makes the arguments of a call. The first value is the first argument.
template <class... Values>
Arguments MakeArguments(Values... values) {
    Arguments arguments;
    arguments.reserve(sizeof...(values));
    (arguments.push_back(std::move(values)), ...);
    return arguments;
}

/// A COM object that is called by the names of its members, or nothing. A failed call throws PackageError. If
/// the object describes the failure (DISP_E_EXCEPTION), the error has that description; otherwise it has the
/// HRESULT and the system's text for it.
class AutomationObject {
  public:
    AutomationObject() = default;
    /// `name` is used in the texts of failures.
    AutomationObject(ComPointer<IDispatch> object, std::string name)
        : object_(std::move(object)), name_(std::move(name)) {}
    /// Makes an object of the class with this ProgID, in this process or another. Returns nothing if there is
    /// no such class or no object can be made.
    static AutomationObject Create(const wchar_t* program_id, std::string name);

    explicit operator bool() const { return object_ != nullptr; }

    /// Calls a method and ignores its result.
    void Call(const wchar_t* member, const Arguments& arguments) const;
    /// Calls a method and returns its result.
    Variant CallForValue(const wchar_t* member, const Arguments& arguments) const;
    /// Calls a method that returns another object, which gets the name `name`.
    AutomationObject CallForObject(const wchar_t* member, const Arguments& arguments, std::string name) const;
    /// Returns the value of a property.
    Variant Property(const wchar_t* member) const;
    /// Returns an enumerator of the object, which must be a collection.
    ComPointer<IEnumVARIANT> Enumerator() const;

  private:
    DISPID IdOf(const wchar_t* member) const;
    void Invoke(DISPID id, const wchar_t* member, WORD flags, const Arguments& arguments,
                VARIANT* result) const;
    /// Returns "object.member", for the texts of failures.
    std::string FullName(const wchar_t* member) const;

    ComPointer<IDispatch> object_;
    std::string name_;
};

/// If `result` is a failure, throws PackageError with that number, `call_name` and the system's text for it.
void RequireSuccess(HRESULT result, const std::string& call_name);

} // namespace packages

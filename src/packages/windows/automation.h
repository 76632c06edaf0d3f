// Late bound calls on COM objects, with the strings, values and object references that they need, each owned
// by one move-only type. Text is code page 1252. Knows no class and no member of any object.
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

/// Owns a BSTR. One that was made from text is never null, not even for an empty text: callees may
/// distinguish the two.
class Bstr {
  public:
    explicit Bstr(std::string_view text);
    /// Takes ownership of a string that a callee returned; null is an empty text.
    explicit Bstr(BSTR returned) : value_(returned) {}
    Bstr(Bstr&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
    Bstr& operator=(Bstr&& other) noexcept;
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { SysFreeString(value_); }

    BSTR Get() const { return value_; }
    BSTR Release() { return std::exchange(value_, nullptr); }
    /// For a callee that may replace the string; the new string is then owned.
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
    /// VT_BYREF | VT_BSTR; `text` must outlive the variant.
    static Variant StringReference(Bstr& text);
    static Variant Short(short number);
    static Variant Boolean(bool value);
    /// An argument that is left out.
    static Variant LeftOut();

    const VARIANT& Raw() const { return value_; }
    VARIANT* Receive() { return &value_; }

    /// The value, converted as automation converts on assignment to a string, a date or an object. Each
    /// throws PackageError, which names `what`, if there is no such conversion.
    std::string ToText(const std::string& what) const;
    platform::LocalTime ToLocalTime(const std::string& what) const;
    template <class Interface>
    ComPointer<Interface> ToInterface(REFIID id, const std::string& what) const {
        return ComPointer<Interface>(static_cast<Interface*>(QueryInterface(id, what)));
    }

  private:
    void* QueryInterface(REFIID id, const std::string& what) const;

    VARIANT value_;
};

using Arguments = std::vector<Variant>;

/// The arguments of a call, in reading order.
template <class... Values>
Arguments InOrder(Values... values) {
    Arguments arguments;
    arguments.reserve(sizeof...(values));
    (arguments.push_back(std::move(values)), ...);
    return arguments;
}

/// An object that is called by the names of its members. Every call throws PackageError: for DISP_E_EXCEPTION
/// with the object's own description of its failure, otherwise with the HRESULT and the system's text for it.
class AutomationObject {
  public:
    AutomationObject() = default;
    /// `name` is used in the texts of failures.
    AutomationObject(ComPointer<IDispatch> object, std::string name)
        : object_(std::move(object)), name_(std::move(name)) {}
    /// Makes an object of the class with this program name, in this process or another. The result is empty
    /// if there is no such class or no object can be made.
    static AutomationObject Create(const wchar_t* program_name, std::string name);

    explicit operator bool() const { return object_ != nullptr; }

    /// Calls a method and ignores its result.
    void Call(const wchar_t* member, const Arguments& arguments) const;
    /// Calls a method and returns its result.
    Variant Ask(const wchar_t* member, const Arguments& arguments) const;
    /// Calls a method that returns another object, which gets the name `name`.
    AutomationObject AskObject(const wchar_t* member, const Arguments& arguments, std::string name) const;
    Variant Property(const wchar_t* member) const;
    /// The enumerator of a collection.
    ComPointer<IEnumVARIANT> Enumerator() const;

  private:
    DISPID IdOf(const wchar_t* member) const;
    void Invoke(DISPID id, const wchar_t* member, WORD flags, const Arguments& arguments,
                VARIANT* result) const;
    std::string Named(const wchar_t* member) const;

    ComPointer<IDispatch> object_;
    std::string name_;
};

/// Throws PackageError with `result` and the system's text for it if it is a failure.
void RequireSuccess(HRESULT result, const std::string& what);

} // namespace packages

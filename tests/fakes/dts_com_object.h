// The base of the COM objects in dts_com_server.dll: implements IDispatch over a table of member names and
// records each call. Knows nothing of packages.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "fakes/dts_com_record.h"

namespace fakes {

/// The number of objects that exist. While there are any, the DLL must stay loaded.
long LiveObjects();

/// Counts references as COM does. The object is destroyed when the last reference is released.
class CountedObject {
  public:
    CountedObject();
    CountedObject(const CountedObject&) = delete;
    CountedObject& operator=(const CountedObject&) = delete;
    virtual ~CountedObject();

    ULONG AddReference() { return ++references_; }
    ULONG ReleaseReference();

    /// Makes an object with one reference, which the caller owns.
    template <class Object, class... Arguments>
    static Object* Make(Arguments&&... arguments) {
        const auto object = std::make_shared<Object>(std::forward<Arguments>(arguments)...);
        object->self_ = object;
        return object.get();
    }

  private:
    ULONG references_ = 1;
    std::shared_ptr<CountedObject> self_;
};

/// The arguments of a call, from left to right as they are written. Refers to the parameters of the call.
class ReceivedArguments {
  public:
    explicit ReceivedArguments(const DISPPARAMS& parameters) : parameters_(parameters) {}

    std::size_t Count() const { return parameters_.cArgs; }
    /// Throws PackageError if the argument is not a string.
    std::string Text(std::size_t index) const;

  private:
    const DISPPARAMS& parameters_;
};

class RecordedObject : public IDispatch, public CountedObject {
  public:
    struct Member {
        const wchar_t* name;
        DISPID id;
        std::size_t arguments; ///< how many the member takes
    };

    /// `name` begins each line of the object in the record.
    RecordedObject(std::string name, std::vector<Member> members);
    ~RecordedObject() override;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
    ULONG STDMETHODCALLTYPE Release() override { return ReleaseReference(); }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argument) override;

  protected:
    /// Executes the member and returns its result. May throw PackageError.
    virtual packages::Variant Run(DISPID id, const ReceivedArguments& arguments) = 0;

  private:
    std::string name_;
    std::vector<Member> members_;
};

/// Returns a variant that takes over the caller's reference to the object.
packages::Variant Holding(IDispatch* object);

} // namespace fakes

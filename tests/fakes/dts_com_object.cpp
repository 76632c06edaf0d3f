// Counts references and dispatches recorded calls by name.
#include "fakes/dts_com_object.h"

#include "packages/packages.h"

namespace fakes {
namespace {

long live_objects = 0;

const RecordedObject::Member* Find(const std::vector<RecordedObject::Member>& members, DISPID id) {
    for (const RecordedObject::Member& member : members) {
        if (member.id == id) {
            return &member;
        }
    }
    return nullptr;
}

std::string Narrow(const wchar_t* text) {
    return packages::Bstr(SysAllocString(text)).Text();
}

} // namespace

long LiveObjects() {
    return live_objects;
}

CountedObject::CountedObject() {
    ++live_objects;
}

CountedObject::~CountedObject() {
    --live_objects;
}

ULONG CountedObject::ReleaseReference() {
    const ULONG left = --references_;
    if (left == 0) {
        const std::shared_ptr<CountedObject> last = std::move(self_); // destroyed at the end of this call
    }
    return left;
}

std::string ReceivedArguments::Text(std::size_t index) const {
    packages::Variant copy;
    packages::RequireSuccess(
        VariantCopyInd(copy.Receive(), &parameters_.rgvarg[parameters_.cArgs - 1 - index]), "argument");
    if (V_VT(&copy.Raw()) != VT_BSTR) {
        throw packages::PackageError(DISP_E_TYPEMISMATCH, "argument",
                                     "Argument " + std::to_string(index + 1) + " is no string");
    }
    return copy.ToText("argument");
}

RecordedObject::RecordedObject(std::string name, std::vector<Member> members)
    : name_(std::move(name)), members_(std::move(members)) {
    Record(name_ + " created");
}

RecordedObject::~RecordedObject() {
    Record(name_ + " released");
}

HRESULT RecordedObject::QueryInterface(REFIID id, void** object) {
    if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IDispatch)) {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
}

HRESULT RecordedObject::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

HRESULT RecordedObject::GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) {
    *info = nullptr;
    return DISP_E_BADINDEX;
}

HRESULT RecordedObject::GetIDsOfNames(REFIID /*id*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                                      DISPID* ids) {
    std::string line = name_ + " GetIDsOfNames";
    for (UINT i = 0; i < count; ++i) {
        line += " " + Narrow(names[i]);
    }
    Record(line);
    for (const Member& member : members_) {
        if (count == 1 && lstrcmpiW(member.name, names[0]) == 0) {
            *ids = member.id;
            return S_OK;
        }
    }
    *ids = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
}

HRESULT RecordedObject::Invoke(DISPID id, REFIID /*riid*/, LCID /*locale*/, WORD flags,
                               DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                               UINT* /*argument*/) {
    const Member* const member = Find(members_, id);
    const std::string member_name = member == nullptr ? std::to_string(id) : Narrow(member->name);
    Record(name_ + " Invoke " + DescribeCall(member_name, flags, *parameters, result != nullptr));
    if (member == nullptr) {
        return DISP_E_MEMBERNOTFOUND;
    }
    if (parameters->cArgs != member->arguments) {
        return DISP_E_BADPARAMCOUNT;
    }
    if (const auto failure = TakeFailure(member_name)) {
        return Fail(exception, failure->code, name_, failure->description);
    }
    try {
        packages::Variant value = Run(id, ReceivedArguments(*parameters));
        if (result != nullptr) {
            return VariantCopy(result, value.Receive());
        }
        return S_OK;
    } catch (const packages::PackageError& error) {
        Record(name_ + " failed: " + error.what());
        return Fail(exception, error.Number(), error.Source(), error.what());
    } catch (const std::exception& error) {
        return Fail(exception, E_UNEXPECTED, name_, error.what());
    }
}

packages::Variant Holding(IDispatch* object) {
    packages::Variant variant;
    V_VT(variant.Receive()) = VT_DISPATCH;
    V_DISPATCH(variant.Receive()) = object;
    return variant;
}

} // namespace fakes

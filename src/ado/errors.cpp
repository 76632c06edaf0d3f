// The texts of the failures that the layer finds itself.
#include "ado/errors.h"

#include <algorithm>
#include <array>

namespace ado {
namespace {

struct OwnText {
    std::int32_t number;
    const char* text;
};

constexpr std::array kOwnTexts = {
    OwnText{kArgumentsInConflict, "Arguments are of the wrong type, are out of acceptable range, or are in "
                                  "conflict with one another."},
    OwnText{kNoCurrentRecord, "Either BOF or EOF is True, or the current record has been deleted. Requested "
                              "operation requires a current record."},
    OwnText{kFeatureNotAvailable, "Object or provider is not capable of performing requested operation."},
    OwnText{kItemNotFound, "Item cannot be found in the collection corresponding to the requested name or "
                           "ordinal."},
    OwnText{kObjectClosed, "Operation is not allowed when the object is closed."},
    OwnText{kObjectOpen, "Operation is not allowed when the object is open."},
    OwnText{kInvalidConnection,
            "The connection cannot be used to perform this operation. It is either closed "
            "or invalid in this context."},
};

} // namespace

void RaiseOwnError(std::int32_t number, const char* source, const std::string& detail) {
    const auto* const own = std::ranges::find(kOwnTexts, number, &OwnText::number);
    std::string text = own != kOwnTexts.end() ? own->text : "";
    if (!detail.empty()) {
        text += " (" + detail + ")";
    }
    throw CallError(number, source, std::move(text));
}

} // namespace ado

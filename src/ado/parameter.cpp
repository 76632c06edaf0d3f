#include "ado/parameter.h"

#include "ado/errors.h"

namespace ado {

Parameter& Parameters::Item(std::int32_t index) {
    if (index < 0 || index >= Count()) {
        RaiseOwnError(kItemNotFound, "ADODB.Parameters");
    }
    return items_[static_cast<std::size_t>(index)];
}

} // namespace ado

// The collection of parameters; command.cpp reads them from the catalogue.
#include "ado/parameter.h"

#include <algorithm>

#include "ado/command.h"
#include "ado/errors.h"

namespace ado {

Parameter& Parameters::Item(std::int32_t index) {
    if (index < 0 || index >= Count()) {
        RaiseOwnError(kItemNotFound, "ADODB.Parameters");
    }
    return items_[static_cast<std::size_t>(index)];
}

std::vector<Parameter> Parameters::Take() {
    return std::exchange(items_, {});
}

void Parameters::Fill(std::vector<Parameter> items, const std::vector<Parameter>& before) {
    items_ = std::move(items);
    const std::string procedure_before = std::exchange(procedure_, command_->CommandText());
    if (procedure_before != procedure_) {
        return;
    }
    for (Parameter& item : items_) {
        const auto namesake = std::ranges::find_if(
            before, [&](const Parameter& candidate) { return candidate.Name() == item.Name(); });
        if (namesake != before.end()) {
            item.Value(namesake->Value());
        }
    }
}

} // namespace ado

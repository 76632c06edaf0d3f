// Moves through the rows of a result.
#include "ado/recordset.h"

#include <algorithm>
#include <utility>

#include "ado/errors.h"
#include "text/text.h"

namespace ado {
namespace {

constexpr char kSource[] = "ADODB.Recordset";

} // namespace

const std::string& Field::Name() const {
    return recordset_->field_names_[index_];
}

const Variant& Field::Value() const {
    if (recordset_->Eof()) {
        RaiseOwnError(kNoCurrentRecord, "ADODB.Field");
    }
    return recordset_->current_[index_];
}

std::int32_t Fields::Count() const {
    return static_cast<std::int32_t>(recordset_->field_names_.size());
}

Field Fields::Item(std::int32_t index) const {
    if (index < 0 || index >= Count()) {
        RaiseOwnError(kItemNotFound, "ADODB.Fields");
    }
    return {*recordset_, static_cast<std::size_t>(index)};
}

Field Fields::Item(std::string_view name) const {
    const std::vector<std::string>& names = recordset_->field_names_;
    const auto found = std::ranges::find_if(
        names, [&](const std::string& candidate) { return text::SameIgnoringCase(candidate, name); });
    if (found == names.end()) {
        RaiseOwnError(kItemNotFound, "ADODB.Fields", std::string(name));
    }
    return {*recordset_, static_cast<std::size_t>(found - names.begin())};
}

Recordset::Recordset(std::vector<std::string> field_names, RowStore rows)
    : open_(true),
      field_names_(std::move(field_names)),
      rows_(std::move(rows)),
      current_(field_names_.size()) {
    ReadRow();
}

void Recordset::RequireOpen() const {
    if (!open_) {
        RaiseOwnError(kObjectClosed, kSource);
    }
}

void Recordset::ReadRow() {
    if (position_ < rows_.RowCount()) {
        rows_.Read(next_, current_);
    }
}

bool Recordset::Eof() const {
    RequireOpen();
    return position_ >= rows_.RowCount();
}

bool Recordset::Bof() const {
    RequireOpen();
    return rows_.RowCount() == 0; // moving before the first row is not possible
}

void Recordset::MoveFirst() {
    if (Bof()) {
        RaiseOwnError(kNoCurrentRecord, kSource);
    }
    position_ = 0;
    next_ = {};
    ReadRow();
}

void Recordset::MoveNext() {
    if (Eof()) {
        RaiseOwnError(kNoCurrentRecord, kSource);
    }
    ++position_;
    ReadRow();
}

RowStore Recordset::GetRows() {
    RequireOpen();
    position_ = 0;
    next_ = {};
    return std::exchange(rows_, {});
}

} // namespace ado

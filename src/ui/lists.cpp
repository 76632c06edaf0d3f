// The items, the selection and the text of list boxes and combo boxes.
#include "ui/lists.h"

#include <algorithm>
#include <utility>

namespace ui {
namespace {

/// Throws Refusal for an index outside the list; -1, which selects nothing, is accepted.
void RefuseOutside(int index, const ListItems& items) {
    if (index < -1 || index >= items.Count()) {
        throw Refusal("the list has no item " + std::to_string(index));
    }
}

} // namespace

const ListItems::Item& ListItems::At(int index) const {
    if (index < 0 || index >= Count()) {
        throw Refusal("the list has no item " + std::to_string(index));
    }
    return items_[static_cast<std::size_t>(index)];
}

ListItems::Item& ListItems::At(int index) {
    return const_cast<Item&>(std::as_const(*this).At(index));
}

int ListItems::Find(const std::string& text) const {
    const auto found =
        std::find_if(items_.begin(), items_.end(), [&text](const Item& item) { return item.text == text; });
    return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
}

void ListBox::AddItem(const std::string& text) {
    items_.Add(text);
    Notify(Property::Items);
}

void ListBox::Clear() {
    items_.Clear();
    list_index_ = -1;
    Notify(Property::Items);
}

void ListBox::ListIndex(int value) {
    RefuseOutside(value, items_);
    list_index_ = value;
    Notify(Property::ListIndex);
    Fire(on_click);
}

std::string ListBox::Text() const {
    return list_index_ < 0 ? std::string{} : List(list_index_);
}

void ComboBox::AddItem(const std::string& text) {
    items_.Add(text);
    Notify(Property::Items);
}

void ComboBox::Clear() {
    items_.Clear();
    list_index_ = -1;
    const bool changed = !std::exchange(text_, {}).empty();
    Notify(Property::Items);
    if (changed && !IsDropDownList()) {
        Fire(on_change);
    }
}

void ComboBox::Text(const std::string& value) {
    if (!IsDropDownList()) {
        TakeEdit(value);
        return;
    }
    const int index = items_.Find(value);
    if (index < 0) {
        throw Refusal("the drop-down list " + std::string(Name()) + " has no item '" + value + "'");
    }
    list_index_ = index;
    text_ = value;
    Notify(Property::ListIndex);
}

void ComboBox::TakeEdit(const std::string& text) {
    if (text_ == text) {
        return;
    }
    text_ = text;
    list_index_ = -1;
    Notify(Property::Text);
    Fire(on_change);
}

void ComboBox::ListIndex(int value) {
    RefuseOutside(value, items_);
    list_index_ = value;
    text_ = value < 0 ? std::string{} : items_.At(value).text;
    Notify(Property::ListIndex);
    Fire(on_click);
}

} // namespace ui

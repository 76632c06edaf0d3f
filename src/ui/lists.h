// Combo boxes and list boxes. Items are numbered from 0; the index -1 means that no item is selected. An
// index outside the list throws Refusal.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ui/control.h"

namespace ui {

/// The items of a list.
class ListItems {
  public:
    struct Item {
        std::string text;
        std::int32_t data = 0; ///< a number for the program's own use; not shown
    };

    int Count() const { return static_cast<int>(items_.size()); }
    const Item& At(int index) const;
    Item& At(int index);
    /// Returns the index of the first item with exactly this text, or -1.
    int Find(const std::string& text) const;
    void Add(const std::string& text) { items_.push_back({text}); }
    void Clear() { items_.clear(); }

  private:
    std::vector<Item> items_;
};

class ListBox : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::ListBox;
    using Control::Control;

    int ListCount() const { return items_.Count(); }
    const std::string& List(int index) const { return items_.At(index).text; }
    std::int32_t ItemData(int index) const { return items_.At(index).data; }
    void ItemData(int index, std::int32_t data) { items_.At(index).data = data; }
    void AddItem(const std::string& text);
    void Clear();

    int ListIndex() const { return list_index_; }
    /// Selects an item, or nothing (-1). Fires Click, also if the index is the same.
    void ListIndex(int value);
    /// The selected item's text; empty if nothing is selected.
    std::string Text() const;

    Handler on_click;

  private:
    ListItems items_;
    int list_index_ = -1;
};

class ComboBox : public Control {
  public:
    static constexpr ui::Kind kKind = ui::Kind::ComboBox;
    using Control::Control;

    /// True for a drop-down list: the text is always one of the list. False for a box with free text, in
    /// which the operator types any text or chooses one.
    bool IsDropDownList() const { return Has(kDropDownList); }

    int ListCount() const { return items_.Count(); }
    const std::string& List(int index) const { return items_.At(index).text; }
    void AddItem(const std::string& text);
    /// Empties the list and the text. With free text, fires Change if there was a text.
    void Clear();

    const std::string& Text() const { return text_; }
    /// With free text, a different text fires Change. A drop-down list fires nothing, and throws Refusal if
    /// the text is not in the list.
    void Text(const std::string& value);

    /// -1 if the text was not taken from the list.
    int ListIndex() const { return list_index_; }
    /// Takes the item's text, or none for -1. Fires Click, also if the index is the same.
    void ListIndex(int value);

    Handler on_click;
    Handler on_change; ///< only with free text

    /// For operator.h: the operator has changed the text to this. A different text fires Change.
    void TakeEdit(const std::string& text);

  private:
    ListItems items_;
    std::string text_;
    int list_index_ = -1;
};

} // namespace ui

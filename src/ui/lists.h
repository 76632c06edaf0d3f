// Combo boxes and list boxes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ui/control.h"

namespace ui {

/// The items of a list. An item's data is the program's own number for it.
class ListItems {
  public:
    struct Item {
        std::string text;
        std::int32_t data = 0;
    };

    int Count() const { return static_cast<int>(items_.size()); }
    /// Refuses an index outside the list.
    const Item& At(int index) const;
    Item& At(int index);
    /// -1 if no item has exactly this text.
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

    /// -1 if nothing is selected.
    int ListIndex() const { return list_index_; }
    /// Fires Click, also for the same index. Refuses one outside the list; -1 is in it.
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

    /// True: only texts of the list. False: any text, with a list to choose from.
    bool IsDropDownList() const { return Has(kDropDownList); }

    int ListCount() const { return items_.Count(); }
    const std::string& List(int index) const { return items_.At(index).text; }
    void AddItem(const std::string& text);
    /// Empties the list and the text. Free text: fires Change if there was a text.
    void Clear();

    const std::string& Text() const { return text_; }
    /// Free text: a different text fires Change. Drop-down list: fires nothing, and a text that is not in the
    /// list is refused.
    void Text(const std::string& value);

    /// -1 if the text was not taken from the list.
    int ListIndex() const { return list_index_; }
    /// Takes the item's text and fires Click, also for the same index. Refuses one outside the list; -1 is in
    /// it and leaves no text.
    void ListIndex(int value);

    Handler on_click;
    Handler on_change; ///< free text only

    /// For operator.h: the text as the operator has changed it.
    void TakeEdit(const std::string& text);

  private:
    ListItems items_;
    std::string text_;
    int list_index_ = -1;
};

} // namespace ui

// A result in memory, with the interface of ADO's Recordset: its fields, its rows and the current row. Needs
// no connection.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ado/row_store.h"
#include "ado/variant.h"

namespace ado {

/// The values of State of a recordset and of a connection.
enum ObjectState : std::int32_t { adStateClosed = 0, adStateOpen = 1 };

class Recordset;

/// One column of the current row. Must not outlive its recordset.
class Field {
  public:
    Field(const Recordset& recordset, std::size_t index) : recordset_(&recordset), index_(index) {}
    const std::string& Name() const;
    /// Returns the value in the current row, valid until the recordset moves. Throws CallError with
    /// kNoCurrentRecord if there is no current row.
    const Variant& Value() const;

  private:
    const Recordset* recordset_;
    std::size_t index_;
};

/// The columns of a recordset; a closed recordset has no columns. Must not outlive the recordset.
class Fields {
  public:
    explicit Fields(const Recordset& recordset) : recordset_(&recordset) {}
    std::int32_t Count() const;
    /// Returns the field at a position; the first has the index 0. Throws CallError with kItemNotFound.
    Field Item(std::int32_t index) const;
    /// Returns the field with this name, letter case ignored. Throws CallError with kItemNotFound.
    Field Item(std::string_view name) const;

  private:
    const Recordset* recordset_;
};

/// A result. Every failure is a CallError: kObjectClosed for a closed recordset, kNoCurrentRecord for a move
/// that is not possible.
class Recordset {
  public:
    /// Makes a closed recordset, as a statement without columns returns it.
    Recordset() = default;
    /// Makes an open recordset, on its first row if it has rows. Each row of `rows` has a value for each
    /// field.
    Recordset(std::vector<std::string> field_names, RowStore rows);

    std::int32_t State() const { return open_ ? adStateOpen : adStateClosed; }
    // Both are true for a result without rows. The name is not EOF because that is a macro of the C library.

    /// True after the last row.
    bool Eof() const;
    /// True before the first row, which only happens if there are no rows.
    bool Bof() const;
    /// Goes to the first row. Fails if there are no rows.
    void MoveFirst();
    /// Goes to the next row, or past the last one. Fails if Eof is true.
    void MoveNext();
    /// Moves all rows out of the recordset, which is then empty. A caller that keeps the whole result uses
    /// it, so that the rows are not in memory twice.
    RowStore GetRows();
    ado::Fields Fields() const { return ado::Fields(*this); }

  private:
    friend class ado::Field;
    friend class ado::Fields;

    /// Throws kObjectClosed unless the recordset is open.
    void RequireOpen() const;
    /// Reads the row at position_ into current_, if there is one.
    void ReadRow();

    bool open_ = false;
    std::vector<std::string> field_names_;
    RowStore rows_;
    std::vector<Variant> current_; ///< the values of the current row
    RowStore::Place next_;         ///< the place of the row after it
    std::size_t position_ = 0;     ///< of the current row, from 0; at the end it is the number of rows
};

} // namespace ado

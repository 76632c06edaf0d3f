// A client-side result: its fields, its rows in memory, and the current row. Needs no connection.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ado/row_store.h"
#include "ado/variant.h"

namespace ado {

/// Values of State, of a recordset and of a connection.
enum ObjectState : std::int32_t { adStateClosed = 0, adStateOpen = 1 };

class Recordset;

/// One column of the current row. Must not outlive its recordset.
class Field {
  public:
    Field(const Recordset& recordset, std::size_t index) : recordset_(&recordset), index_(index) {}
    const std::string& Name() const;
    /// Throws kNoCurrentRecord if there is no current row.
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
    /// The first has the index 0. Throws kItemNotFound.
    Field Item(std::int32_t index) const;
    /// The field with this name, letter case ignored. Throws kItemNotFound.
    Field Item(std::string_view name) const;

  private:
    const Recordset* recordset_;
};

/// Every failure is a CallError.
class Recordset {
  public:
    /// A closed recordset, as a statement without columns returns it.
    Recordset() = default;
    /// An open recordset, on its first row if it has rows. Each row of `rows` has a value for each field.
    Recordset(std::vector<std::string> field_names, RowStore rows);

    std::int32_t State() const { return open_ ? adStateOpen : adStateClosed; }
    /// Both are true for a result without rows. Not spelled EOF, which is a macro of the C library.
    bool Eof() const;
    bool Bof() const;
    void MoveFirst();
    void MoveNext();
    /// Moves all rows out of the recordset, which is then empty. For callers that keep the whole result, so
    /// that its rows are not held twice.
    RowStore GetRows();
    ado::Fields Fields() const { return ado::Fields(*this); }

  private:
    friend class ado::Field;
    friend class ado::Fields;

    void CheckOpen() const;
    void ReadRow();

    bool open_ = false;
    std::vector<std::string> field_names_;
    RowStore rows_;
    std::vector<Variant> current_;
    RowStore::Place next_;
    std::size_t position_ = 0; ///< of the current row, from 0; at the end it is the number of rows
};

} // namespace ado

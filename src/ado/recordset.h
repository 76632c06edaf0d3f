// A client-side result: its fields, its rows in memory, and the one row that is the current one. Needs no
// connection any more.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ado/row_store.h"
#include "ado/variant.h"

namespace ado {

/// What State gives; the same numbers for a connection.
enum ObjectState : std::int32_t { adStateClosed = 0, adStateOpen = 1 };

class Recordset;

/// One column of the current row. Does not outlive its recordset.
class Field {
  public:
    Field(const Recordset& recordset, std::size_t index) : recordset_(&recordset), index_(index) {}
    const std::string& Name() const;
    /// Throws kNoCurrentRecord if the recordset stands on no row.
    const Variant& Value() const;

  private:
    const Recordset* recordset_;
    std::size_t index_;
};

/// The columns of a recordset; none if it is closed. Does not outlive it.
class Fields {
  public:
    explicit Fields(const Recordset& recordset) : recordset_(&recordset) {}
    std::int32_t Count() const;
    /// The first has the index 0. Throws kItemNotFound.
    Field Item(std::int32_t index) const;
    /// By its name, without regard to case. Throws kItemNotFound.
    Field Item(std::string_view name) const;

  private:
    const Recordset* recordset_;
};

/// Every failure is a CallError.
class Recordset {
  public:
    /// A closed one: what a statement without columns gives.
    Recordset() = default;
    /// An open one, on its first row if there is one. `rows` have a value for each field.
    Recordset(std::vector<std::string> field_names, RowStore rows);

    std::int32_t State() const { return open_ ? adStateOpen : adStateClosed; }
    /// Both are true for a result without rows. The C library has the usual spelling as a macro.
    bool Eof() const;
    bool Bof() const;
    void MoveFirst();
    void MoveNext();
    /// Gives all rows away from the first on; the recordset is at its end then and has none. For readers of
    /// whole results, who need no row of their own beside it.
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
    std::size_t position_ = 0; ///< of the current row, from 0; the number of rows: at the end
};

} // namespace ado

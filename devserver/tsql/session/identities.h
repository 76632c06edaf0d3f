// The identity values that a session has given to rows.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "devserver/storage/catalogue.h"

namespace devsql {

class Identities {
  public:
    /// The last value that this session has given in the table; nothing if it has given none.
    std::optional<std::int64_t> Given(const TableDef& table) const;
    /// The counter of a temporary table, by the table's id; nothing before its first row.
    std::optional<std::int64_t> Temporary(std::int64_t table) const;
    /// A rollback does not take it back.
    void SetGiven(const TableDef& table, std::int64_t value) { given_[Key(table)] = value; }
    void ForgetGiven(const TableDef& table) { given_.erase(Key(table)); }
    /// Forgets the values of a database. For a new database that gets the alias of one that is gone.
    void ForgetDatabase(const std::string& alias);
    /// Sets the counter of a temporary table; an empty `value` removes it.
    void SetTemporary(std::int64_t table, std::optional<std::int64_t> value);

    /// The value of the last INSERT: @@IDENTITY.
    std::optional<std::int64_t> last;

    /// SET IDENTITY_INSERT: one table at a time.
    bool InsertsInto(const TableDef& table) const { return insert_ == Key(table); }
    /// The table that it is ON for, as messages name it; empty for none.
    const std::string& insert_table() const { return insert_; }
    void StartInsert(const TableDef& table) { insert_ = Key(table); }
    void StopInsert() { insert_.clear(); }

  private:
    static std::string Key(const TableDef& table);

    std::map<std::string, std::int64_t> given_; ///< by "db7.12345"
    std::map<std::int64_t, std::int64_t> temporary_;
    std::string insert_;
};

} // namespace devsql

// The errors that the database has reported to a manager. They are collected after each statement and shown
// in one message box at the end of a command. Knows no connection and no window.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ado/errors.h"
#include "base/int16.h"

namespace kv {

/// One collected error; its fields are those of ado::Error.
struct DbError {
    std::int32_t Number = 0;
    std::string Description;
    std::string Source;
    std::int32_t NativeError = 0;
    std::string SQLState;

    friend bool operator==(const DbError&, const DbError&) = default;
};

/// The array of collected errors. Its lower bound is 0 and element 0 is never filled, so the upper bound is
/// the number of errors.
class DbErrors {
  public:
    std::int32_t UpperBound() const { return static_cast<std::int32_t>(records_.size()) - 1; }

    /// Raises run_time::kSubscriptOutOfRange unless `index` is from 0 to UpperBound().
    DbError& operator[](std::int32_t index);
    const DbError& operator[](std::int32_t index) const;

    /// Adds one empty element after the last.
    void Grow() { records_.emplace_back(); }
    /// Removes all elements except element 0, which is empty.
    void Reset() { records_.assign(1, {}); }

  private:
    std::vector<DbError> records_{1};
};

/// Removes every error.
void ResetDbErrors(DbErrors& arrErrors);

/// Appends the entries of `errors` whose number is not 0. The index of an entry in the array is the upper
/// bound before the call plus the entry's position in `errors`, where entries with the number 0 count too.
/// But the array grows for stored entries only. So if an entry with the number 0 comes before a stored one,
/// the call raises run_time::kSubscriptOutOfRange.
void CollectDbErrors(DbErrors& arrErrors, const ado::Errors& errors);

/// Returns the text that the operator sees; empty if there are no errors.
std::string FormatDbErrors(const DbErrors& arrErrors);

/// The base of every manager class: its errors and the members that show them. A derived class fills
/// db_errors_ with the functions above.
class ManagerErrors {
  public:
    /// Shows all errors in one message box; does nothing if there are no errors. The errors stay: a second
    /// call shows them again.
    void ShowDbError() const;
    /// Returns the number of errors.
    Int16 ErrorCount() const;
    /// Always raises run_time::kSubscriptOutOfRange; this is part of the product. Its check of the index asks
    /// for the bound of a second dimension, which the array does not have.
    DbError DbErrorAt(Int16 intIndex) const;

  protected:
    ~ManagerErrors() = default;

    DbErrors db_errors_;
};

} // namespace kv

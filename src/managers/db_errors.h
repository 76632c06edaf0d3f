// The errors that the database reported to a manager: collected after each statement, shown in one message
// box at the end of a command. Knows no connection and no window.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ado/errors.h"
#include "base/int16.h"

namespace kv {

/// One collected error.
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

    /// Raises run_time::kSubscriptOutOfRange outside 0 to UpperBound().
    DbError& operator[](std::int32_t index);
    const DbError& operator[](std::int32_t index) const;

    /// Adds one empty element after the last.
    void Grow() { records_.emplace_back(); }
    /// Removes all elements except element 0, which is empty.
    void Reset() { records_.assign(1, {}); }

  private:
    std::vector<DbError> records_{1};
};

/// Drops every record.
void ResetDbErrors(DbErrors& arrErrors);

/// Appends the entries of `errors` whose number is not 0. The index of an entry is the upper bound before the
/// call plus its position in `errors`, counted from 1 and including entries with number 0. The array grows
/// for stored entries only, so an entry with number 0 before another one fails with
/// run_time::kSubscriptOutOfRange.
void CollectDbErrors(DbErrors& arrErrors, const ado::Errors& errors);

/// The text that the operator sees; empty if there is nothing to show.
std::string FormatDbErrors(const DbErrors& arrErrors);

/// The base of every manager class: its errors and the members that show them. A manager derives from it and
/// fills db_errors_ with the routines above.
class ManagerErrors {
  public:
    /// Shows all errors in one message box, or nothing if there are no errors. The errors stay: a second call
    /// shows them again.
    void ShowDbError() const;
    /// The number of errors held.
    Int16 ErrorCount() const;
    /// Always fails with run_time::kSubscriptOutOfRange: its bound test asks for a second dimension, which
    /// the array does not have.
    DbError DbErrorAt(Int16 intIndex) const;

  protected:
    ~ManagerErrors() = default;

    DbErrors db_errors_;
};

} // namespace kv

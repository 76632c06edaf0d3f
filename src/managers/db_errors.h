// What the database reported to a manager object: collected behind a statement, shown in one message box at
// the end of a command. Knows no connection and no window.
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

    /// Adds one empty element behind the last.
    void Grow() { records_.emplace_back(); }
    /// Leaves the one empty element 0.
    void Reset() { records_.assign(1, {}); }

  private:
    std::vector<DbError> records_{1};
};

/// Drops every record.
void ResetDbErrors(DbErrors& arrErrors);

/// Appends the errors of `errors` whose number is not 0. Each is stored at the upper bound before the call
/// plus its place in `errors`, those with number 0 counted, while the array grows for the stored ones only: a
/// 0 in front of another number fails with run_time::kSubscriptOutOfRange.
void CollectDbErrors(DbErrors& arrErrors, const ado::Errors& errors);

/// The text that the operator sees; empty if there is nothing to show.
std::string FormatDbErrors(const DbErrors& arrErrors);

/// The head of every manager class: its errors and the members that present them. A manager derives from it
/// and fills db_errors_ with the routines above.
class ManagerErrors {
  public:
    /// One message box with all errors, none if there are none. A second call shows the same again.
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

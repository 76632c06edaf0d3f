// A value of a field or a parameter, and its conversions to text and to a 16-bit integer. Knows no
// connection.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

#include "ado/errors.h"
#include "odbc/odbc.h"

namespace platform {
struct LocaleForms;
} // namespace platform

namespace ado {

/// The database's NULL.
struct Null {
    friend bool operator==(Null, Null) = default;
};

/// An exact number as text: decimal digits, optionally with a sign before them and a "." in them.
struct Decimal {
    std::string digits;
    friend bool operator==(const Decimal&, const Decimal&) = default;
};

/// A date and a time of day.
using Date = odbc::Timestamp;
using ByteArray = odbc::Bytes;

/// A value of one of several types. The value Empty (std::monostate) means that no value has been assigned;
/// Null is the database's NULL.
class Variant {
  public:
    /// Whole numbers of every width are int64.
    using Storage = std::variant<std::monostate, Null, bool, std::int64_t, float, double, Decimal, Date,
                                 std::string, ByteArray>;

    Variant() = default;
    Variant(Null value) : storage_(value) {}
    Variant(bool value) : storage_(value) {}
    Variant(int value) : storage_(std::int64_t{value}) {}
    Variant(std::int64_t value) : storage_(value) {}
    Variant(float value) : storage_(value) {}
    Variant(double value) : storage_(value) {}
    Variant(Decimal value) : storage_(std::move(value)) {}
    Variant(const Date& value) : storage_(value) {}
    Variant(std::string value) : storage_(std::move(value)) {}
    Variant(const char* value) : storage_(std::string(value)) {}
    Variant(ByteArray value) : storage_(std::move(value)) {}

    bool IsEmpty() const { return std::holds_alternative<std::monostate>(storage_); }
    bool IsNull() const { return std::holds_alternative<Null>(storage_); }
    const Storage& Get() const { return storage_; }

    /// Returns the value as text, in the forms of the user's locale (platform/locale.h). Empty becomes an
    /// empty text; bytes become "0x" and hexadecimal digits. Throws ConversionError with kInvalidUseOfNull
    /// for Null.
    std::string ToString() const;
    /// Does the same in the forms of a given locale.
    std::string ToString(const platform::LocaleForms& forms) const;
    /// Returns the nearest 16-bit integer; a half is rounded to the even neighbour. Empty is 0, True is -1, a
    /// date is the number of days since kDayZero (date_text.h). Text is read as a number, optionally with
    /// blanks around it, a sign, a point and an exponent. Throws ConversionError for a value that is no
    /// number or does not fit.
    std::int16_t ToInt16() const;

    friend bool operator==(const Variant&, const Variant&) = default;

  private:
    Storage storage_;
};

} // namespace ado

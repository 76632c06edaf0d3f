// The types of the buffers that ODBC reads and writes, and the conversion of values to and from them.
// Internal to this folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "odbc/odbc.h"
#include "odbc/odbc_api.h"
#include "odbc/odbc_rows.h"
#include "text/code_page.h"

namespace odbc {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));

/// Passes a number as the value of an attribute: ODBC takes it in place of a pointer.
inline SQLPOINTER AttributeValue(std::uintptr_t number) {
    return reinterpret_cast<SQLPOINTER>(number); // NOLINT(performance-no-int-to-ptr): the call requires it
}

/// A text argument of a call, converted to UTF-16. The layer calls ODBC's wide functions only: how the narrow
/// ones read bytes depends on the driver manager, the driver and the locale (docs/odbc.md).
class TextArgument {
  public:
    explicit TextArgument(std::string_view text) : wide_(text::Widen(text)) {}
    SQLWCHAR* Data() { return reinterpret_cast<SQLWCHAR*>(wide_.data()); }
    /// Returns the number of UTF-16 units.
    template <class Length>
    Length Size() const {
        return static_cast<Length>(wide_.size());
    }

  private:
    std::u16string wide_;
};

/// A buffer into which a call writes UTF-16 text. Its size is counted in UTF-16 units.
class TextBuffer {
  public:
    explicit TextBuffer(std::size_t characters) : wide_(characters, u'\0') {}
    SQLWCHAR* Data() { return reinterpret_cast<SQLWCHAR*>(wide_.data()); }
    std::size_t Characters() const { return wide_.size(); }
    template <class Length>
    Length CharacterCount() const {
        return static_cast<Length>(wide_.size());
    }
    template <class Length>
    Length ByteCount() const {
        return static_cast<Length>(wide_.size() * sizeof(char16_t));
    }
    /// Returns the text before the NUL, in code page 1252.
    std::string Text() const { return text::Narrow(wide_.c_str()); }

  private:
    std::u16string wide_;
};

// A buffer type (`c_type`) is one of ODBC's constants SQL_C_….

/// Returns the buffer type for columns of the type; SQL_C_WCHAR if no other fits.
SQLSMALLINT BufferType(SqlType type);
/// Returns the number of bytes of one value; 0 for text and bytes, whose length varies.
std::size_t FixedSize(SQLSMALLINT c_type);
CellKind KindOf(SQLSMALLINT c_type);
/// Returns a view of the value at `data`. `indicator` is its length in bytes or SQL_NULL_DATA.
CellView ViewOf(SQLSMALLINT c_type, const char* data, SQLLEN indicator);
/// Copies the value that the view shows.
Value ReadValue(const CellView& view);

/// The buffer of a parameter marker.
struct ValueBuffer {
    SQLSMALLINT c_type = SQL_C_WCHAR;
    std::vector<char> data; ///< never empty
    std::size_t length = 0; ///< the number of bytes of the input value
    bool null = false;      ///< the input value is NULL
};

/// Makes a buffer with the parameter's input value. It is large enough for the output value too.
ValueBuffer MakeParameterBuffer(const Parameter& parameter);

/// The arguments of SQLBindParameter that it calls the column size and the decimal digits.
struct ParameterShape {
    SQLULEN size = 0;
    SQLSMALLINT decimal_digits = 0;
};
/// Returns the shape for a parameter whose value is in `buffer`.
ParameterShape ShapeOf(const Parameter& parameter, const ValueBuffer& buffer);

} // namespace odbc

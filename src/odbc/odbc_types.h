// How values are stored in the buffers that ODBC reads and writes. Internal to this folder.
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

/// ODBC takes a small number as an attribute value in place of a pointer to it.
inline SQLPOINTER AttributeValue(std::uintptr_t number) {
    return reinterpret_cast<SQLPOINTER>(number); // NOLINT(performance-no-int-to-ptr): the call requires it
}

/// A text argument of a call. The wide functions are used and the text is converted here: how the narrow
/// functions read bytes depends on the driver manager, the driver and the locale (docs/odbc.md).
class TextArgument {
  public:
    explicit TextArgument(std::string_view text) : wide_(text::Widen(text)) {}
    SQLWCHAR* Data() { return reinterpret_cast<SQLWCHAR*>(wide_.data()); }
    /// In characters.
    template <class Length>
    Length Size() const {
        return static_cast<Length>(wide_.size());
    }

  private:
    std::u16string wide_;
};

/// A buffer for a text that a call writes.
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
    /// Up to the NUL.
    std::string Text() const { return text::Narrow(wide_.c_str()); }

  private:
    std::u16string wide_;
};

/// The buffer type for columns of the type; SQL_C_WCHAR if no other fits.
SQLSMALLINT BufferType(SqlType type);
/// Bytes that one value of the buffer type takes; 0 for text and bytes, whose length varies.
std::size_t FixedSize(SQLSMALLINT c_type);
CellKind KindOf(SQLSMALLINT c_type);
/// The value at `data`; `indicator` is its length in bytes or SQL_NULL_DATA.
CellView ViewOf(SQLSMALLINT c_type, const char* data, SQLLEN indicator);
Value ReadValue(const CellView& view);

/// The buffer of a parameter marker.
struct ValueBuffer {
    SQLSMALLINT c_type = SQL_C_WCHAR;
    std::vector<char> data; ///< never empty
    std::size_t length = 0; ///< of the input value, in bytes
    bool null = false;
};

/// A buffer that holds the parameter's value and is large enough for its output value.
ValueBuffer MakeParameterBuffer(const Parameter& parameter);

/// What SQLBindParameter calls the column size and the decimal digits.
struct ParameterShape {
    SQLULEN size = 0;
    SQLSMALLINT decimal_digits = 0;
};
ParameterShape ShapeOf(const Parameter& parameter, const ValueBuffer& buffer);

} // namespace odbc

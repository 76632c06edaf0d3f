// Writes values for the client: the description of the type, then the values.
// Knows nothing of the tokens around them.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "devserver/engine/value.h"
#include "devserver/tds/wire.h"

namespace devsql::tds {

/// A value does not fit the type that was announced for it. This is a defect of the server, never of the
/// client.
class EncodingError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The form that a type has on the wire.
struct WireForm {
    WireType type = WireType::IntN;
    std::uint32_t size = 0; ///< bytes of a value; for a type of variable length, of the longest value
    std::uint8_t precision = 0;
    std::uint8_t scale = 0;
    /// The values are sent in chunks: a (max) type since 7.2. Before 7.2 it is sent as text, ntext or image.
    bool chunked = false;
};

/// Writes the values of one column. Made once for each column, since a row is written many times.
class TypeEncoder {
  public:
    TypeEncoder(const Type& type, Version version);

    /// Appends the description of the type.
    void AppendTypeInfo(std::string& out) const;
    /// Appends a value, which may be NULL. Throws EncodingError.
    void AppendValue(std::string& out, const Value& value) const;
    /// True for text, ntext and image: the description of such a column also names the table.
    bool HasTableName() const;
    /// The user type in a column's description, which distinguishes a timestamp from a binary; 0 for other
    /// types.
    std::uint32_t UserType() const { return user_type_; }

  private:
    using Append = void (*)(std::string& out, const WireForm& form, const Value& value);

    struct Entry;
    static const Entry& EntryOf(TypeId id);

    WireForm form_;
    Append append_;
    std::uint32_t user_type_;
};

} // namespace devsql::tds

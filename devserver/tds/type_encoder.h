// How a value of the server goes to the client: its type's description and the value itself, NULL or not.
// Knows nothing of tokens.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "devserver/engine/value.h"
#include "devserver/tds/wire.h"

namespace devsql::tds {

/// A value that does not fit the type it was announced with: a mistake of the server, never of the client.
class EncodingError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The form that a type has on the wire.
struct WireForm {
    WireType type = WireType::IntN;
    std::uint32_t size = 0; ///< bytes; the longest value of a type of variable length
    std::uint8_t precision = 0;
    std::uint8_t scale = 0;
    /// One of the (max) types of 7.2, sent in chunks. Before 7.2 these travel as text, ntext and image.
    bool chunked = false;
};

/// Writes the values of one column. Made once for each column, since a row is written many times.
class TypeEncoder {
  public:
    TypeEncoder(const Type& type, Version version);

    void AppendTypeInfo(std::string& out) const;
    /// Throws EncodingError.
    void AppendValue(std::string& out, const Value& value) const;
    /// text, ntext and image: a column's description also names the table.
    bool HasTableName() const;
    /// Tells a timestamp from a binary; 0 for all others.
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

// How a parameter of a procedure call comes from the client: the description of its type, then its value.
// Knows nothing of the call around it.
#pragma once

#include <string>

#include "devserver/engine/value.h"
#include "devserver/tds/bytes.h"
#include "devserver/tds/wire.h"

namespace devsql::tds {

/// A type as a client has described it; values follow it, one for a parameter, one in each row of a bulk
/// load.
struct WireFormat {
    WireType wire = WireType::IntN;
    Type type;
    std::size_t size = 0;   ///< bytes that a value has, or may have
    std::uint8_t scale = 0; ///< of a time
};

struct TypedValue {
    Type type;
    Value value;
};

/// Which parameter, or column of a bulk load, an error is about.
struct ValuePlace {
    int ordinal = 1;
    std::string name;
    bool column = false;
};

/// Reads the description of a type. Throws ProtocolError: 8009 for a type that does not exist, 40510 for one
/// that is not supported, 8016 for an impossible length, 4002 when the data ends.
WireFormat ReadFormat(ByteReader& reader, Version version, const ValuePlace& place);
/// Reads a value. Throws ProtocolError: 8016, 8023 for an invalid value, 4002.
Value ReadValue(ByteReader& reader, const WireFormat& format, const ValuePlace& place);
/// Reads both. date, time, datetime2 and datetimeoffset of TDS 7.3, which the server has no types
/// for, are taken as datetime (a time on 1900-01-01; an offset's local time).
TypedValue ReadTypedValue(ByteReader& reader, Version version, const ValuePlace& place);

} // namespace devsql::tds

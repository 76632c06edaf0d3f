// Reads values that a client sends: the description of the type, then the values. They are the parameters of
// procedure calls and the columns of a bulk load. Knows nothing of the messages around them.
#pragma once

#include <string>

#include "devserver/engine/value.h"
#include "devserver/tds/bytes.h"
#include "devserver/tds/wire.h"

namespace devsql::tds {

/// A type as a client has described it. One value follows it for a parameter, and one in each row of a bulk
/// load.
struct WireFormat {
    WireType wire = WireType::IntN;
    Type type;
    std::size_t size = 0;   ///< bytes of a value, or the most that a value can have
    std::uint8_t scale = 0; ///< digits of the fraction of a second, for the types of date and time of 7.3
};

struct TypedValue {
    Type type;
    Value value;
};

/// The parameter of a call, or the column of a bulk load; for the texts of errors.
struct ValuePlace {
    int ordinal = 1; ///< from 1
    std::string name;
    bool column = false; ///< a column of a bulk load, otherwise a parameter
};

/// Reads the description of a type. Throws ProtocolError: 8009 for a type that does not exist, 40510 for one
/// that is not supported, 8016 for an impossible length, 4002 when the data ends.
WireFormat ReadFormat(ByteReader& reader, Version version, const ValuePlace& place);
/// Reads a value. Throws ProtocolError: 8016 for an impossible length, 8023 for an invalid value, 4002 when
/// the data ends.
Value ReadValue(ByteReader& reader, const WireFormat& format, const ValuePlace& place);
/// Reads a description and the value after it. date, time, datetime2 and datetimeoffset of TDS 7.3 become
/// datetime: a time gets the day 1900-01-01, and a datetimeoffset becomes its local time.
TypedValue ReadTypedValue(ByteReader& reader, Version version, const ValuePlace& place);

} // namespace devsql::tds

// How a parameter of a procedure call comes from the client: the description of its type, then its value.
// Knows nothing of the call around it.
#pragma once

#include <string>

#include "devserver/engine/value.h"
#include "devserver/tds/bytes.h"
#include "devserver/tds/wire.h"

namespace devsql::tds {

struct TypedValue {
    Type type;
    Value value;
};

/// Which parameter an error is about.
struct ParameterPlace {
    int ordinal = 1;
    std::string name;
};

/// Reads type and value. date, time, datetime2 and datetimeoffset of TDS 7.3, which the server has no types
/// for, are taken as datetime (a time on 1900-01-01; an offset's local time).
/// Throws ProtocolError: 8009 for a type that does not exist, 40510 for one that is not supported, 8016 for a
/// length that can't be, 8023 for a value that is none, 4002 when the data ends.
TypedValue ReadTypedValue(ByteReader& reader, Version version, const ParameterPlace& place);

} // namespace devsql::tds

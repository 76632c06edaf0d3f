// Reads and writes a type as four columns of a catalogue table. Only for the files of the catalogue.
#pragma once

#include "devserver/storage/sqlite.h"

namespace devsql {

inline Type ReadType(const SqliteStatement& row, int column) {
    return {static_cast<TypeId>(row.Int(column)), static_cast<std::int32_t>(row.Int(column + 1)),
            static_cast<std::uint8_t>(row.Int(column + 2)), static_cast<std::uint8_t>(row.Int(column + 3))};
}

inline void BindTypeAt(SqliteStatement& statement, int index, const Type& type) {
    statement.BindInt(index, static_cast<int>(type.id))
        .BindInt(index + 1, type.length)
        .BindInt(index + 2, type.precision)
        .BindInt(index + 3, type.scale);
}

} // namespace devsql

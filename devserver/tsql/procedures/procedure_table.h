// A result set that a system procedure makes row by row.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "devserver/tsql/scalar/type_rules.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

/// The constructor sends the columns, Row a row, End the end of the result set. Call End once, at last.
class ProcedureTable {
  public:
    ProcedureTable(SessionCore& session, const std::vector<Column>& columns) : session_(session) {
        session.results().sink().Columns(columns);
    }
    void Row(const std::vector<Value>& values) {
        session_.results().sink().Row(values);
        ++rows_;
    }
    void End() { session_.results().Done(Command::Select, rows_); }

  private:
    SessionCore& session_;
    std::int64_t rows_ = 0;
};

/// The type of names: sysname.
inline constexpr Type kSysName = Sized(TypeId::NVarChar, 128);

/// NULL for an empty text.
inline Value TextOrNull(const std::string& text) {
    return text.empty() ? Value() : Value(text);
}

} // namespace devsql

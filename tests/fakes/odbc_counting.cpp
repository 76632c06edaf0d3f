// Implements the functions of ODBC that the program uses.
#include "fakes/odbc_counting.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>

#include "odbc/odbc_api.h"
#include "text/code_page.h"

namespace fakes {
namespace {

constexpr std::size_t kTextSize = 20; // characters of a text column

/// A column's buffer, as SQLBindCol got it. The caller owns the memory.
struct Binding {
    SQLSMALLINT c_type = 0;
    char* data = nullptr;
    SQLLEN width = 0; ///< bytes of one row's value
    SQLLEN* indicators = nullptr;
};

/// A parameter marker's buffer, as SQLBindParameter got it. The caller owns the memory.
struct BoundMarker {
    OdbcParameter shape;
    char* data = nullptr;
    SQLLEN room = 0; ///< bytes
    SQLLEN* indicator = nullptr;
};

struct FakeHandle {
    SQLSMALLINT kind = 0; ///< SQL_HANDLE_ENV, SQL_HANDLE_DBC or SQL_HANDLE_STMT
    FakeHandle* parent = nullptr;
    std::size_t children = 0; ///< open handles that were made from this one
    bool connected = false;
    std::vector<OdbcRecord> records; ///< of the last call
    std::size_t result = 0; ///< the statement's present result; the number of results after the last one
    bool has_result = false;
    std::size_t next_row = 0;
    std::size_t long_read = 0; ///< characters of the long text that were read
    SQLULEN array_size = 1;
    SQLULEN* rows_fetched = nullptr;
    SQLUSMALLINT* row_status = nullptr;
    std::map<SQLUSMALLINT, Binding> bindings;
    std::map<SQLUSMALLINT, BoundMarker> markers;
    const std::vector<OdbcResult>* results = nullptr;
};

OdbcCounting counting;
std::map<void*, std::unique_ptr<FakeHandle>> handles;

void Complain(std::string what) {
    counting.violations.push_back(std::move(what));
}

FakeHandle* Find(void* handle, const char* function) {
    const auto found = handles.find(handle);
    if (found == handles.end()) {
        Complain(std::string(function) + " with a handle that is not open");
        return nullptr;
    }
    return found->second.get();
}

/// Begins a call: counts it and finds its handle. Returns null if the call must fail; `code` is then its
/// return code.
FakeHandle* Begin(void* handle, const char* function, SQLRETURN& code) {
    FakeHandle* const fake = Find(handle, function);
    code = SQL_INVALID_HANDLE;
    if (fake == nullptr) {
        return nullptr;
    }
    fake->records.clear();
    if (++counting.calls == counting.failing_call) {
        counting.failed_function = function;
        fake->records.push_back({.state = "HY000", .native = 4711, .message = "[fake]made to fail"});
        code = SQL_ERROR;
        return nullptr;
    }
    code = SQL_SUCCESS;
    return fake;
}

const OdbcResult& ResultOf(const FakeHandle& fake) {
    return fake.results->at(fake.result);
}

/// Reads a cell from a buffer.
OdbcCell Stored(int c_type, const char* data, SQLLEN indicator) {
    if (indicator == SQL_NULL_DATA) {
        return {};
    }
    if (c_type == SQL_C_SBIGINT) {
        std::int64_t number = 0;
        std::memcpy(&number, data, sizeof number);
        return std::to_string(number);
    }
    const auto size = static_cast<std::size_t>(indicator);
    return c_type == SQL_C_WCHAR ? text::Narrow({reinterpret_cast<const char16_t*>(data), size / 2})
                                 : std::string(data, size);
}

/// Writes a cell as drivers do: a text is cut to the buffer, and its whole length is reported.
void Store(const OdbcCell& cell, int c_type, char* to, SQLLEN room, SQLLEN& indicator) {
    if (!cell) {
        indicator = SQL_NULL_DATA;
        return;
    }
    if (c_type == SQL_C_SBIGINT) {
        const std::int64_t number = std::stoll(*cell);
        std::memcpy(to, &number, sizeof number);
        indicator = sizeof number;
        return;
    }
    const std::u16string text = text::Widen(*cell);
    const std::size_t size = std::min(text.size(), static_cast<std::size_t>(room) / sizeof(char16_t) - 1);
    std::memcpy(to, text.data(), size * sizeof(char16_t));
    std::memset(to + size * sizeof(char16_t), 0, sizeof(char16_t));
    indicator = static_cast<SQLLEN>(text.size() * sizeof(char16_t));
}

/// Records the values of the markers of a statement that is run.
void NoteParameters(FakeHandle& fake) {
    counting.parameters.clear();
    for (auto& [number, marker] : fake.markers) {
        marker.shape.value = Stored(marker.shape.c_type, marker.data, *marker.indicator);
        counting.parameters.push_back(marker.shape);
    }
}

/// Sets the output values of the markers, after the last result.
void GiveOutput(FakeHandle& fake) {
    for (auto& [number, marker] : fake.markers) {
        if (marker.shape.direction != SQL_PARAM_INPUT && number <= counting.output.size()) {
            Store(counting.output[number - 1U], marker.shape.c_type, marker.data, marker.room,
                  *marker.indicator);
        }
    }
}

/// Goes to the result at `index`.
SQLRETURN Enter(FakeHandle& fake, std::size_t index) {
    fake.has_result = fake.results != nullptr && index < fake.results->size();
    fake.result = index;
    fake.next_row = 0;
    if (!fake.has_result) {
        GiveOutput(fake);
        return SQL_NO_DATA;
    }
    const OdbcResult& result = (*fake.results)[index];
    fake.records = result.records;
    if (result.fails) {
        return SQL_ERROR;
    }
    if (result.no_data) {
        return SQL_NO_DATA;
    }
    return result.records.empty() ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

SQLRETURN Run(FakeHandle& fake) {
    NoteParameters(fake);
    fake.results = &counting.results;
    return Enter(fake, 0);
}

SQLRETURN RunCatalogue(FakeHandle& fake) {
    fake.results = counting.catalogue.empty() ? &counting.results : &counting.catalogue;
    return Enter(fake, 0);
}

std::string Narrowed(const SQLWCHAR* text, SQLINTEGER length) {
    const auto* const wide = reinterpret_cast<const char16_t*>(text);
    return text::Narrow(length == SQL_NTS ? std::u16string_view(wide)
                                          : std::u16string_view(wide, static_cast<std::size_t>(length)));
}

/// Writes a text as ODBC does: cut to the buffer, always with a NUL. `room` and the result are in characters.
SQLRETURN WriteText(const std::string& text, SQLWCHAR* to, SQLSMALLINT room, SQLSMALLINT* length) {
    const std::u16string wide = text::Widen(text);
    if (length != nullptr) {
        *length = static_cast<SQLSMALLINT>(wide.size());
    }
    const std::size_t size = std::min(wide.size(), static_cast<std::size_t>(room) - 1);
    std::memcpy(to, wide.data(), size * sizeof(char16_t));
    to[size] = 0;
    return size < wide.size() ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}

const OdbcRecord* RecordOf(void* handle, SQLSMALLINT number, const char* function) {
    const FakeHandle* const fake = Find(handle, function);
    const bool there =
        fake != nullptr && number >= 1 && static_cast<std::size_t>(number) <= fake->records.size();
    return there ? &fake->records[static_cast<std::size_t>(number) - 1] : nullptr;
}

std::u16string CellText(std::size_t row) {
    return text::Widen("row " + std::to_string(row) + " \x80");
}

void WriteCell(const Binding& binding, std::size_t at, std::size_t row, const OdbcCell* laid_out) {
    char* const to = binding.data + static_cast<std::size_t>(binding.width) * at;
    if (laid_out != nullptr) {
        Store(*laid_out, binding.c_type, to, binding.width, binding.indicators[at]);
        return;
    }
    if (binding.c_type == SQL_C_SBIGINT) {
        const auto number = static_cast<std::int64_t>(row);
        std::memcpy(to, &number, sizeof number);
        binding.indicators[at] = sizeof number;
        return;
    }
    const std::u16string text = CellText(row);
    std::memcpy(to, text.c_str(), (text.size() + 1) * sizeof(char16_t));
    binding.indicators[at] = static_cast<SQLLEN>(text.size() * sizeof(char16_t));
}

} // namespace

OdbcCounting& Counting() {
    return counting;
}

void ResetCounting() {
    counting = {};
    handles.clear();
}

} // namespace fakes

using namespace fakes; // the functions below belong to no namespace

namespace {

/// The type of the last parameter of SQLColAttributeW, which differs between programs of 32 and of 64 bits.
template <class Last>
Last LastParameter(SQLRETURN(SQL_API*)(SQLHSTMT, SQLUSMALLINT, SQLUSMALLINT, SQLPOINTER, SQLSMALLINT,
                                       SQLSMALLINT*, Last));
using NumberPointer = decltype(LastParameter(&SQLColAttributeW));

} // namespace

extern "C" {

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle) {
    SQLRETURN code = SQL_SUCCESS;
    FakeHandle* owner = nullptr;
    if (kind != SQL_HANDLE_ENV) {
        owner = Begin(parent, "SQLAllocHandle", code);
        if (owner == nullptr) {
            return code;
        }
    } else if (++counting.calls == counting.failing_call) {
        counting.failed_function = "SQLAllocHandle";
        return SQL_ERROR;
    }
    auto fake = std::make_unique<FakeHandle>();
    fake->kind = kind;
    fake->parent = owner;
    if (owner != nullptr) {
        ++owner->children;
        if (kind == SQL_HANDLE_STMT && !owner->connected) {
            Complain("a statement of a connection that is not open");
        }
    }
    *handle = fake.get();
    handles[*handle] = std::move(fake);
    counting.most_handles = std::max(counting.most_handles, ++counting.open_handles);
    return code;
}

SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT kind, SQLHANDLE handle) {
    FakeHandle* const fake = Find(handle, "SQLFreeHandle");
    if (fake == nullptr) {
        return SQL_INVALID_HANDLE;
    }
    if (fake->kind != kind || fake->children != 0 || fake->connected) {
        Complain("a handle of kind " + std::to_string(kind) + " freed while it was in use");
    }
    if (fake->parent != nullptr) {
        --fake->parent->children;
    }
    handles.erase(handle);
    --counting.open_handles;
    return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV handle, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
    SQLRETURN code = SQL_SUCCESS;
    Begin(handle, "SQLSetEnvAttr", code);
    return code;
}

SQLRETURN SQL_API SQLSetConnectAttrW(SQLHDBC handle, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
    SQLRETURN code = SQL_SUCCESS;
    Begin(handle, "SQLSetConnectAttr", code);
    return code;
}

SQLRETURN SQL_API SQLGetConnectAttrW(SQLHDBC handle, SQLINTEGER, SQLPOINTER value, SQLINTEGER, SQLINTEGER*) {
    SQLRETURN code = SQL_SUCCESS;
    if (Begin(handle, "SQLGetConnectAttr", code) != nullptr) {
        *static_cast<SQLUINTEGER*>(value) = counting.connection_dead ? SQL_CD_TRUE : SQL_CD_FALSE;
    }
    return code;
}

SQLRETURN SQL_API SQLDriverConnectW(SQLHDBC handle, SQLHWND, SQLWCHAR* text, SQLSMALLINT length, SQLWCHAR*,
                                    SQLSMALLINT, SQLSMALLINT*, SQLUSMALLINT) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLDriverConnect", code)) {
        counting.last_connection_string = Narrowed(text, length);
        fake->connected = true;
        ++counting.open_connections;
        fake->records = counting.login_records;
        code = fake->records.empty() ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
    }
    return code;
}

SQLRETURN SQL_API SQLDisconnect(SQLHDBC handle) {
    FakeHandle* const fake = Find(handle, "SQLDisconnect");
    if (fake == nullptr || !fake->connected) {
        Complain("SQLDisconnect without a connection");
        return SQL_ERROR;
    }
    if (fake->children != 0) {
        Complain("SQLDisconnect with statements open");
    }
    fake->connected = false;
    --counting.open_connections;
    return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetInfoW(SQLHDBC handle, SQLUSMALLINT, SQLPOINTER text, SQLSMALLINT bytes,
                              SQLSMALLINT* length) {
    SQLRETURN code = SQL_SUCCESS;
    if (Begin(handle, "SQLGetInfo", code) != nullptr) {
        code = WriteText(counting.driver_name, static_cast<SQLWCHAR*>(text),
                         static_cast<SQLSMALLINT>(bytes / SQLSMALLINT{sizeof(SQLWCHAR)}), length);
    }
    return code;
}

SQLRETURN SQL_API SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE handle, SQLSMALLINT number, SQLWCHAR* state,
                                 SQLINTEGER* native, SQLWCHAR* text, SQLSMALLINT room, SQLSMALLINT* length) {
    const OdbcRecord* const record = RecordOf(handle, number, "SQLGetDiagRec");
    if (record == nullptr) {
        return SQL_NO_DATA;
    }
    WriteText(record->state, state, SQL_SQLSTATE_SIZE + 1, nullptr);
    *native = record->native;
    return WriteText(record->message, text, room, length);
}

SQLRETURN SQL_API SQLGetDiagFieldW(SQLSMALLINT, SQLHANDLE handle, SQLSMALLINT number, SQLSMALLINT field,
                                   SQLPOINTER value, SQLSMALLINT bytes, SQLSMALLINT* length) {
    const OdbcRecord* const record = RecordOf(handle, number, "SQLGetDiagField");
    if (record == nullptr) {
        return SQL_NO_DATA;
    }
    if (field == kDiagServerName) {
        return WriteText(record->server, static_cast<SQLWCHAR*>(value),
                         static_cast<SQLSMALLINT>(bytes / SQLSMALLINT{sizeof(SQLWCHAR)}), length);
    }
    const std::map<SQLSMALLINT, std::optional<std::int32_t>> numbers = {
        {kDiagServerLine, record->line},
        {kDiagServerSeverity, record->severity},
        {kDiagServerState, record->server_state},
    };
    const auto found = numbers.find(field);
    if (found == numbers.end() || !found->second) {
        return SQL_ERROR;
    }
    // The line has only 16 bits, as drivers write it.
    std::memcpy(value, &*found->second,
                field == kDiagServerLine ? sizeof(std::int16_t) : sizeof(std::int32_t));
    return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetStmtAttrW(SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLSetStmtAttr", code)) {
        if (attribute == SQL_ATTR_ROW_ARRAY_SIZE) {
            fake->array_size = reinterpret_cast<std::uintptr_t>(value);
        } else if (attribute == SQL_ATTR_ROWS_FETCHED_PTR) {
            fake->rows_fetched = static_cast<SQLULEN*>(value);
        } else if (attribute == SQL_ATTR_ROW_STATUS_PTR) {
            fake->row_status = static_cast<SQLUSMALLINT*>(value);
        }
    }
    return code;
}

SQLRETURN SQL_API SQLExecDirectW(SQLHSTMT handle, SQLWCHAR* text, SQLINTEGER length) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLExecDirect", code)) {
        counting.last_statement = Narrowed(text, length);
        code = Run(*fake);
    }
    return code;
}

SQLRETURN SQL_API SQLPrepareW(SQLHSTMT handle, SQLWCHAR* text, SQLINTEGER length) {
    SQLRETURN code = SQL_SUCCESS;
    if (Begin(handle, "SQLPrepare", code) != nullptr) {
        counting.last_statement = Narrowed(text, length);
    }
    return code;
}

SQLRETURN SQL_API SQLBindParameter(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT direction,
                                   SQLSMALLINT c_type, SQLSMALLINT sql_type, SQLULEN size, SQLSMALLINT digits,
                                   SQLPOINTER data, SQLLEN room, SQLLEN* indicator) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLBindParameter", code)) {
        fake->markers[number] = {
            {direction, c_type, sql_type, size, digits}, static_cast<char*>(data), room, indicator};
    }
    return code;
}

SQLRETURN SQL_API SQLExecute(SQLHSTMT handle) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLExecute", code)) {
        code = Run(*fake);
    }
    return code;
}

SQLRETURN SQL_API SQLCancel(SQLHSTMT handle) {
    SQLRETURN code = SQL_SUCCESS;
    Begin(handle, "SQLCancel", code);
    return code;
}

SQLRETURN SQL_API SQLMoreResults(SQLHSTMT handle) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLMoreResults", code)) {
        code = Enter(*fake, fake->result + 1);
    }
    return code;
}

SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT handle, SQLSMALLINT* count) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLNumResultCols", code)) {
        *count = 0;
        if (fake->has_result && ResultOf(*fake).columns) {
            const OdbcResult& result = ResultOf(*fake);
            *count = !result.kinds.empty()     ? static_cast<SQLSMALLINT>(result.kinds.size())
                     : result.with_long_column ? SQLSMALLINT{3}
                                               : SQLSMALLINT{2};
        }
    }
    return code;
}

SQLRETURN SQL_API SQLDescribeColW(SQLHSTMT handle, SQLUSMALLINT number, SQLWCHAR* name, SQLSMALLINT room,
                                  SQLSMALLINT* length, SQLSMALLINT* type, SQLULEN* size, SQLSMALLINT* digits,
                                  SQLSMALLINT* nullable) {
    SQLRETURN code = SQL_SUCCESS;
    if (const FakeHandle* const fake = Begin(handle, "SQLDescribeCol", code)) {
        const SQLSMALLINT types[] = {SQL_INTEGER, SQL_VARCHAR, SQL_LONGVARCHAR};
        const SQLULEN sizes[] = {10, kTextSize, 0x7FFFFFFF};
        const std::string& kinds = ResultOf(*fake).kinds;
        const std::size_t kind = kinds.empty() ? number - 1U : kinds[number - 1U] == 'n' ? 0 : 1;
        WriteText("column" + std::to_string(number), name, room, length);
        *type = types[kind];
        *size = sizes[kind];
        *digits = 0;
        *nullable = SQL_NULLABLE;
    }
    return code;
}

SQLRETURN SQL_API SQLColAttributeW(SQLHSTMT handle, SQLUSMALLINT number, SQLUSMALLINT, SQLPOINTER,
                                   SQLSMALLINT, SQLSMALLINT*, NumberPointer value) {
    SQLRETURN code = SQL_SUCCESS;
    if (Begin(handle, "SQLColAttribute", code) != nullptr) {
        *static_cast<SQLLEN*>(value) = number == 1 ? 11 : kTextSize;
    }
    return code;
}

SQLRETURN SQL_API SQLRowCount(SQLHSTMT handle, SQLLEN* count) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLRowCount", code)) {
        *count = fake->has_result ? static_cast<SQLLEN>(ResultOf(*fake).row_count) : -1;
    }
    return code;
}

SQLRETURN SQL_API SQLBindCol(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT c_type, SQLPOINTER data,
                             SQLLEN width, SQLLEN* indicators) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLBindCol", code)) {
        fake->bindings[number] = {c_type, static_cast<char*>(data), width, indicators};
    }
    return code;
}

SQLRETURN SQL_API SQLFetch(SQLHSTMT handle) {
    SQLRETURN code = SQL_SUCCESS;
    FakeHandle* const fake = Begin(handle, "SQLFetch", code);
    if (fake == nullptr) {
        return code;
    }
    ++counting.fetches;
    const std::size_t left = ResultOf(*fake).rows - fake->next_row;
    const std::size_t count = std::min<std::size_t>(left, fake->array_size);
    for (std::size_t i = 0; i < count; ++i) {
        const OdbcResult& result = ResultOf(*fake);
        for (const auto& [number, binding] : fake->bindings) {
            const std::size_t row = fake->next_row + i;
            WriteCell(binding, i, row, result.kinds.empty() ? nullptr : &result.cells[row][number - 1U]);
        }
        if (fake->row_status != nullptr) {
            fake->row_status[i] = SQL_ROW_SUCCESS;
        }
    }
    fake->next_row += count;
    fake->long_read = 0;
    if (fake->rows_fetched != nullptr) {
        *fake->rows_fetched = count;
    }
    if (count == 0) {
        return SQL_NO_DATA;
    }
    if (fake->next_row == ResultOf(*fake).rows) {
        fake->records = ResultOf(*fake).fetch_records;
    }
    return fake->records.empty() ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

SQLRETURN SQL_API SQLGetData(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT, SQLPOINTER data, SQLLEN room,
                             SQLLEN* indicator) {
    SQLRETURN code = SQL_SUCCESS;
    FakeHandle* const fake = Begin(handle, "SQLGetData", code);
    if (fake == nullptr) {
        return code;
    }
    if (fake->array_size != 1 || fake->bindings.count(number) != 0) {
        Complain("SQLGetData of a bound column or from a block");
    }
    const std::size_t left = ResultOf(*fake).long_size - fake->long_read;
    const std::size_t characters = static_cast<std::size_t>(room) / sizeof(char16_t) - 1;
    const std::size_t count = std::min(left, characters);
    const std::u16string text(count, u'x');
    std::memcpy(data, text.c_str(), (count + 1) * sizeof(char16_t));
    *indicator = static_cast<SQLLEN>(left * sizeof(char16_t));
    fake->long_read += count;
    return count < left ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT handle, SQLUSMALLINT option) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLFreeStmt", code)) {
        if (option == SQL_UNBIND) {
            fake->bindings.clear();
        }
    }
    return code;
}

SQLRETURN SQL_API SQLProceduresW(SQLHSTMT handle, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*,
                                 SQLSMALLINT) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLProcedures", code)) {
        code = RunCatalogue(*fake);
    }
    return code;
}

SQLRETURN SQL_API SQLProcedureColumnsW(SQLHSTMT handle, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                                       SQLWCHAR* name, SQLSMALLINT length, SQLWCHAR*, SQLSMALLINT) {
    SQLRETURN code = SQL_SUCCESS;
    if (FakeHandle* const fake = Begin(handle, "SQLProcedureColumns", code)) {
        counting.last_catalogue = Narrowed(name, length);
        code = RunCatalogue(*fake);
    }
    return code;
}

} // extern "C"

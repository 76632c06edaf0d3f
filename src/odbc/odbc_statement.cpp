// Statements: runs them and describes their results, columns and parameters.
#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "odbc/odbc.h"
#include "odbc/odbc_api.h"
#include "odbc/odbc_types.h"

namespace odbc {
namespace {

/// Returns a numeric attribute of a column, counted from 1; 0 for a negative one.
std::size_t NumericAttribute(Handle& handle, SQLUSMALLINT column, SQLUSMALLINT field) {
    SQLLEN number = 0;
    handle.Check("SQLColAttribute",
                 SQLColAttributeW(handle.Get(), column, field, nullptr, 0, nullptr, &number));
    return number > 0 ? static_cast<std::size_t>(number) : 0;
}

Column DescribeColumn(Handle& handle, SQLUSMALLINT number) {
    TextBuffer name(512);
    SQLSMALLINT name_length = 0;
    SQLSMALLINT type = 0;
    SQLULEN size = 0;
    SQLSMALLINT decimal_digits = 0;
    SQLSMALLINT nullable = 0;
    handle.Check("SQLDescribeCol",
                 SQLDescribeColW(handle.Get(), number, name.Data(), name.CharacterCount<SQLSMALLINT>(),
                                 &name_length, &type, &size, &decimal_digits, &nullable));
    Column column;
    column.name = name.Text();
    column.type = static_cast<SqlType>(type);
    column.size = size;
    column.decimal_digits = decimal_digits;
    column.nullable = nullable != SQL_NO_NULLS;
    column.display_size = NumericAttribute(handle, number, SQL_DESC_DISPLAY_SIZE);
    return column;
}

/// Throws OdbcError if the text has a NUL. FreeTDS would take it for the end and run the part before it.
void RefuseNul(const char* function, const std::string& sql) {
    if (sql.find('\0') != std::string::npos) {
        Diagnostic refusal;
        refusal.sql_state = "HY000";
        refusal.message = "The statement holds a NUL byte, which the driver would take for its end";
        throw OdbcError(function, {std::move(refusal)});
    }
}

} // namespace

/// The buffer that a parameter marker is bound to for as long as the statement may run.
struct Statement::BoundParameter {
    ValueBuffer buffer;
    SQLLEN indicator = 0;
};

Statement::Statement(const Connection& connection)
    : handle_(HandleKind::Statement, HandleKind::Connection, connection.Get()),
      zero_means_empty_(connection.UsesFreeTds()) {}
Statement::Statement(Statement&&) noexcept = default;
// The handle is replaced before the buffers that are bound to it.
Statement& Statement::operator=(Statement&& other) noexcept {
    handle_ = std::move(other.handle_);
    parameters_ = std::move(other.parameters_);
    zero_means_empty_ = other.zero_means_empty_;
    return *this;
}
Statement::~Statement() = default;

void Statement::SetQueryTimeout(unsigned seconds) {
    handle_.Check("SQLSetStmtAttr", SQLSetStmtAttrW(handle_.Get(), SQL_ATTR_QUERY_TIMEOUT,
                                                    AttributeValue(seconds), SQL_IS_UINTEGER));
}

void Statement::Cancel() noexcept {
    SQLCancel(handle_.Get()); // The return code is ignored: the running call reports the outcome.
}

void Statement::KeepResultsAfterError() {
    // unixODBC 2.3 treats a statement whose execution has failed as one without results, unless the statement
    // has a cursor. It assumes a cursor after every execution that returned success. PRINT is used because
    // FreeTDS returns success for it and leaves nothing to be fetched; other statements without rows return
    // SQL_NO_DATA.
    ExecDirect("PRINT ''");
    TakeMessages();
}

void Statement::ExecDirect(const std::string& sql) {
    RefuseNul("SQLExecDirect", sql);
    TextArgument text(sql);
    handle_.Check("SQLExecDirect", SQLExecDirectW(handle_.Get(), text.Data(), text.Size<SQLINTEGER>()));
}

void Statement::Prepare(const std::string& sql) {
    RefuseNul("SQLPrepare", sql);
    TextArgument text(sql);
    handle_.Check("SQLPrepare", SQLPrepareW(handle_.Get(), text.Data(), text.Size<SQLINTEGER>()));
}

void Statement::Bind(std::uint16_t position, const Parameter& parameter) {
    auto bound = std::make_unique<BoundParameter>();
    bound->buffer = MakeParameterBuffer(parameter);
    bound->indicator = bound->buffer.null ? SQL_NULL_DATA : static_cast<SQLLEN>(bound->buffer.length);
    constexpr std::array kDirections = {SQL_PARAM_INPUT, SQL_PARAM_INPUT_OUTPUT, SQL_PARAM_OUTPUT};
    const ParameterShape shape = ShapeOf(parameter, bound->buffer);
    handle_.Check(
        "SQLBindParameter",
        SQLBindParameter(handle_.Get(), position,
                         static_cast<SQLSMALLINT>(kDirections[static_cast<std::size_t>(parameter.direction)]),
                         bound->buffer.c_type, static_cast<SQLSMALLINT>(parameter.type), shape.size,
                         shape.decimal_digits, bound->buffer.data.data(),
                         static_cast<SQLLEN>(bound->buffer.data.size()), &bound->indicator));
    if (parameters_.size() < position) {
        parameters_.resize(position);
    }
    parameters_[position - 1U] = std::move(bound);
}

void Statement::Execute() {
    handle_.Check("SQLExecute", SQLExecute(handle_.Get()));
}

Value Statement::ParameterValue(std::uint16_t position) const {
    const BoundParameter& bound = *parameters_.at(position - 1U);
    const std::size_t room =
        bound.buffer.data.size() - (bound.buffer.c_type == SQL_C_WCHAR ? sizeof(char16_t) : 0);
    if (bound.indicator != SQL_NULL_DATA && FixedSize(bound.buffer.c_type) == 0 &&
        (bound.indicator < 0 || static_cast<std::size_t>(bound.indicator) > room)) {
        Diagnostic cut;
        cut.sql_state = "01004";
        cut.message = "Parameter " + std::to_string(position) + " gave back a value of more than the " +
                      std::to_string(room) + " bytes of its description";
        throw OdbcError("SQLBindParameter", {std::move(cut)});
    }
    return ReadValue(ViewOf(bound.buffer.c_type, bound.buffer.data.data(), bound.indicator));
}

bool Statement::MoreResults() {
    return handle_.Check("SQLMoreResults", SQLMoreResults(handle_.Get()));
}

std::uint16_t Statement::ColumnCount() {
    SQLSMALLINT count = 0;
    handle_.Check("SQLNumResultCols", SQLNumResultCols(handle_.Get(), &count));
    return static_cast<std::uint16_t>(std::max<SQLSMALLINT>(count, 0));
}

std::vector<Column> Statement::Columns() {
    const std::uint16_t count = ColumnCount();
    std::vector<Column> columns;
    columns.reserve(count);
    for (std::uint16_t number = 1; number <= count; ++number) {
        columns.push_back(DescribeColumn(handle_, number));
    }
    return columns;
}

std::int64_t Statement::RowCount() {
    SQLLEN count = -1;
    handle_.Check("SQLRowCount", SQLRowCount(handle_.Get(), &count));
    return count;
}

bool Statement::KnownEmpty() {
    return zero_means_empty_ && RowCount() == 0;
}

void Statement::Procedures() {
    handle_.Check("SQLProcedures", SQLProceduresW(handle_.Get(), nullptr, 0, nullptr, 0, nullptr, 0));
}

void Statement::ProcedureColumns(const std::string& procedure) {
    TextArgument name(procedure);
    handle_.Check("SQLProcedureColumns",
                  SQLProcedureColumnsW(handle_.Get(), nullptr, 0, nullptr, 0, name.Data(),
                                       name.Size<SQLSMALLINT>(), nullptr, 0));
}

} // namespace odbc

// Commands over ODBC: reads the parameters of a procedure from the driver's catalogue and calls the
// procedure.
#include "ado/command.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "ado/ado_types.h"
#include "ado/connection_impl.h"
#include "ado/error_numbers.h"
#include "ado/procedure_call.h"
#include "ado/procedure_name.h"
#include "platform/locale.h"
#include "text/text.h"

namespace ado {
namespace {

constexpr char kSource[] = "ADODB.Command";

// ------------------------------------------------------------------ the catalogue of parameters

/// The columns of SQLProcedureColumns, counted from 0. ODBC guarantees their order, not their names.
enum CatalogueColumn : std::int32_t {
    kOwner = 1,
    kProcedureName = 2,
    kColumnName = 3,
    kColumnType = 4,
    kDataType = 5,
    kTypeName = 6,
    kColumnSize = 7,
    kDecimalDigits = 9,
    kNullable = 11,
};

/// ADO's directions, indexed by ODBC's column type. The catalogue also lists the columns of a procedure's
/// result, which are not parameters.
constexpr std::int32_t kNoParameter = -1;
constexpr std::array<std::int32_t, 6> kDirections = {adParamUnknown, adParamInput,  adParamInputOutput,
                                                     kNoParameter,   adParamOutput, adParamReturnValue};

/// One row of the catalogue.
class CatalogueRow {
  public:
    explicit CatalogueRow(const Recordset& rows) : rows_(rows) {}

    /// Empty for NULL.
    std::string Text(CatalogueColumn column) const {
        const Variant& value = Value(column);
        return value.IsNull() ? std::string() : value.ToString();
    }
    /// 0 for NULL and for a value that is not a whole number.
    std::int64_t Number(CatalogueColumn column) const {
        const auto* const number = std::get_if<std::int64_t>(&Value(column).Get());
        return number != nullptr ? *number : 0;
    }
    std::int32_t Direction() const {
        const std::int64_t kind = Number(kColumnType);
        const bool known = kind >= 0 && kind < static_cast<std::int64_t>(kDirections.size());
        return known ? kDirections[static_cast<std::size_t>(kind)] : adParamUnknown;
    }
    /// True if the row belongs to the procedure with this name. Most drivers append the procedure's number,
    /// as in "name;1". The catalogue lists functions too, with the number 0.
    bool BelongsTo(const ProcedureName& wanted) const {
        const std::string listed = Text(kProcedureName);
        const std::size_t end = listed.rfind(';');
        const std::string number = end == std::string::npos ? "1" : listed.substr(end + 1);
        return text::SameIgnoringCase(listed.substr(0, end), wanted.name) &&
               (number == "0" ? "1" : number) == wanted.number &&
               (wanted.owner.empty() || text::SameIgnoringCase(Text(kOwner), wanted.owner));
    }

  private:
    const Variant& Value(CatalogueColumn column) const { return rows_.Fields().Item(column).Value(); }

    const Recordset& rows_;
};

/// Converts the number to a field's type. A number that is too large becomes the type's largest value; a
/// negative one becomes 0.
template <class Field>
Field Clamped(std::int64_t number) {
    return static_cast<Field>(std::clamp<std::int64_t>(number, 0, std::numeric_limits<Field>::max()));
}

/// Makes the parameter that the row describes.
Parameter ParameterOf(const CatalogueRow& row) {
    const AdoType& type = AdoTypeOf(static_cast<odbc::SqlType>(row.Number(kDataType)), row.Text(kTypeName));
    const bool sized = type.kind == TypeKind::Sized || type.kind == TypeKind::Long;
    Parameter parameter;
    parameter.Name(row.Text(kColumnName));
    parameter.Direction(row.Direction());
    parameter.Type(type.number);
    parameter.ServerType(row.Text(kTypeName));
    parameter.Attributes((type.is_signed ? adParamSigned : 0) |
                         (row.Number(kNullable) != 0 ? adParamNullable : 0) |
                         (type.kind == TypeKind::Long ? adParamLong : 0));
    parameter.Precision(type.precision);
    if (type.kind == TypeKind::Decimal) {
        parameter.Precision(Clamped<std::uint8_t>(row.Number(kColumnSize)));
        parameter.NumericScale(Clamped<std::uint8_t>(row.Number(kDecimalDigits)));
    }
    if (sized) {
        const std::int64_t size = row.Number(kColumnSize); // 0: no limit
        parameter.Size(Clamped<std::int32_t>(size > 0 ? size : std::numeric_limits<std::int32_t>::max()));
    }
    return parameter;
}

/// The parameters of all procedures with the same name, by owner, in the order of the catalogue.
using ByOwner = std::vector<std::pair<std::string, std::vector<Parameter>>>;

ByOwner ParametersByOwner(Recordset& rows, const ProcedureName& name) {
    ByOwner procedures;
    for (; !rows.Eof(); rows.MoveNext()) {
        const CatalogueRow row(rows);
        if (!row.BelongsTo(name) || row.Direction() == kNoParameter) {
            continue;
        }
        const std::string owner = row.Text(kOwner);
        auto found = std::ranges::find(procedures, owner, &ByOwner::value_type::first);
        if (found == procedures.end()) {
            found = procedures.insert(procedures.end(), {owner, {}});
        }
        found->second.push_back(ParameterOf(row));
    }
    return procedures;
}

/// Returns a query that finds the procedure that a call without an owner would run. Its answer is the index
/// in `procedures`, or NULL.
std::string OwnerQuery(const ByOwner& procedures, const std::string& name) {
    std::string query = "SELECT CASE OBJECT_ID(N'" + InBrackets(name) + "')";
    for (std::size_t i = 0; i < procedures.size(); ++i) {
        query += " WHEN OBJECT_ID(N'" + InBrackets(procedures[i].first) + "." + InBrackets(name) +
                 "') THEN " + std::to_string(i);
    }
    return query + " END";
}

/// Returns the index in the answer to OwnerQuery; 0 if the server finds no procedure.
std::size_t OwnerIndex(const Recordset& answer, std::size_t count) {
    if (answer.Eof()) {
        return 0;
    }
    const Variant& value = answer.Fields().Item(0).Value();
    const auto* const number = std::get_if<std::int64_t>(&value.Get());
    const bool known = number != nullptr && *number >= 0 && static_cast<std::size_t>(*number) < count;
    return known ? static_cast<std::size_t>(*number) : 0;
}

} // namespace

Command::Command() = default;
Command::~Command() = default;

void Command::ActiveConnection(Connection& connection) {
    connection_ = &connection;
}

void Command::CommandText(const std::string& value) {
    command_text_ = value;
}

void Command::CommandType(std::int32_t value) {
    if (value != adCmdStoredProc) {
        RaiseOwnError(kFeatureNotAvailable, kSource, "command type " + std::to_string(value));
    }
    command_type_ = value;
}

void Command::CommandTimeout(std::int32_t seconds) {
    command_timeout_ = seconds;
}

Connection& Command::RequireReady() const {
    if (connection_ == nullptr || connection_->State() == adStateClosed) {
        RaiseOwnError(kInvalidConnection, kSource);
    }
    if (command_type_ != adCmdStoredProc) {
        RaiseOwnError(kFeatureNotAvailable, kSource, "command type " + std::to_string(command_type_));
    }
    if (command_text_.empty()) {
        const Error error = NoCommandText();
        connection_->impl_->errors = Errors({error});
        throw CallError(error.Number, error.Source, error.Description);
    }
    return *connection_;
}

std::unique_ptr<Recordset> Command::Execute(std::int64_t& records_affected, std::int32_t options) {
    Connection& connection = RequireReady();
    if (options != adOptionUnspecified) {
        RaiseOwnError(kArgumentsInConflict, kSource, "option " + std::to_string(options));
    }
    const ProcedureCall call(command_text_, parameters_.items_, platform::UserLocale());
    if (!call.Refusals().empty()) {
        connection.impl_->errors = Errors(call.Refusals());
        const Error& first = call.Refusals().front();
        throw CallError(first.Number, first.Source, first.Description);
    }
    return connection.impl_->Run({.timeout = command_timeout_,
                                  .results_after_error = true,
                                  .start = [&](odbc::Statement& statement) { call.Start(statement); },
                                  .finish = [&](odbc::Statement& statement) { call.TakeOutput(statement); }},
                                 records_affected);
}

void Parameters::Refresh() {
    const std::vector<Parameter> before = Take();
    Connection& connection = command_->RequireReady();
    const ProcedureName name = ParseProcedureName(command_->command_text_);
    if (!name.database.empty()) {
        RaiseOwnError(kFeatureNotAvailable, kSource, "the parameters of a procedure of another database");
    }
    std::int64_t ignored = 0;
    const std::unique_ptr<Recordset> rows = connection.impl_->Run(
        {.timeout = command_->command_timeout_,
         .start =
             [&](odbc::Statement& statement) { statement.ProcedureColumns(CataloguePattern(name.name)); }},
        ignored);
    ByOwner procedures = ParametersByOwner(*rows, name);
    std::size_t found = 0;
    if (procedures.size() > 1) {
        const std::string query = OwnerQuery(procedures, name.name);
        const std::unique_ptr<Recordset> answer =
            connection.impl_->Run({.timeout = command_->command_timeout_,
                                   .start = [&](odbc::Statement& statement) { statement.ExecDirect(query); }},
                                  ignored);
        found = OwnerIndex(*answer, procedures.size());
    }
    Fill(procedures.empty() ? std::vector<Parameter>() : std::move(procedures[found].second), before);
}

} // namespace ado

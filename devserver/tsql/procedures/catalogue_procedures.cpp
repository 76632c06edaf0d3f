// What drivers ask of the catalogue: sp_tables, sp_columns, sp_stored_procedures, sp_datatype_info, ... in
// the columns and numbers of ODBC.
#include "devserver/tsql/procedures/catalogue_procedures.h"

#include <algorithm>
#include <array>

#include "devserver/storage/databases.h"
#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/procedures/procedure_table.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/like.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/server.h"

namespace devsql {
namespace {

constexpr Type kSmallInt = Simple(TypeId::SmallInt);
constexpr Type kInt = Simple(TypeId::Int);

/// ODBC 3 calls dates and times by other numbers than ODBC 2.
std::int16_t OdbcNumber(const SystemType& type, std::int64_t odbc_version) {
    constexpr std::int16_t kTimestamp2 = 11;
    constexpr std::int16_t kTimestamp3 = 93;
    return odbc_version >= 3 && type.odbc_type == kTimestamp2 ? kTimestamp3 : type.odbc_type;
}

/// The columns of sp_datatype_info.
std::vector<Column> DatatypeColumns() {
    return {{"TYPE_NAME", kSysName, false, false},
            {"DATA_TYPE", kSmallInt, false, false},
            {"PRECISION", kInt, true, false},
            {"LITERAL_PREFIX", Sized(TypeId::VarChar, 32), true, false},
            {"LITERAL_SUFFIX", Sized(TypeId::VarChar, 32), true, false},
            {"CREATE_PARAMS", Sized(TypeId::VarChar, 32), true, false},
            {"NULLABLE", kSmallInt, false, false},
            {"CASE_SENSITIVE", kSmallInt, false, false},
            {"SEARCHABLE", kSmallInt, false, false},
            {"UNSIGNED_ATTRIBUTE", kSmallInt, true, false},
            {"MONEY", kSmallInt, false, false},
            {"AUTO_INCREMENT", kSmallInt, true, false},
            {"LOCAL_TYPE_NAME", kSysName, true, false},
            {"MINIMUM_SCALE", kSmallInt, true, false},
            {"MAXIMUM_SCALE", kSmallInt, true, false},
            {"SQL_DATA_TYPE", kSmallInt, false, false},
            {"SQL_DATETIME_SUB", kSmallInt, true, false},
            {"NUM_PREC_RADIX", kInt, true, false},
            {"INTERVAL_PRECISION", kSmallInt, true, false},
            {"USERTYPE", kSmallInt, true, false}};
}

/// The most digits, characters or bytes that a value of the type has.
std::int64_t LargestSize(const SystemType& type) {
    return type.precision != 0            ? type.precision
           : IsUnicode(type.id)           ? (IsOldLob(type.id) ? 1073741823 : 4000)
           : IsOldLob(type.id)            ? 2147483647
           : type.id == TypeId::Timestamp ? 8
           : HasLength(type.id)           ? 8000
                                          : type.storage_length;
}

std::vector<Value> DatatypeRow(const SystemType& type, std::int64_t version) {
    const bool number = IsNumber(type.id);
    const bool text = IsCharacter(type.id);
    return {std::string(type.name),
            std::int64_t{OdbcNumber(type, version)},
            LargestSize(type),
            TextOrNull(std::string(type.literal_prefix)),
            TextOrNull(std::string(type.literal_suffix)),
            TextOrNull(std::string(type.create_parameters)),
            std::int64_t{type.id != TypeId::Timestamp},
            std::int64_t{0},
            std::int64_t{IsOldLob(type.id)             ? (text ? 1 : 0)
                         : text || IsDateTime(type.id) ? 3
                                                       : 2},
            number ? Value(std::int64_t{type.id == TypeId::TinyInt}) : Value(),
            std::int64_t{IsMoney(type.id)},
            number ? Value(std::int64_t{0}) : Value(),
            std::string(type.name),
            IsInteger(type.id) || IsDecimal(type.id) ? Value(std::int64_t{0}) : Value(),
            IsDecimal(type.id)   ? Value(std::int64_t{38})
            : IsInteger(type.id) ? Value(std::int64_t{0})
                                 : Value(),
            std::int64_t{IsDateTime(type.id) ? 9 : type.odbc_type},
            IsDateTime(type.id) ? Value(std::int64_t{type.id == TypeId::Date ? 1 : 3}) : Value(),
            number ? Value(std::int64_t{IsApproximate(type.id) ? 2 : 10}) : Value(),
            Value(),
            std::int64_t{type.user_type}};
}

std::int32_t DatatypeInfo(SystemCall& call) {
    const std::int64_t wanted = call.Int("@data_type");
    const std::int64_t version = call.Int("@ODBCVer", 2);
    ProcedureTable table(call.session(), DatatypeColumns());
    std::vector<const SystemType*> types;
    for (const SystemType& type : SystemTypes()) {
        if (wanted == 0 || OdbcNumber(type, version) == wanted) {
            types.push_back(&type);
        }
    }
    std::stable_sort(types.begin(), types.end(),
                     [](const SystemType* a, const SystemType* b) { return a->odbc_type < b->odbc_type; });
    for (const SystemType* type : types) {
        table.Row(DatatypeRow(*type, version));
    }
    table.End();
    return 0;
}

/// LIKE with "\\" before a character that stands for itself, as drivers write patterns, and "[_]".
bool LikeName(const std::string& name, const std::string& pattern) {
    return Like(name, pattern, U'\\', true);
}

std::string Pattern(SystemCall& call, std::string_view name) {
    return call.IsNull(name) ? "%" : call.Text(name);
}

/// What drivers ask sp_tables for besides tables, by "%" for one argument and an empty text for the others.
struct TableListing {
    std::string_view argument;
    std::string_view rows; ///< qualifier q, owner o, kind k
};

constexpr std::array<TableListing, 3> kTableListings{{
    {"@table_qualifier", "SELECT name AS q, NULL AS o, NULL AS k FROM master.dbo.sysdatabases"},
    {"@table_owner",
     "SELECT DISTINCT NULL AS q, TABLE_SCHEMA AS o, NULL AS k FROM INFORMATION_SCHEMA.TABLES"},
    {"@table_type",
     "SELECT NULL AS q, NULL AS o, 'SYSTEM TABLE' AS k UNION SELECT NULL, NULL, 'TABLE' UNION SELECT "
     "NULL, NULL, 'VIEW'"},
}};

const TableListing* ListingAskedFor(const SystemCall& call) {
    const TableListing* asked = nullptr;
    for (const std::string_view name : {"@table_name", "@table_owner", "@table_qualifier", "@table_type"}) {
        const auto* const listing = std::find_if(kTableListings.begin(), kTableListings.end(),
                                                 [&](const TableListing& l) { return l.argument == name; });
        if (call.Text(name) == "%" && listing != kTableListings.end() && asked == nullptr) {
            asked = listing;
        } else if (!call.Text(name).empty() || (name != "@table_type" && call.IsNull(name))) {
            return nullptr;
        }
    }
    return asked;
}

std::int32_t Tables(SystemCall& call) {
    if (const TableListing* const listing = ListingAskedFor(call)) {
        call.Run("SELECT CONVERT(sysname, q) AS TABLE_QUALIFIER, CONVERT(sysname, o) AS TABLE_OWNER, "
                 "CONVERT(sysname, "
                 "NULL) AS TABLE_NAME, CONVERT(varchar(32), k) AS TABLE_TYPE, CONVERT(varchar(254), NULL) AS "
                 "REMARKS "
                 "FROM (" +
                 std::string(listing->rows) + ") l ORDER BY q, o, k");
        return 0;
    }
    std::string types = AsciiUpper(call.Text("@table_type"));
    if (types.empty()) {
        types = "'TABLE','VIEW','SYSTEM TABLE'";
    }
    call.Run(
        "SELECT CONVERT(sysname, DB_NAME()) AS TABLE_QUALIFIER, CONVERT(sysname, TABLE_SCHEMA) AS "
        "TABLE_OWNER, "
        "CONVERT(sysname, TABLE_NAME) AS TABLE_NAME, CONVERT(varchar(32), CASE TABLE_TYPE WHEN 'VIEW' THEN "
        "'VIEW' ELSE "
        "'TABLE' END) AS TABLE_TYPE, CONVERT(varchar(254), NULL) AS REMARKS FROM INFORMATION_SCHEMA.TABLES "
        "WHERE TABLE_NAME LIKE @p1 AND TABLE_SCHEMA LIKE @p2 AND CHARINDEX('''' + CASE TABLE_TYPE WHEN "
        "'VIEW' THEN "
        "'VIEW' ELSE 'TABLE' END + '''', @p3) > 0 ORDER BY TABLE_TYPE, TABLE_OWNER, TABLE_NAME",
        {Pattern(call, "@table_name"), Pattern(call, "@table_owner"), types});
    return 0;
}

/// One row of sp_columns and sp_sproc_columns: what both tell of a type.
struct TypeFacts {
    std::int64_t data_type;
    std::string name;
    std::int64_t precision;
    std::int64_t length;
    Value scale;
    Value radix;
    Value octets;
    std::int64_t sql_data_type;
    Value datetime_sub;
    std::int64_t ss_type;
};

TypeFacts FactsOf(const Type& type, const std::string& user_type, bool nullable, bool identity) {
    const SystemType& system = SystemTypeOf(type.id);
    TypeFacts facts{};
    facts.data_type = type.length == kMaxLength ? (IsUnicode(type.id)     ? -10
                                                   : IsCharacter(type.id) ? -1
                                                                          : -4)
                                                : system.odbc_type;
    facts.name = (user_type.empty() ? std::string(system.name) : user_type.substr(user_type.find('.') + 1)) +
                 (identity ? " identity" : "");
    const std::optional<std::int32_t> scale = TypeScale(type);
    facts.precision =
        type.length == kMaxLength ? (IsUnicode(type.id) ? 1073741823 : 2147483647) : TypePrecision(type);
    facts.length = IsDecimal(type.id) || IsMoney(type.id)           ? facts.precision + 2
                   : type.id == TypeId::Date                        ? 6
                   : IsDateTime(type.id)                            ? 16
                   : IsOldLob(type.id) || type.length == kMaxLength ? 2147483647
                                                                    : StorageBytes(type);
    facts.scale = IsNumber(type.id) && !IsApproximate(type.id) && scale ? Value(std::int64_t{*scale})
                  : type.id == TypeId::DateTime                         ? Value(std::int64_t{3})
                  : type.id == TypeId::SmallDateTime                    ? Value(std::int64_t{0})
                                                                        : Value();
    facts.radix = IsNumber(type.id) && type.id != TypeId::Bit
                      ? Value(std::int64_t{IsApproximate(type.id) ? 2 : 10})
                      : Value();
    facts.octets = IsCharacter(type.id) || IsBinary(type.id) ? Value(facts.length) : Value();
    facts.sql_data_type = IsDateTime(type.id) ? 9 : facts.data_type;
    facts.datetime_sub = IsDateTime(type.id) ? Value(std::int64_t{type.id == TypeId::Date ? 1 : 3}) : Value();
    // The nullable form of the type, as the data stream calls it.
    struct NullableForm {
        TypeId id;
        std::int64_t form;
    };
    constexpr NullableForm kForms[] = {
        {TypeId::Decimal, 106},      {TypeId::Numeric, 108},    {TypeId::Int, 38},
        {TypeId::SmallInt, 38},      {TypeId::TinyInt, 38},     {TypeId::BigInt, 108},
        {TypeId::Bit, 50},           {TypeId::Real, 109},       {TypeId::Float, 109},
        {TypeId::Money, 110},        {TypeId::SmallMoney, 110}, {TypeId::DateTime, 111},
        {TypeId::SmallDateTime, 111}};
    facts.ss_type = system.tds_type;
    for (const NullableForm& form : kForms) {
        if (nullable && form.id == type.id) {
            facts.ss_type = form.form;
        }
    }
    return facts;
}

/// All that match: sysobjects of the database by pattern.
struct ListedObject {
    std::int64_t id;
    std::string schema;
    std::string name;
};

std::vector<ListedObject> Matching(SystemCall& call, std::string_view types, const std::string& name,
                                   const std::string& owner) {
    SqliteStatement row = call.session().databases().Current().Prepare(
        "SELECT id, schema, name FROM {db}.devsql_objects WHERE type IN (" + std::string(types) +
        ") ORDER BY schema, name");
    std::vector<ListedObject> list;
    while (row.Step()) {
        ListedObject object{row.Int(0), row.Text(1), row.Text(2)};
        if (LikeName(object.name, name) && LikeName(object.schema, owner)) {
            list.push_back(std::move(object));
        }
    }
    return list;
}

std::int32_t Columns(SystemCall& call) {
    SessionCore& session = call.session();
    ProcedureTable table(session, {{"TABLE_QUALIFIER", kSysName, true, false},
                                   {"TABLE_OWNER", kSysName, true, false},
                                   {"TABLE_NAME", kSysName, false, false},
                                   {"COLUMN_NAME", kSysName, false, false},
                                   {"DATA_TYPE", kSmallInt, false, false},
                                   {"TYPE_NAME", kSysName, false, false},
                                   {"PRECISION", kInt, true, false},
                                   {"LENGTH", kInt, true, false},
                                   {"SCALE", kSmallInt, true, false},
                                   {"RADIX", kSmallInt, true, false},
                                   {"NULLABLE", kSmallInt, false, false},
                                   {"REMARKS", Sized(TypeId::VarChar, 254), true, false},
                                   {"COLUMN_DEF", Sized(TypeId::NVarChar, 4000), true, false},
                                   {"SQL_DATA_TYPE", kSmallInt, false, false},
                                   {"SQL_DATETIME_SUB", kSmallInt, true, false},
                                   {"CHAR_OCTET_LENGTH", kInt, true, false},
                                   {"ORDINAL_POSITION", kInt, false, false},
                                   {"IS_NULLABLE", Sized(TypeId::VarChar, 254), true, false},
                                   {"SS_DATA_TYPE", Simple(TypeId::TinyInt), true, false}});
    for (const ListedObject& object :
         Matching(call, "'U', 'V'", Pattern(call, "@table_name"), Pattern(call, "@table_owner"))) {
        SqliteStatement row = session.databases().Current().Prepare(
            "SELECT name, type, length, precision, scale, nullable, "
            "identity, default_text, user_type FROM {db}.devsql_columns "
            "WHERE object = ?1 ORDER BY position");
        row.BindInt(1, object.id);
        std::int64_t ordinal = 0;
        while (row.Step()) {
            ++ordinal;
            if (!LikeName(row.Text(0), Pattern(call, "@column_name"))) {
                continue;
            }
            const Type type{static_cast<TypeId>(row.Int(1)), static_cast<std::int32_t>(row.Int(2)),
                            static_cast<std::uint8_t>(row.Int(3)), static_cast<std::uint8_t>(row.Int(4))};
            const bool nullable = row.Int(5) != 0;
            const TypeFacts facts = FactsOf(type, row.Text(8), nullable, row.Int(6) != 0);
            table.Row({session.databases().CurrentName(), object.schema, object.name, row.Text(0),
                       facts.data_type, facts.name, facts.precision, facts.length, facts.scale, facts.radix,
                       std::int64_t{nullable}, Value(), TextOrNull(row.Text(7)), facts.sql_data_type,
                       facts.datetime_sub, facts.octets, ordinal, std::string(nullable ? "YES" : "NO"),
                       facts.ss_type});
        }
    }
    table.End();
    return 0;
}

std::int32_t StoredProcedures(SystemCall& call) {
    SessionCore& session = call.session();
    ProcedureTable table(session, {{"PROCEDURE_QUALIFIER", kSysName, true, false},
                                   {"PROCEDURE_OWNER", kSysName, true, false},
                                   {"PROCEDURE_NAME", Sized(TypeId::NVarChar, 134), false, false},
                                   {"NUM_INPUT_PARAMS", kInt, false, false},
                                   {"NUM_OUTPUT_PARAMS", kInt, false, false},
                                   {"NUM_RESULT_SETS", kInt, false, false},
                                   {"REMARKS", Sized(TypeId::VarChar, 254), true, false},
                                   {"PROCEDURE_TYPE", kSmallInt, false, false}});
    for (const ListedObject& object :
         Matching(call, "'P'", Pattern(call, "@sp_name"), Pattern(call, "@sp_owner"))) {
        table.Row({session.databases().CurrentName(), object.schema, object.name + ";1", std::int64_t{-1},
                   std::int64_t{-1}, std::int64_t{-1}, Value(), std::int64_t{2}});
    }
    table.End();
    return 0;
}

/// The columns of sp_sproc_columns.
std::vector<Column> ProcedureColumnColumns() {
    return {{"PROCEDURE_QUALIFIER", kSysName, true, false},
            {"PROCEDURE_OWNER", kSysName, true, false},
            {"PROCEDURE_NAME", Sized(TypeId::NVarChar, 134), false, false},
            {"COLUMN_NAME", kSysName, false, false},
            {"COLUMN_TYPE", kSmallInt, false, false},
            {"DATA_TYPE", kSmallInt, false, false},
            {"TYPE_NAME", kSysName, false, false},
            {"PRECISION", kInt, true, false},
            {"LENGTH", kInt, true, false},
            {"SCALE", kSmallInt, true, false},
            {"RADIX", kSmallInt, true, false},
            {"NULLABLE", kSmallInt, false, false},
            {"REMARKS", Sized(TypeId::VarChar, 254), true, false},
            {"COLUMN_DEF", Sized(TypeId::NVarChar, 4000), true, false},
            {"SQL_DATA_TYPE", kSmallInt, false, false},
            {"SQL_DATETIME_SUB", kSmallInt, true, false},
            {"CHAR_OCTET_LENGTH", kInt, true, false},
            {"ORDINAL_POSITION", kInt, false, false},
            {"IS_NULLABLE", Sized(TypeId::VarChar, 254), true, false},
            {"SS_DATA_TYPE", Simple(TypeId::TinyInt), true, false}};
}

/// A row of sp_sproc_columns: a parameter, or the return value, whose `kind` says which.
std::vector<Value> ProcedureColumnRow(SessionCore& session, const ListedObject& object,
                                      const ParameterDef& parameter, std::int64_t kind, std::int64_t ordinal,
                                      bool nullable) {
    const TypeFacts facts = FactsOf(parameter.type, parameter.user_type, true, false);
    return {session.databases().CurrentName(),
            object.schema,
            object.name + ";1",
            parameter.name,
            kind,
            facts.data_type,
            facts.name,
            facts.precision,
            facts.length,
            facts.scale,
            facts.radix,
            std::int64_t{nullable},
            Value(),
            Value(),
            facts.sql_data_type,
            facts.datetime_sub,
            facts.octets,
            ordinal,
            std::string(nullable ? "YES" : "NO"),
            facts.ss_type};
}

std::int32_t ProcedureColumns(SystemCall& call) {
    SessionCore& session = call.session();
    ProcedureTable table(session, ProcedureColumnColumns());
    constexpr std::int64_t kInput = 1;
    constexpr std::int64_t kInputOutput = 2;
    constexpr std::int64_t kReturnValue = 5;
    for (const ListedObject& object :
         Matching(call, "'P'", Pattern(call, "@procedure_name"), Pattern(call, "@procedure_owner"))) {
        if (LikeName("@RETURN_VALUE", Pattern(call, "@column_name"))) {
            ParameterDef result;
            result.name = "@RETURN_VALUE";
            result.type = kInt;
            table.Row(ProcedureColumnRow(session, object, result, kReturnValue, 0, false));
        }
        std::int64_t ordinal = 0;
        for (const ParameterDef& parameter : session.databases().Current().Parameters(object.id)) {
            ++ordinal;
            if (LikeName(parameter.name, Pattern(call, "@column_name"))) {
                const std::int64_t kind = parameter.output ? kInputOutput : kInput;
                table.Row(ProcedureColumnRow(session, object, parameter, kind, ordinal, true));
            }
        }
    }
    table.End();
    return 0;
}

constexpr std::string_view kColumnsParameters =
    "@table_name nvarchar(384), @table_owner nvarchar(384) = NULL, @table_qualifier sysname = NULL, "
    "@column_name nvarchar(384) = NULL, @ODBCVer int = 2, @fUsePattern bit = 1";
constexpr std::string_view kProcedureColumnsParameters =
    "@procedure_name nvarchar(390) = '%', @procedure_owner nvarchar(384) = NULL, @procedure_qualifier "
    "sysname = NULL, @column_name nvarchar(384) = NULL, @ODBCVer int = 2, @fUsePattern bit = 1";
constexpr std::string_view kTypeParameters = "@data_type int = 0, @ODBCVer tinyint = 2";

constexpr SystemProcedure kProcedures[] = {
    {"sp_datatype_info", kTypeParameters, DatatypeInfo},
    {"sp_datatype_info_90", kTypeParameters, DatatypeInfo},
    {"sp_datatype_info_100", kTypeParameters, DatatypeInfo},
    {"sp_tables",
     "@table_name nvarchar(384) = NULL, @table_owner nvarchar(384) = NULL, @table_qualifier sysname = NULL, "
     "@table_type varchar(100) = NULL, @fUsePattern bit = 1",
     Tables},
    {"sp_columns", kColumnsParameters, Columns},
    {"sp_columns_90", kColumnsParameters, Columns},
    {"sp_columns_100", kColumnsParameters, Columns},
    {"sp_stored_procedures",
     "@sp_name nvarchar(390) = NULL, @sp_owner nvarchar(384) = NULL, @sp_qualifier sysname = NULL, "
     "@fUsePattern bit = 1",
     StoredProcedures},
    {"sp_sproc_columns", kProcedureColumnsParameters, ProcedureColumns},
    {"sp_sproc_columns_90", kProcedureColumnsParameters, ProcedureColumns},
    {"sp_sproc_columns_100", kProcedureColumnsParameters, ProcedureColumns},
};

} // namespace

std::span<const SystemProcedure> CatalogueProcedures() {
    return kProcedures;
}

} // namespace devsql

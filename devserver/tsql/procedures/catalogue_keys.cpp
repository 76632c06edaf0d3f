// What drivers ask about the keys of tables: sp_pkeys, sp_fkeys, sp_statistics, sp_special_columns.
#include <algorithm>

#include "devserver/tsql/procedures/catalogue_procedures.h"
#include "devserver/tsql/procedures/procedure_table.h"
#include "devserver/tsql/scalar/like.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

constexpr Type kSmallInt = Simple(TypeId::SmallInt);
constexpr Type kInt = Simple(TypeId::Int);

/// The tables whose name and owner match the parameters' patterns, by owner and name.
std::vector<TablePtr> TablesLike(SystemCall& call, std::string_view name, std::string_view owner) {
    Catalogue& catalogue = call.session().databases().Current();
    std::vector<std::int64_t> found;
    {
        SqliteStatement row = catalogue.Prepare(
            "SELECT id, schema, name FROM {db}.devsql_objects WHERE type = 'U' ORDER BY schema, name");
        const auto fits = [&call](const std::string& text, std::string_view parameter) {
            return call.IsNull(parameter) || Like(text, call.Text(parameter), U'\\', true);
        };
        while (row.Step()) {
            if (fits(row.Text(2), name) && fits(row.Text(1), owner)) {
                found.push_back(row.Int(0));
            }
        }
    }
    std::vector<TablePtr> tables;
    tables.reserve(found.size());
    for (const std::int64_t id : found) {
        tables.push_back(call.session().databases().Table(catalogue, id));
    }
    return tables;
}

const IndexDef* PrimaryKeyOf(const TableDef& table) {
    const auto found = std::find_if(table.indexes.begin(), table.indexes.end(),
                                    [](const IndexDef& index) { return index.primary_key; });
    return found == table.indexes.end() ? nullptr : &*found;
}

std::int32_t PrimaryKeys(SystemCall& call) {
    const std::string database = call.session().databases().CurrentName();
    ProcedureTable rows(call.session(), {{"TABLE_QUALIFIER", kSysName, true, false},
                                         {"TABLE_OWNER", kSysName, true, false},
                                         {"TABLE_NAME", kSysName, false, false},
                                         {"COLUMN_NAME", kSysName, false, false},
                                         {"KEY_SEQ", kSmallInt, false, false},
                                         {"PK_NAME", kSysName, true, false}});
    for (const TablePtr& table : TablesLike(call, "@table_name", "@table_owner")) {
        const IndexDef* key = PrimaryKeyOf(*table);
        std::int64_t sequence = 0;
        for (const KeyColumn& column : key == nullptr ? std::vector<KeyColumn>() : key->columns) {
            rows.Row({database, table->schema, table->name, table->ById(column.column).name, ++sequence,
                      key->name});
        }
    }
    rows.End();
    return 0;
}

// ------------------------------------------------------------------ foreign keys

/// ODBC's numbers of the rules, as the procedure gives them.
std::int64_t RuleOf(OnChange action) {
    switch (action) {
    case OnChange::Cascade:
        return 0;
    case OnChange::SetNull:
        return 2;
    case OnChange::SetDefault:
        return 3;
    case OnChange::NoAction:
        break;
    }
    return 1;
}

bool Fits(SystemCall& call, std::string_view parameter, const std::string& name) {
    return call.IsNull(parameter) || Folded(call.Text(parameter)) == Folded(name);
}

std::int32_t ForeignKeys(SystemCall& call) {
    if (call.IsNull("@pktable_name") && call.IsNull("@fktable_name")) {
        RaiseError(15252);
    }
    SessionCore& session = call.session();
    Catalogue& catalogue = session.databases().Current();
    const std::string database = session.databases().CurrentName();
    ProcedureTable rows(session, {{"PKTABLE_QUALIFIER", kSysName, true, false},
                                  {"PKTABLE_OWNER", kSysName, true, false},
                                  {"PKTABLE_NAME", kSysName, false, false},
                                  {"PKCOLUMN_NAME", kSysName, false, false},
                                  {"FKTABLE_QUALIFIER", kSysName, true, false},
                                  {"FKTABLE_OWNER", kSysName, true, false},
                                  {"FKTABLE_NAME", kSysName, false, false},
                                  {"FKCOLUMN_NAME", kSysName, false, false},
                                  {"KEY_SEQ", kSmallInt, false, false},
                                  {"UPDATE_RULE", kSmallInt, true, false},
                                  {"DELETE_RULE", kSmallInt, true, false},
                                  {"FK_NAME", kSysName, true, false},
                                  {"PK_NAME", kSysName, true, false},
                                  {"DEFERRABILITY", kSmallInt, true, false}});
    constexpr std::int64_t kNotDeferrable = 7;
    for (const TablePtr& table : TablesLike(call, "@fktable_name", "@fktable_owner")) {
        for (const ForeignKeyDef& key : table->foreign_keys) {
            const TablePtr parent = session.databases().Table(catalogue, key.referenced);
            if (!Fits(call, "@pktable_name", parent->name) || !Fits(call, "@pktable_owner", parent->schema)) {
                continue;
            }
            const IndexDef* primary = PrimaryKeyOf(*parent);
            for (std::size_t i = 0; i < key.columns.size(); ++i) {
                rows.Row({database, parent->schema, parent->name,
                          parent->ById(key.referenced_columns[i]).name, database, table->schema, table->name,
                          table->ById(key.columns[i]).name, static_cast<std::int64_t>(i + 1),
                          RuleOf(key.on_update), RuleOf(key.on_delete), key.name,
                          primary == nullptr ? Value() : Value(primary->name), kNotDeferrable});
            }
        }
    }
    rows.End();
    return 0;
}

// ------------------------------------------------------------------ indexes, row identifiers

std::int64_t RowsOf(SessionCore& session, const TableDef& table) {
    SqliteStatement row = session.connection().Prepare("SELECT count(*) FROM " + table.Qualified());
    row.Step();
    return row.Int(0);
}

void IndexRows(ProcedureTable& rows, const std::string& database, const TableDef& table,
               const IndexDef& index) {
    constexpr std::int64_t kClustered = 1;
    constexpr std::int64_t kOther = 3;
    std::int64_t sequence = 0;
    for (const KeyColumn& column : index.columns) {
        rows.Row({database, table.schema, table.name, std::int64_t{!index.unique}, table.name, index.name,
                  index.clustered ? kClustered : kOther, ++sequence, table.ById(column.column).name,
                  std::string(column.descending ? "D" : "A"), Value(), Value(), Value()});
    }
}

std::int32_t Statistics(SystemCall& call) {
    SessionCore& session = call.session();
    const std::string database = session.databases().CurrentName();
    ProcedureTable rows(session, {{"TABLE_QUALIFIER", kSysName, true, false},
                                  {"TABLE_OWNER", kSysName, true, false},
                                  {"TABLE_NAME", kSysName, false, false},
                                  {"NON_UNIQUE", kSmallInt, true, false},
                                  {"INDEX_QUALIFIER", kSysName, true, false},
                                  {"INDEX_NAME", kSysName, true, false},
                                  {"TYPE", kSmallInt, false, false},
                                  {"SEQ_IN_INDEX", kSmallInt, true, false},
                                  {"COLUMN_NAME", kSysName, true, false},
                                  {"COLLATION", Sized(TypeId::Char, 1), true, false},
                                  {"CARDINALITY", kInt, true, false},
                                  {"PAGES", kInt, true, false},
                                  {"FILTER_CONDITION", Sized(TypeId::VarChar, 128), true, false}});
    const bool unique_only = AsciiEqual(call.Text("@is_unique"), "Y");
    for (const TablePtr& table : TablesLike(call, "@table_name", "@table_owner")) {
        rows.Row({database, table->schema, table->name, Value(), Value(), Value(), std::int64_t{0}, Value(),
                  Value(), Value(), RowsOf(session, *table), Value(), Value()});
        std::vector<const IndexDef*> indexes;
        for (const IndexDef& index : table->indexes) {
            if ((index.unique || !unique_only) &&
                (call.IsNull("@index_name") || Like(index.name, call.Text("@index_name"), U'\\', true))) {
                indexes.push_back(&index);
            }
        }
        std::stable_sort(indexes.begin(), indexes.end(), [](const IndexDef* a, const IndexDef* b) {
            return a->unique != b->unique ? a->unique : a->clustered && !b->clustered;
        });
        for (const IndexDef* index : indexes) {
            IndexRows(rows, database, *table, *index);
        }
    }
    rows.End();
    return 0;
}

/// The columns that tell a row from all others ('R'), or that every change of the row changes ('V').
std::vector<int> SpecialColumns(const TableDef& table, bool version) {
    std::vector<int> columns;
    if (version) {
        for (const ColumnDef& column : table.columns) {
            if (column.type.id == TypeId::Timestamp) {
                columns.push_back(column.id);
            }
        }
        return columns;
    }
    const IndexDef* best = PrimaryKeyOf(table);
    for (const IndexDef& index : table.indexes) {
        if (best == nullptr && index.unique) {
            best = &index;
        }
    }
    for (const KeyColumn& column : best == nullptr ? std::vector<KeyColumn>() : best->columns) {
        columns.push_back(column.column);
    }
    return columns;
}

std::int32_t RowIdentifiers(SystemCall& call) {
    ProcedureTable rows(call.session(), {{"SCOPE", kSmallInt, true, false},
                                         {"COLUMN_NAME", kSysName, false, false},
                                         {"DATA_TYPE", kSmallInt, false, false},
                                         {"TYPE_NAME", kSysName, false, false},
                                         {"PRECISION", kInt, true, false},
                                         {"LENGTH", kInt, true, false},
                                         {"SCALE", kSmallInt, true, false},
                                         {"PSEUDO_COLUMN", kSmallInt, true, false}});
    constexpr std::int64_t kSession = 2;
    constexpr std::int64_t kNotPseudo = 1;
    const bool version = AsciiEqual(call.Text("@col_type"), "V");
    for (const TablePtr& table : TablesLike(call, "@table_name", "@table_owner")) {
        for (const int id : SpecialColumns(*table, version)) {
            const ColumnDef& column = table->ById(id);
            const SystemType& type = SystemTypeOf(column.type.id);
            const std::optional<std::int32_t> scale = TypeScale(column.type);
            rows.Row({version ? Value() : Value(kSession), column.name, std::int64_t{type.odbc_type},
                      std::string(type.name) + (column.identity ? " identity" : ""),
                      std::int64_t{TypePrecision(column.type)}, std::int64_t{StorageBytes(column.type)},
                      scale ? Value(std::int64_t{*scale}) : Value(), kNotPseudo});
        }
    }
    rows.End();
    return 0;
}

constexpr std::string_view kStatisticsParameters = "@table_name sysname, @table_owner sysname = NULL, "
                                                   "@table_qualifier sysname = NULL, @index_name sysname = "
                                                   "'%', "
                                                   "@is_unique char(1) = 'N', @accuracy char(1) = 'Q'";
constexpr std::string_view kSpecialParameters =
    "@table_name sysname, @table_owner sysname = NULL, @qualifier sysname = NULL, @col_type char(1) = 'R', "
    "@scope char(1) = 'T', @nullable char(1) = 'U', @ODBCVer int = 2";

constexpr SystemProcedure kProcedures[] = {
    {"sp_pkeys", "@table_name sysname, @table_owner sysname = NULL, @table_qualifier sysname = NULL",
     PrimaryKeys},
    {"sp_fkeys",
     "@pktable_name sysname = NULL, @pktable_owner sysname = NULL, @pktable_qualifier sysname = NULL, "
     "@fktable_name sysname = NULL, @fktable_owner sysname = NULL, @fktable_qualifier sysname = NULL",
     ForeignKeys},
    {"sp_statistics", kStatisticsParameters, Statistics},
    {"sp_statistics_100", kStatisticsParameters, Statistics},
    {"sp_special_columns", kSpecialParameters, RowIdentifiers},
    {"sp_special_columns_90", kSpecialParameters, RowIdentifiers},
    {"sp_special_columns_100", kSpecialParameters, RowIdentifiers},
};

} // namespace

std::span<const SystemProcedure> KeyProcedures() {
    return kProcedures;
}

} // namespace devsql

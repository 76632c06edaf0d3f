// Makes the catalogue's tables in SQLite, and reads and writes objects, parameters and user types. Tables and
// their columns are in catalogue_tables.cpp.
#include "devserver/storage/catalogue.h"

#include <algorithm>
#include <stdexcept>

#include "devserver/storage/catalogue_rows.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {
namespace {

constexpr std::string_view kSchema = R"(
CREATE TABLE {db}.devsql_objects(id INTEGER PRIMARY KEY, schema TEXT COLLATE TSQL, name TEXT COLLATE TSQL, type TEXT,
    parent INTEGER, text TEXT, quoted_identifier INTEGER, ansi_nulls INTEGER, encrypted INTEGER, shipped INTEGER,
    created INTEGER, disabled INTEGER DEFAULT 0);
CREATE UNIQUE INDEX {db}.devsql_objects_name ON devsql_objects(name, schema);
CREATE INDEX {db}.devsql_objects_parent ON devsql_objects(parent);
CREATE TABLE {db}.devsql_columns(object INTEGER, id INTEGER, position INTEGER, name TEXT COLLATE TSQL, type INTEGER,
    length INTEGER, precision INTEGER, scale INTEGER, user_type TEXT, nullable INTEGER, identity INTEGER, seed INTEGER,
    increment INTEGER, row_guid INTEGER, default_text TEXT, default_name TEXT, default_id INTEGER, computed TEXT,
    output INTEGER, has_default INTEGER, PRIMARY KEY(object, id)) WITHOUT ROWID;
CREATE TABLE {db}.devsql_indexes(object INTEGER, id INTEGER, name TEXT COLLATE TSQL, is_unique INTEGER,
    primary_key INTEGER, is_constraint INTEGER, clustered INTEGER, PRIMARY KEY(object, id)) WITHOUT ROWID;
CREATE TABLE {db}.devsql_index_columns(object INTEGER, id INTEGER, ordinal INTEGER, column_id INTEGER,
    descending INTEGER, PRIMARY KEY(object, id, ordinal)) WITHOUT ROWID;
CREATE TABLE {db}.devsql_foreign_keys(id INTEGER PRIMARY KEY, object INTEGER, referenced INTEGER, on_delete INTEGER,
    on_update INTEGER);
CREATE TABLE {db}.devsql_foreign_key_columns(id INTEGER, ordinal INTEGER, column_id INTEGER,
    referenced_column INTEGER, PRIMARY KEY(id, ordinal)) WITHOUT ROWID;
CREATE TABLE {db}.devsql_identities(object INTEGER PRIMARY KEY, value INTEGER);
CREATE TABLE {db}.devsql_types(schema TEXT COLLATE TSQL, name TEXT COLLATE TSQL, type INTEGER, length INTEGER,
    precision INTEGER, scale INTEGER, nullable INTEGER, PRIMARY KEY(name, schema));
CREATE TABLE {db}.devsql_users(id INTEGER PRIMARY KEY, name TEXT COLLATE TSQL UNIQUE, login TEXT COLLATE TSQL,
    role INTEGER, created INTEGER);
CREATE TABLE {db}.devsql_members(role INTEGER, member INTEGER, PRIMARY KEY(role, member)) WITHOUT ROWID;
CREATE TABLE {db}.devsql_schemas(name TEXT COLLATE TSQL PRIMARY KEY, owner TEXT COLLATE TSQL);
CREATE TABLE {db}.devsql_permissions(object INTEGER, grantee INTEGER, permission TEXT, state TEXT,
    PRIMARY KEY(object, grantee, permission)) WITHOUT ROWID;
CREATE TABLE {db}.devsql_settings(name TEXT PRIMARY KEY, value);
INSERT INTO {db}.devsql_settings VALUES('timestamp', 2000), ('next_id', 21575115);
INSERT INTO {db}.devsql_schemas VALUES('dbo', 'dbo');
INSERT INTO {db}.devsql_users VALUES(0, 'public', NULL, 1, 0), (1, 'dbo', 'sa', 0, 0), (2, 'guest', NULL, 0, 0),
    (3, 'INFORMATION_SCHEMA', NULL, 0, 0), (4, 'sys', NULL, 0, 0),
    (16384, 'db_owner', NULL, 1, 0), (16385, 'db_accessadmin', NULL, 1, 0), (16386, 'db_securityadmin', NULL, 1, 0),
    (16387, 'db_ddladmin', NULL, 1, 0), (16389, 'db_backupoperator', NULL, 1, 0), (16390, 'db_datareader', NULL, 1, 0),
    (16391, 'db_datawriter', NULL, 1, 0), (16392, 'db_denydatareader', NULL, 1, 0),
    (16393, 'db_denydatawriter', NULL, 1, 0);
INSERT INTO {db}.devsql_members VALUES(16384, 1);
)";

/// Replaces each "{db}" by the quoted alias.
std::string WithAlias(std::string_view text, const std::string& alias) {
    const std::string quoted = QuoteName(alias);
    std::string result;
    std::size_t at = 0;
    for (std::size_t found = text.find("{db}"); found != std::string_view::npos;
         found = text.find("{db}", at)) {
        result += text.substr(at, found - at);
        result += quoted;
        at = found + 4;
    }
    return result += text.substr(at);
}

/// The local time in the form of a datetime, see codec.h.
std::int64_t NowTicks() {
    const DateTime now = Now();
    return std::int64_t{now.days} * kTicksPerDay + now.ticks;
}

ObjectDef ReadObject(const SqliteStatement& row) {
    ObjectDef object;
    object.id = row.Int(0);
    object.schema = row.Text(1);
    object.name = row.Text(2);
    object.type = row.Text(3);
    object.parent = row.Int(4);
    object.text = row.Text(5);
    object.quoted_identifier = row.Int(6) != 0;
    object.ansi_nulls = row.Int(7) != 0;
    object.encrypted = row.Int(8) != 0;
    object.shipped = row.Int(9) != 0;
    return object;
}

constexpr std::string_view kObjectFields =
    "id, schema, name, type, parent, text, quoted_identifier, ansi_nulls, encrypted, shipped";

} // namespace

bool IsTableOrModule(std::string_view object_type) {
    return object_type == "U" || object_type == "V" || object_type == "P" || object_type == "FN" ||
           object_type == "TR";
}

// ------------------------------------------------------------------ definitions

const ColumnDef* TableDef::Find(std::string_view column) const {
    for (const ColumnDef& candidate : columns) {
        if (SameText(candidate.name, column)) {
            return &candidate;
        }
    }
    return nullptr;
}

const ColumnDef& TableDef::ById(int column) const {
    return columns[IndexOf(column)];
}

std::size_t TableDef::IndexOf(int column) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].id == column) {
            return i;
        }
    }
    throw std::logic_error("no such column id in " + name);
}

const ColumnDef* TableDef::IdentityColumn() const {
    const auto found =
        std::find_if(columns.begin(), columns.end(), [](const ColumnDef& c) { return c.identity; });
    return found == columns.end() ? nullptr : &*found;
}

std::string TableDef::Qualified() const {
    return QuoteName(alias) + "." + QuoteName(physical);
}

std::string RowIdName(const TableDef& table) {
    for (const char* name : {"rowid", "_rowid_", "oid"}) {
        if (table.Find(name) == nullptr) {
            return name;
        }
    }
    RaiseError(40517, {"columns named rowid, _rowid_ and oid in one table"});
}

std::string CreateTableText(const TableDef& table) {
    std::string text = "CREATE TABLE " + table.Qualified() + "(";
    for (const ColumnDef& column : table.columns) {
        // No declared types: SQLite must not convert the forms of codec.h.
        text += (&column == &table.columns.front() ? "" : ", ") + QuoteName(column.name);
        if (IsCharacter(column.type.id)) {
            text += " COLLATE " + std::string(kCollation);
        }
    }
    return text + ")";
}

namespace {
std::string IndexName(const TableDef& table, const IndexDef& index) {
    return "ix_" + std::to_string(table.id) + "_" + std::to_string(index.id);
}
} // namespace

std::string CreateIndexText(const TableDef& table, const IndexDef& index) {
    std::string text = std::string("CREATE ") + (index.unique ? "UNIQUE " : "") + "INDEX " +
                       QuoteName(table.alias) + "." + QuoteName(IndexName(table, index)) + " ON " +
                       QuoteName(table.physical) + "(";
    for (const KeyColumn& key : index.columns) {
        const ColumnDef& column = table.ById(key.column);
        std::string item = QuoteName(column.name);
        if (index.unique && column.nullable) {
            // In a unique index T-SQL treats two NULLs as equal, SQLite does not: this blob replaces NULL.
            item = "coalesce(" + item + ", x'00DEADBEEF00')";
        }
        if (IsCharacter(column.type.id)) {
            item += " COLLATE " + std::string(kCollation);
        }
        text += (&key == &index.columns.front() ? "" : ", ") + item + (key.descending ? " DESC" : "");
    }
    return text + ")";
}

std::string DropIndexText(const TableDef& table, const IndexDef& index) {
    return "DROP INDEX " + QuoteName(table.alias) + "." + QuoteName(IndexName(table, index));
}

// ------------------------------------------------------------------ the catalogue

Catalogue::Catalogue(SqliteConnection& connection, std::string alias)
    : connection_(connection), alias_(std::move(alias)) {}

SqliteStatement Catalogue::Prepare(std::string_view text) {
    return connection_.Prepare(WithAlias(text, alias_));
}

void Catalogue::Create() {
    connection_.Execute(WithAlias(kSchema, alias_));
}

std::int64_t Catalogue::Version() {
    SqliteStatement row = Prepare("PRAGMA {db}.user_version");
    return row.Step() ? row.Int(0) : 0;
}

void Catalogue::Touch() {
    connection_.Execute("PRAGMA " + QuoteName(alias_) + ".user_version = " + std::to_string(Version() + 1));
}

std::optional<ObjectDef> Catalogue::FindObject(std::string_view schema, std::string_view name) {
    SqliteStatement row = Prepare("SELECT " + std::string(kObjectFields) +
                                  " FROM {db}.devsql_objects WHERE name = ?1 AND schema = ?2");
    row.BindText(1, name).BindText(2, schema);
    return row.Step() ? std::optional(ReadObject(row)) : std::nullopt;
}

std::optional<ObjectDef> Catalogue::FindObject(std::int64_t id) {
    SqliteStatement row =
        Prepare("SELECT " + std::string(kObjectFields) + " FROM {db}.devsql_objects WHERE id = ?1");
    row.BindInt(1, id);
    return row.Step() ? std::optional(ReadObject(row)) : std::nullopt;
}

std::int64_t Catalogue::NextId() {
    // As on SQL Server, ids are far apart and fit a signed int.
    Prepare("UPDATE {db}.devsql_settings SET value = value + 16000057 - "
            "CASE WHEN value > 2100000000 THEN 2099000019 ELSE 0 END WHERE name = 'next_id'")
        .Run();
    SqliteStatement row = Prepare("SELECT value FROM {db}.devsql_settings WHERE name = 'next_id'");
    row.Step();
    const std::int64_t id = row.Int(0);
    return FindObject(id) ? NextId() : id;
}

std::int64_t Catalogue::AddObject(ObjectDef object) {
    if (object.id == 0) {
        object.id = NextId();
    }
    SqliteStatement insert = Prepare("INSERT INTO {db}.devsql_objects(id, schema, name, type, parent, text, "
                                     "quoted_identifier, ansi_nulls, encrypted, shipped, created) "
                                     "VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)");
    insert.BindInt(1, object.id).BindText(2, object.schema).BindText(3, object.name).BindText(4, object.type);
    insert.BindInt(5, object.parent).BindText(6, object.text).BindInt(7, object.quoted_identifier);
    insert.BindInt(8, object.ansi_nulls).BindInt(9, object.encrypted).BindInt(10, object.shipped);
    insert.BindInt(11, NowTicks()).Run();
    Touch();
    return object.id;
}

void Catalogue::ReplaceText(const ObjectDef& object) {
    SqliteStatement update = Prepare("UPDATE {db}.devsql_objects SET text = ?2, quoted_identifier = ?3, "
                                     "ansi_nulls = ?4, encrypted = ?5 WHERE id = ?1");
    update.BindInt(1, object.id).BindText(2, object.text).BindInt(3, object.quoted_identifier);
    update.BindInt(4, object.ansi_nulls).BindInt(5, object.encrypted).Run();
    Touch();
}

void Catalogue::RemoveObject(std::int64_t id) {
    for (const std::string_view text : {R"(DELETE FROM {db}.devsql_foreign_key_columns WHERE id IN
                 (SELECT id FROM {db}.devsql_foreign_keys WHERE object = ?1 OR id = ?1))",
                                        "DELETE FROM {db}.devsql_foreign_keys WHERE object = ?1 OR id = ?1",
                                        "DELETE FROM {db}.devsql_columns WHERE object = ?1",
                                        "DELETE FROM {db}.devsql_indexes WHERE object = ?1",
                                        "DELETE FROM {db}.devsql_index_columns WHERE object = ?1",
                                        "DELETE FROM {db}.devsql_identities WHERE object = ?1",
                                        "DELETE FROM {db}.devsql_permissions WHERE object = ?1",
                                        "DELETE FROM {db}.devsql_objects WHERE id = ?1 OR parent = ?1"}) {
        Prepare(text).BindInt(1, id).Run();
    }
    Touch();
}

void Catalogue::RenameObject(std::int64_t id, std::string_view name) {
    const std::optional<ObjectDef> object = FindObject(id);
    if (object && object->type == "U") {
        const std::string physical = PhysicalName(object->schema, name);
        connection_.Execute("ALTER TABLE " + QuoteName(alias_) + "." +
                            QuoteName(PhysicalName(object->schema, object->name)) + " RENAME TO " +
                            QuoteName(physical));
    }
    Prepare("UPDATE {db}.devsql_objects SET name = ?2 WHERE id = ?1").BindInt(1, id).BindText(2, name).Run();
    if (object && (object->type == "PK" || object->type == "UQ")) {
        Prepare("UPDATE {db}.devsql_indexes SET name = ?2 WHERE object = ?1 AND name = ?3")
            .BindInt(1, object->parent)
            .BindText(2, name)
            .BindText(3, object->name)
            .Run();
    }
    Touch();
}

// ------------------------------------------------------------------ procedures, views, types

std::vector<ParameterDef> Catalogue::Parameters(std::int64_t procedure) {
    std::vector<ParameterDef> parameters;
    SqliteStatement row =
        Prepare("SELECT name, type, length, precision, scale, user_type, default_text, has_default, "
                "output FROM {db}.devsql_columns WHERE object = ?1 ORDER BY id");
    row.BindInt(1, procedure);
    while (row.Step()) {
        parameters.push_back(
            {row.Text(0), ReadType(row, 1), row.Text(5), row.Text(6), row.Int(7) != 0, row.Int(8) != 0});
    }
    return parameters;
}

void Catalogue::SetParameters(std::int64_t procedure, const std::vector<ParameterDef>& parameters) {
    Prepare("DELETE FROM {db}.devsql_columns WHERE object = ?1").BindInt(1, procedure).Run();
    int id = 1;
    for (const ParameterDef& parameter : parameters) {
        SqliteStatement insert = Prepare(
            "INSERT INTO {db}.devsql_columns(object, id, position, name, type, length, precision, scale, "
            "user_type, nullable, default_text, has_default, output) "
            "VALUES(?1, ?2, ?2, ?3, ?4, ?5, ?6, ?7, ?8, 1, ?9, ?10, ?11)");
        insert.BindInt(1, procedure).BindInt(2, id++).BindText(3, parameter.name);
        BindTypeAt(insert, 4, parameter.type);
        insert.BindText(8, parameter.user_type).BindText(9, parameter.default_text);
        insert.BindInt(10, parameter.has_default).BindInt(11, parameter.output).Run();
    }
    Touch();
}

void Catalogue::SetViewColumns(std::int64_t view, const std::vector<ColumnDef>& columns) {
    Prepare("DELETE FROM {db}.devsql_columns WHERE object = ?1").BindInt(1, view).Run();
    int position = 0;
    for (const ColumnDef& column : columns) {
        AddColumn(view, column, position++);
    }
    Touch();
}

std::optional<UserTypeDef> Catalogue::FindType(std::string_view schema, std::string_view name) {
    SqliteStatement row =
        Prepare("SELECT schema, name, type, length, precision, scale, nullable FROM {db}.devsql_types "
                "WHERE name = ?1 AND (schema = ?2 OR ?2 = '')");
    row.BindText(1, name).BindText(2, schema);
    if (!row.Step()) {
        return std::nullopt;
    }
    return UserTypeDef{row.Text(0), row.Text(1), ReadType(row, 2), row.Int(6) != 0};
}

void Catalogue::AddType(const UserTypeDef& type) {
    SqliteStatement insert = Prepare("INSERT INTO {db}.devsql_types VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7)");
    insert.BindText(1, type.schema).BindText(2, type.name);
    BindTypeAt(insert, 3, type.type);
    insert.BindInt(7, type.nullable).Run();
    Touch();
}

bool Catalogue::RemoveType(std::string_view schema, std::string_view name) {
    Prepare("DELETE FROM {db}.devsql_types WHERE name = ?1 AND (schema = ?2 OR ?2 = '')")
        .BindText(1, name)
        .BindText(2, schema)
        .Run();
    const bool removed = connection_.Changes() > 0;
    Touch();
    return removed;
}

} // namespace devsql

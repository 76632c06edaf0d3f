// The catalogue of a database: tables, columns, keys, procedures, users, kept in tables named devsql_… in the
// file of the database, so that the file is complete. One Catalogue belongs to one attached database of one
// connection. Knows nothing of T-SQL's grammar: expressions are texts here.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/engine/value.h"
#include "devserver/storage/sqlite.h"

namespace devsql {

struct ColumnDef {
    int id = 0; ///< from 1, never used twice
    std::string name;
    Type type;
    std::string user_type; ///< "dbo.LKName"; empty for the system's types
    bool nullable = true;
    bool identity = false;
    std::int64_t seed = 0;
    std::int64_t increment = 0;
    bool row_guid = false;
    std::string default_text; ///< with its parentheses; empty for none
    std::string default_name;
    std::string computed; ///< expression of a computed column; empty for a stored one
};

struct KeyColumn {
    int column = 0; ///< id
    bool descending = false;
};

struct IndexDef {
    int id = 0; ///< 1 the clustered one
    std::string name;
    bool unique = false;
    bool primary_key = false;
    bool constraint = false; ///< PRIMARY KEY or UNIQUE, not CREATE INDEX
    bool clustered = false;
    std::vector<KeyColumn> columns;
};

enum class OnChange : std::uint8_t { NoAction, Cascade, SetNull, SetDefault };

struct ForeignKeyDef {
    std::int64_t id = 0;
    std::string name;
    std::int64_t table = 0;
    std::int64_t referenced = 0;
    std::vector<int> columns; ///< ids
    std::vector<int> referenced_columns;
    OnChange on_delete = OnChange::NoAction;
    OnChange on_update = OnChange::NoAction;
    bool disabled = false;
};

struct CheckDef {
    std::int64_t id = 0;
    std::string name;
    std::string text;
    bool disabled = false;
};

struct TriggerDef {
    std::int64_t id = 0;
    std::string name;
    bool disabled = false;
};

struct TableDef {
    std::int64_t id = 0;
    std::string alias; ///< of the attached database in SQLite: "main", "db7", "temp"
    std::string schema;
    std::string name;
    std::string physical;           ///< the table's name in SQLite
    std::vector<ColumnDef> columns; ///< in their order
    std::vector<IndexDef> indexes;
    std::vector<ForeignKeyDef> foreign_keys;
    std::vector<ForeignKeyDef> referencing; ///< foreign keys of any table to this one
    std::vector<CheckDef> checks;
    std::vector<TriggerDef> triggers; ///< in the order in which they were made

    /// Ignores case. Returns null for an unknown name.
    const ColumnDef* Find(std::string_view column) const;
    const ColumnDef& ById(int id) const;
    /// Position in `columns`.
    std::size_t IndexOf(int id) const;
    const ColumnDef* IdentityColumn() const;
    /// The table's name in SQLite, with the alias of the database.
    std::string Qualified() const;
};
using TablePtr = std::shared_ptr<const TableDef>;

struct ParameterDef {
    std::string name;
    Type type;
    std::string user_type;
    std::string default_text; ///< empty for none
    bool has_default = false;
    bool output = false;
};

struct ObjectDef {
    std::int64_t id = 0;
    std::string schema;
    std::string name;
    std::string type; ///< "U", "V", "P", "FN", "TR", "PK", "UQ", "F", "C", "D"
    std::int64_t parent = 0;
    std::string text; ///< of modules, checks, defaults
    bool quoted_identifier = true;
    bool ansi_nulls = true;
    bool encrypted = false;
    bool shipped = false; ///< made by the server itself
};

struct UserTypeDef {
    std::string schema;
    std::string name;
    Type type;
    bool nullable = true;
};

/// The types of an object whose name a table, view or procedure shares.
bool IsTableOrModule(std::string_view object_type);

class Catalogue {
  public:
    Catalogue(SqliteConnection& connection, std::string alias);

    /// Makes the catalogue's tables in a new file.
    void Create();
    const std::string& alias() const { return alias_; }

    /// Rises with every change of the catalogue, and falls back with a transaction that is rolled back.
    std::int64_t Version();
    void Touch();

    // ---- objects
    std::optional<ObjectDef> FindObject(std::string_view schema, std::string_view name);
    std::optional<ObjectDef> FindObject(std::int64_t id);
    /// Gives the object an id if it has none, and returns it.
    std::int64_t AddObject(ObjectDef object);
    void ReplaceText(const ObjectDef& object);
    /// Removes the object with its columns, keys and rights.
    void RemoveObject(std::int64_t id);
    void RenameObject(std::int64_t id, std::string_view name);
    std::int64_t NextId();

    // ---- tables
    TablePtr LoadTable(std::int64_t id);
    std::string PhysicalName(std::string_view schema, std::string_view name) const;
    /// The table with its columns, indexes, keys and checks; SQLite's own table and indexes too.
    void AddTable(const TableDef& table);
    void AddColumn(std::int64_t table, const ColumnDef& column, int position);
    void UpdateColumn(std::int64_t table, const ColumnDef& column);
    void RemoveColumn(std::int64_t table, int column);
    void AddIndex(const TableDef& table, const IndexDef& index);
    void RemoveIndex(const TableDef& table, const IndexDef& index);
    void AddForeignKey(const ForeignKeyDef& key);
    void AddCheck(std::int64_t table, const CheckDef& check);
    /// Of a constraint or a trigger.
    void SetDisabled(std::int64_t object, bool disabled);
    /// The last identity value; nothing before the first row.
    std::optional<std::int64_t> IdentityValue(std::int64_t table);
    void SetIdentityValue(std::int64_t table, std::optional<std::int64_t> value);
    std::int64_t NextTimestamp();
    std::int64_t LastTimestamp();

    // ---- procedures and views
    std::vector<ParameterDef> Parameters(std::int64_t procedure);
    void SetParameters(std::int64_t procedure, const std::vector<ParameterDef>& parameters);
    /// The columns that a view gave when it was made; for the catalogue's views alone.
    void SetViewColumns(std::int64_t view, const std::vector<ColumnDef>& columns);

    // ---- types
    std::optional<UserTypeDef> FindType(std::string_view schema, std::string_view name);
    void AddType(const UserTypeDef& type);
    bool RemoveType(std::string_view schema, std::string_view name);

    /// A statement over this database's catalogue: "{db}" stands for the alias.
    SqliteStatement Prepare(std::string_view text);

  private:
    void LoadIndexes(TableDef& table);
    void LoadForeignKeys(TableDef& table);

    SqliteConnection& connection_;
    std::string alias_;
};

/// SQLite's statement that makes `table`, and those that make its unique and other indexes.
std::string CreateTableText(const TableDef& table);
/// SQLite's name for the row number of a table, which may have a column named "rowid".
std::string RowIdName(const TableDef& table);
std::string CreateIndexText(const TableDef& table, const IndexDef& index);
std::string DropIndexText(const TableDef& table, const IndexDef& index);

} // namespace devsql

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
    int id = 0; ///< unique in the table; a new column has the highest id plus 1
    std::string name;
    Type type;
    std::string user_type; ///< "dbo.LKName"; empty for the system's types
    bool nullable = true;
    bool identity = false;
    std::int64_t seed = 0;
    std::int64_t increment = 0;
    bool row_guid = false;    ///< ROWGUIDCOL
    std::string default_text; ///< with its parentheses; empty for none
    std::string default_name; ///< the name of the default constraint; empty for none
    std::string computed;     ///< expression of a computed column; empty for a stored one
};

struct KeyColumn {
    int column = 0; ///< the column's id
    bool descending = false;
};

struct IndexDef {
    int id = 0; ///< the clustered index has 1, the others have 2 and more
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
    std::int64_t table = 0;              ///< the id of the table that has the key
    std::int64_t referenced = 0;         ///< the id of the table that the key refers to
    std::vector<int> columns;            ///< ids
    std::vector<int> referenced_columns; ///< ids, one for each of `columns`
    OnChange on_delete = OnChange::NoAction;
    OnChange on_update = OnChange::NoAction;
    bool disabled = false;
};

struct CheckDef {
    std::int64_t id = 0;
    std::string name;
    std::string text; ///< the condition, in T-SQL
    bool disabled = false;
};

struct TriggerDef {
    std::int64_t id = 0;
    std::string name;
    bool disabled = false;
};

/// A table with all that belongs to it. Catalogue::LoadTable makes it; later changes of the table are not
/// seen in it.
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
    /// Throws std::logic_error for an unknown id.
    const ColumnDef& ById(int id) const;
    /// The column's position in `columns`. Throws std::logic_error for an unknown id.
    std::size_t IndexOf(int id) const;
    /// Returns null if the table has no identity column.
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
    /// As in sysobjects: "U" table, "V" view, "P" procedure, "FN" scalar function, "TR" trigger, "PK" primary
    /// key, "UQ" unique constraint, "F" foreign key, "C" check, "D" default.
    std::string type;
    std::int64_t parent = 0; ///< the table of a constraint or trigger; 0 for other objects
    std::string text;        ///< the T-SQL of a module, a check or a default
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

/// True for a table, a view, a procedure, a function or a trigger; false for a constraint.
bool IsTableOrModule(std::string_view object_type);

/// Reads and writes the catalogue of one attached database. Every call can throw StorageError.
class Catalogue {
  public:
    /// `alias` is SQLite's name for the attached database. `connection` must outlive the object.
    Catalogue(SqliteConnection& connection, std::string alias);

    /// Makes the catalogue's tables in a new file.
    void Create();
    const std::string& alias() const { return alias_; }

    /// Rises with every change of the catalogue, and falls back with a transaction that is rolled back.
    std::int64_t Version();
    /// Raises the version. The functions below that change a definition call it.
    void Touch();

    // ---- objects
    std::optional<ObjectDef> FindObject(std::string_view schema, std::string_view name);
    std::optional<ObjectDef> FindObject(std::int64_t id);
    /// Gives the object an id if it has none, and returns it.
    std::int64_t AddObject(ObjectDef object);
    /// Stores the text and the settings of an object that exists (ALTER).
    void ReplaceText(const ObjectDef& object);
    /// Removes the object with its columns, keys and rights from the catalogue. SQLite's own table stays: the
    /// caller drops it.
    void RemoveObject(std::int64_t id);
    /// Renames also SQLite's table of a table, and the index of a PRIMARY KEY or UNIQUE constraint.
    void RenameObject(std::int64_t id, std::string_view name);
    /// An id that no object of the database has.
    std::int64_t NextId();

    // ---- tables
    /// Returns null if there is no table with this id.
    TablePtr LoadTable(std::int64_t id);
    /// SQLite's name for a table: `name` for a table of dbo, "schema.name" for others. "dbo." is put before a
    /// name that SQLite or the catalogue reserves.
    std::string PhysicalName(std::string_view schema, std::string_view name) const;
    /// Adds the table with its columns, and makes SQLite's table. Indexes, checks and foreign keys are added
    /// one by one with the functions below.
    void AddTable(const TableDef& table);
    void AddColumn(std::int64_t table, const ColumnDef& column, int position);
    /// Stores the column's name, type, NULL and default anew. SQLite's table stays as it is.
    void UpdateColumn(std::int64_t table, const ColumnDef& column);
    /// Removes the column from the catalogue. SQLite's table stays as it is.
    void RemoveColumn(std::int64_t table, int column);
    /// Adds the index, its constraint if it has one, and SQLite's index; RemoveIndex removes the same.
    void AddIndex(const TableDef& table, const IndexDef& index);
    void RemoveIndex(const TableDef& table, const IndexDef& index);
    void AddForeignKey(const ForeignKeyDef& key);
    void AddCheck(std::int64_t table, const CheckDef& check);
    /// Disables or enables a constraint or a trigger.
    void SetDisabled(std::int64_t object, bool disabled);
    /// The last identity value; nothing before the first row.
    std::optional<std::int64_t> IdentityValue(std::int64_t table);
    void SetIdentityValue(std::int64_t table, std::optional<std::int64_t> value);
    /// Raises the counter of the database's timestamp columns by 1, and returns it.
    std::int64_t NextTimestamp();
    std::int64_t LastTimestamp();

    // ---- procedures and views
    std::vector<ParameterDef> Parameters(std::int64_t procedure);
    void SetParameters(std::int64_t procedure, const std::vector<ParameterDef>& parameters);
    /// Stores the columns that a view had when it was made. Only the catalogue's views, such as syscolumns,
    /// read them.
    void SetViewColumns(std::int64_t view, const std::vector<ColumnDef>& columns);

    // ---- user types; an empty schema stands for any
    std::optional<UserTypeDef> FindType(std::string_view schema, std::string_view name);
    void AddType(const UserTypeDef& type);
    /// Returns false if there is no such type.
    bool RemoveType(std::string_view schema, std::string_view name);

    /// Prepares a statement on this database; "{db}" in `text` is replaced by the alias.
    SqliteStatement Prepare(std::string_view text);

  private:
    void LoadIndexes(TableDef& table);
    void LoadForeignKeys(TableDef& table);

    SqliteConnection& connection_;
    std::string alias_;
};

/// SQLite's statement that makes the table.
std::string CreateTableText(const TableDef& table);
/// The name by which SQLite's SQL reaches the table's row number: "rowid", or another one if the table has a
/// column of that name. Raises 40517 if all three names are taken.
std::string RowIdName(const TableDef& table);
/// SQLite's statements that make and drop the index.
std::string CreateIndexText(const TableDef& table, const IndexDef& index);
std::string DropIndexText(const TableDef& table, const IndexDef& index);

} // namespace devsql

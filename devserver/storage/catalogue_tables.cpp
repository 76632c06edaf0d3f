// The part of the catalogue that describes tables: columns, indexes, keys, checks, identities.
#include "devserver/storage/catalogue.h"
#include "devserver/storage/catalogue_rows.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

/// The columns of a select from devsql_columns, in the order in which ReadColumn takes them.
constexpr std::string_view kColumnFields =
    "id, name, type, length, precision, scale, user_type, nullable, identity, seed, increment, row_guid, "
    "default_text, default_name, computed";

ColumnDef ReadColumn(const SqliteStatement& row) {
    ColumnDef column;
    column.id = static_cast<int>(row.Int(0));
    column.name = row.Text(1);
    column.type = ReadType(row, 2);
    column.user_type = row.Text(6);
    column.nullable = row.Int(7) != 0;
    column.identity = row.Int(8) != 0;
    column.seed = row.Int(9);
    column.increment = row.Int(10);
    column.row_guid = row.Int(11) != 0;
    column.default_text = row.Text(12);
    column.default_name = row.Text(13);
    column.computed = row.Text(14);
    return column;
}

} // namespace

std::string Catalogue::PhysicalName(std::string_view schema, std::string_view name) const {
    const std::string lower = ToLower(name);
    std::string physical = AsciiEqual(schema, "dbo") ? std::string() : std::string(schema) + ".";
    if (physical.empty() &&
        (lower.starts_with("sqlite_") || lower.starts_with("devsql_") || lower.starts_with("ix_"))) {
        physical = "dbo.";
    }
    return physical + std::string(name);
}

TablePtr Catalogue::LoadTable(std::int64_t id) {
    const std::optional<ObjectDef> object = FindObject(id);
    if (!object || object->type != "U") {
        return nullptr;
    }
    auto table = std::make_shared<TableDef>();
    table->id = id;
    table->alias = alias_;
    table->schema = object->schema;
    table->name = object->name;
    table->physical = PhysicalName(object->schema, object->name);
    SqliteStatement row = Prepare("SELECT " + std::string(kColumnFields) +
                                  " FROM {db}.devsql_columns WHERE object = ?1 ORDER BY position");
    row.BindInt(1, id);
    while (row.Step()) {
        table->columns.push_back(ReadColumn(row));
    }
    LoadIndexes(*table);
    LoadForeignKeys(*table);
    SqliteStatement check =
        Prepare("SELECT id, name, text, disabled FROM {db}.devsql_objects WHERE parent = ?1 AND type = 'C'");
    check.BindInt(1, id);
    while (check.Step()) {
        table->checks.push_back({check.Int(0), check.Text(1), check.Text(2), check.Int(3) != 0});
    }
    SqliteStatement trigger =
        Prepare("SELECT id, name, disabled FROM {db}.devsql_objects WHERE parent = ?1 AND type = 'TR' "
                "ORDER BY created, id");
    trigger.BindInt(1, id);
    while (trigger.Step()) {
        table->triggers.push_back({trigger.Int(0), trigger.Text(1), trigger.Int(2) != 0});
    }
    return table;
}

void Catalogue::LoadIndexes(TableDef& table) {
    SqliteStatement row = Prepare("SELECT id, name, is_unique, primary_key, is_constraint, clustered "
                                  "FROM {db}.devsql_indexes WHERE object = ?1 ORDER BY id");
    row.BindInt(1, table.id);
    while (row.Step()) {
        IndexDef index{static_cast<int>(row.Int(0)),
                       row.Text(1),
                       row.Int(2) != 0,
                       row.Int(3) != 0,
                       row.Int(4) != 0,
                       row.Int(5) != 0,
                       {}};
        SqliteStatement column = Prepare("SELECT column_id, descending FROM {db}.devsql_index_columns "
                                         "WHERE object = ?1 AND id = ?2 ORDER BY ordinal");
        column.BindInt(1, table.id).BindInt(2, index.id);
        while (column.Step()) {
            index.columns.push_back({static_cast<int>(column.Int(0)), column.Int(1) != 0});
        }
        table.indexes.push_back(std::move(index));
    }
}

void Catalogue::LoadForeignKeys(TableDef& table) {
    SqliteStatement row =
        Prepare("SELECT k.id, o.name, k.object, k.referenced, k.on_delete, k.on_update, o.disabled "
                "FROM {db}.devsql_foreign_keys k JOIN {db}.devsql_objects o ON o.id = k.id "
                "WHERE k.object = ?1 OR k.referenced = ?1");
    row.BindInt(1, table.id);
    while (row.Step()) {
        ForeignKeyDef key;
        key.id = row.Int(0);
        key.name = row.Text(1);
        key.table = row.Int(2);
        key.referenced = row.Int(3);
        key.on_delete = static_cast<OnChange>(row.Int(4));
        key.on_update = static_cast<OnChange>(row.Int(5));
        key.disabled = row.Int(6) != 0;
        SqliteStatement column =
            Prepare("SELECT column_id, referenced_column FROM {db}.devsql_foreign_key_columns "
                    "WHERE id = ?1 ORDER BY ordinal");
        column.BindInt(1, key.id);
        while (column.Step()) {
            key.columns.push_back(static_cast<int>(column.Int(0)));
            key.referenced_columns.push_back(static_cast<int>(column.Int(1)));
        }
        if (key.table == table.id) {
            table.foreign_keys.push_back(key);
        }
        if (key.referenced == table.id) {
            table.referencing.push_back(std::move(key));
        }
    }
}

void Catalogue::AddTable(const TableDef& table) {
    ObjectDef object;
    object.id = table.id;
    object.schema = table.schema;
    object.name = table.name;
    object.type = "U";
    AddObject(object);
    connection_.Execute(CreateTableText(table));
    int position = 0;
    for (const ColumnDef& column : table.columns) {
        AddColumn(table.id, column, position++);
    }
}

void Catalogue::AddColumn(std::int64_t table, const ColumnDef& column, int position) {
    SqliteStatement insert = Prepare(
        "INSERT INTO {db}.devsql_columns(object, id, position, name, type, length, precision, scale, "
        "user_type, "
        "nullable, identity, seed, increment, row_guid, default_text, default_name, default_id, computed) "
        "VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17, ?18)");
    insert.BindInt(1, table).BindInt(2, column.id).BindInt(3, position).BindText(4, column.name);
    BindTypeAt(insert, 5, column.type);
    insert.BindText(9, column.user_type).BindInt(10, column.nullable).BindInt(11, column.identity);
    insert.BindInt(12, column.seed).BindInt(13, column.increment).BindInt(14, column.row_guid);
    insert.BindText(15, column.default_text).BindText(16, column.default_name).BindInt(17, 0);
    insert.BindText(18, column.computed).Run();
    if (!column.default_name.empty()) {
        UpdateColumn(table, column);
    }
    Touch();
}

void Catalogue::UpdateColumn(std::int64_t table, const ColumnDef& column) {
    SqliteStatement update = Prepare(
        "UPDATE {db}.devsql_columns SET name = ?3, type = ?4, length = ?5, precision = ?6, scale = ?7, "
        "user_type = ?8, nullable = ?9, default_text = ?10, default_name = ?11, default_id = ?12 "
        "WHERE object = ?1 AND id = ?2");
    SqliteStatement drop =
        Prepare("DELETE FROM {db}.devsql_objects WHERE type = 'D' AND id = "
                "(SELECT default_id FROM {db}.devsql_columns WHERE object = ?1 AND id = ?2)");
    drop.BindInt(1, table).BindInt(2, column.id).Run();
    std::int64_t default_id = 0;
    if (!column.default_name.empty()) {
        ObjectDef object;
        object.schema = FindObject(table)->schema;
        object.name = column.default_name;
        object.type = "D";
        object.parent = table;
        object.text = column.default_text;
        default_id = AddObject(object);
    }
    update.BindInt(1, table).BindInt(2, column.id).BindText(3, column.name);
    BindTypeAt(update, 4, column.type);
    update.BindText(8, column.user_type).BindInt(9, column.nullable).BindText(10, column.default_text);
    update.BindText(11, column.default_name).BindInt(12, default_id).Run();
    Touch();
}

void Catalogue::RemoveColumn(std::int64_t table, int column) {
    Prepare("DELETE FROM {db}.devsql_columns WHERE object = ?1 AND id = ?2")
        .BindInt(1, table)
        .BindInt(2, column)
        .Run();
    Touch();
}

void Catalogue::AddIndex(const TableDef& table, const IndexDef& index) {
    if (index.constraint) {
        ObjectDef object;
        object.schema = table.schema;
        object.name = index.name;
        object.type = index.primary_key ? "PK" : "UQ";
        object.parent = table.id;
        AddObject(object);
    }
    connection_.Execute(CreateIndexText(table, index));
    Prepare("INSERT INTO {db}.devsql_indexes VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7)")
        .BindInt(1, table.id)
        .BindInt(2, index.id)
        .BindText(3, index.name)
        .BindInt(4, index.unique)
        .BindInt(5, index.primary_key)
        .BindInt(6, index.constraint)
        .BindInt(7, index.clustered)
        .Run();
    int ordinal = 1;
    for (const KeyColumn& key : index.columns) {
        Prepare("INSERT INTO {db}.devsql_index_columns VALUES(?1, ?2, ?3, ?4, ?5)")
            .BindInt(1, table.id)
            .BindInt(2, index.id)
            .BindInt(3, ordinal++)
            .BindInt(4, key.column)
            .BindInt(5, key.descending)
            .Run();
    }
    Touch();
}

void Catalogue::RemoveIndex(const TableDef& table, const IndexDef& index) {
    connection_.Execute(DropIndexText(table, index));
    for (const std::string_view text :
         {"DELETE FROM {db}.devsql_indexes WHERE object = ?1 AND id = ?2",
          "DELETE FROM {db}.devsql_index_columns WHERE object = ?1 AND id = ?2"}) {
        Prepare(text).BindInt(1, table.id).BindInt(2, index.id).Run();
    }
    if (index.constraint) {
        Prepare("DELETE FROM {db}.devsql_objects WHERE parent = ?1 AND name = ?2 AND type IN ('PK', 'UQ')")
            .BindInt(1, table.id)
            .BindText(2, index.name)
            .Run();
    }
    Touch();
}

void Catalogue::AddForeignKey(const ForeignKeyDef& key) {
    ObjectDef object;
    object.id = key.id;
    object.schema = FindObject(key.table)->schema;
    object.name = key.name;
    object.type = "F";
    object.parent = key.table;
    const std::int64_t id = AddObject(object);
    Prepare("INSERT INTO {db}.devsql_foreign_keys VALUES(?1, ?2, ?3, ?4, ?5)")
        .BindInt(1, id)
        .BindInt(2, key.table)
        .BindInt(3, key.referenced)
        .BindInt(4, static_cast<int>(key.on_delete))
        .BindInt(5, static_cast<int>(key.on_update))
        .Run();
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        Prepare("INSERT INTO {db}.devsql_foreign_key_columns VALUES(?1, ?2, ?3, ?4)")
            .BindInt(1, id)
            .BindInt(2, static_cast<int>(i + 1))
            .BindInt(3, key.columns[i])
            .BindInt(4, key.referenced_columns[i])
            .Run();
    }
    Touch();
}

void Catalogue::AddCheck(std::int64_t table, const CheckDef& check) {
    ObjectDef object;
    object.id = check.id;
    object.schema = FindObject(table)->schema;
    object.name = check.name;
    object.type = "C";
    object.parent = table;
    object.text = check.text;
    AddObject(object);
}

void Catalogue::SetDisabled(std::int64_t object, bool disabled) {
    Prepare("UPDATE {db}.devsql_objects SET disabled = ?2 WHERE id = ?1")
        .BindInt(1, object)
        .BindInt(2, disabled)
        .Run();
    Touch();
}

std::optional<std::int64_t> Catalogue::IdentityValue(std::int64_t table) {
    SqliteStatement row = Prepare("SELECT value FROM {db}.devsql_identities WHERE object = ?1");
    row.BindInt(1, table);
    return row.Step() ? std::optional(row.Int(0)) : std::nullopt;
}

void Catalogue::SetIdentityValue(std::int64_t table, std::optional<std::int64_t> value) {
    if (value) {
        Prepare("INSERT OR REPLACE INTO {db}.devsql_identities VALUES(?1, ?2)")
            .BindInt(1, table)
            .BindInt(2, *value)
            .Run();
    } else {
        Prepare("DELETE FROM {db}.devsql_identities WHERE object = ?1").BindInt(1, table).Run();
    }
}

std::int64_t Catalogue::LastTimestamp() {
    SqliteStatement row = Prepare("SELECT value FROM {db}.devsql_settings WHERE name = 'timestamp'");
    row.Step();
    return row.Int(0);
}

std::int64_t Catalogue::NextTimestamp() {
    Prepare("UPDATE {db}.devsql_settings SET value = value + 1 WHERE name = 'timestamp'").Run();
    return LastTimestamp();
}

} // namespace devsql

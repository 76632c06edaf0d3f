// ALTER TABLE, CREATE INDEX, DROP INDEX.
#include <algorithm>
#include <set>

#include "devserver/storage/databases.h"
#include "devserver/tsql/define/definitions.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/rows/row_writer.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/required.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/check_columns.h"

namespace devsql {
namespace {

Target FindTable(SessionCore& session, const ast::Name& name) {
    Emission emission(session);
    Target target = BindTargetAs(session, emission, name, 4902);
    RaiseIf(target.catalogue == nullptr, 40517, {"ALTER TABLE and CREATE INDEX of a temporary table"});
    return target;
}

/// Creates an index, also for a unique constraint, over existing rows.
void AddIndexChecked(SessionCore& session, Catalogue& catalogue, const TableDef& table,
                     const IndexDef& index) {
    try {
        catalogue.AddIndex(table, index);
    } catch (const StorageError& error) {
        if (error.primary_code() != SQLITE_CONSTRAINT) {
            throw;
        }
        std::string key; // SQLite does not say which key is a duplicate: search the first one.
        std::string columns;
        for (const KeyColumn& part : index.columns) {
            const ColumnDef& column = table.ById(part.column);
            columns += (columns.empty() ? "" : ", ") + QuoteName(column.name) +
                       (IsCharacter(column.type.id) ? " COLLATE TSQL" : "");
        }
        SqliteStatement row =
            session.connection().Prepare("SELECT " + columns + " FROM " + table.Qualified() + " GROUP BY " +
                                         columns + " HAVING count(*) > 1");
        if (row.Step()) {
            for (std::size_t i = 0; i < index.columns.size(); ++i) {
                const Type& type = table.ById(index.columns[i].column).type;
                const Value value = row.Column(static_cast<int>(i), type);
                key += (i == 0 ? "" : ", ") + (IsNull(value) ? "<NULL>" : ValueText(value, type));
            }
        }
        RaiseError(1505, {table.schema + "." + table.name, index.name, "(" + key + ")"});
    }
}

std::string DatabaseNameOf(SessionCore& session, const Catalogue& catalogue) {
    for (const DatabaseInfo& database : ListDatabases(session.connection())) {
        if (catalogue.alias() == "db" + std::to_string(database.id)) {
            return database.name;
        }
    }
    return "master";
}

void RequireCheck(SessionCore& session, const Catalogue& catalogue, const TablePtr& table,
                  const CheckDef& check) {
    Emission emission(session);
    Binder binder(session, emission);
    Scope scope;
    scope.sources.push_back(binder.SourceOf(table, table->name, "t"));
    const ast::ExprPtr expr = ParseExpression(check.text);
    const std::string condition = emission.EmitCondition(binder.BindCondition(*expr, &scope));
    SqliteStatement row = session.connection().Prepare("SELECT 1 FROM " + table->Qualified() +
                                                       " AS t WHERE (" + condition + ") = 0 LIMIT 1");
    emission.BindAll(row);
    if (row.Step()) {
        const ColumnDef* column = ColumnOfCheck(*table, check.text);
        RaiseError(547,
                   {"ALTER TABLE", "CHECK", check.name, DatabaseNameOf(session, catalogue),
                    table->schema + "." + table->name, column ? ", column '" + column->name + "'" : ""},
                   0);
    }
}

void RequireParents(SessionCore& session, Catalogue& catalogue, const TableDef& table,
                    const ForeignKeyDef& key) {
    const TablePtr parent = catalogue.LoadTable(key.referenced);
    std::string joined;
    std::string filled;
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        const std::string own = "t." + QuoteName(table.ById(key.columns[i]).name);
        joined += (i == 0 ? "" : " AND ") +
                  ("p." + QuoteName(parent->ById(key.referenced_columns[i]).name) + " = " + own);
        filled += " AND " + own + " IS NOT NULL";
    }
    SqliteStatement row = session.connection().Prepare("SELECT 1 FROM " + table.Qualified() +
                                                       " AS t WHERE NOT EXISTS "
                                                       "(SELECT 1 FROM " +
                                                       parent->Qualified() + " AS p WHERE " + joined + ")" +
                                                       filled + " LIMIT 1");
    if (row.Step()) {
        RaiseError(547,
                   {"ALTER TABLE", "FOREIGN KEY", key.name, DatabaseNameOf(session, catalogue),
                    parent->schema + "." + parent->name,
                    ", column '" + parent->ById(key.referenced_columns[0]).name + "'"},
                   0);
    }
}

/// Fills the columns from `first` on in every existing row, by the row writer, which knows defaults and
/// computed columns. `with_default`: the ids of the columns whose default existing rows get.
void FillColumns(SessionCore& session, const Target& target, std::size_t first,
                 const std::set<int>& with_default) {
    const std::vector<ColumnDef>& columns = target.table->columns;
    if (first == columns.size()) {
        return;
    }
    std::string places;
    for (std::size_t i = first; i < columns.size(); ++i) {
        places += (places.empty() ? "" : ", ") + QuoteName(columns[i].name) + " = ?" +
                  std::to_string(i - first + 1);
    }
    SqliteStatement update = session.connection().Prepare(
        "UPDATE " + target.table->Qualified() + " SET " + places + " WHERE " + RowIdName(*target.table) +
        " = ?" + std::to_string(columns.size() - first + 1));
    RowWriter writer(session, target, "ALTER TABLE");
    std::int64_t counted = 0;
    for (StoredRow& row : RowWriter::Read(session, *target.table, "1", {})) {
        for (std::size_t i = first; i < columns.size(); ++i) {
            if (columns[i].identity) {
                const std::int64_t number = columns[i].seed + counted * columns[i].increment;
                row.values[i] = Convert(number, Simple(TypeId::BigInt), columns[i].type);
                target.catalogue->SetIdentityValue(target.table->id, number);
            } else if (with_default.contains(columns[i].id)) {
                row.values[i] = writer.DefaultOf(columns[i]);
            }
        }
        writer.Complete(row.values);
        for (std::size_t i = first; i < columns.size(); ++i) {
            RaiseIf(IsNull(row.values[i]) && !columns[i].nullable && columns[i].computed.empty(), 4901,
                    {columns[i].name, target.table->name});
            update.Bind(static_cast<int>(i - first + 1), row.values[i], columns[i].type);
        }
        update.BindInt(static_cast<int>(columns.size() - first + 1), row.row_id).Run();
        ++counted;
    }
}

/// Puts the statement's columns and constraints into the definition. Returns false if existing rows are not
/// checked (WITH NOCHECK).
bool BuildParts(const ast::AlterTableStatement& alter, const TableDef& before, TableBuilder& builder) {
    for (const ast::ColumnDefinition& column : alter.definition.columns) {
        builder.AddColumn(column);
        for (const ast::Constraint& constraint : column.constraints) {
            builder.AddConstraint(constraint, column.name);
        }
    }
    bool check = true;
    for (const ast::Constraint& constraint : alter.definition.constraints) {
        builder.AddConstraint(constraint, "");
        check = check && constraint.with_check;
        if (constraint.kind != ast::ConstraintKind::PrimaryKey) {
            continue;
        }
        for (const ast::IndexColumn& key : constraint.columns) {
            const ColumnDef* column = before.Find(key.name);
            RaiseIf(column != nullptr && column->nullable, 8111, {before.name});
        }
    }
    return check;
}

/// Raises 2714 where the name is taken.
void RequireFree(Catalogue& catalogue, const TableDef& table, const std::string& name) {
    RaiseIf(catalogue.FindObject(table.schema, name).has_value(), 2714, {name}, 5);
}

/// Stores new columns, and defaults that old ones have been given.
void AddColumns(SessionCore& session, Catalogue& catalogue, const TableDef& before, const TableDef& after) {
    for (std::size_t i = before.columns.size(); i < after.columns.size(); ++i) {
        const ColumnDef& column = after.columns[i];
        session.connection().Execute("ALTER TABLE " + after.Qualified() + " ADD COLUMN " +
                                     QuoteName(column.name) +
                                     (IsCharacter(column.type.id) ? " COLLATE TSQL" : ""));
        catalogue.AddColumn(after.id, column, static_cast<int>(i));
    }
    for (std::size_t i = 0; i < before.columns.size(); ++i) {
        if (after.columns[i].default_name != before.columns[i].default_name) {
            RequireFree(catalogue, after, after.columns[i].default_name);
            catalogue.UpdateColumn(after.id, after.columns[i]);
        }
    }
}

/// The ids of the new columns whose default existing rows get.
std::set<int> ColumnsWithDefault(const ast::AlterTableStatement& alter, const TableDef& after) {
    std::set<int> columns;
    for (const ast::ColumnDefinition& column : alter.definition.columns) {
        const ColumnDef& added = *after.Find(column.name);
        const bool asked = std::ranges::any_of(column.constraints, &ast::Constraint::with_values);
        if (!added.nullable || asked) {
            columns.insert(added.id);
        }
    }
    return columns;
}

void AddParts(SessionCore& session, const ast::AlterTableStatement& alter, const Target& target) {
    Catalogue& catalogue = *target.catalogue;
    const TablePtr before = catalogue.LoadTable(target.table->id);
    TableBuilder builder(session, &catalogue, *before, true);
    const bool check = BuildParts(alter, *before, builder);
    TableDef& after = builder.table();
    AddColumns(session, catalogue, *before, after);
    const Target changed{catalogue.LoadTable(after.id), &catalogue};
    FillColumns(session, changed, before->columns.size(), ColumnsWithDefault(alter, after));
    for (std::size_t i = before->indexes.size(); i < after.indexes.size(); ++i) {
        RequireFree(catalogue, after, after.indexes[i].name);
        AddIndexChecked(session, catalogue, after, after.indexes[i]);
    }
    for (std::size_t i = before->checks.size(); i < after.checks.size(); ++i) {
        RequireFree(catalogue, after, after.checks[i].name);
        if (check) {
            RequireCheck(session, catalogue, changed.table, after.checks[i]);
        }
        catalogue.AddCheck(after.id, after.checks[i]);
    }
    for (const ForeignKeyDef& key : builder.foreign_keys()) {
        RequireFree(catalogue, after, key.name);
        if (check) {
            RequireParents(session, catalogue, after, key);
        }
        catalogue.AddForeignKey(key);
    }
}

bool IndexUses(const IndexDef& index, int column) {
    return std::any_of(index.columns.begin(), index.columns.end(),
                       [&](const KeyColumn& key) { return key.column == column; });
}

void DropColumns(SessionCore& session, const ast::AlterTableStatement& alter, const Target& target) {
    for (const std::string& name : alter.names) {
        const TablePtr table = target.catalogue->LoadTable(target.table->id);
        const ColumnDef& column =
            Required(table->Find(name), 4924, {"ALTER TABLE DROP COLUMN", name, table->name});
        const int id = column.id;
        const auto index_uses = [&](const IndexDef& index) { return IndexUses(index, id); };
        const auto key_uses = [&](const ForeignKeyDef& key) {
            return std::ranges::count(key.columns, id) > 0;
        };
        const auto check_uses = [&](const CheckDef& c) { return ColumnsNamed(*table, c.text).contains(id); };
        RaiseIf(!column.default_name.empty() || std::ranges::any_of(table->indexes, index_uses) ||
                    std::ranges::any_of(table->foreign_keys, key_uses) ||
                    std::ranges::any_of(table->checks, check_uses),
                4922, {"ALTER TABLE DROP COLUMN", name});
        RaiseIf(table->columns.size() == 1, 4923, {name, table->name});
        session.connection().Execute("ALTER TABLE " + table->Qualified() + " DROP COLUMN " +
                                     QuoteName(column.name));
        target.catalogue->RemoveColumn(table->id, id);
    }
}

/// The names and ids of the foreign keys and checks, which are objects of their own and can be switched off.
std::vector<std::pair<std::string, std::int64_t>> SwitchedConstraints(const TableDef& table) {
    std::vector<std::pair<std::string, std::int64_t>> constraints;
    for (const ForeignKeyDef& key : table.foreign_keys) {
        constraints.emplace_back(key.name, key.id);
    }
    for (const CheckDef& check : table.checks) {
        constraints.emplace_back(check.name, check.id);
    }
    return constraints;
}

void DropConstraint(const std::string& name, Catalogue& catalogue, const TableDef& table) {
    for (const IndexDef& index : table.indexes) {
        if (!index.constraint || !SameText(index.name, name)) {
            continue;
        }
        for (const ForeignKeyDef& key : table.referencing) {
            std::vector<int> ids;
            for (const KeyColumn& part : index.columns) {
                ids.push_back(part.column);
            }
            if (std::is_permutation(ids.begin(), ids.end(), key.referenced_columns.begin(),
                                    key.referenced_columns.end())) {
                const std::optional<ObjectDef> other = catalogue.FindObject(key.table);
                RaiseError(3725, {name, other ? other->name : "", key.name});
            }
        }
        catalogue.RemoveIndex(table, index);
        return;
    }
    for (const auto& [constraint, id] : SwitchedConstraints(table)) {
        if (SameText(constraint, name)) {
            catalogue.RemoveObject(id);
            return;
        }
    }
    for (ColumnDef column : table.columns) {
        if (SameText(column.default_name, name)) {
            column.default_name.clear();
            column.default_text.clear();
            catalogue.UpdateColumn(table.id, column);
            return;
        }
    }
    RaiseError(3728, {name});
}

void SwitchConstraints(const ast::AlterTableStatement& alter, Catalogue& catalogue, const TableDef& table) {
    const bool disabled = alter.action == ast::AlterTableAction::DisableConstraint;
    for (const std::string& name : alter.names) {
        bool found = name == "ALL";
        for (const auto& [constraint, id] : SwitchedConstraints(table)) {
            if (name == "ALL" || SameText(constraint, name)) {
                catalogue.SetDisabled(id, disabled);
                found = true;
            }
        }
        RaiseIf(!found, 4917, {name});
    }
}

void AlterColumn(SessionCore& session, const ast::ColumnDefinition& definition, const Target& target) {
    const TablePtr table = target.catalogue->LoadTable(target.table->id);
    const ColumnDef& found = Required(table->Find(definition.name), 4924,
                                      {"ALTER TABLE ALTER COLUMN", definition.name, table->name});
    RaiseIf(found.type.id == TypeId::Timestamp || !found.computed.empty(), 4928,
            {found.name, found.computed.empty() ? "timestamp" : "COMPUTED"});
    ColumnDef column = found;
    column.user_type.clear();
    bool type_nullable = true;
    Emission emission(session);
    column.type =
        Binder(session, emission).ResolveType(definition.type, 1, &column.user_type, &type_nullable);
    column.nullable = definition.nullable.value_or(type_nullable);
    for (const IndexDef& index : table->indexes) {
        RaiseIf(IndexUses(index, column.id) &&
                    ((index.primary_key && column.nullable) || column.type.id != found.type.id),
                4922, {"ALTER TABLE ALTER COLUMN", found.name});
    }
    SqliteStatement update =
        session.connection().Prepare("UPDATE " + table->Qualified() + " SET " + QuoteName(column.name) +
                                     " = ?1 WHERE " + RowIdName(*table) + " = ?2");
    const std::size_t position = table->IndexOf(column.id);
    for (const StoredRow& row : RowWriter::Read(session, *table, "1", {})) {
        const Value value = Assign(row.values[position], found.type, column.type);
        if (IsNull(value) && !column.nullable) {
            RaiseError(515,
                       {column.name,
                        DatabaseNameOf(session, *target.catalogue) + "." + table->schema + "." + table->name,
                        "ALTER TABLE"},
                       2);
        }
        update.Bind(1, value, column.type).BindInt(2, row.row_id).Run();
    }
    target.catalogue->UpdateColumn(table->id, column);
    if (column.nullable != found.nullable) {
        // A unique index handles nullable columns differently, so it is made again.
        const TablePtr after = target.catalogue->LoadTable(table->id);
        for (const IndexDef& index : after->indexes) {
            if (index.unique && IndexUses(index, column.id)) {
                session.connection().Execute(DropIndexText(*after, index));
                session.connection().Execute(CreateIndexText(*after, index));
            }
        }
    }
}

} // namespace

void RunAlterTable(SessionCore& session, const ast::AlterTableStatement& alter) {
    const Target target = FindTable(session, alter.table);
    session.transactions().Write(target.catalogue->alias(), [&] {
        switch (alter.action) {
        case ast::AlterTableAction::Add:
            AddParts(session, alter, target);
            break;
        case ast::AlterTableAction::AlterColumn:
            AlterColumn(session, alter.definition.columns[0], target);
            break;
        case ast::AlterTableAction::DropColumn:
            DropColumns(session, alter, target);
            break;
        case ast::AlterTableAction::DropConstraint:
            for (const std::string& name : alter.names) {
                DropConstraint(name, *target.catalogue, *target.catalogue->LoadTable(target.table->id));
            }
            break;
        case ast::AlterTableAction::EnableConstraint:
        case ast::AlterTableAction::DisableConstraint:
            SwitchConstraints(alter, *target.catalogue, *target.table);
            break;
        }
    });
    session.results().Done(Command::None, std::nullopt);
}

void RunCreateIndex(SessionCore& session, const ast::CreateIndexStatement& create) {
    Emission emission(session);
    const Target target = BindTargetAs(session, emission, create.table, 1088);
    session.transactions().Write(target.table->alias, [&] {
        TableDef table = *target.table;
        IndexDef index;
        index.name = create.name;
        index.unique = create.unique;
        index.clustered = create.clustered;
        int highest = 1;
        for (const IndexDef& other : table.indexes) {
            if (SameText(other.name, create.name)) {
                RaiseIf(!create.drop_existing || target.catalogue == nullptr, 1913,
                        {create.name, "table", table.name});
                target.catalogue->RemoveIndex(table, other);
            } else if (other.clustered && index.clustered) {
                RaiseError(1902, {"table", table.name, other.name});
            }
            highest = std::max(highest, other.id);
        }
        index.id = index.clustered ? 1 : highest + 1;
        for (const ast::IndexColumn& key : create.columns) {
            const ColumnDef& column = Required(table.Find(key.name), 1911, {key.name});
            RaiseIf(IsOldLob(column.type.id), 1919, {column.name, table.name});
            index.columns.push_back({column.id, key.descending});
        }
        if (target.catalogue != nullptr) {
            AddIndexChecked(session, *target.catalogue, table, index);
        } else {
            session.connection().Execute(CreateIndexText(table, index));
            table.indexes.push_back(index);
            if (!table.name.starts_with("@")) {
                session.temporaries().Add(table);
            }
        }
    });
    session.results().Done(Command::None, std::nullopt);
}

void RunDropIndex(SessionCore& session, const ast::DropIndexStatement& drop) {
    for (const auto& [name, index_name] : drop.indexes) {
        Emission emission(session);
        Target target;
        try {
            target = Binder(session, emission).BindTarget(name);
        } catch (const SqlError& error) {
            if (error.number() != 208) {
                throw;
            }
        }
        const auto is_named = [&wanted = index_name](const IndexDef& index) {
            return SameText(index.name, wanted);
        };
        const std::vector<IndexDef> indexes = target.table ? target.table->indexes : std::vector<IndexDef>();
        const auto found = std::ranges::find_if(indexes, is_named);
        if (found == indexes.end()) {
            if (drop.if_exists) {
                continue;
            }
            RaiseError(3701, {"drop", "index", name.text() + "." + index_name}, 7);
        }
        RaiseIf(found->constraint, 3723,
                {name.text() + "." + index_name, found->primary_key ? "PRIMARY KEY" : "UNIQUE KEY"});
        RaiseIf(target.catalogue == nullptr, 40517, {"DROP INDEX of a temporary table"});
        session.transactions().Write(target.table->alias,
                                     [&] { target.catalogue->RemoveIndex(*target.table, *found); });
    }
    session.results().Done(Command::None, std::nullopt);
}

} // namespace devsql

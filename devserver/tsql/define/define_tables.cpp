// CREATE TABLE, SELECT … INTO and table variables.
#include <algorithm>

#include "devserver/tsql/define/definitions.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/required.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/object_place.h"

namespace devsql {
namespace {

/// PRIMARY KEY first, because it makes its columns NOT NULL.
std::vector<const ast::Constraint*> Ordered(const std::vector<ast::Constraint>& constraints) {
    std::vector<const ast::Constraint*> ordered;
    for (const bool primary : {true, false}) {
        for (const ast::Constraint& constraint : constraints) {
            if ((constraint.kind == ast::ConstraintKind::PrimaryKey) == primary) {
                ordered.push_back(&constraint);
            }
        }
    }
    return ordered;
}

void Build(TableBuilder& builder, const ast::TableDefinition& definition) {
    for (const ast::ColumnDefinition& column : definition.columns) {
        builder.AddColumn(column);
    }
    for (const ast::ColumnDefinition& column : definition.columns) {
        for (const ast::Constraint* constraint : Ordered(column.constraints)) {
            builder.AddConstraint(*constraint, column.name);
        }
    }
    for (const ast::Constraint* constraint : Ordered(definition.constraints)) {
        builder.AddConstraint(*constraint, "");
    }
    RaiseIf(builder.table().columns.empty(), 1753, {"", builder.table().name});
}

void StoreTemporary(SessionCore& session, const TableDef& table) {
    session.connection().Execute(CreateTableText(table));
    for (const IndexDef& index : table.indexes) {
        session.connection().Execute(CreateIndexText(table, index));
    }
}

void StoreTable(Catalogue& catalogue, const TableBuilder& builder, TableDef table) {
    const std::vector<IndexDef> indexes = std::exchange(table.indexes, {});
    const std::vector<CheckDef> checks = std::exchange(table.checks, {});
    catalogue.AddTable(table);
    for (const IndexDef& index : indexes) {
        catalogue.AddIndex(table, index);
    }
    for (const CheckDef& check : checks) {
        catalogue.AddCheck(table.id, check);
    }
    for (const ForeignKeyDef& key : builder.foreign_keys()) {
        catalogue.AddForeignKey(key);
    }
}

TableDef NewTemporary(SessionCore& session, const std::string& name) {
    TableDef table;
    table.id = session.temporaries().NextId();
    table.alias = "temp";
    table.schema = "dbo";
    table.name = name;
    table.physical = name + std::to_string(table.id);
    return table;
}

/// Creates a table, of which `define` makes the columns and constraints. Raises 2714.
template <class Define>
void CreateTable(SessionCore& session, const ast::Name& name, Define define) {
    const bool temporary = IsSessionTable(name.last());
    const ObjectPlace place = PlaceOf(session, name);
    Catalogue* catalogue = temporary ? nullptr : &session.databases().Get(place.database);
    session.transactions().Write(temporary ? "temp" : catalogue->alias(), [&] {
        RaiseIf(temporary ? session.temporaries().HasOwn(name.last())
                          : catalogue->FindObject(place.schema, place.name).has_value(),
                2714, {temporary ? name.last() : place.name}, 6);
        TableDef table = temporary ? NewTemporary(session, name.last()) : TableDef{};
        if (!temporary) {
            RequireSchema(*catalogue, place.schema);
            table.id = catalogue->NextId();
            table.alias = catalogue->alias();
            table.schema = place.schema;
            table.name = place.name;
            table.physical = catalogue->PhysicalName(place.schema, place.name);
        }
        TableBuilder builder(session, catalogue, std::move(table));
        define(builder);
        if (temporary) {
            StoreTemporary(session, builder.table());
            session.temporaries().Add(builder.table());
        } else {
            RequireFreeNames(*catalogue, builder);
            StoreTable(*catalogue, builder, builder.table());
        }
    });
    if (IsGlobalTable(name.last())) {
        session.temporaries().OwnGlobal(name.last());
    }
}

} // namespace

TableBuilder::TableBuilder(SessionCore& session, Catalogue* catalogue, TableDef table, bool altering)
    : session_(session), catalogue_(catalogue), table_(std::move(table)), altering_(altering) {}

std::string TableBuilder::MadeName(std::string_view prefix, std::string_view column) const {
    std::uint64_t hash = static_cast<std::uint64_t>(table_.id) * 2654435761U;
    for (const char c : column) {
        hash = hash * 31 + static_cast<unsigned char>(c);
    }
    hash += (table_.indexes.size() + table_.checks.size() + foreign_keys_.size()) * 7919;
    std::string name = std::string(prefix) + "__" + SubText(table_.name, 0, 9) + "__";
    if (!column.empty()) {
        name += SubText(column, 0, 5) + "__";
    }
    return name + HexText(BigEndian(hash, 4));
}

ColumnDef& TableBuilder::Column(const std::string& name, std::int32_t error) {
    for (ColumnDef& column : table_.columns) {
        if (SameText(column.name, name)) {
            return column;
        }
    }
    RaiseError(error, {name, table_.name});
}

Type TableBuilder::TypeOfComputed(const std::string& text) {
    const ast::ExprPtr expr = ParseExpression(text);
    Emission emission(session_);
    Binder binder(session_, emission);
    Scope scope;
    scope.sources.push_back(binder.SourceOf(std::make_shared<TableDef>(table_), table_.name, "t"));
    return Settled(binder.BindValue(*expr, &scope)->type);
}

void TableBuilder::AddColumn(const ast::ColumnDefinition& definition) {
    RaiseIf(table_.Find(definition.name) != nullptr, 2705, {definition.name, table_.name});
    constexpr std::size_t kMostColumns = 1024;
    RaiseIf(table_.columns.size() >= kMostColumns, 1702,
            {definition.name, table_.name, std::to_string(kMostColumns)});
    ColumnDef column;
    column.name = definition.name;
    for (const ColumnDef& other : table_.columns) {
        column.id = std::max(column.id, other.id);
    }
    ++column.id;
    if (!definition.computed.empty()) {
        column.computed = definition.computed;
        column.type = TypeOfComputed(definition.computed);
        table_.columns.push_back(std::move(column));
        return;
    }
    bool type_nullable = true;
    Emission emission(session_);
    column.type =
        Binder(session_, emission).ResolveType(definition.type, 1, &column.user_type, &type_nullable);
    column.nullable = definition.nullable.value_or(type_nullable && column.type.id != TypeId::Timestamp);
    column.row_guid = definition.row_guid;
    if (definition.identity) {
        const bool whole = IsInteger(column.type.id) || (IsDecimal(column.type.id) && column.type.scale == 0);
        RaiseIf(!whole, 2749, {column.name});
        RaiseIf(table_.IdentityColumn() != nullptr, 2744, {table_.name});
        RaiseIf(definition.nullable == true, 8147, {column.name, table_.name});
        column.identity = true;
        column.seed = definition.identity->seed;
        column.increment = definition.identity->increment;
        column.nullable = false;
    }
    const auto is_timestamp = [](const ColumnDef& other) { return other.type.id == TypeId::Timestamp; };
    RaiseIf(is_timestamp(column) && std::ranges::any_of(table_.columns, is_timestamp), 2738,
            {table_.name, column.name});
    table_.columns.push_back(std::move(column));
}

void TableBuilder::AddConstraint(const ast::Constraint& constraint, const std::string& column) {
    switch (constraint.kind) {
    case ast::ConstraintKind::PrimaryKey:
    case ast::ConstraintKind::Unique:
        AddKey(constraint, column);
        break;
    case ast::ConstraintKind::ForeignKey:
        AddForeignKey(constraint, column);
        break;
    case ast::ConstraintKind::Check:
        AddCheck(constraint, column);
        break;
    case ast::ConstraintKind::Default:
        AddDefault(constraint, column);
        break;
    }
}

void TableBuilder::AddKey(const ast::Constraint& constraint, const std::string& column) {
    const bool primary = constraint.kind == ast::ConstraintKind::PrimaryKey;
    IndexDef index;
    index.unique = true;
    index.constraint = true;
    index.primary_key = primary;
    index.clustered = constraint.clustered;
    int highest = 1;
    for (const IndexDef& other : table_.indexes) {
        RaiseIf(primary && other.primary_key, altering_ ? 1779 : 8110, {table_.name});
        if (other.clustered && index.clustered) {
            RaiseIf(constraint.clustering_given, 8112, {table_.name});
            index.clustered = false; // A primary key is clustered unless another index is.
        }
        highest = std::max(highest, other.id);
    }
    index.id = index.clustered ? 1 : highest + 1;
    std::vector<ast::IndexColumn> columns = constraint.columns;
    if (columns.empty()) {
        columns.push_back({column, false});
    }
    for (const ast::IndexColumn& key : columns) {
        ColumnDef& definition = Column(key.name, 1911);
        if (primary && definition.nullable) {
            // A column without NULL or NOT NULL becomes NOT NULL by a primary key.
            definition.nullable = false;
        }
        RaiseIf(IsOldLob(definition.type.id) || definition.type.length == kMaxLength, 1919,
                {definition.name, table_.name});
        index.columns.push_back({definition.id, key.descending});
    }
    index.name = constraint.name.empty() ? MadeName(primary ? "PK" : "UQ") : constraint.name;
    table_.indexes.push_back(std::move(index));
}

void TableBuilder::AddCheck(const ast::Constraint& constraint, const std::string& column) {
    CheckDef check;
    check.name = constraint.name.empty() ? MadeName("CK", column) : constraint.name;
    check.text = constraint.text;
    table_.checks.push_back(std::move(check));
}

void TableBuilder::AddDefault(const ast::Constraint& constraint, const std::string& column) {
    ColumnDef& target = Column(constraint.columns.empty() ? column : constraint.columns[0].name, 1752);
    RaiseIf(!target.default_text.empty(), 1781);
    RaiseIf(target.identity, 1754, {target.name, table_.name});
    RaiseIf(target.type.id == TypeId::Timestamp, 1755, {target.name, table_.name});
    target.default_text = constraint.text;
    target.default_name = constraint.name.empty() ? MadeName("DF", target.name) : constraint.name;
}

TablePtr TableBuilder::Referenced(const ast::Constraint& constraint, const std::string& name) {
    const ObjectPlace place = PlaceOf(session_, constraint.references);
    if (SameText(place.name, table_.name) && SameText(place.schema, table_.schema)) {
        return std::make_shared<TableDef>(table_);
    }
    const ObjectDef object = Required(catalogue_->FindObject(place.schema, place.name), 1767,
                                      {name, constraint.references.text()});
    RaiseIf(object.type != "U", 1767, {name, constraint.references.text()});
    return catalogue_->LoadTable(object.id);
}

void TableBuilder::AddForeignKey(const ast::Constraint& constraint, const std::string& column) {
    if (catalogue_ == nullptr) {
        return; // SQL Server ignores foreign keys of temporary tables too.
    }
    ForeignKeyDef key;
    key.name = constraint.name.empty() ? MadeName("FK", column) : constraint.name;
    key.table = table_.id;
    key.on_delete = static_cast<OnChange>(constraint.on_delete);
    key.on_update = static_cast<OnChange>(constraint.on_update);
    const TablePtr referenced = Referenced(constraint, key.name);
    key.referenced = referenced->id;
    FindKeyColumns(constraint, column, *referenced, key);
    RequireReferencedKey(constraint, *referenced, key);
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        const ColumnDef& own = table_.ById(key.columns[i]);
        const ColumnDef& other = referenced->ById(key.referenced_columns[i]);
        const bool texts = IsCharacter(own.type.id) && IsCharacter(other.type.id);
        const bool decimals = IsDecimal(own.type.id) && IsDecimal(other.type.id);
        RaiseIf(own.type.id != other.type.id && !texts && !decimals, 1778,
                {referenced->name, other.name, table_.name, own.name, key.name});
    }
    foreign_keys_.push_back(std::move(key));
}

/// Finds the columns on both sides. A constraint without a list of columns is for the column that it follows.
void TableBuilder::FindKeyColumns(const ast::Constraint& constraint, const std::string& column,
                                  const TableDef& referenced, ForeignKeyDef& key) const {
    std::vector<ast::IndexColumn> columns = constraint.columns;
    if (columns.empty()) {
        columns.push_back({column, false});
    }
    for (const ast::IndexColumn& own : columns) {
        key.columns.push_back(Required(table_.Find(own.name), 1769, {key.name, own.name, table_.name}).id);
    }
    for (const std::string& name : constraint.referenced_columns) {
        key.referenced_columns.push_back(
            Required(referenced.Find(name), 1770, {key.name, name, referenced.name}).id);
    }
}

/// The columns referred to must be a key. Without a list they are the primary key. Raises 1773, 1774, 1776.
void TableBuilder::RequireReferencedKey(const ast::Constraint& constraint, const TableDef& referenced,
                                        ForeignKeyDef& key) {
    const bool any_key =
        std::any_of(referenced.indexes.begin(), referenced.indexes.end(), [&](const IndexDef& index) {
            std::vector<int> ids;
            for (const KeyColumn& part : index.columns) {
                ids.push_back(part.column);
            }
            if (constraint.referenced_columns.empty() && index.primary_key) {
                key.referenced_columns = ids;
            }
            return index.unique && std::is_permutation(ids.begin(), ids.end(), key.referenced_columns.begin(),
                                                       key.referenced_columns.end());
        });
    RaiseIf(constraint.referenced_columns.empty() && key.referenced_columns.empty(), 1773,
            {key.name, referenced.name});
    RaiseIf(key.columns.size() != key.referenced_columns.size(), 1774, {key.name});
    RaiseIf(!any_key, 1776, {referenced.name, key.name});
}

// ------------------------------------------------------------------ statements

void RunCreateTable(SessionCore& session, const ast::CreateTableStatement& create) {
    CreateTable(session, create.table, [&](TableBuilder& builder) { Build(builder, create.definition); });
    session.results().Done(Command::None, std::nullopt);
}

void RequireSchema(Catalogue& catalogue, const std::string& schema) {
    SqliteStatement row = catalogue.Prepare("SELECT 1 FROM {db}.devsql_schemas WHERE name = ?1");
    RaiseIf(!row.BindText(1, schema).Step(), 2760, {schema});
}

void RequireFreeNames(Catalogue& catalogue, TableBuilder& builder) {
    const TableDef& table = builder.table();
    const auto require = [&](const std::string& name) {
        RaiseIf(catalogue.FindObject(table.schema, name).has_value(), 2714, {name}, 5);
    };
    for (const IndexDef& index : table.indexes) {
        require(index.name);
    }
    for (const CheckDef& check : table.checks) {
        require(check.name);
    }
    for (const ForeignKeyDef& key : builder.foreign_keys()) {
        require(key.name);
    }
    for (const ColumnDef& column : table.columns) {
        if (!column.default_name.empty()) {
            require(column.default_name);
        }
    }
}

void CreateTableFor(SessionCore& session, const ast::Name& name, const std::vector<Column>& columns) {
    CreateTable(session, name, [&](TableBuilder& builder) {
        TableDef& table = builder.table();
        for (const Column& column : columns) {
            ColumnDef definition;
            definition.id = static_cast<int>(table.columns.size() + 1);
            definition.name = column.name;
            definition.type = column.type;
            definition.nullable = column.nullable;
            definition.identity = column.identity && table.IdentityColumn() == nullptr;
            definition.seed = definition.increment = definition.identity ? 1 : 0;
            RaiseIf(table.Find(column.name) != nullptr, 2705, {column.name, table.name});
            table.columns.push_back(std::move(definition));
        }
    });
}

void DeclareTable(SessionCore& session, const std::string& name, const ast::TableDefinition& definition) {
    TableBuilder builder(session, nullptr, NewTemporary(session, name));
    Build(builder, definition);
    StoreTemporary(session, builder.table());
    session.calls().frame().tables[ToUpper(name)] = std::make_shared<const TableDef>(builder.table());
}

} // namespace devsql

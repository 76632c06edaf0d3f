// Finds the column, table, view, linked server's table or type that a name means.
#include "devserver/tsql/bind/name_binder.h"

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/catalogue/system_views.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/object_place.h"

namespace devsql {
namespace {

constexpr int kDeepestView = 32;

/// The table "inserted" or "deleted" of a trigger. SQLite's temporary database also has the tables that begin
/// with # or @ and the rows of linked servers' tables, which have those tables' names.
bool IsTransitionTable(const TableDef& table) {
    return table.alias == "temp" && (table.name == "INSERTED" || table.name == "DELETED") &&
           table.physical == table.name + std::to_string(table.id);
}

/// A table variable or a temporary table. Raises 1087, 208.
TablePtr LocalTable(SessionCore& session, const ast::Name& name) {
    const bool variable = name.last().starts_with("@");
    TablePtr table =
        variable ? session.calls().FindTableVariable(name.last()) : session.temporaries().Find(name.last());
    if (!table) {
        RaiseError(variable ? 1087 : 208, {variable ? name.last() : name.text()});
    }
    return table;
}

/// True if a name such as "b.BatchId" or "dbo.Batches.BatchId" may mean a column of this source.
bool Names(const ScopeSource& source, const ast::Name& name) {
    const std::size_t qualifiers = name.parts.size() - 1;
    if (qualifiers == 1) {
        return SameText(source.exposed, name.parts[0]);
    }
    if (source.name.empty() || !SameText(source.name.last(), name.parts[qualifiers - 1]) ||
        !SameText(source.exposed, source.name.last())) {
        return false;
    }
    const std::string& schema = name.parts[qualifiers - 2];
    const std::size_t own = source.name.parts.size();
    const std::string own_schema =
        own > 1 && !source.name.parts[own - 2].empty() ? source.name.parts[own - 2] : "dbo";
    return schema.empty() || SameText(schema, own_schema);
}

} // namespace

void RequireReadable(const ScopeColumn& column) {
    RaiseIf(column.sql.empty(), 311);
}

ScopeSource NameBinder::SourceOf(const TablePtr& table, const std::string& exposed,
                                 const std::string& sql_alias) const {
    ScopeSource source;
    source.exposed = exposed;
    source.sql_alias = sql_alias;
    source.table = table;
    const bool of_trigger = IsTransitionTable(*table);
    for (const ColumnDef& column : table->columns) {
        const bool hidden = of_trigger && IsOldLob(column.type.id);
        source.columns.push_back({column.name, column.type, column.nullable, column.identity,
                                  hidden ? "" : sql_alias + "." + QuoteName(column.name)});
    }
    return source;
}

const CommonTables::Entry* NameBinder::FindCommon(const std::string& name) const {
    for (const CommonTables* level = binding_.common; level != nullptr; level = level->outer) {
        for (const CommonTables::Entry& entry : level->entries) {
            if (SameText(entry.name, name)) {
                return &entry;
            }
        }
    }
    return nullptr;
}

std::string NameBinder::Source(const ast::NamedSource& named, Scope& scope) {
    const std::string& last = named.name.last();
    const Naming naming{named, named.alias.empty() ? last : named.alias, binding_.NextAlias(), scope};
    for (const ScopeSource& other : scope.sources) {
        if (SameText(other.exposed, naming.exposed) &&
            (!named.alias.empty() || other.name.empty() || other.name.text() == named.name.text())) {
            RaiseError(named.alias.empty() ? 1013 : 1011, {naming.exposed, naming.exposed});
        }
    }
    if (last.starts_with("@") || IsSessionTable(last)) {
        return AddTable(naming, LocalTable(session_, named.name));
    }
    if (named.name.parts.size() == 1) {
        if (const CommonTables::Entry* entry = FindCommon(last)) {
            return CommonTable(naming, *entry);
        }
        if (binding_.view_database.empty() && session_.calls().FindTableVariable(last)) {
            return AddTable(naming, session_.calls().FindTableVariable(last)); // INSERTED or DELETED
        }
    }
    return session_.remote().Means(named.name) ? LinkedTable(naming) : CatalogueTable(naming);
}

std::string NameBinder::AddTable(const Naming& naming, const TablePtr& table) {
    naming.scope.sources.push_back(SourceOf(table, naming.exposed, naming.alias));
    naming.scope.sources.back().name = naming.named.name;
    return table->Qualified() + " AS " + naming.alias;
}

std::string NameBinder::CommonTable(const Naming& naming, const CommonTables::Entry& entry) {
    ScopeSource source{naming.exposed, {}, naming.alias, {}, nullptr};
    AddColumns(source, entry.columns, {});
    if (entry.recursive) { // The level of the recursion; RecursiveMember knows it by its empty name.
        source.columns.push_back({"", Simple(TypeId::BigInt), false, false, naming.alias + ".level"});
    }
    naming.scope.sources.push_back(std::move(source));
    return (entry.recursive ? entry.sql : "(" + entry.sql + ")") + " AS " + naming.alias;
}

std::string NameBinder::LinkedTable(const Naming& naming) {
    const std::shared_ptr<RemoteTable> remote = Remote(naming.named.name);
    remote->Fill();
    std::string sql = AddTable(naming, remote->table());
    for (ScopeColumn& column : naming.scope.sources.back().columns) {
        column.identity = false; // SELECT … INTO takes no identity over from another server.
    }
    return sql;
}

std::string NameBinder::CatalogueTable(const Naming& naming) {
    const ast::Name& name = naming.named.name;
    ObjectPlace place = PlaceOf(session_, name);
    if (!binding_.view_database.empty() && !IsGlobalTable(name.last()) &&
        (name.parts.size() < 3 || name.parts[0].empty())) {
        place.database = binding_.view_database;
    }
    Catalogue& catalogue = session_.databases().Get(place.database);
    const std::optional<ObjectDef> object = session_.databases().Object(catalogue, place.schema, place.name);
    if (object && object->type == "U") {
        return AddTable(naming, session_.databases().Table(catalogue, object->id));
    }
    if (object && object->type == "V") {
        return View(naming, *object, place.database);
    }
    if (std::optional<std::string> sql = SystemView(naming, place)) {
        return *std::move(sql);
    }
    RaiseError(208, {name.text()});
}

std::string NameBinder::View(const Naming& naming, const ObjectDef& view, const std::string& database) {
    RaiseIf(++binding_.view_depth > kDeepestView, 217);
    const ast::CreateModuleStatement module = ParseModule(view.text, view.quoted_identifier);
    const std::string outer_database = std::exchange(binding_.view_database, database);
    CommonTables none; // A view does not see the WITH tables of the query that names it.
    CommonTables* const outer_tables = std::exchange(binding_.common, &none);
    const BoundQuery query = binder_.BindQuery(*module.query);
    binding_.common = outer_tables;
    binding_.view_database = outer_database;
    --binding_.view_depth;
    RaiseIf(!module.columns.empty() && module.columns.size() != query.columns.size(), 4502, {view.name});
    ScopeSource source{naming.exposed, naming.named.name, binding_.NextAlias(), {}, nullptr};
    AddColumns(source, query.columns, module.columns);
    std::string sql = "(" + query.sql + ") AS " + source.sql_alias;
    naming.scope.sources.push_back(std::move(source));
    return sql;
}

std::optional<std::string> NameBinder::SystemView(const Naming& naming, const ObjectPlace& place) {
    const ast::Name& name = naming.named.name;
    const devsql::SystemView* view = FindSystemView(name.parts.size() > 1 ? place.schema : "", place.name);
    if (view == nullptr) {
        return std::nullopt;
    }
    ScopeSource source{naming.exposed, name, binding_.NextAlias(), {}, nullptr};
    for (const SystemColumn& column : view->columns) {
        source.columns.push_back(
            {column.name, column.type, true, false, source.sql_alias + "." + QuoteName(column.name)});
    }
    std::string sql = "(" + SystemViewText(*view, session_, place.database) + ") AS " + source.sql_alias;
    naming.scope.sources.push_back(std::move(source));
    return sql;
}

BoundPtr NameBinder::Column(const ast::ColumnExpr& column, const Scope* scope) const {
    const ast::Name& name = column.name;
    bool qualifier_known = name.parts.size() == 1;
    for (const Scope* level = scope; level != nullptr; level = level->outer) {
        const ScopeColumn* found = nullptr;
        const ScopeSource* found_in = nullptr;
        for (const ScopeSource& source : level->sources) {
            if (name.parts.size() > 1 && !Names(source, name)) {
                continue;
            }
            qualifier_known = true;
            for (const ScopeColumn& candidate : source.columns) {
                if (!SameText(candidate.name, name.last())) {
                    continue;
                }
                if (found != nullptr) {
                    RaiseError(209, {name.last()});
                }
                found = &candidate;
                found_in = &source;
            }
        }
        if (found != nullptr) {
            RequireReadable(*found);
            return MakeColumn(*found, *found_in, level->depth);
        }
    }
    if (scope == nullptr && name.parts.size() == 1) {
        RaiseError(128, {name.last(), "expressions"});
    }
    if (!qualifier_known) {
        RaiseError(4104, {name.text()});
    }
    RaiseError(207, {name.last()});
}

std::shared_ptr<RemoteTable> NameBinder::Remote(const ast::Name& name) {
    for (const std::shared_ptr<RemoteTable>& table : binding_.remote_tables) {
        if (Folded(table->name().text()) == Folded(name.text())) {
            return table;
        }
    }
    return binding_.remote_tables.emplace_back(std::make_shared<RemoteTable>(session_.remote(), name));
}

Target NameBinder::WriteTarget(const ast::Name& name) {
    Target target;
    if (name.last().starts_with("@") || IsSessionTable(name.last())) {
        target.table = LocalTable(session_, name);
        return target;
    }
    RaiseIf(name.parts.size() == 1 && session_.calls().FindTableVariable(name.last()), 286);
    if (session_.remote().Means(name)) {
        target.remote = Remote(name);
        target.table = target.remote->table();
        return target;
    }
    const ObjectPlace place = PlaceOf(session_, name);
    Catalogue& catalogue = session_.databases().Get(place.database);
    const std::optional<ObjectDef> object = session_.databases().Object(catalogue, place.schema, place.name);
    if (object && object->type == "V") {
        RaiseError(40517, {"writing through the view " + name.text()});
    }
    if (!object || object->type != "U") {
        if (FindSystemView(name.parts.size() > 1 ? place.schema : "", place.name) != nullptr) {
            RaiseError(259);
        }
        RaiseError(208, {name.text()});
    }
    target.table = session_.databases().Table(catalogue, object->id);
    target.catalogue = &catalogue;
    return target;
}

Type NameBinder::ResolveType(const ast::TypeSpec& spec, std::int32_t default_length, std::string* user_type,
                             bool* nullable) {
    const std::string& name = spec.name.last();
    const bool qualified = spec.name.parts.size() > 1;
    if (!qualified || AsciiEqual(spec.name.parts[0], "sys")) {
        if (AsciiEqual(name, "sysname")) {
            if (user_type != nullptr) {
                *user_type = "sysname";
            }
            if (nullable != nullptr) {
                *nullable = false;
            }
            return Sized(TypeId::NVarChar, 128);
        }
        if (const std::optional<TypeId> id = FindTypeId(name)) {
            return DeclaredType(*id, spec.first, spec.second, spec.max, default_length);
        }
    }
    Catalogue& catalogue = session_.databases().Current();
    const std::optional<UserTypeDef> found = catalogue.FindType(qualified ? spec.name.parts[0] : "", name);
    if (!found) {
        RaiseError(2715, {"1", spec.name.text()});
    }
    if (user_type != nullptr) {
        *user_type = found->schema + "." + found->name;
    }
    if (nullable != nullptr) {
        *nullable = found->nullable;
    }
    return found->type;
}

} // namespace devsql

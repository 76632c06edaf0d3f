// Names: tables, views, columns and where they lie.
#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/catalogue/system_views.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/object_place.h"

namespace devsql {
namespace {

constexpr int kDeepestView = 32;

bool SameName(std::string_view a, std::string_view b) {
    return CompareText(a, b) == 0;
}

/// Does "b.BatchId", "dbo.Batches.BatchId" mean a column of this source?
bool Names(const ScopeSource& source, const ast::Name& name) {
    const std::size_t qualifiers = name.parts.size() - 1;
    if (qualifiers == 1) {
        return SameName(source.exposed, name.parts[0]);
    }
    if (source.name.empty() || !SameName(source.name.last(), name.parts[qualifiers - 1]) ||
        !SameName(source.exposed, source.name.last())) {
        return false;
    }
    const std::string& schema = name.parts[qualifiers - 2];
    const std::size_t own = source.name.parts.size();
    const std::string own_schema =
        own > 1 && !source.name.parts[own - 2].empty() ? source.name.parts[own - 2] : "dbo";
    return schema.empty() || SameName(schema, own_schema);
}

} // namespace

ScopeSource Binder::SourceOf(const TablePtr& table, const std::string& exposed,
                             const std::string& sql_alias) const {
    ScopeSource source;
    source.exposed = exposed;
    source.sql_alias = sql_alias;
    source.table = table;
    for (const ColumnDef& column : table->columns) {
        source.columns.push_back({column.name, column.type, column.nullable, column.identity,
                                  sql_alias + "." + QuoteName(column.name)});
    }
    return source;
}

const CommonTables::Entry* Binder::FindCommon(const std::string& name) const {
    for (const CommonTables* level = common_; level != nullptr; level = level->outer) {
        for (const CommonTables::Entry& entry : level->entries) {
            if (SameName(entry.name, name)) {
                return &entry;
            }
        }
    }
    return nullptr;
}

std::string Binder::BindNamed(const ast::NamedSource& named, Scope& scope) {
    const std::string& last = named.name.last();
    const std::string exposed = named.alias.empty() ? last : named.alias;
    const std::string alias = NextAlias();
    for (const ScopeSource& other : scope.sources) {
        if (SameName(other.exposed, exposed) &&
            (!named.alias.empty() || other.name.empty() || other.name.text() == named.name.text())) {
            RaiseError(named.alias.empty() ? 1013 : 1011, {exposed, exposed});
        }
    }
    const auto add_table = [&](const TablePtr& table) {
        scope.sources.push_back(SourceOf(table, exposed, alias));
        scope.sources.back().name = named.name;
        return table->Qualified() + " AS " + alias;
    };
    if (last.starts_with("@")) {
        const TablePtr table = session_.calls().FindTableVariable(last);
        if (!table) {
            RaiseError(1087, {last});
        }
        return add_table(table);
    }
    if (IsSessionTable(last)) {
        const TablePtr table = session_.temporaries().Find(last);
        if (!table) {
            RaiseError(208, {named.name.text()});
        }
        return add_table(table);
    }
    if (named.name.parts.size() == 1) {
        if (const CommonTables::Entry* entry = FindCommon(last)) {
            ScopeSource source{exposed, {}, alias, {}, nullptr};
            for (std::size_t i = 0; i < entry->columns.size(); ++i) {
                const Column& column = entry->columns[i];
                source.columns.push_back({column.name, column.type, column.nullable, column.identity,
                                          alias + ".c" + std::to_string(i + 1)});
            }
            if (entry->recursive) { // How deep the row lies, under no name.
                source.columns.push_back({"", Simple(TypeId::BigInt), false, false, alias + ".level"});
            }
            scope.sources.push_back(std::move(source));
            return (entry->recursive ? entry->sql : "(" + entry->sql + ")") + " AS " + alias;
        }
    }
    if (session_.remote().Means(named.name)) {
        const std::shared_ptr<RemoteTable> remote = Remote(named.name);
        remote->Fill();
        std::string sql = add_table(remote->table());
        for (ScopeColumn& column : scope.sources.back().columns) {
            column.identity = false; // SELECT … INTO takes no identity over from another server.
        }
        return sql;
    }
    ObjectPlace place = PlaceOf(session_, named.name);
    if (!database_.empty() && !IsGlobalTable(last) &&
        (named.name.parts.size() < 3 || named.name.parts[0].empty())) {
        place.database = database_;
    }
    Catalogue& catalogue = session_.databases().Get(place.database);
    const std::optional<ObjectDef> object = session_.databases().Object(catalogue, place.schema, place.name);
    if (object && object->type == "U") {
        return add_table(session_.databases().Table(catalogue, object->id));
    }
    if (object && object->type == "V") {
        const std::string saved = std::exchange(database_, place.database);
        std::string sql = BindView(catalogue, *object, exposed, scope);
        database_ = saved;
        scope.sources.back().name = named.name;
        return sql;
    }
    std::string sql;
    if (BindSystemView(place.database, named.name.parts.size() > 1 ? place.schema : "", place.name, exposed,
                       named.name, scope, sql)) {
        return sql;
    }
    RaiseError(208, {named.name.text()});
}

std::string Binder::BindView(Catalogue& catalogue, const ObjectDef& view, const std::string& exposed,
                             Scope& scope) {
    if (++view_depth_ > kDeepestView) {
        RaiseError(217);
    }
    const ast::CreateModuleStatement module = ParseModule(view.text, view.quoted_identifier);
    CommonTables none; // A view sees nothing of the WITH around it.
    CommonTables* const saved = std::exchange(common_, &none);
    BoundQuery query = BindQuery(*module.query);
    common_ = saved;
    --view_depth_;
    static_cast<void>(catalogue);
    if (!module.columns.empty() && module.columns.size() != query.columns.size()) {
        RaiseError(4502, {view.name});
    }
    ScopeSource source{exposed, {}, NextAlias(), {}, nullptr};
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        const Column& column = query.columns[i];
        source.columns.push_back({module.columns.empty() ? column.name : module.columns[i], column.type,
                                  column.nullable, column.identity,
                                  source.sql_alias + ".c" + std::to_string(i + 1)});
    }
    std::string sql = "(" + query.sql + ") AS " + source.sql_alias;
    scope.sources.push_back(std::move(source));
    return sql;
}

bool Binder::BindSystemView(const std::string& database, const std::string& schema, const std::string& name,
                            const std::string& exposed, const ast::Name& written, Scope& scope,
                            std::string& sql) {
    const SystemView* view = FindSystemView(schema, name);
    if (view == nullptr) {
        return false;
    }
    ScopeSource source{exposed, written, NextAlias(), {}, nullptr};
    for (const SystemColumn& column : view->columns) {
        source.columns.push_back(
            {column.name, column.type, true, false, source.sql_alias + "." + QuoteName(column.name)});
    }
    sql = "(" + SystemViewText(*view, session_, database) + ") AS " + source.sql_alias;
    scope.sources.push_back(std::move(source));
    return true;
}

BoundPtr Binder::BindColumn(const ast::ColumnExpr& column, const Scope* scope) const {
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
                if (!SameName(candidate.name, name.last())) {
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
            auto node = std::make_shared<Bound>(*MakeSql(found->sql, found->type, found->nullable));
            node->source = found_in->exposed;
            node->column = found->name;
            node->depth = level->depth;
            node->identity = found->identity;
            return node;
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

/// The same table twice in a statement is one.
std::shared_ptr<RemoteTable> Binder::Remote(const ast::Name& name) {
    for (const std::shared_ptr<RemoteTable>& table : remote_tables_) {
        if (Folded(table->name().text()) == Folded(name.text())) {
            return table;
        }
    }
    return remote_tables_.emplace_back(std::make_shared<RemoteTable>(session_.remote(), name));
}

Target BindTargetAs(SessionCore& session, Emission& emission, const ast::Name& name, std::int32_t error) {
    constexpr std::int32_t kNoObject = 208;
    try {
        return Binder(session, emission).BindTarget(name);
    } catch (const SqlError& failure) {
        if (failure.number() == kNoObject) {
            RaiseError(error, {name.text()});
        }
        throw;
    }
}

Target Binder::BindTarget(const ast::Name& name) {
    Target target;
    if (name.last().starts_with("@")) {
        target.table = session_.calls().FindTableVariable(name.last());
        if (!target.table) {
            RaiseError(1087, {name.last()});
        }
        return target;
    }
    if (IsSessionTable(name.last())) {
        target.table = session_.temporaries().Find(name.last());
        if (!target.table) {
            RaiseError(208, {name.text()});
        }
        return target;
    }
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

} // namespace devsql

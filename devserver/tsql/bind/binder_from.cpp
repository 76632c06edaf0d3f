// FROM: tables, joins and derived tables as SQLite joins them; WITH; and what a view's columns are.
#include <set>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/bind/select_parts.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

void RequireDifferentNames(const std::vector<Column>& columns, std::int32_t error, std::string_view of) {
    std::set<std::string> names;
    for (const Column& column : columns) {
        if (!names.insert(ToUpper(column.name)).second) {
            RaiseError(error, {column.name, of});
        }
    }
}

std::string Binder::BindFrom(const std::vector<ast::TableSourcePtr>& sources, Scope& scope) {
    std::string text;
    for (const ast::TableSourcePtr& source : sources) {
        // A comma binds less than a JOIN in T-SQL and as much in SQLite: joined sources go into parentheses.
        const bool joined = std::holds_alternative<ast::JoinSource>(source->node);
        std::string item = BindSource(*source, scope);
        if (joined && sources.size() > 1) {
            item = "(" + item + ")";
        }
        text += (text.empty() ? "" : " CROSS JOIN ") + item;
    }
    return text;
}

std::string Binder::BindSource(const ast::TableSource& source, Scope& scope) {
    if (const auto* named = std::get_if<ast::NamedSource>(&source.node)) {
        return BindNamed(*named, scope);
    }
    if (const auto* derived = std::get_if<ast::DerivedSource>(&source.node)) {
        return BindDerived(*derived, scope);
    }
    return BindJoin(std::get<ast::JoinSource>(source.node), scope);
}

std::string Binder::BindDerived(const ast::DerivedSource& derived, Scope& scope) {
    BoundQuery query = BindQuery(*derived.query, scope.outer);
    ScopeSource source{derived.alias, {}, NextAlias(), {}, nullptr};
    if (!derived.columns.empty() && derived.columns.size() != query.columns.size()) {
        RaiseError(derived.columns.size() < query.columns.size() ? 8158 : 8159, {derived.alias});
    }
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        const Column& column = query.columns[i];
        const std::string& name = derived.columns.empty() ? column.name : derived.columns[i];
        if (name.empty()) {
            RaiseError(8155, {std::to_string(i + 1), derived.alias});
        }
        source.columns.push_back({name, column.type, column.nullable, column.identity,
                                  source.sql_alias + ".c" + std::to_string(i + 1)});
    }
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        query.columns[i].name = source.columns[i].name;
    }
    RequireDifferentNames(query.columns, 8156, derived.alias);
    std::string sql = "(" + query.sql + ") AS " + source.sql_alias;
    scope.sources.push_back(std::move(source));
    return sql;
}

std::string Binder::BindJoin(const ast::JoinSource& join, Scope& scope) {
    constexpr std::string_view kWords[] = {" JOIN ", " LEFT JOIN ", " RIGHT JOIN ", " FULL JOIN ",
                                           " CROSS JOIN "};
    const std::size_t first = scope.sources.size();
    std::string left = BindSource(*join.left, scope);
    const std::size_t middle = scope.sources.size();
    std::string right = BindSource(*join.right, scope);
    if (std::holds_alternative<ast::JoinSource>(join.right->node)) {
        right = "(" + right + ")";
    }
    const auto make_nullable = [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            for (ScopeColumn& column : scope.sources[i].columns) {
                column.nullable = true;
            }
        }
    };
    if (join.kind == ast::JoinKind::Left || join.kind == ast::JoinKind::Full) {
        make_nullable(middle, scope.sources.size());
    }
    if (join.kind == ast::JoinKind::Right || join.kind == ast::JoinKind::Full) {
        make_nullable(first, middle);
    }
    std::string sql = left + std::string(kWords[static_cast<std::size_t>(join.kind)]) + right;
    if (join.on) {
        sql += " ON " + emission_.EmitCondition(BindCondition(*join.on, &scope));
    }
    return sql;
}

void Binder::BindWith(const std::vector<ast::CommonTable>& tables) {
    const bool outermost = std::exchange(outermost_, false);
    for (const ast::CommonTable& table : tables) {
        CommonTables::Entry entry;
        entry.name = table.name;
        const auto* operation = std::get_if<ast::SetOperation>(&table.query->body->node);
        BoundQuery query;
        if (operation != nullptr && operation->op == ast::SetOp::UnionAll) {
            query.sql = BindRecursive(table, entry);
            query.columns = entry.columns;
        } else {
            query = BindQuery(*table.query);
        }
        entry.sql = query.sql;
        entry.recursive = false;
        entry.columns = query.columns;
        for (std::size_t i = 0; i < entry.columns.size(); ++i) {
            if (!table.columns.empty()) {
                if (table.columns.size() != entry.columns.size()) {
                    RaiseError(table.columns.size() < entry.columns.size() ? 8158 : 8159, {table.name});
                }
                entry.columns[i].name = table.columns[i];
            }
            if (entry.columns[i].name.empty()) {
                RaiseError(8155, {std::to_string(i + 1), table.name});
            }
        }
        RequireDifferentNames(entry.columns, 8156, table.name);
        common_->entries.push_back(std::move(entry));
    }
    outermost_ = outermost;
}

/// "anchor UNION ALL rest", where the rest may name the table itself. The whole stands in a query of its own.
std::string Binder::BindRecursive(const ast::CommonTable& table, CommonTables::Entry& entry) {
    const auto& operation = std::get<ast::SetOperation>(table.query->body->node);
    BoundQuery anchor = BindTerm(*operation.left, nullptr, nullptr);
    CommonTables::Entry self;
    self.name = table.name;
    self.sql = NextAlias();
    self.columns = anchor.columns;
    self.recursive = true;
    for (std::size_t i = 0; i < self.columns.size() && i < table.columns.size(); ++i) {
        self.columns[i].name = table.columns[i];
    }
    const std::string name = self.sql;
    CommonTables level{common_, {std::move(self)}};
    CommonTables* const saved = std::exchange(common_, &level);
    // SQLite wants the recursive name in the FROM of the member itself, so nothing may be put around it.
    const auto* core = std::get_if<ast::SelectCore>(&operation.right->node);
    if (core == nullptr) {
        RaiseError(40517, {"several recursive members in " + table.name});
    }
    std::vector<Type> types;
    std::string names;
    for (std::size_t i = 0; i < anchor.columns.size(); ++i) {
        types.push_back(anchor.columns[i].type);
        names += (i == 0 ? "c" : ", c") + std::to_string(i + 1);
    }
    SelectParts rest;
    BindSelectParts(*core, nullptr, nullptr, rest);
    common_ = saved;
    if (rest.items.size() != types.size()) {
        RaiseError(205);
    }
    std::string level_before = "0";
    for (const ScopeSource& source : rest.scope.sources) {
        if (!source.columns.empty() && source.columns.back().name.empty()) {
            level_before = source.columns.back().sql;
        }
    }
    for (std::size_t i = 0; i < types.size(); ++i) {
        rest.items[i] = MakeConvert(rest.items[i], types[i]);
    }
    rest.items.push_back(MakeSql("tsql_level(" + level_before + ", " + std::to_string(max_recursion_) + ")",
                                 Simple(TypeId::BigInt)));
    rest.columns.push_back({"", Simple(TypeId::BigInt), false, false});
    entry.columns = anchor.columns;
    return "WITH RECURSIVE " + name + "(" + names + ", level) AS (SELECT *, 0 FROM (" + anchor.sql +
           ") UNION ALL " + EmitSelect(rest, core->distinct) + ") SELECT " + names + " FROM " + name;
}

std::vector<Column> DescribeView(SessionCore& session, const ast::CreateModuleStatement& view) {
    Emission emission(session);
    Binder binder(session, emission);
    std::vector<Column> columns = binder.BindQuery(*view.query).columns;
    if (!view.columns.empty()) {
        if (view.columns.size() != columns.size()) {
            RaiseError(4502, {view.name.text()});
        }
        for (std::size_t i = 0; i < columns.size(); ++i) {
            columns[i].name = view.columns[i];
        }
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].name.empty()) {
            RaiseError(4511, {std::to_string(i + 1)});
        }
    }
    RequireDifferentNames(columns, 4506, view.name.text());
    return columns;
}

} // namespace devsql

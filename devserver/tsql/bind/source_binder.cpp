// Binds FROM and WITH: joins, derived tables and common tables, also recursive ones.
#include "devserver/tsql/bind/source_binder.h"

#include "devserver/tsql/bind/binder.h"

namespace devsql {
namespace {

/// Gives the columns of a derived or common table their names. Raises 8155, 8156, 8158, 8159.
void NameColumns(std::vector<Column>& columns, const std::vector<std::string>& names,
                 const std::string& table) {
    if (!names.empty() && names.size() != columns.size()) {
        RaiseError(names.size() < columns.size() ? 8158 : 8159, {table});
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].name = names.empty() ? columns[i].name : names[i];
        if (columns[i].name.empty()) {
            RaiseError(8155, {std::to_string(i + 1), table});
        }
    }
    RequireDifferentNames(columns, 8156, table);
}

} // namespace

std::string SourceBinder::From(const std::vector<ast::TableSourcePtr>& sources, Scope& scope) {
    std::string text;
    for (const ast::TableSourcePtr& source : sources) {
        // In T-SQL a JOIN binds more tightly than a comma, in SQLite they bind equally: joined sources are
        // put in parentheses.
        const bool joined = std::holds_alternative<ast::JoinSource>(source->node);
        std::string item = Source(*source, scope);
        if (joined && sources.size() > 1) {
            item = "(" + item + ")";
        }
        text += (text.empty() ? "" : " CROSS JOIN ") + item;
    }
    return text;
}

std::string SourceBinder::Source(const ast::TableSource& source, Scope& scope) {
    if (const auto* named = std::get_if<ast::NamedSource>(&source.node)) {
        return binder_.names().Source(*named, scope);
    }
    if (const auto* derived = std::get_if<ast::DerivedSource>(&source.node)) {
        return Derived(*derived, scope);
    }
    return Join(std::get<ast::JoinSource>(source.node), scope);
}

std::string SourceBinder::Derived(const ast::DerivedSource& derived, Scope& scope) {
    BoundQuery query = binder_.BindQuery(*derived.query, scope.outer);
    ScopeSource source{derived.alias, {}, binding_.NextAlias(), {}, nullptr};
    NameColumns(query.columns, derived.columns, derived.alias);
    AddColumns(source, query.columns, {});
    std::string sql = "(" + query.sql + ") AS " + source.sql_alias;
    scope.sources.push_back(std::move(source));
    return sql;
}

std::string SourceBinder::Join(const ast::JoinSource& join, Scope& scope) {
    constexpr std::string_view kWords[] = {" JOIN ", " LEFT JOIN ", " RIGHT JOIN ", " FULL JOIN ",
                                           " CROSS JOIN "};
    const std::size_t first = scope.sources.size();
    std::string left = Source(*join.left, scope);
    const std::size_t middle = scope.sources.size();
    std::string right = Source(*join.right, scope);
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
        sql += " ON " + emission_.EmitCondition(binder_.BindCondition(*join.on, &scope));
    }
    return sql;
}

void SourceBinder::With(const std::vector<ast::CommonTable>& tables) {
    const bool outermost = std::exchange(binding_.outermost, false);
    for (const ast::CommonTable& table : tables) {
        binding_.common->entries.push_back(CommonTable(table));
    }
    binding_.outermost = outermost;
}

CommonTables::Entry SourceBinder::CommonTable(const ast::CommonTable& table) {
    CommonTables::Entry entry;
    entry.name = table.name;
    const auto* operation = std::get_if<ast::SetOperation>(&table.query->body->node);
    if (operation != nullptr && operation->op == ast::SetOp::UnionAll) {
        entry.sql = Recursive(table, entry);
    } else {
        BoundQuery query = binder_.BindQuery(*table.query);
        entry.sql = std::move(query.sql);
        entry.columns = std::move(query.columns);
    }
    NameColumns(entry.columns, table.columns, table.name);
    return entry;
}

/// "anchor UNION ALL rest", where the rest may name the table itself. The whole becomes a query in
/// parentheses.
std::string SourceBinder::Recursive(const ast::CommonTable& table, CommonTables::Entry& entry) {
    const auto& operation = std::get<ast::SetOperation>(table.query->body->node);
    // SQLite requires the recursive name in the FROM of the member itself, so the member can't be wrapped.
    const auto* core = std::get_if<ast::SelectCore>(&operation.right->node);
    const BoundQuery anchor = binder_.queries().Term(*operation.left, nullptr, nullptr);
    if (core == nullptr) {
        RaiseError(40517, {"several recursive members in " + table.name});
    }
    const std::string name = binding_.NextAlias();
    CommonTables::Entry self{table.name, name, anchor.columns, true};
    for (std::size_t i = 0; i < self.columns.size() && i < table.columns.size(); ++i) {
        self.columns[i].name = table.columns[i];
    }
    CommonTables level{binding_.common, {std::move(self)}};
    std::vector<Type> types;
    std::string names;
    for (std::size_t i = 0; i < anchor.columns.size(); ++i) {
        types.push_back(anchor.columns[i].type);
        names += (i == 0 ? "c" : ", c") + std::to_string(i + 1);
    }
    CommonTables* const outer = std::exchange(binding_.common, &level);
    const std::string member = RecursiveMember(*core, types);
    binding_.common = outer;
    entry.columns = anchor.columns;
    return "WITH RECURSIVE " + name + "(" + names + ", level) AS (SELECT *, 0 FROM (" + anchor.sql +
           ") UNION ALL " + member + ") SELECT " + names + " FROM " + name;
}

/// The member that names its own table. Its last column is the level of the recursion, which tsql_level holds
/// to MAXRECURSION.
std::string SourceBinder::RecursiveMember(const ast::SelectCore& core, const std::vector<Type>& types) {
    SelectParts parts = binder_.selects().Parts(core, nullptr, nullptr);
    RaiseIf(parts.items.size() != types.size(), 205);
    std::string level_before = "0";
    for (const ScopeSource& source : parts.scope.sources) {
        if (!source.columns.empty() && source.columns.back().name.empty()) {
            level_before = source.columns.back().sql;
        }
    }
    for (std::size_t i = 0; i < types.size(); ++i) {
        parts.items[i] = MakeConvert(parts.items[i], types[i]);
    }
    parts.items.push_back(
        MakeSql("tsql_level(" + level_before + ", " + std::to_string(binding_.max_recursion) + ")",
                Simple(TypeId::BigInt)));
    parts.columns.push_back({"", Simple(TypeId::BigInt), false, false});
    return EmitSelect(emission_, parts, core.distinct);
}

} // namespace devsql

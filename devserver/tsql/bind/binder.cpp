// The functions of the binder that belong to none of its parts.
#include "devserver/tsql/bind/binder.h"

#include <set>

#include "devserver/tsql/scalar/text.h"

namespace devsql {

BinderPart::BinderPart(Binder& binder)
    : binder_(binder), binding_(binder.binding()), session_(binder.session()), emission_(binder.emission()) {}

void RequireDifferentNames(const std::vector<Column>& columns, std::int32_t error, std::string_view of) {
    std::set<std::string> names;
    for (const Column& column : columns) {
        RaiseIf(!names.insert(ToUpper(column.name)).second, error, {column.name, of});
    }
}

BoundPtr MakeColumn(const ScopeColumn& column, const ScopeSource& source, int depth) {
    auto node = MakeSql(column.sql, column.type, column.nullable);
    node->source = source.exposed;
    node->column = column.name;
    node->depth = depth;
    node->identity = column.identity;
    return node;
}

void AddColumns(ScopeSource& source, const std::vector<Column>& columns,
                const std::vector<std::string>& names) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Column& column = columns[i];
        source.columns.push_back({names.empty() ? column.name : names[i], column.type, column.nullable,
                                  column.identity, source.sql_alias + ".c" + std::to_string(i + 1)});
    }
}

Target BindTargetAs(SessionCore& session, Emission& emission, const ast::Name& name, std::int32_t error) {
    constexpr std::int32_t kNoObject = 208;
    try {
        return Binder(session, emission).BindTarget(name);
    } catch (const SqlError& failure) {
        RaiseIf(failure.number() == kNoObject, error, {name.text()});
        throw;
    }
}

std::vector<Column> DescribeView(SessionCore& session, const ast::CreateModuleStatement& view) {
    Emission emission(session);
    Binder binder(session, emission);
    std::vector<Column> columns = binder.BindQuery(*view.query).columns;
    if (!view.columns.empty()) {
        RaiseIf(view.columns.size() != columns.size(), 4502, {view.name.text()});
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

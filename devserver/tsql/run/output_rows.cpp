// Computes the items of OUTPUT clauses for each changed row, and sends or stores the rows that result.
#include "devserver/tsql/run/output_rows.h"

#include <algorithm>
#include <charconv>

#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/run/statements.h"
#include "devserver/tsql/scalar/compare.h"

namespace devsql {
namespace {

struct RowName {
    unsigned row;
    std::string_view name;
};
constexpr RowName kRowNames[] = {{OutputRows::kInserted, "inserted"}, {OutputRows::kDeleted, "deleted"}};

/// The row "inserted" or "deleted" as a source. A column's SQL is "inserted.3": the row, and the column's
/// position in it.
ScopeSource SourceOfRow(const TableDef& table, std::string_view name) {
    ScopeSource source{std::string(name), {{std::string(name)}}, std::string(name), {}, nullptr};
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const ColumnDef& column = table.columns[i];
        source.columns.push_back({column.name, column.type, column.nullable, column.identity,
                                  std::string(name) + "." + std::to_string(i)});
    }
    return source;
}

std::pair<unsigned, std::size_t> PlaceOfLeaf(const std::string& text) {
    for (const RowName& row : kRowNames) {
        const std::size_t begin = row.name.size() + 1;
        std::size_t column = 0;
        if (text.starts_with(row.name) && text.size() > begin) {
            const auto [end, error] = std::from_chars(text.data() + begin, text.data() + text.size(), column);
            if (error == std::errc() && end == text.data() + text.size()) {
                return {row.row, column};
            }
        }
    }
    RaiseError(10705); // The leaf is no column, so it is a subquery, which OUTPUT may not contain.
}

} // namespace

OutputRows::OutputRows(SessionCore& session, const std::vector<ast::OutputClause>& clauses,
                       const Target& target, unsigned rows)
    : session_(session) {
    if (clauses.empty()) {
        return;
    }
    const bool to_client =
        std::ranges::any_of(clauses, [](const ast::OutputClause& clause) { return clause.into.empty(); });
    if (to_client && HasTrigger(session, target.catalogue, *target.table, kAnyEvent)) {
        RaiseError(334, {target.table->name});
    }
    const Scope scope = RowScope(*target.table, rows);
    Emission emission(session);
    Binder binder(session, emission);
    for (const ast::OutputClause& clause : clauses) {
        Bound bound{&clause, {}, {}};
        for (const ast::SelectItem& item : clause.items) {
            if (!item.variable.empty()) {
                RaiseError(141);
            }
            if (!item.star) {
                const auto* column = std::get_if<ast::ColumnExpr>(&item.expr->node);
                AddItem(bound, binder.BindValue(*item.expr, &scope),
                        item.alias.empty() && column != nullptr ? column->name.last() : item.alias);
                continue;
            }
            bool found = false;
            for (const ScopeSource& source : scope.sources) {
                if (!item.star_of.empty() && SameText(source.exposed, item.star_of.last())) {
                    found = true;
                    for (const ScopeColumn& column : source.columns) {
                        AddItem(bound, MakeSql(column.sql, column.type, column.nullable), column.name);
                    }
                }
            }
            if (!found) {
                RaiseError(107, {item.star_of.empty() ? "*" : item.star_of.text()});
            }
        }
        clauses_.push_back(std::move(bound));
    }
}

Scope OutputRows::RowScope(const TableDef& table, unsigned rows) const {
    Scope scope;
    for (const RowName& row : kRowNames) {
        if ((rows & row.row) != 0) {
            scope.sources.push_back(SourceOfRow(table, row.name));
        }
    }
    return scope;
}

void OutputRows::AddItem(Bound& bound, const BoundPtr& value, std::string name) {
    std::vector<BoundPtr> leaves;
    Item item{WithSlots(value, leaves), {}};
    for (const BoundPtr& leaf : leaves) {
        item.places.push_back(PlaceOfLeaf(leaf->text));
    }
    bound.rows.columns.push_back({std::move(name), Settled(value->type), value->nullable, false});
    bound.items.push_back(std::move(item));
}

RowWriter::Observer OutputRows::Observer() {
    return [this](const RowValues* before, const RowValues* after) { Take(before, after); };
}

void OutputRows::Take(const RowValues* before, const RowValues* after) {
    for (Bound& bound : clauses_) {
        std::vector<Value> row;
        for (const Item& item : bound.items) {
            std::vector<Value> slots;
            for (const auto& [which, column] : item.places) {
                slots.push_back((which == kInserted ? after : before)->at(column));
            }
            row.push_back(Compute(*item.value, session_, slots));
        }
        bound.rows.rows.push_back(std::move(row));
    }
}

void OutputRows::Store() {
    for (const Bound& bound : clauses_) {
        if (!bound.clause->into.empty()) {
            InsertRows(session_, bound.clause->into, bound.clause->columns, bound.rows);
        }
    }
}

void OutputRows::End(Command command, std::int64_t count) {
    for (const Bound& bound : clauses_) {
        if (bound.clause->into.empty()) {
            session_.results().sink().Columns(bound.rows.columns);
            for (const std::vector<Value>& row : bound.rows.rows) {
                session_.results().sink().Row(row);
            }
        }
    }
    session_.results().Done(command, count);
}

} // namespace devsql

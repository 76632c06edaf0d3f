// Binds whole queries: WITH, set operations, SELECT @v = …, and cursors.
#include "devserver/tsql/bind/query_binder.h"

#include <algorithm>

#include "devserver/tsql/bind/binder.h"
#include "devserver/tsql/bind/evaluator.h"

namespace devsql {
namespace {

/// Saves the state that binding a query changes, and restores it at the end.
class QueryScope {
  public:
    explicit QueryScope(Binding& binding)
        : binding_(binding),
          clause_(std::exchange(binding.clause, {})),
          common_(binding.common),
          max_recursion_(binding.max_recursion) {}
    ~QueryScope() {
        binding_.clause = clause_;
        binding_.common = common_;
        binding_.max_recursion = max_recursion_;
    }
    QueryScope(const QueryScope&) = delete;
    QueryScope& operator=(const QueryScope&) = delete;

    /// The tables of the query's own WITH.
    void EnterWith() { binding_.common = &level_; }

  private:
    Binding& binding_;
    Binding::Clause clause_;
    CommonTables* common_;
    std::int64_t max_recursion_;
    CommonTables level_{common_, {}};
};

} // namespace

BoundQuery QueryBinder::Query(const ast::Query& query, const Scope* outer) {
    QueryScope scope(binding_);
    if (!query.with.empty()) {
        scope.EnterWith();
        binding_.max_recursion = query.max_recursion;
        binder_.BindWith(query.with);
    }
    return Term(*query.body, outer, &query);
}

BoundQuery QueryBinder::Rows(const ast::Query& query) {
    binding_.outermost = true;
    return Query(query, nullptr);
}

BoundQuery QueryBinder::Term(const ast::QueryTerm& term, const Scope* outer, const ast::Query* whole) {
    if (const auto* core = std::get_if<ast::SelectCore>(&term.node)) {
        return binder_.selects().Select(*core, outer, whole);
    }
    BoundQuery bound = SetOperation(std::get<ast::SetOperation>(term.node), outer);
    if (whole != nullptr && !whole->order_by.empty()) {
        bound.sql = "SELECT * FROM (" + bound.sql + ")" + binder_.orders().OfColumns(*whole, bound.columns) +
                    binder_.orders().Offset(*whole);
    }
    return bound;
}

/// The query with its columns converted to `types`.
BoundQuery QueryBinder::Unified(const BoundQuery& query, const std::vector<Type>& types) {
    BoundQuery unified{"SELECT ", query.columns};
    for (std::size_t i = 0; i < types.size(); ++i) {
        const std::string name = "c" + std::to_string(i + 1);
        unified.sql += (i == 0 ? "" : ", ") +
                       emission_.EmitCollated(MakeConvert(MakeSql(name, query.columns[i].type), types[i])) +
                       " AS " + name;
        unified.columns[i].type = types[i];
        unified.columns[i].identity = false;
    }
    unified.sql += " FROM (" + query.sql + ")";
    return unified;
}

BoundQuery QueryBinder::SetOperation(const ast::SetOperation& operation, const Scope* outer) {
    // A chain of one operator becomes one flat compound: SQLite limits how deeply queries nest.
    std::vector<const ast::QueryTerm*> terms = {operation.right.get()};
    const ast::QueryTerm* left = operation.left.get();
    for (const auto* inner = std::get_if<ast::SetOperation>(&left->node);
         inner != nullptr && inner->op == operation.op; inner = std::get_if<ast::SetOperation>(&left->node)) {
        terms.push_back(inner->right.get());
        left = inner->left.get();
    }
    terms.push_back(left);
    std::vector<BoundQuery> queries;
    std::vector<Type> types;
    for (auto term = terms.rbegin(); term != terms.rend(); ++term) {
        BoundQuery query = Term(**term, outer, nullptr);
        RaiseIf(!queries.empty() && query.columns.size() != types.size(), 205);
        for (std::size_t i = 0; i < query.columns.size(); ++i) {
            const bool untyped = i < query.untyped_nulls.size() && query.untyped_nulls[i];
            const Type type = untyped ? kUntypedNull : query.columns[i].type;
            if (queries.empty()) {
                types.push_back(type);
            } else {
                types[i] = CommonType(types[i], type);
                queries[0].columns[i].nullable = queries[0].columns[i].nullable || query.columns[i].nullable;
            }
        }
        queries.push_back(std::move(query));
    }
    for (Type& type : types) {
        type = Settled(type);
    }
    constexpr std::string_view kWords[] = {" UNION ", " UNION ALL ", " EXCEPT ", " INTERSECT "};
    const std::string word(kWords[static_cast<std::size_t>(operation.op)]);
    constexpr std::size_t kGroup = 400; // SQLite takes 500 terms in one compound.
    BoundQuery bound = Unified(queries[0], types);
    for (std::size_t i = 1; i < queries.size(); ++i) {
        if (i % kGroup == 0) {
            bound.sql = "SELECT * FROM (" + bound.sql + ")";
        }
        bound.sql += word + Unified(queries[i], types).sql;
    }
    return bound;
}

BoundQuery QueryBinder::Assignment(const ast::Query& query, std::vector<AssignmentItem>& items) {
    const auto* core = std::get_if<ast::SelectCore>(&query.body->node);
    if (core == nullptr) {
        RaiseError(10734);
    }
    QueryScope scope(binding_);
    if (!query.with.empty()) {
        scope.EnterWith();
        binder_.BindWith(query.with);
    }
    binding_.outermost = true;
    const SelectParts parts = binder_.selects().Parts(*core, nullptr, &query);
    // SQL selects the leaves only. The items are computed from them row by row, so that an item sees what the
    // previous row has assigned.
    std::vector<BoundPtr> leaves;
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        RaiseIf(parts.variables[i].empty(), 141);
        items.push_back({parts.variables[i], WithSlots(parts.items[i], leaves)});
    }
    BoundQuery bound;
    SelectParts selected = parts;
    selected.items = leaves;
    selected.columns.clear();
    for (const BoundPtr& leaf : leaves) {
        selected.columns.push_back({"", leaf->condition ? Simple(TypeId::Bit) : leaf->type, true, false});
    }
    if (leaves.empty()) {
        selected.items.push_back(MakeConstant(std::int64_t{1}, Simple(TypeId::Int)));
        selected.columns.push_back({"", Simple(TypeId::Int), false, false});
    }
    bound.sql = EmitSelect(emission_, selected, false);
    bound.columns = selected.columns;
    return bound;
}

BoundQuery QueryBinder::Cursor(const ast::Query& query, TablePtr& table) {
    const auto* core = std::get_if<ast::SelectCore>(&query.body->node);
    table = nullptr;
    if (core == nullptr || core->distinct || !core->group_by.empty() || core->having ||
        core->from.size() != 1 || !query.with.empty() ||
        !std::holds_alternative<ast::NamedSource>(core->from[0]->node)) {
        return Rows(query);
    }
    binding_.outermost = true;
    SelectParts parts = binder_.selects().Parts(*core, nullptr, &query);
    const ScopeSource& source = parts.scope.sources[0];
    const bool grouped = std::any_of(parts.items.begin(), parts.items.end(),
                                     [](const BoundPtr& item) { return HasAggregate(*item, 0); });
    BoundQuery bound;
    bound.columns = parts.columns;
    if (source.table && !grouped) {
        table = source.table;
        parts.items.push_back(MakeSql(source.sql_alias + "." + RowIdName(*table), Simple(TypeId::BigInt)));
    }
    bound.sql = EmitSelect(emission_, parts, false);
    return bound;
}

} // namespace devsql

// From the tree to SQLite's SQL: finds what names mean, gives every expression its type, makes conversions
// explicit, and writes the relational part as one SQLite statement.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "devserver/tsql/bind/bound.h"
#include "devserver/tsql/bind/emitter.h"
#include "devserver/tsql/linked/remote_tables.h"
#include "devserver/tsql/parse/ast_query.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

/// A column that a FROM clause offers.
struct ScopeColumn {
    std::string name;
    Type type;
    bool nullable = true;
    bool identity = false;
    std::string sql; ///< how SQLite's SQL says it: t3."BatchId"
};

/// A table, view or query in a FROM clause.
struct ScopeSource {
    std::string exposed; ///< its alias, or the table's name
    ast::Name name;      ///< as written; empty for a derived table
    std::string sql_alias;
    std::vector<ScopeColumn> columns;
    TablePtr table; ///< of a stored table
};

struct Scope {
    std::vector<ScopeSource> sources;
    const Scope* outer = nullptr;
    int depth = 0;
};

/// A query in SQLite's SQL: its result's columns are called c1, c2, …
struct BoundQuery {
    std::string sql;
    std::vector<Column> columns;
    std::vector<bool> untyped_nulls = {}; ///< which columns are NULL alone, which takes any type in a UNION
};

/// What a name in FROM may mean besides tables: the WITH of the queries around.
struct CommonTables {
    const CommonTables* outer = nullptr;
    struct Entry {
        std::string name;
        std::string sql; ///< of a recursive one: its name in SQLite
        std::vector<Column> columns;
        bool recursive = false;
    };
    std::vector<Entry> entries;
};

/// How SELECT treats its items when they go to variables.
struct AssignmentItem {
    std::string variable;
    BoundPtr value; ///< over the slots of the row
};

/// A target that UPDATE, DELETE and INSERT name.
struct Target {
    TablePtr table;
    Catalogue* catalogue = nullptr;                ///< null for temporary tables
    std::shared_ptr<RemoteTable> remote = nullptr; ///< of a linked server's table; `table` is then its copy
};

class Binder {
  public:
    Binder(SessionCore& session, Emission& emission) : session_(session), emission_(emission) {}

    // ---- queries (binder_queries.cpp)
    BoundQuery BindQuery(const ast::Query& query, const Scope* outer = nullptr);
    /// A query whose rows are delivered: without ORDER BY they come in the order of a clustered key.
    BoundQuery BindRows(const ast::Query& query);
    /// The query's first term's items as expressions over the leaves that `sql` selects.
    BoundQuery BindAssignment(const ast::Query& query, std::vector<AssignmentItem>& items);
    /// A cursor's query. Where its rows are those of one table, `table` is set and the row number follows the
    /// columns.
    BoundQuery BindCursor(const ast::Query& query, TablePtr& table);
    /// FROM with its sources put into `scope`.
    std::string BindFrom(const std::vector<ast::TableSourcePtr>& sources, Scope& scope);
    void BindWith(const std::vector<ast::CommonTable>& tables);

    // ---- expressions (binder_expressions.cpp)
    BoundPtr BindValue(const ast::Expr& expr, const Scope* scope);
    BoundPtr BindCondition(const ast::Expr& expr, const Scope* scope);
    Type ResolveType(const ast::TypeSpec& spec, std::int32_t default_length, std::string* user_type = nullptr,
                     bool* nullable = nullptr);

    // ---- names (binder_names.cpp)
    /// The table that a statement writes to. Raises 208, 4405.
    Target BindTarget(const ast::Name& name);
    ScopeSource SourceOf(const TablePtr& table, const std::string& exposed,
                         const std::string& sql_alias) const;
    std::string NextAlias() { return "t" + std::to_string(++aliases_); }

  private:
    struct SelectParts;

    // binder_queries.cpp
    BoundQuery BindTerm(const ast::QueryTerm& term, const Scope* outer, const ast::Query* whole);
    BoundQuery BindSetOperation(const ast::SetOperation& operation, const Scope* outer);
    BoundQuery BindSelect(const ast::SelectCore& core, const Scope* outer, const ast::Query* whole);
    void BindSelectParts(const ast::SelectCore& core, const Scope* outer, const ast::Query* whole,
                         SelectParts& parts);
    void BindItems(const ast::SelectCore& core, const Scope& scope, SelectParts& parts);
    std::string ClusteredOrder(const ast::SelectCore& core, const SelectParts& parts) const;
    void ExpandStar(const ast::SelectItem& item, const Scope& scope, SelectParts& parts) const;
    void CheckGrouping(const SelectParts& parts, const ast::SelectCore& core) const;
    void CheckGrouped(const Bound& item, const std::vector<BoundPtr>& keys, int depth,
                      std::string_view clause) const;
    std::string OrderClause(const ast::Query& query, const SelectParts& parts, const Scope& scope,
                            bool distinct);
    std::string OrderOfColumns(const ast::Query& query, const std::vector<Column>& columns);
    /// OFFSET and FETCH of a whole query; empty without.
    std::string OffsetClause(const ast::Query& query);
    std::int64_t RowNumber(const ast::Expr& expr, std::int32_t null_error);
    std::string RowLimit(const ast::SelectCore& core, const std::string& counted);
    std::string CountWithTies(const ast::SelectCore& core, const ast::Query* whole, const SelectParts& parts,
                              const std::string& rows);
    std::string EmitSelect(const SelectParts& parts, bool distinct);
    static BoundPtr WithoutKeys(const BoundPtr& node, const std::vector<BoundPtr>& keys,
                                const std::vector<bool>& absent);
    std::string EmitGroups(const SelectParts& parts, bool distinct, const std::vector<bool>& absent);
    std::string BindSource(const ast::TableSource& source, Scope& scope);
    std::string BindJoin(const ast::JoinSource& join, Scope& scope);
    std::string BindDerived(const ast::DerivedSource& derived, Scope& scope);
    std::string BindRecursive(const ast::CommonTable& table, CommonTables::Entry& entry);
    BoundQuery Unified(const BoundQuery& query, const std::vector<Type>& types);

    // binder_names.cpp
    std::string BindNamed(const ast::NamedSource& named, Scope& scope);
    std::string BindView(Catalogue& catalogue, const ObjectDef& view, const std::string& exposed,
                         Scope& scope);
    bool BindSystemView(const std::string& database, const std::string& schema, const std::string& name,
                        const std::string& exposed, const ast::Name& written, Scope& scope, std::string& sql);
    const CommonTables::Entry* FindCommon(const std::string& name) const;
    BoundPtr BindColumn(const ast::ColumnExpr& column, const Scope* scope) const;
    std::shared_ptr<RemoteTable> Remote(const ast::Name& name);

    // binder_expressions.cpp
    BoundPtr BindNode(const ast::Expr& expr, const Scope* scope);
    BoundPtr BindLogic(const ast::LogicExpr& logic, const Scope* scope);
    BoundPtr BindCompare(ast::CompareOp op, const BoundPtr& left, const BoundPtr& right) const;
    BoundPtr BindInList(const ast::InListExpr& in, const Scope* scope);
    BoundPtr BindInQuery(const ast::InQueryExpr& in, const Scope* scope);
    BoundPtr BindQuantified(const ast::QuantifiedExpr& expr, const Scope* scope);
    BoundPtr BindLike(const ast::LikeExpr& like, const Scope* scope);
    BoundPtr BindBetween(const ast::BetweenExpr& between, const Scope* scope);
    BoundPtr BindCase(const ast::CaseExpr& expr, const Scope* scope);
    BoundPtr BindCast(const ast::CastExpr& cast, const Scope* scope);
    BoundPtr BindSubquery(const ast::Query& query, const Scope* scope);
    // binder_calls.cpp
    BoundPtr BindCall(const ast::CallExpr& call, const Scope* scope);
    BoundPtr BindChoice(const std::vector<std::pair<BoundPtr, BoundPtr>>& branches,
                        const BoundPtr& otherwise) const;
    BoundPtr BindAggregate(const ast::CallExpr& call, const Scope* scope);
    BoundPtr BindSum(const BoundPtr& operand, const std::string& distinct, bool average);
    BoundPtr BindWindow(const ast::CallExpr& call, const Scope* scope);
    std::string OverClause(const ast::Over& over, const Scope* scope);
    BoundPtr BindSpecialCall(const ast::CallExpr& call, const Scope* scope);
    BoundPtr BindDateCall(const ast::CallExpr& call, const Scope* scope, const ScalarFunction& function);

    SessionCore& session_;
    Emission& emission_;
    int aliases_ = 0;
    int view_depth_ = 0;
    bool outermost_ = false;           ///< the next SELECT is the one whose rows are delivered
    std::int64_t max_recursion_ = 100; ///< of the query whose WITH is being bound
    std::vector<std::shared_ptr<RemoteTable>> remote_tables_; ///< of the statement, each fetched once
    CommonTables common_root_;
    CommonTables* common_ = &common_root_;
    std::string database_; ///< of the view being bound; empty: the frame's
    bool in_aggregate_ = false;
    bool allow_aggregates_ = false;
    bool allow_window_ = false;
};

/// As Binder::BindTarget, with `error` (1088, 4701) instead of 208.
Target BindTargetAs(SessionCore& session, Emission& emission, const ast::Name& name, std::int32_t error);
/// Raises `error` (4506, 8156) for the first name that stands twice.
void RequireDifferentNames(const std::vector<Column>& columns, std::int32_t error, std::string_view of);
/// The view's columns, for the catalogue.
std::vector<Column> DescribeView(SessionCore& session, const ast::CreateModuleStatement& view);

} // namespace devsql

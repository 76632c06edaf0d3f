// SELECT and INSERT.
#include "devserver/tsql/run/statements.h"

#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/define/definitions.h"
#include "devserver/tsql/rows/row_writer.h"
#include "devserver/tsql/run/output_rows.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

/// Steps through a bound query, a row at a time, up to SET ROWCOUNT.
class QueryRows {
  public:
    QueryRows(SessionCore& session, const Emission& emission, const BoundQuery& query)
        : session_(session),
          statement_(session.connection().Prepare(query.sql)),
          limit_(session.options().rowcount) {
        emission.BindAll(statement_);
    }

    bool Next() {
        if (limit_ > 0 && count_ >= limit_) {
            return false;
        }
        if (!statement_.Step()) {
            return false;
        }
        if ((++count_ & 0xFF) == 0) {
            session_.CheckCancelled();
        }
        return true;
    }
    Value Column(std::size_t index, const Type& type) const {
        return statement_.Column(static_cast<int>(index), type);
    }
    std::int64_t count() const { return count_; }

  private:
    SessionCore& session_;
    SqliteStatement statement_;
    std::int64_t limit_;
    std::int64_t count_ = 0;
};

void SelectIntoVariables(SessionCore& session, const ast::Query& query) {
    Emission emission(session);
    Binder binder(session, emission);
    std::vector<AssignmentItem> items;
    const BoundQuery bound = binder.BindAssignment(query, items);
    QueryRows rows(session, emission, bound);
    std::vector<Value> slots(bound.columns.size());
    while (rows.Next()) {
        for (std::size_t i = 0; i < slots.size(); ++i) {
            slots[i] = rows.Column(i, bound.columns[i].type);
        }
        for (const AssignmentItem& item : items) {
            AssignTo(session, item.variable, Compute(*item.value, session, slots), item.value->type);
        }
    }
    session.status().row_count = rows.count();
    session.results().Done(Command::None, std::nullopt);
}

/// SELECT … INTO: the table is made from the query's columns.
void SelectIntoTable(SessionCore& session, const ast::Query& query, const ast::Name& into) {
    RowSet source = FetchAll(session, query);
    for (std::size_t i = 0; i < source.columns.size(); ++i) {
        if (source.columns[i].name.empty()) {
            RaiseError(1038);
        }
    }
    CreateTableFor(session, into, source.columns);
    Emission emission(session);
    Binder binder(session, emission);
    const Target target = binder.BindTarget(into);
    session.transactions().Write(target.table->alias, [&] {
        RowWriter writer(session, target, "INSERT");
        for (std::vector<Value>& row : source.rows) {
            std::vector<std::optional<Value>> given(row.size());
            for (std::size_t i = 0; i < row.size(); ++i) {
                if (target.table->columns[i].type.id != TypeId::Timestamp) {
                    given[i] = std::move(row[i]);
                }
            }
            writer.Insert(std::move(given));
        }
        writer.Finish();
    });
    session.status().row_count = static_cast<std::int64_t>(source.rows.size());
    session.results().Done(Command::Insert, session.status().row_count);
}

} // namespace

Value ComputeExpression(SessionCore& session, const ast::Expr& expr, Type* type) {
    Emission emission(session);
    Binder binder(session, emission);
    const BoundPtr bound = binder.BindValue(expr, nullptr);
    if (type != nullptr) {
        *type = Settled(bound->type);
    }
    if (!NeedsSql(*bound)) {
        return Compute(*bound, session);
    }
    SqliteStatement statement = session.connection().Prepare("SELECT " + emission.Emit(bound));
    emission.BindAll(statement);
    statement.Step();
    return statement.Column(0, bound->type);
}

bool TestExpression(SessionCore& session, const ast::Expr& condition) {
    Emission emission(session);
    Binder binder(session, emission);
    const BoundPtr bound = binder.BindCondition(condition, nullptr);
    if (!NeedsSql(*bound)) {
        return Test(*bound, session) == true;
    }
    SqliteStatement statement = session.connection().Prepare("SELECT " + emission.EmitCondition(bound));
    emission.BindAll(statement);
    statement.Step();
    return statement.Int(0) != 0;
}

void AssignTo(SessionCore& session, std::string_view name, const Value& value, const Type& type) {
    Variable& variable = session.calls().FindVariable(name);
    // NULL can be assigned to every type, even where its own type can't be converted.
    variable.value = IsNull(value) ? Value() : AssignVariable(value, type, variable.type);
}

void RunSelect(SessionCore& session, const ast::Query& query) {
    if (ast::IsAssignment(query)) {
        SelectIntoVariables(session, query);
        return;
    }
    if (const ast::Name& into = ast::FirstCore(query).into; !into.empty()) {
        SelectIntoTable(session, query, into);
        return;
    }
    Emission emission(session);
    Binder binder(session, emission);
    const BoundQuery bound = binder.BindRows(query);
    session.results().sink().Columns(bound.columns);
    std::int64_t count = 0;
    if (!session.options().fmtonly) {
        QueryRows rows(session, emission, bound);
        std::vector<Value> values(bound.columns.size());
        while (rows.Next()) {
            for (std::size_t i = 0; i < values.size(); ++i) {
                values[i] = rows.Column(i, bound.columns[i].type);
            }
            session.results().sink().Row(values);
        }
        count = rows.count();
    }
    session.status().row_count = count;
    session.results().Done(Command::Select, count);
}

RowSet FetchAll(SessionCore& session, const ast::Query& query) {
    Emission emission(session);
    Binder binder(session, emission);
    const BoundQuery bound = binder.BindRows(query);
    RowSet set{bound.columns, {}};
    QueryRows rows(session, emission, bound);
    while (rows.Next()) {
        std::vector<Value> values;
        for (std::size_t i = 0; i < bound.columns.size(); ++i) {
            values.push_back(rows.Column(i, bound.columns[i].type));
        }
        set.rows.push_back(std::move(values));
    }
    return set;
}

void OpenRows(SessionCore& session, Cursor& cursor) {
    Emission emission(session);
    Binder binder(session, emission);
    const BoundQuery bound = binder.BindCursor(*cursor.query, cursor.table);
    cursor.rows = {bound.columns, {}};
    cursor.row_ids.clear();
    QueryRows rows(session, emission, bound);
    while (rows.Next()) {
        std::vector<Value> values;
        for (std::size_t i = 0; i < bound.columns.size(); ++i) {
            values.push_back(rows.Column(i, bound.columns[i].type));
        }
        if (cursor.table) {
            cursor.row_ids.push_back(
                std::get<std::int64_t>(rows.Column(values.size(), Simple(TypeId::BigInt))));
        }
        cursor.rows.rows.push_back(std::move(values));
    }
}

// ------------------------------------------------------------------ INSERT

namespace {

bool IdentityInsertOn(SessionCore& session, const Target& target) {
    return session.identities().InsertsInto(*target.table);
}

/// The positions of the table's columns for which the statement has values, in the statement's order.
std::vector<std::size_t> InsertColumns(SessionCore& session, const ast::InsertStatement& insert,
                                       const Target& target) {
    const TableDef& table = *target.table;
    const bool identity_on = IdentityInsertOn(session, target);
    std::vector<std::size_t> positions;
    if (insert.columns.empty()) {
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            if (table.columns[i].computed.empty() && !table.columns[i].identity) {
                positions.push_back(i);
            }
        }
        if (identity_on && !insert.default_values) {
            RaiseError(8101, {table.name});
        }
        return positions;
    }
    bool identity_given = false;
    for (const std::string& name : insert.columns) {
        const ColumnDef* column = table.Find(name);
        if (column == nullptr) {
            RaiseError(207, {name});
        }
        const std::size_t position = table.IndexOf(column->id);
        if (std::find(positions.begin(), positions.end(), position) != positions.end()) {
            RaiseError(264, {column->name});
        }
        if (!column->computed.empty()) {
            RaiseError(271, {column->name});
        }
        if (column->identity && !identity_on) {
            RaiseError(544, {table.name});
        }
        identity_given = identity_given || column->identity;
        positions.push_back(position);
    }
    if (identity_on && !identity_given) {
        RaiseError(545, {table.name});
    }
    return positions;
}

using GivenRow = std::vector<std::optional<Value>>;

void Put(const TableDef& table, std::size_t position, const Value& value, const Type& type, GivenRow& row) {
    const ColumnDef& column = table.columns[position];
    if (column.type.id ==
        TypeId::Timestamp) { // Only DEFAULT and NULL may be given for it, in a row without column names.
        if (!IsNull(value)) {
            RaiseError(273);
        }
        return;
    }
    row[position] = Assign(value, type, column.type);
}

/// The rows of VALUES. Each value is converted to the column's type by itself, not to a common type of all
/// rows as in UNION.
std::vector<GivenRow> ValueRows(SessionCore& session, const ast::InsertStatement& insert,
                                const TableDef& table, const std::vector<std::size_t>& positions) {
    std::vector<GivenRow> rows;
    for (const std::vector<ast::ExprPtr>& given : insert.rows) {
        if (given.size() != positions.size()) {
            if (insert.columns.empty()) {
                RaiseError(213);
            }
            RaiseError(given.size() < positions.size() ? 109 : 110);
        }
        GivenRow row(table.columns.size());
        for (std::size_t i = 0; i < given.size(); ++i) {
            if (given[i]) {
                Type type;
                const Value value = ComputeExpression(session, *given[i], &type);
                const bool null = IsNull(value);
                Put(table, positions[i], value, null ? table.columns[positions[i]].type : type, row);
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<GivenRow> QueryRowsFor(const RowSet& source, const ast::InsertStatement& insert,
                                   const TableDef& table, const std::vector<std::size_t>& positions) {
    if (source.columns.size() != positions.size()) {
        if (insert.columns.empty() || insert.execute) {
            RaiseError(213);
        }
        RaiseError(source.columns.size() < positions.size() ? 120 : 121);
    }
    std::vector<GivenRow> rows;
    for (const std::vector<Value>& values : source.rows) {
        GivenRow row(table.columns.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            Put(table, positions[i], values[i], source.columns[i].type, row);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace

void InsertRows(SessionCore& session, const ast::Name& table, const std::vector<std::string>& columns,
                const RowSet& source) {
    ast::InsertStatement insert;
    insert.table = table;
    insert.columns = columns;
    Emission emission(session);
    const Target target = Binder(session, emission).BindTarget(table);
    if (HasTrigger(session, target.catalogue, *target.table, kAnyEvent)) {
        RaiseError(331, {table.text()});
    }
    session.transactions().Write(target.table->alias, [&] {
        const std::vector<std::size_t> positions = InsertColumns(session, insert, target);
        RowWriter writer(session, target, "INSERT");
        for (GivenRow& row : QueryRowsFor(source, insert, *target.table, positions)) {
            writer.Insert(std::move(row));
        }
        writer.Finish();
    });
}

namespace {

/// @@IDENTITY and SCOPE_IDENTITY() after an INSERT; nothing for a table without an identity column.
void KeepIdentity(SessionCore& session, std::optional<std::int64_t> identity) {
    session.identities().last = identity;
    if (identity) {
        session.calls().frame().scope_identity = *identity;
        session.calls().frame().has_scope_identity = true;
    }
}

} // namespace

void RunInsert(SessionCore& session, const ast::InsertStatement& insert, const RunNested& execute) {
    std::optional<RowSet> executed; // The procedure runs first, because it may begin and end transactions.
    if (insert.execute) {
        executed = execute(*insert.execute);
    }
    Target target;
    {
        Emission emission(session);
        target = Binder(session, emission).BindTarget(insert.table);
    }
    std::int64_t count = 0;
    OutputRows output(session, insert.outputs, target, OutputRows::kInserted);
    session.transactions().Write(target.table->alias, [&] {
        const TableDef& table = *target.table;
        const std::vector<std::size_t> positions = InsertColumns(session, insert, target);
        std::vector<GivenRow> rows;
        if (insert.default_values) {
            rows.emplace_back(table.columns.size());
        } else if (executed) {
            rows = QueryRowsFor(*executed, insert, table, positions);
        } else if (insert.query) {
            rows = QueryRowsFor(FetchAll(session, *insert.query), insert, table, positions);
        } else {
            rows = ValueRows(session, insert, table, positions);
        }
        if (insert.top) {
            const Value limit = ComputeExpression(session, *insert.top->count);
            rows.resize(std::min(rows.size(), static_cast<std::size_t>(
                                                  std::max<std::int64_t>(0, std::get<std::int64_t>(limit)))));
        }
        RowWriter writer(session, target, "INSERT");
        if (!insert.outputs.empty()) {
            writer.Observe(output.Observer());
        }
        for (GivenRow& row : rows) {
            session.CheckCancelled();
            writer.Insert(std::move(row));
        }
        writer.Finish();
        count = static_cast<std::int64_t>(rows.size());
        if (count > 0) {
            KeepIdentity(session, writer.last_identity());
        }
        output.Store();
        writer.FireTriggers();
    });
    session.status().row_count = count;
    output.End(Command::Insert, count);
}

} // namespace devsql

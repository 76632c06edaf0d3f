// UPDATE, DELETE, TRUNCATE TABLE.
#include <set>

#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/rows/row_writer.h"
#include "devserver/tsql/run/output_rows.h"
#include "devserver/tsql/run/statements.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

/// Shared by UPDATE and DELETE: the target among the sources of FROM, and the condition that selects its
/// rows.
struct Selection {
    Target target;
    Scope scope;
    std::string alias; ///< of the target in `from` and `where`
    std::string from;
    std::string where;
};

/// UPDATE b … FROM Batches b: the target is named by its alias.
const ScopeSource* FindTarget(const Scope& scope, const ast::Name& name) {
    if (name.parts.size() == 1) {
        for (const ScopeSource& source : scope.sources) {
            if (source.table && SameText(source.exposed, name.last())) {
                return &source;
            }
        }
    }
    return nullptr;
}

Target TargetOfSource(SessionCore& session, Binder& binder, const ScopeSource& source) {
    static_cast<void>(session);
    return binder.BindTarget(source.name);
}

Selection Select(SessionCore& session, Binder& binder, Emission& emission, const ast::Name& table,
                 const std::vector<ast::TableSourcePtr>& from, const ast::Expr* where,
                 const std::string& cursor) {
    Selection selection;
    if (!from.empty()) {
        selection.from = binder.BindFrom(from, selection.scope);
        if (const ScopeSource* source = FindTarget(selection.scope, table)) {
            selection.target = TargetOfSource(session, binder, *source);
            selection.alias = source->sql_alias;
        }
    }
    if (!selection.target.table) {
        selection.target = binder.BindTarget(table);
        for (const ScopeSource& source : selection.scope.sources) {
            if (source.table && source.table->id == selection.target.table->id &&
                source.table->alias == selection.target.table->alias) {
                selection.alias = source.sql_alias;
                break;
            }
        }
    }
    if (selection.target.remote) {
        selection.target.remote->Fill();
    }
    if (selection.alias.empty()) {
        selection.alias = binder.NextAlias();
        ScopeSource source = binder.SourceOf(selection.target.table, table.last(), selection.alias);
        source.name = table;
        selection.scope.sources.insert(selection.scope.sources.begin(), std::move(source));
        const std::string own = selection.target.table->Qualified() + " AS " + selection.alias;
        selection.from = selection.from.empty() ? own : own + " CROSS JOIN " + selection.from;
    }
    if (where != nullptr) {
        selection.where = " WHERE " + emission.EmitCondition(binder.BindCondition(*where, &selection.scope));
    }
    if (!cursor.empty()) {
        const std::shared_ptr<Cursor> found = session.calls().FindCursor(cursor);
        if (!found) {
            RaiseError(16916, {cursor});
        }
        if (!found->table || found->table->id != selection.target.table->id || found->position < 0 ||
            found->position >= static_cast<std::int64_t>(found->row_ids.size())) {
            RaiseError(16931);
        }
        const std::int64_t row = found->row_ids[static_cast<std::size_t>(found->position)];
        selection.where = " WHERE " + selection.alias + "." + RowIdName(*selection.target.table) + " = " +
                          std::to_string(row);
    }
    return selection;
}

std::string TargetColumns(const Selection& selection) {
    std::string text = selection.alias + "." + RowIdName(*selection.target.table);
    for (const ColumnDef& column : selection.target.table->columns) {
        text += ", " + selection.alias + "." + QuoteName(column.name);
    }
    return text;
}

std::int64_t RowLimit(SessionCore& session, const std::optional<ast::Top>& top) {
    std::int64_t limit = session.options().rowcount > 0 ? session.options().rowcount : -1;
    if (top) {
        if (top->percent) {
            RaiseError(40517, {"TOP PERCENT in UPDATE and DELETE"});
        }
        Type type;
        const Value value = ComputeExpression(session, *top->count, &type);
        limit = std::get<std::int64_t>(Convert(value, type, Simple(TypeId::BigInt)));
    }
    return limit;
}

StoredRow ReadTarget(const SqliteStatement& row, const TableDef& table) {
    StoredRow stored{row.Int(0), {}};
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        stored.values.push_back(row.Column(static_cast<int>(i + 1), table.columns[i].type));
    }
    return stored;
}

// ------------------------------------------------------------------ UPDATE

struct BoundAssignment {
    std::optional<std::size_t> column;
    std::string variable;
    BoundPtr value; ///< over slots; null: DEFAULT
};

BoundPtr AssignedValue(Binder& binder, const ast::Assignment& assignment, const Scope& scope) {
    if (!assignment.value) {
        return nullptr;
    }
    BoundPtr value = binder.BindValue(*assignment.value, &scope);
    if (!assignment.op) {
        return value;
    }
    ast::Expr column; // "SET n += 1" is "SET n = n + 1"
    column.node = ast::ColumnExpr{{{assignment.column}}};
    BoundPtr old = binder.BindValue(column, &scope);
    auto node = std::make_shared<Bound>(
        *MakeNode(BoundKind::Binary, OperatorType(*assignment.op, old->type, value->type), {old, value}));
    node->binary = *assignment.op;
    return node;
}

std::vector<BoundAssignment> BindAssignments(Binder& binder, const ast::UpdateStatement& update,
                                             const Selection& selection, std::vector<BoundPtr>& leaves) {
    const TableDef& table = *selection.target.table;
    std::vector<BoundAssignment> bound;
    std::set<std::size_t> seen;
    for (const ast::Assignment& assignment : update.assignments) {
        BoundAssignment entry;
        entry.variable = assignment.variable;
        if (!assignment.column.empty()) {
            const ColumnDef* column = table.Find(assignment.column);
            if (column == nullptr) {
                RaiseError(207, {assignment.column});
            }
            if (column->identity) {
                RaiseError(8102, {column->name});
            }
            if (!column->computed.empty()) {
                RaiseError(271, {column->name});
            }
            if (column->type.id == TypeId::Timestamp) {
                RaiseError(272);
            }
            entry.column = table.IndexOf(column->id);
            if (!seen.insert(*entry.column).second) {
                RaiseError(264, {column->name});
            }
        }
        const BoundPtr value = AssignedValue(binder, assignment, selection.scope);
        entry.value = value ? WithSlots(value, leaves) : nullptr;
        bound.push_back(std::move(entry));
    }
    return bound;
}

void UpdateRows(SessionCore& session, const ast::UpdateStatement& update, Binder& binder, Emission& emission,
                const Selection& selection, OutputRows& output, std::int64_t& count) {
    const TableDef& table = *selection.target.table;
    std::vector<BoundPtr> leaves;
    const std::vector<BoundAssignment> assignments = BindAssignments(binder, update, selection, leaves);
    std::string sql = "SELECT " + TargetColumns(selection);
    for (const BoundPtr& leaf : leaves) {
        sql += ", " + leaf->text;
    }
    sql += " FROM " + selection.from + selection.where;
    const std::int64_t limit = RowLimit(session, update.top);
    RowWriter writer(session, selection.target, "UPDATE");
    std::set<int> assigned;
    for (const BoundAssignment& assignment : assignments) {
        if (assignment.column) {
            assigned.insert(table.columns[*assignment.column].id);
        }
    }
    writer.SetAssigned(std::move(assigned));
    if (!update.outputs.empty()) {
        writer.Observe(output.Observer());
    }
    std::vector<StoredRow> before;
    std::vector<RowValues> after;
    {
        SqliteStatement row = session.connection().Prepare(sql);
        emission.BindAll(row);
        std::set<std::int64_t> seen; // A row that FROM returns twice is changed once.
        std::vector<Value> slots(leaves.size());
        while ((limit < 0 || static_cast<std::int64_t>(before.size()) < limit) && row.Step()) {
            if (!seen.insert(row.Int(0)).second) {
                continue;
            }
            session.CheckCancelled();
            for (std::size_t i = 0; i < slots.size(); ++i) {
                slots[i] = row.Column(static_cast<int>(table.columns.size() + 1 + i),
                                      leaves[i]->condition ? Simple(TypeId::Bit) : leaves[i]->type);
            }
            StoredRow stored = ReadTarget(row, table);
            RowValues changed = stored.values;
            for (const BoundAssignment& assignment : assignments) {
                const ColumnDef* column = assignment.column ? &table.columns[*assignment.column] : nullptr;
                const Type type = assignment.value ? assignment.value->type : column->type;
                const Value value =
                    assignment.value ? Compute(*assignment.value, session, slots) : writer.DefaultOf(*column);
                if (column != nullptr) {
                    changed[*assignment.column] =
                        Assign(value, IsNull(value) ? column->type : type, column->type);
                }
                if (!assignment.variable.empty()) {
                    AssignTo(session, assignment.variable, value, type);
                }
            }
            before.push_back(std::move(stored));
            after.push_back(std::move(changed));
        }
    }
    writer.Update(before, std::move(after));
    writer.Finish();
    output.Store();
    writer.FireTriggers();
    count = static_cast<std::int64_t>(before.size());
}

} // namespace

void RunUpdate(SessionCore& session, const ast::UpdateStatement& update) {
    std::int64_t count = 0;
    Emission emission(session);
    Binder binder(session, emission);
    binder.BindWith(update.with);
    const Selection selection =
        Select(session, binder, emission, update.table, update.from, update.where.get(), update.cursor);
    OutputRows output(session, update.outputs, selection.target,
                      OutputRows::kInserted | OutputRows::kDeleted);
    session.transactions().Write(selection.target.table->alias, [&] {
        UpdateRows(session, update, binder, emission, selection, output, count);
    });
    session.status().row_count = count;
    output.End(Command::Update, count);
}

void RunDelete(SessionCore& session, const ast::DeleteStatement& statement) {
    Emission emission(session);
    Binder binder(session, emission);
    binder.BindWith(statement.with);
    const Selection selection = Select(session, binder, emission, statement.table, statement.from,
                                       statement.where.get(), statement.cursor);
    OutputRows output(session, statement.outputs, selection.target, OutputRows::kDeleted);
    std::int64_t count = 0;
    session.transactions().Write(selection.target.table->alias, [&] {
        const TableDef& table = *selection.target.table;
        const std::int64_t limit = RowLimit(session, statement.top);
        std::vector<StoredRow> rows;
        {
            SqliteStatement row = session.connection().Prepare("SELECT " + TargetColumns(selection) +
                                                               " FROM " + selection.from + selection.where);
            emission.BindAll(row);
            std::set<std::int64_t> seen;
            while ((limit < 0 || static_cast<std::int64_t>(rows.size()) < limit) && row.Step()) {
                if (seen.insert(row.Int(0)).second) {
                    rows.push_back(ReadTarget(row, table));
                }
            }
        }
        RowWriter writer(session, selection.target, "DELETE");
        if (!statement.outputs.empty()) {
            writer.Observe(output.Observer());
        }
        writer.Delete(rows);
        writer.Finish();
        output.Store();
        writer.FireTriggers();
        count = static_cast<std::int64_t>(rows.size());
    });
    session.status().row_count = count;
    output.End(Command::Delete, count);
}

namespace {

/// The last identity given in a table. A value that this session has given takes precedence over the stored
/// counter, which a rollback may have set back.
std::optional<std::int64_t> LastIdentity(SessionCore& session, const Target& target) {
    if (const std::optional<std::int64_t> given = session.identities().Given(*target.table)) {
        return given;
    }
    return target.catalogue != nullptr ? target.catalogue->IdentityValue(target.table->id)
                                       : session.identities().Temporary(target.table->id);
}

void SetIdentity(SessionCore& session, const Target& target, std::optional<std::int64_t> value) {
    session.identities().ForgetGiven(*target.table);
    if (target.catalogue != nullptr) {
        target.catalogue->SetIdentityValue(target.table->id, value);
    } else {
        session.identities().SetTemporary(target.table->id, value);
    }
}

/// The highest value in the identity column, or the lowest if it counts down; empty for an empty table.
std::optional<std::int64_t> OutermostIdentity(SessionCore& session, const TableDef& table,
                                              const ColumnDef& column) {
    SqliteStatement row =
        session.connection().Prepare(std::string("SELECT ") + (column.increment < 0 ? "min(" : "max(") +
                                     QuoteName(column.name) + ") FROM " + table.Qualified());
    row.Step();
    const Value value = row.Column(0, column.type);
    return IsNull(value)
               ? std::nullopt
               : std::optional(std::get<std::int64_t>(Convert(value, column.type, Simple(TypeId::BigInt))));
}

} // namespace

void RunCheckIdentity(SessionCore& session, const ast::CheckIdentityStatement& check) {
    const ast::Name name = ParseName(check.table);
    Emission emission(session);
    Target target;
    try {
        target = Binder(session, emission).BindTarget(name.empty() ? ast::Name{{check.table}} : name);
    } catch (const SqlError& error) {
        if (error.number() != 208) {
            throw;
        }
        RaiseError(2501, {check.table}, 45);
    }
    const ColumnDef* column = target.table->IdentityColumn();
    if (column == nullptr) {
        RaiseError(7997, {target.table->name});
    }
    std::optional<std::int64_t> wanted;
    if (check.value) {
        Type type;
        const Value value = ComputeExpression(session, *check.value, &type);
        wanted = std::get<std::int64_t>(Convert(value, type, Simple(TypeId::BigInt)));
    }
    const std::optional<std::int64_t> current = LastIdentity(session, target);
    const std::optional<std::int64_t> outermost = OutermostIdentity(session, *target.table, *column);
    if (check.reseed) {
        std::optional<std::int64_t> next = current;
        if (wanted) { // If the table has never had a row, the first one gets the value itself.
            next = current ? *wanted : *wanted - column->increment;
        } else if (outermost && current &&
                   (column->increment < 0 ? *outermost < *current : *outermost > *current)) {
            next = outermost;
        }
        session.transactions().Write(target.table->alias, [&] { SetIdentity(session, target, next); });
    }
    if (!check.silent) {
        const auto text = [](const std::optional<std::int64_t>& number) {
            return number ? std::to_string(*number) : "NULL";
        };
        session.results().Info(7998, {text(current), text(wanted ? wanted : outermost)});
        session.results().Info(2528, {});
    }
    session.results().Done(Command::None, std::nullopt);
}

void RunTruncate(SessionCore& session, const ast::TruncateStatement& truncate) {
    Emission emission(session);
    const Target target = BindTargetAs(session, emission, truncate.table, 4701);
    if (target.remote) {
        RaiseError(117, {"object", truncate.table.text(), "2"});
    }
    for (const ForeignKeyDef& key : target.table->referencing) {
        if (key.table != target.table->id) {
            RaiseError(4712, {target.table->name});
        }
    }
    session.transactions().Write(target.table->alias, [&] {
        session.connection().Execute("DELETE FROM " + target.table->Qualified());
        SetIdentity(session, target, std::nullopt);
    });
    session.results().Done(Command::None, std::nullopt);
}

} // namespace devsql

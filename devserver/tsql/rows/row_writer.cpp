// Writes rows into one table, enforces its definition, and cascades to the rows that refer to them.
#include "devserver/tsql/rows/row_writer.h"

#include <algorithm>

#include "devserver/storage/databases.h"
#include "devserver/tsql/bind/evaluator.h"
#include "devserver/tsql/parse/parser.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/session/check_columns.h"
#include "devserver/tsql/session/server.h"

namespace devsql {
namespace {

std::string KeyText(const TableDef& table, const std::vector<int>& columns, const RowValues& row) {
    std::string text = "(";
    for (const int id : columns) {
        const std::size_t index = table.IndexOf(id);
        text += (text.size() == 1 ? "" : ", ") +
                (IsNull(row[index]) ? "<NULL>" : ValueText(row[index], table.columns[index].type));
    }
    return text + ")";
}

/// "fk columns = ?" over columns named by id.
std::string KeyCondition(const TableDef& table, const std::vector<int>& columns) {
    std::string text;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        text +=
            (i == 0 ? "" : " AND ") + QuoteName(table.ById(columns[i]).name) + " = ?" + std::to_string(i + 1);
    }
    return text;
}

std::vector<RowValues> ValuesOf(const std::vector<StoredRow>& rows) {
    std::vector<RowValues> values;
    values.reserve(rows.size());
    for (const StoredRow& row : rows) {
        values.push_back(row.values);
    }
    return values;
}

} // namespace

RowWriter::RowWriter(SessionCore& session, Target target, std::string statement)
    : session_(session),
      target_(std::move(target)),
      table_(*target_.table),
      statement_(std::move(statement)),
      firings_(std::make_shared<std::vector<Firing>>()) {
    if (!target_.remote) {
        BindExpressions();
        PrepareFiring();
    }
}

void RowWriter::PrepareFiring() {
    constexpr std::pair<std::string_view, ast::TriggerEvent> kEvents[] = {
        {"INSERT", ast::kOnInsert}, {"UPDATE", ast::kOnUpdate}, {"DELETE", ast::kOnDelete}};
    for (const auto& [word, event] : kEvents) {
        if (statement_ == word && HasTrigger(session_, target_.catalogue, table_, event)) {
            firing_ = Firing{target_.table, DatabaseName(), event, {}, {}, {}};
        }
    }
}

void RowWriter::SetAssigned(std::set<int> columns) {
    if (firing_) {
        firing_->columns = std::move(columns);
    }
}

void RowWriter::FireTriggers() {
    if (!firings_->empty()) {
        session_.triggers().Run(*firings_);
    }
}

bool RowWriter::IsRemote() const {
    if (target_.remote && observer_) {
        RaiseError(405);
    }
    return target_.remote != nullptr;
}

std::string RowWriter::DatabaseName() const {
    if (target_.catalogue == nullptr) {
        return "tempdb";
    }
    const std::string& alias = target_.catalogue->alias();
    for (const DatabaseInfo& database : ListDatabases(session_.connection())) {
        if (alias == "db" + std::to_string(database.id)) {
            return database.name;
        }
    }
    return "master";
}

std::string RowWriter::TableName() const {
    return target_.catalogue == nullptr ? table_.name : table_.schema + "." + table_.name;
}

BoundPtr RowWriter::BindOverRow(const std::string& text) {
    const ast::ExprPtr expr = ParseExpression(text);
    Emission emission(session_);
    Binder binder(session_, emission);
    Scope scope;
    ScopeSource source{table_.name, {{table_.name}}, "r", {}, nullptr};
    for (const ColumnDef& column : table_.columns) {
        source.columns.push_back({column.name, column.type, column.nullable, false, QuoteName(column.name)});
    }
    scope.sources.push_back(std::move(source));
    std::vector<BoundPtr> leaves;
    BoundPtr bound = WithSlots(binder.BindCondition(*expr, &scope), leaves);
    // Each leaf is a column: its slot becomes the column's place in the row.
    const std::function<BoundPtr(const BoundPtr&)> place = [&](const BoundPtr& node) -> BoundPtr {
        auto copy = std::make_shared<Bound>(*node);
        if (node->kind == BoundKind::Slot) {
            const auto column =
                std::find_if(table_.columns.begin(), table_.columns.end(), [&](const ColumnDef& c) {
                    return QuoteName(c.name) == leaves[node->slot]->text;
                });
            if (column == table_.columns.end()) {
                RaiseError(1046); // The leaf is a subquery.
            }
            copy->slot = table_.IndexOf(column->id);
        }
        for (BoundPtr& child : copy->children) {
            child = place(child);
        }
        return copy;
    };
    return place(bound);
}

void RowWriter::BindExpressions() {
    if (statement_ == "DELETE") {
        return;
    }
    for (const CheckDef& check : table_.checks) {
        if (!check.disabled) {
            const ColumnDef* column = ColumnOfCheck(table_, check.text);
            checks_.push_back(
                {check.name, BindOverRow(check.text), column ? ", column '" + column->name + "'" : ""});
        }
    }
    for (const ColumnDef& column : table_.columns) {
        if (!column.computed.empty()) {
            computed_[column.id] = BindOverRow(column.computed);
        }
    }
}

Value RowWriter::DefaultOf(const ColumnDef& column) {
    if (IsRemote()) {
        RaiseError(40517, {"DEFAULT in an UPDATE of a linked server's table"});
    }
    if (column.default_text.empty()) {
        return {};
    }
    BoundPtr& bound = defaults_[column.id];
    if (!bound) {
        bound = BindOverRow(column.default_text);
    }
    return Assign(Compute(*bound, session_), bound->type, column.type);
}

void RowWriter::FillIdentity(std::size_t index, std::optional<Value>& value) {
    const ColumnDef& column = table_.columns[index];
    if (!identity_loaded_) {
        identity_loaded_ = true;
        if (target_.catalogue != nullptr) {
            identity_ = target_.catalogue->IdentityValue(table_.id);
        } else {
            identity_ = session_.identities().Temporary(table_.id);
        }
        if (const std::optional<std::int64_t> given = session_.identities().Given(table_)) {
            const bool ahead =
                !identity_ || (column.increment > 0 ? *given > *identity_ : *given < *identity_);
            identity_ = ahead ? *given : *identity_;
        }
    }
    const bool scaled = IsDecimal(column.type.id);
    std::int64_t number = 0;
    if (value) {
        number = scaled ? static_cast<std::int64_t>(std::get<Decimal>(*value).unscaled)
                        : std::get<std::int64_t>(*value);
        const bool ahead = !identity_ || (column.increment > 0 ? number > *identity_ : number < *identity_);
        identity_ = ahead ? number : *identity_;
    } else {
        number = identity_ ? *identity_ + column.increment : column.seed;
        identity_ = number;
        if (scaled) {
            value = Value(Decimal{number, column.type.scale});
        } else {
            try {
                value = Convert(number, Simple(TypeId::BigInt), column.type);
            } catch (const SqlError&) {
                RaiseError(8115, {"IDENTITY", TypeName(column.type.id)});
            }
        }
    }
    identity_dirty_ = true;
    identity_given_ = number;
    session_.identities().SetGiven(table_, *identity_);
}

void RowWriter::Insert(std::vector<std::optional<Value>> given) {
    if (IsRemote()) {
        remote_rows_.push_back(std::move(given));
        return;
    }
    RowValues row(table_.columns.size());
    for (std::size_t i = 0; i < row.size(); ++i) {
        const ColumnDef& column = table_.columns[i];
        if (column.identity) {
            FillIdentity(i, given[i]);
        } else if (!given[i] && column.type.id != TypeId::Timestamp) {
            given[i] = DefaultOf(column);
        }
        row[i] = given[i] ? std::move(*given[i]) : Value();
    }
    Complete(row);
    CheckRow(row);
    Store(row, std::nullopt);
    if (observer_) {
        observer_(nullptr, &row);
    }
    if (firing_) {
        firing_->inserted.push_back(row);
    }
    if (!table_.foreign_keys.empty() && !ignores_keys_) {
        new_rows_.push_back(std::move(row));
    }
}

void RowWriter::IgnoreConstraints() {
    checks_.clear();
    ignores_keys_ = true;
}

void RowWriter::Complete(RowValues& row) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        const ColumnDef& column = table_.columns[i];
        if (column.type.id == TypeId::Timestamp) {
            auto number = static_cast<std::uint64_t>(target_.catalogue != nullptr
                                                         ? target_.catalogue->NextTimestamp()
                                                         : session_.server().NextTemporaryTimestamp());
            std::string bytes(8, '\0');
            for (std::size_t byte = 8; byte-- > 0; number >>= 8) {
                bytes[byte] = static_cast<char>(number & 0xFF);
            }
            row[i] = Bytes{bytes};
        }
    }
    for (const auto& [id, expression] : computed_) {
        row[table_.IndexOf(id)] =
            Convert(Compute(*expression, session_, row), expression->type, table_.ById(id).type);
    }
}

void RowWriter::CheckRow(const RowValues& row) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (!table_.columns[i].nullable && IsNull(row[i])) {
            const std::string where = target_.catalogue == nullptr ? "tempdb.dbo." + table_.name
                                                                   : DatabaseName() + "." + TableName();
            RaiseError(515, {table_.columns[i].name, where, statement_}, 2);
        }
    }
    for (const Check& check : checks_) {
        if (Test(*check.condition, session_, row) == false) {
            RaiseError(547, {statement_, "CHECK", check.name, DatabaseName(), TableName(), check.column}, 0);
        }
    }
}

SqliteStatement RowWriter::PrepareInsert(bool with_row_id) {
    std::string names;
    std::string places;
    const std::size_t count = table_.columns.size();
    for (std::size_t i = 0; i < count; ++i) {
        names += (i == 0 ? "" : ", ") + QuoteName(table_.columns[i].name);
        places += (i == 0 ? "?" : ", ?") + std::to_string(i + 1);
    }
    if (with_row_id) {
        names += ", " + RowIdName(table_);
        places += ", ?" + std::to_string(count + 1);
    }
    return session_.connection().Prepare("INSERT INTO " + table_.Qualified() + "(" + names + ") VALUES(" +
                                         places + ")");
}

void RowWriter::Store(const RowValues& row, std::optional<std::int64_t> row_id) {
    if (!insert_) { // A writer stores either new rows or rows that keep their numbers, never both.
        insert_ = PrepareInsert(row_id.has_value());
    }
    SqliteStatement& insert = *insert_;
    for (std::size_t i = 0; i < row.size(); ++i) {
        insert.Bind(static_cast<int>(i + 1), row[i], table_.columns[i].type);
    }
    if (row_id) {
        insert.BindInt(static_cast<int>(row.size() + 1), *row_id);
    }
    try {
        insert.Run();
    } catch (const StorageError& error) {
        ExplainUnique(error, row);
    }
}

/// Raises 2627 or 2601 for a duplicate key. SQLite's message names the columns or the index.
void RowWriter::ExplainUnique(const StorageError& error, const RowValues& row) {
    if (error.primary_code() != SQLITE_CONSTRAINT) {
        throw error;
    }
    const std::string what = error.what();
    for (const IndexDef& index : table_.indexes) {
        if (!index.unique) {
            continue;
        }
        std::string columns;
        std::vector<int> ids;
        for (const KeyColumn& key : index.columns) {
            columns += (columns.empty() ? "" : ", ") + table_.physical + "." + table_.ById(key.column).name;
            ids.push_back(key.column);
        }
        const std::string name = "ix_" + std::to_string(table_.id) + "_" + std::to_string(index.id);
        if (!what.ends_with("failed: " + columns) && what.find("'" + name + "'") == std::string::npos) {
            continue;
        }
        const std::string key = KeyText(table_, ids, row);
        if (index.constraint) {
            RaiseError(2627,
                       {index.primary_key ? "PRIMARY KEY" : "UNIQUE KEY", index.name, TableName(), key});
        }
        RaiseError(2601, {TableName(), index.name, key});
    }
    throw error;
}

bool RowWriter::KeyChanged(const std::vector<int>& columns, const RowValues& before,
                           const RowValues& after) const {
    return std::any_of(columns.begin(), columns.end(), [&](int id) {
        const std::size_t index = table_.IndexOf(id);
        return before[index] != after[index];
    });
}

bool RowWriter::UniqueKeyChanged(const RowValues& before, const RowValues& after) const {
    return std::ranges::any_of(table_.indexes, [&](const IndexDef& index) {
        std::vector<int> ids;
        for (const KeyColumn& key : index.columns) {
            ids.push_back(key.column);
        }
        return index.unique && KeyChanged(ids, before, after);
    });
}

SqliteStatement RowWriter::PrepareUpdate() {
    std::string assignments;
    for (std::size_t i = 0; i < table_.columns.size(); ++i) {
        assignments +=
            (i == 0 ? "" : ", ") + QuoteName(table_.columns[i].name) + " = ?" + std::to_string(i + 2);
    }
    return session_.connection().Prepare("UPDATE " + table_.Qualified() + " SET " + assignments + " WHERE " +
                                         RowIdName(table_) + " = ?1");
}

void RowWriter::Update(const std::vector<StoredRow>& before, std::vector<RowValues> after) {
    if (IsRemote()) {
        target_.remote->Update(ValuesOf(before), after);
        return;
    }
    bool keys = false;
    for (std::size_t i = 0; i < after.size(); ++i) {
        Complete(after[i]);
        CheckRow(after[i]);
        keys = keys || UniqueKeyChanged(before[i].values, after[i]);
    }
    // Rows may exchange their keys ("SET id = id + 1"), so all old rows are deleted before the new ones are
    // stored.
    SqliteStatement remove = session_.connection().Prepare("DELETE FROM " + table_.Qualified() + " WHERE " +
                                                           RowIdName(table_) + " = ?1");
    if (keys) {
        for (const StoredRow& row : before) {
            remove.BindInt(1, row.row_id).Run();
        }
    }
    SqliteStatement update = PrepareUpdate();
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (keys) {
            Store(after[i], before[i].row_id);
        } else {
            update.BindInt(1, before[i].row_id);
            for (std::size_t c = 0; c < after[i].size(); ++c) {
                update.Bind(static_cast<int>(c + 2), after[i][c], table_.columns[c].type);
            }
            update.Run();
        }
        if (observer_) {
            observer_(&before[i].values, &after[i]);
        }
        if (firing_) {
            firing_->deleted.push_back(before[i].values);
            firing_->inserted.push_back(after[i]);
        }
        if (!table_.foreign_keys.empty()) {
            new_rows_.push_back(after[i]);
        }
        if (!table_.referencing.empty()) {
            removed_.push_back({before[i].values, std::move(after[i])});
        }
    }
}

void RowWriter::Delete(const std::vector<StoredRow>& rows) {
    if (IsRemote()) {
        target_.remote->Delete(ValuesOf(rows));
        return;
    }
    SqliteStatement remove = session_.connection().Prepare("DELETE FROM " + table_.Qualified() + " WHERE " +
                                                           RowIdName(table_) + " = ?1");
    for (const StoredRow& row : rows) {
        remove.BindInt(1, row.row_id).Run();
        if (observer_) {
            observer_(&row.values, nullptr);
        }
        if (firing_) {
            firing_->deleted.push_back(row.values);
        }
        if (!table_.referencing.empty()) {
            removed_.push_back({row.values, std::nullopt});
        }
    }
}

void RowWriter::Finish() {
    if (!remote_rows_.empty()) {
        target_.remote->Insert(remote_rows_);
        return;
    }
    for (const Removed& removed : removed_) {
        for (const ForeignKeyDef& key : table_.referencing) {
            if (!key.disabled &&
                (!removed.after || KeyChanged(key.referenced_columns, removed.before, *removed.after))) {
                ReleaseChildren(key, removed.before, removed.after ? &*removed.after : nullptr);
            }
        }
    }
    for (const RowValues& row : new_rows_) {
        for (const ForeignKeyDef& key : table_.foreign_keys) {
            if (!key.disabled) {
                RequireParent(key, row);
            }
        }
    }
    if (identity_dirty_) {
        if (target_.catalogue != nullptr) {
            target_.catalogue->SetIdentityValue(table_.id, identity_);
        } else {
            session_.identities().SetTemporary(table_.id, identity_);
        }
    }
    if (firing_) {
        AddFiring(*firings_, std::move(*firing_));
    }
}

void RowWriter::ForeignKeyError(const ForeignKeyDef& key, std::string_view kind, const TableDef& other,
                                std::string_view column) const {
    RaiseError(547,
               {statement_, kind, key.name, DatabaseName(), other.schema + "." + other.name,
                ", column '" + std::string(column) + "'"},
               0);
}

void RowWriter::RequireParent(const ForeignKeyDef& key, const RowValues& row) {
    const TablePtr parent = session_.databases().Table(*target_.catalogue, key.referenced);
    SqliteStatement find =
        session_.connection().Prepare("SELECT 1 FROM " + parent->Qualified() + " WHERE " +
                                      KeyCondition(*parent, key.referenced_columns) + " LIMIT 1");
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        const std::size_t index = table_.IndexOf(key.columns[i]);
        if (IsNull(row[index])) {
            return; // A key with a NULL in it refers to nothing.
        }
        const Type& type = parent->ById(key.referenced_columns[i]).type;
        find.Bind(static_cast<int>(i + 1), Convert(row[index], table_.columns[index].type, type), type);
    }
    if (!find.Step()) {
        const bool same = key.table == key.referenced;
        ForeignKeyError(key, same ? "FOREIGN KEY SAME TABLE" : "FOREIGN KEY", *parent,
                        parent->ById(key.referenced_columns[0]).name);
    }
}

std::vector<StoredRow> RowWriter::Read(SessionCore& session, const TableDef& table,
                                       const std::string& condition,
                                       const std::vector<std::pair<Value, Type>>& parameters) {
    std::string names = RowIdName(table);
    for (const ColumnDef& column : table.columns) {
        names += ", " + QuoteName(column.name);
    }
    SqliteStatement row = session.connection().Prepare("SELECT " + names + " FROM " + table.Qualified() +
                                                       " WHERE " + condition);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        row.Bind(static_cast<int>(i + 1), parameters[i].first, parameters[i].second);
    }
    std::vector<StoredRow> rows;
    while (row.Step()) {
        StoredRow stored{row.Int(0), {}};
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            stored.values.push_back(row.Column(static_cast<int>(i + 1), table.columns[i].type));
        }
        rows.push_back(std::move(stored));
    }
    return rows;
}

/// Handles the rows that refer to a key which was removed or changed.
void RowWriter::ReleaseChildren(const ForeignKeyDef& key, const RowValues& before, const RowValues* after) {
    const TablePtr child = session_.databases().Table(*target_.catalogue, key.table);
    std::vector<std::pair<Value, Type>> parameters;
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        const std::size_t index = table_.IndexOf(key.referenced_columns[i]);
        const Type& type = child->ById(key.columns[i]).type;
        try {
            parameters.emplace_back(Convert(before[index], table_.columns[index].type, type), type);
        } catch (const SqlError&) {
            return; // A key that doesn't fit the child's type can't be in a child.
        }
    }
    // The same key may still exist, in another row or in this one in another spelling.
    SqliteStatement still =
        session_.connection().Prepare("SELECT 1 FROM " + table_.Qualified() + " WHERE " +
                                      KeyCondition(table_, key.referenced_columns) + " LIMIT 1");
    for (std::size_t i = 0; i < key.referenced_columns.size(); ++i) {
        const std::size_t index = table_.IndexOf(key.referenced_columns[i]);
        still.Bind(static_cast<int>(i + 1), before[index], table_.columns[index].type);
    }
    if (still.Step()) {
        return;
    }
    const std::vector<StoredRow> rows = Read(session_, *child, KeyCondition(*child, key.columns), parameters);
    if (rows.empty()) {
        return;
    }
    const OnChange action = after == nullptr ? key.on_delete : key.on_update;
    if (action == OnChange::NoAction) {
        const bool same = key.table == key.referenced;
        ForeignKeyError(key, same ? "SAME TABLE REFERENCE" : "REFERENCE", *child,
                        child->ById(key.columns[0]).name);
    }
    Cascade(key, child, rows, after);
}

void RowWriter::Cascade(const ForeignKeyDef& key, const TablePtr& child, const std::vector<StoredRow>& rows,
                        const RowValues* after) {
    const OnChange action = after == nullptr ? key.on_delete : key.on_update;
    RowWriter writer(session_, {child, target_.catalogue},
                     after == nullptr && action == OnChange::Cascade ? "DELETE" : "UPDATE");
    writer.firings_ = firings_;
    writer.SetAssigned({key.columns.begin(), key.columns.end()});
    if (after == nullptr && action == OnChange::Cascade) {
        writer.Delete(rows);
        writer.Finish();
        return;
    }
    std::vector<RowValues> changed;
    for (const StoredRow& row : rows) {
        RowValues values = row.values;
        for (std::size_t i = 0; i < key.columns.size(); ++i) {
            const std::size_t index = child->IndexOf(key.columns[i]);
            if (action == OnChange::Cascade) {
                const std::size_t parent = table_.IndexOf(key.referenced_columns[i]);
                values[index] =
                    Convert((*after)[parent], table_.columns[parent].type, child->columns[index].type);
            } else {
                values[index] =
                    action == OnChange::SetNull ? Value() : writer.DefaultOf(child->columns[index]);
            }
        }
        changed.push_back(std::move(values));
    }
    writer.Update(rows, std::move(changed));
    writer.Finish();
}

} // namespace devsql

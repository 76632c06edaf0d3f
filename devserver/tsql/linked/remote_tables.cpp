// Reads the columns and rows of a linked server's table, and sends changes as batches of T-SQL.
#include "devserver/tsql/linked/remote_tables.h"

#include <algorithm>
#include <set>

#include "devserver/tsql/linked/remote_servers.h"
#include "devserver/tsql/linked/remote_values.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

/// The approximate limit of a batch for the other server, in bytes. A single statement may be longer.
constexpr std::size_t kBatchLength = 60000;
constexpr std::size_t kRowsOfInsert = 500; ///< servers take 1000

std::int64_t Number(const Value& value) {
    const auto* number = std::get_if<std::int64_t>(&value);
    return number == nullptr ? 0 : *number;
}

/// Puts the rows into the temporary table.
class FillSink : public RemoteAnswer {
  public:
    FillSink(RemoteServersOwner& owner, const TableDef& table) : owner_(owner), table_(table) {
        std::string text = "INSERT INTO " + table.Qualified() + " VALUES(";
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            text += (i == 0 ? "?" : ", ?") + std::to_string(i + 1);
        }
        insert_.emplace(owner.connection().Prepare(text + ")"));
    }
    void Row(const std::vector<Value>& values) override {
        owner_.CheckCancelled();
        for (std::size_t i = 0; i < table_.columns.size(); ++i) {
            const Type& type = table_.columns[i].type;
            insert_->Bind(static_cast<int>(i + 1), CarriedValue(values[i], type), type);
        }
        insert_->Run();
        insert_->Reset();
    }

  private:
    RemoteServersOwner& owner_;
    const TableDef& table_;
    std::optional<SqliteStatement> insert_;
};

/// The type of a row of syscolumns. A type that this server does not know is fetched as text.
Type TypeOfColumn(std::int64_t xtype, std::int64_t length, std::int64_t precision, std::int64_t scale) {
    for (const SystemType& type : SystemTypes()) {
        if (type.xtype != xtype) {
            continue;
        }
        if (IsDecimal(type.id)) {
            return DecimalType(static_cast<int>(precision), static_cast<int>(scale), type.id);
        }
        if (!HasLength(type.id)) {
            return Simple(type.id);
        }
        const bool wide = IsUnicode(type.id);
        return Sized(type.id,
                     length < 0 ? kMaxLength : static_cast<std::int32_t>(wide ? length / 2 : length));
    }
    return Sized(TypeId::NVarChar, kMaxLength);
}

/// Adds a statement that is not there yet: one statement changes all equal rows.
void AddNew(const std::string& statement, std::set<std::string>& seen, std::vector<std::string>& statements) {
    if (seen.insert(statement).second) {
        statements.push_back(statement);
    }
}

} // namespace

RemoteTable::RemoteTable(RemoteServers& servers, const ast::Name& name)
    : servers_(servers), name_(name), server_(servers.Find(name.parts[0])) {
    RaiseIf(!server_.Is("data access"), 7411, {server_.name, "DATA ACCESS"});
    const std::string& schema = name.parts[2];
    qualified_ = Prefix() + (schema.empty() ? std::string() : BracketName(schema)) +
                 (schema.empty() && Prefix().empty() ? "" : ".") + BracketName(name.last());
    auto table = std::make_shared<TableDef>();
    table->id = servers_.owner().NextTableId();
    table->alias = "temp";
    table->schema = "dbo";
    table->name = name.last();
    table->physical = "devsql_remote_" + std::to_string(-table->id);
    LoadColumns(*table);
    LoadKey(*table);
    table_ = std::move(table);
}

RemoteTable::~RemoteTable() {
    if (!made_) {
        return;
    }
    try {
        servers_.owner().connection().Execute("DROP TABLE IF EXISTS " + table_->Qualified());
    } catch (const StorageError&) {
        // The table is dropped with the session at the latest.
    }
}

/// "[Batch].", or nothing for the login's default database.
std::string RemoteTable::Prefix() const {
    return name_.parts[1].empty() ? std::string() : BracketName(name_.parts[1]) + ".";
}

void RemoteTable::LoadColumns(TableDef& table) {
    RemoteAnswer answer;
    servers_.Run(
        server_,
        "SELECT " + CarriedExpression("c.name", Sized(TypeId::NVarChar, 128)) +
            ", CONVERT(int, c.xtype), CONVERT(int, c.length), CONVERT(int, c.xprec), CONVERT(int, c.xscale), "
            "CONVERT(int, c.isnullable), CONVERT(int, c.colstat & 1), CONVERT(int, c.iscomputed) FROM " +
            Prefix() + "dbo.syscolumns c WHERE c.id = OBJECT_ID(" + RemoteText(qualified_) +
            ") AND c.number = 0 ORDER BY c.colid",
        answer);
    for (const std::vector<Value>& row : answer.rows) {
        ColumnDef column;
        column.id = static_cast<int>(table.columns.size() + 1);
        column.name = std::get<std::string>(CarriedValue(row[0], Sized(TypeId::NVarChar, 128)));
        column.type = TypeOfColumn(Number(row[1]), Number(row[2]), Number(row[3]), Number(row[4]));
        column.nullable = Number(row[5]) != 0;
        column.identity = Number(row[6]) != 0;
        column.computed = Number(row[7]) != 0 ? "of the other server" : "";
        table.columns.push_back(std::move(column));
    }
    if (table.columns.empty()) {
        DescribeColumns(table);
    }
}

/// Asks for the columns of a view of the catalogue, which has no rows in syscolumns.
void RemoteTable::DescribeColumns(TableDef& table) {
    constexpr std::int32_t kNoObject = 208;
    constexpr std::int32_t kNoDatabase = 911;
    RemoteAnswer answer;
    servers_.Run(server_, "SELECT * FROM " + qualified_ + " WHERE 1 = 0", answer);
    if (answer.error && answer.error->number != kNoObject && answer.error->number != kNoDatabase) {
        answer.RequireSuccess();
    }
    if (answer.columns.empty()) {
        std::string quoted;
        for (std::size_t i = 1; i < name_.parts.size(); ++i) {
            if (!name_.parts[i].empty()) {
                quoted += (quoted.empty() ? "\"" : ".\"") + name_.parts[i] + "\"";
            }
        }
        RaiseError(7314, {server_.provider, server_.name, quoted});
    }
    for (const Column& given : answer.columns) {
        ColumnDef column;
        column.id = static_cast<int>(table.columns.size() + 1);
        column.name = given.name;
        column.type = given.type;
        column.nullable = given.nullable;
        table.columns.push_back(std::move(column));
    }
}

/// The columns of the primary key, otherwise those of another unique index, otherwise all comparable columns.
void RemoteTable::LoadKey(const TableDef& table) {
    RemoteAnswer answer;
    servers_.Run(server_,
                 "SELECT CONVERT(int, k.indid), " +
                     CarriedExpression("c.name", Sized(TypeId::NVarChar, 128)) + " FROM " + Prefix() +
                     "dbo.sysindexes i INNER JOIN " + Prefix() +
                     "dbo.sysindexkeys k ON k.id = i.id AND k.indid = i.indid INNER JOIN " + Prefix() +
                     "dbo.syscolumns c ON c.id = k.id AND c.colid = k.colid WHERE i.id = OBJECT_ID(" +
                     RemoteText(qualified_) +
                     ") AND i.status & 2 = 2 ORDER BY CASE WHEN i.status & 2048 = 2048 THEN 0 ELSE 1 "
                     "END, k.indid, k.keyno",
                 answer);
    for (const std::vector<Value>& row : answer.rows) {
        const std::string name = std::get<std::string>(CarriedValue(row[1], Sized(TypeId::NVarChar, 128)));
        const ColumnDef* column = table.Find(name);
        if (row[0] == answer.rows.front()[0] && column != nullptr) {
            key_.push_back(table.IndexOf(column->id));
        }
    }
    for (std::size_t i = 0; answer.rows.empty() && i < table.columns.size(); ++i) {
        if (!IsOldLob(table.columns[i].type.id)) {
            key_.push_back(i);
        }
    }
}

void RemoteTable::Fill() {
    if (made_) {
        return;
    }
    std::string sql = "SELECT ";
    for (const ColumnDef& column : table_->columns) {
        sql += (&column == &table_->columns.front() ? "" : ", ") +
               CarriedExpression(BracketName(column.name), column.type);
    }
    SqliteConnection& connection = servers_.owner().connection();
    connection.Execute(CreateTableText(*table_));
    made_ = true;
    connection.Execute("SAVEPOINT remote_rows");
    try {
        FillSink sink(servers_.owner(), *table_);
        servers_.Run(server_, sql + " FROM " + qualified_, sink);
        sink.RequireSuccess();
    } catch (...) {
        connection.Execute("ROLLBACK TO remote_rows; RELEASE remote_rows");
        throw;
    }
    connection.Execute("RELEASE remote_rows");
}

// ------------------------------------------------------------------ changes

std::string RemoteTable::ColumnList(const std::vector<std::size_t>& positions) const {
    std::string text;
    for (const std::size_t position : positions) {
        text += (text.empty() ? "" : ", ") + BracketName(table_->columns[position].name);
    }
    return text;
}

/// The condition that finds a row at the other server.
std::string RemoteTable::Condition(const std::vector<Value>& row) const {
    std::string text;
    for (const std::size_t position : key_) {
        const ColumnDef& column = table_->columns[position];
        text += (text.empty() ? " WHERE " : " AND ") + BracketName(column.name) +
                (IsNull(row[position]) ? std::string(" IS NULL")
                                       : " = " + RemoteLiteral(row[position], column.type));
    }
    return text;
}

/// Runs the statements, several in one batch, all or none of them.
void RemoteTable::Send(const std::vector<std::string>& statements) {
    if (statements.empty()) {
        return;
    }
    RemoteServers& remote = servers_;
    remote.Change(server_, [&] {
        std::string batch;
        for (const std::string& statement : statements) {
            if (!batch.empty() && batch.size() + statement.size() > kBatchLength) {
                remote.Execute(server_, batch);
                batch.clear();
            }
            batch += statement + "\n";
        }
        remote.Execute(server_, batch);
    });
}

void RemoteTable::Insert(const std::vector<std::vector<std::optional<Value>>>& rows) {
    std::vector<std::size_t> positions; // of the columns that any row gives
    for (std::size_t i = 0; i < table_->columns.size(); ++i) {
        if (std::ranges::any_of(rows, [i](const auto& row) { return row[i].has_value(); })) {
            positions.push_back(i);
        }
    }
    std::vector<std::string> statements;
    std::size_t in_statement = 0;
    for (const std::vector<std::optional<Value>>& row : rows) {
        if (positions.empty()) {
            statements.push_back("INSERT INTO " + qualified_ + " DEFAULT VALUES");
            continue;
        }
        std::string values;
        for (const std::size_t position : positions) {
            values += (values.empty() ? "(" : ", ") +
                      (row[position] ? RemoteLiteral(*row[position], table_->columns[position].type)
                                     : std::string("DEFAULT"));
        }
        const bool full = statements.empty() || in_statement >= kRowsOfInsert ||
                          statements.back().size() + values.size() > kBatchLength;
        if (full) {
            statements.push_back("INSERT INTO " + qualified_ + " (" + ColumnList(positions) + ") VALUES");
            in_statement = 0;
        }
        statements.back() += (in_statement++ == 0 ? " " : ", ") + values + ")";
    }
    Send(statements);
}

void RemoteTable::Update(const std::vector<std::vector<Value>>& before,
                         const std::vector<std::vector<Value>>& after) {
    std::vector<std::size_t> changed;
    for (std::size_t position = 0; position < table_->columns.size(); ++position) {
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (before[i][position] != after[i][position]) {
                changed.push_back(position);
                break;
            }
        }
    }
    std::vector<std::string> statements;
    std::set<std::string> seen;
    for (std::size_t i = 0; i < before.size() && !changed.empty(); ++i) {
        std::string assignments;
        for (const std::size_t position : changed) {
            const ColumnDef& column = table_->columns[position];
            assignments += (assignments.empty() ? "" : ", ") + BracketName(column.name) + " = " +
                           RemoteLiteral(after[i][position], column.type);
        }
        AddNew("UPDATE " + qualified_ + " SET " + assignments + Condition(before[i]), seen, statements);
    }
    Send(statements);
}

void RemoteTable::Delete(const std::vector<std::vector<Value>>& rows) {
    std::vector<std::string> statements;
    std::set<std::string> seen;
    for (const std::vector<Value>& row : rows) {
        AddNew("DELETE FROM " + qualified_ + Condition(row), seen, statements);
    }
    Send(statements);
}

} // namespace devsql

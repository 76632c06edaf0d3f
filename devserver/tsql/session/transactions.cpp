// Transactions: SQLite's begins with the first write of T-SQL's, so that one that only reads sees every
// commit of others, as READ COMMITTED does, and holds no lock.
#include <chrono>
#include <thread>

#include <sqlite3.h>

#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/server/server.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {
namespace {

/// Two sessions that wait for each other end so: one of them gives up.
constexpr std::chrono::milliseconds kLongestWait(20000);

/// The rows of one table variable, kept while a rollback takes them away.
struct KeptTable {
    TablePtr table;
    std::vector<std::vector<Value>> rows;
};

KeptTable Keep(SqliteConnection& connection, const TablePtr& table) {
    KeptTable kept{table, {}};
    SqliteStatement row = connection.Prepare("SELECT * FROM " + table->Qualified());
    while (row.Step()) {
        std::vector<Value> values;
        for (std::size_t i = 0; i < table->columns.size(); ++i) {
            values.push_back(row.Column(static_cast<int>(i), table->columns[i].type));
        }
        kept.rows.push_back(std::move(values));
    }
    return kept;
}

void Restore(SqliteConnection& connection, const KeptTable& kept) {
    connection.Execute("DROP TABLE IF EXISTS " + kept.table->Qualified());
    connection.Execute(CreateTableText(*kept.table));
    for (const IndexDef& index : kept.table->indexes) {
        connection.Execute(CreateIndexText(*kept.table, index));
    }
    std::string text = "INSERT INTO " + kept.table->Qualified() + " VALUES(";
    for (std::size_t i = 0; i < kept.table->columns.size(); ++i) {
        text += (i == 0 ? "?" : ", ?") + std::to_string(i + 1);
    }
    SqliteStatement insert = connection.Prepare(text + ")");
    for (const std::vector<Value>& row : kept.rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            insert.Bind(static_cast<int>(i + 1), row[i], kept.table->columns[i].type);
        }
        insert.Run();
    }
}

} // namespace

void SessionCore::BeginStorage() {
    if (!connection.InTransaction()) {
        connection.Prepare("BEGIN").Run();
    }
}

/// Takes the write lock before anything is read, so that what is read is what will be changed. Where the
/// transaction has read of this file before, SQLite does not ask the busy handler, and the waiting is done
/// here; what it read must then still be the last commit (SQLITE_BUSY_SNAPSHOT says that it is not).
void SessionCore::LockForWriting(const std::string& alias) {
    if (alias == "temp" || connection.Writes(alias)) {
        return;
    }
    using std::chrono::milliseconds;
    constexpr milliseconds kPause(5);
    const auto begun = std::chrono::steady_clock::now();
    for (;;) {
        try {
            connection.Prepare("DELETE FROM " + QuoteName(alias) + ".devsql_settings WHERE 0").Run();
            return;
        } catch (const StorageError& error) {
            const auto waited =
                std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begun).count();
            if (error.code() != SQLITE_BUSY || !WaitForLock(static_cast<int>(waited))) {
                throw;
            }
        }
        std::this_thread::sleep_for(kPause);
    }
}

bool SessionCore::WaitForLock(int waited) const {
    if (cancelled) {
        return false;
    }
    return std::chrono::milliseconds(waited) < LockTime();
}

std::chrono::milliseconds SessionCore::LockTime() const {
    return options.lock_timeout >= 0 ? std::chrono::milliseconds(options.lock_timeout) : kLongestWait;
}

SqlError SessionCore::LockError() const {
    return options.lock_timeout >= 0 ? ErrorOf(1222, {}, 51)
                                     : ErrorOf(1205, {std::to_string(id), "lock"}, 51);
}

void SessionCore::Write(const std::string& alias, const std::function<void()>& work) {
    const bool own = transaction_count_ == 0 && writes_ == 0;
    const Temporaries before = temporary_;
    BeginStorage();
    ++writes_;
    const std::string savepoint = "write" + std::to_string(writes_);
    bool saved = false;
    try {
        LockForWriting(alias);
        if (!own) { // A statement of its own is undone with its transaction.
            connection.Prepare("SAVEPOINT " + savepoint).Run();
            saved = true;
        }
        work();
        if (own) {
            connection.Prepare("COMMIT").Run();
        } else {
            connection.Prepare("RELEASE " + savepoint).Run();
        }
        --writes_;
    } catch (...) {
        const Uninterrupted whole(*this);
        if (connection.InTransaction()) {
            if (own) {
                RollbackAround("ROLLBACK", before, false);
            } else if (saved) {
                RollbackAround("ROLLBACK TO " + savepoint + "; RELEASE " + savepoint, before, false);
            }
        } else { // SQLite has given the transaction up by itself.
            LoseTransaction(own ? before : temporary_before_);
        }
        --writes_;
        throw;
    }
}

void SessionCore::RollbackAround(const std::string& text, const Temporaries& temporary, bool keep_variables) {
    std::vector<KeptTable> kept;
    for (Frame* frame = frame_; keep_variables && frame != nullptr; frame = frame->caller) {
        for (const auto& [name, table] : frame->tables) {
            kept.push_back(Keep(connection, table));
        }
    }
    connection.Execute(text);
    temporary_ = temporary;
    DropTemporariesFrom(nesting_ + 1); // of calls that have ended within what is rolled back
    ForgetTables();
    for (const KeptTable& table : kept) {
        Restore(connection, table);
    }
}

void SessionCore::ResetTransaction() {
    transaction_count_ = 0;
    savepoints_.clear();
    transaction_name_.clear();
    doomed = false;
    lost_ = false;
}

/// For a transaction that SQLite has rolled back, which it does where a commit fails and where a write fails
/// in a way that it can't undo alone. Table variables are as they were before the transaction.
void SessionCore::LoseTransaction(const Temporaries& temporary) {
    temporary_ = temporary;
    DropTemporariesFrom(nesting_ + 1);
    ForgetTables();
    for (Frame* frame = frame_; frame != nullptr; frame = frame->caller) {
        for (const auto& [name, table] : frame->tables) {
            SqliteStatement known = connection.Prepare("SELECT 1 FROM temp.sqlite_master WHERE name = ?1");
            known.BindText(1, table->physical);
            if (!known.Step()) {
                known.Reset();
                Restore(connection, {table, {}});
            }
        }
    }
    savepoints_.clear();
    lost_ = transaction_count_ > 0;
}

void SessionCore::CommitStorage() {
    try {
        connection.Execute("COMMIT");
    } catch (const StorageError& error) {
        const Uninterrupted whole(*this);
        if (connection.InTransaction()) {
            connection.Execute("ROLLBACK");
        }
        LoseTransaction(temporary_before_);
        if (error.primary_code() == SQLITE_FULL) {
            RaiseError(9002, {CurrentDatabaseName(), "NOTHING"});
        }
        throw;
    }
}

void SessionCore::BeginTransaction(const std::string& name) {
    if (transaction_count_++ == 0) {
        transaction_name_ = Folded(name);
        temporary_before_ = temporary_;
    }
}

void SessionCore::CommitTransaction() {
    if (transaction_count_ == 0) {
        RaiseError(3902);
    }
    if (doomed) {
        RaiseError(3930);
    }
    if (transaction_count_ == 1) {
        // The others first: where one of them can't commit, nothing is committed here either.
        try {
            remote_.Commit();
        } catch (const SqlError&) {
            AbandonTransaction();
            throw;
        }
        if (connection.InTransaction()) {
            CommitStorage();
        }
        ResetTransaction();
    } else {
        --transaction_count_;
    }
}

void SessionCore::RollbackTransaction(const std::string& name) {
    if (transaction_count_ == 0) {
        RaiseError(3903);
    }
    if (!name.empty() && Folded(name) != transaction_name_) {
        const std::string folded = Folded(name);
        for (std::size_t i = savepoints_.size(); i-- > 0;) {
            if (savepoints_[i].name == folded) {
                const Temporaries temporary = savepoints_[i].temporary;
                savepoints_.resize(i + 1);
                RollbackAround("ROLLBACK TO user_" + std::to_string(i), temporary, true);
                return;
            }
        }
        RaiseError(6401, {name});
    }
    AbandonTransaction();
}

void SessionCore::SaveTransaction(const std::string& name) {
    if (transaction_count_ == 0) {
        RaiseError(628);
    }
    if (remote_.InTransaction()) {
        RaiseError(627);
    }
    BeginStorage();
    connection.Execute("SAVEPOINT user_" + std::to_string(savepoints_.size()));
    savepoints_.push_back({Folded(name), temporary_});
}

void SessionCore::AbandonTransaction() {
    const Uninterrupted whole(*this);
    remote_.Rollback();
    if (connection.InTransaction()) {
        RollbackAround("ROLLBACK", transaction_count_ > 0 ? temporary_before_ : temporary_, true);
    }
    ResetTransaction();
}

} // namespace devsql

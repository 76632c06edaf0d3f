// Maps the session's transaction, its savepoints and its single statements to transactions and savepoints of
// SQLite.
#include "devserver/tsql/session/transactions.h"

#include <algorithm>
#include <thread>
#include <utility>

#include <sqlite3.h>

#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {
namespace {

using std::chrono::milliseconds;

/// Ends a deadlock: of two sessions that wait for each other, one gives up after this time.
constexpr milliseconds kLongestWait(20000);

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

Transactions::Transactions(SessionCore& session) : session_(session) {
    session_.connection().OnBusy([this](int waited) { return WaitForLock(waited); });
}

void Transactions::BeginStorage() {
    if (!session_.connection().InTransaction()) {
        session_.connection().Prepare("BEGIN").Run();
    }
}

/// Takes the write lock before anything is read, so that what is read is what will be changed. Where the
/// transaction has read of this file before, SQLite does not ask the busy handler, and the waiting is done
/// here; what it read must then still be the last commit (SQLITE_BUSY_SNAPSHOT says that it is not).
void Transactions::LockForWriting(const std::string& alias) {
    SqliteConnection& connection = session_.connection();
    if (alias == "temp" || connection.Writes(alias)) {
        return;
    }
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

bool Transactions::WaitForLock(int waited) const {
    return !session_.interruption().requested() && milliseconds(waited) < LockTime();
}

milliseconds Transactions::LockTime() const {
    const std::int64_t timeout = session_.options().lock_timeout;
    return timeout >= 0 ? milliseconds(timeout) : kLongestWait;
}

SqlError Transactions::LockError() const {
    return session_.options().lock_timeout >= 0 ? ErrorOf(1222, {}, 51)
                                                : ErrorOf(1205, {std::to_string(session_.id()), "lock"}, 51);
}

void Transactions::Write(const std::string& alias, const std::function<void()>& work) {
    SqliteConnection& connection = session_.connection();
    const bool own = count_ == 0 && writes_ == 0;
    const Temporaries before = session_.temporaries().list();
    const std::size_t savepoints = savepoints_.size();
    const std::int64_t transaction = ended_;
    const std::size_t lowest_around = std::exchange(lowest_savepoint_, kNoSavepoint);
    BeginStorage();
    ++writes_;
    const std::string savepoint = "write" + std::to_string(writes_);
    bool saved = false;
    // A trigger may have rolled back to a savepoint that is older than the statement's own.
    const auto holds = [&] { return saved && lowest_savepoint_ >= savepoints; };
    const auto leave = [&] {
        --writes_;
        lowest_savepoint_ = std::min(lowest_savepoint_, lowest_around);
    };
    try {
        LockForWriting(alias);
        if (!own) { // Otherwise the transaction is the statement's own, and is rolled back whole.
            connection.Prepare("SAVEPOINT " + savepoint).Run();
            saved = true;
        }
        work();
        if (own) {
            connection.Prepare("COMMIT").Run();
        } else if (holds() && savepoints_.size() == savepoints) { // Else a trigger has set some, which stay.
            connection.Prepare("RELEASE " + savepoint).Run();
        }
        leave();
    } catch (...) {
        if (transaction == ended_) { // Else a trigger has ended it, and nothing is left to undo.
            UndoWrite(savepoint, own, holds(), before);
            savepoints_.resize(std::min(savepoints_.size(), savepoints));
            leave();
        }
        throw;
    }
}

void Transactions::UndoWrite(const std::string& savepoint, bool own, bool saved, const Temporaries& before) {
    const Interruption::Block block(session_.interruption());
    if (!session_.connection().InTransaction()) { // SQLite has given the transaction up by itself.
        Lose(own ? before : temporary_before_);
    } else if (own) {
        RollbackAround("ROLLBACK", before, false);
    } else if (saved) {
        RollbackAround("ROLLBACK TO " + savepoint + "; RELEASE " + savepoint, before, false);
    }
}

void Transactions::RollbackAround(const std::string& text, const Temporaries& temporary,
                                  bool keep_variables) {
    SqliteConnection& connection = session_.connection();
    std::vector<KeptTable> kept;
    if (keep_variables) {
        for (const TablePtr& table : session_.calls().TableVariables()) {
            kept.push_back(Keep(connection, table));
        }
    }
    connection.Execute(text);
    session_.temporaries().Restore(temporary);
    session_.databases().ForgetTables();
    for (const KeptTable& table : kept) {
        Restore(connection, table);
    }
}

void Transactions::Clear() {
    count_ = 0;
    savepoints_.clear();
    name_.clear();
    doomed_ = false;
    lost_ = false;
}

void Transactions::Reset() {
    Clear();
    ++ended_;
    writes_ = 0;
    lowest_savepoint_ = kNoSavepoint;
}

/// After a rollback of the statement that fired a trigger, the trigger finds none of its rows.
void Transactions::EmptyTransitionTables() {
    for (const TablePtr& table : session_.calls().TableVariables()) {
        if (!table->name.starts_with("@")) {
            session_.connection().Execute("DELETE FROM " + table->Qualified());
        }
    }
}

/// For a transaction that SQLite has rolled back, which it does where a commit fails and where a write fails
/// in a way that it can't undo alone. Table variables are as they were before the transaction.
void Transactions::Lose(const Temporaries& temporary) {
    SqliteConnection& connection = session_.connection();
    session_.temporaries().Restore(temporary);
    session_.databases().ForgetTables();
    for (const TablePtr& table : session_.calls().TableVariables()) {
        SqliteStatement known = connection.Prepare("SELECT 1 FROM temp.sqlite_master WHERE name = ?1");
        known.BindText(1, table->physical);
        if (!known.Step()) {
            known.Reset();
            Restore(connection, {table, {}});
        }
    }
    savepoints_.clear();
    lost_ = count_ > 0;
}

void Transactions::CommitStorage() {
    SqliteConnection& connection = session_.connection();
    try {
        connection.Execute("COMMIT");
    } catch (const StorageError& error) {
        const Interruption::Block block(session_.interruption());
        if (connection.InTransaction()) {
            connection.Execute("ROLLBACK");
        }
        Lose(temporary_before_);
        if (error.primary_code() == SQLITE_FULL) {
            RaiseError(9002, {session_.databases().CurrentName(), "NOTHING"});
        }
        throw;
    }
}

void Transactions::Begin(const std::string& name) {
    if (count_++ == 0) {
        name_ = Folded(name);
        temporary_before_ = session_.temporaries().list();
    }
}

void Transactions::Commit() {
    RaiseIf(count_ == 0, 3902);
    RaiseIf(doomed_, 3930);
    if (count_ > 1) {
        --count_;
        return;
    }
    // The linked servers first: where one of them can't commit, nothing is committed here either.
    try {
        session_.remote().Commit();
    } catch (const SqlError&) {
        Abandon();
        throw;
    }
    if (session_.connection().InTransaction()) {
        CommitStorage();
    }
    Reset();
}

void Transactions::Rollback(const std::string& name) {
    RaiseIf(count_ == 0, 3903);
    const std::string folded = Folded(name);
    if (name.empty() || folded == name_) {
        Abandon();
        return;
    }
    for (std::size_t i = savepoints_.size(); i-- > 0;) {
        if (savepoints_[i].name == folded) {
            const Temporaries temporary = savepoints_[i].temporary;
            savepoints_.resize(i + 1);
            lowest_savepoint_ = std::min(lowest_savepoint_, i);
            RollbackAround("ROLLBACK TO user_" + std::to_string(i), temporary, true);
            return;
        }
    }
    RaiseError(6401, {name});
}

void Transactions::Save(const std::string& name) {
    RaiseIf(count_ == 0, 628);
    RaiseIf(session_.remote().InTransaction(), 627);
    BeginStorage();
    session_.connection().Execute("SAVEPOINT user_" + std::to_string(savepoints_.size()));
    savepoints_.push_back({Folded(name), session_.temporaries().list()});
}

void Transactions::Abandon() {
    const Interruption::Block block(session_.interruption());
    session_.remote().Rollback();
    if (session_.connection().InTransaction()) {
        EmptyTransitionTables();
        RollbackAround("ROLLBACK", count_ > 0 ? temporary_before_ : session_.temporaries().list(), true);
    }
    Reset();
}

} // namespace devsql

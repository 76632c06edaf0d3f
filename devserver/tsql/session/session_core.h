// One session's state, as the parts of the language share it: its connection to SQLite, the databases it has
// attached, its variables, options, transaction and messages. Knows nothing of syntax.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "devserver/engine/engine.h"
#include "devserver/storage/catalogue.h"
#include "devserver/storage/sqlite.h"
#include "devserver/tsql/bind/bound.h"
#include "devserver/tsql/linked/remote_servers.h"
#include "devserver/tsql/parse/ast_definitions.h"
#include "devserver/tsql/scalar/date_settings.h"
#include "devserver/tsql/scalar/errors.h"

namespace devsql {

namespace ast {
struct InsertBulkStatement;
}

class Server;
class SessionCore;
struct DatabaseInfo;

/// The form of a name that equals that of every other spelling of it.
std::string Folded(std::string_view name);

/// "#t": seen by one session alone. "##t" is not.
bool IsSessionTable(std::string_view name);
bool IsGlobalTable(std::string_view name);

/// The client has asked for an end, or the session has been thrown out.
struct Cancelled {};

/// A function that asks the session (GETDATE, OBJECT_ID).
struct SessionFunction {
    std::string_view name; ///< upper case
    int min_arguments;
    int max_arguments;
    Type type;
    Value (*evaluate)(SessionCore& session, std::span<const Value> arguments, std::span<const Type> types);
    bool constant; ///< the same for all rows of a statement
};

const SessionFunction* FindSessionFunction(std::string_view name);

/// The SET options of a session. A procedure gets a copy and its caller keeps its own.
struct Options {
    bool nocount = false;
    bool xact_abort = false;
    bool ansi_nulls = true;
    bool quoted_identifier = true;
    bool concat_null_yields_null = true;
    bool implicit_transactions = false; ///< a statement that reads or writes begins a transaction
    bool cursor_close_on_commit = false;
    bool noexec = false;
    bool parseonly = false;
    bool fmtonly = false;
    std::int16_t isolation_level = 2; ///< by the catalogue's number; kept and shown, without effect
    std::int64_t rowcount = 0;
    std::int64_t textsize = 2147483647;
    std::int64_t lock_timeout = -1;
    DateSettings dates;
    std::map<std::string, std::string> others; ///< accepted, kept, without effect here
};

struct Variable {
    Type type;
    Value value;
};

/// A result set kept in memory: a cursor's rows, what INSERT … EXEC takes.
struct RowSet {
    std::vector<Column> columns;
    std::vector<std::vector<Value>> rows;
};

struct Cursor {
    std::shared_ptr<const ast::Query> query;
    bool open = false;
    bool scroll = false;
    RowSet rows;
    std::vector<std::int64_t> row_ids; ///< of the one table behind it, for WHERE CURRENT OF; may be empty
    TablePtr table;
    std::int64_t position = -1; ///< of the row fetched last; -1 before the first
};

/// What a batch or a procedure call has of its own.
struct Frame {
    std::map<std::string, Variable, std::less<>> variables; ///< upper-case name with "@"
    std::map<std::string, TablePtr, std::less<>> tables;    ///< table variables
    std::map<std::string, std::shared_ptr<Cursor>, std::less<>> cursors;
    std::string procedure;
    std::int64_t procedure_id = 0;
    std::string database; ///< whose objects its names mean
    std::int64_t scope_identity = 0;
    bool has_scope_identity = false;
    Frame* caller = nullptr;
};

/// The error that a CATCH block looks at.
struct CaughtError {
    Message message;
};

class SessionCore {
  public:
    SessionCore(Server& server, std::int32_t id, std::string login);
    ~SessionCore();
    SessionCore(const SessionCore&) = delete;
    SessionCore& operator=(const SessionCore&) = delete;

    // ---- databases (session_core.cpp)
    /// The catalogue of a database, which is attached if it isn't yet. Raises 911 for an unknown name, 942
    /// and 924 for one that can't be used.
    Catalogue& Database(const std::string& name);
    /// That of the running frame.
    Catalogue& CurrentDatabase();
    const std::string& CurrentDatabaseName() const;
    /// That of the session itself, which USE changes.
    const std::string& SessionDatabase() const { return database_; }
    void Use(const std::string& name);
    /// A procedure's tree, parsed once while the catalogue's version stands.
    std::shared_ptr<const ast::CreateModuleStatement> Module(Catalogue& catalogue, const ObjectDef& object);
    /// Lets go of every database but the current one; between batches, outside transactions.
    void ReleaseDatabases();
    void ReleaseDatabase(const std::string& name);
    /// Every database, for a session that has been thrown out.
    void ReleaseEverything();
    bool Holds(const std::string& name) const;
    /// A table by its object, from the cache while the catalogue's version stands.
    TablePtr Table(Catalogue& catalogue, std::int64_t id);
    /// The object of that name, likewise.
    std::optional<ObjectDef> Object(Catalogue& catalogue, const std::string& schema, const std::string& name);
    void ForgetTables();

    // ---- temporary tables
    TablePtr FindTemporary(const std::string& name) const;
    /// Whether the running batch or procedure itself has made it.
    bool HasOwnTemporary(const std::string& name) const;
    void AddTemporary(TableDef table);
    void ReplaceTemporary(const TableDef& table);
    void DropTemporary(const std::string& name);
    /// Tables named ## are tempdb's and everybody's; they go with the session that made them.
    void OwnGlobalTable(const std::string& name) { global_tables_.insert(Folded(name)); }
    void DropGlobalTables();
    TablePtr FindTableVariable(std::string_view name) const;
    std::int64_t NextTemporaryId() { return next_temporary_id_--; }
    /// The last identity of a temporary table.
    std::map<std::int64_t, std::int64_t> temporary_identities;
    /// The last identity given in a table ("db7.12345"): a rollback does not give it back.
    std::map<std::string, std::int64_t> given_identities;

    // ---- frames and variables
    Frame& frame() { return *frame_; }
    const Frame& frame() const { return *frame_; }
    Variable& FindVariable(std::string_view name);
    void Push(Frame& frame);
    void Pop();
    int nesting() const { return nesting_; }
    /// @@name. Raises 137 for a name that isn't one.
    BoundPtr Global(std::string_view name);
    std::shared_ptr<Cursor> FindCursor(const std::string& name);
    std::map<std::string, std::shared_ptr<Cursor>, std::less<>> global_cursors;
    void CloseCursors();

    // ---- expressions that SQLite calls back for
    std::int64_t AddOperation(BoundPtr operation);
    void RemoveOperation(std::int64_t number);
    /// SQLite's name of SUM or AVG over that type.
    std::string SumFunction(const Type& type, bool average);

    // ---- prepared statements
    struct Prepared {
        std::string declarations;
        std::string text;
    };
    std::int32_t AddPrepared(std::string declarations, std::string text);
    const Prepared* FindPrepared(std::int32_t handle) const;
    void RemovePrepared(std::int32_t handle) { prepared_.erase(handle); }

    // ---- transactions (transactions.cpp)
    void BeginTransaction(const std::string& name);
    void CommitTransaction();
    void RollbackTransaction(const std::string& name);
    void SaveTransaction(const std::string& name);
    int transaction_count() const { return transaction_count_; }
    bool has_savepoints() const { return !savepoints_.empty(); }
    /// The session's connections to linked servers.
    RemoteServers& remote() { return remote_; }
    /// Rolls back whatever is open; for the end of a session and for errors that abort.
    void AbandonTransaction();
    /// Runs one statement that writes to `alias`, whole or not at all; commits it outside a transaction.
    void Write(const std::string& alias, const std::function<void()>& work);
    /// An error has made the transaction unfit for anything but a rollback (XACT_STATE() = -1).
    bool doomed = false;
    /// SQLite has given the transaction up: nothing of it is left, and whoever counts on it must be told.
    bool lost_transaction() const { return lost_; }

    // ---- results
    ResultSink& sink() { return *sink_; }
    ResultSink* ExchangeSink(ResultSink* sink) { return std::exchange(sink_, sink); }
    void Print(const Message& message);
    void Info(std::int32_t number, std::initializer_list<std::string_view> arguments = {},
              std::uint8_t state = 1);
    void Done(Command command, std::optional<std::int64_t> rows);
    /// Around each statement: tells the sink of its end where nothing that it ran has done so. In a procedure
    /// under NOCOUNT such an end is left out.
    void BeginStatement() { statement_ended_ = false; }
    void EndStatement();

    /// Throws when the client has asked for an end, or the session has been thrown out.
    void CheckCancelled() const;
    /// While one lives, Cancel does not interrupt SQLite: what is rolled back or let go is so to its end.
    class Uninterrupted {
      public:
        explicit Uninterrupted(SessionCore& session);
        ~Uninterrupted();
        Uninterrupted(const Uninterrupted&) = delete;
        Uninterrupted& operator=(const Uninterrupted&) = delete;

      private:
        SessionCore& session_;
    };
    /// How long the session waits for a lock.
    std::chrono::milliseconds LockTime() const;
    /// The error of one that has waited so long: 1222, or 1205 where LOCK_TIMEOUT is not set.
    SqlError LockError() const;
    void Cancel();
    std::atomic<bool> cancelled = false;
    std::atomic<bool> ended = false;

    Server& server;
    SqliteConnection connection;
    Options options;
    std::atomic<std::int16_t> isolation_level = 2; ///< that of `options`, for other sessions to see
    const std::int32_t id;
    const std::string login;
    std::string host_name;
    std::string application;
    std::string password; ///< as the client logged in with it; linked servers are logged in to with it

    std::int32_t last_error = 0;
    std::int64_t row_count = 0;
    std::int64_t fetch_status = 0;
    std::optional<std::int64_t> last_identity;
    std::string identity_insert; ///< the table under SET IDENTITY_INSERT ON, as "database.schema.table"
    std::int32_t line = 1;       ///< of the running statement
    std::vector<CaughtError> caught;
    std::shared_ptr<const ast::InsertBulkStatement> bulk; ///< whose rows are to come next

    /// Held while a call runs; who throws a session out takes it to close what the session holds.
    std::mutex running;

  private:
    /// By folded name and level of calls: a procedure's table hides its caller's of the same name.
    using Temporaries = std::map<std::pair<std::string, int>, TablePtr>;
    /// Where a temporary table made now belongs: 0, the session, in a batch; else the running call.
    int TemporaryLevel() const { return nesting_ > 1 ? nesting_ : 0; }
    void DropTemporariesFrom(int level);
    void RegisterFunctions();
    void Callback(const FunctionCall& call);
    void Evict();
    std::string Attach(const DatabaseInfo& info);
    void LockForWriting(const std::string& alias);
    /// Rolls back by SQLite's `text`. Table variables keep their rows, unless it is their own statement that
    /// has failed.
    void RollbackAround(const std::string& text, const Temporaries& temporary, bool keep_variables);
    void ResetTransaction();
    void CommitStorage();
    void LoseTransaction(const Temporaries& temporary);
    bool WaitForLock(int waited) const;
    void BeginStorage();

    struct Attached {
        int id = 0;
        std::unique_ptr<Catalogue> catalogue;
        std::int64_t last_use = 0;
        std::int64_t version = -1;
        std::map<std::int64_t, TablePtr> tables;
        std::map<std::pair<std::string, std::string>, std::optional<ObjectDef>>
            objects; ///< by schema and name
        std::map<std::int64_t, std::shared_ptr<const ast::CreateModuleStatement>> modules;
    };
    Attached* Current(Catalogue& catalogue);

    std::mutex interrupting_;
    int uninterrupted_ = 0; ///< under `interrupting_`
    ResultSink* sink_ = nullptr;
    bool statement_ended_ = false;
    RemoteServers remote_;
    std::map<std::int32_t, Prepared> prepared_;
    std::int32_t next_prepared_ = 1;
    std::map<std::string, Attached, std::less<>> attached_; ///< folded name
    std::map<std::string, std::int64_t> created_; ///< when the database was made that an alias stood for last
    Temporaries temporary_;
    std::set<std::string> global_tables_; ///< folded names
    struct Operation {
        BoundPtr expression;
        std::vector<Type> slots;
    };
    std::unordered_map<std::int64_t, Operation> operations_;
    std::set<std::string> sum_functions_;
    std::int64_t next_operation_ = 1;
    std::int64_t next_temporary_id_ = -1;
    std::int64_t uses_ = 0;
    Frame base_;
    Frame* frame_ = &base_;
    int nesting_ = 0;
    std::string database_ = "master";
    int transaction_count_ = 0;
    bool lost_ = false;
    int writes_ = 0; ///< nesting of Write
    struct Savepoint {
        std::string name; ///< folded
        Temporaries temporary;
    };
    std::vector<Savepoint> savepoints_;
    std::string transaction_name_;
    Temporaries temporary_before_; ///< as they were when the transaction began
};

} // namespace devsql

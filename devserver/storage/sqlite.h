// Classes over the C interface of SQLite: a connection, its statements, its errors. Values are bound and read
// in the form of codec.h. Knows nothing of T-SQL.
#pragma once

#include <sqlite3.h>

#include <atomic>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "devserver/engine/value.h"

namespace devsql {

/// An error of SQLite: `code` is the extended result code, what() is SQLite's message.
class StorageError : public std::runtime_error {
  public:
    StorageError(int code, const std::string& message) : std::runtime_error(message), code_(code) {}

    int code() const noexcept { return code_; }
    /// The general code, such as SQLITE_CONSTRAINT.
    int primary_code() const noexcept { return code_ & 0xFF; }

  private:
    int code_;
};

class SqliteConnection;

/// A prepared statement. Its destructor returns it to the connection's cache; it must not outlive the
/// connection.
class SqliteStatement {
  public:
    SqliteStatement(SqliteStatement&& other) noexcept;
    SqliteStatement& operator=(SqliteStatement&& other) noexcept;
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;
    ~SqliteStatement();

    // Parameters, counted from 1.
    SqliteStatement& Bind(int index, const Value& value, const Type& type);
    SqliteStatement& BindInt(int index, std::int64_t value);
    SqliteStatement& BindText(int index, std::string_view value);

    /// Runs to the next row. Returns false after the last one. Throws StorageError, or the exception of a
    /// function that SQLite called back.
    bool Step();
    /// Runs to the end, drops the rows, and resets. Throws as Step does.
    void Run();
    /// Prepares the statement for another run. The parameters keep their values.
    void Reset();

    // Columns of the current row, counted from 0.
    Value Column(int index, const Type& type) const;
    std::int64_t Int(int index) const;
    std::string Text(int index) const;
    bool Null(int index) const;
    int ColumnCount() const;

  private:
    friend class SqliteConnection;
    /// Statements that wait to be used again, by their texts.
    using Idle = std::unordered_multimap<std::string, sqlite3_stmt*>;
    SqliteStatement(SqliteConnection& connection, Idle::node_type own);

    SqliteConnection* connection_ = nullptr;
    sqlite3_stmt* handle_ = nullptr;
    Idle::node_type own_; ///< the entry of the cache, which the destructor puts back
};

/// One call of a function by SQLite: its arguments, counted from 0, and its result. Valid during the call
/// only.
class FunctionCall {
  public:
    FunctionCall(sqlite3_context* context, std::span<sqlite3_value*> arguments)
        : context_(context), arguments_(arguments) {}

    std::size_t size() const { return arguments_.size(); }
    std::int64_t Int(std::size_t index) const;
    Value Argument(std::size_t index, const Type& type) const;
    void Result(const Value& value, const Type& type) const;
    /// Returns that argument as the result, unchanged.
    void PassOn(std::size_t index) const;

  private:
    sqlite3_context* context_;
    std::span<sqlite3_value*> arguments_;
};

/// An aggregate function; there is one object for each group. Step is called for each row, then Finish, which
/// sets the result.
class Aggregate {
  public:
    virtual ~Aggregate() = default;
    virtual void Step(const FunctionCall& call) = 0;
    virtual void Finish(const FunctionCall& call) = 0;
};

/// A connection to one main file, to which further files can be attached. Used by one thread at a time,
/// except Interrupt. Every call throws StorageError when SQLite fails.
class SqliteConnection {
  public:
    /// Opens or makes `file`. Throws StorageError.
    explicit SqliteConnection(const std::filesystem::path& file);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    /// Returns a statement of this text from the cache, or compiles one.
    SqliteStatement Prepare(const std::string& text);
    /// Runs one or more statements that have neither results nor parameters.
    void Execute(const std::string& text);
    /// Attaches `file`, which must exist, under `alias`, and sets the server's journal mode in it.
    void Attach(const std::filesystem::path& file, const std::string& alias);
    void Detach(const std::string& alias);
    /// True from BEGIN to the end of the transaction. After some errors SQLite rolls back
    /// by itself; the result is then false.
    bool InTransaction() const;
    /// True while the connection holds the write lock of the database with that alias.
    bool Writes(const std::string& alias) const;
    /// The rows that the last INSERT, UPDATE or DELETE changed.
    std::int64_t Changes() const;
    std::int64_t LastRowId() const;
    /// Makes the running statement fail with SQLITE_INTERRUPT. May be called from any thread.
    void Interrupt();
    /// Sets a function that is called again and again while a statement waits for a lock, with the
    /// milliseconds that it has waited. If it returns false, the statement fails with SQLITE_BUSY.
    void OnBusy(std::function<bool(int waited)> handler) { busy_ = std::move(handler); }

    using Function = std::function<void(const FunctionCall&)>;
    using MakeAggregate = std::function<std::unique_ptr<Aggregate>()>;
    /// Adds a function with any number of arguments to SQLite's SQL. It is kept as long as the connection.
    void AddFunction(const std::string& name, Function function);
    void AddAggregate(const std::string& name, MakeAggregate make);

    /// Keeps an exception that a callback has caught, because it must not pass through SQLite's C code. It is
    /// thrown again when the statement that made the call fails.
    void Keep(std::exception_ptr error) { pending_ = std::move(error); }

  private:
    friend class SqliteStatement;
    struct AggregateMaker {
        SqliteConnection* connection;
        MakeAggregate make;
    };

    /// Throws the exception that Keep has kept, else StorageError.
    [[noreturn]] void Fail(int code);
    /// Takes a statement back into the cache.
    void Release(SqliteStatement::Idle::node_type own);
    void ClearCache();
    static int Busy(void* self, int count);

    sqlite3* handle_ = nullptr;
    SqliteStatement::Idle idle_; ///< the cache: statements that nobody uses at the moment
    std::exception_ptr pending_;
    std::function<bool(int)> busy_;
    std::vector<std::unique_ptr<std::pair<SqliteConnection*, Function>>> functions_;
    std::vector<std::unique_ptr<AggregateMaker>> aggregates_;
};

/// `name` between double quotes, for SQLite's SQL.
std::string QuoteName(std::string_view name);
/// `text` between single quotes, for SQLite's SQL.
std::string QuoteText(std::string_view text);

/// The name of the server's collation in SQLite's SQL.
inline constexpr std::string_view kCollation = "TSQL";

} // namespace devsql

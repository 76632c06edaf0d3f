// Calls SQLite's C interface. See sqlite.h.
#include "devserver/storage/sqlite.h"

#include <chrono>
#include <thread>
#include <utility>

#include "devserver/storage/codec.h"
#include "devserver/storage/paths.h"
#include "devserver/tsql/scalar/compare.h"

namespace devsql {
namespace {

/// Prepared statements that a connection keeps for use again.
constexpr std::size_t kCachedStatements = 100;
/// The most memory that SQLite uses for each file's pages. Rows in the order of a key lie all over the file:
/// with SQLite's default of 2 MB, reading nearly each of them needs a call of the system.
constexpr std::string_view kCachePragma = "cache_size=-131072"; // KiB
/// Bytes. If all connections of the server together use more, SQLite frees pages that it could read again
/// before it takes more memory.
constexpr std::int64_t kMostMemory = std::int64_t{256} * 1024 * 1024;

int Compare(void*, int left_size, const void* left, int right_size, const void* right) {
    return CompareText({static_cast<const char*>(left), static_cast<std::size_t>(left_size)},
                       {static_cast<const char*>(right), static_cast<std::size_t>(right_size)});
}

} // namespace

std::string QuoteName(std::string_view name) {
    std::string quoted = "\"";
    for (const char c : name) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + '"';
}

std::string QuoteText(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? "''" : std::string(1, c);
    }
    return quoted + '\'';
}

// ------------------------------------------------------------------ statements

SqliteStatement::SqliteStatement(SqliteConnection& connection, Idle::node_type own)
    : connection_(&connection), handle_(own.mapped()), own_(std::move(own)) {}

SqliteStatement::SqliteStatement(SqliteStatement&& other) noexcept
    : connection_(other.connection_),
      handle_(std::exchange(other.handle_, nullptr)),
      own_(std::move(other.own_)) {}

SqliteStatement& SqliteStatement::operator=(SqliteStatement&& other) noexcept {
    std::swap(connection_, other.connection_);
    std::swap(handle_, other.handle_);
    std::swap(own_, other.own_);
    return *this;
}

SqliteStatement::~SqliteStatement() {
    if (handle_ != nullptr) {
        connection_->Release(std::move(own_));
    }
}

SqliteStatement& SqliteStatement::Bind(int index, const Value& value, const Type& type) {
    BindValue(handle_, index, value, type);
    return *this;
}

SqliteStatement& SqliteStatement::BindInt(int index, std::int64_t value) {
    sqlite3_bind_int64(handle_, index, value);
    return *this;
}

SqliteStatement& SqliteStatement::BindText(int index, std::string_view value) {
    sqlite3_bind_text64(handle_, index, value.data() == nullptr ? "" : value.data(), value.size(),
                        SQLITE_TRANSIENT, SQLITE_UTF8);
    return *this;
}

bool SqliteStatement::Step() {
    const int code = sqlite3_step(handle_);
    if (code == SQLITE_ROW) {
        return true;
    }
    if (code != SQLITE_DONE) {
        connection_->Fail(code);
    }
    return false;
}

void SqliteStatement::Run() {
    while (Step()) {
    }
    Reset();
}

void SqliteStatement::Reset() {
    sqlite3_reset(handle_);
}

Value SqliteStatement::Column(int index, const Type& type) const {
    return DecodeValue(sqlite3_column_value(handle_, index), type);
}

std::int64_t SqliteStatement::Int(int index) const {
    return sqlite3_column_int64(handle_, index);
}

std::string SqliteStatement::Text(int index) const {
    const unsigned char* text = sqlite3_column_text(handle_, index);
    const int size = sqlite3_column_bytes(handle_, index);
    return text == nullptr ? std::string() : std::string(text, text + size);
}

bool SqliteStatement::Null(int index) const {
    return sqlite3_column_type(handle_, index) == SQLITE_NULL;
}

int SqliteStatement::ColumnCount() const {
    return sqlite3_column_count(handle_);
}

// ------------------------------------------------------------------ functions

std::int64_t FunctionCall::Int(std::size_t index) const {
    return sqlite3_value_int64(arguments_[index]);
}

Value FunctionCall::Argument(std::size_t index, const Type& type) const {
    return DecodeValue(arguments_[index], type);
}

void FunctionCall::Result(const Value& value, const Type& type) const {
    ResultValue(context_, value, type);
}

void FunctionCall::PassOn(std::size_t index) const {
    sqlite3_result_value(context_, arguments_[index]);
}

namespace {

using FunctionEntry = std::pair<SqliteConnection*, SqliteConnection::Function>;

void CallFunction(sqlite3_context* context, int count, sqlite3_value** arguments) {
    auto* entry = static_cast<FunctionEntry*>(sqlite3_user_data(context));
    try {
        entry->second(FunctionCall(context, {arguments, static_cast<std::size_t>(count)}));
    } catch (...) {
        entry->first->Keep(std::current_exception());
        sqlite3_result_error(context, "function", -1);
    }
}

/// The object of the group that SQLite is working on; made at the group's first row.
template <class Maker>
Aggregate* Group(sqlite3_context* context, Maker& maker) {
    auto** slot = static_cast<Aggregate**>(sqlite3_aggregate_context(context, sizeof(void*)));
    if (*slot == nullptr) {
        *slot = maker.make().release();
    }
    return *slot;
}

template <class Maker>
void StepAggregate(sqlite3_context* context, int count, sqlite3_value** arguments) {
    auto& maker = *static_cast<Maker*>(sqlite3_user_data(context));
    try {
        Group(context, maker)->Step(FunctionCall(context, {arguments, static_cast<std::size_t>(count)}));
    } catch (...) {
        maker.connection->Keep(std::current_exception());
        sqlite3_result_error(context, "aggregate", -1);
    }
}

template <class Maker>
void FinishAggregate(sqlite3_context* context) {
    auto& maker = *static_cast<Maker*>(sqlite3_user_data(context));
    const std::unique_ptr<Aggregate> group(
        Group(context, maker)); // SQLite calls this once, also after an error
    try {
        group->Finish(FunctionCall(context, {}));
    } catch (...) {
        maker.connection->Keep(std::current_exception());
        sqlite3_result_error(context, "aggregate", -1);
    }
}

} // namespace

// ------------------------------------------------------------------ connections

SqliteConnection::SqliteConnection(const std::filesystem::path& file) {
    static const std::int64_t limit_before =
        sqlite3_soft_heap_limit64(kMostMemory); // Set once, because the limit is the process's.
    static_cast<void>(limit_before);
    const int code =
        sqlite3_open_v2(Utf8(file).c_str(), &handle_,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code != SQLITE_OK) {
        const std::string message = handle_ == nullptr ? "out of memory" : sqlite3_errmsg(handle_);
        sqlite3_close_v2(handle_);
        throw StorageError(code, Utf8(file) + ": " + message);
    }
    sqlite3_extended_result_codes(handle_, 1);
    sqlite3_create_collation_v2(handle_, std::string(kCollation).c_str(), SQLITE_UTF8, nullptr, Compare,
                                nullptr);
    sqlite3_busy_handler(handle_, Busy, this);
    // Double-quoted names never fall back to strings: a wrong name must be an error.
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    try {
        // A file gets its journal mode when it is made, and holds no rows then that could be lost. So this
        // step does not wait for the disk; otherwise each start and each CREATE DATABASE would wait eight
        // times.
        Execute("PRAGMA synchronous=OFF; PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; "
                "PRAGMA temp_store=FILE; PRAGMA " +
                std::string(kCachePragma));
    } catch (...) {
        sqlite3_close_v2(handle_);
        throw;
    }
}

SqliteConnection::~SqliteConnection() {
    ClearCache();
    sqlite3_close_v2(handle_);
}

/// SQLite calls this when a lock is taken; `count` is the number of earlier calls for the same lock. Waits
/// and returns 1 to try again, or returns 0 to give up: after ten seconds, if OnBusy has set no handler.
int SqliteConnection::Busy(void* self, int count) {
    auto& connection = *static_cast<SqliteConnection*>(self);
    const int pause = count < 10 ? 1 : 5;
    const int waited = count < 10 ? count : 10 + (count - 10) * 5;
    if (connection.busy_ ? !connection.busy_(waited) : waited > 10000) {
        return 0;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(pause));
    return 1;
}

void SqliteConnection::Fail(int code) {
    if (pending_ != nullptr) {
        std::rethrow_exception(std::exchange(pending_, nullptr));
    }
    throw StorageError(code, sqlite3_errmsg(handle_));
}

SqliteStatement SqliteConnection::Prepare(const std::string& text) {
    pending_ = nullptr;
    if (const auto cached = idle_.find(text); cached != idle_.end()) {
        return {*this, idle_.extract(cached)};
    }
    sqlite3_stmt* handle = nullptr;
    const int code =
        sqlite3_prepare_v2(handle_, text.c_str(), static_cast<int>(text.size() + 1), &handle, nullptr);
    if (code != SQLITE_OK) {
        throw StorageError(code, std::string(sqlite3_errmsg(handle_)) + " in: " + text);
    }
    SqliteStatement::Idle made;
    made.emplace(text, handle);
    return {*this, made.extract(made.begin())};
}

void SqliteConnection::Release(SqliteStatement::Idle::node_type own) {
    sqlite3_reset(own.mapped());
    sqlite3_clear_bindings(own.mapped());
    if (idle_.size() >= kCachedStatements) {
        ClearCache();
    }
    idle_.insert(std::move(own));
}

void SqliteConnection::ClearCache() {
    for (const auto& [text, handle] : idle_) {
        sqlite3_finalize(handle);
    }
    idle_.clear();
}

void SqliteConnection::Execute(const std::string& text) {
    pending_ = nullptr;
    const int code = sqlite3_exec(handle_, text.c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) {
        Fail(code);
    }
}

void SqliteConnection::Attach(const std::filesystem::path& file, const std::string& alias) {
    if (std::error_code error; !std::filesystem::exists(file, error)) { // SQLite would make an empty one.
        throw StorageError(SQLITE_CANTOPEN, Utf8(file) + " is not there");
    }
    Execute("ATTACH " + QuoteText(Utf8(file)) + " AS " + QuoteName(alias));
    try {
        Execute("PRAGMA " + QuoteName(alias) + "." + std::string(kCachePragma));
        if (!InTransaction()) { // Within one, neither can be changed; the file has its journal mode already.
            Execute("PRAGMA " + QuoteName(alias) + ".journal_mode=WAL; PRAGMA " + QuoteName(alias) +
                    ".synchronous=NORMAL");
        }
    } catch (...) {
        Detach(alias);
        throw;
    }
}

void SqliteConnection::Detach(const std::string& alias) {
    ClearCache();
    Execute("DETACH " + QuoteName(alias));
}

bool SqliteConnection::InTransaction() const {
    return sqlite3_get_autocommit(handle_) == 0;
}

bool SqliteConnection::Writes(const std::string& alias) const {
    return sqlite3_txn_state(handle_, alias.c_str()) == SQLITE_TXN_WRITE;
}

std::int64_t SqliteConnection::Changes() const {
    return sqlite3_changes64(handle_);
}

std::int64_t SqliteConnection::LastRowId() const {
    return sqlite3_last_insert_rowid(handle_);
}

void SqliteConnection::Interrupt() {
    sqlite3_interrupt(handle_);
}

void SqliteConnection::AddFunction(const std::string& name, Function function) {
    functions_.push_back(std::make_unique<FunctionEntry>(this, std::move(function)));
    sqlite3_create_function_v2(handle_, name.c_str(), -1, SQLITE_UTF8, functions_.back().get(), CallFunction,
                               nullptr, nullptr, nullptr);
}

void SqliteConnection::AddAggregate(const std::string& name, MakeAggregate make) {
    aggregates_.push_back(std::make_unique<AggregateMaker>(AggregateMaker{this, std::move(make)}));
    sqlite3_create_function_v2(handle_, name.c_str(), -1, SQLITE_UTF8, aggregates_.back().get(), nullptr,
                               StepAggregate<AggregateMaker>, FinishAggregate<AggregateMaker>, nullptr);
}

} // namespace devsql

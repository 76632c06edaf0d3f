// A thin layer over ODBC: owners of its three handles, its calls, and what they report. Text is 8-bit, code
// page 1252. Callers decide what an error means to them.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace odbc {

/// One diagnostic record. Fields that the driver does not provide are empty.
struct Diagnostic {
    std::string sql_state; ///< five characters
    bool error = true;     ///< false for a message: SQLSTATE class "01" or "00"
    std::int32_t native_error = 0;
    std::string message; ///< after the components that it passed: "[FreeTDS][SQL Server]..."
    std::string server;
    std::string procedure;
    std::optional<std::int32_t> line; ///< within the batch or the procedure, from 1
    std::optional<std::int32_t> severity;
    std::optional<std::int32_t> state; ///< FreeTDS does not provide it
};

/// The message without the names of the components before it. Brackets that the server wrote stay.
std::string_view WithoutOrigin(std::string_view message);

/// A call failed. Carries every record of that call, in ODBC's order: errors before messages.
class OdbcError : public std::exception {
  public:
    OdbcError(const char* function, std::vector<Diagnostic> diagnostics);

    /// The ODBC function that failed; a literal.
    const char* Function() const { return function_; }
    /// Never empty, even if the driver left no record.
    const std::vector<Diagnostic>& Diagnostics() const { return diagnostics_; }
    /// True if the connection can't be used any more: the driver itself reports SQLSTATE class 08. Messages
    /// of the server, which have a severity, do not count.
    bool ConnectionLost() const;
    const char* what() const noexcept override { return diagnostics_.front().message.c_str(); }

  private:
    const char* function_;
    std::vector<Diagnostic> diagnostics_;
};

/// The standard's type numbers; a driver's own numbers (xml, sql_variant) occur as values without a name.
enum class SqlType : std::int16_t {
    Unknown = 0,
    Char = 1,
    Numeric = 2,
    Decimal = 3,
    Integer = 4,
    SmallInt = 5,
    Float = 6,
    Real = 7,
    Double = 8,
    VarChar = 12,
    Date = 91,
    Time = 92,
    Timestamp = 93,
    LongVarChar = -1,
    Binary = -2,
    VarBinary = -3,
    LongVarBinary = -4,
    BigInt = -5,
    TinyInt = -6,
    Bit = -7,
    WChar = -8,
    WVarChar = -9,
    WLongVarChar = -10,
    Guid = -11,
    Variant = -150,
};

enum class HandleKind : std::int16_t { Environment = 1, Connection = 2, Statement = 3 };

/// Every record that the handle holds; may be empty. `failed`: the call that left them has failed.
std::vector<Diagnostic> ReadDiagnostics(HandleKind kind, void* handle, bool failed);

/// The one owner of an ODBC handle, and the messages that came with its successful calls.
class Handle {
  public:
    /// Throws OdbcError with the parent's records.
    Handle(HandleKind kind, HandleKind parent_kind, void* parent);
    Handle(Handle&& other) noexcept;
    Handle& operator=(Handle&& other) noexcept;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle();

    /// SQLHENV, SQLHDBC or SQLHSTMT. The handle remains owned by this object.
    void* Get() const { return handle_; }
    /// Checks a call's return code: collects the messages of a success, throws OdbcError on failure. False if
    /// the code was SQL_NO_DATA.
    bool Check(const char* function, int return_code);
    /// The messages since the last call of TakeMessages, oldest first.
    std::vector<Diagnostic> TakeMessages();

  private:
    void Free() noexcept;

    HandleKind kind_;
    void* handle_ = nullptr;
    std::vector<Diagnostic> messages_;
};

/// An environment of the driver manager, for ODBC 3. Must outlive its connections.
class Environment {
  public:
    Environment();
    void* Get() const { return handle_.Get(); }

  private:
    Handle handle_;
};

/// One connection. Its destructor disconnects; its statements must be destroyed before.
class Connection {
  public:
    explicit Connection(const Environment& environment);
    Connection(Connection&& other) noexcept;
    Connection& operator=(Connection&& other) noexcept;
    ~Connection();

    /// Connects without prompting for missing values. The driver gives up after `login_timeout` seconds; 0
    /// means no limit.
    void DriverConnect(const std::string& connection_string, unsigned login_timeout);
    /// The size of the protocol's packets in bytes. To be called before connecting.
    void SetPacketSize(unsigned bytes);
    /// The value of an information type that is text (SQL_SERVER_NAME and so on).
    std::string Info(std::uint16_t type);
    /// True if the driver has noticed that the connection is lost.
    bool Dead();
    /// True if the results after a failed first statement of a batch are lost, and the server's work on them
    /// is cancelled: unixODBC treats a statement whose execution has failed as one without results.
    /// Statement::KeepResultsAfterError avoids that.
    bool DropsResultsAfterError() const { return free_tds_; }
    /// True if the driver is FreeTDS, which differs from the system's driver in several places.
    bool UsesFreeTds() const { return free_tds_; }
    std::vector<Diagnostic> TakeMessages() { return handle_.TakeMessages(); }
    void* Get() const { return handle_.Get(); }

  private:
    void Close() noexcept;

    Handle handle_;
    bool connected_ = false;
    bool free_tds_ = false;
};

/// Binary data. A type of its own, since text is a std::string as well.
struct Bytes {
    std::string data;
    friend bool operator==(const Bytes&, const Bytes&) = default;
};

/// A date and a time of day.
struct Timestamp {
    std::int16_t year = 0;
    std::uint16_t month = 0; ///< 1 to 12
    std::uint16_t day = 0;
    std::uint16_t hour = 0;
    std::uint16_t minute = 0;
    std::uint16_t second = 0;
    std::uint32_t nanosecond = 0;
    friend bool operator==(const Timestamp&, const Timestamp&) = default;
};

/// The 16 bytes of a GUID, in the order in which memory holds them: three numbers, then eight bytes.
struct Guid {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::uint8_t data4[8] = {};
    friend bool operator==(const Guid&, const Guid&) = default;
};

/// A value; std::monostate is NULL. Whole numbers of every width are int64. Decimals and money are text, as
/// are types that the standard does not define.
using Value = std::variant<std::monostate, bool, std::int64_t, double, std::string, Bytes, Timestamp, Guid>;

enum class Direction : std::uint8_t { Input, InputOutput, Output };

/// The value of a parameter marker.
struct Parameter {
    SqlType type = SqlType::VarChar; ///< the type that the server is told; the driver converts the value
    Value value{};                   ///< the input value
    Direction direction = Direction::Input;
    /// Characters or bytes at most; digits for decimals. 0: as long as the value.
    std::size_t size = 0;
    std::int16_t decimal_digits = 0;
};

/// One column of the current result.
struct Column {
    std::string name;
    SqlType type = SqlType::Unknown;
    std::size_t size = 0; ///< characters, bytes or digits; 0 where there is no limit
    std::int16_t decimal_digits = 0;
    bool nullable = true;
    std::size_t display_size = 0; ///< characters that the widest value takes; 0 where there is no limit

    /// True for a column that is not bound but read in pieces.
    bool IsLong() const;
};

/// One statement of a connection, which must outlive it. Every call throws OdbcError. After a failed Execute
/// or MoreResults the following results can still be read by further calls of MoreResults.
class Statement {
  public:
    explicit Statement(const Connection& connection);
    Statement(Statement&& other) noexcept;
    Statement& operator=(Statement&& other) noexcept;
    ~Statement();

    /// Seconds that a call may take before it fails with HYT00; 0 means no limit.
    void SetQueryTimeout(unsigned seconds);

    /// Asks the driver to end the running call, which then fails with HY008. The only member that another
    /// thread may call.
    void Cancel() noexcept;

    /// Makes the next ExecDirect keep the results after an error, where Connection::DropsResultsAfterError is
    /// true. Runs an empty PRINT, which resets the session's @@ERROR and @@ROWCOUNT; other statements may run
    /// between this and the ExecDirect.
    void KeepResultsAfterError();

    /// Runs the text. A statement without a result (DDL, statements under NOCOUNT) succeeds. A text with a
    /// NUL byte is refused.
    void ExecDirect(const std::string& sql);
    void Prepare(const std::string& sql);
    /// Binds a copy of `parameter` to the marker at `position`, counted from 1.
    void Bind(std::uint16_t position, const Parameter& parameter);
    void Execute();
    /// The value of a bound parameter. An output parameter has its value after MoreResults has returned
    /// false.
    Value ParameterValue(std::uint16_t position) const;

    /// Goes to the next result and drops the rest of the current one. False if there is no further result.
    bool MoreResults();
    /// 0 for a result without columns.
    std::uint16_t ColumnCount();
    /// The columns of the current result; empty for a result without columns.
    std::vector<Column> Columns();
    /// The number of rows that a result without columns touched; -1 if the server did not count them, and for
    /// most results with columns until their last row has been read.
    std::int64_t RowCount();

    /// The catalogue of all stored procedures, as a result of this statement.
    void Procedures();
    /// The catalogue of the parameters of all procedures whose names match, as a result of this statement.
    /// The name has no ";1"; "_" and "%" in it are wildcards.
    void ProcedureColumns(const std::string& procedure);

    std::vector<Diagnostic> TakeMessages() { return handle_.TakeMessages(); }
    Handle& Owner() { return handle_; }
    void* Get() const { return handle_.Get(); }
    /// True if the current result has columns, and it is already known that it has no row.
    bool KnownEmpty();

  private:
    struct BoundParameter;

    Handle handle_;
    bool counts_no_rows_ = false; ///< a row count of 0 means that the result is empty
    std::vector<std::unique_ptr<BoundParameter>> parameters_;
};

} // namespace odbc

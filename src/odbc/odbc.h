// A thin layer over ODBC: owners of its three kinds of handle, its calls, and the errors and messages that
// the calls report. Text is in code page 1252. Every failed call throws OdbcError; callers decide what it
// means.
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
    std::string sql_state;                ///< five characters
    bool error = true;                    ///< false for a message: SQLSTATE class "01" or "00"
    std::int32_t native_error = 0;        ///< the number that the server or the driver gives
    std::string message;                  ///< as in "[FreeTDS][SQL Server]text": see WithoutOrigin
    std::string server;                   ///< the name of the server that reported it
    std::string procedure;                ///< the name of the procedure that was running
    std::optional<std::int32_t> line;     ///< in the batch or the procedure, counted from 1
    std::optional<std::int32_t> severity; ///< the server's, 0 to 25; records of the driver have no severity
    std::optional<std::int32_t> state;    ///< the server's; FreeTDS does not provide it
};

/// Returns the message without the bracketed names of the components at its beginning, such as "[FreeTDS][SQL
/// Server]". Brackets in the server's own text stay. The result refers to `message`.
std::string_view WithoutOrigin(std::string_view message);

/// A failed call. Has every record of that call, in ODBC's order: errors before messages.
class OdbcError : public std::exception {
  public:
    /// `function` is a literal; it is not copied. Without records the error gets one with the SQLSTATE HY000.
    OdbcError(const char* function, std::vector<Diagnostic> diagnostics);

    /// The name of the ODBC function that failed.
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

/// The type numbers of the ODBC standard, and Variant for sql_variant. A driver's other numbers, such as that
/// of xml, occur as values without a name.
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

/// Returns every record that the last call has left at the handle; may be empty. `failed` says whether that
/// call failed: then all its records are errors if none of them has the SQLSTATE of an error.
std::vector<Diagnostic> ReadDiagnostics(HandleKind kind, void* handle, bool failed);

/// Owns an ODBC handle, and collects the messages of its successful calls.
class Handle {
  public:
    /// Allocates the handle. Throws OdbcError with the parent's records.
    Handle(HandleKind kind, HandleKind parent_kind, void* parent);
    Handle(Handle&& other) noexcept;
    Handle& operator=(Handle&& other) noexcept;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle();

    /// Returns the SQLHENV, SQLHDBC or SQLHSTMT, which this object still owns.
    void* Get() const { return handle_; }
    /// Checks the return code of a call. After a success it collects the messages; it throws OdbcError after
    /// a failure or if a record says that the connection is lost. Returns false if the code was SQL_NO_DATA.
    /// `function` is the called function's name, a literal.
    bool Check(const char* function, int return_code);
    /// Returns and forgets the messages since the last call of TakeMessages, oldest first.
    std::vector<Diagnostic> TakeMessages();

  private:
    void Free() noexcept;

    HandleKind kind_;
    void* handle_ = nullptr;
    std::vector<Diagnostic> messages_;
};

/// An environment of the driver manager, with the behaviour of ODBC 3. Must outlive its connections.
class Environment {
  public:
    Environment();
    /// Returns the SQLHENV, which this object still owns.
    void* Get() const { return handle_.Get(); }

  private:
    Handle handle_;
};

/// One connection. The destructor disconnects; the connection's statements must be destroyed before that.
class Connection {
  public:
    explicit Connection(const Environment& environment);
    Connection(Connection&& other) noexcept;
    Connection& operator=(Connection&& other) noexcept;
    ~Connection();

    /// Connects, without asking the user for missing values. Fails after `login_timeout` seconds; 0 means no
    /// limit.
    void DriverConnect(const std::string& connection_string, unsigned login_timeout);
    /// Sets the size of the protocol's packets. Must be called before DriverConnect.
    void SetPacketSize(unsigned bytes);
    /// Returns an item of SQLGetInfo that is text, such as SQL_SERVER_NAME.
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
    /// Returns the SQLHDBC, which this object still owns.
    void* Get() const { return handle_.Get(); }

  private:
    /// Disconnects if it is connected.
    void Close() noexcept;

    Handle handle_;
    bool connected_ = false;
    bool free_tds_ = false;
};

/// Binary data. It has a type of its own, since text is a std::string as well.
struct Bytes {
    std::string data;
    friend bool operator==(const Bytes&, const Bytes&) = default;
};

/// A date and a time of day.
struct Timestamp {
    std::int16_t year = 0;
    std::uint16_t month = 0; ///< 1 to 12
    std::uint16_t day = 0;   ///< 1 to 31
    std::uint16_t hour = 0;  ///< 0 to 23
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

/// A value of a column or a parameter; std::monostate is NULL. Whole numbers of every width are int64.
/// Decimals and money are text, and so are values of types that the standard does not define.
using Value = std::variant<std::monostate, bool, std::int64_t, double, std::string, Bytes, Timestamp, Guid>;

enum class Direction : std::uint8_t { Input, InputOutput, Output };

/// A parameter marker ("?") of a statement and its value.
struct Parameter {
    SqlType type =
        SqlType::VarChar; ///< the type of the parameter on the server; the driver converts the value
    Value value{};        ///< the input value
    Direction direction = Direction::Input;
    /// The largest number of characters or bytes; for decimals the number of digits. 0 means the value's
    /// length.
    std::size_t size = 0;
    std::int16_t decimal_digits = 0; ///< after the decimal point
};

/// One column of the current result.
struct Column {
    std::string name;
    SqlType type = SqlType::Unknown;
    std::size_t size = 0;            ///< in characters, bytes or digits; 0 if there is no limit
    std::int16_t decimal_digits = 0; ///< after the decimal point, or of a second
    bool nullable = true;
    std::size_t display_size = 0; ///< characters of the longest value as text; 0 if there is no limit

    /// True for a column whose values may be so long that RowReader reads them in pieces.
    bool IsLong() const;
};

/// One statement of a connection, which must outlive it. Every member may throw OdbcError. After a failed
/// ExecDirect, Execute or MoreResults the following results can still be read by further calls of MoreResults
/// (but see Connection::DropsResultsAfterError).
class Statement {
  public:
    explicit Statement(const Connection& connection);
    Statement(Statement&& other) noexcept;
    Statement& operator=(Statement&& other) noexcept;
    ~Statement();

    /// Sets how long a call may take before it fails with HYT00; 0 means no limit.
    void SetQueryTimeout(unsigned seconds);

    /// Asks the driver to end the running call, which then fails with HY008. The only member that another
    /// thread may call.
    void Cancel() noexcept;

    /// Makes the next ExecDirect keep the results after an error, where Connection::DropsResultsAfterError is
    /// true. Runs an empty PRINT, which resets the session's @@ERROR and @@ROWCOUNT; other statements may run
    /// between this and the ExecDirect.
    void KeepResultsAfterError();

    /// Runs the text and goes to its first result. A statement without a result (DDL, statements under
    /// NOCOUNT) succeeds. Fails if the text has a NUL byte.
    void ExecDirect(const std::string& sql);
    /// Prepares the text for Execute. Fails if the text has a NUL byte.
    void Prepare(const std::string& sql);
    /// Binds a copy of `parameter` to the marker at `position`, counted from 1.
    void Bind(std::uint16_t position, const Parameter& parameter);
    /// Runs the prepared text with the bound parameters.
    void Execute();
    /// Returns the value of a bound parameter. An output parameter has its value only after MoreResults has
    /// returned false.
    Value ParameterValue(std::uint16_t position) const;

    /// Goes to the next result and drops the rest of the current one. Returns false if there is no further
    /// result.
    bool MoreResults();
    /// Returns the number of columns of the current result; it may be 0.
    std::uint16_t ColumnCount();
    /// Describes the columns of the current result, which may have none.
    std::vector<Column> Columns();
    /// Returns the number of rows that a result without columns has changed. Returns -1 if the server did not
    /// count them, and for most results with columns until their last row has been read.
    std::int64_t RowCount();

    /// Asks for the catalogue of all stored procedures, which becomes the result of this statement.
    void Procedures();
    /// Asks for the parameters of all procedures whose names match, which become the result of this
    /// statement. `procedure` has no ";1"; "_" and "%" in it are wildcards.
    void ProcedureColumns(const std::string& procedure);

    std::vector<Diagnostic> TakeMessages() { return handle_.TakeMessages(); }
    /// Returns the handle, for calls that this class does not have.
    Handle& OwnedHandle() { return handle_; }
    /// Returns the SQLHSTMT, which this object still owns.
    void* Get() const { return handle_.Get(); }
    /// True if it is known before any fetch that the current result has no row. To be called for a result
    /// with columns.
    bool KnownEmpty();

  private:
    struct BoundParameter;

    Handle handle_;
    bool zero_means_empty_ = false; ///< a row count of 0 says that the result has no rows (FreeTDS)
    std::vector<std::unique_ptr<BoundParameter>> parameters_;
};

} // namespace odbc

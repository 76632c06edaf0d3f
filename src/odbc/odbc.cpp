// Handles, diagnostic records and connections.
#include "odbc/odbc.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "odbc/odbc_api.h"
#include "odbc/odbc_driver.h"
#include "odbc/odbc_types.h"

namespace odbc {
namespace {

static_assert(static_cast<SQLSMALLINT>(HandleKind::Environment) == SQL_HANDLE_ENV);
static_assert(static_cast<SQLSMALLINT>(HandleKind::Connection) == SQL_HANDLE_DBC);
static_assert(static_cast<SQLSMALLINT>(HandleKind::Statement) == SQL_HANDLE_STMT);

/// The name of the server, which is the last of the components before a message.
constexpr std::string_view kServerComponent = "[SQL Server]";

/// The library of FreeTDS's driver, which is used on Linux and under Wine.
constexpr std::string_view kFreeTdsLibrary = "libtdsodbc";

/// The class of the SQLSTATEs about connections, and the SQLSTATE of a connection that broke.
constexpr std::string_view kConnectionClass = "08";
constexpr const char* kCommunicationFailure = "08S01";

/// Returns a field of a record, counted from 1; empty if the driver does not provide it.
std::string DiagnosticText(HandleKind kind, void* handle, SQLSMALLINT record, SQLSMALLINT field) {
    TextBuffer text(512);
    SQLSMALLINT length = 0;
    const SQLRETURN code = SQLGetDiagFieldW(static_cast<SQLSMALLINT>(kind), handle, record, field,
                                            text.Data(), text.ByteCount<SQLSMALLINT>(), &length);
    return SQL_SUCCEEDED(code) ? text.Text() : std::string();
}

/// Returns a field of a record; nothing if the driver does not provide it or it is 0, as in unixODBC's own
/// records. Drivers write these fields as 16 or as 32 bits; the buffer is zeroed, so that both read alike.
std::optional<std::int32_t> DiagnosticNumber(HandleKind kind, void* handle, SQLSMALLINT record,
                                             SQLSMALLINT field) {
    std::int32_t number = 0;
    SQLSMALLINT length = 0;
    const SQLRETURN code = SQLGetDiagFieldW(static_cast<SQLSMALLINT>(kind), handle, record, field, &number,
                                            static_cast<SQLSMALLINT>(sizeof number), &length);
    return SQL_SUCCEEDED(code) && number != 0 ? std::optional(number) : std::nullopt;
}

/// Corrects a record of FreeTDS itself, which has a number of FreeTDS and the line -1, as no record of a
/// server has. Seen with FreeTDS 1.3: if a server dies after the first result of a batch, the driver returns
/// success with the message 20017, and every call from then on fails with "Unknown error".
void CorrectFreeTdsRecord(Diagnostic& diagnostic) {
    constexpr std::int32_t kNoLine = 0xFFFF;
    // Reading failed, writing failed, unexpected end of data, dead connection.
    constexpr std::array kLostNumbers = {20004, 20006, 20017, 20047};
    if (diagnostic.line != kNoLine) {
        return;
    }
    diagnostic.line.reset();
    diagnostic.severity.reset();
    if (std::ranges::find(kLostNumbers, diagnostic.native_error) != kLostNumbers.end()) {
        diagnostic.sql_state = kCommunicationFailure;
    }
}

/// Reads a record, counted from 1. Returns false if there is no such record.
bool ReadRecord(HandleKind kind, void* handle, SQLSMALLINT record, Diagnostic& diagnostic) {
    constexpr std::size_t kStateRoom = SQL_SQLSTATE_SIZE + 1;
    TextBuffer state(kStateRoom);
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    TextBuffer text(1024);
    SQLRETURN code = SQL_SUCCESS;
    for (;;) {
        code = SQLGetDiagRecW(static_cast<SQLSMALLINT>(kind), handle, record, state.Data(), &native,
                              text.Data(), text.CharacterCount<SQLSMALLINT>(), &length);
        if (code != SQL_SUCCESS_WITH_INFO || static_cast<std::size_t>(length) < text.Characters()) {
            break;
        }
        text = TextBuffer(static_cast<std::size_t>(length) + 1);
    }
    if (!SQL_SUCCEEDED(code)) {
        return false;
    }
    diagnostic.sql_state = state.Text();
    diagnostic.native_error = native;
    diagnostic.message = text.Text();
    diagnostic.server = DiagnosticText(kind, handle, record, kDiagServerName);
    if (diagnostic.server.empty()) {
        diagnostic.server = DiagnosticText(kind, handle, record, SQL_DIAG_SERVER_NAME);
    }
    diagnostic.procedure = DiagnosticText(kind, handle, record, kDiagServerProcedure);
    diagnostic.line = DiagnosticNumber(kind, handle, record, kDiagServerLine);
    diagnostic.severity = DiagnosticNumber(kind, handle, record, kDiagServerSeverity);
    diagnostic.state = DiagnosticNumber(kind, handle, record, kDiagServerState);
    if (!diagnostic.severity) {
        // Seen with FreeTDS 1.3: it knows no severity field, and puts the severity where the state belongs.
        diagnostic.severity = std::exchange(diagnostic.state, std::nullopt);
    }
    CorrectFreeTdsRecord(diagnostic);
    return true;
}

/// Adds a record if there are none, so that every error has a text.
std::vector<Diagnostic> WithPlaceholder(const char* function, std::vector<Diagnostic> diagnostics) {
    if (diagnostics.empty()) {
        Diagnostic placeholder;
        placeholder.sql_state = "HY000";
        placeholder.message = std::string(function) + " failed, and the driver left no record of the reason";
        diagnostics.push_back(std::move(placeholder));
    }
    return diagnostics;
}

/// True if a record says that the connection is lost. Only the driver can report that. If the server reports
/// something, the connection works, whatever SQLSTATE the driver gives the message: FreeTDS gives 08004 to
/// 911, an unknown database in USE.
bool SayConnectionIsLost(const std::vector<Diagnostic>& diagnostics) {
    return std::ranges::any_of(diagnostics, [](const Diagnostic& diagnostic) {
        return !diagnostic.severity && diagnostic.sql_state.starts_with(kConnectionClass);
    });
}

} // namespace

std::string_view WithoutOrigin(std::string_view message) {
    // The components come first, each in brackets, the server last. The text after them is the server's own
    // and may begin with a bracket too.
    std::size_t end = 0;
    while (end < message.size() && message[end] == '[') {
        const std::size_t close = message.find(']', end);
        if (close == std::string_view::npos) {
            break;
        }
        const bool last = message.substr(end, close + 1 - end) == kServerComponent;
        end = close + 1;
        if (last) {
            break;
        }
    }
    return message.substr(end);
}

OdbcError::OdbcError(const char* function, std::vector<Diagnostic> diagnostics)
    : function_(function), diagnostics_(WithPlaceholder(function, std::move(diagnostics))) {}

bool OdbcError::ConnectionLost() const {
    return SayConnectionIsLost(diagnostics_);
}

std::vector<Diagnostic> ReadDiagnostics(HandleKind kind, void* handle, bool failed) {
    std::vector<Diagnostic> diagnostics;
    Diagnostic diagnostic;
    bool error_found = false;
    for (SQLSMALLINT record = 1; ReadRecord(kind, handle, record, diagnostic); ++record) {
        diagnostic.error = !diagnostic.sql_state.starts_with("01") && !diagnostic.sql_state.starts_with("00");
        error_found = error_found || diagnostic.error;
        diagnostics.push_back(std::move(diagnostic));
        diagnostic = {};
    }
    if (failed && !error_found) {
        // unixODBC reports a driver that it can't load with 01000.
        for (Diagnostic& reason : diagnostics) {
            reason.error = true;
        }
    }
    return diagnostics;
}

Handle::Handle(HandleKind kind, HandleKind parent_kind, void* parent) : kind_(kind) {
    const SQLRETURN code = SQLAllocHandle(static_cast<SQLSMALLINT>(kind), parent, &handle_);
    if (!SQL_SUCCEEDED(code)) {
        handle_ = nullptr;
        throw OdbcError("SQLAllocHandle", parent != nullptr ? ReadDiagnostics(parent_kind, parent, true)
                                                            : std::vector<Diagnostic>());
    }
}

Handle::Handle(Handle&& other) noexcept
    : kind_(other.kind_),
      handle_(std::exchange(other.handle_, nullptr)),
      messages_(std::move(other.messages_)) {}

Handle& Handle::operator=(Handle&& other) noexcept {
    if (this != &other) {
        Free();
        kind_ = other.kind_;
        handle_ = std::exchange(other.handle_, nullptr);
        messages_ = std::move(other.messages_);
    }
    return *this;
}

Handle::~Handle() {
    Free();
}

void Handle::Free() noexcept {
    if (handle_ != nullptr) {
        SQLFreeHandle(static_cast<SQLSMALLINT>(kind_), handle_);
        handle_ = nullptr;
    }
}

bool Handle::Check(const char* function, int return_code) {
    if (return_code == SQL_SUCCESS) {
        return true;
    }
    const bool succeeded = return_code == SQL_SUCCESS_WITH_INFO || return_code == SQL_NO_DATA;
    std::vector<Diagnostic> diagnostics = ReadDiagnostics(kind_, handle_, !succeeded);
    if (!succeeded || SayConnectionIsLost(diagnostics)) {
        throw OdbcError(function, std::move(diagnostics));
    }
    for (Diagnostic& diagnostic : diagnostics) {
        messages_.push_back(std::move(diagnostic));
    }
    return return_code != SQL_NO_DATA;
}

std::vector<Diagnostic> Handle::TakeMessages() {
    return std::exchange(messages_, {});
}

Environment::Environment() : handle_(HandleKind::Environment, HandleKind::Environment, nullptr) {
    PrepareDriver();
    handle_.Check("SQLSetEnvAttr", SQLSetEnvAttr(handle_.Get(), SQL_ATTR_ODBC_VERSION,
                                                 AttributeValue(SQL_OV_ODBC3), SQL_IS_INTEGER));
}

Connection::Connection(const Environment& environment)
    : handle_(HandleKind::Connection, HandleKind::Environment, environment.Get()) {}

Connection::Connection(Connection&& other) noexcept
    : handle_(std::move(other.handle_)),
      connected_(std::exchange(other.connected_, false)),
      free_tds_(other.free_tds_) {}

Connection& Connection::operator=(Connection&& other) noexcept {
    if (this != &other) {
        Close();
        handle_ = std::move(other.handle_);
        connected_ = std::exchange(other.connected_, false);
        free_tds_ = other.free_tds_;
    }
    return *this;
}

Connection::~Connection() {
    Close();
}

void Connection::Close() noexcept {
    if (std::exchange(connected_, false)) {
        SQLDisconnect(handle_.Get());
    }
}

void Connection::DriverConnect(const std::string& connection_string, unsigned login_timeout) {
    handle_.Check("SQLSetConnectAttr", SQLSetConnectAttrW(handle_.Get(), SQL_ATTR_LOGIN_TIMEOUT,
                                                          AttributeValue(login_timeout), SQL_IS_UINTEGER));
    TextArgument text(connection_string);
    SQLSMALLINT length = 0;
    handle_.Check("SQLDriverConnect", SQLDriverConnectW(handle_.Get(), nullptr, text.Data(), SQL_NTS, nullptr,
                                                        0, &length, SQL_DRIVER_NOPROMPT));
    connected_ = true;
    free_tds_ = Info(SQL_DRIVER_NAME).starts_with(kFreeTdsLibrary);
}

void Connection::SetPacketSize(unsigned bytes) {
    handle_.Check("SQLSetConnectAttr", SQLSetConnectAttrW(handle_.Get(), SQL_ATTR_PACKET_SIZE,
                                                          AttributeValue(bytes), SQL_IS_UINTEGER));
}

std::string Connection::Info(std::uint16_t type) {
    TextBuffer text(512);
    SQLSMALLINT length = 0;
    handle_.Check("SQLGetInfo",
                  SQLGetInfoW(handle_.Get(), type, text.Data(), text.ByteCount<SQLSMALLINT>(), &length));
    return text.Text();
}

bool Connection::Dead() {
    SQLUINTEGER dead = SQL_CD_FALSE;
    const SQLRETURN code =
        SQLGetConnectAttrW(handle_.Get(), SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER, nullptr);
    return SQL_SUCCEEDED(code) && dead == SQL_CD_TRUE;
}

} // namespace odbc

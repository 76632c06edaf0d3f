// Parses the bodies of requests. See requests.h.
#include "devserver/tds/requests.h"

#include <array>

#include "devserver/tds/bytes.h"
#include "devserver/tds/type_decoder.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql::tds {

namespace {

/// Stands in the place of a name's length if the procedure is called by its number.
constexpr std::uint16_t kNumberedProcedure = 0xFFFF;
constexpr std::uint8_t kSeparator71 = 0x80;
constexpr std::uint8_t kSeparator72 = 0xFF;
constexpr std::uint8_t kNoExecSeparator = 0xFE;
constexpr std::uint8_t kByReference = 0x01;
constexpr std::uint8_t kDefaultValue = 0x02;
constexpr std::size_t kLongestProcedureName = 1046;

/// The procedures that clients call by number. The first one has the number 1.
constexpr std::array<const char*, 15> kProcedures{
    "sp_cursor",          "sp_cursoropen",  "sp_cursorprepare", "sp_cursorexecute", "sp_cursorprepexec",
    "sp_cursorunprepare", "sp_cursorfetch", "sp_cursoroption",  "sp_cursorclose",   "sp_executesql",
    "sp_prepare",         "sp_execute",     "sp_prepexec",      "sp_prepexecrpc",   "sp_unprepare"};

/// Since 7.2 headers (transaction, notification) stand before each request. The server does not use them.
void SkipHeaders(ByteReader& reader, Version version) {
    if (!Has72(version)) {
        return;
    }
    const std::size_t total = reader.Le<std::uint32_t>();
    if (total < sizeof(std::uint32_t)) {
        throw StreamEnded();
    }
    reader.Take(total - sizeof(std::uint32_t));
}

std::string ReadText(ByteReader& reader, std::size_t units) {
    return FromUtf16Le(reader.Take(units * 2));
}

std::string ReadProcedureName(ByteReader& reader) {
    const std::size_t units = reader.Le<std::uint16_t>();
    if (units != kNumberedProcedure) {
        if (units > kLongestProcedureName) {
            throw StreamEnded();
        }
        return ReadText(reader, units);
    }
    const std::size_t number = reader.Le<std::uint16_t>();
    if (number < 1 || number > kProcedures.size()) {
        throw ProtocolError(error_number::kUnknownProcedureId, kRequestSeverity,
                            "Could not find the stored procedure with the number " + std::to_string(number) +
                                ".");
    }
    return kProcedures[number - 1];
}

bool AtSeparator(ByteReader& reader, Version version) {
    const std::uint8_t next = reader.Peek();
    return Has72(version) ? next == kSeparator72 || next == kNoExecSeparator : next == kSeparator71;
}

RpcParameter ReadParameter(ByteReader& reader, Version version, int ordinal) {
    RpcParameter parameter;
    parameter.name = ReadText(reader, reader.Byte());
    const std::uint8_t flags = reader.Byte();
    parameter.output = (flags & kByReference) != 0;
    parameter.use_default = (flags & kDefaultValue) != 0;
    // The type without data is accepted only with the flag for a default. Without the flag it is refused, as
    // SQL Server does; FreeTDS sends it so for a place that a call leaves empty: {call p(?,,?)}.
    if (parameter.use_default && reader.Peek() == static_cast<std::uint8_t>(WireType::Null)) {
        reader.Byte();
        return parameter;
    }
    TypedValue typed = ReadTypedValue(reader, version, {ordinal, parameter.name});
    parameter.type = typed.type;
    parameter.value = std::move(typed.value);
    return parameter;
}

RpcCall ReadCall(ByteReader& reader, Version version) {
    RpcCall call;
    call.procedure = ReadProcedureName(reader);
    reader.Le<std::uint16_t>(); // the options "recompile" and "no metadata", which have no effect here
    while (!reader.AtEnd() && !AtSeparator(reader, version)) {
        call.parameters.push_back(
            ReadParameter(reader, version, static_cast<int>(call.parameters.size()) + 1));
    }
    return call;
}

// The kinds of requests to the transaction manager.
constexpr std::uint16_t kBegin = 5;
constexpr std::uint16_t kCommit = 7;
constexpr std::uint16_t kRollback = 8;
constexpr std::uint16_t kSave = 9;

/// The isolation levels by number; 0 means no change.
constexpr std::array<const char*, 6> kIsolationLevels{
    "", "READ UNCOMMITTED", "READ COMMITTED", "REPEATABLE READ", "SERIALIZABLE", "SNAPSHOT"};

/// Reads a name and returns it in brackets, with a blank before it; returns "" for an empty name.
std::string ReadName(ByteReader& reader) {
    const std::size_t bytes = reader.Byte();
    if (bytes == 0) {
        return {};
    }
    std::string bracketed = " [";
    for (const char character : FromUtf16Le(reader.Take(bytes))) {
        bracketed += character;
        if (character == ']') {
            bracketed += ']';
        }
    }
    return bracketed + "]";
}

void ReadBegin(ByteReader& reader, std::string& isolation, std::string& statement) {
    const std::size_t level = reader.Byte();
    if (level >= kIsolationLevels.size()) {
        throw StreamEnded();
    }
    if (level != 0) {
        isolation = std::string("SET TRANSACTION ISOLATION LEVEL ") + kIsolationLevels[level];
    }
    statement = "BEGIN TRANSACTION" + ReadName(reader);
}

/// A commit or a rollback may ask to begin the next transaction at once.
void ReadNext(ByteReader& reader, TransactionRequest& request) {
    if (!reader.AtEnd() && (reader.Byte() & 1) != 0) {
        ReadBegin(reader, request.next_isolation, request.next_statement);
    }
}

} // namespace

std::string ParseBatch(std::string_view data, Version version) {
    ByteReader reader(data);
    SkipHeaders(reader, version);
    if (reader.left() % 2 != 0) {
        throw StreamEnded();
    }
    return FromUtf16Le(reader.Take(reader.left()));
}

RpcRequest ParseRpc(std::string_view data, Version version) {
    RpcRequest request;
    ByteReader reader(data);
    try {
        SkipHeaders(reader, version);
        for (;;) {
            request.calls.push_back(ReadCall(reader, version));
            if (reader.AtEnd()) {
                break;
            }
            if (reader.Byte() == kNoExecSeparator) {
                throw ProtocolError(error_number::kNotSupported, kRequestSeverity,
                                    "Calls that are not to be run are not supported by this development "
                                    "server.");
            }
            if (reader.AtEnd()) {
                break;
            }
        }
    } catch (const ProtocolError& error) {
        request.error = error;
    }
    return request;
}

TransactionRequest ParseTransaction(std::string_view data, Version version) {
    ByteReader reader(data);
    SkipHeaders(reader, version);
    TransactionRequest request;
    const auto step = reader.Le<std::uint16_t>();
    switch (step) {
    case kBegin:
        ReadBegin(reader, request.isolation, request.statement);
        break;
    case kCommit:
        request.ended_by = Environment::CommitTransaction;
        request.statement = "COMMIT TRANSACTION" + ReadName(reader);
        ReadNext(reader, request);
        break;
    case kRollback:
        request.statement = "ROLLBACK TRANSACTION" + ReadName(reader);
        ReadNext(reader, request);
        break;
    case kSave:
        request.statement = "SAVE TRANSACTION" + ReadName(reader);
        break;
    default:
        throw ProtocolError(error_number::kNotSupported, kRequestSeverity,
                            "The transaction manager's request " + std::to_string(step) +
                                " (distributed transactions) is not supported by this development server.");
    }
    return request;
}

} // namespace devsql::tds

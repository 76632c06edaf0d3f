// The numbers of the TDS protocol (versions 7.1 to 7.4) that this server speaks: packets, tokens, types,
// bits. Knows nothing of connections or of the language.
#pragma once

#include <cstddef>
#include <cstdint>

namespace devsql::tds {

enum class PacketType : std::uint8_t {
    SqlBatch = 0x01,
    OldLogin = 0x02,
    Rpc = 0x03,
    Response = 0x04,
    Attention = 0x06,
    BulkLoad = 0x07,
    TransactionManager = 0x0E,
    Login = 0x10,
    Sspi = 0x11,
    PreLogin = 0x12,
};

/// Bytes of a packet's header, and the limits for a whole packet.
inline constexpr std::size_t kHeaderSize = 8;
inline constexpr std::size_t kSmallestPacket = 512;
inline constexpr std::size_t kLargestPacket = 32767;
/// Bytes of a packet, on both sides, until the login sets another size.
inline constexpr std::size_t kLoginPacket = 4096;
/// Bytes. A longer request is an error that ends the connection.
inline constexpr std::size_t kLargestMessage = std::size_t{64} * 1024 * 1024;
/// The same limit before the login: a client that has not logged in must not be able to fill the memory.
inline constexpr std::size_t kLargestLoginMessage = std::size_t{128} * 1024;

/// The bits of the status in a packet's header.
namespace packet_status {
inline constexpr std::uint8_t kEndOfMessage = 0x01;
inline constexpr std::uint8_t kIgnore = 0x02;
inline constexpr std::uint8_t kResetConnection = 0x08;
inline constexpr std::uint8_t kResetKeepTransaction = 0x10;
} // namespace packet_status

/// Ordered: later versions compare greater.
enum class Version : std::uint8_t { V71, V71Revision1, V72, V73A, V73B, V74 };

/// Since 7.2 user types, line numbers and row counts are wider, the (max) types are sent in chunks, and
/// headers stand before a request.
constexpr bool Has72(Version version) {
    return version >= Version::V72;
}

/// 7.3 has added date and the other types of date and time.
constexpr bool Has73(Version version) {
    return version >= Version::V73A;
}

namespace token {
inline constexpr std::uint8_t kReturnStatus = 0x79;
inline constexpr std::uint8_t kColumnMetadata = 0x81;
inline constexpr std::uint8_t kError = 0xAA;
inline constexpr std::uint8_t kInfo = 0xAB;
inline constexpr std::uint8_t kReturnValue = 0xAC;
inline constexpr std::uint8_t kLoginAck = 0xAD;
inline constexpr std::uint8_t kRow = 0xD1;
inline constexpr std::uint8_t kEnvironmentChange = 0xE3;
} // namespace token

/// The tokens that end a statement, a procedure, and a statement within a procedure.
enum class DoneToken : std::uint8_t { Done = 0xFD, DoneProcedure = 0xFE, DoneInProcedure = 0xFF };

/// The bits of the status in a DONE token.
namespace done_status {
inline constexpr std::uint16_t kFinal = 0x0000;
inline constexpr std::uint16_t kMore = 0x0001;
inline constexpr std::uint16_t kError = 0x0002;
inline constexpr std::uint16_t kCount = 0x0010;
inline constexpr std::uint16_t kAttention = 0x0020;
} // namespace done_status

/// The kinds of changes that the server reports to the client's driver.
enum class Environment : std::uint8_t {
    Database = 1,
    Language = 2,
    PacketSize = 4,
    Collation = 7,
    BeginTransaction = 8,
    CommitTransaction = 9,
    RollbackTransaction = 10,
    ResetAcknowledged = 18,
};

/// The first byte of a TYPE_INFO.
enum class WireType : std::uint8_t {
    Null = 0x1F,
    Image = 0x22,
    Text = 0x23,
    Guid = 0x24,
    OldVarBinary = 0x25,
    IntN = 0x26,
    OldVarChar = 0x27,
    DateN = 0x28,
    TimeN = 0x29,
    DateTime2N = 0x2A,
    DateTimeOffsetN = 0x2B,
    OldBinary = 0x2D,
    OldChar = 0x2F,
    Int1 = 0x30,
    Bit = 0x32,
    Int2 = 0x34,
    Int4 = 0x38,
    DateTime4 = 0x3A,
    Float4 = 0x3B,
    Money = 0x3C,
    DateTime = 0x3D,
    Float8 = 0x3E,
    OldDecimal = 0x37,
    OldNumeric = 0x3F,
    Variant = 0x62,
    NText = 0x63,
    BitN = 0x68,
    DecimalN = 0x6A,
    NumericN = 0x6C,
    FloatN = 0x6D,
    MoneyN = 0x6E,
    DateTimeN = 0x6F,
    Money4 = 0x7A,
    Int8 = 0x7F,
    BigVarBinary = 0xA5,
    BigVarChar = 0xA7,
    BigBinary = 0xAD,
    BigChar = 0xAF,
    NVarChar = 0xE7,
    NChar = 0xEF,
    Udt = 0xF0,
    Xml = 0xF1,
    Table = 0xF3,
};

/// SQL_Latin1_General_CP1_CI_AS: language 0x0409, case, kana and width ignored, sort order 52, code page
/// 1252.
inline constexpr std::uint8_t kCollation[5] = {0x09, 0x04, 0xD0, 0x00, 0x34};

/// The longest (var)char and (var)binary in bytes; longer columns have the length (max).
inline constexpr std::int32_t kLongestBytes = 8000;
/// The longest n(var)char in UTF-16 units.
inline constexpr std::int32_t kLongestUnits = 4000;

} // namespace devsql::tds

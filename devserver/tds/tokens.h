// The tokens of an answer, each written whole.
// Knows nothing of the order in which they make sense: see response.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/engine/engine.h"
#include "devserver/tds/packets.h"
#include "devserver/tds/type_encoder.h"
#include "devserver/tds/wire.h"

namespace devsql::tds {

/// Each call writes one token to the packets. Throws ConnectionLost.
class TokenWriter {
  public:
    /// `server_name` stands in every message.
    TokenWriter(PacketWriter& packets, std::string server_name)
        : packets_(packets), server_name_(std::move(server_name)) {}

    /// The version that the tokens are written in: the latest until the login names another.
    void SetVersion(Version version) { version_ = version; }
    Version version() const { return version_; }

    /// ERROR or INFO, by the severity. A text too long for the token is cut.
    void WriteMessage(const Message& message);
    void WriteLoginAck();
    void WriteDatabaseChange(std::string_view from, std::string_view to);
    void WriteLanguage(std::string_view language);
    void WriteCollation();
    void WritePacketSize(std::size_t from, std::size_t to);
    /// BeginTransaction, CommitTransaction or RollbackTransaction with the transaction's number.
    void WriteTransaction(Environment change, std::uint64_t transaction);
    void WriteResetAcknowledged();
    /// COLMETADATA; the rows that follow are written as these columns.
    void WriteColumns(const std::vector<Column>& columns);
    /// Throws EncodingError, with nothing written, when a value does not fit its column.
    void WriteRow(const std::vector<Value>& values);
    void WriteDone(DoneToken token, std::uint16_t status, Command command, std::int64_t rows);
    void WriteReturnStatus(std::int32_t status);
    /// Throws EncodingError, with nothing written.
    void WriteReturnValue(std::uint16_t ordinal, std::string_view name, const Type& type, const Value& value);

  private:
    void AppendUserType(std::uint32_t user_type);
    /// Writes a token of counted length: its byte, two bytes of length, `body`.
    void WriteCounted(std::uint8_t token, std::string_view body);
    void WriteEnvironment(Environment change, std::string_view new_value, std::string_view old_value);

    PacketWriter& packets_;
    std::string server_name_;
    Version version_ = Version::V74;
    std::vector<TypeEncoder> encoders_;
    std::string buffer_; ///< of the token being made; kept for its memory
};

} // namespace devsql::tds

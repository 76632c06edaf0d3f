// Writes the tokens of an answer.
// Knows nothing of the order in which a client expects them: see response.h.
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
    /// `server_name` is part of every message that is sent. `packets` must outlive the object.
    TokenWriter(PacketWriter& packets, std::string server_name)
        : packets_(packets), server_name_(std::move(server_name)) {}

    /// Sets the version in which the tokens are written. Before the login it is the latest one.
    void SetVersion(Version version) { version_ = version; }
    Version version() const { return version_; }

    /// Writes ERROR or INFO, by the severity. A text that is too long for the token is cut.
    void WriteMessage(const Message& message);
    void WriteLoginAck();
    void WriteDatabaseChange(std::string_view from, std::string_view to);
    void WriteLanguage(std::string_view language);
    void WriteCollation();
    void WritePacketSize(std::size_t from, std::size_t to);
    /// `change` is BeginTransaction, CommitTransaction or RollbackTransaction; `transaction` is the
    /// transaction's number.
    void WriteTransaction(Environment change, std::uint64_t transaction);
    void WriteResetAcknowledged();
    /// Writes COLMETADATA. The values of the rows that follow have the types of these columns.
    void WriteColumns(const std::vector<Column>& columns);
    /// Throws EncodingError, and writes nothing, if a value does not fit its column.
    void WriteRow(const std::vector<Value>& values);
    void WriteDone(DoneToken token, std::uint16_t status, Command command, std::int64_t rows);
    void WriteReturnStatus(std::int32_t status);
    /// `ordinal` is the parameter's place in the call, from 0. Throws EncodingError, and writes nothing, if
    /// the value does not fit the type.
    void WriteReturnValue(std::uint16_t ordinal, std::string_view name, const Type& type, const Value& value);

  private:
    void AppendUserType(std::uint32_t user_type);
    /// Writes a token of counted length: its byte, two bytes of length, `body`.
    void WriteCounted(std::uint8_t token, std::string_view body);
    void WriteEnvironment(Environment change, std::string_view new_value, std::string_view old_value);

    PacketWriter& packets_;
    std::string server_name_;
    Version version_ = Version::V74;
    std::vector<TypeEncoder> encoders_; ///< one for each column of the current result set
    std::string buffer_; ///< the token that is being made; a member so that its memory is used again
};

} // namespace devsql::tds

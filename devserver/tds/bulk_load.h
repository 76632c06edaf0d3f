// Reads the message of a bulk load: a description of the columns, rows, an end.
// Knows nothing of the table that the rows are for.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "devserver/engine/engine.h"
#include "devserver/tds/bytes.h"
#include "devserver/tds/packets.h"
#include "devserver/tds/protocol_error.h"
#include "devserver/tds/type_decoder.h"
#include "devserver/tds/wire.h"

namespace devsql::tds {

/// Gives the session the rows one by one, and reads a packet of the message whenever it needs more bytes. So
/// a load of any length is never in memory as a whole.
class BulkReader : public BulkRows {
  public:
    /// How much of the message has been read.
    enum class State : std::uint8_t {
        Open,      ///< its last packet has not been read yet
        Whole,     ///< all of it
        TakenBack, ///< all of it, and the client has cancelled it with the last packet
        Lost,      ///< the connection has ended within it, or a packet was invalid
    };

    /// `next_packet` waits for the next packet of the message. It may throw ConnectionLost and ProtocolError,
    /// which end the load.
    BulkReader(std::function<ClientPacket()> next_packet, Version version)
        : next_packet_(std::move(next_packet)), version_(version) {}

    Step Next(std::vector<Value>& row) override;
    const std::vector<Type>& Types() const override { return types_; }
    /// Reads the message to its end without looking at the rows, and returns how it ended.
    State Drain();
    /// The error in the packets or in their bytes, if Next returned Gone because of it.
    const std::optional<ProtocolError>& error() const { return error_; }

  private:
    /// Reads the next token: a row, the end, or the columns, for which it returns Waiting. Throws
    /// ProtocolError.
    Step Read(ByteReader& reader, std::vector<Value>& row);
    void ReadColumns(ByteReader& reader);
    void ReadRow(ByteReader& reader, std::vector<Value>& row) const;
    /// Drops the bytes that were read, and takes the next packet. Returns false if there are still less than
    /// `wanted_` bytes.
    bool More();
    /// Waits for the next packet and appends it to the buffer.
    void TakePacket();

    const std::function<ClientPacket()> next_packet_;
    const Version version_;
    std::string buffer_;       ///< bytes of the message; those before `position_` have been read
    std::size_t position_ = 0; ///< where the next token begins
    std::size_t wanted_ = 1;   ///< how many bytes of the next token must be there before it is read
    State state_ = State::Open;
    bool ended_ = false; ///< Next has returned End
    struct BulkColumn {
        WireFormat format;
        ValuePlace place;
    };
    std::optional<std::vector<BulkColumn>> columns_; ///< nothing before their description has come
    std::vector<Type> types_;
    std::optional<ProtocolError> error_;
};

} // namespace devsql::tds

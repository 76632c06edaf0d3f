// The rows of a bulk load as the client writes them: a description of the columns, rows, an end.
// Knows nothing of the table that they are for.
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

class BulkReader : public BulkRows {
  public:
    /// How far the message has come.
    enum class State : std::uint8_t {
        Open,
        Whole,
        TakenBack, ///< the client has cancelled it with its last packet
        Lost,      ///< the connection ends within it
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
    /// Takes the next packet. Returns false if there are not `wanted_` bytes yet.
    bool More();
    void TakePacket();

    const std::function<ClientPacket()> next_packet_;
    const Version version_;
    std::string buffer_;       ///< not read yet
    std::size_t position_ = 0; ///< of the next token in it
    std::size_t wanted_ = 1;   ///< bytes from there on before it is tried again
    State state_ = State::Open;
    bool ended_ = false;
    struct BulkColumn {
        WireFormat format;
        ValuePlace place;
    };
    std::optional<std::vector<BulkColumn>> columns_;
    std::vector<Type> types_;
    std::optional<ProtocolError> error_;
};

} // namespace devsql::tds

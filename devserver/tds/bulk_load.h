// The rows of a bulk load as the client writes them: a description of the columns, rows, an end.
// Knows nothing of the table that they are for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "devserver/engine/engine.h"
#include "devserver/tds/bytes.h"
#include "devserver/tds/packet_channel.h"
#include "devserver/tds/protocol_error.h"
#include "devserver/tds/type_decoder.h"
#include "devserver/tds/wire.h"

namespace devsql::tds {

class BulkReader : public BulkRows {
  public:
    BulkReader(PacketChannel& packets, Version version) : packets_(packets), version_(version) {}

    Step Next(std::vector<Value>& row) override;
    const std::vector<Type>& Types() const override { return types_; }
    /// The error in the bytes, if Next returned Gone because of it.
    const std::optional<ProtocolError>& error() const { return error_; }

  private:
    /// What the next token is: the columns, a row, the end. Throws ProtocolError.
    Step Read(ByteReader& reader, std::vector<Value>& row);
    void ReadColumns(ByteReader& reader);
    void ReadRow(ByteReader& reader, std::vector<Value>& row) const;
    /// Takes more bytes. Returns false if none have arrived yet or the message has ended.
    bool More();

    PacketChannel& packets_;
    const Version version_;
    std::string buffer_;       ///< not read yet
    std::size_t position_ = 0; ///< of the next token in it
    std::size_t wanted_ = 1;   ///< bytes from there on before it is tried again
    PacketChannel::State state_ = PacketChannel::State::Open;
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

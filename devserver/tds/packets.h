// Reads requests from their packets, and divides answers into packets.
// Knows nothing of the content of the messages.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "devserver/tds/socket.h"
#include "devserver/tds/wire.h"

namespace devsql::tds {

/// One packet of the client, without its header.
struct ClientPacket {
    PacketType type = PacketType::SqlBatch;
    std::uint8_t status = 0;
    std::string data;

    /// True if it is the last packet of its message. An attention is always a single packet, and some clients
    /// do not set its end bit.
    bool IsLast() const {
        return (status & packet_status::kEndOfMessage) != 0 || type == PacketType::Attention;
    }
    /// True if the client takes the message back with this packet.
    bool IsIgnored() const { return IsLast() && (status & packet_status::kIgnore) != 0; }
};

/// One whole message of the client.
struct ClientMessage {
    PacketType type = PacketType::SqlBatch;
    std::uint8_t first_status = 0; ///< the status of the first packet, which can ask for a reset
    bool ignore = false;           ///< the client has taken the message back with its last packet
    std::string data;
};

/// Reads the next packet. Returns nothing if the peer has closed the connection before it, or if `wait` gives
/// up. Throws ConnectionLost as the socket does, and ProtocolError (fatal) for an invalid header: where the
/// next packet begins is then not known.
std::optional<ClientPacket> ReadPacket(const Socket& socket, const ReadWait& wait = {});
/// Reads the rest of the message that begins with `first`. Throws as ReadPacket does, and ProtocolError
/// (fatal) for a message longer than `limit`.
ClientMessage ReadRest(const Socket& socket, ClientPacket first, std::size_t limit,
                       const ReadWait& wait = {});
/// Reads the next packet of a message of `type` that has begun. Throws as ReadPacket does, ConnectionLost if
/// there is no further packet, and ProtocolError (fatal) for a packet of another type.
ClientPacket ReadNextPacket(const Socket& socket, PacketType type, const ReadWait& wait = {});
/// Reads a whole message. Returns nothing if the peer has closed the connection before it. Throws as ReadRest
/// does.
std::optional<ClientMessage> ReadMessage(const Socket& socket, std::size_t limit, const ReadWait& wait = {});

/// Divides an answer into packets. The full packets of a long answer are gathered, so that one call of the
/// system sends many of them and the client is not woken for each one. The first ones, and those that fill
/// slowly, are sent one by one. Every call that sends throws ConnectionLost.
class PacketWriter {
  public:
    /// `socket` must outlive the object.
    explicit PacketWriter(const Socket& socket) : socket_(socket) { BeginPacket(); }

    void Append(std::string_view bytes);
    /// Sends the bytes so far; more of the answer follows.
    void Flush();
    /// Ends the answer and sends the rest of it. The next answer begins with packet number 1.
    void EndMessage();
    /// Sets the size of the following packets, in bytes with the header. Must be called between two answers.
    void SetPacketSize(std::size_t size);
    void SetSessionId(std::int32_t id) { session_id_ = static_cast<std::uint16_t>(id); }

  private:
    /// The bytes of the current packet, with its header.
    std::size_t PacketBytes() const { return buffer_.size() - packet_; }
    void BeginPacket();
    /// Completes the header of the current packet and begins the next one.
    void EndPacket(bool last);
    /// Sends the packets before the current one.
    void Send();

    const Socket& socket_;
    std::string buffer_;                           ///< full packets, then the current one
    std::size_t packet_ = 0;                       ///< where the current packet begins
    std::size_t answered_ = 0;                     ///< bytes of the current answer that were sent
    std::chrono::steady_clock::time_point sent_{}; ///< when Send last ran
    std::size_t packet_size_ = kLoginPacket;
    std::uint16_t session_id_ = 0;
    std::uint8_t packet_number_ = 1;
};

} // namespace devsql::tds

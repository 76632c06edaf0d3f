// Packets on the wire: a request put together from its packets, an answer cut into packets.
// Knows nothing of what the messages say.
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

    /// The message ends with it. An attention has no body, and some clients leave its end bit away.
    bool IsLast() const {
        return (status & packet_status::kEndOfMessage) != 0 || type == PacketType::Attention;
    }
    /// The client takes the message back.
    bool IsIgnored() const { return IsLast() && (status & packet_status::kIgnore) != 0; }
};

/// One whole message of the client.
struct ClientMessage {
    PacketType type = PacketType::SqlBatch;
    std::uint8_t first_status = 0; ///< of the first packet, which is where a reset is asked for
    bool ignore = false;           ///< the client took the message back with its last packet
    std::string data;
};

/// Reads the next packet. Returns nothing when the peer closed, or was given up, before it. Throws
/// ConnectionLost as the socket does; ProtocolError (fatal) for a packet that can't be, after which the
/// stream makes no sense any more.
std::optional<ClientPacket> ReadPacket(const Socket& socket, const ReadWait& wait = {});
/// Reads the rest of the message that begins with `first`. Throws as ReadPacket does, and ProtocolError
/// (fatal) for a message longer than `limit`.
ClientMessage ReadRest(const Socket& socket, ClientPacket first, std::size_t limit,
                       const ReadWait& wait = {});
/// The packet of a message that has begun with another of `type`. Throws as ReadPacket does.
ClientPacket ReadNextPacket(const Socket& socket, PacketType type, const ReadWait& wait = {});
/// Both: the next message, nothing when the peer closed between two messages.
std::optional<ClientMessage> ReadMessage(const Socket& socket, std::size_t limit, const ReadWait& wait = {});

/// Cuts an answer into packets. The full packets of a long answer are gathered, so that one call of the
/// system sends many of them and the client is not woken for each; the first ones, and those that fill
/// slowly, are sent one by one. Throws ConnectionLost.
class PacketWriter {
  public:
    explicit PacketWriter(const Socket& socket) : socket_(socket) { BeginPacket(); }

    void Append(std::string_view bytes);
    /// Sends what is there now; more of the answer follows.
    void Flush();
    /// Sends what is there, with the last packet of the answer; the next one starts with packet number 1.
    void EndMessage();
    /// Bytes of a packet, header and all, from the next packet on. Nothing may stand in the current one.
    void SetPacketSize(std::size_t size);
    void SetSessionId(std::int32_t id) { session_id_ = static_cast<std::uint16_t>(id); }

  private:
    std::size_t PacketBytes() const { return buffer_.size() - packet_; }
    void BeginPacket();
    /// Completes the header of the current packet and begins the next one.
    void EndPacket(bool last);
    /// Sends the packets before the current one.
    void Send();

    const Socket& socket_;
    std::string buffer_;       ///< full packets, then the current one
    std::size_t packet_ = 0;   ///< where the current packet begins
    std::size_t answered_ = 0; ///< bytes of the current answer that were sent
    std::chrono::steady_clock::time_point sent_{};
    std::size_t packet_size_ = kLoginPacket;
    std::uint16_t session_id_ = 0;
    std::uint8_t packet_number_ = 1;
};

} // namespace devsql::tds

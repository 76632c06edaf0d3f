// Reads and writes packets. See packets.h.
#include "devserver/tds/packets.h"

#include <algorithm>
#include <array>

#include "devserver/tds/bytes.h"
#include "devserver/tds/protocol_error.h"

namespace devsql::tds {

namespace {

/// Full packets are gathered until they have this many bytes, and then sent by one call of the system. As
/// long as an answer is shorter, its packets are sent one by one: if a statement then waits or works for
/// long, the client already has its first rows.
constexpr std::size_t kSentTogether = std::size_t{64} * 1024;
/// If this time has passed since the last call, a full packet is sent at once: the rows come slowly, and the
/// client can work on those that are there.
constexpr std::chrono::milliseconds kLongestKept{20};

struct Header {
    PacketType type;
    std::uint8_t status;
    std::size_t payload; ///< bytes after the header
};

ProtocolError BadPacket(const std::string& what) {
    return {error_number::kPacketLength, kFatalSeverity,
            "The network packet is invalid (" + what + "); the connection has been closed."};
}

bool IsKnown(PacketType type) {
    using enum PacketType;
    static constexpr std::array<PacketType, 9> kKnown{SqlBatch, OldLogin,           Rpc,  Attention, BulkLoad,
                                                      Login,    TransactionManager, Sspi, PreLogin};
    return std::find(kKnown.begin(), kKnown.end(), type) != kKnown.end();
}

Header ParseHeader(const std::array<char, kHeaderSize>& bytes) {
    ByteReader reader(std::string_view(bytes.data(), bytes.size()));
    const auto type = static_cast<PacketType>(reader.Byte());
    const std::uint8_t status = reader.Byte();
    const std::size_t length = reader.Be16();
    // Refused before the rest is read: a client of another protocol would wait for an answer.
    if (!IsKnown(type)) {
        throw BadPacket("the type " + std::to_string(static_cast<unsigned>(type)));
    }
    if (length < kHeaderSize || length > kLargestPacket) {
        throw BadPacket("a length of " + std::to_string(length));
    }
    return {type, status, length - kHeaderSize};
}

} // namespace

std::optional<ClientPacket> ReadPacket(const Socket& socket, const ReadWait& wait) {
    std::array<char, kHeaderSize> bytes{};
    if (!socket.ReadExactly(bytes.data(), bytes.size(), wait)) {
        return std::nullopt;
    }
    const Header header = ParseHeader(bytes);
    ClientPacket packet{header.type, header.status, std::string(header.payload, '\0')};
    if (header.payload > 0 && !socket.ReadExactly(packet.data.data(), header.payload, wait)) {
        throw ConnectionLost("the end came in the middle of a packet");
    }
    return packet;
}

ClientPacket ReadNextPacket(const Socket& socket, PacketType type, const ReadWait& wait) {
    std::optional<ClientPacket> packet = ReadPacket(socket, wait);
    if (!packet) {
        throw ConnectionLost("the end came in the middle of a message");
    }
    if (packet->type != type) {
        throw BadPacket("a packet of another type within a message");
    }
    return std::move(*packet);
}

ClientMessage ReadRest(const Socket& socket, ClientPacket first, std::size_t limit, const ReadWait& wait) {
    ClientMessage message{first.type, first.status, false, {}};
    for (ClientPacket packet = std::move(first);; packet = ReadNextPacket(socket, message.type, wait)) {
        if (message.data.size() + packet.data.size() > limit) {
            throw BadPacket("a message of more than " + std::to_string(limit) + " bytes");
        }
        message.data += packet.data;
        if (packet.IsLast()) {
            message.ignore = packet.IsIgnored();
            return message;
        }
    }
}

std::optional<ClientMessage> ReadMessage(const Socket& socket, std::size_t limit, const ReadWait& wait) {
    std::optional<ClientPacket> first = ReadPacket(socket, wait);
    return first ? std::optional(ReadRest(socket, std::move(*first), limit, wait)) : std::nullopt;
}

void PacketWriter::BeginPacket() {
    packet_ = buffer_.size();
    buffer_.append(kHeaderSize, '\0');
}

void PacketWriter::SetPacketSize(std::size_t size) {
    packet_size_ = std::clamp(size, kSmallestPacket, kLargestPacket);
}

void PacketWriter::Append(std::string_view bytes) {
    while (!bytes.empty()) {
        // A full packet is ended only when more bytes follow, because the last packet must say that it is the
        // last one.
        if (PacketBytes() >= packet_size_) {
            EndPacket(false);
            if (answered_ < kSentTogether || packet_ >= kSentTogether ||
                std::chrono::steady_clock::now() - sent_ >= kLongestKept) {
                Send();
            }
        }
        const std::size_t fits = std::min(bytes.size(), packet_size_ - PacketBytes());
        buffer_.append(bytes.substr(0, fits));
        bytes.remove_prefix(fits);
    }
}

void PacketWriter::Flush() {
    if (PacketBytes() > kHeaderSize) {
        EndPacket(false);
    }
    Send();
}

void PacketWriter::EndMessage() {
    EndPacket(true);
    packet_number_ = 1;
    Send();
    answered_ = 0;
}

void PacketWriter::EndPacket(bool last) {
    std::string header;
    AppendByte(header, static_cast<std::uint8_t>(PacketType::Response));
    AppendByte(header, last ? packet_status::kEndOfMessage : std::uint8_t{0});
    AppendBe(header, static_cast<std::uint16_t>(PacketBytes()));
    AppendBe(header, session_id_);
    AppendByte(header, packet_number_++);
    AppendByte(header, 0);
    buffer_.replace(packet_, kHeaderSize, header);
    BeginPacket();
}

void PacketWriter::Send() {
    socket_.Write(std::string_view(buffer_).substr(0, packet_));
    answered_ += packet_;
    buffer_.erase(0, packet_);
    packet_ = 0;
    sent_ = std::chrono::steady_clock::now();
}

} // namespace devsql::tds

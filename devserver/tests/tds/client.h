// A small TDS client for the tests: sends any bytes, reads answers and parses their tokens.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/tds/socket.h"
#include "devserver/tds/wire.h"

namespace devsql::fakes {

/// The fields of a login message, which has the form of `version`.
struct LoginFields {
    std::uint32_t version = 0x74000004;
    std::uint32_t packet_size = 4096;
    std::uint8_t option_flags2 = 0x02; // a driver that expects the ANSI settings
    std::uint8_t option_flags3 = 0;
    std::string host = "bench";
    std::string user = "sa";
    std::string password = "secret";
    std::string application = "tests";
    std::string server = "localhost";
    std::string database;
    std::string features; ///< the data of the feature extension, which is only sent if this is not empty
};

/// ASCII text in UTF-16, as the protocol has its texts.
std::string Utf16(std::string_view ascii);
// The data of messages, without packet headers.
std::string LoginMessage(const LoginFields& fields);
std::string PreLoginMessage();
/// A batch with the headers that TDS 7.2 requires.
std::string BatchMessage(std::string_view sql);
/// The packets of one message, with their headers.
std::string Packets(std::uint8_t type, std::string_view data, std::size_t packet_size = 4096,
                    std::uint8_t first_status = 0);

/// One token of an answer, with the fields that the tests check.
struct Token {
    std::uint8_t type = 0;
    std::string body; ///< without the token's type and its length
    // ERROR and INFO
    std::int32_t number = 0;
    std::uint8_t severity = 0;
    std::int32_t line = 0;
    std::string text;
    // DONE, DONEINPROC, DONEPROC
    std::uint16_t status = 0;
    std::int64_t rows = 0;
};

/// Parses an answer. Columns can have the types IntN, NVarChar and BigVarChar, chunked or not. Throws
/// std::runtime_error for bytes that are not a token.
std::vector<Token> ParseTokens(std::string_view data, tds::Version version = tds::Version::V74);
/// The tokens in order, with status and row count of each DONE: "COLUMNS ROW ROW DONE(10,2)".
std::string Summary(const std::vector<Token>& tokens);

class TdsClient {
  public:
    explicit TdsClient(tds::Socket socket) : socket_(std::move(socket)) {}
    /// Connects to 127.0.0.1. Throws std::runtime_error.
    static TdsClient Connect(std::uint16_t port);

    void SendRaw(std::string_view bytes) const { socket_.Write(bytes); }
    void Send(tds::PacketType type, std::string_view data) const {
        SendRaw(Packets(static_cast<std::uint8_t>(type), data, packet_size_));
    }
    /// The data of the next answer; nothing if the server has closed the connection. Throws ConnectionLost
    /// after a minute.
    std::optional<std::string> Receive();
    /// Sends prelogin and login; returns the answer to the login.
    std::string LogIn(const LoginFields& fields = {});
    /// Sends a batch; returns its answer.
    std::string Batch(std::string_view sql);
    /// The lengths of the last answer's packets.
    const std::vector<std::size_t>& packet_lengths() const { return packet_lengths_; }
    /// The session number in the headers of the last answer's packets.
    std::uint16_t session_id() const { return session_id_; }
    void set_packet_size(std::size_t size) { packet_size_ = size; }
    const tds::Socket& socket() const { return socket_; }

  private:
    tds::Socket socket_;
    std::size_t packet_size_ = 4096;
    std::vector<std::size_t> packet_lengths_;
    std::uint16_t session_id_ = 0;
};

} // namespace devsql::fakes
